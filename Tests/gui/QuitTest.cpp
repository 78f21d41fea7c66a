#include "Hermetic.h"
#include "ModalSession.h"
#include "Settings.h"
#include "TerminationSignals.h"
#include "WindowFixture.h"

#include <array>
#include <csignal>
#include <ostream>
#include <tuple>

namespace {

constexpr const char* kRemembered = "remembered when quitting";

struct sWay {
    const char* name;
    void (*quit)(class Quitting& zrTest);
};

struct sSituation {
    const char* name;
    /// Brings the program into the situation and calls zQuit there, while the loops of the program run.
    void (*run)(Quitting& zrTest, const std::function<void()>& zQuit);
};

void PrintTo(const sWay& zWay, std::ostream* zpStream) {
    *zpStream << zWay.name;
}

void PrintTo(const sSituation& zSituation, std::ostream* zpStream) {
    *zpStream << zSituation.name;
}

/// Lets its situations use the fixture's ways.
class Quitting : public WindowFixture, public ::testing::WithParamInterface<std::tuple<sWay, sSituation>> {
public:
    using WindowFixture::Choose;
    using WindowFixture::ConnectTo;
    using WindowFixture::DoubleClickRow;
    using WindowFixture::Key;
    using WindowFixture::kReading;
    using WindowFixture::mDevice;
    using WindowFixture::mWindow;
    using WindowFixture::Press;

    void AskForSize() {
        std::uint32_t size = 0;
        std::int32_t count = 0;
        mController.GetDirRecurseInfo("", size, count);
    }

    std::string SearchTitle() { return "Searching for '" + mDevice.Address() + "'"; }

    Meanwhile mMeanwhile;
};

const std::array<sWay, 4> kWays = {{
    {"CloseButton", [](Quitting& zrTest) { CloseByFrame(zrTest.mWindow); }},
    {"CloseCall", [](Quitting& zrTest) { zrTest.mWindow.close(); }},
    {"CtrlQ", [](Quitting& zrTest) { zrTest.Key(Qt::Key_Q, Qt::ControlModifier); }},
    {"Signal", [](Quitting& /*zrTest*/) { std::raise(SIGTERM); }},
}};

const std::array<sSituation, 11> kSituations = {{
    {"Disconnected", [](Quitting& /*zrTest*/, const std::function<void()>& zQuit) { zQuit(); }},
    {"Connected",
     [](Quitting& zrTest, const std::function<void()>& zQuit) {
         ASSERT_TRUE(zrTest.ConnectTo(zrTest.mDevice));
         zQuit();
     }},
    {"Choosing",
     [](Quitting& zrTest, const std::function<void()>& zQuit) {
         zrTest.mMeanwhile.WhenShown("Select Device", [=](QWidget&) { zQuit(); });
         zrTest.Press("Connect");
     }},
    {"AlertUp",
     [](Quitting& zrTest, const std::function<void()>& zQuit) {
         GetSettings().ConnectionAuto = true;
         zrTest.mMeanwhile.Answer("Select Device", "OK");
         zrTest.mMeanwhile.WhenShown("No devices were found", [=](QWidget&) { zQuit(); });
         zrTest.Press("Connect");
     }},
    {"ConnectingUnseen",
     [](Quitting& zrTest, const std::function<void()>& zQuit) {
         zrTest.mDevice.mWelcome = "";
         zrTest.mMeanwhile.When(
             "a connection", [&zrTest] { return zrTest.mDevice.HasConnection(); }, zQuit);
         zrTest.ConnectTo(zrTest.mDevice);
     }},
    {"Connecting",
     [](Quitting& zrTest, const std::function<void()>& zQuit) {
         zrTest.mDevice.mWelcome = "";
         zrTest.mMeanwhile.WhenShown(zrTest.SearchTitle(), [=](QWidget&) { zQuit(); });
         zrTest.ConnectTo(zrTest.mDevice);
     }},
    {"Listing",
     [](Quitting& zrTest, const std::function<void()>& zQuit) {
         ASSERT_TRUE(zrTest.ConnectTo(zrTest.mDevice));
         zrTest.mDevice.Hold();
         zrTest.mMeanwhile.WhenShown(Quitting::kReading, [=](QWidget&) { zQuit(); });
         zrTest.Key(Qt::Key_F5);
     }},
    {"ListingUnseen",
     [](Quitting& zrTest, const std::function<void()>& zQuit) {
         ASSERT_TRUE(zrTest.ConnectTo(zrTest.mDevice));
         zrTest.mDevice.mOnCommand = [=](const std::string& /*zCommand*/) {
             Soon(zQuit);
             return std::string();
         };
         zrTest.Key(Qt::Key_F5);
     }},
    {"CancellingAListing",
     [](Quitting& zrTest, const std::function<void()>& zQuit) {
         ASSERT_TRUE(zrTest.ConnectTo(zrTest.mDevice));
         zrTest.mDevice.Hold();
         zrTest.mMeanwhile.WhenShown(Quitting::kReading, [=](QWidget& zrProgress) {
             Click<QPushButton>(zrProgress, "Cancel");
             Soon(zQuit, std::chrono::milliseconds(50));
         });
         zrTest.Key(Qt::Key_F5);
     }},
    {"AskingForASize",
     [](Quitting& zrTest, const std::function<void()>& zQuit) {
         ASSERT_TRUE(zrTest.ConnectTo(zrTest.mDevice));
         zrTest.mDevice.Hold();
         zrTest.mMeanwhile.WhenShown(Quitting::kReading, [=](QWidget&) { zQuit(); });
         zrTest.AskForSize();
     }},
    {"AboutUp",
     [](Quitting& zrTest, const std::function<void()>& zQuit) {
         QCoreApplication::setApplicationVersion(QStringLiteral("9.8.7"));
         zrTest.mMeanwhile.WhenShown("Quillbox 9.8.7", [=](QWidget&) { zQuit(); });
         zrTest.Choose("About Quillbox");
     }},
}};

TEST_P(Quitting, EveryLoopEndsAndTheSettingsAreKept) {
    const auto& way = std::get<sWay>(GetParam());
    const auto& situation = std::get<sSituation>(GetParam());
    const TerminationSignals termination([&] { mController.applicationShouldTerminate(); });
    GetSettings().RecentDeviceName = kRemembered;

    EXPECT_EQ(RunApplication([&] { situation.run(*this, [&] { way.quit(*this); }); }), 0);

    EXPECT_FALSE(ModalSession::IsRunning());
    EXPECT_FALSE(mController.IsConnected());
    EXPECT_TRUE(WaitFor([&] { return !mDevice.HasConnection(); }));
    cSettings saved;
    EXPECT_TRUE(saved.Load());
    EXPECT_EQ(saved.RecentDeviceName, kRemembered);
}

INSTANTIATE_TEST_SUITE_P(All, Quitting,
                         ::testing::Combine(::testing::ValuesIn(kWays), ::testing::ValuesIn(kSituations)),
                         [](const auto& zInfo) {
                             return std::string(std::get<0>(zInfo.param).name) +
                                    std::get<1>(zInfo.param).name;
                         });

} // namespace
