#pragma once

#include "SteadyClock.h"

#include <QtCore/QTimer>

#include <chrono>
#include <functional>
#include <optional>

/// Asks for people's attention when an operation of 10 seconds or more has ended while they looked at another
/// program.
///
/// An operation may come in stages: one that begins within a second of the end of another goes on with it.
/// That second also gives the desktop the time to activate a window in place of the one that closed, and a
/// message at the end the time to be seen.
class Attention {
public:
    /// zAsk is what asks for it.
    explicit Attention(std::function<void()> zAsk, tClock zClock = SteadyTime);

    /// The operation begins, or goes on.
    void Begin();

    /// It ends. Asks, a second later, when it has lasted for 10 seconds or more and no window of the program
    /// is active then.
    void End();

private:
    void Settle();

    std::function<void()> mAsk;
    tClock mClock;
    std::optional<std::chrono::milliseconds> mBegan;
    std::chrono::milliseconds mEnded{};
    QTimer mSettleTimer; ///< runs when it has ended just now
};
