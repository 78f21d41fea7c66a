#include "DownloadFixture.h"
#include "ModalSession.h"
#include "ProgressController.h"

#include <gmock/gmock.h>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Cancel in the progress window, and what people try while it is up.
class DownloadCancel : public DownloadFixture {
protected:
    void SetUp() override {
        DownloadFixture::SetUp();
        mDevice.AddFolder("f");
        mDevice.AddFile("f/1.wav", "one");
        mDevice.AddFile("f/2.wav", std::string(10000, 'x'));
        mDevice.AddFile("f/3.wav", "three");
        mDevice.AddFolder("f/g");
        mFolder.Write("2.wav", "old");
        AnswerPartly("f/2.wav", std::string(10000, 'x'), 5000);
    }

    /// Opens the folder, downloads the three files with a held up second one, and does this when the
    /// progress window shows half of it.
    void DownloadFiles(Meanwhile& zrMeanwhile, const std::function<void(QWidget&)>& zAction) {
        Connect();
        DoubleClickRow("f");
        mDevice.ForgetCommands();
        zrMeanwhile.Answer("Copy File", "Yes")
            .When("half of the second file", [this] { return CurrentItem() == "2.wav" && Position() > 400; })
            .WhenShown(ProgressTitle(), zAction);
        Download({"1.wav", "2.wav", "3.wav"});
    }

    /// What Cancel in the middle of the second file leaves behind.
    void ExpectCancelled() {
        EXPECT_THAT(mAlerts, IsEmpty());
        EXPECT_THAT(LocalTree(), ElementsAre("1.wav", "2.wav")) << "no temporary file, and no third one";
        EXPECT_EQ(mFolder.Read("1.wav"), "one") << "what came before stays";
        EXPECT_EQ(mFolder.Read("2.wav"), "old");
        EXPECT_FALSE(ProgressWindow().isVisible());
        EXPECT_FALSE(ModalSession::IsRunning());
    }
};

void ClickCancel(QWidget& zrWindow) {
    Click<QPushButton>(zrWindow, "Cancel");
}

struct sCancel {
    const char* name;
    void (*act)(QWidget& zrWindow);
};

void PrintTo(const sCancel& zCancel, std::ostream* zpStream) {
    *zpStream << zCancel.name;
}

class DownloadCancelWays : public DownloadCancel, public ::testing::WithParamInterface<sCancel> {};

TEST_P(DownloadCancelWays, ReconnectsToTheSameFolder) {
    const VisibilityCounter counter(ProgressWindow());
    Meanwhile meanwhile;
    DownloadFiles(meanwhile, GetParam().act);
    ExpectCancelled();
    EXPECT_EQ(mDevice.ConnectionCount(), 2);
    EXPECT_THAT(mDevice.Commands(),
                ElementsAre(mDevice.DownloadCommand("f/1.wav"), mDevice.DownloadCommand("f/2.wav"),
                            mDevice.DirCommand("f"), mDevice.DirCommand("f")));
    EXPECT_EQ(Status(), "Connected to 'Scripted'");
    EXPECT_EQ(Directory(), "/f");
    EXPECT_THAT(RowNames(), ElementsAre("g", "1.wav", "2.wav", "3.wav"));
    EXPECT_EQ(counter.Shown(), counter.Hidden()) << "every time that it shows it is closed once";
    ExpectUsable();
}

INSTANTIATE_TEST_SUITE_P(Ways, DownloadCancelWays,
                         ::testing::Values(sCancel{"ByItsButton", ClickCancel},
                                           sCancel{"ByEscape",
                                                   [](QWidget& zrWindow) {
                                                       QTest::keyClick(&zrWindow, Qt::Key_Escape);
                                                   }},
                                           sCancel{"ByItsFrame",
                                                   [](QWidget& zrWindow) {
                                                       EXPECT_FALSE(CloseByFrame(zrWindow)) << "closed twice";
                                                   }}),
                         [](const auto& zInfo) { return std::string(zInfo.param.name); });

TEST_F(DownloadCancel, ADeviceThatIsGoneByThenLeavesTheProgramDisconnected) {
    Meanwhile meanwhile;
    DownloadFiles(meanwhile, [this](QWidget& zrWindow) {
        mDevice.SwitchOff();
        ClickCancel(zrWindow);
    });
    ExpectCancelled();
    EXPECT_FALSE(mController.IsConnected());
    EXPECT_EQ(Status(), "Connection refused (nothing answers at this address and port)");
    EXPECT_THAT(RowNames(), IsEmpty());
    mDevice.SwitchOn();
    ExpectUsable();
}

TEST_F(DownloadCancel, TheReconnectionCanBeCancelledToo) {
    Meanwhile meanwhile;
    DownloadFiles(meanwhile, [&](QWidget& zrWindow) {
        mDevice.mWelcome.clear();
        meanwhile.Answer("Searching for '" + mDevice.Address() + "'", "Cancel");
        ClickCancel(zrWindow);
    });
    ExpectCancelled();
    EXPECT_FALSE(mController.IsConnected());
    EXPECT_EQ(Status(), kHint);
    mDevice.mWelcome = R"(<welcome>Name = "Back" Version = "1.10" ID = "1"</welcome>)";
    ExpectUsable();
}

TEST_F(DownloadCancel, WithTheLastByteOfAFileItStopsBeforeTheNext) {
    Meanwhile meanwhile;
    DownloadFiles(meanwhile, [this](QWidget& zrWindow) {
        SendRest("f/2.wav");
        EXPECT_TRUE(WaitFor([this] { return mFolder.Read("2.wav").size() == 10000; }));
        ClickCancel(zrWindow);
    });
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_THAT(LocalTree(), ElementsAre("1.wav", "2.wav"));
    EXPECT_EQ(mDevice.ConnectionCount(), 1) << "nothing is left to break off";
    EXPECT_THAT(RowNames(), ElementsAre("g", "1.wav", "2.wav", "3.wav"));
    EXPECT_FALSE(ProgressWindow().isVisible());
    ExpectUsable();
}

TEST_F(DownloadCancel, WithTheLastByteOfAllTheFolderIsStillShown) {
    Connect();
    DoubleClickRow("f");
    Meanwhile meanwhile;
    meanwhile.Answer("Copy File", "Yes").WhenShown(ProgressTitle(), [this](QWidget& zrWindow) {
        SendRest("f/2.wav");
        EXPECT_TRUE(WaitFor([this] { return mFolder.Read("2.wav").size() == 10000; }));
        ClickCancel(zrWindow);
    });
    Download({"2.wav"});
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_EQ(mDevice.ConnectionCount(), 1);
    EXPECT_THAT(RowNames(), ElementsAre("g", "1.wav", "2.wav", "3.wav"));
    EXPECT_FALSE(ProgressWindow().isVisible());
}

TEST_F(DownloadCancel, WhileAFolderIsListedItCancelsTheDownload) {
    mDevice.AddFile("z.wav");
    Connect();
    mDevice.mOnCommand = [this](const std::string& zCommand) -> std::optional<std::string> {
        if (zCommand == mDevice.DirCommand("f")) {
            mDevice.Hold();
        }
        return std::nullopt;
    };
    Meanwhile meanwhile;
    meanwhile.WhenShown(ProgressTitle(), [this](QWidget& zrWindow) {
        ClickCancel(zrWindow);
        mDevice.Release();
    });
    Download({"f", "z.wav"});
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_EQ(mDevice.CountOf("download"), 0);
    EXPECT_EQ(mDevice.ConnectionCount(), 1);
    EXPECT_EQ(Directory(), "/");
    EXPECT_THAT(RowNames(), ElementsAre("f", "z.wav"));
    EXPECT_EQ(Status(), "Connected to 'Scripted'");
    EXPECT_FALSE(ProgressWindow().isVisible());
    ExpectUsable();
}

TEST_F(DownloadCancel, WhileASizeIsAskedForItCancelsTheDownload) {
    mDevice.AddFolder("h");
    mDevice.AddFile("z.wav");
    AnswerTo(DirRecurseCommand("f"), "");
    Connect();
    Meanwhile meanwhile;
    meanwhile.WhenShown(kReading, [this](QWidget& zrWindow) {
        ClickCancel(zrWindow);
        mDevice.Send(R"(<dir_recurse>Size = "5" NumFiles = "1"</dir_recurse>)");
    });
    Download({"f", "h", "z.wav"});
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_THAT(mDevice.Commands(), ElementsAre(DirRecurseCommand("f")));
    EXPECT_THAT(RowNames(), ElementsAre("f", "h", "z.wav"));
    EXPECT_THAT(SelectedNames(), ElementsAre("f", "h", "z.wav"));
    EXPECT_FALSE(ProgressWindow().isVisible());
    ExpectUsable();
}

TEST_F(DownloadCancel, NothingElseBeginsWhileADownloadRuns) {
    Meanwhile meanwhile;
    DownloadFiles(meanwhile, [this](QWidget& /*zrWindow*/) {
        for (const char* button : {"Disconnect", "Back", "Download"}) {
            Press(button);
            PressByAssistiveTool(button);
        }
        DoubleClickRow("g");
        Key(Qt::Key_F5);
        Key(Qt::Key_D, Qt::ControlModifier);
        QTest::keyClick(&Table(), Qt::Key_Backspace);
        QTest::keyClick(&Table(), Qt::Key_Return);
        Choose("Refresh");
        Choose("Download");
        Choose("Disconnect");
        SendRest("f/2.wav");
    });
    EXPECT_THAT(mDevice.Commands(),
                ElementsAre(mDevice.DownloadCommand("f/1.wav"), mDevice.DownloadCommand("f/2.wav"),
                            mDevice.DownloadCommand("f/3.wav"), mDevice.DirCommand("f")));
    EXPECT_EQ(mPanel.mRequests.size(), 1U);
    EXPECT_EQ(mDevice.ConnectionCount(), 1);
    EXPECT_THAT(LocalTree(), ElementsAre("1.wav", "2.wav", "3.wav"));
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(DownloadCancel, NothingElseBeginsWhileTheChooserIsUp) {
    Connect();
    mPanel.mOnRun = [this] {
        for (const char* button : {"Disconnect", "Download"}) {
            Press(button);
            PressByAssistiveTool(button);
        }
        Choose("Refresh");
        DoubleClickRow("f");
    };
    mPanel.mAnswer.clear();
    Download({"f"});
    EXPECT_THAT(mDevice.Commands(), IsEmpty());
    EXPECT_EQ(mPanel.mRequests.size(), 1U);
    EXPECT_TRUE(mController.IsConnected());
}

} // namespace
