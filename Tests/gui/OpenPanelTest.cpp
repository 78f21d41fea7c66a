#include "OpenPanel.h"

#include "Hermetic.h"
#include "ModalSession.h"
#include "WaitFor.h"
#include "WidgetDriver.h"

#include <QtWidgets/QFileDialog>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QTreeView>
#include <gmock/gmock.h>

#include <functional>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class OpenPanelTest : public ::testing::Test {
protected:
    void SetUp() override {
        ShowActive(mMain);
        mFiles.title = "Upload files to 'Box:/'";
        mFiles.initialFolder = mFolder.Path().string();
        mFolders = mFiles;
        mFolders.canChooseFiles = false;
        mFolders.canChooseFolders = true;
        mFolders.canCreateFolders = true;
    }

    std::vector<std::string> Run(const sOpenPanelRequest& zrRequest,
                                 const std::function<void(QFileDialog&)>& zAct) {
        const Answer<QFileDialog> answer(zAct);
        return FileDialogPanel().Run(&mMain, zrRequest);
    }

    /// Types into the name field as a person would who knows the path.
    static void Enter(QFileDialog& zrDialog, const std::string& zText) {
        auto* field = zrDialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        field->setText(QString::fromStdString(zText));
        QTest::keyClick(field, Qt::Key_Return);
    }

    QMainWindow mMain;
    TestFolder mFolder;
    sOpenPanelRequest mFiles;
    sOpenPanelRequest mFolders;
    FileDialogPanel mPanel;
};

TEST_F(OpenPanelTest, GivesTheChosenFile) {
    const std::string path = mFolder.Write("gr\xC3\xBC\xC3\x9F 100%.wav", "x");
    EXPECT_THAT(Run(mFiles, [&](QFileDialog& zrDialog) { Enter(zrDialog, path); }), ElementsAre(path));
}

TEST_F(OpenPanelTest, GivesSeveralFilesWhereAllowed) {
    const std::string first = mFolder.Write("a.wav", "x");
    const std::string second = mFolder.Write("b.wav", "x");
    mFiles.allowsMultiple = true;
    EXPECT_THAT(Run(mFiles, [&](QFileDialog& zrDialog) { Enter(zrDialog, R"("a.wav" "b.wav")"); }),
                UnorderedElementsAre(first, second));
}

TEST_F(OpenPanelTest, GivesTheChosenFolder) {
    const std::string file = mFolder.Write("Beats/a.wav", "x");
    const std::string folder = file.substr(0, file.rfind('/'));
    EXPECT_THAT(Run(mFolders, [&](QFileDialog& zrDialog) { Enter(zrDialog, folder); }), ElementsAre(folder));
}

TEST_F(OpenPanelTest, ShowsWhatWasAskedFor) {
    mFiles.allowsMultiple = true;
    mFiles.allowedTypes = {"wav", "aif"};
    Run(mFiles, [&](QFileDialog& zrDialog) {
        EXPECT_EQ(zrDialog.windowTitle(), QStringLiteral("Upload files to 'Box:/'"));
        EXPECT_EQ(zrDialog.fileMode(), QFileDialog::ExistingFiles);
        EXPECT_EQ(zrDialog.nameFilters(), QStringList{QStringLiteral("Files (*.wav *.aif)")});
        EXPECT_EQ(zrDialog.directory().absolutePath().toStdString(), mFolder.Path().string());
        EXPECT_TRUE(zrDialog.testOption(QFileDialog::ReadOnly));
        EXPECT_FALSE(zrDialog.isModal());
        zrDialog.close();
    });
    Run(mFolders, [&](QFileDialog& zrDialog) {
        EXPECT_EQ(zrDialog.fileMode(), QFileDialog::Directory);
        EXPECT_TRUE(zrDialog.testOption(QFileDialog::ShowDirsOnly));
        EXPECT_FALSE(zrDialog.testOption(QFileDialog::ReadOnly));
        zrDialog.close();
    });
}

TEST_F(OpenPanelTest, IsWideEnoughForItsColumns) {
    mFolder.Write("a.wav", "x");
    Run(mFiles, [](QFileDialog& zrDialog) {
        const auto* const list = zrDialog.findChild<QTreeView*>(QStringLiteral("treeView"));
        const QHeaderView& header = *list->header();
        EXPECT_TRUE(WaitFor([&] { return list->model()->rowCount(list->rootIndex()) == 1; }));
        for (const int column : {2, 3}) { // kind and date
            EXPECT_GE(list->columnWidth(column), header.sectionSizeHint(column)) << column;
            const QModelIndex cell = list->model()->index(0, column, list->rootIndex());
            const int words = list->fontMetrics().horizontalAdvance(cell.data().toString());
            EXPECT_TRUE(WaitFor([&] { return list->columnWidth(column) >= words; })) << column;
        }
        EXPECT_LE(header.length(), list->viewport()->width());
        zrDialog.reject();
    });
}

TEST_F(OpenPanelTest, OneFileOnlyUnlessMoreAreAllowed) {
    Run(mFiles, [](QFileDialog& zrDialog) {
        EXPECT_EQ(zrDialog.fileMode(), QFileDialog::ExistingFile);
        zrDialog.close();
    });
}

TEST_F(OpenPanelTest, StartsAtHomeWhereTheFolderIsGone) {
    for (const std::string& folder : {mFolder / "gone", std::string()}) {
        mFiles.initialFolder = folder;
        Run(mFiles, [](QFileDialog& zrDialog) {
            EXPECT_EQ(zrDialog.directory().absolutePath(), QDir::homePath());
            zrDialog.close();
        });
    }
}

TEST_F(OpenPanelTest, DismissingGivesNothing) {
    mFolder.Write("a.wav", "x");
    EXPECT_THAT(Run(mFiles, [](QFileDialog& zrDialog) { QTest::keyClick(&zrDialog, Qt::Key_Escape); }),
                IsEmpty());
    EXPECT_THAT(Run(mFiles, [](QFileDialog& zrDialog) { CloseByFrame(zrDialog); }), IsEmpty());
    EXPECT_THAT(Run(mFiles, [](QFileDialog& /*zrDialog*/) { ModalSession::StopAll(); }), IsEmpty());
}

TEST_F(OpenPanelTest, QuittingWorksWhileThePanelReportsAMissingFile) {
    bool reported = false;
    EXPECT_THAT(Run(mFiles,
                    [&](QFileDialog& zrDialog) {
                        const Answer<QMessageBox> answer([&](QMessageBox& zrBox) {
                            reported = true;
                            EXPECT_FALSE(zrBox.isModal());
                            ModalSession::StopAll();
                        });
                        Enter(zrDialog, "no such file");
                    }),
                IsEmpty());
    EXPECT_TRUE(reported);
}

} // namespace
