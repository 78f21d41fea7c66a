#include "Browser.h"
#include "WindowFixture.h"

#include <QtWidgets/QMessageBox>
#include <gmock/gmock.h>

namespace {

using Help = WindowFixture;

TEST_F(Help, ConnectAndTheUserGuideHaveTheirKeysInTheMenu) {
    EXPECT_EQ(MenuEntry("Connect").shortcuts(), QList<QKeySequence>{QKeySequence("Ctrl+K")});
    EXPECT_EQ(MenuEntry("User Guide").shortcuts(), QList<QKeySequence>{QKeySequence("F1")});
    ASSERT_TRUE(ConnectTo(mDevice));
    EXPECT_EQ(MenuEntry("Disconnect").shortcuts(), QList<QKeySequence>{QKeySequence("Ctrl+K")});
    Key(Qt::Key_K, Qt::ControlModifier);
    EXPECT_FALSE(mController.IsConnected());
}

TEST_F(Help, TheUserGuideOpensByKeyAndMenu) {
    const Browser browser;
    Key(Qt::Key_F1);
    Choose("User Guide");
    ASSERT_EQ(browser.Opened().size(), 2);
    for (const QUrl& url : browser.Opened()) {
        EXPECT_TRUE(url.path().endsWith(QLatin1String("/doc/quillbox/user-guide.html")))
            << url.path().toStdString();
    }
}

TEST_F(Help, AnAlertSaysWhyTheUserGuideCannotBeShown) {
    // On this platform of the toolkit nothing opens addresses unless a test does.
    std::vector<std::string> said;
    Meanwhile meanwhile;
    const auto read = [&said](QWidget& zrAlert) {
        said.push_back(dynamic_cast<QMessageBox&>(zrAlert).informativeText().toStdString());
        Click<QPushButton>(zrAlert, "OK");
    };
    meanwhile.WhenShown("The user guide cannot be shown", read);
    Key(Qt::Key_F1);
    meanwhile.WhenShown("Select Device", [&](QWidget& zrDialog) {
        meanwhile.WhenShown("The user guide cannot be shown", read);
        Click<QPushButton>(zrDialog, "Help");
        Click<QPushButton>(zrDialog, "Cancel");
    });
    Click<QPushButton>(mWindow, "Connect");
    ASSERT_EQ(said.size(), 2U);
    EXPECT_THAT(said, ::testing::Each(::testing::HasSubstr("No web browser could be started.")));
}

TEST_F(Help, TheUserGuideStaysShutWhileSomethingElseRuns) {
    const Browser browser;
    ASSERT_TRUE(ConnectTo(mDevice));
    mDevice.Hold();
    Meanwhile meanwhile;
    meanwhile.WhenShown(kReading, [this](QWidget& zrProgress) {
        for (QWidget* widget : {&zrProgress, static_cast<QWidget*>(&mWindow)}) {
            QTest::keyClick(widget, Qt::Key_F1);
        }
        Choose("User Guide");
        mDevice.Release();
    });
    Key(Qt::Key_F5);
    EXPECT_TRUE(browser.Opened().isEmpty());
    Key(Qt::Key_F1);
    EXPECT_EQ(browser.Opened().size(), 1);
}

} // namespace
