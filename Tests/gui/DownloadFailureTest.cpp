#include "DownloadFixture.h"
#include "LoweredLimit.h"
#include "ProgressController.h"

#include <gmock/gmock.h>

namespace {

using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kReset = "Connection reset by peer (the device broke the connection off)";
constexpr const char* kBrokenPipe = "Broken pipe (the device has closed the connection)";

/// What goes wrong on the way, and how it ends: an alert, whole files only, a program that can go on.
class DownloadFailure : public DownloadFixture {
protected:
    void SetUp() override {
        DownloadFixture::SetUp();
        mDevice.AddFile("1.wav", "one");
        mDevice.AddFile("2.wav", std::string(10000, 'x'));
        mDevice.AddFile("3.wav", "three");
        mDevice.AddFolder("f");
        mDevice.AddFile("f/4.wav", "four");
        mFolder.Write("2.wav", "old");
    }

    void DownloadFiles(Meanwhile& zrMeanwhile) {
        zrMeanwhile.Answer("Copy File", "Yes");
        Download({"1.wav", "2.wav", "3.wav"});
    }

    /// What the failure of the second file leaves behind.
    void ExpectFailed(const std::string& zMessage) {
        EXPECT_THAT(mAlerts, ElementsAre(sAlert{kFailed, zMessage}));
        EXPECT_THAT(LocalTree(), ElementsAre("1.wav", "2.wav")) << "no temporary file, and no third one";
        EXPECT_EQ(mFolder.Read("1.wav"), "one") << "what came before stays";
        EXPECT_EQ(mFolder.Read("2.wav"), "old");
        EXPECT_FALSE(ProgressWindow().isVisible());
        EXPECT_THAT(RowNames(), IsEmpty());
        EXPECT_FALSE(mController.IsConnected());
        ExpectUsable();
    }
};

// --- The connection is lost ---

struct sLoss {
    const char* name;
    void (ScriptedDevice::*lose)();
    const char* message;
};

void PrintTo(const sLoss& zLoss, std::ostream* zpStream) {
    *zpStream << zLoss.name;
}

class DownloadLoss : public DownloadFailure, public ::testing::WithParamInterface<sLoss> {
protected:
    void Lose() { (mDevice.*GetParam().lose)(); }

    /// Lets the device stay silent after a command and lose the connection once it has come.
    void LoseAfter(Meanwhile& zrMeanwhile, const std::string& zCommand) {
        AnswerTo(zCommand, "");
        zrMeanwhile.When(
            zCommand, [this, zCommand] { return mDevice.CountOf(zCommand) > 0; }, [this] { Lose(); });
    }
};

TEST_P(DownloadLoss, InTheMiddleOfAFile) {
    AnswerPartly("2.wav", std::string(10000, 'x'), 5000);
    Connect();
    Meanwhile meanwhile;
    meanwhile.Answer("Copy File", "Yes")
        .When(
            "half of the second file", [this] { return CurrentItem() == "2.wav" && Position() > 400; },
            [this] { Lose(); });
    Download({"1.wav", "2.wav", "3.wav"});
    ExpectFailed(GetParam().message);
}

TEST_P(DownloadLoss, BeforeTheLengthOfAFile) {
    Connect();
    Meanwhile meanwhile;
    meanwhile.Answer("Copy File", "Yes");
    LoseAfter(meanwhile, mDevice.DownloadCommand("2.wav"));
    Download({"1.wav", "2.wav", "3.wav"});
    ExpectFailed(GetParam().message);
}

TEST_P(DownloadLoss, WithinTheLengthOfAFile) {
    AnswerTo(mDevice.DownloadCommand("2.wav"), mDevice.LengthPrefix(10000).substr(0, 3));
    Connect();
    Meanwhile meanwhile;
    meanwhile.Answer("Copy File", "Yes")
        .When("the request", [this] { return mDevice.CountOf("2.wav") > 0; })
        .WhenShown(ProgressTitle(), [this](QWidget&) { Lose(); });
    Download({"1.wav", "2.wav", "3.wav"});
    ExpectFailed(GetParam().message);
}

TEST_P(DownloadLoss, WhileAFolderIsListed) {
    Connect();
    Meanwhile meanwhile;
    LoseAfter(meanwhile, mDevice.DirCommand("f"));
    Download({"f"});
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kFailed, GetParam().message}));
    EXPECT_EQ(mDevice.CountOf("download"), 0);
    EXPECT_FALSE(ProgressWindow().isVisible());
    ExpectUsable();
}

TEST_P(DownloadLoss, WhileASizeIsAskedFor) {
    Connect();
    Meanwhile meanwhile;
    LoseAfter(meanwhile, DirRecurseCommand("f"));
    Download({"f", "3.wav"});
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kFailed, GetParam().message}));
    EXPECT_THAT(mDevice.Commands(), ElementsAre(DirRecurseCommand("f")));
    EXPECT_THAT(LocalTree(), ElementsAre("2.wav"));
    EXPECT_FALSE(ProgressWindow().isVisible());
    ExpectUsable();
}

TEST_P(DownloadLoss, WhileTheFolderIsListedAgainAtTheEnd) {
    Connect();
    Meanwhile meanwhile;
    LoseAfter(meanwhile, mDevice.DirCommand(""));
    Download({"1.wav"});
    EXPECT_THAT(mAlerts, IsEmpty()) << "the download itself has succeeded";
    EXPECT_EQ(mFolder.Read("1.wav"), "one");
    EXPECT_THAT(RowNames(), IsEmpty());
    EXPECT_FALSE(mController.IsConnected());
    EXPECT_FALSE(ProgressWindow().isVisible());
    ExpectUsable();
}

INSTANTIATE_TEST_SUITE_P(Ways, DownloadLoss,
                         ::testing::Values(sLoss{"ByClosing", &ScriptedDevice::DropConnection,
                                                 "Connection has been closed"},
                                           sLoss{"ByBreakingOff", &ScriptedDevice::ResetConnection, kReset}),
                         [](const auto& zInfo) { return std::string(zInfo.param.name); });

TEST_F(DownloadFailure, AConnectionClosedBetweenTwoFiles) {
    // The file goes out in the pass of the event loop that follows the command, the end right behind it.
    QTimer nextPass;
    QTimer passBehind;
    for (QTimer* timer : {&nextPass, &passBehind}) {
        timer->setSingleShot(true);
    }
    QObject::connect(&nextPass, &QTimer::timeout, &mWindow, [&passBehind] { passBehind.start(0); });
    QObject::connect(&passBehind, &QTimer::timeout, &mWindow, [this] { mDevice.DropConnection(); });
    mDevice.mOnCommand = [&](const std::string& zCommand) -> std::optional<std::string> {
        if (zCommand == mDevice.DownloadCommand("1.wav")) {
            nextPass.start(0);
        }
        return std::nullopt;
    };
    Connect();
    Download({"1.wav", "3.wav"});
    mDevice.mOnCommand = {};
    ASSERT_EQ(mAlerts.size(), 1U);
    EXPECT_EQ(mAlerts.front().title, kFailed);
    // Writing to a connection that the other end has closed may be noticed first.
    EXPECT_THAT(mAlerts.front().message, AnyOf(kClosed, kReset, kBrokenPipe));
    EXPECT_THAT(LocalTree(), ElementsAre("1.wav", "2.wav"));
    EXPECT_EQ(mFolder.Read("1.wav"), "one");
    ExpectUsable();
}

// --- The device breaks the rules ---

struct sRuleBreak {
    const char* name;
    std::string answer;
    const char* message; ///< "%" stands for the local path
};

void PrintTo(const sRuleBreak& zBreak, std::ostream* zpStream) {
    *zpStream << zBreak.name;
}

class DownloadRules : public DownloadFailure, public ::testing::WithParamInterface<sRuleBreak> {};

TEST_P(DownloadRules, TheTransferEndsAndTheOldFileStays) {
    AnswerTo(mDevice.DownloadCommand("2.wav"), GetParam().answer);
    Connect();
    Meanwhile meanwhile;
    DownloadFiles(meanwhile);
    std::string message = GetParam().message;
    if (message.starts_with('%')) {
        message.replace(0, 1, mFolder / "2.wav");
    }
    ExpectFailed(message);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, DownloadRules,
    ::testing::Values(sRuleBreak{"MoreThanAnnounced", ScriptedDevice::LengthPrefix(4) + "12345",
                                 "Device sent more data than announced"},
                      sRuleBreak{"MuchMoreThanAnnounced",
                                 ScriptedDevice::LengthPrefix(4) + std::string(1000000, '1'),
                                 "Device sent more data than announced"},
                      sRuleBreak{"MoreThanAGibibyte", ScriptedDevice::LengthPrefix(1073741825) + "1",
                                 "% too large to download"},
                      sRuleBreak{"AsMuchAsALengthCanSay", ScriptedDevice::LengthPrefix(4294967295U),
                                 "% too large to download"}),
    [](const auto& zInfo) { return std::string(zInfo.param.name); });

struct sBadListing {
    const char* name;
    std::string answer;
    const char* message;
};

void PrintTo(const sBadListing& zListing, std::ostream* zpStream) {
    *zpStream << zListing.name;
}

class DownloadListings : public DownloadFailure, public ::testing::WithParamInterface<sBadListing> {};

TEST_P(DownloadListings, ABadOneEndsTheDownload) {
    AnswerTo(mDevice.DirCommand("f"), GetParam().answer);
    Connect();
    Download({"f", "3.wav"});
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kFailed, GetParam().message}));
    EXPECT_EQ(mDevice.CountOf("download"), 0);
    EXPECT_FALSE(mController.IsConnected());
    EXPECT_FALSE(ProgressWindow().isVisible());
    ExpectUsable();
}

INSTANTIATE_TEST_SUITE_P(
    Cases, DownloadListings,
    ::testing::Values(sBadListing{"TooLong", "<dir>" + std::string(600000, ' '), "Receive buffer overflow"},
                      sBadListing{"WithoutItsBegin", "Size = \"5\"></dir>", "Connection has been closed"}),
    [](const auto& zInfo) { return std::string(zInfo.param.name); });

// --- This computer ---

TEST_F(DownloadFailure, AFullDiskEndsTheDownload) {
    constexpr std::size_t kRoom = 1 << 20;
    AnswerTo(mDevice.DownloadCommand("2.wav"), mDevice.LengthPrefix(2 * kRoom) + std::string(2 * kRoom, 'x'));
    Connect();
    {
        const LoweredLimit limit(RLIMIT_FSIZE, kRoom);
        Meanwhile meanwhile;
        DownloadFiles(meanwhile);
    }
    EXPECT_EQ(Status(), mFolder / "2.wav" + " - failed to write file");
    ExpectFailed(mFolder / "2.wav" + " - failed to write file");
}

TEST_F(DownloadFailure, ADiskThatIsFullAtTheLastByteEndsTheDownload) {
    // A short file reaches the disk only when it is closed.
    AnswerTo(mDevice.DownloadCommand("2.wav"), mDevice.LengthPrefix(3000) + std::string(3000, 'x'));
    Connect();
    {
        const LoweredLimit limit(RLIMIT_FSIZE, 1000);
        Meanwhile meanwhile;
        DownloadFiles(meanwhile);
    }
    ExpectFailed(mFolder / "2.wav" + " - failed to write file");
}

} // namespace
