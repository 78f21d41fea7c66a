#include "CopyFolderController.h"
#include "DownloadFixture.h"
#include "ProgressController.h"

#include <QtCore/QElapsedTimer>
#include <QtWidgets/QApplication>
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

constexpr const char* kPrompt = "Copy File";

/// Three files, two of which exist, and one more of those in a folder.
class DownloadPrompt : public DownloadFixture {
protected:
    void SetUp() override {
        DownloadFixture::SetUp();
        mDevice.AddFolder("f");
        mDevice.AddFile("f/0.wav", "new");
        for (const char* name : {"1.wav", "2.wav", "3.wav"}) {
            mDevice.AddFile(name, "new");
        }
        WriteOldFiles();
        Connect();
    }

    void WriteOldFiles() {
        for (const char* name : {"f/0.wav", "1.wav", "3.wav"}) {
            mFolder.Write(name, "old");
        }
    }

    void DownloadAll() { Download({"f", "1.wav", "2.wav", "3.wav"}); }

    /// The contents of the four files, in the order in which they are fetched.
    Names Contents() {
        return {mFolder.Read("f/0.wav"), mFolder.Read("1.wav"), mFolder.Read("2.wav"), mFolder.Read("3.wav")};
    }

    static void ExpectNoPrompt() {
        const QWidgetList windows = QApplication::topLevelWidgets();
        EXPECT_TRUE(std::ranges::none_of(windows, [](const QWidget* zpWindow) {
            return dynamic_cast<const CopyFolderController*>(zpWindow) != nullptr;
        })) << "an answered prompt is still there";
    }
};

TEST_F(DownloadPrompt, NamesTheWholeLocalPath) {
    Meanwhile meanwhile;
    meanwhile.WhenShown(kPrompt, [this](QWidget& zrPrompt) {
        const std::string exists = "A file with the name '" + mFolder / "f/0.wav" + "' already exists.";
        EXPECT_EQ(Control<QLabel>(zrPrompt, "What exists").text().toStdString(), exists);
        EXPECT_EQ(Control<QLabel>(zrPrompt, "Question").text(), "Do you want to replace it?");
        EXPECT_EQ(mDevice.CountOf("download"), 0) << "the question comes first";
        const QPoint offset = zrPrompt.geometry().center() - mWindow.geometry().center();
        EXPECT_LE(offset.manhattanLength(), 4) << "it stands over the middle of the main window";
        Click<QPushButton>(zrPrompt, "Cancel");
    });
    DownloadAll();
}

struct sAnswers {
    std::vector<const char*> buttons; ///< pressed in the prompts that come, one after the other
    std::vector<const char*> contents;
};

TEST_F(DownloadPrompt, EveryAnswerDoesWhatItSays) {
    const std::vector<sAnswers> cases = {
        {{"Yes", "Yes", "Yes"}, {"new", "new", "new", "new"}},
        {{"No", "No", "No"}, {"old", "old", "new", "old"}},
        {{"No", "Yes", "No"}, {"old", "new", "new", "old"}},
        {{"Yes to all"}, {"new", "new", "new", "new"}},
        {{"No", "Yes to all"}, {"old", "new", "new", "new"}},
        {{"Cancel"}, {"old", "old", "", "old"}},
        {{"Yes", "Cancel"}, {"new", "old", "", "old"}},
        {{"No", "No", "Cancel"}, {"old", "old", "new", "old"}},
    };
    for (const sAnswers& row : cases) {
        std::filesystem::remove(mFolder / "2.wav");
        WriteOldFiles();
        Meanwhile meanwhile;
        for (const char* button : row.buttons) {
            meanwhile.Answer(kPrompt, button);
        }
        DownloadAll();
        EXPECT_TRUE(std::ranges::equal(Contents(), row.contents))
            << row.buttons.front() << ": " << ::testing::PrintToString(Contents());
        EXPECT_TRUE(meanwhile.HasEnded());
        ExpectNoPrompt();
        EXPECT_FALSE(ProgressWindow().isVisible());
    }
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_THAT(LocalTree(), ElementsAre("1.wav", "2.wav", "3.wav", "f/", "f/0.wav"));
    EXPECT_EQ(mDevice.ConnectionCount(), 1);
}

TEST_F(DownloadPrompt, ClosingItIsCancel) {
    const std::vector<std::function<void(QWidget&)>> ways = {
        [](QWidget& zrPrompt) { QTest::keyClick(&zrPrompt, Qt::Key_Escape); },
        [](QWidget& zrPrompt) { EXPECT_FALSE(CloseByFrame(zrPrompt)) << "its owner closes it"; },
    };
    for (const auto& way : ways) {
        Meanwhile meanwhile;
        meanwhile.WhenShown(kPrompt, way);
        DownloadAll();
        EXPECT_THAT(Contents(), ElementsAre("old", "old", "", "old"));
        ExpectNoPrompt();
    }
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_THAT(RowNames(), UnorderedElementsAre("f", "1.wav", "2.wav", "3.wav"));
}

TEST_F(DownloadPrompt, WhatStandsWhereAFileArrivesIsAskedAboutToo) {
    for (const char* button : {"No", "Cancel", "Yes", "Yes to all"}) {
        mFolder.Write("2.wav.tmp", "mine");
        const bool replaces = *button == 'Y';
        Meanwhile meanwhile;
        meanwhile.WhenShown(kPrompt, [&](QWidget& zrPrompt) {
            const std::string exists = "A file with the name '" + mFolder / "2.wav.tmp" + "' already exists.";
            EXPECT_EQ(Control<QLabel>(zrPrompt, "What exists").text().toStdString(), exists);
            Click<QPushButton>(zrPrompt, button);
        });
        Download({"2.wav"});
        EXPECT_EQ(mFolder.Read("2.wav.tmp"), replaces ? "" : "mine") << button;
        EXPECT_EQ(mFolder.Read("2.wav"), replaces ? "new" : "") << button;
        std::filesystem::remove(mFolder / "2.wav");
    }
}

TEST_F(DownloadPrompt, AFileOfTheSameDownloadIsNotLostToAnother) {
    mDevice.AddFile("f/1.tmp", "first");
    mDevice.AddFile("f/1", "second");
    Meanwhile meanwhile;
    meanwhile.Answer(kPrompt, "Yes").Answer(kPrompt, "No");
    Download({"f"});
    EXPECT_EQ(mFolder.Read("f/1.tmp"), "first");
    EXPECT_THAT(LocalTree(), ElementsAre("1.wav", "3.wav", "f/", "f/0.wav", "f/1.tmp"));
}

TEST_F(DownloadPrompt, ALinkThatLeadsNowhereIsAskedAboutToo) {
    std::filesystem::create_symlink("nowhere", mFolder / "2.wav");
    Meanwhile meanwhile;
    meanwhile.Answer(kPrompt, "No");
    Download({"2.wav"});
    EXPECT_TRUE(std::filesystem::is_symlink(mFolder / "2.wav"));
}

TEST_F(DownloadPrompt, TheNextDownloadAsksAgain) {
    Meanwhile meanwhile;
    meanwhile.Answer(kPrompt, "Yes to all").Answer(kPrompt, "Yes to all");
    DownloadAll();
    EXPECT_FALSE(meanwhile.HasEnded());
    DownloadAll();
    EXPECT_TRUE(meanwhile.HasEnded());
}

TEST_F(DownloadPrompt, TheProgressWindowWaitsForItsAnswer) {
    Meanwhile meanwhile;
    QElapsedTimer sincePrompt;
    meanwhile
        .When(
            "the prompt", [] { return WindowInFront(kPrompt) != nullptr; },
            [this, &sincePrompt] {
                sincePrompt.start();
                mDevice.Hold();
            })
        .When(
            "twice its delay", [&sincePrompt] { return sincePrompt.hasExpired(400); },
            [this] { EXPECT_FALSE(ProgressWindow().isVisible()); })
        .Answer(kPrompt, "Yes")
        .When(
            "the progress window", [this] { return ProgressWindow().isVisible(); },
            [this] { mDevice.Release(); })
        .Answer(kPrompt, "Cancel");
    DownloadAll();
    EXPECT_TRUE(meanwhile.HasEnded());
    EXPECT_FALSE(ProgressWindow().isVisible());
}

TEST_F(DownloadPrompt, ALostConnectionEndsTheDownloadWithTheAnswer) {
    for (const char* button : {"Yes", "No", "Yes to all"}) {
        Meanwhile meanwhile;
        meanwhile
            .When(
                "the prompt", [] { return WindowInFront(kPrompt) != nullptr; },
                [this] { mDevice.DropConnection(); })
            .When("the lost connection", [this] { return !mController.IsConnected(); })
            .Answer(kPrompt, button);
        DownloadAll();
        EXPECT_THAT(mAlerts, ElementsAre(sAlert{kFailed, kClosed})) << button;
        EXPECT_THAT(Contents(), ElementsAre("old", "old", "", "old")) << button;
        EXPECT_THAT(LocalTree(), ElementsAre("1.wav", "3.wav", "f/", "f/0.wav")) << button;
        mAlerts.clear();
        Connect();
    }
    ExpectUsable();
}

TEST_F(DownloadPrompt, ADeviceThatFloodsMeanwhileEndsTheDownloadWithTheAnswer) {
    Meanwhile meanwhile;
    meanwhile
        .When(
            "the prompt", [] { return WindowInFront(kPrompt) != nullptr; },
            [this] { mDevice.Send(std::string(600000, 'x')); })
        .When("the overflow", [this] { return !mController.GetLastError().empty(); })
        .Answer(kPrompt, "Yes");
    DownloadAll();
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kFailed, "Receive buffer overflow"}));
    EXPECT_THAT(Contents(), ElementsAre("old", "old", "", "old"));
    EXPECT_FALSE(mController.IsConnected());
    ExpectUsable();
}

TEST_F(DownloadPrompt, CancelAfterALostConnectionIsSilent) {
    Meanwhile meanwhile;
    meanwhile
        .When(
            "the prompt", [] { return WindowInFront(kPrompt) != nullptr; },
            [this] { mDevice.ResetConnection(); })
        .When("the lost connection", [this] { return !mController.IsConnected(); })
        .Answer(kPrompt, "Cancel");
    DownloadAll();
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_EQ(Status(), "Connection reset by peer (the device broke the connection off)");
    ExpectUsable();
}

} // namespace
