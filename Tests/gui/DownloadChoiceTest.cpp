#include "DownloadFixture.h"
#include "Settings.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

/// Which files, and where to.
class DownloadChoice : public DownloadFixture {
protected:
    void SetUp() override {
        DownloadFixture::SetUp();
        mDevice.AddFolder("f");
        mDevice.AddFile("f/inside.wav");
        mDevice.AddFile("a.wav", "first");
        mDevice.AddFile("b.wav", "second");
        Connect();
    }
};

TEST_F(DownloadChoice, WithoutASelectionThereIsNoWayToPressTheButton) {
    EXPECT_FALSE(IsEnabled("Download"));
    EXPECT_FALSE(MenuEntry("Download").isEnabled());
    Key(Qt::Key_D, Qt::ControlModifier);
    Press("Download");
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_THAT(mPanel.mRequests, IsEmpty());
}

TEST_F(DownloadChoice, WithoutASelectionPeopleAreAskedForOne) {
    mController.OnDownloadButton();
    EXPECT_THAT(mAlerts,
                ElementsAre(sAlert{"No files selected", "Please select the files you wish to download"}));
    EXPECT_THAT(mPanel.mRequests, IsEmpty());
}

TEST_F(DownloadChoice, WithoutAConnectionNothingHappens) {
    Press("Disconnect");
    mController.OnDownloadButton();
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_THAT(mPanel.mRequests, IsEmpty());
    EXPECT_EQ(mController.DownloadFiles(Destination(), {}), kClosed);
    EXPECT_FALSE(ProgressWindow().isVisible());
}

TEST_F(DownloadChoice, AsksForAFolderOfThisComputer) {
    Download({"a.wav"});
    ASSERT_EQ(mPanel.mRequests.size(), 1U);
    const sOpenPanelRequest& request = mPanel.mRequests.front();
    EXPECT_EQ(request.title, "Choose file download destination folder");
    EXPECT_FALSE(request.canChooseFiles);
    EXPECT_TRUE(request.canChooseFolders);
    EXPECT_TRUE(request.canCreateFolders);
    EXPECT_FALSE(request.allowsMultiple);
    EXPECT_THAT(request.allowedTypes, IsEmpty());
    EXPECT_EQ(request.initialFolder, std::getenv("HOME"));
}

TEST_F(DownloadChoice, WithoutFullRightsTheChooserKnowsTheFileTypes) {
    // Disconnecting takes the full rights away, and connecting without the dialog does not give them back.
    Press("Disconnect");
    ASSERT_TRUE(mController.ConnectDevice());
    Download({"a.wav"});
    ASSERT_EQ(mPanel.mRequests.size(), 1U);
    EXPECT_THAT(mPanel.mRequests.front().allowedTypes, ElementsAre("wav", "aif"));
    EXPECT_EQ(mFolder.Read("a.wav"), "first");
}

TEST_F(DownloadChoice, TheChooserOpensWhereTheLastDownloadWentTo) {
    Download({"a.wav"});
    EXPECT_EQ(GetSettings().RecentDownloadPath, Destination());
    mPanel.mAnswer.clear();
    Download({"b.wav"});
    EXPECT_EQ(mPanel.mRequests.back().initialFolder, Destination());
    EXPECT_EQ(GetSettings().RecentDownloadPath, Destination()) << "a dismissed chooser changes nothing";
}

TEST_F(DownloadChoice, TheDestinationIsRememberedEvenIfTheDownloadFails) {
    std::filesystem::create_directory(mFolder / "a.wav");
    Download({"a.wav"});
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kFailed, "a.wav - Could not open file"}));
    EXPECT_EQ(GetSettings().RecentDownloadPath, Destination());
}

TEST_F(DownloadChoice, ADismissedChooserEndsItWithoutAWord) {
    for (const Names& answer : {Names(), Names{""}}) {
        mPanel.mAnswer = answer;
        mDevice.ForgetCommands();
        Download({"a.wav", "f"});
        EXPECT_THAT(mDevice.Commands(), IsEmpty());
        EXPECT_EQ(GetSettings().RecentDownloadPath, "");
    }
    EXPECT_EQ(mPanel.mRequests.size(), 2U);
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_THAT(SelectedNames(), UnorderedElementsAre("f", "a.wav")) << "people can think again";
}

TEST_F(DownloadChoice, AConnectionLostWhilePeopleChooseIsReported) {
    mPanel.mOnRun = [this] {
        mDevice.DropConnection();
        EXPECT_TRUE(WaitFor([this] { return !mController.IsConnected(); }));
    };
    Download({"a.wav", "f"});
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kFailed, kClosed}));
    EXPECT_THAT(LocalTree(), IsEmpty());
    ExpectUsable();
}

TEST_F(DownloadChoice, KeyMenuAndAssistiveToolsDownloadAsWell) {
    const std::vector<std::function<void()>> ways = {
        [this] { Key(Qt::Key_D, Qt::ControlModifier); },
        [this] { Choose("Download"); },
        [this] { PressByAssistiveTool("Download"); },
    };
    for (const auto& way : ways) {
        SelectRows({"a.wav"});
        way();
        EXPECT_EQ(mFolder.Read("a.wav"), "first");
        std::filesystem::remove(mFolder / "a.wav");
    }
    EXPECT_EQ(mPanel.mRequests.size(), ways.size());
}

// --- Records without a size ---

class DownloadOfNothing : public DownloadFixture {
protected:
    void SetUp() override {
        DownloadFixture::SetUp();
        AnswerListing("", {Item("empty.wav", "File", 0), Item("full.wav", "File", 4),
                           Item("hollow", "Dir", 0), Item("negative.wav", "File", -1)});
        AnswerTo(ScriptedDevice::DownloadCommand("full.wav"), ScriptedDevice::LengthPrefix(4) + "full");
        Connect();
    }
};

TEST_F(DownloadOfNothing, RecordsWithoutASizeAreLeftOutWithALineEach) {
    EXPECT_THAT(SkippedBy({"empty.wav", "hollow", "full.wav", "negative.wav"}),
                ElementsAre("Skipped 'hollow': it has no size", "Skipped 'empty.wav': it has no size",
                            "Skipped 'negative.wav': it has no size"));
    EXPECT_THAT(LocalTree(), ElementsAre("full.wav"));
    EXPECT_EQ(mDevice.CountOf("download"), 1);
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(DownloadOfNothing, ASelectionOfSuchRecordsAsksForNothing) {
    EXPECT_THAT(SkippedBy({"hollow", "empty.wav"}),
                ElementsAre(HasSubstr("'hollow'"), HasSubstr("'empty.wav'")));
    EXPECT_THAT(mPanel.mRequests, IsEmpty());
    EXPECT_THAT(mDevice.Commands(), IsEmpty());
    EXPECT_THAT(mAlerts, IsEmpty());
}

} // namespace
