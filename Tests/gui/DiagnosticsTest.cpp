#include "Diagnostics.h"

#include "CommonUtils.h"
#include "Hermetic.h"
#include "WindowFixture.h"

#include <QtCore/QStringList>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>
#include <gmock/gmock.h>

#include <sys/utsname.h>

#include <array>
#include <cstdlib>

namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::Not;

std::string ClipboardText() {
    return QGuiApplication::clipboard()->text().toStdString();
}

/// What a text of diagnostics says of something.
std::string Fact(const std::string& zText, const char* zLabel) {
    const QString start = QString::fromUtf8(zLabel) + QStringLiteral(": ");
    for (const QString& line : QString::fromStdString(zText).split(QLatin1Char('\n'))) {
        if (line.startsWith(start)) {
            return line.mid(start.size()).toStdString();
        }
    }
    return "not said";
}

class Diagnostics : public WindowFixture {
protected:
    void SetUp() override {
        WindowFixture::SetUp();
        QGuiApplication::clipboard()->clear();
    }

    /// Chooses the menu entry and answers the note; returns what the note says.
    std::string Copy(const std::function<void()>& zChoose) {
        std::string said;
        Meanwhile meanwhile;
        meanwhile.WhenShown("Diagnostics copied", [&said](QWidget& zrNote) {
            said = dynamic_cast<QMessageBox&>(zrNote).informativeText().toStdString();
            Click<QPushButton>(zrNote, "OK");
        });
        zChoose();
        RunLoopPasses(1);
        return said;
    }

    std::string Copied() {
        Copy([this] { Choose("Copy Diagnostics"); });
        return ClipboardText();
    }
};

// --- The menu entry ---

TEST_F(Diagnostics, AreCopiedByMenuAndANoteSaysSo) {
    EXPECT_THAT(Copy([this] { Choose("Copy Diagnostics"); }),
                AllOf(HasSubstr("Paste them"),
                      HasSubstr("names of devices and files and network addresses may appear")));
    EXPECT_THAT(ClipboardText(), HasSubstr("Qt: "));
}

TEST_F(Diagnostics, AreCopiedByKeys) {
    Copy([this] {
        Key(Qt::Key_H, Qt::AltModifier);
        auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        QTest::keyClick(menu, Qt::Key_D);
    });
    EXPECT_THAT(ClipboardText(), HasSubstr("Qt: "));
}

TEST_F(Diagnostics, AreKnownToAssistiveToolsAndCopiedByThem) {
    QAccessibleInterface* found = nullptr;
    for (auto* menu : mWindow.menuBar()->findChildren<QMenu*>()) {
        QAccessibleInterface* const face = QAccessible::queryAccessibleInterface(menu);
        for (int i = 0; i < face->childCount(); ++i) {
            QAccessibleInterface* const entry = face->child(i);
            found = entry->text(QAccessible::Name) == QLatin1String("Copy Diagnostics") ? entry : found;
        }
    }
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->role(), QAccessible::MenuItem);
    EXPECT_FALSE(found->state().disabled);
    Copy([found] { found->actionInterface()->doAction(QAccessibleActionInterface::pressAction()); });
    EXPECT_THAT(ClipboardText(), HasSubstr("Qt: "));
}

TEST_F(Diagnostics, LeaveTheStatusAndTheConnectionAlone) {
    Copied();
    EXPECT_EQ(Status(), kHint);
    ASSERT_TRUE(ConnectTo(mDevice));
    const std::string status = Status();
    Copied();
    EXPECT_EQ(Status(), status);
    EXPECT_TRUE(mController.IsConnected());
}

TEST_F(Diagnostics, AreNotCopiedWhileSomethingElseRuns) {
    ASSERT_TRUE(ConnectTo(mDevice));
    mDevice.Hold();
    Meanwhile meanwhile;
    meanwhile.WhenShown(kReading, [this](QWidget& /*zrProgress*/) {
        Choose("Copy Diagnostics");
        mDevice.Release();
    });
    Key(Qt::Key_F5);
    EXPECT_THAT(ClipboardText(), IsEmpty());
}

// --- The text ---

TEST_F(Diagnostics, NameVersionsAndSystem) {
    QCoreApplication::setApplicationVersion(QStringLiteral("9.8.7"));
    ::utsname system{};
    ASSERT_EQ(::uname(&system), 0);
    const std::string text = Copied();
    EXPECT_EQ(Fact(text, "Quillbox"), "9.8.7");
    EXPECT_EQ(Fact(text, "Qt"), qVersion());
    EXPECT_THAT(Fact(text, "Sound library"), MatchesRegex("libsndfile-[0-9]+[.][0-9]+.*"));
    EXPECT_EQ(Fact(text, "System"), QSysInfo::prettyProductName().toStdString());
    EXPECT_EQ(Fact(text, "Kernel"), std::string("linux ") + system.release);
    EXPECT_EQ(Fact(text, "Processor"), QSysInfo::currentCpuArchitecture().toStdString());
    EXPECT_EQ(Fact(text, "Qt platform"), "offscreen");
    EXPECT_EQ(Fact(text, "Locale"), QLocale::system().name().toStdString());
    EXPECT_THAT(Fact(text, "Languages"), Not(IsEmpty()));
    EXPECT_THAT(Fact(text, "Screen"), MatchesRegex("[0-9]+ x [0-9]+, scale [0-9.]+"));
    EXPECT_THAT(text, Not(HasSubstr(system.nodename)));
}

TEST_F(Diagnostics, NameTheDesktopWhereItSaysWhatItIs) {
    qputenv("XDG_CURRENT_DESKTOP", "GNOME\nQt: 99");
    qputenv("XDG_SESSION_TYPE", "wayland");
    const std::string told = Copied();
    qunsetenv("XDG_CURRENT_DESKTOP");
    qunsetenv("XDG_SESSION_TYPE");
    EXPECT_EQ(Fact(told, "Desktop"), "GNOME?Qt: 99");
    EXPECT_EQ(Fact(told, "Session"), "wayland");
    const std::string untold = Copied();
    EXPECT_EQ(Fact(untold, "Desktop"), "unknown");
    EXPECT_EQ(Fact(untold, "Session"), "unknown");
}

TEST_F(Diagnostics, EndWithTheLogInWhichFilesHaveNamesButNoContents) {
    const TestFolder folder;
    mPanel.mAnswer = {folder.Path().string()};
    mDevice.AddFile("full.txt", "confidential");
    mDevice.AddFile("empty.txt", "");
    ASSERT_TRUE(ConnectTo(mDevice));
    SelectRows({"full.txt", "empty.txt"});
    Press("Download");
    ASSERT_EQ(folder.Read("full.txt"), "confidential");
    DebugPrint("\x1b[1mbold\xFF\n");
    const std::string text = Copied();
    EXPECT_THAT(text, HasSubstr("\n\nThe last lines of the log:\n"));
    EXPECT_THAT(text, HasSubstr("\nSkipped 'empty.txt': "));
    EXPECT_THAT(text, EndsWith("\n?[1mbold\uFFFD\n"));
    EXPECT_THAT(text, Not(HasSubstr("confidential")));
}

TEST_F(Diagnostics, HoldWhatPeopleWereTold) {
    ASSERT_TRUE(ConnectTo(mDevice));
    Meanwhile meanwhile;
    meanwhile.Answer("No files selected", "OK");
    mController.OnDownloadButton();
    EXPECT_THAT(Copied(),
                AllOf(HasSubstr("\nStatus: Connected to 'Scripted'\n"),
                      HasSubstr("\nNo files selected: Please select the files you wish to download\n")));
}

TEST_F(Diagnostics, DoNotNameTheHomeFolder) {
    const std::string home = std::getenv("HOME");
    DebugPrint("Skipped '" + home + "/Music/a.wav': why\n");
    const std::string text = Copied();
    EXPECT_THAT(text, EndsWith("\nSkipped '~/Music/a.wav': why\n"));
    EXPECT_THAT(text, Not(HasSubstr(home)));
}

TEST(DiagnosticsText, NamesNeitherTheHomeFolderNorWhereALinkToItLeads) {
    const TestFolder folder;
    const std::string home = folder / "link";
    std::filesystem::create_directory(folder / "real");
    std::filesystem::create_symlink(folder / "real", home);
    const QByteArray before = qgetenv("HOME");
    qputenv("HOME", home.c_str());
    const std::string text = DiagnosticsText({home + "/a", folder / "real/b"});
    qputenv("HOME", before);
    EXPECT_THAT(text, EndsWith("log:\n~/a\n~/b\n"));
}

TEST(DiagnosticsText, SaysWhenThereIsNoLog) {
    EXPECT_THAT(DiagnosticsText({}), EndsWith("\n\nThe log is empty.\n"));
}

struct sHomeCase {
    const char* text;
    const char* home;
    const char* expected;
};

TEST(WithoutHome, KnowsWhereAPathBeginsAndTheFoldersNameEnds) {
    for (const auto& [text, home, expected] :
         {sHomeCase{"/home/ann", "/home/ann", "~"},
          {"/home/ann/a /home/ann/b", "/home/ann", "~/a ~/b"},
          {"'/home/ann' /home/ann: x", "/home/ann", "'~' ~: x"},
          {"file:///home/ann/a", "/home/ann", "file://~/a"},
          {"/home/ann\u2026", "/home/ann", "~\u2026"},
          {"/home/anne /home/ann_1 /home/ann-b", "/home/ann", "/home/anne /home/ann_1 /home/ann-b"},
          {"/srv/root/a /root/b", "/root", "/srv/root/a ~/b"},
          {"/home/an", "/home/ann", "/home/an"},
          {"/a//b", "/", "/a//b"},
          {"/a", "", "/a"},
          {"", "/home/ann", ""}}) {
        EXPECT_EQ(WithoutHome(text, home), expected) << text;
    }
}

} // namespace
