#pragma once

#include <cstdint>

/// The unsigned integer in so many bytes (0 to 8; none is 0) of an AIFF file: the high byte comes first,
/// whatever the order of this machine.
constexpr std::uint64_t LoadBig(const std::uint8_t* zpBytes, int zCount) {
    std::uint64_t value = 0;
    for (int i = 0; i < zCount; ++i) {
        value = value << 8 | zpBytes[i];
    }
    return value;
}
