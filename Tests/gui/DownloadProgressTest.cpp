#include "DownloadFixture.h"
#include "ProgressController.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Names = std::vector<std::string>;

struct sHalf {
    const char* item;
    int position; ///< of 1000, when half of the item has come
};

struct sPositions {
    const char* name;
    const char* version;
    bool listsSizes; ///< whether the folder's listing tells the sizes of its files
    bool sumsSizes;  ///< whether the device tells the size of the whole folder
    Names selection;
    std::vector<sHalf> halves;
};

void PrintTo(const sPositions& zPositions, std::ostream* zpStream) {
    *zpStream << zPositions.name;
}

/// A folder (of size 1, as devices have it) with files of 2000 and 1000 bytes, and a file of 1000 beside it.
class DownloadPositions : public DownloadFixture, public ::testing::WithParamInterface<sPositions> {
protected:
    void SetUp() override {
        DownloadFixture::SetUp();
        const std::string version = GetParam().version;
        mDevice.mWelcome = R"(<welcome>Name = "D" Version = ")" + version + R"(" ID = "1"</welcome>)";
        mDevice.AddFolder("f");
        Add("f/0.wav", 2000, GetParam().listsSizes);
        Add("f/1.wav", 1000, GetParam().listsSizes);
        Add("a.wav", 1000, true);
        if (!GetParam().sumsSizes) {
            AnswerTo(DirRecurseCommand("f"), R"(<dir_recurse>Size = "0" NumFiles = "0"</dir_recurse>)");
        }
        Connect();
    }

    void Add(const std::string& zPath, std::size_t zSize, bool zListsSize) {
        const std::string content(zSize, 'x');
        mDevice.AddFile(zPath, content, "cd-", zListsSize ? static_cast<long>(zSize) : 0);
        AnswerPartly(zPath, content, zSize / 2);
    }
};

TEST_P(DownloadPositions, TheBarShowsHowFarItIs) {
    Meanwhile meanwhile;
    for (const sHalf& half : GetParam().halves) {
        const std::string path = (half.item[0] == 'a' ? "" : "f/") + std::string(half.item);
        meanwhile.When(
            std::string(half.item) + " at " + std::to_string(half.position),
            // The bar may stand there before the first half has come.
            [this, half, path] {
                return Shows(half.item, half.position) &&
                       mDevice.CountOf(ScriptedDevice::DownloadCommand(path)) > 0;
            },
            [this, path] { SendRest(path); });
    }
    Download(GetParam().selection);
    EXPECT_TRUE(meanwhile.HasEnded());
    EXPECT_THAT(mAlerts, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, DownloadPositions,
    ::testing::Values(sPositions{"OfTheWhole",
                                 "1.10",
                                 true,
                                 true,
                                 {"f", "a.wav"},
                                 {{"0.wav", 250}, {"1.wav", 625}, {"a.wav", 875}}},
                      sPositions{"OfTheWholeOfOneFile", "2.5", true, true, {"a.wav"}, {{"a.wav", 500}}},
                      sPositions{"OfEachListing",
                                 "1.09",
                                 true,
                                 true,
                                 {"f", "a.wav"},
                                 {{"0.wav", 333}, {"1.wav", 833}, {"a.wav", 500}}},
                      sPositions{"OfEachListingWhereTheWholeIsUnknown",
                                 "1.10",
                                 true,
                                 false,
                                 {"f"},
                                 {{"0.wav", 333}, {"1.wav", 833}}},
                      sPositions{"BeyondAWrongTotal",
                                 "1.10",
                                 true,
                                 false,
                                 {"f", "a.wav"},
                                 {{"0.wav", 1000}, {"1.wav", 1000}, {"a.wav", 1000}}}),
    [](const auto& zInfo) { return std::string(zInfo.param.name); });

class DownloadProgress : public DownloadFixture {};

TEST_F(DownloadProgress, WithoutAnySizeTheBarStaysAtItsBegin) {
    mDevice.mWelcome = R"(<welcome>Name = "Old" Version = "1.09" ID = "1"</welcome>)";
    mDevice.AddFolder("f");
    mDevice.AddFile("f/0.wav", std::string(20000, 'x'), "cd-", 0);
    mDevice.mPieceSize = 1000;
    Connect();
    std::vector<int> positions;
    QObject::connect(&Control<QProgressBar>(ProgressWindow(), "Progress"), &QProgressBar::valueChanged,
                     &mWindow, [&positions](int zPosition) { positions.push_back(zPosition); });
    Download({"f"});
    EXPECT_THAT(positions, IsEmpty());
    EXPECT_EQ(mFolder.Read("f/0.wav").size(), 20000U);
}

TEST_F(DownloadProgress, ASkippedFileLeavesTheBarShort) {
    mFolder.Write("0.wav", "old");
    mDevice.AddFile("0.wav", std::string(1000, 'x'));
    mDevice.AddFile("1.wav", std::string(1000, 'x'));
    AnswerPartly("1.wav", std::string(1000, 'x'), 500);
    Connect();
    Meanwhile meanwhile;
    meanwhile.Answer("Copy File", "No")
        .When(
            "the second file at a quarter", [this] { return Shows("1.wav", 250); },
            [this] { SendRest("1.wav"); });
    Download({"0.wav", "1.wav"});
    EXPECT_LE(Position(), 500) << "half of the bytes have not come";
}

TEST_F(DownloadProgress, MoreThanFourGibibytesInAllAreCounted) {
    const std::vector<sHalf> halves = {{"0.wav", 167}, {"1.wav", 500}, {"2.wav", 833}};
    Meanwhile meanwhile;
    for (const sHalf& half : halves) {
        const std::string name = half.item;
        mDevice.AddFile(name, std::string(1000, 'x'), "cd-", 2147483647);
        AnswerPartly(name, std::string(1000, 'x'), 500);
        meanwhile.When(
            "half of " + name, [this, half] { return Shows(half.item, half.position); },
            [this, name] { SendRest(name); });
    }
    Connect();
    Download({"0.wav", "1.wav", "2.wav"});
    EXPECT_TRUE(meanwhile.HasEnded());
}

TEST_F(DownloadProgress, TheWindowNamesItemAndDestination) {
    mDevice.AddFile("a.wav", "content");
    AnswerPartly("a.wav", "content", 3);
    Connect();
    Meanwhile meanwhile;
    meanwhile.WhenShown(ProgressTitle(), [this](QWidget& zrWindow) {
        EXPECT_EQ(&zrWindow, &ProgressWindow());
        EXPECT_EQ(CurrentItem(), "a.wav");
        const QPoint offset = zrWindow.geometry().center() - mWindow.geometry().center();
        EXPECT_LE(offset.manhattanLength(), 4) << "it stands over the middle of the main window";
        SendRest("a.wav");
    });
    Download({"a.wav"});
    EXPECT_FALSE(ProgressWindow().isVisible());
}

struct sTemplate {
    const char* name;
    const char* shown;
};

TEST_F(DownloadProgress, ANameIsShownAsATemplateWithoutArguments) {
    const std::vector<sTemplate> cases = {
        {"100%%.wav", "100%.wav"}, {"%s%n%d.wav", "%s%n%d.wav"},       {"%%%s.wav", "%%s.wav"},
        {"50%.wav", "50%.wav"},    {"&amp;bold.wav", "&amp;bold.wav"}, {"Größe.wav", "Größe.wav"}};
    for (const sTemplate& row : cases) {
        mDevice.AddFile(row.name, "content");
        AnswerPartly(row.name, "content", 3);
    }
    Connect();
    for (const sTemplate& row : cases) {
        Meanwhile meanwhile;
        meanwhile.When(
            row.shown, [this, row] { return CurrentItem() == row.shown && Position() > 0; },
            [this, row] { SendRest(row.name); });
        Download({row.name});
        EXPECT_EQ(mFolder.Read(row.name), "content") << "the file has the device's own name";
    }
}

TEST_F(DownloadProgress, AnAlertExpandsItsTextLikewise) {
    mDevice.AddFile("100%%%s.wav");
    std::filesystem::create_directory(mFolder / "100%%%s.wav");
    Connect();
    Download({"100%%%s.wav"});
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kFailed, "100%%s.wav - Could not open file"}));
}

TEST_F(DownloadProgress, AQuickDownloadShowsNoWindow) {
    mDevice.AddFile("a.wav");
    Connect();
    const VisibilityCounter counter(ProgressWindow());
    Download({"a.wav"});
    // Only a machine that needs more than the delay for this may show it, and then takes it away again.
    EXPECT_LE(counter.Shown(), 1);
    EXPECT_EQ(counter.Shown(), counter.Hidden());
    EXPECT_FALSE(ProgressWindow().isVisible());
}

} // namespace
