#pragma once

#include <chrono>
#include <functional>

/// Waiting means running the main event loop in slices, so that windows, sockets and timers stay alive.
class RunLoop {
public:
    /// Runs the event loop until zDone answers true or zLimit has passed. zDone is asked first and then after
    /// everything that happened; anything may have happened meanwhile, quitting included.
    /// Returns whether zDone ended the slice.
    static bool RunSlice(std::chrono::milliseconds zLimit, const std::function<bool()>& zDone);

    /// One round of a polling loop: a slice of at most 0.1 s, and a pause of 0.01 s, in which nothing at all
    /// happens, after a full one in which nothing happened.
    static void WaitRound(const std::function<bool()>& zDone);
};
