#pragma once

#include <chrono>

/// Bounds how often a stranger can make the program write the same kind of log line.
class LogLimit {
public:
    explicit LogLimit(int zLinesInASecond) : mLinesInASecond(zLinesInASecond) {}

    /// Whether one more line may be written.
    bool Admits() {
        using namespace std::chrono_literals;
        const auto now = std::chrono::steady_clock::now();
        if (now - mStart >= 1s) {
            mStart = now;
            mLines = 0;
        }
        return mLines++ < mLinesInASecond;
    }

private:
    int mLinesInASecond;
    long mLines = 0;
    std::chrono::steady_clock::time_point mStart;
};
