#include "CopyFolderController.h"
#include "UploadFixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

/// Three files and a folder of which the device has the same names but one.
class UploadPrompt : public UploadFixture {
protected:
    void SetUp() override {
        UploadFixture::SetUp();
        for (const char* name : {"1.txt", "2.txt", "3.txt", "f/4.txt", "g/5.txt"}) {
            mFolder.Write(name, "new");
        }
        for (const char* name : {"1.txt", "3.txt"}) {
            mDevice.AddFile(name, "old");
        }
        for (const char* name : {"f", "g"}) {
            mDevice.AddFolder(name);
        }
        mDevice.AddFile("f/4.txt", "old");
        Connect();
    }

    void UploadAll() { Upload({"1.txt", "2.txt", "3.txt"}); }
};

TEST_F(UploadPrompt, NamesWhatTheDeviceHas) {
    Meanwhile meanwhile;
    meanwhile.WhenShown(kPrompt, [this](QWidget& zrPrompt) {
        EXPECT_EQ(Control<QLabel>(zrPrompt, "What exists").text(),
                  "A file with the name '1.txt' already exists.");
        EXPECT_EQ(Control<QLabel>(zrPrompt, "Question").text(), "Do you want to replace it?");
        const QPoint offset = zrPrompt.geometry().center() - mWindow.geometry().center();
        EXPECT_LE(offset.manhattanLength(), 4) << "it stands over the middle of the main window";
        Click<QPushButton>(zrPrompt, "Cancel");
    });
    UploadAll();
}

struct sAnswers {
    std::vector<const char*> buttons; ///< pressed in the prompts that come, one after the other
    std::vector<std::string> sent;
};

TEST_F(UploadPrompt, EveryAnswerDoesWhatItSays) {
    const std::vector<sAnswers> cases = {
        {{"Yes", "Yes"}, {"1.txt", "2.txt", "3.txt"}},
        {{"No", "No"}, {"2.txt"}},
        {{"No", "Yes"}, {"2.txt", "3.txt"}},
        {{"Yes to all"}, {"1.txt", "2.txt", "3.txt"}},
        {{"No", "Yes to all"}, {"2.txt", "3.txt"}},
        {{"Cancel"}, {}},
        {{"Yes", "Cancel"}, {}},
    };
    for (const sAnswers& row : cases) {
        mDevice.Remove("2.txt");
        Key(Qt::Key_F5);
        mDevice.ForgetCommands();
        Meanwhile meanwhile;
        for (const char* button : row.buttons) {
            meanwhile.Answer(kPrompt, button);
        }
        UploadAll();
        EXPECT_EQ(Sent(), row.sent) << row.buttons.front();
        EXPECT_TRUE(meanwhile.HasEnded()) << row.buttons.front();
    }
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_EQ(mDevice.ConnectionCount(), 1);
}

TEST_F(UploadPrompt, EverythingIsAskedBeforeTheFirstByteIsSent) {
    Meanwhile meanwhile;
    meanwhile.Answer(kPrompt, "Yes").WhenShown(kPrompt, [this](QWidget& zrPrompt) {
        EXPECT_FALSE(ProgressWindow().isVisible());
        EXPECT_THAT(mDevice.Commands(), IsEmpty());
        Click<QPushButton>(zrPrompt, "No");
    });
    UploadAll();
    EXPECT_THAT(Sent(), ElementsAre("1.txt", "2.txt"));
    EXPECT_EQ(Received("1.txt"), "new");
    EXPECT_EQ(Received("3.txt"), "old");
}

TEST_F(UploadPrompt, ClosingItIsCancel) {
    const std::vector<std::function<void(QWidget&)>> ways = {
        [](QWidget& zrPrompt) { QTest::keyClick(&zrPrompt, Qt::Key_Escape); },
        [](QWidget& zrPrompt) { EXPECT_FALSE(CloseByFrame(zrPrompt)) << "its owner closes it"; },
    };
    for (const auto& way : ways) {
        Meanwhile meanwhile;
        meanwhile.WhenShown(kPrompt, way);
        UploadAll();
    }
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(UploadPrompt, TheNextUploadAsksAgain) {
    Meanwhile meanwhile;
    meanwhile.Answer(kPrompt, "Yes to all").Answer(kPrompt, "Yes to all");
    Upload({"1.txt", "3.txt"});
    EXPECT_FALSE(meanwhile.HasEnded());
    Upload({"1.txt", "3.txt"});
    EXPECT_TRUE(meanwhile.HasEnded());
}

// --- Folders ---

TEST_F(UploadPrompt, AFolderIsAskedAboutOnceAndWhatIsInsideIsNot) {
    Meanwhile meanwhile;
    meanwhile.WhenShown(kFolderPrompt, [](QWidget& zrPrompt) {
        EXPECT_EQ(Control<QLabel>(zrPrompt, "What exists").text(),
                  "A folder with the name 'f' already exists.");
        Click<QPushButton>(zrPrompt, "Yes");
    });
    EXPECT_EQ(Drop({"f"}), "");
    EXPECT_EQ(Received("f/4.txt"), "new");
}

TEST_F(UploadPrompt, YesToAllIsForFilesOrForFolders) {
    Meanwhile meanwhile;
    meanwhile.Answer(kPrompt, "Yes to all").Answer(kFolderPrompt, "Yes to all");
    EXPECT_EQ(Drop({"1.txt", "f", "g", "3.txt"}), "");
    EXPECT_THAT(Sent(), ElementsAre("1.txt", "f/4.txt", "g/5.txt", "3.txt"));
}

TEST_F(UploadPrompt, NoSkipsAFolderAndCancelEndsAll) {
    {
        Meanwhile meanwhile;
        meanwhile.Answer(kFolderPrompt, "No").Answer(kFolderPrompt, "Yes");
        EXPECT_EQ(Drop({"f", "g"}), "");
        EXPECT_EQ(Received("g/5.txt"), "new");
    }
    Meanwhile meanwhile;
    meanwhile.Answer(kFolderPrompt, "Cancel");
    EXPECT_EQ(Drop({"2.txt", "f"}), "");
    EXPECT_THAT(Sent(), ElementsAre("g/5.txt"));
}

// --- What counts as the same name ---

TEST_F(UploadPrompt, AFolderAndAFileOfOneNameAreSkippedWithoutAWord) {
    mDevice.AddFolder("clash.txt");
    mDevice.AddFile("folder", "old");
    Key(Qt::Key_F5);
    mFolder.Write("clash.txt", "new");
    mFolder.Write("folder/x.txt", "new");
    EXPECT_EQ(Drop({"clash.txt", "folder", "2.txt"}), "");
    EXPECT_EQ(Received("2.txt"), "new");
    EXPECT_THAT(Sent(), ElementsAre("2.txt"));
    EXPECT_THAT(mAlerts, IsEmpty());
}

struct sSame {
    const char* local;
    const char* device;
    const char* asked; ///< the name in the question; "" without one
};

TEST_F(UploadPrompt, NamesAreComparedAsTheDeviceWritesThemInItsFirst24Letters) {
    const std::vector<sSame> cases = {
        {"Song.txt", "sONG.TXT", "Song.txt"},
        {"Größe.txt", "grosse.txt", "Grosse.txt"},
        {"abcdefghijklmnopqrst.txt", "abcdefghijklmnopqrst.txt", "abcdefghijklmnopqrst.txt"},
        {"abcdefghijklmnopqrstuvwxyz.txt", "ABCDEFGHIJKLMNOPQRSTUVWX", "abcdefghijklmnopqrstuvwx"},
        // The name that it gets is longer than what is compared, so this one is replaced without a question.
        {"bbcdefghijklmnopqrstuvwxyz.txt", "bbcdefghijklmnopqrstuvwx.txt", ""},
    };
    for (const sSame& row : cases) {
        mFolder.Write(row.local, "new");
        mDevice.AddFile(row.device, "old");
        Key(Qt::Key_F5);
        Meanwhile meanwhile;
        if (*row.asked != '\0') {
            meanwhile.WhenShown(kPrompt, [&row](QWidget& zrPrompt) {
                EXPECT_EQ(Control<QLabel>(zrPrompt, "What exists").text().toStdString(),
                          std::string("A file with the name '") + row.asked + "' already exists.");
                Click<QPushButton>(zrPrompt, "No");
            });
        }
        mDevice.ForgetCommands();
        Upload({row.local});
        EXPECT_EQ(Sent().empty(), *row.asked != '\0') << row.local;
    }
}

// --- Trouble while it is up ---

TEST_F(UploadPrompt, ALostConnectionEndsTheUploadWithTheAnswer) {
    for (const char* button : {"Yes", "No", "Cancel"}) {
        Meanwhile meanwhile;
        meanwhile
            .When(
                "the prompt", [] { return WindowInFront(kPrompt) != nullptr; },
                [this] { mDevice.DropConnection(); })
            .When("the lost connection", [this] { return !mController.IsConnected(); })
            .Answer(kPrompt, button);
        Upload({"2.txt", "3.txt"});
        if (std::string(button) == "Cancel") {
            EXPECT_THAT(mAlerts, IsEmpty());
        } else {
            EXPECT_THAT(mAlerts, ElementsAre(sAlert{kUploadFailed, kClosed})) << button;
        }
        EXPECT_THAT(Sent(), IsEmpty());
        mAlerts.clear();
        Connect();
    }
    ExpectUploads();
}

TEST_F(UploadPrompt, ALostConnectionEndsTheQuestions) {
    mDevice.AddFile("3.txt", "old");
    Key(Qt::Key_F5);
    Meanwhile meanwhile;
    meanwhile
        .When(
            "the first prompt", [] { return WindowInFront(kPrompt) != nullptr; },
            [this] { mDevice.DropConnection(); })
        .When("the lost connection", [this] { return !mController.IsConnected(); })
        .Answer(kPrompt, "Yes");
    Upload({"2.txt", "3.txt"}); // which would wait for ever in a second prompt
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kUploadFailed, kClosed}));
    Connect();
    ExpectUploads();
}

TEST_F(UploadPrompt, ADeviceThatFloodsMeanwhileEndsTheUploadWithTheAnswer) {
    Meanwhile meanwhile;
    meanwhile
        .When(
            "the prompt", [] { return WindowInFront(kPrompt) != nullptr; },
            [this] { mDevice.Send(std::string(600000, 'x')); })
        .When("the overflow", [this] { return !mController.GetLastError().empty(); })
        .Answer(kPrompt, "Yes");
    Upload({"1.txt"});
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kUploadFailed, "Receive buffer overflow"}));
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_FALSE(mController.IsConnected());
    ExpectUploads();
}

} // namespace
