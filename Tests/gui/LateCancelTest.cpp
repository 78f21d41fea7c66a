#include "ClientProbe.h"
#include "DownloadFixture.h"
#include "ModalSession.h"
#include "ProgressController.h"

#include <gmock/gmock.h>

namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

using Names = std::vector<std::string>;

constexpr const char* kReset = "Connection reset by peer (the device broke the connection off)";
constexpr const char* kNotListed = "The folder could not be listed. Press F5 to try again.";

void ClickCancel(QWidget& zrWindow) {
    Click<QPushButton>(zrWindow, "Cancel");
}

/// A folder, an empty folder and two files, of which the second exists here.
class LateCancelFixture : public DownloadFixture {
protected:
    void SetUp() override {
        DownloadFixture::SetUp();
        mDevice.AddFolder("e");
        mDevice.AddFolder("f");
        mDevice.AddFile("f/0.wav", "data");
        mDevice.AddFile("1.wav", "data");
        mDevice.AddFile("2.wav", "data");
        mFolder.Write("2.wav", "old");
        Connect();
    }

    /// Keeps the answer to a command back until the window shows; then it comes whole, and Cancel is pressed
    /// before the program has looked at it.
    void CancelWhenAnswered(Meanwhile& zrMeanwhile, const std::string& zCommand, const std::string& zAnswer,
                            const std::string& zTitle) {
        AnswerTo(zCommand, "");
        zrMeanwhile.When("the command", [this, zCommand] { return mDevice.CountOf(zCommand) == 1; });
        zrMeanwhile.WhenShown(zTitle, [this, zAnswer](QWidget& zrWindow) {
            EXPECT_FALSE(ControllerProbe::IsIdle(mController));
            ControllerProbe::Receive(mController, zAnswer);
            EXPECT_TRUE(ControllerProbe::IsIdle(mController));
            ClickCancel(zrWindow);
        });
    }

    void ExpectNoMoreThan(const Names& zCommands) {
        EXPECT_THAT(mDevice.Commands(), ElementsAreArray(zCommands));
        EXPECT_THAT(mAlerts, IsEmpty());
        EXPECT_EQ(mDevice.ConnectionCount(), 1) << "nothing was left to be broken off";
        EXPECT_THAT(RowNames(), ElementsAre("e", "f", "1.wav", "2.wav"));
        EXPECT_EQ(Status(), "Connected to 'Scripted'");
        EXPECT_EQ(mFolder.Read("2.wav"), "old");
        EXPECT_FALSE(ProgressWindow().isVisible());
        EXPECT_FALSE(ModalSession::IsRunning());
    }
};

// --- In the slice in which something completes ---

struct sCompletion {
    const char* name;
    Names selection;
    std::string last; ///< the command whose answer is complete when Cancel is pressed
    std::string answer;
    Names before; ///< the commands before that one
    Names tree;
};

void PrintTo(const sCompletion& zCompletion, std::ostream* zpStream) {
    *zpStream << zCompletion.name;
}

class LateCancel : public LateCancelFixture, public ::testing::WithParamInterface<sCompletion> {};

TEST_P(LateCancel, NothingElseBeginsAndTheTableComesBack) {
    Meanwhile meanwhile;
    CancelWhenAnswered(meanwhile, GetParam().last, GetParam().answer, ProgressTitle());
    Download(GetParam().selection);
    Names commands = GetParam().before;
    commands.push_back(GetParam().last);
    commands.push_back(mDevice.DirCommand(""));
    ExpectNoMoreThan(commands);
    EXPECT_EQ(LocalTree(), GetParam().tree);
    ExpectUsable();
}

const std::string kSizeOfE = R"(<cmd dir_recurse>Path = "User/e"</cmd>)";
const std::string kSizeOfF = R"(<cmd dir_recurse>Path = "User/f"</cmd>)";
const std::string kFile = ScriptedDevice::LengthPrefix(4) + "data";
const std::string kListing = R"(<dir> Rights = "cd-" <item Name = "0.wav" Type = "File" Size = "4"></dir>)";
const std::string kEmptyListing = R"(<dir> Rights = "cd-"</dir>)";

INSTANTIATE_TEST_SUITE_P(When, LateCancel,
                         ::testing::Values(sCompletion{"AFile",
                                                       {"1.wav", "2.wav"},
                                                       ScriptedDevice::DownloadCommand("1.wav"),
                                                       kFile,
                                                       {},
                                                       {"1.wav", "2.wav"}},
                                           sCompletion{"TheLastFile",
                                                       {"1.wav"},
                                                       ScriptedDevice::DownloadCommand("1.wav"),
                                                       kFile,
                                                       {},
                                                       {"1.wav", "2.wav"}},
                                           sCompletion{"TheLastFileOfAFolder",
                                                       {"f", "2.wav"},
                                                       ScriptedDevice::DownloadCommand("f/0.wav"),
                                                       kFile,
                                                       {kSizeOfF, ScriptedDevice::DirCommand("f")},
                                                       {"2.wav", "f/", "f/0.wav"}},
                                           sCompletion{"AListing",
                                                       {"f", "2.wav"},
                                                       ScriptedDevice::DirCommand("f"),
                                                       kListing,
                                                       {kSizeOfF},
                                                       {"2.wav", "f/"}},
                                           sCompletion{"AnEmptyListing",
                                                       {"e", "2.wav"},
                                                       ScriptedDevice::DirCommand("e"),
                                                       kEmptyListing,
                                                       {kSizeOfE},
                                                       {"2.wav", "e/"}},
                                           sCompletion{"TheLastListing",
                                                       {"e"},
                                                       ScriptedDevice::DirCommand("e"),
                                                       kEmptyListing,
                                                       {kSizeOfE},
                                                       {"2.wav", "e/"}}),
                         [](const auto& zInfo) { return std::string(zInfo.param.name); });

TEST_F(LateCancelFixture, ASizeThatComesWithTheCancelStartsNothing) {
    Meanwhile meanwhile;
    CancelWhenAnswered(meanwhile, kSizeOfE, R"(<dir_recurse>Size = "5" NumFiles = "1"</dir_recurse>)",
                       kReading);
    Download({"e", "f", "2.wav"});
    ExpectNoMoreThan({kSizeOfE});
    EXPECT_THAT(LocalTree(), ElementsAre("2.wav"));
}

// --- The connection is lost after Cancel, while the operation gets its time to end ---

struct sLoss {
    const char* name;
    void (ScriptedDevice::*lose)();
    const char* status;
};

void PrintTo(const sLoss& zLoss, std::ostream* zpStream) {
    *zpStream << zLoss.name;
}

class LossAfterCancel : public LateCancelFixture, public ::testing::WithParamInterface<sLoss> {
protected:
    /// Lets the device stay silent after a command, and lose the connection after Cancel in this window.
    void CancelAndLose(Meanwhile& zrMeanwhile, const std::string& zCommand, const std::string& zTitle) {
        AnswerTo(zCommand, "");
        zrMeanwhile.When("the command", [this, zCommand] { return mDevice.CountOf(zCommand) == 1; });
        zrMeanwhile.WhenShown(zTitle, [this](QWidget& zrWindow) {
            ClickCancel(zrWindow);
            EXPECT_TRUE(mController.IsConnected());
            Soon([this] { (mDevice.*GetParam().lose)(); });
        });
    }

    void ExpectSilentEnd() {
        EXPECT_THAT(mAlerts, IsEmpty());
        // A broken connection is reported first, and gone with the next pass of the event loop.
        EXPECT_TRUE(WaitFor([this] { return !mController.IsConnected(); }));
        EXPECT_EQ(Status(), GetParam().status);
        EXPECT_THAT(RowNames(), IsEmpty());
        EXPECT_EQ(mDevice.CountOf("download"), 0);
        EXPECT_EQ(mDevice.ConnectionCount(), 1);
        EXPECT_FALSE(ProgressWindow().isVisible());
        EXPECT_FALSE(ModalSession::IsRunning());
        ExpectUsable();
    }
};

TEST_P(LossAfterCancel, OfASizeEndsInSilence) {
    Meanwhile meanwhile;
    CancelAndLose(meanwhile, kSizeOfF, kReading);
    Download({"f", "1.wav"});
    ExpectSilentEnd();
}

TEST_P(LossAfterCancel, OfAListingEndsInSilence) {
    Meanwhile meanwhile;
    CancelAndLose(meanwhile, ScriptedDevice::DirCommand("f"), ProgressTitle());
    Download({"f", "1.wav"});
    ExpectSilentEnd();
}

INSTANTIATE_TEST_SUITE_P(Ways, LossAfterCancel,
                         ::testing::Values(sLoss{"ByClosing", &ScriptedDevice::DropConnection,
                                                 "Press the 'Connect' button to begin"},
                                           sLoss{"ByBreakingOff", &ScriptedDevice::ResetConnection, kReset}),
                         [](const auto& zInfo) { return std::string(zInfo.param.name); });

// --- The listing at the end ---

TEST_F(LateCancelFixture, TheListingAtTheEndCanBeCancelled) {
    AnswerTo(mDevice.DirCommand(""), "");
    Meanwhile meanwhile;
    meanwhile.When("the listing", [this] { return mDevice.CountOf("<cmd dir>") == 1; })
        .WhenShown(ProgressTitle(), [this](QWidget& zrWindow) {
            ClickCancel(zrWindow);
            Soon([this] { mDevice.Send(mDevice.DirReply("")); });
        });
    Download({"1.wav"});
    EXPECT_THAT(mAlerts, IsEmpty()) << "the download itself has succeeded";
    EXPECT_EQ(mFolder.Read("1.wav"), "data");
    EXPECT_THAT(RowNames(), IsEmpty());
    EXPECT_EQ(Table().accessibleDescription().toStdString(), kNotListed);
    EXPECT_TRUE(mController.IsConnected());
    EXPECT_FALSE(ProgressWindow().isVisible());
    ExpectUsable();
    EXPECT_EQ(mDevice.ConnectionCount(), 1);
}

TEST_F(LateCancelFixture, TheListingAtTheEndOfACancelledDownloadCanBeCancelledAgain) {
    AnswerTo(mDevice.DirCommand(""), "");
    Meanwhile meanwhile;
    CancelWhenAnswered(meanwhile, mDevice.DownloadCommand("1.wav"), kFile, ProgressTitle());
    meanwhile.When("the listing", [this] { return mDevice.CountOf("<cmd dir>") == 1; })
        .WhenShown(ProgressTitle(), [this](QWidget& zrWindow) {
            EXPECT_TRUE(Control<QPushButton>(zrWindow, "Cancel").isEnabled());
            ClickCancel(zrWindow);
            Soon([this] { mDevice.Send(mDevice.DirReply("")); });
        });
    Download({"1.wav", "2.wav"});
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_THAT(RowNames(), IsEmpty());
    EXPECT_EQ(Table().accessibleDescription().toStdString(), kNotListed);
    EXPECT_FALSE(ProgressWindow().isVisible());
    ExpectUsable();
}

TEST_F(LateCancelFixture, TheProgramCanQuitDuringTheListingAtTheEnd) {
    AnswerTo(mDevice.DirCommand(""), "");
    Meanwhile meanwhile;
    meanwhile.When(
        "the listing", [this] { return mDevice.CountOf("<cmd dir>") == 1; },
        [this] { EXPECT_TRUE(CloseByFrame(mWindow)); });
    EXPECT_EQ(RunApplication([this] { Download({"1.wav"}); }), 0);
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_EQ(mFolder.Read("1.wav"), "data");
    EXPECT_FALSE(mController.IsConnected());
    EXPECT_FALSE(ProgressWindow().isVisible());
    EXPECT_FALSE(ModalSession::IsRunning());
}

} // namespace
