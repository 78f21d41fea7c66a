#include "ProgressController.h"
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
        const std::string text = std::to_string(number);
        const char* const ending = number % 2 == 0 ? ".bin" : ".wav"; // no real sound files
        mFolder.Write("t/" + std::to_string(number % 7) + "/" + text + ending, text);
    }
    Connect();
    EXPECT_EQ(Drop({"t"}), "");
    EXPECT_EQ(Sent().size(), kCount);
    for (int number = 0; number < kCount; ++number) {
        const std::string text = std::to_string(number);
        const char* const ending = number % 2 == 0 ? ".bin" : ".wav";
        EXPECT_EQ(Received("t/" + std::to_string(number % 7) + "/" + text + ending), text);
    }
    EXPECT_THAT(mAlerts, IsEmpty());
}

// --- The common root ---

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
