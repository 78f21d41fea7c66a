#include "DownloadFixture.h"
#include "ProgressController.h"

#include <QtWidgets/QLineEdit>
#include <gmock/gmock.h>

namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;

/// Buttons that are pressed by the keyboard, and where it is when their work is done.
class BrowsingByKeyboard : public DownloadFixture {
protected:
    void SetUp() override {
        DownloadFixture::SetUp();
        mDevice.AddFolder("Music");
        mDevice.AddFile("a.wav", "first");
        mDevice.AddFile("b.wav", "second");
        mDevice.AddFolder("Music/Live");
        mDevice.AddFile("Music/Live/c.wav");
        mDevice.AddFile("Music/Live/d.wav");
        Connect();
    }

    /// A window manager does this when a dialog has closed.
    void BringToFront() {
        mWindow.activateWindow();
        ASSERT_TRUE(WaitFor([&] { return mWindow.isActiveWindow(); }));
    }

    void PressByKey(const char* zButton) {
        BringToFront();
        Button(zButton).setFocus();
        ASSERT_TRUE(Button(zButton).hasFocus());
        Key(Qt::Key_Space);
    }

    void ExpectAt(QWidget& zrControl) {
        EXPECT_EQ(mWindow.focusWidget(), &zrControl) << mWindow.focusWidget()->accessibleName().toStdString();
    }

    /// The keyboard is in the table, where it can be seen and goes on.
    void ExpectInTable() {
        BringToFront();
        ASSERT_TRUE(Table().hasFocus()) << mWindow.focusWidget()->accessibleName().toStdString();
        EXPECT_EQ(Table().currentIndex().row(), 0);
        Key(Qt::Key_Down);
        EXPECT_EQ(Table().currentIndex().row(), 1);
        EXPECT_THAT(SelectedNames(), SizeIs(1));
    }
};

TEST_F(BrowsingByKeyboard, GoesOnInTheTableAfterADownload) {
    SelectRows({"b.wav"});
    PressByKey("Download");
    EXPECT_EQ(mFolder.Read("b.wav"), "second");
    ExpectInTable();
}

TEST_F(BrowsingByKeyboard, IsNotTakenFromTheProgressWindow) {
    const std::string listing = ScriptedDevice::DirCommand("");
    AnswerTo(listing, "");
    SelectRows({"b.wav"});
    Meanwhile meanwhile;
    meanwhile.When("the listing in the progress window", [this] { return ProgressWindow().isActiveWindow(); })
        .When(
            "the button without its rows", [this] { return !IsEnabled("Download"); },
            [&] {
                RunLoopPasses(50);
                EXPECT_TRUE(ProgressWindow().isActiveWindow());
                ExpectAt(Table());
                mDevice.Send(mDevice.DirReply(""));
            });
    PressByKey("Download");
    ExpectInTable();
}

TEST_F(BrowsingByKeyboard, GoesOnInTheTableAfterACancelledDownload) {
    AnswerPartly("b.wav", std::string(10000, 'x'), 5000);
    SelectRows({"b.wav"});
    Meanwhile meanwhile;
    meanwhile.Answer(ProgressTitle(), "Cancel");
    PressByKey("Download");
    EXPECT_EQ(mDevice.ConnectionCount(), 2);
    ExpectInTable();
}

TEST_F(BrowsingByKeyboard, GoesOnInTheTableAfterDelete) {
    mAnswersAlerts = false;
    SelectRows({"b.wav"});
    Meanwhile meanwhile;
    meanwhile.Answer("Delete files", "OK");
    PressByKey("Delete");
    EXPECT_THAT(RowNames(), ElementsAre("Music", "a.wav"));
    ExpectInTable();
}

TEST_F(BrowsingByKeyboard, StaysOnDeleteThatWasNotMeant) {
    mAnswersAlerts = false;
    SelectRows({"b.wav"});
    Meanwhile meanwhile;
    meanwhile.Answer("Delete files", "Cancel");
    PressByKey("Delete");
    ExpectAt(Button("Delete"));
}

TEST_F(BrowsingByKeyboard, StaysOnBackWhileItLeadsFurther) {
    DoubleClickRow("Music");
    DoubleClickRow("Live");
    PressByKey("Back");
    EXPECT_EQ(Directory(), "/Music");
    ExpectAt(Button("Back"));
    PressByKey("Back");
    EXPECT_EQ(Directory(), "/");
    ExpectInTable();
}

TEST_F(BrowsingByKeyboard, StaysOnCreateFolderAndUpload) {
    Meanwhile meanwhile;
    meanwhile.WhenShown("Create Folder", [](QWidget& zrPrompt) {
        QTest::keyClicks(&Control<QLineEdit>(zrPrompt, "Folder name"), QStringLiteral("New"));
        Click<QPushButton>(zrPrompt, "OK");
    });
    PressByKey("Create Folder");
    EXPECT_THAT(RowNames(), ElementsAre("Music", "New", "a.wav", "b.wav"));
    ExpectAt(Button("Create Folder"));

    mPanel.mAnswer = {mFolder.Write("up.txt", "text")};
    PressByKey("Upload");
    EXPECT_THAT(RowNames(), ElementsAre("Music", "New", "up.txt", "a.wav", "b.wav"));
    ExpectAt(Button("Upload"));
}

TEST_F(BrowsingByKeyboard, LeavesAButtonWhoseRowsAreGone) {
    for (const char* button : {"Delete", "Download"}) {
        SelectRows({"a.wav"});
        Button(button).setFocus();
        Key(Qt::Key_F5);
        ExpectInTable();
    }
}

TEST_F(BrowsingByKeyboard, IsOnConnectAfterALostConnection) {
    for (const char* control : {"Create Folder", "Upload", "Directory"}) {
        Control<QWidget>(mWindow, control).setFocus();
        mDevice.DropConnection();
        ASSERT_TRUE(WaitFor([this] { return !mController.IsConnected(); }));
        ExpectAt(Button("Connect"));
        Connect();
    }
}

} // namespace
