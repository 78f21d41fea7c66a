#include "DownloadFixture.h"

#include <gmock/gmock.h>

#include <array>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kConnected = "Connected to 'Scripted'";
constexpr const char* kNotListed = "The folder could not be listed. Press F5 to try again.";

/// What the window says of the folder on screen, and what it lets people do there.
class FolderState : public DownloadFixture {
protected:
    void SetUp() override {
        DownloadFixture::SetUp();
        mDevice.AddFolder("locked", "--r");
        mDevice.AddFile("locked/0.wav", "new");
        mDevice.AddFile("1.wav");
        Connect();
    }

    /// What assistive tools say of the table, which has the words of its grey text while it has one.
    std::string GreyText() { return Table().accessibleDescription().toStdString(); }

    /// Lists again, and cancels that; the answer comes right behind.
    void FailToList() {
        mDevice.Hold();
        Meanwhile meanwhile;
        meanwhile.WhenShown(kReading, [this](QWidget& zrProgress) {
            Click<QPushButton>(zrProgress, "Cancel");
            Soon([this] { mDevice.Release(); });
        });
        Key(Qt::Key_F5);
    }

    void ExpectNotListed() {
        EXPECT_TRUE(mController.IsConnected());
        EXPECT_THAT(RowNames(), IsEmpty());
        EXPECT_EQ(GreyText(), kNotListed);
        EXPECT_FALSE(IsEnabled("Upload"));
        EXPECT_FALSE(IsEnabled("Create Folder"));
        EXPECT_FALSE(MenuEntry("Upload").isEnabled());
        EXPECT_FALSE(MenuEntry("Create Folder").isEnabled());
    }

    void ExpectListed() {
        EXPECT_EQ(Status(), kConnected);
        EXPECT_THAT(RowNames(), ElementsAre("locked", "1.wav"));
        EXPECT_EQ(GreyText(), "What the folder of the device holds");
        EXPECT_TRUE(IsEnabled("Upload"));
        EXPECT_TRUE(IsEnabled("Create Folder"));
    }
};

TEST_F(FolderState, AFailedListingSaysHowToGoOn) {
    ExpectListed();
    FailToList();
    ExpectNotListed();
    EXPECT_EQ(Directory(), "/");
    Key(Qt::Key_F5);
    ExpectListed();
}

TEST_F(FolderState, AGoodListingOfNothingSaysThat) {
    FailToList();
    mDevice.Remove("locked");
    mDevice.Remove("1.wav");
    Key(Qt::Key_F5);
    EXPECT_EQ(GreyText(), "This folder is empty");
    EXPECT_TRUE(IsEnabled("Upload"));
}

TEST_F(FolderState, DisconnectingAfterAFailedListingShowsHowToBegin) {
    FailToList();
    Press("Disconnect");
    EXPECT_THAT(GreyText(), ::testing::StartsWith("Press Connect"));
}

TEST_F(FolderState, TheWaitForALateReplyIsToldUntilAGoodListing) {
    AnswerTo(mDevice.DirCommand(""), "");
    {
        Meanwhile meanwhile;
        meanwhile.Answer(kReading, "Cancel");
        Key(Qt::Key_F5);
    }
    EXPECT_EQ(Status(), "Waiting for operation to finish");
    ExpectNotListed();

    Key(Qt::Key_F5);
    EXPECT_EQ(Status(), "Waiting for operation to finish") << "the device still owes the first answer";
    ExpectNotListed();
    EXPECT_EQ(mDevice.CountOf("<cmd dir>"), 1);

    AnswerTo(mDevice.DirCommand(""), mDevice.DirReply(""));
    mDevice.Send(mDevice.DirReply(""));
    EXPECT_TRUE(WaitFor([this] {
        Key(Qt::Key_F5);
        return !RowNames().empty();
    }));
    ExpectListed();
    EXPECT_EQ(mDevice.ConnectionCount(), 1);
}

// --- A download lists other folders ---

TEST_F(FolderState, TheRightsOfAFolderThatIsDownloadedChangeNothing) {
    mFolder.Write("locked/0.wav", "old");
    Meanwhile meanwhile;
    meanwhile.WhenShown("Copy File", [this](QWidget& zrPrompt) {
        EXPECT_EQ(mDevice.CountOf("<cmd dir>"), 1) << "the folder has been listed";
        mController.UpdateControls();
        EXPECT_TRUE(IsEnabled("Upload"));
        EXPECT_TRUE(IsEnabled("Create Folder"));
        Click<QPushButton>(zrPrompt, "No");
    });
    Download({"locked"});
    ExpectListed();
}

TEST_F(FolderState, AFailedListingAfterADownloadLeavesNoRights) {
    mDevice.SetFolderRights("locked", "cd-");
    AnswerTo(mDevice.DirCommand(""), "");
    Meanwhile meanwhile;
    meanwhile.When("the listing", [this] { return mDevice.CountOf(mDevice.DirCommand("")) == 1; })
        .WhenShown(ProgressTitle(), [this](QWidget& zrProgress) {
            Click<QPushButton>(zrProgress, "Cancel");
            Soon([this] { mDevice.Send(mDevice.DirReply("")); });
        });
    Download({"locked"});
    ExpectNotListed();
}

} // namespace
