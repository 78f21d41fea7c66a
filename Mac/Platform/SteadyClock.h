#pragma once

#include <chrono>
#include <functional>

/// What time it is; only differences count. Handed in, so that tests need not wait.
using tClock = std::function<std::chrono::milliseconds()>;

/// The time of a clock that nobody sets.
inline std::chrono::milliseconds SteadyTime() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
}
