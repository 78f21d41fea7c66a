#include "ProgressEstimate.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace {

using namespace std::chrono_literals;
using tTime = cProgressEstimate::tTime;
using tSeconds = std::chrono::seconds;

constexpr std::uint64_t kKiB = 1024;
constexpr std::uint64_t kMiB = 1024 * kKiB;
constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t kQuarter = 1ULL << 62U; // of it
constexpr std::uint64_t kUnsure = 1ULL << 12U;  ///< what a large rate may be off

class ProgressEstimate : public ::testing::Test {
protected:
    void Note() { mEstimate.Note(mNow, mDone, mTotal); }

    /// Notes every tenth of a second while it goes at a rate.
    void Go(tTime zTime, std::uint64_t zBytesPerSecond) {
        Note();
        for (const tTime end = mNow + zTime; mNow < end;) {
            mNow += 100ms;
            mDone += zBytesPerSecond / 10;
            Note();
        }
    }

    void ExpectRate(std::uint64_t zLeast, std::uint64_t zMost) const {
        ASSERT_TRUE(mEstimate.Rate());
        EXPECT_GE(*mEstimate.Rate(), zLeast);
        EXPECT_LE(*mEstimate.Rate(), zMost);
    }

    void ExpectNothingKnown() const {
        EXPECT_FALSE(mEstimate.Rate());
        EXPECT_FALSE(mEstimate.TimeLeft());
    }

    cProgressEstimate mEstimate;
    tTime mNow = 5000s;
    std::uint64_t mDone = 0;
    std::uint64_t mTotal = 100 * kMiB;
};

// --- When there is something to tell ---

TEST_F(ProgressEstimate, KnowsNothingWithoutAmounts) {
    ExpectNothingKnown();
    Note();
    ExpectNothingKnown();
}

TEST_F(ProgressEstimate, KnowsTheRateAfterASecond) {
    Go(900ms, kMiB);
    ExpectNothingKnown();
    Go(100ms, kMiB);
    EXPECT_EQ(mEstimate.Rate(), kMiB / 10 * 10);
}

TEST_F(ProgressEstimate, KnowsTheTimeLeftAfterThree) {
    Go(2900ms, kMiB);
    EXPECT_FALSE(mEstimate.TimeLeft());
    Go(100ms, kMiB);
    EXPECT_EQ(mEstimate.TimeLeft(), 98s); // a tenth of a mebibyte is no whole number of bytes
}

TEST_F(ProgressEstimate, CountsWhatWasDoneBeforeTheFirstAmountForNoRate) {
    mDone = 50 * kMiB;
    Go(4s, 100 * kKiB);
    ExpectRate(100 * kKiB, 100 * kKiB);
}

TEST_F(ProgressEstimate, WithNothingLeftTellsNoTime) {
    mTotal = 5 * 10 * kKiB;
    Go(4s, 10 * kKiB);
    EXPECT_EQ(mEstimate.TimeLeft(), 1s);
    Go(1s, 10 * kKiB);
    EXPECT_EQ(mDone, mTotal);
    EXPECT_TRUE(mEstimate.Rate());
    EXPECT_FALSE(mEstimate.TimeLeft());
}

// --- Steady figures ---

TEST_F(ProgressEstimate, ChangesOnceASecond) {
    Go(5s, kMiB);
    const auto rate = mEstimate.Rate();
    const auto left = mEstimate.TimeLeft();
    Go(900ms, 20 * kMiB);
    EXPECT_EQ(mEstimate.Rate(), rate);
    EXPECT_EQ(mEstimate.TimeLeft(), left);
    Go(100ms, 20 * kMiB);
    EXPECT_GT(mEstimate.Rate(), rate);
    EXPECT_LT(mEstimate.TimeLeft(), left);
}

TEST_F(ProgressEstimate, ManySmallFilesHaveOneRate) {
    constexpr std::uint64_t kFile = 1700;
    for (int file = 0; file < 20000; ++file) { // a thousand in a second, all of each in its last millisecond
        mNow += 1ms;
        mDone += kFile;
        Note();
        if (file > 1000) {
            ASSERT_EQ(mEstimate.Rate(), 1000 * kFile) << file;
        }
    }
}

TEST_F(ProgressEstimate, ARateThatWaversMovesNoEnd) {
    mTotal = 1000 * kMiB;
    Go(6s, kMiB);
    std::vector<tTime> ends;
    for (int second = 0; second < 60; ++second) {
        Go(1s, second % 2 == 0 ? 7 * kMiB / 10 : 13 * kMiB / 10);
        ends.push_back(mNow + mEstimate.TimeLeft().value());
    }
    for (const tTime end : ends) {
        EXPECT_EQ(end, ends.front());
    }
}

TEST_F(ProgressEstimate, ARateThatChangesForGoodMovesTheEnd) {
    mTotal = 1000 * kMiB;
    Go(10s, kMiB);
    Go(10s, kMiB / 2);
    ExpectRate(kMiB / 2 - 10, kMiB / 2);
    const double left = static_cast<double>(mEstimate.TimeLeft().value().count());
    EXPECT_NEAR(left, 2 * 985, 0.15 * 2 * 985);
}

// --- Breaks ---

TEST_F(ProgressEstimate, AStallEndsTheTimeLeft) {
    Go(10s, kMiB);
    Go(3s, 0);
    ExpectRate(kMiB / 4, 3 * kMiB / 4);
    EXPECT_TRUE(mEstimate.TimeLeft());
    Go(3s, 0);
    EXPECT_EQ(mEstimate.Rate(), 0U);
    EXPECT_FALSE(mEstimate.TimeLeft());
    Go(6s, kMiB);
    ExpectRate(kMiB - 10, kMiB);
    EXPECT_TRUE(mEstimate.TimeLeft());
}

TEST_F(ProgressEstimate, AQuestionDoesNotCount) {
    Go(10s, kMiB);
    const auto left = mEstimate.TimeLeft();
    mNow += 3600s;
    Go(2s, kMiB);
    ExpectRate(kMiB / 2, kMiB);
    EXPECT_GT(mEstimate.TimeLeft(), *left / 2);
    EXPECT_LT(mEstimate.TimeLeft(), *left * 2);
}

TEST_F(ProgressEstimate, AClockThatGoesBackDoesNotCount) {
    Go(10s, kMiB);
    mNow -= 4000s;
    Go(8s, kMiB / 2);
    ExpectRate(kMiB / 2 - 10, kMiB / 2);
}

TEST_F(ProgressEstimate, AnAmountThatGoesBackIsARestart) {
    Go(10s, kMiB);
    --mDone;
    Note();
    ExpectNothingKnown();
    Go(1s, 10 * kKiB);
    ExpectRate(10 * kKiB, 10 * kKiB);
}

TEST_F(ProgressEstimate, AnotherTotalIsARestart) {
    Go(10s, kMiB);
    ++mTotal;
    Note();
    ExpectNothingKnown();
}

TEST_F(ProgressEstimate, ARestartForgetsEverything) {
    Go(10s, kMiB);
    mEstimate.Restart();
    ExpectNothingKnown();
    Go(1s, 10 * kKiB);
    ExpectRate(10 * kKiB, 10 * kKiB);
    EXPECT_FALSE(mEstimate.TimeLeft());
}

// --- Any numbers ---

struct sNumbers {
    const char* name;
    std::uint64_t begin;
    std::uint64_t end; ///< what is done four seconds later
    std::uint64_t total;
    std::uint64_t leastRate;
    std::uint64_t mostRate;
    std::optional<tSeconds> left;
};

void PrintTo(const sNumbers& zNumbers, std::ostream* zpStream) {
    *zpStream << zNumbers.name;
}

class ProgressEstimateOf : public ProgressEstimate, public ::testing::WithParamInterface<sNumbers> {};

TEST_P(ProgressEstimateOf, TellsWhatIsSo) {
    const sNumbers& numbers = GetParam();
    for (int second = 0; second <= 4; ++second) {
        const std::uint64_t done = second == 4 ? numbers.end : numbers.begin;
        mEstimate.Note(mNow, done, numbers.total);
        mNow += 1s;
    }
    ExpectRate(numbers.leastRate, numbers.mostRate);
    EXPECT_EQ(mEstimate.TimeLeft(), numbers.left);
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, ProgressEstimateOf,
    ::testing::Values(sNumbers{"NoTotal", 0, 4000, 0, 1000, 1000, {}},
                      sNumbers{"MoreThanTheTotal", 0, 4000, 3000, 1000, 1000, {}},
                      sNumbers{"JustTheTotal", 0, 4000, 4000, 1000, 1000, {}},
                      sNumbers{"NothingDone", 0, 0, 4000, 0, 0, {}},
                      sNumbers{"OneByteLeft", 0, 4000, 4001, 1000, 1000, 1s},
                      sNumbers{"OneByteOfAll", 0, 1, kMost, 0, 0, 1'000'000'000s},
                      sNumbers{"Everything", 0, kMost, kMost, kQuarter - kUnsure, kQuarter + kUnsure, {}},
                      sNumbers{"AllButOne", 0, kMost - 1, kMost, kQuarter - kUnsure, kQuarter + kUnsure, 0s},
                      sNumbers{"TheLastByte", kMost - 1, kMost, kMost, 0, 0, {}},
                      sNumbers{"TheHalf", 0, 2 * kQuarter, kMost, kQuarter / 2 - kUnsure,
                               kQuarter / 2 + kUnsure, 4s}),
    [](const auto& zInfo) { return std::string(zInfo.param.name); });

TEST_F(ProgressEstimate, TheFastestRateOfAllIsANumberToo) {
    mTotal = kMost;
    Note();
    mNow += 1s;
    mDone = kMost;
    Note();
    EXPECT_EQ(mEstimate.Rate(), 1ULL << 63U);
}

} // namespace
