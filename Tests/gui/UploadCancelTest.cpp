#include "ModalSession.h"
#include "ProgressController.h"
#include "UploadFixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

/// The progress window: what it shows, and Cancel in it.
class UploadCancel : public UploadFixture {
protected:
    void SetUp() override {
        UploadFixture::SetUp();
        mFolder.Write("1.txt", "one");
        mFolder.Write("3.txt", "three");
        StallAt("2.dat");
    }

    /// Uploads three files of which the device does not take the second, and does this in its middle.
    void UploadFiles(Meanwhile& zrMeanwhile, const Meanwhile::tAction& zAction) {
        Connect();
        zrMeanwhile.When(
            "the middle of the second file", [this] { return IsInTheMiddleOf("2.dat"); }, zAction);
        Upload({"1.txt", "2.dat", "3.txt"});
    }

    void ClickCancel() { Click<QPushButton>(ProgressWindow(), "Cancel"); }

    /// What Cancel in the middle of the second file leaves behind.
    void ExpectCancelled() {
        EXPECT_THAT(mAlerts, IsEmpty());
        EXPECT_THAT(Sent(), ElementsAre("1.txt", "2.dat"));
        EXPECT_EQ(Received("1.txt"), "one") << "what came before stays";
        EXPECT_EQ(Received("2.dat"), "(none)");
        EXPECT_FALSE(ModalSession::IsRunning());
    }
};

TEST_F(UploadCancel, TheWindowTellsWhatIsSentAndHowMuch) {
    ProgressWindow().UseClock([] { return std::chrono::milliseconds(0); }); // so that no rate gets known
    int end = 0;
    QObject::connect(&Control<QProgressBar>(ProgressWindow(), "Progress"), &QProgressBar::valueChanged,
                     &mWindow, [&end](int zPosition) { end = std::max(end, zPosition); });
    Meanwhile meanwhile;
    UploadFiles(meanwhile, [this] {
        const QWidget& window = *WindowInFront(kUploading);
        EXPECT_EQ(&window, &ProgressWindow());
        const QPoint offset = window.geometry().center() - mWindow.geometry().center();
        EXPECT_LE(offset.manhattanLength(), 4) << "it stands over the middle of the main window";
        EXPECT_LT(Position(), 1000);
        const std::string amount = Control<QLabel>(ProgressWindow(), "Details").text().toStdString();
        EXPECT_TRUE(amount.ends_with(" of 38.1 MiB")) << amount;
        mDevice.ListenAgain();
    });
    EXPECT_EQ(Received("2.dat").size(), kLong);
    EXPECT_EQ(Received("3.txt"), "three");
    EXPECT_THAT(RowNames(), UnorderedElementsAre("1.txt", "2.dat", "3.txt"));
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_EQ(end, 1000);
    EXPECT_EQ(mDevice.ConnectionCount(), 1);
}

struct sCancel {
    const char* name;
    void (*act)(QWidget& zrWindow);
};

void PrintTo(const sCancel& zCancel, std::ostream* zpStream) {
    *zpStream << zCancel.name;
}

class UploadCancelWays : public UploadCancel, public ::testing::WithParamInterface<sCancel> {};

TEST_P(UploadCancelWays, ReconnectsToTheFolderShown) {
    const VisibilityCounter counter(ProgressWindow());
    Meanwhile meanwhile;
    UploadFiles(meanwhile, [this] { GetParam().act(ProgressWindow()); });
    ExpectCancelled();
    EXPECT_EQ(mDevice.ConnectionCount(), 2);
    EXPECT_EQ(Status(), "Connected to 'Scripted'");
    EXPECT_THAT(RowNames(), ElementsAre("1.txt"));
    EXPECT_EQ(counter.Shown(), counter.Hidden()) << "every time that it shows it is closed once";
    ExpectUploads();
}

INSTANTIATE_TEST_SUITE_P(
    Ways, UploadCancelWays,
    ::testing::Values(
        sCancel{"ByItsButton", [](QWidget& zrWindow) { Click<QPushButton>(zrWindow, "Cancel"); }},
        sCancel{"ByEscape", [](QWidget& zrWindow) { QTest::keyClick(&zrWindow, Qt::Key_Escape); }},
        sCancel{"ByItsFrame",
                [](QWidget& zrWindow) { EXPECT_FALSE(CloseByFrame(zrWindow)) << "closed twice"; }}),
    [](const auto& zInfo) { return std::string(zInfo.param.name); });

TEST_F(UploadCancel, InAFolderItComesBackThere) {
    mDevice.AddFolder("f");
    mDevice.mOnCommand = [this](const std::string& zCommand) -> std::optional<std::string> {
        if (zCommand.starts_with("<cmd upload>")) {
            mDevice.StopListening();
        }
        return std::nullopt;
    };
    Connect();
    DoubleClickRow("f");
    Meanwhile meanwhile;
    meanwhile.When(
        "the middle of the file", [this] { return IsInTheMiddleOf("2.dat"); }, [this] { ClickCancel(); });
    Upload({"2.dat"});
    EXPECT_EQ(Directory(), "/f");
    EXPECT_EQ(mDevice.CountOf(mDevice.DirCommand("")), 0) << "the way back does not lead through the root";
    EXPECT_EQ(Status(), "Connected to 'Scripted'");
    EXPECT_EQ(mDevice.ConnectionCount(), 2);
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(UploadCancel, ADeviceThatIsGoneByThenLeavesTheProgramDisconnected) {
    Meanwhile meanwhile;
    UploadFiles(meanwhile, [this] {
        mDevice.SwitchOff();
        ClickCancel();
    });
    ExpectCancelled();
    EXPECT_FALSE(mController.IsConnected());
    EXPECT_EQ(Status(), "Connection refused (nothing answers at this address and port)");
    EXPECT_THAT(RowNames(), IsEmpty());
    mDevice.SwitchOn();
    ExpectUploads();
}

TEST_F(UploadCancel, TheReconnectionCanBeCancelledToo) {
    Meanwhile meanwhile;
    UploadFiles(meanwhile, [&] {
        mDevice.mWelcome.clear();
        meanwhile.Answer("Searching for '" + mDevice.Address() + "'", "Cancel");
        ClickCancel();
    });
    ExpectCancelled();
    EXPECT_FALSE(mController.IsConnected());
    EXPECT_EQ(Status(), kHint);
    mDevice.mWelcome = R"(<welcome>Name = "Scripted" Version = "1.10" ID = "1"</welcome>)";
    ExpectUploads();
}

TEST_F(UploadCancel, NothingElseCanBeStartedMeanwhile) {
    Meanwhile meanwhile;
    UploadFiles(meanwhile, [this] {
        const std::size_t requests = mPanel.mRequests.size();
        Choose("Upload");
        Choose("Disconnect");
        EXPECT_EQ(mPanel.mRequests.size(), requests);
        EXPECT_EQ(Drop({"1.txt"}), "Waiting for operation to finish");
        EXPECT_TRUE(mController.IsConnected());
        mDevice.ListenAgain();
    });
    EXPECT_THAT(Sent(), ElementsAre("1.txt", "2.dat", "3.txt"));
}

} // namespace
