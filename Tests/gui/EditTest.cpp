#include "ClientProbe.h"
#include "DownloadFixture.h"
#include "ProgressController.h"

#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMessageBox>
#include <gmock/gmock.h>

#include <array>
#include <set>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr const char* kQuestion = "Delete files";
constexpr const char* kPrompt = "Create Folder";
constexpr const char* kCreateFailed = "Create Folder Failed";

/// Deleting, and making folders.
class Edit : public DownloadFixture {
protected:
    void SetUp() override {
        DownloadFixture::SetUp();
        mDevice.AddFile("1.wav");
        mDevice.AddFile("2.wav");
        mDevice.AddFile("3.wav");
        mDevice.AddFolder("Beats");
        Connect();
    }

    /// Answers the question and returns what it said.
    std::shared_ptr<std::string> AnswerQuestion(Meanwhile& zrMeanwhile, const char* zButton) {
        mAnswersAlerts = false;
        auto said = std::make_shared<std::string>();
        zrMeanwhile.WhenShown(kQuestion, [this, said, zButton](QWidget& zrAlert) {
            *said = static_cast<QMessageBox&>(zrAlert).informativeText().toStdString();
            mAnswersAlerts = true;
            Click<QPushButton>(zrAlert, zButton);
        });
        return said;
    }

    /// Selects, presses Delete, says OK and returns the question.
    std::string Delete(const Names& zNames) {
        SelectRows(zNames);
        Meanwhile meanwhile;
        const auto said = AnswerQuestion(meanwhile, "OK");
        Press("Delete");
        return *said;
    }

    /// What the progress window says in the passes of the event loop during an action.
    std::set<std::string> ProgressOf(const std::function<void()>& zAction) {
        std::set<std::string> shown;
        QTimer look;
        QObject::connect(&look, &QTimer::timeout, &look, [&] {
            shown.insert(ProgressWindow().windowTitle().toStdString() + ": " + CurrentItem() + ", " +
                         std::to_string(Position()));
        });
        look.start(0);
        zAction();
        return shown;
    }

    static void Type(QWidget& zrPrompt, const std::string& zName, const char* zButton = "OK") {
        Control<QLineEdit>(zrPrompt, "Folder name").setText(QString::fromStdString(zName));
        Click<QPushButton>(zrPrompt, zButton);
    }

    void CreateFolder(const std::string& zName) {
        Meanwhile meanwhile;
        meanwhile.WhenShown(kPrompt, [zName](QWidget& zrPrompt) { Type(zrPrompt, zName); });
        Press("Create Folder");
    }

    /// The folder was listed and nothing else happened.
    void ExpectOnlyListed() {
        EXPECT_THAT(mDevice.Commands(), ElementsAre(mDevice.DirCommand("")));
        mDevice.ForgetCommands();
    }
};

// --- Delete ---

TEST_F(Edit, DeletesAFileAfterAQuestion) {
    EXPECT_EQ(
        Delete({"2.wav"}),
        "Are you sure you want to delete this file from 'Scripted:/'?  This operation cannot be undone.");
    EXPECT_THAT(mDevice.Commands(), ElementsAre(mDevice.DeleteCommand("2.wav"), mDevice.DirCommand("")));
    EXPECT_THAT(RowNames(), ElementsAre("Beats", "1.wav", "3.wav"));
    EXPECT_THAT(SelectedNames(), IsEmpty());
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(Edit, DeletesAFolderInAFolder) {
    mDevice.AddFolder("Beats/Old");
    DoubleClickRow("Beats");
    EXPECT_EQ(Delete({"Old"}), "Are you sure you want to delete this folder from 'Scripted:/Beats'?  This "
                               "operation cannot be undone.");
    EXPECT_EQ(mDevice.CountOf(mDevice.DeleteCommand("Beats/Old")), 1);
    EXPECT_EQ(Directory(), "/Beats");
    EXPECT_THAT(RowNames(), IsEmpty());
}

TEST_F(Edit, DeletesSeveralItemsFromTopToBottom) {
    EXPECT_EQ(Delete({"3.wav", "1.wav", "Beats"}),
              "Are you sure you want to delete 3 files from 'Scripted:/'?  This operation cannot be undone.");
    EXPECT_THAT(mDevice.Commands(),
                ElementsAre(mDevice.DeleteCommand("Beats"), mDevice.DeleteCommand("1.wav"),
                            mDevice.DeleteCommand("3.wav"), mDevice.DirCommand("")));
    EXPECT_THAT(RowNames(), ElementsAre("2.wav"));
}

TEST_F(Edit, TheQuestionIsWholeHoweverLongTheNamesAre) {
    const std::string folder(200, 'n');
    mDevice.AddFile(folder + "/1.wav");
    mDevice.AddFolder(folder);
    Key(Qt::Key_F5);
    DoubleClickRow(folder);
    EXPECT_EQ(Delete({"1.wav"}), "Are you sure you want to delete this file from 'Scripted:/" + folder +
                                     "'?  This operation cannot be undone.");
}

TEST_F(Edit, ARowWithoutARecordCountsAndIsNotDeleted) {
    ControllerProbe::AddRowWithoutRecord(mController);
    SelectRows({"1.wav", "3.wav", ".."});
    EXPECT_FALSE(IsEnabled("Delete")) << "nobody has the right to delete it";
    Meanwhile meanwhile;
    const auto said = AnswerQuestion(meanwhile, "OK");
    mController.Perform(&Controller::OnDeleteButton);
    EXPECT_EQ(*said,
              "Are you sure you want to delete 3 files from 'Scripted:/'?  This operation cannot be undone.");
    EXPECT_THAT(mDevice.Commands(), ElementsAre(mDevice.DeleteCommand("1.wav"),
                                                mDevice.DeleteCommand("3.wav"), mDevice.DirCommand("")));
}

TEST_F(Edit, ARowWithoutARecordHasItsNumberInTheProgress) {
    ControllerProbe::AddRowWithoutRecord(mController);
    Table().sortByColumn(0, Qt::AscendingOrder); // ".." comes first
    ASSERT_EQ(RowNames().front(), "..");
    const std::set<std::string> shown = ProgressOf([this] {
        SelectRows({"..", "1.wav", "3.wav"});
        Meanwhile meanwhile;
        AnswerQuestion(meanwhile, "OK");
        mController.Perform(&Controller::OnDeleteButton);
    });
    EXPECT_THAT(shown, ::testing::IsSupersetOf(
                           {"Deleting files: File 2 of 3, 333", "Deleting files: File 3 of 3, 667"}));
    EXPECT_EQ(mDevice.CountOf("<cmd del>"), 2);
}

TEST_F(Edit, ARowWithoutARecordAloneIsCalledAFile) {
    ControllerProbe::AddRowWithoutRecord(mController);
    SelectRows({".."});
    Meanwhile meanwhile;
    const auto said = AnswerQuestion(meanwhile, "OK");
    mController.Perform(&Controller::OnDeleteButton);
    EXPECT_EQ(
        *said,
        "Are you sure you want to delete this file from 'Scripted:/'?  This operation cannot be undone.");
    ExpectOnlyListed();
}

TEST_F(Edit, NothingIsDeletedWithoutOk) {
    SelectRows({"1.wav"});
    for (const char* button : {"Cancel", ""}) {
        Meanwhile meanwhile;
        mAnswersAlerts = false;
        meanwhile.WhenShown(kQuestion, [button](QWidget& zrAlert) {
            if (*button == '\0') {
                QTest::keyClick(&zrAlert, Qt::Key_Escape);
            } else {
                Click<QPushButton>(zrAlert, button);
            }
        });
        Press("Delete");
        EXPECT_THAT(mDevice.Commands(), IsEmpty());
        EXPECT_THAT(SelectedNames(), ElementsAre("1.wav"));
    }
}

TEST_F(Edit, DeleteWithoutASelectionSaysWhatToDo) {
    mController.Perform(&Controller::OnDeleteButton);
    EXPECT_THAT(mAlerts,
                ElementsAre(sAlert{"No files selected", "Please select the files you wish to delete"}));
    EXPECT_THAT(mDevice.Commands(), IsEmpty());
}

TEST_F(Edit, NothingHappensWithoutAConnection) {
    Press("Disconnect");
    mController.Perform(&Controller::OnDeleteButton);
    mController.Perform(&Controller::OnCreateFolderButton);
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_EQ(TitleInFront(), "");
}

TEST_F(Edit, ShowsHowFarItIs) {
    const std::set<std::string> shown = ProgressOf([this] { Delete({"1.wav", "2.wav"}); });
    EXPECT_THAT(shown, ::testing::IsSupersetOf(
                           {"Deleting files: File 1 of 2, 0", "Deleting files: File 2 of 2, 500"}));
}

TEST_F(Edit, CancelDoesNotKeepTheRemainingItems) {
    bool cancelled = false;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &look, [&] {
        if (!cancelled && CurrentItem() == "File 1 of 3") {
            cancelled = true;
            ProgressWindow().cancelDlg();
        }
    });
    look.start(0);
    Delete({"1.wav", "2.wav", "3.wav"});
    EXPECT_TRUE(cancelled);
    EXPECT_EQ(mDevice.CountOf("<cmd del>"), 3);
    EXPECT_TRUE(mController.IsConnected());
}

TEST_F(Edit, WhatTheDeviceRefusesStaysAndTheOthersGo) {
    mDevice.mOnCommand = [this](const std::string& zCommand) {
        return zCommand == mDevice.DeleteCommand("1.wav") ? std::optional<std::string>("") : std::nullopt;
    };
    Delete({"1.wav", "2.wav"});
    EXPECT_THAT(RowNames(), ElementsAre("Beats", "1.wav", "3.wav"));
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(Edit, ANameThatLeadsElsewhereIsNotDeleted) {
    AnswerListing("", {Item("..", "File", 1), Item("a/../b", "File", 1), Item("2.wav", "File", 1)});
    Key(Qt::Key_F5);
    mDevice.ForgetCommands();
    SelectRows({"..", "a/../b", "2.wav"});
    Meanwhile meanwhile;
    AnswerQuestion(meanwhile, "OK");
    mController.Perform(&Controller::OnDeleteButton);
    EXPECT_THAT(mDevice.Commands(), ElementsAre(mDevice.DeleteCommand("2.wav"), mDevice.DirCommand("")));
}

TEST_F(Edit, NothingIsBegunWhileAnAnswerIsStillDue) {
    mDevice.AddFolder("Beats/Old");
    DoubleClickRow("Beats");
    mDevice.ForgetCommands();
    AnswerTo(DirRecurseCommand("Beats/Old"), "");
    Meanwhile meanwhile;
    meanwhile.WhenShown(kReading, [](QWidget& zrProgress) { Click<QPushButton>(zrProgress, "Cancel"); });
    Download({"Old"});
    ASSERT_THAT(RowNames(), ElementsAre("Old"));
    SelectRows({"Old"});
    Press("Delete");
    Press("Create Folder");
    const std::string waiting = "Waiting for operation to finish";
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{"Delete failed", waiting}, sAlert{kCreateFailed, waiting}));
    EXPECT_EQ(mDevice.CountOf("<cmd del>") + mDevice.CountOf("<cmd md>"), 0);
    EXPECT_THAT(RowNames(), ElementsAre("Old"));
}

TEST_F(Edit, APathTooLongIsPassedOverAndSaid) {
    const std::string name(250, 'n');
    mDevice.AddFile(name);
    Key(Qt::Key_F5);
    mDevice.ForgetCommands();
    Delete({"1.wav", name});
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{"Delete failed", name + " - Path too long"}));
    EXPECT_THAT(mDevice.Commands(), ElementsAre(mDevice.DeleteCommand("1.wav"), mDevice.DirCommand("")));
}

TEST_F(Edit, AConnectionThatIsLostDuringTheQuestionEndsIt) {
    SelectRows({"1.wav"});
    Meanwhile meanwhile;
    mAnswersAlerts = false;
    meanwhile
        .When(
            "the question", [] { return WindowInFront(kQuestion) != nullptr; },
            [this] { mDevice.DropConnection(); })
        .When("the lost connection", [this] { return !mController.IsConnected(); })
        .Answer(kQuestion, "OK");
    Press("Delete");
    EXPECT_EQ(mDevice.CountOf("<cmd del>"), 0);
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_NE(Table().accessibleDescription(), "") << "the empty table says how to begin";
}

TEST_F(Edit, AConnectionThatIsLostMeanwhileEndsIt) {
    mDevice.mOnCommand = [this](const std::string& zCommand) -> std::optional<std::string> {
        if (zCommand.starts_with("<cmd del>")) {
            mDevice.DropConnection();
        }
        return std::nullopt;
    };
    Delete({"1.wav", "2.wav", "3.wav"});
    EXPECT_TRUE(WaitFor([this] { return !mController.IsConnected(); }));
    EXPECT_THAT(RowNames(), IsEmpty());
    EXPECT_FALSE(ProgressWindow().isVisible());
}

// --- Create Folder ---

TEST_F(Edit, CreatesAFolder) {
    CreateFolder("New beats");
    EXPECT_THAT(mDevice.Commands(), ElementsAre(mDevice.MakeDirCommand("New beats"), mDevice.DirCommand("")));
    EXPECT_THAT(RowNames(), ElementsAre("Beats", "New beats", "1.wav", "2.wav", "3.wav"));
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_FALSE(ProgressWindow().isVisible());
}

TEST_F(Edit, CreatesAFolderInTheFolderShown) {
    DoubleClickRow("Beats");
    CreateFolder("New");
    EXPECT_EQ(mDevice.CountOf(mDevice.MakeDirCommand("Beats/New")), 1);
    EXPECT_THAT(RowNames(), ElementsAre("New"));
}

TEST_F(Edit, ANewFolderGetsThePlainFormOfItsName) {
    CreateFolder("Ångström Recordings 2009 and later");
    EXPECT_EQ(mDevice.CountOf(mDevice.MakeDirCommand("Angstrom Recordings 2009")), 1);
}

TEST_F(Edit, ATakenNameIsRefusedWhateverItsCase) {
    mDevice.AddFile("Notes", "x");
    Key(Qt::Key_F5);
    for (const char* name : {"notes", "NOTES", "beats", "Nötes"}) {
        mDevice.ForgetCommands();
        mAlerts.clear();
        CreateFolder(name);
        const std::string plain = std::string(name) == "Nötes" ? "Notes" : name;
        EXPECT_THAT(mAlerts, ElementsAre(sAlert{"File already exists",
                                                "A file or folder called '" + plain +
                                                    "' already exists.  Please try another name."}));
        ExpectOnlyListed();
    }
}

TEST_F(Edit, ANameThatLeadsElsewhereIsRefused) {
    for (const char* name : {".", "..", "a/b", "/", "../up", "twenty-four bytes and then/x"}) {
        mAlerts.clear();
        CreateFolder(name);
        EXPECT_THAT(mAlerts, ElementsAre(sAlert{kCreateFailed,
                                                "'" + std::string(name) + "' is not a valid folder name."}));
        EXPECT_THAT(mDevice.Commands(), IsEmpty());
    }
}

TEST_F(Edit, APathTooLongForANewFolderIsSaid) {
    const std::string folder(215, 'n');
    mDevice.AddFolder(folder);
    Key(Qt::Key_F5);
    DoubleClickRow(folder);
    mDevice.ForgetCommands();
    CreateFolder("twenty characters...");
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kCreateFailed, "twenty characters... - Path too long"}));
    EXPECT_EQ(mDevice.CountOf("<cmd md>"), 0);
}

TEST_F(Edit, NoNameDoesNothing) {
    for (const char* button : {"OK", "Cancel"}) {
        Meanwhile meanwhile;
        meanwhile.WhenShown(kPrompt, [button](QWidget& zrPrompt) {
            Type(zrPrompt, std::string(button) == "OK" ? "" : "typed", button);
        });
        Press("Create Folder");
        EXPECT_THAT(mDevice.Commands(), IsEmpty());
    }
}

TEST_F(Edit, AFolderThatTheDeviceDoesNotMakeIsNotShown) {
    mDevice.mOnCommand = [this](const std::string& zCommand) {
        return zCommand == mDevice.MakeDirCommand("New") ? std::optional<std::string>("") : std::nullopt;
    };
    CreateFolder("New");
    EXPECT_THAT(RowNames(), ElementsAre("Beats", "1.wav", "2.wav", "3.wav"));
    EXPECT_THAT(mAlerts, IsEmpty());
}

// --- Every way to it ---

struct sAction {
    const char* name;
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    const char* title; ///< of what comes up
};

constexpr std::array<sAction, 2> kActions = {
    {{"Create Folder", Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier, kPrompt},
     {"Delete", Qt::Key_Delete, Qt::NoModifier, kQuestion}}};

TEST_F(Edit, GoesByMouseKeyMenuContextMenuAndAssistiveTools) {
    mAnswersAlerts = false;
    for (const sAction& row : kActions) {
        const std::array<std::function<void()>, 5> ways = {
            [&] { Press(row.name); },
            [&] { MenuEntry(row.name).trigger(); },
            [&] { Key(row.key, row.modifiers); },
            [&] { PressByAssistiveTool(row.name); },
            [&] {
                for (QAction* action : Table().actions()) {
                    if (action == &MenuEntry(row.name)) {
                        action->trigger();
                    }
                }
            },
        };
        for (std::size_t way = 0; way < ways.size(); ++way) {
            SCOPED_TRACE(std::string(row.name) + " " + std::to_string(way));
            Key(Qt::Key_F5);
            SelectRows({"1.wav"});
            mDevice.ForgetCommands();
            Meanwhile meanwhile;
            meanwhile.Answer(row.title, "Cancel");
            ways[way]();
            EXPECT_TRUE(WaitFor([&] { return meanwhile.HasEnded(); }));
            EXPECT_THAT(mDevice.Commands(), IsEmpty());
        }
    }
}

TEST_F(Edit, WhatIsNotAllowedCannotBeAskedFor) {
    mDevice.SetFolderRights("", "--r");
    mDevice.Remove("1.wav");
    mDevice.AddFile("1.wav", "x", "--r");
    Key(Qt::Key_F5);
    SelectRows({"1.wav"});
    mDevice.ForgetCommands();
    for (const sAction& row : kActions) {
        Key(row.key, row.modifiers);
        EXPECT_FALSE(MenuEntry(row.name).isEnabled());
        EXPECT_EQ(TitleInFront(), "") << row.name;
    }
}

} // namespace
