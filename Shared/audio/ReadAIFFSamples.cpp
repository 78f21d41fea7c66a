#include "ReadAIFF.h"

#include "AiffState.h"
#include "BigEndian.h"

#include <algorithm>
#include <array>
#include <limits>
#include <type_traits>

namespace {

constexpr int kBitsPerByte = 8;
constexpr int kMaxBitsDouble = 54;
constexpr int kMaxBitsFloat = 25;

static_assert(std::numeric_limits<double>::is_iec559, "samples of no bytes are divided by zero");

/// The next frames of a stream, as many as fit, so that the stream is not asked for each sample.
struct sFrameBlock {
    std::array<std::uint8_t, 32768> bytes;
    std::uint32_t frames = 0;
    std::uint32_t samples = 0; ///< fewer than in so many frames where the stream ended
    bool isWhole = false;
};

void FillBlock(sAiffState& zrState, std::uint32_t zFrames, sFrameBlock& zrBlock) {
    const auto channels = static_cast<std::uint32_t>(zrState.channels);
    const auto bytesPerSample = static_cast<std::uint32_t>(zrState.bytesPerSample);
    const auto size = static_cast<std::uint32_t>(zrBlock.bytes.size());
    zrBlock.frames = std::min(zFrames, size / std::max(1U, channels * bytesPerSample));
    zrBlock.samples = zrBlock.frames * channels;
    zrState.stream.read(reinterpret_cast<char*>(zrBlock.bytes.data()),
                        std::streamsize{zrBlock.samples} * bytesPerSample);
    zrBlock.isWhole = static_cast<bool>(zrState.stream);
    if (!zrBlock.isWhole) {
        zrBlock.samples = static_cast<std::uint32_t>(zrState.stream.gcount()) / std::max(1U, bytesPerSample);
        zrBlock.frames = zrBlock.samples / std::max(1U, channels);
    }
}

std::int64_t DecodeSample(const sAiffState& zState, const std::uint8_t* zpBytes) {
    const auto value = static_cast<std::int64_t>(LoadBig(zpBytes, zState.bytesPerSample));
    return value >= zState.signThreshold ? value - zState.range : value;
}

template <class tElement>
tElement ToElement(const sAiffState& zState, std::int64_t zSample) {
    if constexpr (std::is_floating_point_v<tElement>) {
        return static_cast<tElement>(static_cast<double>(zSample) /
                                     static_cast<double>(zState.signThreshold));
    } else {
        return static_cast<tElement>(zSample);
    }
}

template <class tElement>
tElement* StoreBlock(const sAiffState& zState, const sFrameBlock& zBlock, tElement* zpDestination) {
    const std::uint8_t* bytes = zBlock.bytes.data();
    for (std::uint32_t i = 0; i < zBlock.samples; ++i) {
        *zpDestination++ = ToElement<tElement>(zState, DecodeSample(zState, bytes));
        bytes += zState.bytesPerSample;
    }
    return zpDestination;
}

} // namespace

void cReadAIFF::CheckWidth(int zMaxBits) const {
    if (kBitsPerByte * mpState->bytesPerSample > zMaxBits) {
        FailAiff("cReadAIFF: AIFF-data does not fit requested destination datatype!");
    }
}

template <class tElement>
void cReadAIFF::ReadFrames(tElement* zpDestination, std::int32_t zFrameCount) {
    RequireOpen("cReadAIFF: Cannot read from a closed file!");
    if (zpDestination == nullptr) {
        FailAiff("cReadAIFF: NULL pointer supplied to read()!");
    }
    if (zFrameCount < 0) {
        FailAiff("cReadAIFF: Cannot read negative amount of frames!");
    }
    auto left = static_cast<std::uint32_t>(zFrameCount);
    if (left > mpState->framesToGo) {
        FailAiff("cReadAIFF: Requested to read more frames than available!");
    }
    sFrameBlock block;
    while (left > 0) {
        FillBlock(*mpState, left, block);
        zpDestination = StoreBlock(*mpState, block, zpDestination);
        mpState->framesToGo -= block.frames;
        left -= block.frames;
        if (!block.isWhole) {
            FailAiff("cReadAIFF: Error reading audiosample!");
        }
    }
}

void cReadAIFF::Read(std::int64_t* zpDestination, std::int32_t zFrameCount) {
    ReadFrames(zpDestination, zFrameCount);
}

void cReadAIFF::Read(std::int32_t* zpDestination, std::int32_t zFrameCount) {
    CheckWidth(32);
    ReadFrames(zpDestination, zFrameCount);
}

void cReadAIFF::Read(std::uint32_t* zpDestination, std::int32_t zFrameCount) {
    CheckWidth(32);
    ReadFrames(zpDestination, zFrameCount);
}

void cReadAIFF::Read(std::int16_t* zpDestination, std::int32_t zFrameCount) {
    CheckWidth(16);
    ReadFrames(zpDestination, zFrameCount);
}

void cReadAIFF::Read(std::int8_t* zpDestination, std::int32_t zFrameCount) {
    CheckWidth(8);
    ReadFrames(zpDestination, zFrameCount);
}

void cReadAIFF::Read(double* zpDestination, std::int32_t zFrameCount) {
    CheckWidth(kMaxBitsDouble);
    ReadFrames(zpDestination, zFrameCount);
}

void cReadAIFF::Read(float* zpDestination, std::int32_t zFrameCount) {
    CheckWidth(kMaxBitsFloat);
    ReadFrames(zpDestination, zFrameCount);
}
