#include "ProgressController.h"
#include "RiffBytes.h"
#include "UploadFixture.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::UnorderedElementsAre;

/// Folders, the paths on the device, and what is not sent.
using UploadTree = UploadFixture;

struct sMixedFile {
    std::string local;
    std::string content;
    std::string device;
    std::string received;
};

/// One of many files in folders: text, sound that is converted, sound that is none, and names that change.
sMixedFile MixedFile(int zNumber) {
    const std::string number = std::to_string(zNumber);
    const std::string folder = std::to_string(zNumber % 7);
    const std::string local = folder + " Zölle/" + number;
    const std::string device = folder + " Zolle/" + number;
    const std::string samples = Little16(static_cast<unsigned>(zNumber)) + std::string(2, '\0');
    switch (zNumber % 4) {
    case 0:
        return {local + " à.bin", number, device + " a.bin", number};
    case 1:
        return {local + ".WAV", WaveBytes({1, 1, 8000, 8}, std::string(4, '\x80')), device + ".wav",
                WaveBytes({1, 1, 8000, 16}, std::string(8, '\0'))};
    case 2:
        return {local + ".aiff", number, device + ".aiff", number};
    default:
        return {local + std::string(60 - number.size(), 'x') + ".wav",
                WaveBytes({1, 1, 96000, 24}, '\0' + samples.substr(0, 2)),
                device + std::string(24 - number.size(), 'x') + ".wav",
                WaveBytes({1, 1, 48000, 16}, Little16(static_cast<unsigned>(zNumber - 1)))};
    }
}

// --- Folders ---

TEST_F(UploadTree, AFolderGoesWithEverythingInIt) {
    const Names files = {"f/a.txt", "f/.hidden", "f/g/b.txt", "f/g/h/c.txt"};
    for (const std::string& path : files) {
        mFolder.Write(path, path);
    }
    std::filesystem::create_directory(mFolder / "f/empty");
    mDevice.AddFolder("here");
    Connect();
    EXPECT_EQ(Drop({"f"}, "here"), "");
    EXPECT_THAT(Sent(),
                UnorderedElementsAre("here/f/a.txt", "here/f/.hidden", "here/f/g/b.txt", "here/f/g/h/c.txt"));
    EXPECT_EQ(Received("here/f/g/h/c.txt"), "f/g/h/c.txt");
    EXPECT_EQ(mDevice.Commands().size(), files.size() + 1) << "folders come with their files";
}

TEST_F(UploadTree, AFolderMayEndInASeparator) {
    mFolder.Write("f/a.txt", "a");
    mDevice.AddFolder("f");
    Connect();
    Meanwhile meanwhile;
    meanwhile.Answer(kFolderPrompt, "Yes");
    EXPECT_EQ(Drop({"f/"}), "");
    EXPECT_EQ(Received("f/a.txt"), "a");
}

TEST_F(UploadTree, FiveHundredFilesArrive) {
    constexpr int kCount = 500;
    for (int number = 0; number < kCount; ++number) {
        const sMixedFile file = MixedFile(number);
        mFolder.Write("t/" + file.local, file.content);
    }
    Connect();
    EXPECT_EQ(Drop({"t"}), "");
    EXPECT_EQ(Sent().size(), kCount);
    for (int number = 0; number < kCount; ++number) {
        const sMixedFile file = MixedFile(number);
        EXPECT_EQ(Received("t/" + file.device), file.received) << file.local;
    }
    EXPECT_THAT(mAlerts, IsEmpty());
}

// --- The common root ---

/// What people are told of as sent has to be on its way, or a lost connection would take it along.
TEST_F(UploadTree, NoFileIsCountedLongBeforeTheDeviceHearsOfIt) {
    constexpr int kFiles = 200;
    const auto name = [](int number) { return std::to_string(number) + ".txt"; };
    Names names;
    for (int number = 0; number < kFiles; ++number) {
        names.push_back(name(number));
        mFolder.Write(names.back(), std::string(5000, 'x'));
    }
    Connect();
    int heard = 0;
    int furthest = 0;
    mDevice.mOnCommand = [&](const std::string& command) -> std::optional<std::string> {
        if (command.starts_with("<cmd upload>")) {
            ProgressWindow().ShowNow();
            const auto at = std::ranges::find(names, CurrentItem()) - names.begin();
            furthest = std::max(furthest, static_cast<int>(at) - heard++);
        }
        return std::nullopt;
    };
    Upload(names);
    EXPECT_EQ(heard, kFiles);
    EXPECT_LE(furthest, 60) << "a hundred files or more wait where nothing holds them back";
}

TEST_F(UploadTree, ItemsOfDifferentFoldersKeepWhatTheShorterPathLeaves) {
    mFolder.Write("a.txt", "a");
    mFolder.Write("x/y/b.txt", "b");
    mFolder.Write("z/c.txt", "c");
    Connect();
    Upload({"x/y/b.txt", "a.txt", "z/c.txt"});
    EXPECT_THAT(Sent(), ElementsAre("x/y/b.txt", "a.txt", "z/c.txt"));
    mDevice.ForgetCommands();
    Upload({"x/y/b.txt"});
    EXPECT_THAT(Sent(), ElementsAre("b.txt")) << "alone it goes without its folders";
}

TEST_F(UploadTree, AnItemAtTheTopOfTheFileSystemLeavesTheOthersTheirWholePath) {
    const std::string path = mFolder.Write("a.txt", "a");
    Connect();
    EXPECT_EQ(mController.UploadFiles({"/nothing of this name", path}, ""), "");
    Key(Qt::Key_F5); // when that is listed, the device has everything
    EXPECT_THAT(Sent(), ElementsAre(path.substr(1)));
}

TEST_F(UploadTree, TheQuestionIsAboutThePathThatIsLeft) {
    mFolder.Write("a.txt", "a");
    mFolder.Write("x/b.txt", "b");
    mDevice.AddFile("b.txt", "old");
    Connect();
    Upload({"a.txt", "x/b.txt"});
    EXPECT_THAT(Sent(), ElementsAre("a.txt", "x/b.txt"));
    EXPECT_EQ(Received("b.txt"), "old");
}

// --- Names ---

struct sName {
    const char* local;
    const char* device;
};

TEST_F(UploadTree, NamesAreMadePlainAndShort) {
    const std::vector<sName> cases = {
        {"two words.txt", "two words.txt"},
        {"Größe.txt", "Grosse.txt"},
        {"README", "README."},
        {"Notes.TXT", "Notes.TXT"},
        {"123456789012345678901234567890123456789012345678901234567890.txt", "123456789012345678901234.txt"},
        {"ääääääääääääääääääääääääääääää.txt", "aaaaaaaaaaaaaaaaaaaaaaaa.txt"},
        {"Écoute voilà/long folder name that is not cut/é.txt",
         "Ecoute voila/long folder name that is not cut/e.txt"},
    };
    Connect();
    mFolder.Write("root.txt", "root");
    for (const sName& row : cases) {
        mFolder.Write(row.local, row.local);
        mDevice.ForgetCommands();
        mDevice.Remove("root.txt");
        Key(Qt::Key_F5);
        Upload({"root.txt", row.local});
        ASSERT_EQ(Sent().size(), 2U) << row.local;
        EXPECT_EQ(Sent()[1], row.device);
        EXPECT_EQ(Received(row.device), row.local);
    }
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(UploadTree, AFileWithoutAnExtensionReplacesItsOldSelfWithoutAQuestion) {
    mDevice.AddFile("README.", "old");
    mFolder.Write("README", "new");
    Connect();
    Upload({"README"});
    EXPECT_EQ(Received("README."), "new") << "only its name on the device ends in a dot";
}

TEST_F(UploadTree, ATooLongPathEndsTheUpload) {
    const std::string folder(240, 'n');
    mFolder.Write("a.txt", "first");
    mFolder.Write(folder + "/long.txt", "long");
    mFolder.Write("b.txt", "never");
    Connect();
    Upload({"a.txt", folder + "/long.txt", "b.txt"});
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kUploadFailed, "long.txt - Path too long"}));
    EXPECT_THAT(Sent(), ElementsAre("a.txt")) << "what came before stays";
    EXPECT_TRUE(mController.IsConnected());
    ExpectUploads();
}

TEST_F(UploadTree, ANameThatADeviceWouldTakeForCommandsEndsTheUpload) {
    const std::string folder = "x\" Length = \"1\"<";
    const std::string inner = "cmd><cmd del>Path = \"User";
    mFolder.Write("a.txt", "first");
    mFolder.Write(folder + "/" + inner + "/b.txt", "second");
    Connect();
    EXPECT_EQ(Drop({"a.txt", folder}), "b.txt - Not a name for a device");
    EXPECT_THAT(Sent(), ElementsAre("a.txt"));
    EXPECT_EQ(mDevice.CountOf("<cmd del>"), 0);
    EXPECT_TRUE(mController.IsConnected());
}

TEST_F(UploadTree, TheWindowLivesWhileALargeFolderIsLookedUp) {
    for (int number = 0; number < 20000; ++number) {
        mFolder.Write("f/" + std::to_string(number), "");
    }
    Connect();
    int turns = 0;
    QTimer turn;
    QObject::connect(&turn, &QTimer::timeout, &turn, [&turns] { ++turns; });
    turn.start(0);
    EXPECT_EQ(mController.UploadFiles({mFolder / "f"}, ""), "");
    EXPECT_GT(turns, 0);
}

TEST_F(UploadTree, PeopleCanCancelWhileALargeFolderIsLookedUp) {
    for (int number = 0; number < 20000; ++number) {
        mFolder.Write("f/" + std::to_string(number), "x");
    }
    Connect();
    Meanwhile meanwhile;
    meanwhile.When(
        "the look into the folder",
        [this] { return ModalSession::IsRunning() && ProgressWindow().windowTitle() == kReading; },
        [this] { Control<QPushButton>(ProgressWindow(), "Cancel").click(); });
    EXPECT_EQ(mController.UploadFiles({mFolder / "f"}, ""), "");
    EXPECT_TRUE(meanwhile.HasEnded());
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_TRUE(mController.IsConnected());
    ExpectUploads();
}

// --- What is not sent ---

TEST_F(UploadTree, WhatCannotBeStartedIsPassedOver) {
    mFolder.Write("f/empty.txt", "");
    mFolder.Write("f/empty.wav", "");
    std::filesystem::create_symlink("nowhere", mFolder / "f/link.txt");
    ASSERT_EQ(::mkfifo((mFolder / "f/pipe.txt").c_str(), 0600), 0);
    mFolder.Write("f/full.txt", "full");
    Connect();
    EXPECT_EQ(Drop({"f"}), "");
    EXPECT_EQ(Received("f/full.txt"), "full");
    EXPECT_THAT(Sent(), ElementsAre("f/full.txt"));
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(UploadTree, APathTooLongToBeOpenedIsPassedOver) {
    std::string folder;
    while ((mFolder / folder).size() < 1023) {
        folder += std::string(50, 'n') + '/';
    }
    const std::string path = mFolder.Write(folder + "a.txt", "a");
    Connect();
    EXPECT_EQ(mController.UploadFiles({path}, ""), "");
    Key(Qt::Key_F5);
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(UploadTree, WhatIsGoneWhenItsTurnComesIsPassedOver) {
    mFolder.Write("b.txt", "second");
    mFolder.Write("c.txt", "third");
    mDevice.AddFile("c.txt", "old");
    Connect();
    Meanwhile meanwhile;
    meanwhile.WhenShown(kPrompt, [this](QWidget& zrPrompt) {
        std::filesystem::remove(mFolder / "b.txt");
        Click<QPushButton>(zrPrompt, "Yes");
    });
    Upload({"b.txt", "c.txt"});
    EXPECT_THAT(Sent(), ElementsAre("c.txt"));
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(UploadTree, EmptyFilesAloneDoNothing) {
    mFolder.Write("a.txt", "");
    mFolder.Write("b.wav", "");
    Connect();
    Names titles;
    QObject::connect(&ProgressWindow(), &QWidget::windowTitleChanged, &mWindow,
                     [&titles](const QString& zTitle) { titles.push_back(zTitle.toStdString()); });
    Upload({"a.txt", "b.wav"});
    EXPECT_THAT(mDevice.Commands(), ElementsAre(mDevice.DirCommand("")));
    EXPECT_THAT(titles, Not(Contains(kUploading))) << "no progress window is opened";
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_EQ(Drop({}), "");
    EXPECT_EQ(Drop({"missing"}), "");
}

} // namespace
