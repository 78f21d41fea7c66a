#include "AiffHeader.h"

#include "BigEndian.h"
#include "ExtendedFloat.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>

namespace {

constexpr std::uint32_t kCommonSize = 18;
constexpr std::int64_t kSoundHeadSize = 8;
constexpr std::int64_t kSizeBesidesSamples = 46; // the form type, COMM, and SSND up to its samples
constexpr std::int64_t kLargestCheckedSize = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t kLargestDataStart = std::numeric_limits<std::int32_t>::max();
constexpr std::int16_t kMaxChannels = 1000;
constexpr std::int16_t kMaxBits = 56;
constexpr double kMaxSampleRate = 1000000.0;

/// Whole bytes are told by a multiple of 4 and not of 8. That is how this reader has always taken files, so
/// 12 bits count as 1 byte, and 4 bits as none.
constexpr int BytesPerSample(int zBits) {
    return zBits % 4 == 0 ? zBits / 8 : zBits / 8 + 1;
}

/// How far beyond its size the sound data goes to fill its last block. The size may be negative, then of so
/// many bytes less than none.
constexpr std::int64_t PadToBlock(std::int64_t zSize, std::int64_t zBlockSize) {
    const std::int64_t rest = zBlockSize == 0 ? 0 : zSize % zBlockSize;
    return rest > 0 ? zBlockSize - rest : -rest;
}

class cHeaderReader {
public:
    explicit cHeaderReader(sAiffState& zrState) : mrState(zrState) {}

    void Read();

private:
    void ReadForm();
    void ReadChunk();
    void ReadCommon(std::uint32_t zSize);
    void ReadChannels();
    void ReadFrames();
    void ReadBits();
    void CheckFormSize() const;
    void ReadSampleRate();
    void ReadSound(std::uint32_t zSize);
    void StoreDataStart();
    void SkipSamples(std::uint32_t zSize, std::uint32_t zBlockSize);

    std::string ReadId(const char* zpMessage);
    std::uint32_t ReadInt32(const char* zpMessage);
    std::int16_t ReadInt16(const char* zpMessage);
    std::uint32_t ReadUnchecked32();
    template <std::size_t kSize>
    bool ReadBytes(std::array<std::uint8_t, kSize>& zrBytes);
    void Skip(std::uint32_t zBytes, const char* zpMessage);

    sAiffState& mrState;
    std::uint32_t mFormSize = 0;
    bool mHasCommon = false;
    bool mHasSound = false;
};

void cHeaderReader::Read() {
    ReadForm();
    while (!mHasCommon || !mHasSound) {
        ReadChunk();
    }
}

void cHeaderReader::ReadForm() {
    if (ReadId("cReadAIFF: Failed to read FORM chunk!") != "FORM") {
        FailAiff("cReadAIFF: Header doesn't start with magic word FORM!");
    }
    mFormSize = ReadInt32("cReadAIFF: Failed to read FORM size!");
    if (ReadId("cReadAIFF: Failed to read AIFF type!") != "AIFF") {
        FailAiff("cReadAIFF: Header doesn't specify AIFF type!");
    }
}

// Chunks of odd size are taken as they are: the pad byte that should follow them is not passed over.
void cHeaderReader::ReadChunk() {
    const std::string id = ReadId("cReadAIFF: Failed to read chunkID!");
    const std::uint32_t size = ReadInt32("cReadAIFF: Failed to read chunksize!");
    if (id == "COMM") {
        ReadCommon(size);
    } else if (id == "SSND") {
        ReadSound(size);
    } else {
        Skip(size, "cReadAIFF: Error during skipping unknown chunk!");
    }
}

void cHeaderReader::ReadCommon(std::uint32_t zSize) {
    if (mHasCommon) {
        FailAiff("cReadAIFF: Multiple COMM chunks!");
    }
    if (zSize < kCommonSize) {
        FailAiff("cReadAIFF: COMM chunk has bad size (too small)!");
    }
    ReadChannels();
    ReadFrames();
    ReadBits();
    CheckFormSize();
    ReadSampleRate();
    if (!mHasSound) {
        Skip(zSize - kCommonSize, "cReadAIFF: Error while skipping extension-bytes in COMM chunk!");
    } else if (!mrState.stream.seekg(mrState.dataStart)) {
        FailAiff("cReadAIFF: Failed to rewind!");
    }
    mHasCommon = true;
}

void cHeaderReader::ReadChannels() {
    const std::int16_t channels = ReadInt16("cReadAIFF: Failed to read number of channels!");
    if (channels < 1 || channels > kMaxChannels) {
        FailAiff("cReadAIFF: Invalid number of channels!");
    }
    mrState.channels = channels;
}

void cHeaderReader::ReadFrames() {
    mrState.frames = ReadInt32("cReadAIFF: Failed to read number of sampleframes in COMM chunk!");
    mrState.framesToGo = mrState.frames;
}

void cHeaderReader::ReadBits() {
    const std::int16_t bits = ReadInt16("cReadAIFF: Failed to read number of bits resolution in COMM chunk!");
    if (bits < 1 || bits > kMaxBits) {
        FailAiff("cReadAIFF: Invalid number of resolution bits!");
    }
    mrState.bits = bits;
    mrState.bytesPerSample = static_cast<std::int16_t>(BytesPerSample(bits));
    mrState.range = std::int64_t{1} << 8 * mrState.bytesPerSample;
    mrState.signThreshold = mrState.range / 2;
}

void cHeaderReader::CheckFormSize() const {
    const std::int64_t expected =
        std::int64_t{mrState.channels} * mrState.frames * mrState.bytesPerSample + kSizeBesidesSamples;
    if (expected <= kLargestCheckedSize && expected > mFormSize) {
        FailAiff("cReadAIFF: Suspicious size in FORM chunk!");
    }
}

void cHeaderReader::ReadSampleRate() {
    tExtendedFloat bytes{};
    if (!ReadBytes(bytes)) {
        FailAiff("cReadAIFF: Error reading samplerate!");
    }
    const double sampleRate = DecodeExtendedFloat(bytes);
    if (sampleRate <= 0 || sampleRate > kMaxSampleRate) {
        FailAiff("cReadAIFF: Samplerate out of range!");
    }
    mrState.sampleRate = sampleRate;
}

void cHeaderReader::ReadSound(std::uint32_t zSize) {
    if (mHasSound) {
        FailAiff("cReadAIFF: Multiple SSND chunks!");
    }
    // A file that ends in here is noticed by whoever reads on, in the case of no frames by nobody.
    const std::uint32_t offset = ReadUnchecked32();
    const std::uint32_t blockSize = ReadUnchecked32();
    Skip(offset, "cReadAIFF: Error while skipping offset in SSND chunk!");
    StoreDataStart();
    if (!mHasCommon) {
        SkipSamples(zSize, blockSize);
    }
    mHasSound = true;
}

/// Samples that begin beyond the reach of 32 bits could not be returned to.
void cHeaderReader::StoreDataStart() {
    const std::streamoff position = mrState.stream.tellg();
    if (position > kLargestDataStart) {
        FailAiff("cReadAIFF: Error while skipping offset in SSND chunk!");
    }
    mrState.dataStart = static_cast<std::int32_t>(position);
}

// Unchecked: where it fails, there is no next chunk. A size that does not even hold the two words at the
// head leads back, but never before them, so that the chunks are still walked forward.
void cHeaderReader::SkipSamples(std::uint32_t zSize, std::uint32_t zBlockSize) {
    const std::int64_t size = zSize - kSoundHeadSize;
    mrState.stream.seekg(mrState.dataStart + size + PadToBlock(size, zBlockSize));
}

std::string cHeaderReader::ReadId(const char* zpMessage) {
    std::array<std::uint8_t, 4> bytes{};
    if (!ReadBytes(bytes)) {
        FailAiff(zpMessage);
    }
    return {bytes.begin(), bytes.end()};
}

std::uint32_t cHeaderReader::ReadInt32(const char* zpMessage) {
    const std::uint32_t value = ReadUnchecked32();
    if (!mrState.stream) {
        FailAiff(zpMessage);
    }
    return value;
}

std::int16_t cHeaderReader::ReadInt16(const char* zpMessage) {
    std::array<std::uint8_t, 2> bytes{};
    if (!ReadBytes(bytes)) {
        FailAiff(zpMessage);
    }
    return static_cast<std::int16_t>(LoadBig(bytes.data(), 2));
}

/// 0 when the file ends before it.
std::uint32_t cHeaderReader::ReadUnchecked32() {
    std::array<std::uint8_t, 4> bytes{};
    return ReadBytes(bytes) ? static_cast<std::uint32_t>(LoadBig(bytes.data(), 4)) : 0;
}

template <std::size_t kSize>
bool cHeaderReader::ReadBytes(std::array<std::uint8_t, kSize>& zrBytes) {
    return static_cast<bool>(mrState.stream.read(reinterpret_cast<char*>(zrBytes.data()), kSize));
}

/// Moves forward, beyond the end of the file too; that is for the next read to notice. Seeking empties the
/// stream's buffer, so a short way goes by reading, lest a file of a million tiny chunks take minutes.
void cHeaderReader::Skip(std::uint32_t zBytes, const char* zpMessage) {
    constexpr std::streamsize kShortWay = 1024;
    std::ifstream& stream = mrState.stream;
    if (zBytes <= std::min(kShortWay, stream.rdbuf()->in_avail())) {
        stream.ignore(zBytes);
    } else {
        stream.seekg(zBytes, std::ios::cur);
    }
    if (zBytes != 0 && !stream) {
        FailAiff(zpMessage);
    }
}

} // namespace

void ReadAiffHeader(sAiffState& zrState) {
    cHeaderReader(zrState).Read();
}
