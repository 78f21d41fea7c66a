#pragma once

#include <cmath>
#include <cstdint>

/// The integer that a scaled sample becomes: truncated toward zero, so that its low bits are those of the
/// whole number also when it is too large for the sample's width. A value that no 64-bit integer holds (an
/// infinity, not a number) is 0.
inline std::int64_t TruncatedSample(double zScaled) {
    constexpr double kLimit = 9223372036854775808.0; // 2^63
    return std::abs(zScaled) < kLimit ? static_cast<std::int64_t>(zScaled) : 0;
}
