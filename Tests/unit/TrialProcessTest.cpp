#include "TrialProcess.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <functional>

namespace {

constexpr auto kGoOn = [] { return true; };

/// Tries what never ends of its own.
bool TryForEver(const std::function<bool()>& mayGoOn) {
    return SucceedsInTrial(
        [] {
            for (volatile bool goes = true; goes;) {
            }
            return true;
        },
        mayGoOn);
}

TEST(TrialProcess, SaysWhatTheTrialSaid) {
    EXPECT_TRUE(SucceedsInTrial([] { return true; }, kGoOn));
    EXPECT_FALSE(SucceedsInTrial([] { return false; }, kGoOn));
    EXPECT_TRUE(SucceedsInTrial([] { return true; }, nullptr));
}

TEST(TrialProcess, LeavesThisProcessAsItWas) {
    int number = 1;
    EXPECT_TRUE(SucceedsInTrial([&] { return ++number == 2; }, kGoOn));
    EXPECT_EQ(number, 1);
}

TEST(TrialProcess, SurvivesWhatEndsTheTrial) {
    EXPECT_FALSE(SucceedsInTrial([]() -> bool { _exit(0); }, kGoOn));
    EXPECT_FALSE(SucceedsInTrial([]() -> bool { std::abort(); }, kGoOn));
    EXPECT_FALSE(SucceedsInTrial([]() -> bool { throw 1; }, kGoOn));
}

TEST(TrialProcess, EndsWhatGoesOnForEver) {
    int questions = 0;
    EXPECT_FALSE(TryForEver([&] { return ++questions > 0; }));
    EXPECT_GT(questions, 5);
    EXPECT_FALSE(TryForEver(nullptr));
}

TEST(TrialProcess, EndsAtOnceWhenToldTo) {
    int questions = 0;
    EXPECT_FALSE(TryForEver([&] { return ++questions < 3; }));
    EXPECT_EQ(questions, 3);
}

TEST(TrialProcess, LeavesNoProcessBehind) {
    SucceedsInTrial([] { return true; }, kGoOn);
    TryForEver([] { return false; });
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

} // namespace
