#include "ModalSession.h"
#include "WindowFixture.h"

#include <QtWidgets/QWidget>

#include <array>

namespace {

/// One step of waiting, with something that happens within the turn that it gives its session.
class WaitingStep : public WindowFixture {
public:
    /// Runs one step whose turn begins with zAction, and returns what the step found.
    Controller::eReply StepDuring(const std::function<void()>& zAction) {
        ModalSession session(mProgress);
        QMetaObject::invokeMethod(&mWindow, zAction, Qt::QueuedConnection);
        return mController.CheckForReply(&session);
    }

    void Disconnect() { mController.DisconnectDevice(); }

    void LoseConnection() {
        mDevice.DropConnection();
        EXPECT_TRUE(WaitFor([this] { return !mController.IsConnected(); }));
    }

    void BreakConnection() {
        mDevice.ResetConnection();
        EXPECT_TRUE(WaitFor([this] { return !mController.IsConnected(); }));
    }

    void Quit() { EXPECT_TRUE(mController.applicationShouldTerminate()); }

private:
    QWidget mProgress;
};

struct sTurn {
    const char* name;
    void (WaitingStep::*act)();
};

void PrintTo(const sTurn& zTurn, std::ostream* zpStream) {
    *zpStream << zTurn.name;
}

class WaitingStepEnds : public WaitingStep, public ::testing::WithParamInterface<sTurn> {};

TEST_P(WaitingStepEnds, ALostConnectionIsNoSuccess) {
    ASSERT_TRUE(ConnectTo(mDevice));
    auto reply = Controller::StillWaiting;
    RunApplication([&] {
        reply = StepDuring([this] { (this->*GetParam().act)(); });
        QCoreApplication::exit(0);
    });
    EXPECT_EQ(reply, Controller::FailedOrDisconnected) << "an idle client is all that is left to see";
    EXPECT_FALSE(mController.IsConnected());
}

INSTANTIATE_TEST_SUITE_P(Ways, WaitingStepEnds,
                         ::testing::Values(sTurn{"ByDisconnecting", &WaitingStep::Disconnect},
                                           sTurn{"ByClosing", &WaitingStep::LoseConnection},
                                           sTurn{"ByBreakingOff", &WaitingStep::BreakConnection},
                                           sTurn{"ByQuitting", &WaitingStep::Quit}),
                         [](const auto& zInfo) { return std::string(zInfo.param.name); });

TEST_F(WaitingStep, AnIdleClientOfAConnectionIsSuccess) {
    ASSERT_TRUE(ConnectTo(mDevice));
    bool ran = false;
    EXPECT_EQ(StepDuring([&ran] { ran = true; }), Controller::Done);
    EXPECT_TRUE(ran) << "the step's turn delivers events";
}

} // namespace
