#include "ModalSession.h"
#include "ProgressController.h"
#include "RiffBytes.h"
#include "Settings.h"
#include "UploadFixture.h"

#include <gmock/gmock.h>

namespace {

using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Not;

/// Quitting in the middle of an upload unwinds it and ends the application with status 0.
class UploadQuit : public UploadFixture {
public:
    void CloseWindow() { EXPECT_TRUE(CloseByFrame(mWindow)); }

    void PressQuitKey() { Key(Qt::Key_Q, Qt::ControlModifier); }

    /// What the program does when the system asks it to end.
    void ReceiveSignal() { EXPECT_TRUE(mController.applicationShouldTerminate()); }

protected:
    void SetUp() override {
        UploadFixture::SetUp();
        StallAt("2.dat");
        mFolder.Write("3.txt", "three");
        WriteLongSound("long.wav");
        Connect();
    }

    /// Uploads, quits when zCondition holds, and looks at what is left.
    void QuitWhen(const Names& zNames, const std::string& zWhat, const Meanwhile::tCondition& zCondition,
                  const Meanwhile::tAction& zQuit) {
        mQuits.When(zWhat, zCondition, zQuit);
        EXPECT_EQ(RunApplication([&] { Upload(zNames); }), 0);
        EXPECT_TRUE(mQuits.HasEnded());
        EXPECT_FALSE(mController.IsConnected());
        EXPECT_FALSE(ModalSession::IsRunning());
        EXPECT_THAT(Sent(), Not(Contains("3.txt")));
    }

    Meanwhile mQuits;
};

struct sWay {
    const char* name;
    void (*quit)(UploadQuit& zrTest);
};

void PrintTo(const sWay& zWay, std::ostream* zpStream) {
    *zpStream << zWay.name;
}

class UploadQuitWays : public UploadQuit, public ::testing::WithParamInterface<sWay> {
protected:
    void Quit() { GetParam().quit(*this); }
};

TEST_P(UploadQuitWays, WhileADroppedFolderIsLookedUp) {
    for (int number = 0; number < 20000; ++number) {
        mFolder.Write("large/" + std::to_string(number), "");
    }
    mDevice.AddFile("3.txt", "old");
    Key(Qt::Key_F5);
    mQuits.When(
        "the look into the folder",
        [this] { return ModalSession::IsRunning() && ProgressWindow().windowTitle() == kReading; },
        [this] { Quit(); });
    EXPECT_EQ(RunApplication([&] {
                  mController.UploadFiles({mFolder / "large", mFolder / "3.txt"}, "");
              }),
              0);
    EXPECT_TRUE(mQuits.HasEnded());
    EXPECT_FALSE(ModalSession::IsRunning()) << "nothing is asked about what follows";
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_P(UploadQuitWays, InTheMiddleOfAFile) {
    QuitWhen(
        {"2.dat", "3.txt"}, "the middle of the file", [this] { return IsInTheMiddleOf("2.dat"); },
        [this] { Quit(); });
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_P(UploadQuitWays, InTheMiddleOfAConversion) {
    QuitWhen(
        {"long.wav", "3.txt"}, "the conversion",
        [this] { return CurrentItem() == "long.wav" && !TemporaryFiles().empty(); }, [this] { Quit(); });
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_P(UploadQuitWays, InTheMiddleOfAConvertedFile) {
    mFolder.Write("big.wav", WaveBytes({1, 2, 44100, 24}, std::string(60'000'000, '\0')));
    mDevice.mOnCommand = [this](const std::string& zCommand) -> std::optional<std::string> {
        if (zCommand.starts_with("<cmd upload>")) {
            mDevice.StopListening();
        }
        return std::nullopt;
    };
    QuitWhen(
        {"big.wav", "3.txt"}, "the transfer",
        [this] { return mDevice.CountOf("upload") > 0 && IsInTheMiddleOf("big.wav"); }, [this] { Quit(); });
    EXPECT_THAT(TemporaryFiles(), IsEmpty());
}

TEST_P(UploadQuitWays, WhileTheOverwritePromptIsUp) {
    mDevice.AddFile("3.txt", "old");
    Key(Qt::Key_F5);
    QuitWhen(
        {"3.txt"}, "the prompt", [] { return WindowInFront(kPrompt) != nullptr; }, [this] { Quit(); });
    EXPECT_THAT(mAlerts, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Ways, UploadQuitWays,
    ::testing::Values(sWay{"ByTheFrame", [](UploadQuit& zrTest) { zrTest.CloseWindow(); }},
                      sWay{"ByTheKey", [](UploadQuit& zrTest) { zrTest.PressQuitKey(); }},
                      sWay{"ByASignal", [](UploadQuit& zrTest) { zrTest.ReceiveSignal(); }}),
    [](const auto& zInfo) { return std::string(zInfo.param.name); });

TEST_F(UploadQuit, WhileTheChooserIsUp) {
    mPanel.mOnRun = [this] { CloseWindow(); };
    QuitWhen({"3.txt"}, "the chooser", [this] { return !mPanel.mRequests.empty(); }, {});
    EXPECT_THAT(mDevice.Commands(), IsEmpty());
    EXPECT_EQ(GetSettings().RecentUploadPath, "") << "what is chosen then counts no more";
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(UploadQuit, WhileItReconnectsAfterCancel) {
    const std::string title = "Searching for '" + mDevice.Address() + "'";
    mQuits.When(
        "the middle of the file", [this] { return IsInTheMiddleOf("2.dat"); },
        [this] {
            mDevice.mWelcome.clear();
            Click<QPushButton>(ProgressWindow(), "Cancel");
        });
    QuitWhen(
        {"2.dat", "3.txt"}, title, [title] { return WindowInFront(title) != nullptr; },
        [this] { CloseWindow(); });
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(UploadQuit, WhileTheAlertIsUp) {
    mPanel.mOnRun = [this] {
        mDevice.DropConnection();
        EXPECT_TRUE(WaitFor([this] { return !mController.IsConnected(); }));
    };
    mAnswersAlerts = false;
    QuitWhen(
        {"3.txt"}, "the alert", [] { return WindowInFront(kUploadFailed) != nullptr; },
        [this] { CloseWindow(); });
}

} // namespace
