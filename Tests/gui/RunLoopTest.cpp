#include "RunLoop.h"

#include "WaitFor.h"

#include <QtCore/QElapsedTimer>
#include <gtest/gtest.h>

#include <ctime>

namespace {

using namespace std::chrono_literals;

int sPauses = 0;

} // namespace

/// Takes the place of the system's.
extern "C" int nanosleep(const timespec* zpTime, timespec* zpLeft) {
    ++sPauses;
    return clock_nanosleep(CLOCK_MONOTONIC, 0, zpTime, zpLeft);
}

namespace {

/// Longer than any test may take, so that only the awaited thing can end the slice.
constexpr auto kNever = std::chrono::hours(1);

/// More than the events take that come with the start of a program.
constexpr int kPassesOfTheStart = 10;

TEST(RunLoop, AsksBeforeItPumps) {
    bool pumped = false;
    QTimer::singleShot(0, [&] { pumped = true; });
    EXPECT_TRUE(RunLoop::RunSlice(kNever, [] { return true; }));
    EXPECT_FALSE(pumped);
    RunLoopPasses(2);
    EXPECT_TRUE(pumped);
}

TEST(RunLoop, ASliceEndsAsSoonAsTheAwaitedThingHasHappened) {
    bool happened = false;
    QTimer::singleShot(0, [&] { happened = true; });
    EXPECT_TRUE(RunLoop::RunSlice(kNever, [&] { return happened; }));
}

TEST(RunLoop, ASliceEndsWhenItsTimeIsUp) {
    QElapsedTimer clock;
    clock.start();
    EXPECT_FALSE(RunLoop::RunSlice(30ms, [] { return false; }));
    EXPECT_GE(clock.elapsed(), 29);
}

TEST(RunLoop, ASliceWithoutTimePumpsOnce) {
    int asked = 0;
    EXPECT_FALSE(RunLoop::RunSlice(0ms, [&] {
        ++asked;
        return false;
    }));
    EXPECT_GE(asked, 2);
}

TEST(RunLoop, EventsRunWhileASliceWaits) {
    int ticks = 0;
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, &ticker, [&] { ++ticks; });
    ticker.start(1);
    EXPECT_TRUE(RunLoop::RunSlice(kNever, [&] { return ticks >= 3; }));
}

TEST(RunLoop, SlicesNest) {
    bool inner = false;
    QTimer::singleShot(0, [&] { inner = !RunLoop::RunSlice(5ms, [] { return false; }); });
    EXPECT_TRUE(RunLoop::RunSlice(kNever, [&] { return inner; }));
}

TEST(RunLoop, AnInnerSliceDoesNotKeepAnOuterOneBeyondItsEnd) {
    QTimer::singleShot(0, [] { RunLoop::RunSlice(20ms, [] { return false; }); });
    EXPECT_FALSE(RunLoop::RunSlice(1ms, [] { return false; }));
}

TEST(RunLoop, AFullRoundLastsATenthOfASecondAndAPause) {
    RunLoopPasses(kPassesOfTheStart);
    QElapsedTimer clock;
    clock.start();
    RunLoop::WaitRound([] { return false; });
    EXPECT_GE(clock.elapsed(), 109);
}

TEST(RunLoop, APauseFollowsAFullRoundInWhichNothingHappened) {
    RunLoopPasses(kPassesOfTheStart);
    sPauses = 0;
    RunLoop::WaitRound([] { return false; });
    EXPECT_EQ(sPauses, 1);
}

TEST(RunLoop, NoPauseFollowsAFullRoundInWhichSomethingHappened) {
    QTimer work;
    work.start(1);
    sPauses = 0;
    RunLoop::WaitRound([] { return false; });
    EXPECT_EQ(sPauses, 0);
}

TEST(RunLoop, ARoundEndsAtOnceAndWithoutAPause) {
    // A hundred pauses would take a second; the comparison leaves room for a slow machine.
    constexpr int kRounds = 500;
    QElapsedTimer clock;
    clock.start();
    for (int round = 0; round < kRounds; ++round) {
        bool happened = false;
        QTimer::singleShot(0, [&] { happened = true; });
        RunLoop::WaitRound([&] { return happened; });
    }
    EXPECT_LT(clock.elapsed(), kRounds * 10);
}

} // namespace
