#pragma once

#include <cstdint>
#include <string>

// The bytes of RIFF and WAVE files, for tests that build theirs in memory.

inline std::string Little16(unsigned value) {
    return {static_cast<char>(value), static_cast<char>(value >> 8)};
}

inline std::string Little32(std::uint32_t value) {
    return Little16(value & 0xFFFFU) + Little16(value >> 16);
}

/// A chunk that announces any size, without a pad byte.
inline std::string ChunkOfSize(const std::string& id, std::uint32_t size, const std::string& data = "") {
    return id + Little32(size) + data;
}

/// A chunk as it should be, with a pad byte behind data of odd length.
inline std::string Chunk(const std::string& id, const std::string& data) {
    return ChunkOfSize(id, static_cast<std::uint32_t>(data.size()), data) +
           std::string(data.size() % 2, '\0');
}

/// A RIFF or LIST chunk around other chunks.
inline std::string Form(const std::string& id, const std::string& type, const std::string& chunks) {
    return Chunk(id, type + chunks);
}

struct WaveFormat {
    unsigned tag = 1;
    unsigned channels = 2;
    std::uint32_t sampleRate = 44100;
    unsigned bits = 16;
};

/// The 16 bytes of a format chunk, its rates in step with the rest.
inline std::string FormatBytes(const WaveFormat& format) {
    const unsigned blockAlign = format.bits / 8 * format.channels;
    return Little16(format.tag) + Little16(format.channels) + Little32(format.sampleRate) +
           Little32(blockAlign * format.sampleRate) + Little16(blockAlign) + Little16(format.bits);
}

/// A whole file with these sample bytes, and other chunks before or behind them.
inline std::string WaveBytes(const WaveFormat& format, const std::string& samples,
                             const std::string& before = "", const std::string& behind = "") {
    return Form("RIFF", "WAVE",
                Chunk("fmt ", FormatBytes(format)) + before + Chunk("data", samples) + behind);
}
