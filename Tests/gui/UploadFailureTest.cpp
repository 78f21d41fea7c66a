#include "ProgressController.h"
#include "UploadFixture.h"

#include <gmock/gmock.h>

namespace {

using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kReset = "Connection reset by peer (the device broke the connection off)";
constexpr const char* kBrokenPipe = "Broken pipe (the device has closed the connection)";

/// What goes wrong on the way: an alert, no further file, a program that can go on.
class UploadFailure : public UploadFixture {
protected:
    void SetUp() override {
        UploadFixture::SetUp();
        mFolder.Write("1.txt", "one");
        mFolder.Write("3.txt", "three");
        StallAt("2.dat");
    }

    /// Uploads three files and does this in the middle of the second.
    void UploadFiles(const Meanwhile::tAction& zAction) {
        Connect();
        Meanwhile meanwhile;
        meanwhile.When(
            "the middle of the second file", [this] { return IsInTheMiddleOf("2.dat"); }, zAction);
        Upload({"1.txt", "2.dat", "3.txt"});
    }

    template <typename Matcher>
    void ExpectFailed(const Matcher& zMessage) {
        ASSERT_EQ(mAlerts.size(), 1U);
        EXPECT_EQ(mAlerts.front().title, kUploadFailed);
        EXPECT_THAT(mAlerts.front().message, zMessage);
        EXPECT_THAT(Sent(), ElementsAre("1.txt", "2.dat"));
        EXPECT_EQ(Received("1.txt"), "one") << "what came before stays";
        EXPECT_FALSE(mController.IsConnected());
        EXPECT_THAT(RowNames(), IsEmpty());
        ExpectUploads();
    }
};

TEST_F(UploadFailure, ADeviceThatClosesTheConnection) {
    UploadFiles([this] { mDevice.DropConnection(); });
    ExpectFailed(AnyOf(kClosed, kReset, kBrokenPipe));
}

TEST_F(UploadFailure, ADeviceThatBreaksTheConnectionOff) {
    UploadFiles([this] { mDevice.ResetConnection(); });
    ExpectFailed(AnyOf(kReset, kBrokenPipe));
}

TEST_F(UploadFailure, ADeviceThatFloodsTheProgram) {
    UploadFiles([this] { mDevice.Send(std::string(600000, 'x')); });
    ExpectFailed("Receive buffer overflow");
}

TEST_F(UploadFailure, AConnectionThatIsLostBetweenTwoFiles) {
    mDevice.mOnCommand = [this](const std::string& zCommand) -> std::optional<std::string> {
        if (zCommand.starts_with(R"(<cmd upload>Name = "User/1.txt)")) {
            mDevice.ResetConnection();
        }
        return std::nullopt;
    };
    Connect();
    Upload({"1.txt", "2.dat"});
    ASSERT_EQ(mAlerts.size(), 1U);
    EXPECT_EQ(mAlerts.front().title, kUploadFailed);
    EXPECT_THAT(mAlerts.front().message, AnyOf(kClosed, kReset, kBrokenPipe));
    EXPECT_EQ(Received("2.dat"), "(none)");
    mDevice.mOnCommand = {};
    ExpectUploads();
}

TEST_F(UploadFailure, AFailureThatNobodyWasToldOfEndsTheNextUpload) {
    Connect();
    mDevice.Send(std::string(600000, '.'));
    ASSERT_TRUE(WaitFor([this] { return !mController.GetLastError().empty(); }));
    Upload({"1.txt"});
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kUploadFailed, "Receive buffer overflow"}));
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_FALSE(mController.IsConnected());
    ExpectUploads();
}

} // namespace
