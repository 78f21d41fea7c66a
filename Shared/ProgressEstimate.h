#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>

/// How fast an operation goes and how long it will still take, worked out from how much is done when.
///
/// The figures are for people to read: they rest on the last seconds and change once a second, and the end,
/// once told, is kept to as long as it stays likely. Time in which nobody notes anything, because a question
/// waits for its answer, say, does not count, but for its first second.
class cProgressEstimate {
public:
    /// Of any clock; only differences count.
    using tTime = std::chrono::milliseconds;

    /// Forgets everything, for the next operation.
    void Restart();

    /// zDone of zTotal bytes are done at zNow; to be told more often than once a second, also while nothing
    /// moves. Another total, and less done than before, are a restart. Takes any numbers.
    void Note(tTime zNow, std::uint64_t zDone, std::uint64_t zTotal);

    /// Bytes in a second. None in the first second; 0 when nothing has moved for a while.
    std::optional<std::uint64_t> Rate() const { return mRate; }

    /// None in the first three seconds, while nothing moves, and where nothing is left or the total has
    /// turned out to be wrong.
    std::optional<std::chrono::seconds> TimeLeft() const { return mTimeLeft; }

private:
    struct sSample {
        tTime worked;
        std::uint64_t done;
    };

    void Figure(std::uint64_t zDone);
    void FigureTimeLeft(double zLeft);

    std::deque<sSample> mSamples; ///< of the last seconds, none before the first amount
    tTime mLastNoted{};
    tTime mWorked{}; ///< since the start, without what does not count
    tTime mEnd{};    ///< in the same time, the end that was told last
    std::uint64_t mDone = 0;
    std::uint64_t mTotal = 0;
    std::optional<std::uint64_t> mRate;
    std::optional<std::chrono::seconds> mTimeLeft;
};
