#pragma once

#include <cstdint>

/// Integers of RIFF files: the low byte comes first, whatever the order of this machine.

constexpr std::uint16_t LoadLittle16(const std::uint8_t* zpBytes) {
    return static_cast<std::uint16_t>(zpBytes[0] | zpBytes[1] << 8);
}

constexpr std::uint32_t LoadLittle32(const std::uint8_t* zpBytes) {
    return LoadLittle16(zpBytes) | static_cast<std::uint32_t>(LoadLittle16(zpBytes + 2)) << 16;
}

constexpr void StoreLittle16(std::uint8_t* zpBytes, std::uint16_t zValue) {
    zpBytes[0] = static_cast<std::uint8_t>(zValue);
    zpBytes[1] = static_cast<std::uint8_t>(zValue >> 8);
}

constexpr void StoreLittle32(std::uint8_t* zpBytes, std::uint32_t zValue) {
    StoreLittle16(zpBytes, static_cast<std::uint16_t>(zValue));
    StoreLittle16(zpBytes + 2, static_cast<std::uint16_t>(zValue >> 16));
}
