#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <string>

// The bytes of AIFF files, for tests that build theirs in memory.

inline std::string Big16(int value) {
    return {static_cast<char>(value >> 8), static_cast<char>(value)};
}

inline std::string Big32(std::uint32_t value) {
    return Big16(static_cast<int>(value >> 16)) + Big16(static_cast<int>(value & 0xFFFFU));
}

/// The ten bytes of a number in extended format, from its head (sign and exponent) and mantissa.
inline std::string ExtendedBytes(int head, std::uint64_t mantissa) {
    return Big16(head) + Big32(static_cast<std::uint32_t>(mantissa >> 32)) +
           Big32(static_cast<std::uint32_t>(mantissa));
}

/// A positive number that is not zero.
inline std::string RateBytes(double rate) {
    int exponent = 0;
    const double fraction = std::frexp(rate, &exponent);
    return ExtendedBytes(16382 + exponent, static_cast<std::uint64_t>(std::ldexp(fraction, 64)));
}

/// A chunk that announces any size, without a pad byte.
inline std::string AiffChunkOfSize(const std::string& id, std::uint32_t size, const std::string& data) {
    return id + Big32(size) + data;
}

inline std::string AiffChunk(const std::string& id, const std::string& data) {
    return AiffChunkOfSize(id, static_cast<std::uint32_t>(data.size()), data);
}

/// A FORM of this type around its chunks.
inline std::string AiffForm(const std::string& chunks, const std::string& type = "AIFF") {
    return AiffChunk("FORM", type + chunks);
}

struct AiffFormat {
    int channels = 2;
    std::uint32_t frames = 0;
    int bits = 16;
    double rate = 44100;
};

/// The 18 bytes of a COMM chunk.
inline std::string CommonBytes(const AiffFormat& format) {
    return Big16(format.channels) + Big32(format.frames) + Big16(format.bits) + RateBytes(format.rate);
}

inline std::string CommonChunk(const AiffFormat& format) {
    return AiffChunk("COMM", CommonBytes(format));
}

/// An SSND chunk of these sample bytes; with an offset so many other bytes precede them.
inline std::string SoundChunk(const std::string& samples, std::uint32_t offset = 0,
                              std::uint32_t blockSize = 0) {
    return AiffChunk("SSND", Big32(offset) + Big32(blockSize) + std::string(offset, '\x55') + samples);
}

/// A whole file with these sample bytes.
inline std::string AiffBytes(const AiffFormat& format, const std::string& samples) {
    return AiffForm(CommonChunk(format) + SoundChunk(samples));
}
