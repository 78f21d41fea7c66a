#include "Contrast.h"
#include "WindowFixture.h"

#include <gmock/gmock.h>

#include <netdb.h>

#include <array>

namespace {

using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

constexpr const char* kOverflow = "Receive buffer overflow";

class Connecting : public WindowFixture {
protected:
    std::string SearchTitle() { return "Searching for '" + mDevice.Address() + "'"; }

    void ExpectDisconnected(const std::string& zStatus) {
        EXPECT_FALSE(mController.IsConnected());
        EXPECT_EQ(Status(), zStatus);
        EXPECT_EQ(Directory(), "/");
        EXPECT_THAT(RowNames(), IsEmpty());
        EXPECT_TRUE(IsEnabled("Connect"));
        EXPECT_FALSE(Table().isEnabled());
        EXPECT_EQ(TitleInFront(), "");
    }

    /// The device at its best: what was wrong before must not stick to the program.
    void ExpectWorks() {
        mDevice.mWelcome = R"(<welcome>Name = "Healthy" Version = "1.10" ID = "1"</welcome>)";
        mDevice.mOnCommand = nullptr;
        EXPECT_TRUE(ConnectTo(mDevice));
        EXPECT_EQ(Status(), "Connected to 'Healthy'");
    }

    /// Answers the listing of a folder with this text.
    void AnswerListing(const std::string& zPath, const std::string& zReply) {
        mDevice.mOnCommand = [=](const std::string& zCommand) {
            return zCommand == ScriptedDevice::DirCommand(zPath) ? std::optional(zReply) : std::nullopt;
        };
    }
};

TEST_F(Connecting, TheProgramStartsWithAHint) {
    ExpectDisconnected(kHint);
    EXPECT_EQ(mDevice.ConnectionCount(), 0);
}

/// The contrast of what stands out most in a picture.
double HighestContrast(const QImage& zPicture) {
    double highest = 0.0;
    for (int y = 0; y < zPicture.height(); ++y) {
        for (int x = 0; x < zPicture.width(); ++x) {
            highest = std::max(highest, Contrast(zPicture.pixelColor(x, y), zPicture.pixelColor(0, 0)));
        }
    }
    return highest;
}

TEST_F(Connecting, TheHintCanBeReadOnLightAndDarkDesktops) {
    for (const auto& [window, text] : {std::pair("#efefef", "#000000"), std::pair("#2a2e32", "#fcfcfc")}) {
        QPalette palette{QColor(window)};
        palette.setColor(QPalette::Text, QColor(text));
        palette.setColor(QPalette::Disabled, QPalette::Text, QColor("#808080"));
        palette.setColor(QPalette::PlaceholderText, QColor("#80000000"));
        Table().setPalette(palette);
        EXPECT_GT(HighestContrast(Table().viewport()->grab().toImage()), 4.5) << window;
    }
}

TEST_F(Connecting, ShowsTheRootFolderOfTheDevice) {
    mDevice.AddFolder("Music");
    mDevice.AddFile("a.wav");
    ASSERT_TRUE(ConnectTo(mDevice));
    EXPECT_EQ(Status(), "Connected to 'Scripted'");
    EXPECT_EQ(Directory(), "/");
    EXPECT_THAT(RowNames(), ElementsAre("Music", "a.wav"));
    EXPECT_THAT(mDevice.Commands(), ElementsAre(ScriptedDevice::DirCommand("")));
    EXPECT_EQ(TitleInFront(), "");
}

TEST_F(Connecting, PressingConnectWhileConnectedDisconnects) {
    mDevice.AddFile("a.wav");
    ASSERT_TRUE(ConnectTo(mDevice));
    Press("Disconnect");
    ExpectDisconnected(kHint);
    EXPECT_TRUE(WaitFor([&] { return !mDevice.HasConnection(); }));
    EXPECT_EQ(mDevice.ConnectionCount(), 1);
}

TEST_F(Connecting, CancelledChoiceConnectsNowhere) {
    Meanwhile meanwhile;
    meanwhile.Answer("Select Device", "Cancel");
    Press("Connect");
    ExpectDisconnected(kHint);
    EXPECT_EQ(mDevice.ConnectionCount(), 0);
}

// --- The welcome ---

struct sWelcomeCase {
    const char* welcome;
    const char* name; ///< null: the dotted address
};

TEST_F(Connecting, TheStatusNamesTheDevice) {
    const std::array<sWelcomeCase, 7> cases = {{
        {R"(<welcome>Name = "Shelf" Version = "1.10" ID = "7"</welcome>)", "Shelf"},
        {R"(<welcome>Version = "1.10" ID = "7" Name = "Shelf"</welcome>trailing)", "Shelf"},
        {R"(leading<welcome>Name = "Küche 100%s"</welcome>)", "Küche 100%s"},
        {R"(<welcome>Name = "<b>bold</b>"</welcome>)", "<b>bold</b>"},
        {R"(<welcome>Version = "1.10" ID = "7"</welcome>)", nullptr},
        {R"(<welcome>Name = "" Version = "1.10"</welcome>)", nullptr},
        {R"(<welcome></welcome>)", nullptr},
    }};
    for (const sWelcomeCase& row : cases) {
        SCOPED_TRACE(row.welcome);
        mDevice.mWelcome = row.welcome;
        ASSERT_TRUE(ConnectTo(mDevice));
        EXPECT_EQ(Status(), "Connected to '" + (row.name != nullptr ? row.name : mDevice.Address()) + "'");
        Press("Disconnect");
    }
}

TEST_F(Connecting, WelcomeAndListingMayComeByteByByte) {
    mDevice.mPieceSize = 1;
    mDevice.AddFolder("Music");
    mDevice.AddFile("a.wav");
    ASSERT_TRUE(ConnectTo(mDevice));
    EXPECT_EQ(Status(), "Connected to 'Scripted'");
    EXPECT_THAT(RowNames(), ElementsAre("Music", "a.wav"));
}

/// The ways in which people end a wait.
const std::array<std::pair<const char*, void (*)(QWidget&)>, 3> kWaysToCancel = {{
    {"Cancel", [](QWidget& zrWindow) { Click<QPushButton>(zrWindow, "Cancel"); }},
    {"Escape", [](QWidget& zrWindow) { QTest::keyClick(&zrWindow, Qt::Key_Escape); }},
    {"frame", [](QWidget& zrWindow) { CloseByFrame(zrWindow); }},
}};

TEST_F(Connecting, WithoutAWelcomeItWaitsUntilPeopleHaveEnough) {
    for (const auto& [name, cancel] : kWaysToCancel) {
        SCOPED_TRACE(name);
        mDevice.mWelcome = "";
        Meanwhile meanwhile;
        meanwhile.WhenShown(SearchTitle(), cancel);
        EXPECT_FALSE(ConnectTo(mDevice));
        ExpectDisconnected(kHint);
        EXPECT_TRUE(WaitFor([&] { return !mDevice.HasConnection(); }));
        EXPECT_THAT(mDevice.Commands(), IsEmpty());
    }
    ExpectWorks();
}

TEST_F(Connecting, ABadWelcomeKeepsWaitingUntilCancel) {
    mDevice.mWelcome = R"(<greeting>Name = "Odd"</welcome>)";
    Meanwhile meanwhile;
    meanwhile.Answer(SearchTitle(), "Cancel");
    EXPECT_FALSE(ConnectTo(mDevice));
    ExpectDisconnected(kHint);
    ExpectWorks();
}

TEST_F(Connecting, AWelcomeMayComeLate) {
    mDevice.Hold();
    Meanwhile meanwhile;
    meanwhile.WhenShown(SearchTitle(), [&](QWidget&) { mDevice.Release(); });
    EXPECT_TRUE(ConnectTo(mDevice));
    EXPECT_EQ(Status(), "Connected to 'Scripted'");
    EXPECT_EQ(TitleInFront(), "");
}

TEST_F(Connecting, AFloodInsteadOfAWelcomeEndsTheAttempt) {
    mDevice.mWelcome = std::string(600000, '.');
    EXPECT_FALSE(ConnectTo(mDevice));
    ExpectDisconnected(kOverflow);
    ExpectWorks();
}

// --- Attempts that fail ---

TEST_F(Connecting, ARefusedConnectionSaysWhy) {
    mDevice.SwitchOff();
    EXPECT_FALSE(ConnectTo(mDevice));
    ExpectDisconnected("Connection refused (nothing answers at this address and port)");
    mDevice.SwitchOn();
    ExpectWorks();
}

TEST_F(Connecting, AnAddressThatIsNoneEndsWithTheResolversText) {
    EXPECT_FALSE(ConnectTo("..."));
    const std::string status = Status();
    // Which of these it is depends on the machine's name servers.
    EXPECT_THAT(status, AnyOf(StartsWith(::gai_strerror(EAI_NONAME)), StartsWith(::gai_strerror(EAI_AGAIN)),
                              StartsWith(::gai_strerror(EAI_FAIL))));
    EXPECT_THAT(status, ::testing::MatchesRegex(".+ [(].+[)]"));
    ExpectDisconnected(status);
    ExpectWorks();
}

TEST_F(Connecting, AConnectCallThatFailsAtOnceEndsTheAttempt) {
    EXPECT_FALSE(ConnectTo("255.255.255.255"));
    ExpectDisconnected("Network is unreachable (this computer is not on that network)");
    ExpectWorks();
}

TEST_F(Connecting, ADeviceThatHangsUpBeforeItsWelcomeEndsTheAttempt) {
    mDevice.mWelcome = "";
    Meanwhile meanwhile;
    meanwhile.When(
        "a connection", [&] { return mDevice.HasConnection(); }, [&] { mDevice.DropConnection(); });
    EXPECT_FALSE(ConnectTo(mDevice));
    ExpectDisconnected("Connection has been closed");

    meanwhile.When(
        "a connection", [&] { return mDevice.HasConnection(); }, [&] { mDevice.ResetConnection(); });
    EXPECT_FALSE(ConnectTo(mDevice));
    ExpectDisconnected("Connection reset by peer (the device broke the connection off)");
    ExpectWorks();
}

TEST_F(Connecting, ALeftoverFailureTextEndsExactlyOneAttempt) {
    ASSERT_TRUE(ConnectTo(mDevice));
    AnswerListing("", std::string(600000, '.'));
    Key(Qt::Key_F5);
    ExpectDisconnected(kOverflow);
    mDevice.mOnCommand = nullptr;

    EXPECT_FALSE(ConnectTo(mDevice));
    ExpectDisconnected(kOverflow);
    ExpectWorks();
    Press("Disconnect");
    ExpectWorks();
}

// --- A connection that ends ---

struct sEndCase {
    const char* description;
    void (ScriptedDevice::*end)();
    const char* status;
};

const std::array<sEndCase, 2> kEnds = {{
    {"closed", &ScriptedDevice::DropConnection, "Press the 'Connect' button to begin"},
    {"reset", &ScriptedDevice::ResetConnection,
     "Connection reset by peer (the device broke the connection off)"},
}};

TEST_F(Connecting, ADeviceMayHangUpWhileNothingHappens) {
    for (const sEndCase& row : kEnds) {
        SCOPED_TRACE(row.description);
        ASSERT_TRUE(ConnectTo(mDevice));
        (mDevice.*row.end)();
        EXPECT_TRUE(WaitFor([&] { return !mController.IsConnected(); }));
        ExpectDisconnected(row.status);
    }
    ExpectWorks();
}

TEST_F(Connecting, ADeviceMayHangUpAtEveryByteOfItsWelcome) {
    const std::string welcome = mDevice.mWelcome;
    for (std::size_t length = 0; length < welcome.size(); ++length) {
        SCOPED_TRACE(length);
        mDevice.mWelcome = welcome.substr(0, length);
        Meanwhile meanwhile;
        meanwhile.When(
            "a connection", [&] { return mDevice.HasConnection(); }, [&] { mDevice.DropConnection(); });
        EXPECT_FALSE(ConnectTo(mDevice));
        ExpectDisconnected("Connection has been closed");
    }
    ExpectWorks();
}

TEST_F(Connecting, ADeviceMayHangUpAtEveryByteOfItsListing) {
    mDevice.AddFile("a.wav");
    const std::string listing = mDevice.DirReply("");
    for (std::size_t length = 0; length < listing.size(); ++length) {
        SCOPED_TRACE(length);
        mDevice.mOnCommand = [&, length](const std::string& /*zCommand*/) {
            Soon([&] { mDevice.DropConnection(); });
            return listing.substr(0, length);
        };
        EXPECT_FALSE(ConnectTo(mDevice));
        ExpectDisconnected(kHint);
    }
    ExpectWorks();
}

TEST_F(Connecting, AListingOfAHundredThousandEntriesIsShown) {
    std::string entries;
    for (int number = 0; number < 100'000; ++number) {
        entries += "<\"1\">";
    }
    AnswerListing("", "<dir> " + entries + "</dir>");
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(ConnectTo(mDevice));
    EXPECT_EQ(Table().model()->rowCount(), 100'000);
    EXPECT_LT(timer.elapsed(), 20'000);
}

TEST_F(Connecting, ADeviceMayHangUpDuringAListing) {
    for (const sEndCase& row : kEnds) {
        SCOPED_TRACE(row.description);
        ASSERT_TRUE(ConnectTo(mDevice));
        mDevice.AddFile("a.wav");
        mDevice.mOnCommand = [&](const std::string& /*zCommand*/) {
            Soon([&] { (mDevice.*row.end)(); });
            return std::string();
        };
        Key(Qt::Key_F5);
        ExpectDisconnected(row.status);
        mDevice.mOnCommand = nullptr;
    }
    ExpectWorks();
}

TEST_F(Connecting, ADeviceMayHangUpDuringTheFirstListing) {
    mDevice.mOnCommand = [&](const std::string& /*zCommand*/) {
        Soon([&] { mDevice.DropConnection(); });
        return std::string();
    };
    EXPECT_FALSE(ConnectTo(mDevice));
    ExpectDisconnected(kHint);
    ExpectWorks();
}

TEST_F(Connecting, TheKeyboardGoesOnInTheTable) {
    mDevice.AddFolder("Music");
    ASSERT_TRUE(ConnectTo(mDevice));
    EXPECT_EQ(Table().window()->focusWidget(), &Table());
    Key(Qt::Key_Down);
    Key(Qt::Key_Return);
    EXPECT_EQ(Directory(), "/Music");
}

TEST_F(Connecting, AndOnConnectWhenTheTableIsLeft) {
    ASSERT_TRUE(ConnectTo(mDevice));
    ASSERT_EQ(Table().window()->focusWidget(), &Table());
    mController.DisconnectDevice();
    EXPECT_EQ(mWindow.focusWidget(), &Button("Connect"));
}

TEST_F(Connecting, ADeviceMayHangUpWithItsWelcome) {
    mDevice.Hold();
    const std::function<void()> greetAndLeave = [&] {
        if (!mDevice.HasConnection()) {
            Soon(greetAndLeave);
            return;
        }
        mDevice.Release();
        mDevice.DropConnection();
    };
    Soon(greetAndLeave);
    EXPECT_FALSE(ConnectTo(mDevice));
    // It depends on the network whether the first listing has begun by then; that ends in silence.
    EXPECT_THAT(Status(), ::testing::AnyOf("Connection has been closed", kHint));
    EXPECT_FALSE(mController.IsConnected());
    ExpectWorks();
}

// --- Listings that fail ---

TEST_F(Connecting, AnUnparsableListingEndsTheConnectionWithoutWords) {
    AnswerListing("", R"(<item Name = "a.wav" Type = "File"></dir>)");
    EXPECT_FALSE(ConnectTo(mDevice));
    ExpectDisconnected(kHint);
    EXPECT_EQ(mDevice.ConnectionCount(), 1);
    ExpectWorks();
}

TEST_F(Connecting, AnOverflowingListingSaysSo) {
    mDevice.AddFolder("Flood");
    ASSERT_TRUE(ConnectTo(mDevice));
    AnswerListing("Flood", "<dir> " + std::string(600000, '.'));
    DoubleClickRow("Flood");
    ExpectDisconnected(kOverflow);
}

TEST_F(Connecting, AFloodThatNobodyAskedForIsNoticedWithTheNextAction) {
    ASSERT_TRUE(ConnectTo(mDevice));
    mDevice.Send(std::string(600000, '.'));
    ASSERT_TRUE(WaitFor([&] { return !mController.GetLastError().empty(); }));
    Key(Qt::Key_F5);
    ExpectDisconnected(kOverflow);
}

TEST_F(Connecting, UnaskedBytesBeforeAListingDoNoHarm) {
    mDevice.AddFile("a.wav");
    ASSERT_TRUE(ConnectTo(mDevice));
    mDevice.Send(R"(<dir> <item Name = "ghost"></dir>)");
    RunLoopPasses(50);
    EXPECT_THAT(RowNames(), ElementsAre("a.wav"));
    Key(Qt::Key_F5);
    EXPECT_THAT(RowNames(), ElementsAre("a.wav"));
}

TEST_F(Connecting, ALongListingWorksHoweverTheNetworkCutsIt) {
    std::string reply = "<dir> Rights = \"cd-\"\n";
    int count = 0;
    while (reply.size() < 499900) {
        reply += "<item Name = \"file " + std::to_string(count++) + R"(.wav" Type = "File" Size = "1">)";
    }
    reply.resize(499994, ' ');
    AnswerListing("", reply + "</dir>");
    for (const int pieceSize : {0, 1460, 4097, 65536}) {
        SCOPED_TRACE(pieceSize);
        mDevice.mPieceSize = pieceSize;
        ASSERT_TRUE(ConnectTo(mDevice));
        EXPECT_THAT(RowNames(), SizeIs(count));
        EXPECT_EQ(RowNames().back(), "file " + std::to_string(count - 1) + ".wav");
        Press("Disconnect");
    }
}

// --- How old a device is ---

struct sVersionCase {
    const char* version;
    bool asks;
};

TEST_F(Connecting, OnlyNewDevicesAreAskedForTheSizeOfATree) {
    mDevice.AddFolder("Music");
    mDevice.AddFile("Music/a.wav", "four");
    mDevice.AddFile("Music/b.wav", "seven77");
    for (const sVersionCase& row : {sVersionCase{"1.10", true}, {"2", true}, {"1.09", false}, {"", false}}) {
        SCOPED_TRACE(row.version);
        mDevice.mWelcome = R"(<welcome>Name = "n" Version = ")" + std::string(row.version) + R"("</welcome>)";
        ASSERT_TRUE(ConnectTo(mDevice));
        mDevice.ForgetCommands();
        std::uint32_t size = 1;
        std::int32_t count = 2;
        EXPECT_EQ(mController.GetDirRecurseInfo("Music", size, count), row.asks);
        EXPECT_EQ(size, row.asks ? 11U : 1U);
        EXPECT_EQ(count, 2);
        EXPECT_EQ(mDevice.CountOf("dir_recurse"), row.asks ? 1 : 0);
        Press("Disconnect");
    }
}

} // namespace
