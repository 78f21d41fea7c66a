#include "ClientProbe.h"
#include "CommonUtils_OSX.h"
#include "LocalUrl.h"
#include "ProgressController.h"
#include "Settings.h"
#include "UploadFixture.h"

#include <QtCore/QMimeData>
#include <QtCore/QSysInfo>
#include <QtCore/QUrl>
#include <QtGui/QDropEvent>
#include <QtGui/QImage>
#include <gmock/gmock.h>

#include <filesystem>
#include <functional>
#include <memory>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

// --- What a URL stands for ---

struct sUrlCase {
    const char* url;
    const char* path; ///< "" for none
};

TEST(LocalPath, IsWhatTheUrlStandsForByteForByte) {
    for (const sUrlCase& row : {sUrlCase{"file:///tmp/a%20b.wav", "/tmp/a b.wav"},
                                {"file:///tmp/100%25%23%27%26%3F.wav", "/tmp/100%#'&?.wav"},
                                {"file:///tmp/%C3%A4.wav", "/tmp/\xC3\xA4.wav"},
                                {"file:///tmp/not-text-%FF.wav", "/tmp/not-text-\xFF.wav"},
                                {"file://localhost/tmp/a", "/tmp/a"},
                                {"file:///", "/"},
                                {"file:///folder/", "/folder/"},
                                {"file://elsewhere/tmp/a", ""},
                                {"file:///tmp/a%00b", ""},
                                {"file:///tmp/a#b", ""},
                                {"file:///tmp/a?b", ""},
                                {"file:relative", ""},
                                {"http://localhost/tmp/a", ""},
                                {"https://example.org/", ""},
                                {"/tmp/a", ""},
                                {"", ""}}) {
        EXPECT_EQ(LocalPath(QUrl(QString::fromLatin1(row.url))).value_or(""), row.path) << row.url;
    }
}

TEST(LocalPath, ThisComputerMayBeNamed) {
    QUrl url(QStringLiteral("file:///tmp/a"));
    url.setHost(QSysInfo::machineHostName());
    EXPECT_EQ(LocalPath(url), "/tmp/a");
}

// --- Drops ---

/// What other programs drag over the table and drop there.
class Drops : public UploadFixture {
protected:
    void SetUp() override {
        UploadFixture::SetUp();
        mDevice.AddFolder("Beats");
        mDevice.AddFile("old.wav");
        Connect();
    }

    QMimeData& Drag(const Names& zNames) {
        QList<QUrl> urls;
        for (const std::string& name : zNames) {
            urls.append(QUrl::fromLocalFile(QString::fromStdString(mFolder / name)));
        }
        mData.setUrls(urls);
        return mData;
    }

    /// The place of a row, or of the empty part below the rows.
    QPoint Place(int zRow) {
        return zRow < 0 ? QPoint(50, Table().viewport()->height() - 5)
                        : Table().visualRect(Table().model()->index(zRow, 0)).center();
    }

    /// Whether the table takes what is held over it, as a copy.
    bool IsTaken(int zRow = -1) {
        QDragEnterEvent enter(Place(zRow), Qt::CopyAction | Qt::MoveAction, &mData, Qt::LeftButton,
                              Qt::NoModifier);
        QCoreApplication::sendEvent(Table().viewport(), &enter);
        QDragMoveEvent move(Place(zRow), Qt::CopyAction | Qt::MoveAction, &mData, Qt::LeftButton,
                            Qt::NoModifier);
        QCoreApplication::sendEvent(Table().viewport(), &move);
        EXPECT_EQ(enter.isAccepted(), move.isAccepted());
        return move.isAccepted() && move.dropAction() == Qt::CopyAction;
    }

    /// Drops it there. What that leads to happens when the event loop runs.
    bool Release(int zRow = -1) {
        QDropEvent drop(Place(zRow), Qt::CopyAction | Qt::MoveAction, &mData, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(Table().viewport(), &drop);
        return drop.isAccepted();
    }

    /// Drops it and waits until the folder has been listed after it.
    void DropAndWait(int zRow = -1) {
        const int before = mDevice.CountOf("<cmd dir>");
        EXPECT_TRUE(IsTaken(zRow));
        EXPECT_TRUE(Release(zRow));
        EXPECT_TRUE(WaitFor([&] { return mDevice.CountOf("<cmd dir>") > before && !RowNames().empty(); }));
        RunLoopPasses(3);
    }

    QMimeData mData;
};

TEST_F(Drops, FilesAndFoldersGoIntoTheFolderShown) {
    mFolder.Write("a b.txt", "a");
    mFolder.Write("100%#'&.txt", "b");
    mFolder.Write("Ordner/Größe.txt", "c");
    Drag({"a b.txt", "100%#'&.txt", "Ordner"});
    DropAndWait();
    EXPECT_THAT(Sent(), UnorderedElementsAre("a b.txt", "100%#'&.txt", "Ordner/Grosse.txt"));
    EXPECT_EQ(Received("Ordner/Grosse.txt"), "c");
    EXPECT_THAT(RowNames(), UnorderedElementsAre("Beats", "Ordner", "old.wav", "a b.txt", "100%#'&.txt"));
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(Drops, TheRowDoesNotMatter) {
    mFolder.Write("a.txt", "a");
    Drag({"a.txt"});
    ASSERT_EQ(RowNames().front(), "Beats");
    for (const int row : {0, 1, -1}) {
        mDevice.ForgetCommands();
        mDevice.Remove("a.txt");
        Key(Qt::Key_F5);
        DropAndWait(row);
        EXPECT_THAT(Sent(), ElementsAre("a.txt")) << row;
    }
}

TEST_F(Drops, GoIntoAFolderThatIsOpenAndEmpty) {
    mFolder.Write("a.txt", "a");
    DoubleClickRow("Beats");
    Drag({"a.txt"});
    DropAndWait();
    EXPECT_THAT(Sent(), ElementsAre("Beats/a.txt"));
    EXPECT_EQ(Directory(), "/Beats");
}

TEST_F(Drops, TheOtherProgramDoesNotWaitForTheUpload) {
    mFolder.Write("a.txt", "a");
    Drag({"a.txt"});
    ASSERT_TRUE(IsTaken());
    ASSERT_TRUE(Release());
    EXPECT_THAT(mDevice.Commands(), IsEmpty());
    EXPECT_FALSE(ProgressWindow().isVisible());
    mData.clear(); // the drag is over before the upload begins
    EXPECT_TRUE(WaitFor([this] { return mDevice.CountOf("<cmd dir>") == 1 && RowNames().size() == 3; }));
}

TEST_F(Drops, AreLogged) {
    mFolder.Write("a.txt", "a");
    Drag({"a.txt"});
    ::testing::internal::CaptureStdout();
    EXPECT_TRUE(IsTaken(0));
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "validate Drop\nvalidate Drop\n");
}

TEST_F(Drops, FiveHundredFilesArrive) {
    Names names;
    for (int number = 0; number < 500; ++number) {
        names.push_back(std::to_string(number) + ".txt");
        mFolder.Write(names.back(), names.back());
    }
    Drag(names);
    DropAndWait();
    EXPECT_EQ(Sent().size(), 500U);
    EXPECT_EQ(Received("499.txt"), "499.txt");
}

TEST_F(Drops, AnUploadThatFailsIsSaid) {
    const std::string folder(240, 'n');
    mFolder.Write(folder + "/long.txt", "x");
    Drag({folder});
    DropAndWait();
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kUploadFailed, "long.txt - Path too long"}));
}

// --- What is refused ---

TEST_F(Drops, AReadOnlyFolderTakesNothingAndSaysSo) {
    mDevice.SetFolderRights("", "--r");
    Key(Qt::Key_F5);
    mDevice.ForgetCommands();
    mFolder.Write("a.txt", "a");
    Drag({"a.txt"});
    EXPECT_TRUE(IsTaken());
    EXPECT_TRUE(Release());
    EXPECT_TRUE(WaitFor([this] { return !mAlerts.empty(); }));
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{"File drop failed", "This folder is read only."}));
    EXPECT_FALSE(mController.tableViewAcceptDrop({mFolder / "a.txt"}, 0));
    EXPECT_THAT(mDevice.Commands(), IsEmpty());
}

TEST_F(Drops, NothingIsTakenWithoutAConnection) {
    mFolder.Write("a.txt", "a");
    Drag({"a.txt"});
    Press("Disconnect");
    EXPECT_FALSE(IsTaken() && Release());
    EXPECT_FALSE(mController.tableViewAcceptDrop({mFolder / "a.txt"}, 0));
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(Drops, WhatIsNoLocalFileIsRefusedWithoutAWord) {
    const std::vector<std::function<void(QMimeData&)>> contents = {
        [](QMimeData& data) { data.setText(QStringLiteral("/tmp/a")); },
        [](QMimeData& data) { data.setHtml(QStringLiteral("<a href='file:///tmp/a'>a</a>")); },
        [](QMimeData& data) { data.setImageData(QImage(4, 4, QImage::Format_RGB32)); },
        [](QMimeData& data) { data.setUrls({QUrl(QStringLiteral("https://example.org/a.wav"))}); },
        [](QMimeData& data) { data.setUrls({QUrl(QStringLiteral("file://elsewhere/a.wav"))}); },
        [](QMimeData& data) { data.setUrls({}); },
        [](QMimeData& /*data*/) {},
    };
    for (std::size_t number = 0; number < contents.size(); ++number) {
        mData.clear();
        contents[number](mData);
        EXPECT_FALSE(IsTaken()) << number;
        EXPECT_FALSE(Release()) << number;
    }
    RunLoopFor(std::chrono::milliseconds(20));
    EXPECT_THAT(mDevice.Commands(), IsEmpty());
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(Drops, OfSeveralThingsTheLocalFilesGo) {
    mFolder.Write("a.txt", "a");
    Drag({"a.txt"}).setUrls(QList<QUrl>{QUrl(QStringLiteral("https://example.org/b"))} + mData.urls());
    DropAndWait();
    EXPECT_THAT(Sent(), ElementsAre("a.txt"));
}

TEST_F(Drops, NothingIsTakenWhileSomethingElseGoesOn) {
    StallAt("2.dat");
    mFolder.Write("a.txt", "a");
    Drag({"a.txt"});
    Meanwhile meanwhile;
    meanwhile.When(
        "the middle of an upload", [this] { return IsInTheMiddleOf("2.dat"); },
        [this] {
            EXPECT_FALSE(IsTaken());
            EXPECT_FALSE(Release());
            Click<QPushButton>(ProgressWindow(), "Cancel");
        });
    Upload({"2.dat"});
    EXPECT_THAT(Sent(), ElementsAre("2.dat"));
}

// --- Out of the table ---

class PromisedFiles : public DownloadFixture {
protected:
    void SetUp() override {
        DownloadFixture::SetUp();
        mDevice.AddFile("a.wav", "a");
        mDevice.AddFile("b.wav", "b");
        mDevice.AddFile("empty.wav", "");
        mDevice.AddFolder("Beats");
        mDevice.AddFile("Beats/c.wav", "c");
        Connect();
    }

    void DropAtDestination(const std::string& zFolder) {
        mController.Perform(
            [&] { EXPECT_THAT(mController.namesOfPromisedFilesDroppedAtDestination(zFolder), IsEmpty()); });
    }
};

TEST_F(PromisedFiles, WhatIsSelectedIsDownloadedThere) {
    GetSettings().RecentDownloadPath = "/elsewhere";
    SelectRows({"a.wav", "Beats"});
    DropAtDestination(Destination());
    EXPECT_EQ(mFolder.Read("a.wav"), "a");
    EXPECT_EQ(mFolder.Read("Beats/c.wav"), "c");
    EXPECT_THAT(LocalTree(), ElementsAre("Beats/", "Beats/c.wav", "a.wav"));
    EXPECT_THAT(mPanel.mRequests, IsEmpty());
    EXPECT_EQ(GetSettings().RecentDownloadPath, "/elsewhere");
}

TEST_F(PromisedFiles, ComeByWayOfTheTable) {
    SelectRows({"a.wav"});
    emit Table().promiseDropped(Destination());
    EXPECT_EQ(mFolder.Read("a.wav"), "a");
}

TEST_F(PromisedFiles, AreRefusedWithALineInTheLogWhileSomethingElseGoesOn) {
    SelectRows({"a.wav"});
    ::testing::internal::CaptureStdout();
    mController.Perform([this] { emit Table().promiseDropped(Destination()); });
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Drop ignored: something else is going on\n");
    EXPECT_THAT(LocalTree(), IsEmpty());
}

TEST_F(PromisedFiles, TheDragIsTheControllersOwn) {
    SelectRows({"a.wav"});
    ::testing::internal::CaptureStdout();
    EXPECT_FALSE(mController.tableViewWriteRowsWithIndexes({0}));
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "writeRowsWithIndexes\n");
    EXPECT_FALSE(mController.tableViewWriteRowsWithIndexes({}));
}

TEST_F(PromisedFiles, WithoutAnythingToFetchNothingHappens) {
    ControllerProbe::AddRowWithoutRecord(mController);
    SelectRows({"empty.wav", ".."});
    DropAtDestination(Destination());
    Table().clearSelection();
    DropAtDestination(Destination());
    SelectRows({"a.wav"});
    DropAtDestination("");
    Press("Disconnect");
    DropAtDestination(Destination());
    EXPECT_THAT(LocalTree(), IsEmpty());
    EXPECT_THAT(mDevice.Commands(), IsEmpty());
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(PromisedFiles, ADownloadThatFailsIsSaid) {
    std::filesystem::create_directory(mFolder / "a.wav");
    SelectRows({"a.wav"});
    DropAtDestination(Destination());
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kFailed, "a.wav - Could not open file"}));
}

} // namespace
