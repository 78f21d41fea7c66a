#include "WaveFile.h"

#include "LittleEndian.h"
#include "SampleValue.h"

#include <algorithm>
#include <array>
#include <vector>

namespace {

constexpr std::size_t kBytes16 = 2;
constexpr double kScale16 = 32767.0;
constexpr double kScale8 = 127.0;

// One text for both directions.
constexpr const char* kNoFloats = "Floats can be written only as 8 or 16-bit samples";

} // namespace

bool cWaveFile::CheckBits(std::uint16_t zBits) {
    return bitsPerSample == zBits || Fail("Sample size mismatch");
}

bool cWaveFile::ReadSamples16(std::int16_t* zpBuffer, std::size_t zSamples) {
    if (!CheckBits(16) || !ReadRaw(zpBuffer, zSamples * kBytes16)) {
        return false;
    }
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(zpBuffer);
    for (std::size_t i = 0; i < zSamples; ++i) {
        zpBuffer[i] = static_cast<std::int16_t>(LoadLittle16(bytes + kBytes16 * i));
    }
    return true;
}

bool cWaveFile::WriteSamples16(const std::int16_t* zpBuffer, std::size_t zSamples) {
    if (!CheckBits(16)) {
        return false;
    }
    std::vector<std::uint8_t> bytes(zSamples * kBytes16);
    for (std::size_t i = 0; i < zSamples; ++i) {
        StoreLittle16(&bytes[kBytes16 * i], static_cast<std::uint16_t>(zpBuffer[i]));
    }
    return WriteRaw(bytes.data(), bytes.size());
}

bool cWaveFile::ReadFrames16(std::int16_t* zpBuffer, std::uint32_t zFrames) {
    return ReadSamples16(zpBuffer, std::size_t{channels} * zFrames);
}

bool cWaveFile::ReadFrames8(std::uint8_t* zpBuffer, std::uint32_t zFrames) {
    return CheckBits(8) && ReadRaw(zpBuffer, std::size_t{channels} * zFrames);
}

bool cWaveFile::ReadSample16(std::int16_t& zrValue) {
    std::int16_t value = 0;
    const bool isRead = ReadSamples16(&value, 1);
    zrValue = isRead ? value : zrValue;
    return isRead;
}

bool cWaveFile::ReadSample8(std::uint8_t& zrValue) {
    return CheckBits(8) && ReadRaw(&zrValue, 1);
}

bool cWaveFile::WriteFrames16(const std::int16_t* zpBuffer, std::uint32_t zFrames) {
    return WriteSamples16(zpBuffer, std::size_t{channels} * zFrames);
}

bool cWaveFile::WriteFrames8(const std::uint8_t* zpBuffer, std::uint32_t zFrames) {
    return CheckBits(8) && WriteRaw(zpBuffer, std::size_t{channels} * zFrames);
}

bool cWaveFile::WriteSample16(std::int16_t zValue) {
    return WriteSamples16(&zValue, 1);
}

bool cWaveFile::WriteSample8(std::uint8_t zValue) {
    return CheckBits(8) && WriteRaw(&zValue, 1);
}

bool cWaveFile::ReadSample(double& zrValue) {
    std::int16_t wide = 0;
    std::uint8_t narrow = 0;
    if (bitsPerSample != 8 && bitsPerSample != 16) {
        return Fail(kNoFloats);
    }
    if (bitsPerSample == 16 ? !ReadSample16(wide) : !ReadSample8(narrow)) {
        return false;
    }
    zrValue = bitsPerSample == 16 ? wide / kScale16 : narrow / kScale8 - 1.0;
    return true;
}

bool cWaveFile::ReadSample(float& zrValue) {
    double value = 0;
    const bool isRead = ReadSample(value);
    zrValue = isRead ? static_cast<float>(value) : zrValue;
    return isRead;
}

bool cWaveFile::WriteSample(double zValue) {
    switch (bitsPerSample) {
    case 16:
        return WriteSample16(static_cast<std::int16_t>(TruncatedSample(zValue * kScale16)));
    case 8:
        return WriteSample8(static_cast<std::uint8_t>(TruncatedSample((zValue + 1.0) * kScale8)));
    default:
        return Fail(kNoFloats);
    }
}

bool cWaveFile::WriteSample(float zValue) {
    return WriteSample(static_cast<double>(zValue));
}

bool cWaveFile::CopyFrom(cWaveFile& zrSource) {
    if (out == nullptr) {
        return Fail("Copy to an unopened file");
    }
    if (zrSource.reader == nullptr) {
        return Fail("Copy from an unopened file");
    }
    if (!zrSource.Reset()) {
        return Fail("Couldn't reset input file to start");
    }
    return CopySamples(*zrSource.reader, zrSource.dataLength);
}

bool cWaveFile::CopySamples(cRiffReader& zrSource, std::uint32_t zBytes) {
    std::array<std::uint8_t, 4096> buffer{};
    while (zBytes > 0) {
        const auto count = std::min<std::uint32_t>(zBytes, buffer.size());
        if (std::fread(buffer.data(), 1, count, zrSource.file.get()) != count) {
            return Fail("Error reading samples from input file");
        }
        if (!WriteRaw(buffer.data(), count)) {
            return Fail("Error writing samples to output file");
        }
        zBytes -= count;
    }
    return true;
}
