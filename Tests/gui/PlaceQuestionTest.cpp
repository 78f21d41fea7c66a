#include "DownloadFixture.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <utility>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

constexpr const char* kPrompt = "Copy File";

struct sQuestion {
    const char* file;
    const char* button;
};

struct sPlace {
    const char* name;
    Names existing;
    std::vector<sQuestion> questions; ///< all that may come, in this order
    Names contents;                   ///< afterwards, "name=content"
    int downloads;
};

void PrintTo(const sPlace& zPlace, std::ostream* zpStream) {
    *zpStream << zPlace.name;
}

/// Downloads two files onto what is in their place, or where they arrive before they get there.
class PlaceQuestion : public DownloadFixture {
protected:
    void SetUp() override {
        DownloadFixture::SetUp();
        mDevice.AddFile("1.wav", "new");
        mDevice.AddFile("2.wav", "new");
        Connect();
    }

    /// The next prompt asks about this file of the destination, and this is the answer.
    void Answer(Meanwhile& zrMeanwhile, const sQuestion& zQuestion) {
        zrMeanwhile.WhenShown(kPrompt, [this, zQuestion](QWidget& zrPrompt) {
            EXPECT_EQ(Control<QLabel>(zrPrompt, "What exists").text().toStdString(),
                      "A file with the name '" + mFolder / zQuestion.file + "' already exists.");
            Click<QPushButton>(zrPrompt, zQuestion.button);
        });
    }

    Names Contents() const {
        Names contents;
        for (const std::string& name : LocalTree()) {
            contents.push_back(name + "=" + mFolder.Read(name));
        }
        return contents;
    }
};

class PlaceQuestions : public PlaceQuestion, public ::testing::WithParamInterface<sPlace> {};

TEST_P(PlaceQuestions, NothingThatExistsIsLostUnasked) {
    for (const std::string& name : GetParam().existing) {
        mFolder.Write(name, "old");
    }
    Meanwhile meanwhile;
    for (const sQuestion& question : GetParam().questions) {
        Answer(meanwhile, question);
    }
    Download({"1.wav", "2.wav"});
    EXPECT_TRUE(meanwhile.HasEnded());
    EXPECT_EQ(Contents(), GetParam().contents);
    EXPECT_EQ(mDevice.CountOf("download"), GetParam().downloads);
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_TRUE(mController.IsConnected());
    EXPECT_THAT(RowNames(), ElementsAre("1.wav", "2.wav"));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, PlaceQuestions,
    ::testing::Values(
        sPlace{"ALeftoverMayGo", {"1.wav.tmp"}, {{"1.wav.tmp", "Yes"}}, {"1.wav=new", "2.wav=new"}, 2},
        sPlace{"NoSkipsTheFile", {"1.wav.tmp"}, {{"1.wav.tmp", "No"}}, {"1.wav.tmp=old", "2.wav=new"}, 1},
        sPlace{"CancelEndsTheDownload", {"1.wav.tmp"}, {{"1.wav.tmp", "Cancel"}}, {"1.wav.tmp=old"}, 0},
        sPlace{"TheFileComesFirst",
               {"1.wav", "1.wav.tmp"},
               {{"1.wav", "Yes"}, {"1.wav.tmp", "Yes"}},
               {"1.wav=new", "2.wav=new"},
               2},
        sPlace{"NoToTheSecondQuestionKeepsBoth",
               {"1.wav", "1.wav.tmp"},
               {{"1.wav", "Yes"}, {"1.wav.tmp", "No"}},
               {"1.wav=old", "1.wav.tmp=old", "2.wav=new"},
               1},
        sPlace{"CancelOfTheSecondQuestionKeepsBoth",
               {"1.wav", "1.wav.tmp"},
               {{"1.wav", "Yes"}, {"1.wav.tmp", "Cancel"}},
               {"1.wav=old", "1.wav.tmp=old"},
               0},
        sPlace{"NoToTheFileAsksNoMore",
               {"1.wav", "1.wav.tmp"},
               {{"1.wav", "No"}},
               {"1.wav=old", "1.wav.tmp=old", "2.wav=new"},
               1},
        sPlace{"YesToAllForTheFileCoversTheRest",
               {"1.wav", "1.wav.tmp", "2.wav", "2.wav.tmp"},
               {{"1.wav", "Yes to all"}},
               {"1.wav=new", "2.wav=new"},
               2},
        sPlace{"YesToAllForALeftoverCoversTheRest",
               {"1.wav.tmp", "2.wav", "2.wav.tmp"},
               {{"1.wav.tmp", "Yes to all"}},
               {"1.wav=new", "2.wav=new"},
               2}),
    [](const auto& zInfo) { return std::string(zInfo.param.name); });

struct sLink {
    const char* name;
    const char* target;
};

TEST_F(PlaceQuestion, ALinkIsAskedAboutWhereverItLeads) {
    const TestFolder elsewhere;
    const std::string folder = elsewhere.Path();
    for (const auto& [name, target] :
         {sLink{"1.wav", "nowhere"}, {"1.wav.tmp", "nowhere"}, {"1.wav.tmp", folder.c_str()}}) {
        SCOPED_TRACE(std::string(name) + " to " + target);
        const fs::path link = mFolder / name;
        fs::remove(mFolder / "1.wav");
        fs::create_symlink(target, link);
        Meanwhile meanwhile;
        Answer(meanwhile, {name, "No"});
        Download({"1.wav"});
        EXPECT_TRUE(fs::is_symlink(link));
        EXPECT_EQ(mDevice.CountOf("download"), 0);

        Answer(meanwhile, {name, "Yes"});
        Download({"1.wav"});
        EXPECT_THAT(Contents(), ElementsAre("1.wav=new")) << "not through the link";
        EXPECT_FALSE(fs::is_symlink(mFolder / "1.wav"));
        mDevice.ForgetCommands();
    }
    EXPECT_THAT(mAlerts, IsEmpty());
}

} // namespace
