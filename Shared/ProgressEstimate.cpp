#include "ProgressEstimate.h"

#include <algorithm>
#include <cmath>

namespace {

using namespace std::chrono_literals;

constexpr auto kBetweenFigures = 1s;
constexpr auto kLongestGap = 1s;
constexpr auto kBeforeTimeLeft = 3s; ///< what goes first fills buffers on the way, and tells little
constexpr std::size_t kMostSamples = 6;
constexpr double kTolerance = 0.15;       ///< by which the time left may be wrong before the end is told anew
constexpr double kLongestTimeLeft = 1e12; // milliseconds; beyond the patience of anybody
constexpr double kMillisecondsPerSecond = 1e3;

} // namespace

void cProgressEstimate::Restart() {
    *this = {};
}

void cProgressEstimate::Note(tTime zNow, std::uint64_t zDone, std::uint64_t zTotal) {
    if (mSamples.empty() || zDone < mDone || zTotal != mTotal) {
        Restart();
        mTotal = zTotal;
        mSamples.push_back({mWorked, zDone});
    } else if (zNow > mLastNoted) {
        mWorked += std::min<tTime>(zNow - mLastNoted, kLongestGap);
    }
    mLastNoted = zNow;
    mDone = zDone;
    if (mWorked - mSamples.back().worked >= kBetweenFigures) {
        Figure(zDone);
    }
}

void cProgressEstimate::Figure(std::uint64_t zDone) {
    const sSample first = mSamples.front();
    const auto moved = static_cast<double>(zDone - first.done);
    const double bytesPerMillisecond = moved / static_cast<double>((mWorked - first.worked).count());
    // A double holds the largest number of 64 bits only as the one above it.
    constexpr double kFastest = 0x1p63;
    const double rate = std::round(bytesPerMillisecond * kMillisecondsPerSecond);
    mRate = static_cast<std::uint64_t>(std::min(rate, kFastest));
    mTimeLeft.reset();
    if (moved > 0.0 && zDone < mTotal && mWorked >= kBeforeTimeLeft) {
        FigureTimeLeft(static_cast<double>(mTotal - zDone) / bytesPerMillisecond);
    }
    mSamples.push_back({mWorked, zDone});
    if (mSamples.size() > kMostSamples) {
        mSamples.pop_front();
    }
}

void cProgressEstimate::FigureTimeLeft(double zLeft) {
    const double left = std::min(zLeft, kLongestTimeLeft);
    const auto told = static_cast<double>((mEnd - mWorked).count());
    if (std::abs(left - told) > kTolerance * left) {
        mEnd = mWorked + tTime(std::llround(left));
    }
    mTimeLeft = std::chrono::ceil<std::chrono::seconds>(mEnd - mWorked);
}
