#include "Settings.h"
#include "UploadFixture.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Which files, and where to.
class UploadChoice : public UploadFixture {
protected:
    void SetUp() override {
        UploadFixture::SetUp();
        mFolder.Write("a.txt", "first");
        mFolder.Write("b.txt", "second");
        mDevice.AddFolder("f");
        mDevice.AddFolder("f/Größe");
        Connect();
    }
};

TEST_F(UploadChoice, AsksForFilesOfThisComputer) {
    Upload({"a.txt"});
    ASSERT_EQ(mPanel.mRequests.size(), 1U);
    const sOpenPanelRequest& request = mPanel.mRequests.front();
    EXPECT_EQ(request.title, "Upload files to 'Scripted:/'");
    EXPECT_TRUE(request.canChooseFiles);
    EXPECT_FALSE(request.canChooseFolders);
    EXPECT_FALSE(request.canCreateFolders);
    EXPECT_TRUE(request.allowsMultiple);
    EXPECT_THAT(request.allowedTypes, IsEmpty());
    EXPECT_EQ(request.initialFolder, std::getenv("HOME"));
}

TEST_F(UploadChoice, TheChooserNamesTheFolderAndTheFilesGoThere) {
    DoubleClickRow("f");
    DoubleClickRow("Größe");
    Upload({"a.txt"});
    EXPECT_EQ(mPanel.mRequests.front().title, "Upload files to 'Scripted:/f/Größe'");
    EXPECT_EQ(Received("f/Größe/a.txt"), "first");
    EXPECT_EQ(Directory(), "/f/Größe");
    EXPECT_THAT(RowNames(), ElementsAre("a.txt"));
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(UploadChoice, FilesGoInTheOrderInWhichTheyWereChosen) {
    Upload({"b.txt", "a.txt"});
    EXPECT_THAT(mDevice.Commands(), ElementsAre(mDevice.UploadCommand("b.txt", 6),
                                                mDevice.UploadCommand("a.txt", 5), mDevice.DirCommand("")))
        << "at the end the folder is listed again";
    EXPECT_EQ(Received("a.txt"), "first");
    EXPECT_EQ(Received("b.txt"), "second");
    EXPECT_THAT(RowNames(), ElementsAre("f", "b.txt", "a.txt"));
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_EQ(Status(), "Connected to 'Scripted'");
}

TEST_F(UploadChoice, TheChooserOpensWhereTheLastUploadCameFrom) {
    mFolder.Write("sub/c.txt", "third");
    Upload({"sub/c.txt", "a.txt"});
    EXPECT_EQ(GetSettings().RecentUploadPath, mFolder / "sub") << "the first file's folder";
    Upload({});
    EXPECT_EQ(mPanel.mRequests.back().initialFolder, mFolder / "sub");
    EXPECT_EQ(GetSettings().RecentUploadPath, mFolder / "sub") << "a dismissed chooser changes nothing";
}

TEST_F(UploadChoice, TheFolderIsRememberedEvenIfTheUploadFails) {
    mPanel.mOnRun = [this] {
        mDevice.DropConnection();
        EXPECT_TRUE(WaitFor([this] { return !mController.IsConnected(); }));
    };
    Upload({"a.txt"});
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kUploadFailed, kClosed}));
    EXPECT_EQ(GetSettings().RecentUploadPath, mFolder.Path().string());
    EXPECT_THAT(Sent(), IsEmpty());
    mPanel.mOnRun = {};
    ExpectUploads();
}

TEST_F(UploadChoice, ADismissedChooserEndsItWithoutAWord) {
    Upload({});
    EXPECT_EQ(mPanel.mRequests.size(), 1U);
    EXPECT_THAT(mDevice.Commands(), IsEmpty());
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_EQ(GetSettings().RecentUploadPath, "");
}

TEST_F(UploadChoice, WithoutAConnectionNothingHappens) {
    Press("Disconnect");
    EXPECT_FALSE(IsEnabled("Upload"));
    EXPECT_FALSE(MenuEntry("Upload").isEnabled());
    Key(Qt::Key_U, Qt::ControlModifier);
    mController.OnUploadButton();
    EXPECT_THAT(mPanel.mRequests, IsEmpty());
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_EQ(Drop({"a.txt"}), kClosed);
}

TEST_F(UploadChoice, AFolderGoesWithEverythingInItByKeyAndMenu) {
    mFolder.Write("tour/1.txt", "one");
    mFolder.Write("tour/deep/2.txt", "two");
    mPanel.mAnswer = {mFolder / "tour"};
    Key(Qt::Key_U, Qt::ControlModifier | Qt::ShiftModifier);
    const sOpenPanelRequest& request = mPanel.mRequests.front();
    EXPECT_EQ(request.title, "Upload a folder to 'Scripted:/'");
    EXPECT_FALSE(request.canChooseFiles);
    EXPECT_TRUE(request.canChooseFolders);
    EXPECT_FALSE(request.canCreateFolders);
    EXPECT_FALSE(request.allowsMultiple);
    EXPECT_EQ(Received("tour/1.txt"), "one");
    EXPECT_EQ(Received("tour/deep/2.txt"), "two");
    EXPECT_EQ(GetSettings().RecentUploadPath, mFolder.Path().string());
    EXPECT_THAT(RowNames(), ElementsAre("f", "tour"));

    mPanel.mAnswer = {};
    Choose("Upload Folder");
    EXPECT_EQ(mPanel.mRequests.back().initialFolder, mFolder.Path().string());
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(UploadChoice, AFolderCanBeChosenWhereFilesCan) {
    EXPECT_TRUE(MenuEntry("Upload Folder").isEnabled());
    mDevice.SetFolderRights("", "--r");
    Key(Qt::Key_F5);
    EXPECT_FALSE(MenuEntry("Upload Folder").isEnabled());
    Press("Disconnect");
    EXPECT_FALSE(MenuEntry("Upload Folder").isEnabled());
    mController.OnUploadFolder();
    EXPECT_THAT(mPanel.mRequests, IsEmpty());
}

TEST_F(UploadChoice, KeyMenuAndAssistiveToolsUploadAsWell) {
    mPanel.mAnswer = {mFolder / "a.txt"};
    const std::vector<std::function<void()>> ways = {
        [this] { Key(Qt::Key_U, Qt::ControlModifier); },
        [this] { Choose("Upload"); },
        [this] { PressByAssistiveTool("Upload"); },
    };
    for (const auto& way : ways) {
        way();
        EXPECT_EQ(Received("a.txt"), "first");
        mDevice.Remove("a.txt");
        Key(Qt::Key_F5);
    }
    EXPECT_EQ(mPanel.mRequests.size(), ways.size());
}

TEST_F(UploadChoice, WhereNothingMayBeChangedTheButtonIsOff) {
    mDevice.SetFolderRights("", "--r");
    Key(Qt::Key_F5);
    EXPECT_FALSE(IsEnabled("Upload"));
    Key(Qt::Key_U, Qt::ControlModifier);
    EXPECT_THAT(mPanel.mRequests, IsEmpty());
}

TEST_F(UploadChoice, WhileTheDeviceOwesAnAnswerNothingStarts) {
    AnswerTo(DirRecurseCommand("f"), "");
    {
        Meanwhile meanwhile;
        meanwhile.Answer(kReading, "Cancel");
        mPanel.mAnswer = {Destination()};
        Download({"f"});
    }
    ASSERT_EQ(Status(), "Waiting for operation to finish");
    mDevice.ForgetCommands();
    mAlerts.clear();
    Upload({"a.txt"});
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kUploadFailed, "Waiting for operation to finish"}));
    EXPECT_THAT(mDevice.Commands(), IsEmpty());
    mDevice.Send(R"(<dir_recurse>Size = "1" NumFiles = "1"</dir_recurse>)");
    ExpectUploads();
}

// --- Without full rights ---

class UploadOfSounds : public UploadFixture {
protected:
    void SetUp() override {
        UploadFixture::SetUp();
        for (const char* name : {"t/a.wav", "t/b.AIF", "t/c.Aiff", "t/d.txt", "t/e.waves", "t/f"}) {
            mFolder.Write(name, name);
        }
        ConnectWithoutFullRights();
    }
};

TEST_F(UploadOfSounds, TheChooserKnowsTheFileTypes) {
    Upload({"t/a.wav"});
    ASSERT_EQ(mPanel.mRequests.size(), 1U);
    EXPECT_THAT(mPanel.mRequests.front().allowedTypes, ElementsAre("wav", "aif"));
    EXPECT_EQ(Received("a.wav"), "t/a.wav");
}

TEST_F(UploadOfSounds, OtherFilesOfAFolderArePassedOver) {
    EXPECT_EQ(Drop({"t"}), "");
    EXPECT_THAT(Sent(), ::testing::UnorderedElementsAre("t/a.wav", "t/b.AIF", "t/c.Aiff", "t/e.waves"));
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(UploadOfSounds, OtherFilesAreNotSentAlone) {
    Upload({"t/d.txt", "t/f"});
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(UploadOfSounds, WhatIsPassedOverCountsInTheTotal) {
    mFolder.Write("s/0.wav", std::string(1000, 'x'));
    WriteSparse("s/1.txt", 3000);
    std::vector<int> positions = {0};
    QObject::connect(&Control<QProgressBar>(ProgressWindow(), "Progress"), &QProgressBar::valueChanged,
                     &mWindow, [&positions](int zPosition) { positions.push_back(zPosition); });
    EXPECT_EQ(Drop({"s"}), "");
    EXPECT_EQ(Received("s/0.wav").size(), 1000U);
    EXPECT_LE(*std::ranges::max_element(positions), 250);
}

} // namespace
