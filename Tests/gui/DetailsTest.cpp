#include "ClientProbe.h"
#include "DownloadFixture.h"
#include "ProgressController.h"

#include <QtCore/QLocale>
#include <gmock/gmock.h>

#include <chrono>
#include <memory>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Names = std::vector<std::string>;

constexpr const char* kHidden = "";
constexpr std::size_t kFileSize = 4096;

struct sDetails {
    const char* name;
    const char* version;
    const char* totalSize; ///< what the device says of the whole folder
    long listedSize;       ///< what its listing says of each of the two files
    Names details;         ///< at half of each file
};

void PrintTo(const sDetails& zDetails, std::ostream* zpStream) {
    *zpStream << zDetails.name;
}

class DownloadDetails : public DownloadFixture {
protected:
    void SetUp() override {
        DownloadFixture::SetUp();
        QLocale::setDefault(QLocale::c());
        ProgressWindow().UseClock([this] { return mNow; });
    }

    /// A folder with two files, of which the device sends one half and waits.
    void AddFolder(long zListedSize) {
        const std::string content(kFileSize, 'x');
        mDevice.AddFolder("f");
        for (const char* path : {"f/0.wav", "f/1.wav"}) {
            mDevice.AddFile(path, content, "cd-", zListedSize);
            AnswerPartly(path, content, kFileSize / 2);
        }
    }

    /// The line in the shown progress window, "" when it is not there.
    std::string Details() {
        const auto& label = Control<QLabel>(ProgressWindow(), "Details");
        EXPECT_EQ(label.accessibleDescription(), label.text());
        EXPECT_EQ(label.isVisible(), !label.text().isEmpty());
        return label.text().toStdString();
    }

    /// Downloads the folder and returns the line at half of each file.
    Names DetailsOfDownload() {
        Names details;
        Meanwhile meanwhile;
        for (const std::string name : {"0.wav", "1.wav"}) {
            meanwhile.When("half of " + name, [this, name] {
                return CurrentItem() == name && ControllerProbe::FileProgress(mController) == 0.5F;
            });
            LetProgramLook(meanwhile);
            meanwhile.WhenShown(ProgressTitle(), [this, name, &details](QWidget&) {
                details.push_back(Details());
                SendRest("f/" + name);
            });
        }
        Download({"f"});
        return details;
    }

    /// The program shows what has come at least that often; the line may also rightly stay as it is.
    static void LetProgramLook(Meanwhile& zrMeanwhile) {
        auto since = std::make_shared<QElapsedTimer>();
        zrMeanwhile
            .When(
                "the time", [] { return true; }, [since] { since->start(); })
            .When("the program's look",
                  [since, passes = 0]() mutable { return since->hasExpired(200) && ++passes > 5; });
    }

    std::chrono::milliseconds mNow{}; ///< stands still, so that no rate gets known
};

class DownloadDetailsTable : public DownloadDetails, public ::testing::WithParamInterface<sDetails> {};

TEST_P(DownloadDetailsTable, TellHowMuchOfTheWholeIsThere) {
    const std::string version = GetParam().version;
    mDevice.mWelcome = R"(<welcome>Name = "D" Version = ")" + version + R"(" ID = "1"</welcome>)";
    AddFolder(GetParam().listedSize);
    AnswerTo(DirRecurseCommand("f"), R"(<dir_recurse>Size = ")" + std::string(GetParam().totalSize) +
                                         R"(" NumFiles = "2"</dir_recurse>)");
    Connect();
    EXPECT_EQ(DetailsOfDownload(), GetParam().details);
    EXPECT_THAT(mAlerts, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, DownloadDetailsTable,
    ::testing::Values(
        sDetails{"KnownTotal", "1.10", "8192", 4096, {"2.0 KiB of 8.0 KiB", "6.0 KiB of 8.0 KiB"}},
        sDetails{"SmallTotal", "1.10", "1023", 100, {"50 bytes of 1023 bytes", "150 bytes of 1023 bytes"}},
        sDetails{"OldDevice", "1.09", "8192", 4096, {kHidden, kHidden}},
        sDetails{"UnknownTotal", "1.10", "0", 4096, {kHidden, kHidden}},
        sDetails{"TotalTooSmall", "1.10", "4096", 4096, {"2.0 KiB of 4.0 KiB", kHidden}},
        sDetails{"TotalTooLarge", "1.10", "1048576", 4096, {"2.0 KiB of 1.0 MiB", "6.0 KiB of 1.0 MiB"}},
        sDetails{"NegativeSizes", "1.10", "8192", -4096, {"0 bytes of 8.0 KiB", "0 bytes of 8.0 KiB"}},
        // In 32 bits -4096 as well.
        sDetails{
            "SizeBeyond31Bits", "1.10", "8192", 4294963200, {"0 bytes of 8.0 KiB", "0 bytes of 8.0 KiB"}},
        sDetails{
            "HugeSizes", "1.10", "4294967295", 2147483647, {"1024.0 MiB of 4.0 GiB", "3.0 GiB of 4.0 GiB"}},
        sDetails{"SizesNotListed", "1.10", "8192", 0, {"0 bytes of 8.0 KiB", "0 bytes of 8.0 KiB"}}),
    [](const auto& zInfo) { return std::string(zInfo.param.name); });

TEST_F(DownloadDetails, TellThatNothingComesAnyMore) {
    AddFolder(static_cast<long>(kFileSize));
    Connect();
    Meanwhile meanwhile;
    meanwhile.When(
        "the rate",
        [this] {
            mNow += std::chrono::milliseconds(50);
            return ProgressWindow().isVisible() && Details() == "2.0 KiB of 8.0 KiB · 0 bytes/s";
        },
        [this] {
            SendRest("f/0.wav");
            AnswerTo(ScriptedDevice::DownloadCommand("f/1.wav"), ScriptedDevice::LengthPrefix(1) + "x");
        });
    Download({"f"});
    EXPECT_THAT(LocalTree(), ElementsAre("f/", "f/0.wav", "f/1.wav"));
}

TEST_F(DownloadDetails, AListingAfterwardsHasNone) {
    AddFolder(static_cast<long>(kFileSize));
    Connect();
    EXPECT_EQ(DetailsOfDownload().back(), "6.0 KiB of 8.0 KiB");
    mDevice.Hold();
    Meanwhile meanwhile;
    meanwhile.WhenShown(kReading, [this](QWidget&) {
        EXPECT_EQ(Details(), kHidden);
        mDevice.Release();
    });
    Key(Qt::Key_F5);
}

} // namespace
