#include "CommonUtils_OSX.h"
#include "ProgressController.h"
#include "RiffBytes.h"
#include "UploadFixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <memory>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Counts how often a window was painted.
class PaintCounter : public QObject {
public:
    explicit PaintCounter(QWidget& zrWidget) { zrWidget.installEventFilter(this); }

    int Count() const { return mCount; }

    bool eventFilter(QObject* /*zpObject*/, QEvent* zpEvent) override {
        mCount += zpEvent->type() == QEvent::Paint ? 1 : 0;
        return false;
    }

private:
    int mCount = 0;
};

std::string Sample24(int zValue) {
    return Little16(static_cast<unsigned>(zValue) & 0xFFFFU) +
           static_cast<char>(static_cast<unsigned>(zValue) >> 16);
}

/// Sound files on their way to the device.
class UploadSound : public UploadFixture {
protected:
    UploadSound() {
        QObject::connect(&mWatch, &QTimer::timeout, &mWatch,
                         [this] { mLargest = std::max(mLargest, ConvertedSize()); });
        mWatch.start(1);
    }

    /// How much of the long sound file is converted.
    static std::uintmax_t ConvertedSize() {
        std::error_code error;
        const auto size = std::filesystem::file_size(GetTempFolder() + "/long.wav", error);
        return error ? 0 : size;
    }

    /// The step in which a long sound file is converted and people see that.
    Meanwhile& WhileConverted(Meanwhile& zrMeanwhile, const Meanwhile::tAction& zAction) {
        return zrMeanwhile.When(
            "the conversion",
            [this] { return CurrentItem() == "long.wav" && WindowInFront(kUploading) != nullptr; },
            [this, zAction] {
                EXPECT_THAT(TemporaryFiles(), ElementsAre("long.wav"));
                mLargestAllowed = ConvertedSize() + kSeveralSteps;
                if (zAction) {
                    zAction();
                }
            });
    }

    void ClickCancel() { Click<QPushButton>(ProgressWindow(), "Cancel"); }

    /// The conversion ended soon after that, a third of the file at most.
    void ExpectConversionStopped() const {
        EXPECT_GT(mLargest, 0U);
        EXPECT_LE(mLargest, mLargestAllowed);
    }

private:
    static constexpr std::uintmax_t kSeveralSteps = 80'000'000;

    QTimer mWatch;
    std::uintmax_t mLargest = 0;
    std::uintmax_t mLargestAllowed = 0;
};

TEST_F(UploadSound, ArrivesAsAWavOf16Bits) {
    const WaveFormat deep = {1, 2, 96000, 24};
    mFolder.Write("Deep.WAV", WaveBytes(deep, Sample24(0x400000) + Sample24(-0x400000) + Sample24(0x7FFFFF) +
                                                  Sample24(0)));
    Connect();
    Upload({"Deep.WAV"});
    const WaveFormat plain = {1, 2, 48000, 16}; // which plays slower, with every sample in it
    EXPECT_THAT(Sent(), ElementsAre("Deep.wav"));
    EXPECT_EQ(Received("Deep.wav"),
              WaveBytes(plain, Little16(16383) + Little16(static_cast<unsigned>(-16383)) + Little16(32766) +
                                   Little16(0)));
    EXPECT_THAT(RowNames(), ElementsAre("Deep.wav"));
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(UploadSound, WhatCannotBeConvertedGoesAsItIs) {
    const std::string surround = WaveBytes({1, 6, 44100, 16}, std::string(120, 'x'));
    mFolder.Write("no sound.AIFF", "just words");
    mFolder.Write("surround.wav", surround);
    mFolder.Write("sound.flac", "a kind that is not converted");
    Connect();
    Upload({"no sound.AIFF", "surround.wav", "sound.flac"});
    EXPECT_EQ(Received("no sound.AIFF"), "just words");
    EXPECT_EQ(Received("surround.wav"), surround);
    EXPECT_EQ(Received("sound.flac"), "a kind that is not converted");
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(UploadSound, OneTitleInTwoFilesOfAnUploadIsOneFileOnTheDevice) {
    mFolder.Write("a.wav", WaveBytes({1, 1, 8000, 24}, Sample24(0x400000)));
    mFolder.Write("a.aif",
                  WaveBytes({1, 1, 8000, 24}, Sample24(-0x400000))); // the content tells, not the name
    Connect();
    Upload({"a.wav", "a.aif"});
    EXPECT_THAT(Sent(), ElementsAre("a.wav", "a.wav"));
    EXPECT_EQ(Received("a.wav"), WaveBytes({1, 1, 8000, 16}, Little16(static_cast<unsigned>(-16383))));
}

TEST_F(UploadSound, ASmallerResultLeavesTheBarShort) {
    mFolder.Write("deep.wav", WaveBytes({1, 2, 44100, 24}, std::string(600000, '\0')));
    Connect();
    std::vector<int> positions = {0};
    QObject::connect(&Control<QProgressBar>(ProgressWindow(), "Progress"), &QProgressBar::valueChanged,
                     &mWindow, [&positions](int zPosition) { positions.push_back(zPosition); });
    Upload({"deep.wav"});
    EXPECT_EQ(Received("deep.wav").size(), 400044U);
    EXPECT_LE(*std::ranges::max_element(positions), 667);
}

TEST_F(UploadSound, ALargerResultStopsAtTheEndOfTheBar) {
    mFolder.Write("1.wav", WaveBytes({1, 1, 44100, 8}, std::string(300'000, '\x80')));
    mFolder.Write("2.txt", std::string(100'000, 'x'));
    Connect();
    std::vector<int> positions = {0};
    QObject::connect(&Control<QProgressBar>(ProgressWindow(), "Progress"), &QProgressBar::valueChanged,
                     &mWindow, [&positions](int zPosition) { positions.push_back(zPosition); });
    Upload({"1.wav", "2.txt"});
    EXPECT_EQ(Received("1.wav").size(), 600'044U);
    EXPECT_EQ(*std::ranges::max_element(positions), 1000);
}

TEST_F(UploadSound, ItsTemporaryFileIsDeletedWithALineInTheLog) {
    mFolder.Write("a.wav", WaveBytes({1, 1, 44100, 8}, "1234"));
    Connect();
    ::testing::internal::CaptureStdout();
    Upload({"a.wav"});
    EXPECT_THAT(::testing::internal::GetCapturedStdout(),
                ::testing::HasSubstr("Deleting temp file " + GetTempFolder() + "/a.wav\n"));
}

TEST_F(UploadSound, ItsTemporaryFileIsGoneWhenTheDeviceIs) {
    mFolder.Write("big.wav", WaveBytes({1, 2, 44100, 24}, std::string(60'000'000, '\0')));
    mDevice.mOnCommand = [this](const std::string& zCommand) -> std::optional<std::string> {
        if (zCommand.starts_with("<cmd upload>")) {
            mDevice.StopListening();
        }
        return std::nullopt;
    };
    Connect();
    Meanwhile meanwhile;
    meanwhile.When(
        "the transfer", [this] { return mDevice.CountOf("upload") > 0 && IsInTheMiddleOf("big.wav"); },
        [this] { mDevice.ResetConnection(); });
    Upload({"big.wav"});
    ASSERT_EQ(mAlerts.size(), 1U);
    EXPECT_EQ(mAlerts.front().title, kUploadFailed);
    EXPECT_THAT(TemporaryFiles(), IsEmpty());
}

TEST_F(UploadSound, ItsNewEndingReplacesAFileWithoutAQuestion) {
    mDevice.AddFile("a.wav", "old");
    mFolder.Write("a.aif", WaveBytes({1, 1, 8000, 24}, Sample24(0)));
    Connect();
    Upload({"a.aif"});
    EXPECT_EQ(Received("a.wav"), WaveBytes({1, 1, 8000, 16}, Little16(0)));
}

// --- While a file is converted ---

TEST_F(UploadSound, TheWindowIsPaintedAndCancelStopsItWithoutAWord) {
    mFolder.Write("1.txt", "one");
    WriteLongSound("long.wav");
    mFolder.Write("3.txt", "three");
    Connect();
    const PaintCounter paints(mWindow);
    Meanwhile meanwhile;
    WhileConverted(meanwhile, [this] {
        const std::string amount = Control<QLabel>(ProgressWindow(), "Details").text().toStdString();
        EXPECT_TRUE(amount.starts_with("3 bytes of ")) << amount << ": the first file is done";
    });
    for (int round = 0; round < 3; ++round) {
        auto before = std::make_shared<int>();
        meanwhile
            .When(
                "a turn", [] { return true; },
                [&, before] {
                    *before = paints.Count();
                    mWindow.update();
                })
            .When("the painted window", [&, before] { return paints.Count() > *before; });
    }
    WhileConverted(meanwhile, [this] { ClickCancel(); });
    Upload({"1.txt", "long.wav", "3.txt"});
    ExpectConversionStopped();
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_THAT(Sent(), ElementsAre("1.txt"));
    EXPECT_EQ(mDevice.ConnectionCount(), 1) << "nothing is on its way that would have to be broken off";
    EXPECT_THAT(RowNames(), ElementsAre("1.txt"));
    ExpectUploads();
}

TEST_F(UploadSound, AConnectionThatIsLostMeanwhileEndsTheUpload) {
    WriteLongSound("long.wav");
    Connect();
    Meanwhile meanwhile;
    WhileConverted(meanwhile, [this] { mDevice.DropConnection(); });
    Upload({"long.wav"});
    ExpectConversionStopped();
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kUploadFailed, kClosed}));
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_FALSE(mController.IsConnected());
    ExpectUploads();
}

TEST_F(UploadSound, ADeviceThatFloodsTheProgramMeanwhileEndsTheUpload) {
    WriteLongSound("long.wav");
    Connect();
    Meanwhile meanwhile;
    WhileConverted(meanwhile, [this] { mDevice.Send(std::string(600000, 'x')); });
    Upload({"long.wav"});
    ExpectConversionStopped();
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kUploadFailed, "Receive buffer overflow"}));
    EXPECT_THAT(Sent(), IsEmpty());
    ExpectUploads();
}

TEST_F(UploadSound, ItsTemporaryFileIsGoneAfterCancelInTheTransferToo) {
    mFolder.Write("big.wav", WaveBytes({1, 2, 44100, 24}, std::string(60'000'000, '\0')));
    std::optional<std::size_t> filesAtReconnection;
    mDevice.mOnCommand = [this,
                          &filesAtReconnection](const std::string& zCommand) -> std::optional<std::string> {
        if (zCommand.starts_with("<cmd upload>")) {
            mDevice.StopListening();
        } else if (mDevice.CountOf("upload") > 0) {
            filesAtReconnection = TemporaryFiles().size();
        }
        return std::nullopt;
    };
    Connect();
    Meanwhile meanwhile;
    meanwhile.When(
        "the transfer", [this] { return mDevice.CountOf("upload") > 0 && IsInTheMiddleOf("big.wav"); },
        [this] {
            EXPECT_THAT(TemporaryFiles(), ElementsAre("big.wav"));
            ClickCancel();
        });
    Upload({"big.wav"});
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_EQ(filesAtReconnection, 0U);
    EXPECT_EQ(Received("big.wav"), "(none)");
}

} // namespace
