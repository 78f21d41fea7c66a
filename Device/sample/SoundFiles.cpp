#include "SoundFiles.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace {

std::string Little(std::uint64_t value, unsigned bytes) {
    std::string text;
    for (unsigned i = 0; i < bytes; ++i) {
        text += static_cast<char>(value >> (8 * i) & 0xffU);
    }
    return text;
}

std::string Big(std::uint64_t value, unsigned bytes) {
    std::string text = Little(value, bytes);
    std::ranges::reverse(text);
    return text;
}

using Order = std::string (*)(std::uint64_t value, unsigned bytes);

double Amplitude(double frequency, double second, double length) {
    constexpr double kLoudness = 0.5;
    constexpr double kAttack = 0.01;
    const double fade = std::min(second / kAttack, 1.0) * (1.0 - second / length);
    return kLoudness * fade * std::sin(2.0 * std::numbers::pi * frequency * second);
}

unsigned FramesPerTone(const Sound& sound) {
    return static_cast<unsigned>(sound.toneSeconds * sound.rate);
}

std::string Samples(const Sound& sound, Order order) {
    std::string samples;
    const double scale = std::exp2(sound.bits - 1) - 1.0;
    const unsigned frames = FramesPerTone(sound);
    for (const double frequency : sound.frequencies) {
        for (unsigned frame = 0; frame < frames; ++frame) {
            const double second = static_cast<double>(frame) / sound.rate;
            for (unsigned channel = 0; channel < sound.channels; ++channel) {
                const double amplitude = Amplitude(frequency / (channel + 1), second, sound.toneSeconds);
                const auto sample = static_cast<std::int64_t>(std::lround(amplitude * scale));
                samples += order(static_cast<std::uint64_t>(sample), sound.bits / 8);
            }
        }
    }
    return samples;
}

std::string Chunk(const std::string& name, const std::string& body, Order order) {
    return name + order(body.size(), 4) + body + std::string(body.size() % 2, '\0');
}

/// An integer as the 80-bit floating-point number of AIFF headers.
std::string Extended(std::uint64_t value) {
    constexpr std::uint64_t kTopBit = std::uint64_t{1} << 63U;
    unsigned exponent = 16383 + 63;
    while (value < kTopBit && exponent > 0) {
        value <<= 1U;
        --exponent;
    }
    return Big(exponent, 2) + Big(value, 8);
}

} // namespace

std::string MakeWav(const Sound& sound) {
    constexpr unsigned kPcm = 1;
    const unsigned frameBytes = sound.channels * sound.bits / 8;
    const std::string format = Little(kPcm, 2) + Little(sound.channels, 2) + Little(sound.rate, 4) +
                               Little(std::uint64_t{sound.rate} * frameBytes, 4) + Little(frameBytes, 2) +
                               Little(sound.bits, 2);
    const std::string body = Chunk("fmt ", format, Little) + Chunk("data", Samples(sound, Little), Little);
    return Chunk("RIFF", "WAVE" + body, Little);
}

std::string MakeAiff(const Sound& sound) {
    const std::string samples = Samples(sound, Big);
    const std::size_t frames = sound.frequencies.size() * FramesPerTone(sound);
    const std::string common =
        Big(sound.channels, 2) + Big(frames, 4) + Big(sound.bits, 2) + Extended(sound.rate);
    const std::string offsetAndBlockSize(8, '\0');
    return Chunk("FORM",
                 "AIFF" + Chunk("COMM", common, Big) + Chunk("SSND", offsetAndBlockSize + samples, Big), Big);
}
