#pragma once

#include <cstdint>
#include <fstream>

/// What a cReadAIFF keeps of the file that it has open.
struct sAiffState {
    std::ifstream stream;
    std::int32_t dataStart = 0; ///< position of the first sample; -1 in a stream that has no positions
    std::uint32_t frames = 0;
    std::int16_t channels = 0;
    std::int16_t bits = 0;
    std::int16_t bytesPerSample = 0; ///< 0 for 4 bits, see BytesPerSample
    double sampleRate = 0;           ///< frames per second
    std::int64_t signThreshold = 0;  ///< the least unsigned sample that stands for a negative one
    std::int64_t range = 0;          ///< how many values a sample has
    std::uint32_t framesToGo = 0;
};

/// Throws the message as it is, a text that lives as long as the program.
[[noreturn]] inline void FailAiff(const char* zpMessage) {
    throw zpMessage; // NOLINT(cert-err*,misc-throw-by-value-catch-by-reference): callers are promised a
                     // constant text
}
