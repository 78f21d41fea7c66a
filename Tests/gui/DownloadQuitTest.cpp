#include "DownloadFixture.h"
#include "ModalSession.h"
#include "ProgressController.h"
#include "Settings.h"

#include <gmock/gmock.h>

namespace {

using ::testing::Each;
using ::testing::EndsWith;
using ::testing::IsEmpty;
using ::testing::Not;

/// Quitting in the middle of a download unwinds it and ends the application with status 0.
class DownloadQuit : public DownloadFixture {
public:
    void CloseWindow() { EXPECT_TRUE(CloseByFrame(mWindow)); }

    void PressQuitKey() { Key(Qt::Key_Q, Qt::ControlModifier); }

    /// What the program does when the system asks it to end.
    void ReceiveSignal() { EXPECT_TRUE(mController.applicationShouldTerminate()); }

protected:
    void SetUp() override {
        DownloadFixture::SetUp();
        mDevice.AddFolder("f");
        mDevice.AddFile("f/1.wav");
        mDevice.AddFile("2.wav", std::string(10000, 'x'));
        mDevice.AddFile("3.wav");
        mFolder.Write("2.wav", "old");
        Connect();
    }

    /// Downloads, quits when zCondition holds, and looks at what is left.
    void QuitWhen(const std::string& zWhat, const Meanwhile::tCondition& zCondition,
                  const Meanwhile::tAction& zQuit) {
        mQuits.When(zWhat, zCondition, zQuit);
        EXPECT_EQ(RunApplication([this] { Download({"f", "2.wav", "3.wav"}); }), 0);
        EXPECT_TRUE(mQuits.HasEnded());
        EXPECT_FALSE(mController.IsConnected());
        EXPECT_FALSE(ModalSession::IsRunning());
        EXPECT_FALSE(ProgressWindow().isVisible());
        EXPECT_THAT(LocalTree(), Each(Not(EndsWith(".tmp"))));
        EXPECT_EQ(mFolder.Read("2.wav"), "old");
    }

    Meanwhile mQuits;
};

struct sWay {
    const char* name;
    void (*quit)(DownloadQuit& zrTest);
};

void PrintTo(const sWay& zWay, std::ostream* zpStream) {
    *zpStream << zWay.name;
}

class DownloadQuitWays : public DownloadQuit, public ::testing::WithParamInterface<sWay> {
protected:
    void Quit() { GetParam().quit(*this); }
};

TEST_P(DownloadQuitWays, InTheMiddleOfAFile) {
    AnswerPartly("2.wav", std::string(10000, 'x'), 5000);
    mQuits.Answer("Copy File", "Yes");
    QuitWhen(
        "half of the file",
        [this] {
            return CurrentItem() == "2.wav" && Position() > 400 && WindowInFront(ProgressTitle()) != nullptr;
        },
        [this] { Quit(); });
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_P(DownloadQuitWays, WhileTheOverwritePromptIsUp) {
    QuitWhen(
        "the prompt", [] { return WindowInFront("Copy File") != nullptr; }, [this] { Quit(); });
    EXPECT_THAT(mAlerts, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Ways, DownloadQuitWays,
    ::testing::Values(sWay{"ByTheFrame", [](DownloadQuit& zrTest) { zrTest.CloseWindow(); }},
                      sWay{"ByTheKey", [](DownloadQuit& zrTest) { zrTest.PressQuitKey(); }},
                      sWay{"ByASignal", [](DownloadQuit& zrTest) { zrTest.ReceiveSignal(); }}),
    [](const auto& zInfo) { return std::string(zInfo.param.name); });

TEST_F(DownloadQuit, WhileTheChooserIsUp) {
    mPanel.mOnRun = [this] { CloseWindow(); };
    QuitWhen("the chooser", [this] { return !mPanel.mRequests.empty(); }, {});
    EXPECT_THAT(mDevice.Commands(), IsEmpty());
    EXPECT_EQ(GetSettings().RecentDownloadPath, "") << "what is chosen then counts no more";
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(DownloadQuit, WhileASizeIsAskedFor) {
    AnswerTo(DirRecurseCommand("f"), "");
    QuitWhen(
        "the command", [this] { return mDevice.CountOf("dir_recurse") > 0; }, [this] { CloseWindow(); });
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(DownloadQuit, WhileAFolderIsListed) {
    AnswerTo(mDevice.DirCommand("f"), "");
    QuitWhen(
        "the command", [this] { return mDevice.CountOf("<cmd dir>") > 0; }, [this] { CloseWindow(); });
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(DownloadQuit, WhileItReconnectsAfterCancel) {
    AnswerPartly("2.wav", std::string(10000, 'x'), 5000);
    const std::string title = "Searching for '" + mDevice.Address() + "'";
    mQuits.Answer("Copy File", "Yes").WhenShown(ProgressTitle(), [this](QWidget& zrWindow) {
        mDevice.mWelcome.clear();
        Click<QPushButton>(zrWindow, "Cancel");
    });
    QuitWhen(
        title, [title] { return WindowInFront(title) != nullptr; }, [this] { CloseWindow(); });
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(DownloadQuit, WhileTheAlertIsUp) {
    AnswerTo(mDevice.DirCommand("f"), "</dir>");
    mAnswersAlerts = false;
    QuitWhen(
        "the alert", [] { return WindowInFront(kFailed) != nullptr; }, [this] { CloseWindow(); });
}

} // namespace
