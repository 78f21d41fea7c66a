#include "DownloadFixture.h"

#include <gmock/gmock.h>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Downloads that people allowed and that bring no file.
using NothingFetched = DownloadFixture;

TEST_F(NothingFetched, AFileOfNoBytesLeavesTheOldOneAndSaysSoOnce) {
    mFolder.Write("a.wav", "old");
    mDevice.AddFile("a.wav", "", "cd-", 5);
    mDevice.AddFile("b.wav", "second");
    Connect();
    Meanwhile meanwhile;
    meanwhile.Answer("Copy File", "Yes");
    EXPECT_THAT(SkippedBy({"a.wav", "b.wav"}), ElementsAre("Skipped 'a.wav': the device sent nothing"));
    EXPECT_THAT(LocalTree(), ElementsAre("a.wav", "b.wav"));
    EXPECT_EQ(mFolder.Read("a.wav"), "old");
    EXPECT_EQ(mFolder.Read("b.wav"), "second");
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_EQ(Status(), "Connected to 'Scripted'");
}

TEST_F(NothingFetched, AFileThatPeopleKeepIsNoneThatTheDeviceDidNotSend) {
    mFolder.Write("a.wav", "old");
    mDevice.AddFile("a.wav");
    Connect();
    Meanwhile meanwhile;
    meanwhile.Answer("Copy File", "No");
    EXPECT_THAT(SkippedBy({"a.wav"}), IsEmpty());
}

/// The client failed while nothing ran, which nobody was told yet.
class UnnoticedFailure : public DownloadFixture, public ::testing::WithParamInterface<const char*> {};

TEST_P(UnnoticedFailure, EndsTheNextDownloadWithItsText) {
    mDevice.AddFolder("f");
    mDevice.AddFile("a.wav");
    Connect();
    mDevice.Send(std::string(600000, '.'));
    ASSERT_TRUE(WaitFor([this] { return !mController.GetLastError().empty(); }));
    EXPECT_TRUE(mController.IsConnected());
    Download({GetParam()});
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kFailed, "Receive buffer overflow"}));
    EXPECT_EQ(Status(), "Receive buffer overflow");
    EXPECT_THAT(mDevice.Commands(), IsEmpty());
    EXPECT_THAT(LocalTree(), IsEmpty());
    EXPECT_FALSE(mController.IsConnected());
    EXPECT_FALSE(ProgressWindow().isVisible());
    ExpectUsable();
}

INSTANTIATE_TEST_SUITE_P(Of, UnnoticedFailure, ::testing::Values("a.wav", "f"),
                         [](const auto& zInfo) { return std::string(zInfo.param).substr(0, 1); });

} // namespace
