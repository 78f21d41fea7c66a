#include "AsyncSocket.h"
#include "WindowFixture.h"

namespace {

constexpr const char* kOneSocket =
    R"(Mac/Classes/Controller:[0-9]+: failed assertion `\[mClientSockets count\] == 1')";
constexpr const char* kNeverAccepts = "Mac/Classes/Controller:[0-9]+: failed assertion `0'";

using ControllerDeathTest = WindowFixture;

TEST_F(ControllerDeathTest, BytesGoOutOverAConnectionOnly) {
    EXPECT_DEATH(mController.SendBytes("x", 1), kOneSocket);
}

TEST_F(ControllerDeathTest, CallbacksOfASocketNeedOne) {
    AsyncSocket stray;
    EXPECT_DEATH(mController.onSocketDidConnectToHost(stray, "host", 1), kOneSocket);
    EXPECT_DEATH(mController.onSocketDidReadData(stray, "x", 0), kOneSocket);
}

TEST_F(ControllerDeathTest, NobodyConnectsToTheProgram) {
    AsyncSocket stray;
    AsyncSocket accepted;
    EXPECT_DEATH(mController.onSocketDidAcceptNewSocket(stray, accepted), kNeverAccepts);
}

} // namespace
