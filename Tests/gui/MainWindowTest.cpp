#include "WindowFixture.h"

#include <QtGui/QScreen>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QSlider>
#include <gmock/gmock.h>

#include <algorithm>
#include <array>

namespace {

using ::testing::ElementsAre;

constexpr std::array<const char*, 5> kFolderButtons = {"Back", "Create Folder", "Delete", "Upload",
                                                       "Download"};

class MainWindowTest : public WindowFixture {
protected:
    /// Menu entries and buttons that do the same have the same words and are usable at the same time.
    void ExpectMenuMirrorsButtons(const char* zConnectButton) {
        std::vector<const char*> names(kFolderButtons.begin(), kFolderButtons.end());
        names.push_back(zConnectButton);
        for (const char* name : names) {
            EXPECT_EQ(MenuEntry(name).isEnabled(), IsEnabled(name)) << name;
            EXPECT_EQ(MenuEntry(name).text(), Button(name).text()) << name;
        }
        EXPECT_EQ(MenuEntry("Refresh").isEnabled(), mController.IsConnected());
        EXPECT_TRUE(MenuEntry("Quit").isEnabled());
    }

    QAccessible::Role RoleOf(QWidget& zrWidget) {
        return QAccessible::queryAccessibleInterface(&zrWidget)->role();
    }
};

// --- Names ---

TEST_F(MainWindowTest, ControlsHaveTheNamesThatAssistiveToolsKnow) {
    EXPECT_EQ(mWindow.windowTitle(), QStringLiteral("Quillbox"));
    for (const char* name : {"Connect", "Back", "Create Folder", "Delete", "Upload", "Download"}) {
        EXPECT_EQ(RoleOf(Button(name)), QAccessible::PushButton) << name;
        EXPECT_FALSE(Button(name).icon().isNull()) << name;
    }
    EXPECT_EQ(RoleOf(Table()), QAccessible::Table);
    EXPECT_EQ(RoleOf(Control<QLineEdit>(mWindow, "Directory")), QAccessible::EditableText);
    EXPECT_EQ(RoleOf(Control<QLineEdit>(mWindow, "Status")), QAccessible::EditableText);
    EXPECT_EQ(RoleOf(Control<QSlider>(mWindow, "Transparency")), QAccessible::Slider);
    ASSERT_TRUE(ConnectTo(mDevice));
    EXPECT_EQ(RoleOf(Button("Disconnect")), QAccessible::PushButton);
}

TEST_F(MainWindowTest, ColumnsHaveTheirHeadings) {
    const QAbstractItemModel& model = *Table().model();
    std::vector<std::string> headings;
    for (int column = 0; column < model.columnCount(); ++column) {
        headings.push_back(model.headerData(column, Qt::Horizontal).toString().toStdString());
    }
    EXPECT_THAT(headings, ElementsAre("Name", "Type", "Date Modified", "Waveform"));
}

TEST_F(MainWindowTest, ColumnsFillTheWindowAndNamesGetTheMost) {
    const QHeaderView& header = *Table().horizontalHeader();
    for (const QSize& size : {mWindow.minimumSize(), QSize(1400, 800)}) {
        mWindow.resize(size);
        EXPECT_EQ(header.length(), Table().viewport()->width());
        for (int column = 1; column < header.count(); ++column) {
            EXPECT_GE(header.sectionSize(0), header.sectionSize(column)) << column;
            EXPECT_GE(header.sectionSize(column), header.sectionSizeHint(column)) << column;
        }
    }
}

TEST_F(MainWindowTest, ADateIsNotCut) {
    mDevice.AddFile("a.wav");
    ASSERT_TRUE(ConnectTo(mDevice));
    const int date = Table().horizontalHeader()->sectionSize(2);
    Table().resizeColumnToContents(2);
    EXPECT_GE(date, Table().columnWidth(2));
}

TEST_F(MainWindowTest, ANameCutForSpaceIsWholeInItsDescription) {
    const std::string name = std::string(150, 'n') + ".wav";
    mDevice.AddFile(name);
    ASSERT_TRUE(ConnectTo(mDevice));
    QAccessibleInterface* table = QAccessible::queryAccessibleInterface(&Table());
    QAccessibleInterface* cell = table->tableInterface()->cellAt(0, 0);
    EXPECT_EQ(cell->text(QAccessible::Description).toStdString(), name);
}

TEST_F(MainWindowTest, TheShownTextsCannotBeTypedOver) {
    for (const char* name : {"Directory", "Status"}) {
        auto& field = Control<QLineEdit>(mWindow, name);
        const QString before = field.text();
        field.setFocus();
        QTest::keyClicks(&field, "typed");
        EXPECT_EQ(field.text(), before) << name;
    }
}

// --- Enabled states ---

TEST_F(MainWindowTest, WithoutAConnectionOnlyConnectIsUsable) {
    EXPECT_TRUE(IsEnabled("Connect"));
    for (const char* name : kFolderButtons) {
        EXPECT_FALSE(IsEnabled(name)) << name;
    }
    EXPECT_FALSE(Table().isEnabled());
    EXPECT_FALSE(Control<QLineEdit>(mWindow, "Directory").isEnabled());
    EXPECT_EQ(Directory(), "/");
    ExpectMenuMirrorsButtons("Connect");
}

struct sRightsCase {
    const char* rights;
    bool createFolder;
    bool upload;
};

TEST_F(MainWindowTest, ButtonsFollowTheRightsOfTheFolder) {
    ASSERT_TRUE(ConnectTo(mDevice));
    EXPECT_TRUE(Table().isEnabled());
    EXPECT_TRUE(Control<QLineEdit>(mWindow, "Directory").isEnabled());
    const std::array<sRightsCase, 10> cases = {{{"---", false, true},
                                                {"c--", true, true},
                                                {"-d-", false, true},
                                                {"--r", false, false},
                                                {"cd-", true, true},
                                                {"c-r", true, false},
                                                {"-dr", false, false},
                                                {"cdr", true, false},
                                                {"CDR", false, true},
                                                {"cd", false, true}}};
    for (const sRightsCase& row : cases) {
        SCOPED_TRACE(row.rights);
        mDevice.SetFolderRights("", row.rights);
        Key(Qt::Key_F5);
        EXPECT_EQ(IsEnabled("Create Folder"), row.createFolder);
        EXPECT_EQ(IsEnabled("Upload"), row.upload);
        EXPECT_FALSE(IsEnabled("Delete"));
        EXPECT_FALSE(IsEnabled("Download"));
        EXPECT_FALSE(IsEnabled("Back"));
        ExpectMenuMirrorsButtons("Disconnect");
    }
}

TEST_F(MainWindowTest, ButtonsFollowTheFolderThatIsOpened) {
    mDevice.SetFolderRights("", "cd-");
    mDevice.AddFolder("Locked", "--r");
    ASSERT_TRUE(ConnectTo(mDevice));
    DoubleClickRow("Locked");
    EXPECT_FALSE(IsEnabled("Create Folder"));
    EXPECT_FALSE(IsEnabled("Upload"));
    EXPECT_TRUE(IsEnabled("Back"));
    ExpectMenuMirrorsButtons("Disconnect");
    Press("Back");
    EXPECT_TRUE(IsEnabled("Create Folder"));
    EXPECT_TRUE(IsEnabled("Upload"));
    EXPECT_FALSE(IsEnabled("Back"));
}

struct sSelectionCase {
    std::vector<std::string> rows;
    bool canDelete;
};

TEST_F(MainWindowTest, DeleteNeedsTheRightOnEverySelectedRow) {
    mDevice.AddFile("free1.wav", "x", "-d-");
    mDevice.AddFile("free2.wav", "x", "cdr");
    mDevice.AddFile("kept.wav", "x", "c-r");
    mDevice.AddFolder("Free", "-d-");
    mDevice.AddFolder("Kept", "c--");
    ASSERT_TRUE(ConnectTo(mDevice));
    const std::array<sSelectionCase, 6> cases = {{{{"free1.wav"}, true},
                                                  {{"kept.wav"}, false},
                                                  {{"free1.wav", "free2.wav", "Free"}, true},
                                                  {{"free1.wav", "kept.wav"}, false},
                                                  {{"Kept", "free1.wav", "free2.wav"}, false},
                                                  {{"Free"}, true}}};
    for (const sSelectionCase& row : cases) {
        SCOPED_TRACE(::testing::PrintToString(row.rows));
        SelectRows(row.rows);
        EXPECT_THAT(SelectedNames(), ::testing::UnorderedElementsAreArray(row.rows));
        EXPECT_EQ(IsEnabled("Delete"), row.canDelete);
        EXPECT_TRUE(IsEnabled("Download"));
        ExpectMenuMirrorsButtons("Disconnect");
    }
    Table().clearSelection();
    EXPECT_FALSE(IsEnabled("Delete"));
    EXPECT_FALSE(IsEnabled("Download"));
}

TEST_F(MainWindowTest, DisconnectingDisablesAgain) {
    mDevice.AddFile("a.wav");
    ASSERT_TRUE(ConnectTo(mDevice));
    SelectRows({"a.wav"});
    Press("Disconnect");
    EXPECT_TRUE(SelectedNames().empty());
    for (const char* name : kFolderButtons) {
        EXPECT_FALSE(IsEnabled(name)) << name;
    }
    ExpectMenuMirrorsButtons("Connect");
}

// --- Other ways to the same actions ---

TEST_F(MainWindowTest, ConnectGoesByMouseMnemonicShortcutMenuAndAssistiveTools) {
    const std::array<std::function<void()>, 5> ways = {
        [&] { Press("Connect"); },
        [&] { Key(Qt::Key_C, Qt::AltModifier); },
        [&] { Key(Qt::Key_K, Qt::ControlModifier); },
        [&] { Choose("Connect"); },
        [&] { PressAccessibly("Connect"); },
    };
    for (std::size_t way = 0; way < ways.size(); ++way) {
        SCOPED_TRACE(way);
        Meanwhile meanwhile;
        meanwhile.Answer("Select Device", "Cancel");
        ways[way]();
        EXPECT_TRUE(WaitFor([&] { return meanwhile.HasEnded() && TitleInFront().empty(); }));
    }
}

struct sShortcutCase {
    const char* entry;
    std::vector<QKeySequence> keys;
};

TEST_F(MainWindowTest, MenuEntriesHaveTheirKeys) {
    const std::array<sShortcutCase, 7> cases = {
        {{"Back", {QKeySequence("Backspace"), QKeySequence("Alt+Up")}},
         {"Create Folder", {QKeySequence("Ctrl+Shift+N")}},
         {"Delete", {QKeySequence("Del")}},
         {"Upload", {QKeySequence("Ctrl+U")}},
         {"Download", {QKeySequence("Ctrl+D")}},
         {"Refresh", {QKeySequence("F5")}},
         {"Quit", {QKeySequence("Ctrl+Q")}}}};
    for (const sShortcutCase& row : cases) {
        EXPECT_EQ(MenuEntry(row.entry).shortcuts(), QList<QKeySequence>(row.keys.begin(), row.keys.end()))
            << row.entry;
    }
}

TEST_F(MainWindowTest, OpenOpensTheOneFolderThatIsSelected) {
    mDevice.AddFile("a.wav");
    mDevice.AddFolder("Music");
    mDevice.AddFolder("Old");
    QAction& open = MenuEntry("Open");
    EXPECT_FALSE(open.isEnabled());
    ASSERT_TRUE(ConnectTo(mDevice));
    EXPECT_FALSE(open.isEnabled());
    for (const Names& others : {Names{"a.wav"}, Names{"Music", "Old"}, Names{"Music", "a.wav"}}) {
        SelectRows(others);
        EXPECT_FALSE(open.isEnabled()) << others.front();
    }
    SelectRows({"Music"});
    EXPECT_TRUE(open.isEnabled());
    // As assistive tools leave it: selected, but not where the keyboard is.
    Table().selectionModel()->setCurrentIndex({}, QItemSelectionModel::NoUpdate);
    open.trigger();
    EXPECT_EQ(Directory(), "/") << "whoever chose the entry is not kept waiting";
    EXPECT_TRUE(WaitFor([&] { return Directory() == "/Music"; }));
    EXPECT_FALSE(open.isEnabled());
    Press("Disconnect");
    EXPECT_FALSE(open.isEnabled());
}

TEST_F(MainWindowTest, EveryButtonHasAMnemonicOfItsOwn) {
    ASSERT_TRUE(ConnectTo(mDevice));
    QList<QKeySequence> mnemonics;
    for (const char* name : {"Disconnect", "Back", "Create Folder", "Delete", "Upload", "Download"}) {
        const QKeySequence mnemonic = QKeySequence::mnemonic(Button(name).text());
        EXPECT_FALSE(mnemonic.isEmpty()) << name;
        mnemonics.push_back(mnemonic);
    }
    mnemonics.push_back(QKeySequence::mnemonic(QStringLiteral("&Transparency")));
    for (const QAction* menu : mWindow.menuBar()->actions()) {
        mnemonics.push_back(QKeySequence::mnemonic(menu->text()));
    }
    for (const QKeySequence& mnemonic : mnemonics) {
        EXPECT_EQ(mnemonics.count(mnemonic), 1) << mnemonic.toString().toStdString();
    }
}

TEST_F(MainWindowTest, FitsOnASmallScreenWithItsFrame) {
    const QSize screen = mWindow.screen()->availableSize();
    ASSERT_LT(screen.width(), 860) << "this test needs a screen that is smaller than the window likes";
    EXPECT_LE(mWindow.width(), screen.width());
    EXPECT_LT(mWindow.height(), screen.height());
}

TEST_F(MainWindowTest, TheSliderSetsTheOpacityOfTheWindow) {
    auto& slider = Control<QSlider>(mWindow, "Transparency");
    EXPECT_EQ(mWindow.windowOpacity(), 1.0);
    slider.setFocus();
    constexpr double kTolerance = 1.0 / 255.0; // the toolkit keeps the opacity in a byte
    Key(Qt::Key_Home);
    EXPECT_NEAR(mWindow.windowOpacity(), 0.2, kTolerance);
    Key(Qt::Key_PageUp);
    EXPECT_NEAR(mWindow.windowOpacity(), 0.3, kTolerance);
    Key(Qt::Key_End);
    EXPECT_EQ(mWindow.windowOpacity(), 1.0);
}

TEST_F(MainWindowTest, AssistiveToolsReadAndSetTheOpacityFrom02To1) {
    QAccessibleInterface* const slider =
        QAccessible::queryAccessibleInterface(&Control<QSlider>(mWindow, "Transparency"));
    QAccessibleValueInterface* const value = slider->valueInterface();
    ASSERT_NE(value, nullptr);
    EXPECT_DOUBLE_EQ(value->minimumValue().toDouble(), 0.2);
    EXPECT_DOUBLE_EQ(value->maximumValue().toDouble(), 1.0);
    EXPECT_DOUBLE_EQ(value->minimumStepSize().toDouble(), 0.01);
    EXPECT_DOUBLE_EQ(value->currentValue().toDouble(), 1.0);
    value->setCurrentValue(0.7);
    EXPECT_NEAR(mWindow.windowOpacity(), 0.7, 1.0 / 255.0);
    EXPECT_DOUBLE_EQ(value->currentValue().toDouble(), 0.7);
    value->setCurrentValue(0.0);
    EXPECT_DOUBLE_EQ(value->currentValue().toDouble(), 0.2);
}

TEST_F(MainWindowTest, AboutNamesTheProgram) {
    QCoreApplication::setApplicationVersion(QStringLiteral("9.8.7"));
    Meanwhile meanwhile;
    meanwhile.WhenShown("Quillbox 9.8.7", [](QWidget& zrAbout) {
        EXPECT_FALSE(zrAbout.isModal());
        Click<QPushButton>(zrAbout, "OK");
    });
    Choose("About Quillbox");
    EXPECT_EQ(WindowInFront("Quillbox 9.8.7"), nullptr);
}

} // namespace
