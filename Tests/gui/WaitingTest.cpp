#include "ModalSession.h"
#include "ProgressController.h"
#include "WindowFixture.h"

#include <QtWidgets/QLineEdit>
#include <gmock/gmock.h>

#include <array>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kStillRunning = "Waiting for operation to finish";

/// A connected program with a folder "Music" whose listing the device keeps back.
class Waiting : public WindowFixture {
protected:
    void SetUp() override {
        WindowFixture::SetUp();
        mDevice.AddFolder("Music");
        mDevice.AddFile("a.wav");
        mDevice.AddFile("Music/inside.wav");
        ASSERT_TRUE(ConnectTo(mDevice));
        mDevice.ForgetCommands();
    }

    QWidget& ProgressWindow() { return *mWindow.findChild<ProgressController*>(); }

    /// Opens "Music", runs zAct when the progress window has come up, and returns when the listing is over.
    void OpenHeldFolder(const std::function<void(QWidget&)>& zAct) {
        mDevice.Hold();
        Meanwhile meanwhile;
        meanwhile.WhenShown(kReading, zAct);
        DoubleClickRow("Music");
    }

    /// Lists again until the client is free for it.
    bool WaitUntilListed() {
        return WaitFor([&] {
            Key(Qt::Key_F5);
            return !RowNames().empty();
        });
    }
};

// --- The progress window ---

TEST_F(Waiting, TheProgressWindowShowsOnlyWhenAListingLasts) {
    QElapsedTimer since;
    bool tooEarly = false;
    mDevice.mOnCommand = [&](const std::string& /*zCommand*/) -> std::optional<std::string> {
        tooEarly = ProgressWindow().isVisible() && since.elapsed() < 180;
        return std::nullopt;
    };
    qint64 shownAfter = 0;
    since.start();
    OpenHeldFolder([&](QWidget& zrProgress) {
        shownAfter = since.elapsed();
        EXPECT_EQ(&zrProgress, &ProgressWindow());
        mDevice.Release();
    });
    EXPECT_FALSE(tooEarly);
    EXPECT_GE(shownAfter, 180); // the timer of 200 ms may fire a little early
    EXPECT_FALSE(ProgressWindow().isVisible());
    EXPECT_EQ(Directory(), "/Music");
}

TEST_F(Waiting, TheProgressWindowIsCentredOverTheMainWindow) {
    mWindow.setGeometry(100, 50, 700, 500);
    OpenHeldFolder([&](QWidget& zrProgress) {
        const QPoint apart = zrProgress.geometry().center() - mWindow.geometry().center();
        EXPECT_LE(apart.manhattanLength(), 2);
        mDevice.Release();
    });
}

TEST_F(Waiting, TheMainWindowKeepsItsTitle) {
    OpenHeldFolder([&](QWidget& /*zrProgress*/) {
        EXPECT_EQ(mWindow.windowTitle(), QStringLiteral("Quillbox"));
        mDevice.Release();
    });
    EXPECT_EQ(mWindow.windowTitle(), QStringLiteral("Quillbox"));
}

// --- Cancelling a listing ---

TEST_F(Waiting, ACancelledListingThatEndsInTimeIsForgotten) {
    OpenHeldFolder([&](QWidget& zrProgress) {
        Click<QPushButton>(zrProgress, "Cancel");
        Soon([&] { mDevice.Release(); }, std::chrono::milliseconds(50));
    });
    EXPECT_TRUE(mController.IsConnected());
    EXPECT_EQ(Status(), "Connected to 'Scripted'");
    EXPECT_EQ(Directory(), "/Music");
    EXPECT_THAT(RowNames(), IsEmpty());

    Key(Qt::Key_F5);
    EXPECT_THAT(RowNames(), ElementsAre("inside.wav"));
    EXPECT_EQ(mDevice.ConnectionCount(), 1);
}

TEST_F(Waiting, ACancelledListingMayFailBeforeItEnds) {
    OpenHeldFolder([&](QWidget& zrProgress) {
        QTest::keyClick(&zrProgress, Qt::Key_Escape);
        Soon([&] { mDevice.ResetConnection(); });
    });
    EXPECT_TRUE(WaitFor([&] { return !mController.IsConnected(); }));
    EXPECT_EQ(Status(), "Connection reset by peer (the device broke the connection off)");
}

TEST_F(Waiting, ACancelledListingMayTurnOutBadBeforeItEnds) {
    mDevice.mOnCommand = [](const std::string& /*zCommand*/) { return "<dir> " + std::string(600000, '.'); };
    OpenHeldFolder([&](QWidget& zrProgress) {
        CloseByFrame(zrProgress);
        Soon([&] { mDevice.Release(); });
    });
    EXPECT_FALSE(mController.IsConnected());
    EXPECT_EQ(Status(), "Receive buffer overflow");
}

TEST_F(Waiting, ACancelledListingWhoseReplyComesTooLateHarmsNothing) {
    QElapsedTimer patience;
    OpenHeldFolder([&](QWidget& zrProgress) {
        patience.start();
        Click<QPushButton>(zrProgress, "Cancel");
    });
    EXPECT_GE(patience.elapsed(), 3900);
    EXPECT_TRUE(mController.IsConnected());
    EXPECT_EQ(Status(), kStillRunning);
    EXPECT_THAT(RowNames(), IsEmpty());
    EXPECT_FALSE(IsEnabled("Back"));
    EXPECT_EQ(Directory(), "/");
    EXPECT_FALSE(ProgressWindow().isVisible());

    // The client is still busy, so that nothing is asked for, and nothing passes for an answer.
    Key(Qt::Key_F5);
    EXPECT_EQ(mDevice.Commands(), Names{ScriptedDevice::DirCommand("Music")});
    EXPECT_THAT(RowNames(), IsEmpty());

    mDevice.Release();
    ASSERT_TRUE(WaitUntilListed());
    EXPECT_EQ(Directory(), "/");
    EXPECT_THAT(RowNames(), ElementsAre("Music", "a.wav"));
    EXPECT_EQ(mDevice.CountOf("cmd dir"), 2);
}

TEST_F(Waiting, AskingForASizeCanBeCancelled) {
    mDevice.Hold();
    Meanwhile meanwhile;
    meanwhile.WhenShown(kReading, [&](QWidget& zrProgress) {
        Click<QPushButton>(zrProgress, "Cancel");
        Soon([&] { mDevice.Release(); });
    });
    std::uint32_t size = 0;
    std::int32_t count = 0;
    EXPECT_TRUE(mController.GetDirRecurseInfo("Music", size, count));
    EXPECT_FALSE(ProgressWindow().isVisible());
    EXPECT_FALSE(ModalSession::IsRunning());
}

// --- One thing at a time ---

TEST_F(Waiting, AListingAskedForWhileTheClientIsBusyFails) {
    OpenHeldFolder([&](QWidget& /*zrProgress*/) {
        cDeviceDirList list;
        EXPECT_FALSE(mController.GetDirectoryContents(nullptr, "", &list));
        EXPECT_THAT(list.mFile, IsEmpty());
        std::uint32_t size = 0;
        std::int32_t count = 0;
        EXPECT_FALSE(mController.GetDirRecurseInfo("", size, count));
        mDevice.Release();
    });
    EXPECT_EQ(mDevice.Commands(), Names{ScriptedDevice::DirCommand("Music")});
    EXPECT_THAT(RowNames(), ElementsAre("inside.wav"));
}

TEST_F(Waiting, NothingIsListedWithoutAConnection) {
    Press("Disconnect");
    cDeviceDirList list;
    std::uint32_t size = 0;
    std::int32_t count = 0;
    EXPECT_FALSE(mController.GetDirectoryContents(nullptr, "", &list));
    EXPECT_FALSE(mController.GetDirRecurseInfo("", size, count));
    mController.SetCurrentDirectory("Music");
    EXPECT_EQ(Status(), kHint);
    EXPECT_THAT(mDevice.Commands(), IsEmpty());
}

TEST_F(Waiting, AnyOtherActionIsRefusedWhileAListingRuns) {
    int clicks = 0;
    QObject::connect(&Button("Disconnect"), &QPushButton::clicked, &mWindow, [&] { ++clicks; });
    mDevice.Hold();
    Meanwhile meanwhile;
    meanwhile.WhenShown(kReading, [&](QWidget& /*zrProgress*/) {
        Press("Disconnect");
        EXPECT_EQ(clicks, 0);
        for (const Qt::Key key : {Qt::Key_F5, Qt::Key_Backspace, Qt::Key_Return}) {
            QTest::keyClick(&Table(), key);
        }
        QTest::keyClick(&mWindow, Qt::Key_K, Qt::ControlModifier);
        Choose("Disconnect");
        Choose("Refresh");
        Choose("About Quillbox"); // were it not refused, nobody would answer the box
        PressAccessibly("Disconnect");
    });
    meanwhile.When(
        "the accessible press", [&] { return clicks == 1; },
        [&] {
            EXPECT_EQ(TitleInFront(), kReading);
            EXPECT_TRUE(mController.IsConnected());
            mDevice.Release();
        });
    DoubleClickRow("Music");
    EXPECT_EQ(mDevice.Commands(), Names{ScriptedDevice::DirCommand("Music")});
    EXPECT_TRUE(mController.IsConnected());
    EXPECT_EQ(Directory(), "/Music");
}

TEST_F(Waiting, AnyOtherActionIsRefusedWhileADeviceIsChosen) {
    Press("Disconnect");
    int clicks = 0;
    QObject::connect(&Button("Connect"), &QPushButton::clicked, &mWindow, [&] { ++clicks; });
    Meanwhile meanwhile;
    meanwhile.WhenShown("Select Device", [&](QWidget& /*zrDialog*/) {
        Press("Connect");
        PressAccessibly("Connect");
    });
    // The press that opened the dialog counts when it is over.
    meanwhile.When("the accessible press", [&] { return clicks == 1; });
    meanwhile.Answer("Select Device", "Cancel");
    Press("Connect");
    EXPECT_EQ(clicks, 2);
    // A second dialog would still be waiting for its answer.
    EXPECT_FALSE(ModalSession::IsRunning());
    EXPECT_EQ(WindowInFront("Select Device"), nullptr);
}

} // namespace
