#include "WindowFixture.h"

#include <QtTest/QAbstractItemModelTester>
#include <QtWidgets/QHeaderView>
#include <gmock/gmock.h>

#include <algorithm>
#include <array>

/// Reaches what only a connection that people cannot make would set.
class ControllerProbe {
public:
    static void SetFileTypes(Controller& zrController, const std::string& zTypes) {
        zrController.mFileTypes = zTypes;
    }
};

namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Browsing : public WindowFixture {
protected:
    void Connect() {
        ASSERT_TRUE(ConnectTo(mDevice));
        mDevice.ForgetCommands();
    }

    /// Root, Music, Music/Live, each with a file.
    void ConnectToNestedFolders() {
        mDevice.AddFolder("Music");
        mDevice.AddFile("root.wav");
        mDevice.AddFolder("Music/Live");
        mDevice.AddFile("Music/a.wav");
        mDevice.AddFile("Music/Live/b.wav");
        Connect();
    }

    void ClickHeader(int zColumn) {
        QHeaderView& header = *Table().horizontalHeader();
        const int x = header.sectionViewportPosition(zColumn) + header.sectionSize(zColumn) / 2;
        QTest::mouseClick(header.viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(x, header.height() / 2));
    }
};

// --- Rows ---

TEST_F(Browsing, ARowShowsNameTypeAndDate) {
    mDevice.AddFolder("Music");
    mDevice.AddFile("a.wav");
    mDevice.AddFile("b.WAV");
    mDevice.AddFile("notes");
    mDevice.AddFile("tail.");
    mDevice.AddFile("two.tar.gz");
    Connect();
    EXPECT_THAT(RowNames(), ElementsAre("notes", "tail.", "Music", "two.tar.gz", "a.wav", "b.WAV"));
    EXPECT_THAT(Column(1), ElementsAre(" file", " file", "Folder", "gz file", "wav file", "WAV file"));
    const std::string date = "2024-05-06 07:08:09";
    EXPECT_THAT(Column(2), ElementsAre(date, date, "", date, date, date));
    EXPECT_THAT(Column(3), Each(""));
    EXPECT_EQ(Table().rowHeight(0), 20);
}

TEST_F(Browsing, NamesAreShownAsPlainTextInOneLine) {
    mDevice.mOnCommand = [](const std::string& /*zCommand*/) {
        return std::string("<dir> Rights = \"cd-\"\n<item Type = \"File\" Date = \"%n\" Name = \"K\xC3\xBC"
                           "che\"><item Name = \"50%s\"><item Name = \"bad \xFF byte\"></dir>");
    };
    Connect();
    EXPECT_THAT(RowNames(), ElementsAre("Küche", "50%s", "bad \xEF\xBF\xBD byte"));
    EXPECT_EQ(Column(2).front(), "%n");
}

TEST_F(Browsing, AnEmptyTableSaysWhatToDo) {
    EXPECT_THAT(Table().accessibleDescription().toStdString(), ::testing::StartsWith("Press Connect"));
    Connect();
    EXPECT_EQ(Table().accessibleDescription(), QStringLiteral("This folder is empty"));
    EXPECT_EQ(Directory(), "/");
}

TEST_F(Browsing, TheTableHasNoToolTips) {
    mDevice.AddFile("a.wav");
    Connect();
    EXPECT_FALSE(Table().model()->index(0, 0).data(Qt::ToolTipRole).isValid());
}

struct sFilterCase {
    const char* fileTypes;
    std::vector<std::string> shown;
};

TEST_F(Browsing, AFileTypeFilterHidesOtherFilesButNoFolders) {
    mDevice.AddFolder("Folder.mp3");
    mDevice.AddFile("a.WAV");
    mDevice.AddFile("b.mp3");
    mDevice.AddFile("bare");
    Connect();
    const std::array<sFilterCase, 4> cases = {{{"wav", {"Folder.mp3", "a.WAV"}},
                                               {"MP3", {"Folder.mp3", "b.mp3"}},
                                               {"", {"bare", "Folder.mp3"}},
                                               {"*", {"bare", "Folder.mp3", "b.mp3", "a.WAV"}}}};
    for (const sFilterCase& row : cases) {
        SCOPED_TRACE(row.fileTypes);
        ControllerProbe::SetFileTypes(mController, row.fileTypes);
        Key(Qt::Key_F5);
        EXPECT_EQ(RowNames(), row.shown);
    }
}

TEST_F(Browsing, AConnectionThroughTheDialogShowsAllFilesAgain) {
    mDevice.AddFile("b.mp3");
    Connect();
    ControllerProbe::SetFileTypes(mController, "wav");
    Press("Disconnect");
    Connect();
    EXPECT_THAT(RowNames(), ElementsAre("b.mp3"));
}

// --- Order ---

TEST_F(Browsing, RowsAreSortedByTypeWithTiesInTheDevicesOrder) {
    for (const char* name : {"b.mp3", "a.WAV", "c.wav", "bare", "B.Wav", "tail."}) {
        mDevice.AddFile(name);
    }
    mDevice.AddFolder("Zebra");
    mDevice.AddFolder("Ant");
    Connect();
    EXPECT_THAT(RowNames(), ElementsAre("bare", "tail.", "Zebra", "Ant", "b.mp3", "a.WAV", "c.wav", "B.Wav"));
    EXPECT_EQ(Table().horizontalHeader()->sortIndicatorSection(), 1);
    EXPECT_EQ(Table().horizontalHeader()->sortIndicatorOrder(), Qt::AscendingOrder);
    EXPECT_TRUE(Table().horizontalHeader()->isSortIndicatorShown());
}

TEST_F(Browsing, TheMenuSortsLikeAHeaderClick) {
    for (const char* name : {"b.txt", "a.wav", "c.aif"}) {
        mDevice.AddFile(name);
    }
    Connect();
    EXPECT_TRUE(MenuEntry("Sort by Type").isChecked());
    Choose("Sort by Name");
    EXPECT_THAT(RowNames(), ElementsAre("a.wav", "b.txt", "c.aif"));
    EXPECT_TRUE(MenuEntry("Sort by Name").isChecked());
    EXPECT_FALSE(MenuEntry("Sort by Type").isChecked());
    Choose("Sort by Name");
    EXPECT_THAT(RowNames(), ElementsAre("c.aif", "b.txt", "a.wav"));
    EXPECT_TRUE(MenuEntry("Sort by Name").isChecked());
    Choose("Sort by Date Modified");
    EXPECT_EQ(Table().horizontalHeader()->sortIndicatorSection(), 2);
    EXPECT_TRUE(MenuEntry("Sort by Date Modified").isChecked());
    ClickHeader(1);
    EXPECT_THAT(RowNames(), ElementsAre("c.aif", "b.txt", "a.wav"));
    EXPECT_TRUE(MenuEntry("Sort by Type").isChecked());
    EXPECT_FALSE(MenuEntry("Sort by Date Modified").isChecked());
}

TEST_F(Browsing, NothingIsSortedWhileSomethingElseRuns) {
    mDevice.AddFile("b.txt");
    mDevice.AddFile("a.wav");
    EXPECT_FALSE(MenuEntry("Sort by Name").isEnabled());
    Connect();
    Meanwhile meanwhile;
    SelectRows({"b.txt"});
    meanwhile.WhenShown("Delete files", [this](QWidget& zrQuestion) {
        Choose("Sort by Name");
        Click<QPushButton>(zrQuestion, "Cancel");
    });
    Press("Delete");
    EXPECT_THAT(RowNames(), ElementsAre("b.txt", "a.wav"));
    EXPECT_FALSE(MenuEntry("Sort by Name").isChecked());
}

TEST_F(Browsing, AHeaderClickSortsAnewAndClearsTheSelection) {
    for (const char* name : {"Delta.wav", "alpha.mp3", "Charlie.wav", "bravo.mp3", "Écho.wav"}) {
        mDevice.AddFile(name);
    }
    Connect();
    SelectRows({"alpha.mp3"});
    EXPECT_TRUE(IsEnabled("Download"));
    ClickHeader(0);
    EXPECT_THAT(RowNames(), ElementsAre("alpha.mp3", "bravo.mp3", "Charlie.wav", "Delta.wav", "Écho.wav"));
    EXPECT_THAT(SelectedNames(), IsEmpty());
    EXPECT_FALSE(IsEnabled("Download"));

    ClickHeader(0);
    EXPECT_THAT(RowNames(), ElementsAre("Écho.wav", "Delta.wav", "Charlie.wav", "bravo.mp3", "alpha.mp3"));

    // Each row still stands for its own record.
    SelectRows({"bravo.mp3"});
    EXPECT_THAT(SelectedNames(), ElementsAre("bravo.mp3"));

    Key(Qt::Key_F5);
    EXPECT_THAT(RowNames(), ElementsAre("alpha.mp3", "bravo.mp3", "Delta.wav", "Charlie.wav", "Écho.wav"));
    EXPECT_EQ(Table().horizontalHeader()->sortIndicatorSection(), 1);
}

TEST_F(Browsing, TiesKeepTheDevicesOrderInALongListingToo) {
    Names expected;
    for (int number = 60; number > 0; --number) {
        expected.push_back(std::to_string(number * 37 % 61) + ".wav");
        mDevice.AddFile(expected.back());
    }
    Connect();
    EXPECT_EQ(RowNames(), expected);
    ClickHeader(1);
    EXPECT_EQ(RowNames(), expected);
    EXPECT_EQ(Table().horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);
}

TEST_F(Browsing, ARowOpensTheFolderThatItShowsAfterSorting) {
    mDevice.AddFolder("Zulu");
    mDevice.AddFolder("Alpha");
    mDevice.AddFile("Zulu/z.wav");
    Connect();
    ClickHeader(0);
    ClickHeader(0);
    EXPECT_THAT(RowNames(), ElementsAre("Zulu", "Alpha"));
    DoubleClickRow("Zulu");
    EXPECT_EQ(Directory(), "/Zulu");
    EXPECT_THAT(RowNames(), ElementsAre("z.wav"));
}

// --- From folder to folder ---

TEST_F(Browsing, FoldersOpenByDoubleClickAndBackGoesUp) {
    ConnectToNestedFolders();
    DoubleClickRow("Music");
    EXPECT_EQ(Directory(), "/Music");
    EXPECT_THAT(RowNames(), ElementsAre("Live", "a.wav"));
    DoubleClickRow("Live");
    EXPECT_EQ(Directory(), "/Music/Live");
    EXPECT_THAT(RowNames(), ElementsAre("b.wav"));
    EXPECT_THAT(mDevice.Commands(),
                ElementsAre(ScriptedDevice::DirCommand("Music"), ScriptedDevice::DirCommand("Music/Live")));
    Press("Back");
    EXPECT_EQ(Directory(), "/Music");
    EXPECT_THAT(RowNames(), ElementsAre("Live", "a.wav"));
    EXPECT_TRUE(IsEnabled("Back"));
    Press("Back");
    EXPECT_EQ(Directory(), "/");
    EXPECT_FALSE(IsEnabled("Back"));
}

TEST_F(Browsing, KeysOpenGoBackAndListAgain) {
    ConnectToNestedFolders();
    for (const Qt::Key open : {Qt::Key_Return, Qt::Key_Enter}) {
        SelectRows({"Music"});
        Key(open);
        EXPECT_EQ(Directory(), "/Music");
        SelectRows({"Live"});
        Key(open);
        EXPECT_EQ(Directory(), "/Music/Live");
        Key(Qt::Key_Backspace);
        EXPECT_EQ(Directory(), "/Music");
        Key(Qt::Key_Up, Qt::AltModifier);
        EXPECT_EQ(Directory(), "/");
    }
    mDevice.ForgetCommands();
    Key(Qt::Key_Backspace);
    Key(Qt::Key_Up, Qt::AltModifier);
    EXPECT_THAT(mDevice.Commands(), IsEmpty());

    mDevice.AddFile("new.wav");
    Key(Qt::Key_F5);
    EXPECT_THAT(RowNames(), ElementsAre("Music", "root.wav", "new.wav"));
    EXPECT_THAT(mDevice.Commands(), ElementsAre(ScriptedDevice::DirCommand("")));
}

TEST_F(Browsing, AFileOpensNothing) {
    ConnectToNestedFolders();
    DoubleClickRow("root.wav");
    Key(Qt::Key_Return);
    EXPECT_THAT(mDevice.Commands(), IsEmpty());
    EXPECT_EQ(Directory(), "/");
    EXPECT_THAT(SelectedNames(), ElementsAre("root.wav"));
    EXPECT_EQ(Status(), "Connected to 'Scripted'");
}

TEST_F(Browsing, TheKeyboardStaysVisibleInEveryListing) {
    ConnectToNestedFolders();
    Key(Qt::Key_Down);
    EXPECT_EQ(Table().currentIndex().row(), 1);
    Key(Qt::Key_F5);
    EXPECT_EQ(Table().currentIndex().row(), 0);
    EXPECT_THAT(SelectedNames(), IsEmpty());
    Button("Upload").setFocus();
    Key(Qt::Key_F5);
    EXPECT_FALSE(Table().currentIndex().isValid()) << "the keyboard is elsewhere";
}

TEST_F(Browsing, BackGoesOnFromTheFolderThatWasLeft) {
    for (int number = 10; number < 60; ++number) {
        mDevice.AddFolder("f" + std::to_string(number));
    }
    Connect();
    DoubleClickRow("f57");
    EXPECT_EQ(Directory(), "/f57");
    Press("Back");
    EXPECT_EQ(Table().currentIndex().data().toString(), QStringLiteral("f57"));
    EXPECT_TRUE(Table().viewport()->rect().contains(Table().visualRect(Table().currentIndex())));
    EXPECT_THAT(SelectedNames(), IsEmpty());
}

TEST_F(Browsing, ReturnInAnEmptyFolderOpensNothing) {
    Connect();
    Table().setFocus();
    Key(Qt::Key_Return);
    EXPECT_THAT(mDevice.Commands(), IsEmpty());
}

TEST_F(Browsing, FolderNamesGoOutAsTheyCame) {
    const std::string name = "K\xC3\xBC"
                             "che \xFF 100%s";
    mDevice.AddFolder(name);
    Connect();
    SelectRows(RowNames());
    Key(Qt::Key_Return);
    EXPECT_THAT(mDevice.Commands(), ElementsAre(ScriptedDevice::DirCommand(name)));
}

struct sBackCase {
    const char* from;
    const char* to;
};

TEST_F(Browsing, BackDropsOneSeparatorAndTheLastName) {
    ConnectToNestedFolders();
    for (const sBackCase& row : {sBackCase{"Music/Live", "Music"},
                                 {"Music/Live/", "Music"},
                                 {"Music/Live\\", "Music"},
                                 {"Music/", ""}}) {
        SCOPED_TRACE(row.from);
        mController.SetCurrentDirectory(row.from);
        EXPECT_EQ(Directory(), std::string("/") + row.from);
        mDevice.ForgetCommands();
        Press("Back");
        EXPECT_THAT(mDevice.Commands(), ElementsAre(ScriptedDevice::DirCommand(row.to)));
        EXPECT_EQ(Directory(), std::string("/") + row.to);
    }
}

TEST_F(Browsing, AFolderWhosePathIsTooLongSaysSoAndIsNotAskedFor) {
    const std::string fits(255 - ScriptedDevice::DirCommand("").size(), 'n');
    const std::string tooLong = fits + "n";
    mDevice.AddFolder(fits);
    mDevice.AddFolder(tooLong);
    Connect();
    DoubleClickRow(tooLong);
    EXPECT_EQ(Status(), tooLong + " - Path too long");
    EXPECT_THAT(mDevice.Commands(), IsEmpty());
    EXPECT_EQ(Directory(), "/");
    EXPECT_THAT(RowNames(), ElementsAre(fits, tooLong));

    DoubleClickRow(fits);
    EXPECT_EQ(Directory(), "/" + fits);
}

// --- What may be selected ---

TEST_F(Browsing, WithoutFullRightsOnlyFilesCanBeSelected) {
    ConnectToNestedFolders();
    SelectRows({"Music", "root.wav"});
    EXPECT_THAT(SelectedNames(), ::testing::UnorderedElementsAre("Music", "root.wav"));

    // Only a connection through the selection dialog has full rights.
    Press("Disconnect");
    ASSERT_TRUE(mController.ConnectDevice("Music"));
    EXPECT_EQ(Directory(), "/Music");
    SelectRows({"Live"});
    EXPECT_THAT(SelectedNames(), IsEmpty());
    SelectRows({"a.wav"});
    EXPECT_THAT(SelectedNames(), ElementsAre("a.wav"));
    EXPECT_FALSE(mController.tableViewShouldSelectRow(0));
    EXPECT_TRUE(mController.tableViewShouldSelectRow(1));
    EXPECT_TRUE(mController.tableViewShouldSelectRow(2));
    EXPECT_TRUE(mController.tableViewShouldSelectRow(-1));

    DoubleClickRow("Live");
    EXPECT_EQ(Directory(), "/Music/Live");
}

TEST_F(Browsing, QuestionsAboutRowsThatAreNotThereGetEmptyAnswers) {
    ConnectToNestedFolders();
    EXPECT_EQ(mController.numberOfRowsInTableView(), 2);
    for (const int row : {-1, 2, 1000}) {
        EXPECT_EQ(mController.tableViewObjectValueForTableColumn("Name", row), "");
        EXPECT_TRUE(mController.tableViewShouldSelectRow(row));
    }
    EXPECT_EQ(mController.tableViewObjectValueForTableColumn("waveform", 0), "");
    EXPECT_EQ(mController.tableViewObjectValueForTableColumn("", 0), "");
    EXPECT_FALSE(mController.tableViewShouldShowCellExpansionForTableColumn("Name", 0));
}

// --- The model behind it ---

TEST_F(Browsing, TheTableModelKeepsItsPromises) {
    const QAbstractItemModelTester tester(Table().model(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    ConnectToNestedFolders();
    ClickHeader(0);
    SelectRows({"Music"});
    Key(Qt::Key_Return);
    Press("Back");
    Press("Disconnect");
    EXPECT_THAT(RowNames(), IsEmpty());
}

TEST_F(Browsing, AResizedColumnKeepsTheSelection) {
    ConnectToNestedFolders();
    SelectRows({"Music"});
    Table().horizontalHeader()->resizeSection(0, 200);
    EXPECT_THAT(SelectedNames(), ElementsAre("Music"));
}

TEST_F(Browsing, ADoubleClickOnAColumnsEdgeFitsIt) {
    mDevice.AddFile("a.wav");
    Connect();
    QHeaderView& header = *Table().horizontalHeader();
    const int before = header.sectionSize(0);
    const QPoint edge(header.sectionViewportPosition(1) - 1, header.height() / 2);
    QTest::mouseMove(header.viewport(), edge);
    QTest::mouseDClick(header.viewport(), Qt::LeftButton, Qt::NoModifier, edge);
    const int fitted = header.sectionSize(0);
    EXPECT_LT(fitted, before);
    Table().resizeColumnToContents(0);
    EXPECT_EQ(header.sectionSize(0), fitted);
}

} // namespace
