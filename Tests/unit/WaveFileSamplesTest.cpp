#include "WaveFile.h"

#include "Hermetic.h"
#include "RiffBytes.h"
#include "TestStreams.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <limits>
#include <vector>

namespace {

const char* const kMismatch = "Sample size mismatch";
const char* const kNoFloats = "Floats can be written only as 8 or 16-bit samples";

WaveFormat Mono(unsigned bits) {
    return {1, 1, 8000, bits};
}

/// A writer of this format over a nameless file that can be read as well.
void StartWriting(cWaveFile& file, std::uint16_t bits, std::uint16_t channels) {
    ASSERT_TRUE(file.OpenWrite(FileHolding("")));
    file.SetFormat(8000, bits, channels);
}

std::string SamplesOf(const cWaveFile& file) {
    return ContentOf(file.out.get()).substr(44);
}

TEST(WaveFileSamples, Of16BitsAreReadLowByteFirst) {
    cWaveFile file;
    ASSERT_TRUE(file.OpenRead(
        FileHolding(WaveBytes({}, std::string("\x01\x02\xFF\xFF\x00\x80\xFF\x7F", 8) + "\x34\x12"))));
    std::array<std::int16_t, 4> frames{};
    ASSERT_TRUE(file.ReadFrames16(frames.data(), 2));
    EXPECT_EQ(frames, (std::array<std::int16_t, 4>{0x0201, -1, -32768, 32767}));
    std::int16_t sample = 0;
    ASSERT_TRUE(file.ReadSample16(sample));
    EXPECT_EQ(sample, 0x1234);
    EXPECT_FALSE(file.ReadSample16(sample));
    EXPECT_STREQ(file.error, "Couldn't read samples");
    EXPECT_EQ(sample, 0x1234);
}

TEST(WaveFileSamples, Of8BitsAreReadAsTheyAre) {
    cWaveFile file;
    ASSERT_TRUE(
        file.OpenRead(FileHolding(WaveBytes({1, 3, 8000, 8}, std::string("\0\x01\x7F\x80\xFE\xFF!", 7)))));
    std::array<std::uint8_t, 6> frames{};
    ASSERT_TRUE(file.ReadFrames8(frames.data(), 2));
    EXPECT_EQ(frames, (std::array<std::uint8_t, 6>{0, 1, 127, 128, 254, 255}));
    std::uint8_t sample = 0;
    ASSERT_TRUE(file.ReadSample8(sample));
    EXPECT_EQ(sample, '!');
    std::fseek(file.reader->file.get(), 0, SEEK_END);
    EXPECT_FALSE(file.ReadSample8(sample));
    EXPECT_STREQ(file.error, "Couldn't read samples");
    EXPECT_EQ(sample, '!');
}

TEST(WaveFileSamples, Of16BitsAreWrittenLowByteFirst) {
    cWaveFile file;
    StartWriting(file, 16, 2);
    const std::array<std::int16_t, 4> frames{0x0201, -1, -32768, 32767};
    EXPECT_TRUE(file.WriteFrames16(frames.data(), 2));
    EXPECT_EQ(file.dataLength, 8U);
    EXPECT_TRUE(file.WriteSample16(0x1234));
    EXPECT_EQ(file.dataLength, 10U);
    EXPECT_EQ(SamplesOf(file), std::string("\x01\x02\xFF\xFF\x00\x80\xFF\x7F\x34\x12", 10));
}

TEST(WaveFileSamples, Of8BitsAreWrittenAsTheyAre) {
    cWaveFile file;
    StartWriting(file, 8, 3);
    const std::array<std::uint8_t, 6> frames{0, 1, 127, 128, 254, 255};
    EXPECT_TRUE(file.WriteFrames8(frames.data(), 2));
    EXPECT_TRUE(file.WriteSample8('!'));
    EXPECT_EQ(file.dataLength, 7U);
    EXPECT_EQ(SamplesOf(file), std::string("\0\x01\x7F\x80\xFE\xFF!", 7));
}

TEST(WaveFileSamples, AreCountedByChannelsWhateverTheBlockAlign) {
    cWaveFile file;
    StartWriting(file, 16, 3);
    file.blockAlign = 1;
    const std::array<std::int16_t, 3> frame{1, 2, 3};
    EXPECT_TRUE(file.WriteFrames16(frame.data(), 1));
    EXPECT_EQ(file.dataLength, 6U);
    EXPECT_TRUE(file.WriteFrames16(frame.data(), 0));
    EXPECT_EQ(file.dataLength, 6U);
}

struct Transfer {
    const char* what;
    unsigned bits;
    std::function<bool(cWaveFile&)> move;
};

const std::vector<Transfer>& Transfers() {
    static std::int16_t wide = 0;
    static std::uint8_t narrow = 0;
    static const std::vector<Transfer> transfers = {
        {"ReadFrames16", 16, [](cWaveFile& file) { return file.ReadFrames16(&wide, 1); }},
        {"ReadFrames8", 8, [](cWaveFile& file) { return file.ReadFrames8(&narrow, 1); }},
        {"ReadSample16", 16, [](cWaveFile& file) { return file.ReadSample16(wide); }},
        {"ReadSample8", 8, [](cWaveFile& file) { return file.ReadSample8(narrow); }},
        {"WriteFrames16", 16, [](cWaveFile& file) { return file.WriteFrames16(&wide, 1); }},
        {"WriteFrames8", 8, [](cWaveFile& file) { return file.WriteFrames8(&narrow, 1); }},
        {"WriteSample16", 16, [](cWaveFile& file) { return file.WriteSample16(wide); }},
        {"WriteSample8", 8, [](cWaveFile& file) { return file.WriteSample8(narrow); }},
    };
    return transfers;
}

TEST(WaveFileSamples, OfAnotherSizeAreNotMoved) {
    for (const Transfer& transfer : Transfers()) {
        for (const std::uint16_t bits : std::initializer_list<std::uint16_t>{0, 8, 12, 15, 16, 24, 32}) {
            cWaveFile file;
            StartWriting(file, bits, 1);
            ASSERT_TRUE(file.Reset());
            EXPECT_EQ(transfer.move(file), bits == transfer.bits) << transfer.what << bits;
            EXPECT_STREQ(file.error, bits == transfer.bits ? nullptr : kMismatch) << transfer.what << bits;
            EXPECT_EQ(std::ftell(file.out.get()), bits == transfer.bits ? 36 + bits / 8 : 36)
                << transfer.what << bits;
        }
    }
}

struct WrittenSample {
    double value;
    unsigned wide;
    unsigned narrow;
};

// The low bits of the number cut to a whole one; what no 64 bits hold is 0.
TEST(WaveFileSamples, AreWrittenFromNumbers) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const WrittenSample& given : std::initializer_list<WrittenSample>{
             {0.0, 0, 127},
             {1.0, 32767, 254},
             {-1.0, 0x8001, 0},
             {0.5, 16383, 190},
             {-0.5, 0x10000 - 16383, 63},
             {0.00003, 0, 127},
             {-0.00003, 0, 126},
             {2.0, 65534, 381 - 256},
             {-2.0, 2, 256 - 127},
             {3.0, 98301 - 65536, 508 - 256},
             {1e300, 0, 0},
             {kInfinity, 0, 0},
             {-kInfinity, 0, 0},
             {std::numeric_limits<double>::quiet_NaN(), 0, 0},
         }) {
        cWaveFile wide;
        StartWriting(wide, 16, 1);
        EXPECT_TRUE(wide.WriteSample(given.value));
        EXPECT_TRUE(wide.WriteSample(static_cast<float>(given.value)));
        EXPECT_EQ(SamplesOf(wide), Little16(given.wide) + Little16(given.wide)) << given.value;
        cWaveFile narrow;
        StartWriting(narrow, 8, 1);
        EXPECT_TRUE(narrow.WriteSample(given.value));
        EXPECT_TRUE(narrow.WriteSample(static_cast<float>(given.value)));
        EXPECT_EQ(SamplesOf(narrow), std::string(2, static_cast<char>(given.narrow))) << given.value;
    }
}

TEST(WaveFileSamples, Of16BitsAreReadAsNumbers) {
    for (const int stored : {0, 1, -1, 32767, -32767, -32768}) {
        const std::string sample = Little16(static_cast<unsigned>(stored));
        cWaveFile file;
        ASSERT_TRUE(file.OpenRead(FileHolding(WaveBytes(Mono(16), sample + sample))));
        double precise = 9;
        float coarse = 9;
        EXPECT_TRUE(file.ReadSample(precise));
        EXPECT_TRUE(file.ReadSample(coarse));
        EXPECT_EQ(precise, stored / 32767.0);
        EXPECT_EQ(coarse, static_cast<float>(stored / 32767.0));
    }
}

TEST(WaveFileSamples, Of8BitsAreReadAsNumbers) {
    for (const int stored : {0, 1, 127, 128, 254, 255}) {
        cWaveFile file;
        ASSERT_TRUE(
            file.OpenRead(FileHolding(WaveBytes(Mono(8), std::string(2, static_cast<char>(stored))))));
        double precise = 9;
        float coarse = 9;
        EXPECT_TRUE(file.ReadSample(precise));
        EXPECT_TRUE(file.ReadSample(coarse));
        EXPECT_EQ(precise, stored / 127.0 - 1.0);
        EXPECT_EQ(coarse, static_cast<float>(stored / 127.0 - 1.0));
    }
}

TEST(WaveFileSamples, OfOtherSizesAreNoNumbers) {
    for (const unsigned bits : {0U, 12U, 24U, 32U}) {
        cWaveFile file;
        ASSERT_TRUE(file.OpenRead(FileHolding(WaveBytes(Mono(bits), "samples!"))));
        double precise = 9;
        float coarse = 9;
        EXPECT_FALSE(file.ReadSample(precise));
        EXPECT_FALSE(file.ReadSample(coarse));
        EXPECT_STREQ(file.error, kNoFloats);
        EXPECT_EQ(precise, 9);
        EXPECT_EQ(coarse, 9);
        EXPECT_EQ(std::ftell(file.reader->file.get()), 44);

        cWaveFile writer;
        StartWriting(writer, static_cast<std::uint16_t>(bits), 1);
        EXPECT_FALSE(writer.WriteSample(0.5));
        EXPECT_FALSE(writer.WriteSample(0.5F));
        EXPECT_STREQ(writer.error, kNoFloats);
        EXPECT_EQ(writer.dataLength, 0U);
    }
}

TEST(WaveFileSamples, ThatAreMissingAreNoNumbers) {
    for (const unsigned bits : {8U, 16U}) {
        cWaveFile file;
        ASSERT_TRUE(file.OpenRead(FileHolding(WaveBytes(Mono(bits), ""))));
        double precise = 9;
        float coarse = 9;
        EXPECT_FALSE(file.ReadSample(precise));
        EXPECT_FALSE(file.ReadSample(coarse));
        EXPECT_STREQ(file.error, "Couldn't read samples");
        EXPECT_EQ(precise, 9);
        EXPECT_EQ(coarse, 9);
    }
}

/// Bytes that differ from place to place.
std::string Noise(std::size_t count) {
    std::string bytes;
    for (std::size_t i = 0; i < count; ++i) {
        bytes += static_cast<char>(i * i / 7 + i);
    }
    return bytes;
}

TEST(WaveFileCopy, AppendsAllSamples) {
    for (const std::size_t size : {0U, 1U, 4095U, 4096U, 4097U, 12288U, 20001U}) {
        cWaveFile source;
        ASSERT_TRUE(source.OpenRead(FileHolding(WaveBytes(Mono(8), Noise(size), "", Chunk("fact", "1234")))));
        std::uint8_t moved = 0;
        source.ReadSample8(moved);
        cWaveFile target;
        StartWriting(target, 8, 1);
        ASSERT_TRUE(target.WriteRaw("first", 5));
        target.headerDirty = false;
        EXPECT_TRUE(target.CopyFrom(source));
        EXPECT_EQ(target.headerDirty, size > 0);
        EXPECT_EQ(target.dataLength, size + 5);
        EXPECT_EQ(SamplesOf(target), "first" + Noise(size));
    }
}

TEST(WaveFileCopy, LeavesTheFormatAlone) {
    cWaveFile source;
    ASSERT_TRUE(source.OpenRead(FileHolding(WaveBytes({}, "samples!"))));
    cWaveFile target;
    StartWriting(target, 8, 1);
    EXPECT_TRUE(target.CopyFrom(source));
    EXPECT_FALSE(target.SameFormat(source));
    EXPECT_EQ(target.bitsPerSample, 8);
}

TEST(WaveFileCopy, NeedsAnOpenFileOnEitherSide) {
    cWaveFile source;
    cWaveFile target;
    EXPECT_FALSE(target.CopyFrom(source));
    EXPECT_STREQ(target.error, "Copy to an unopened file");
    ASSERT_TRUE(target.OpenWrite(FileHolding("")));
    EXPECT_FALSE(target.CopyFrom(source));
    EXPECT_STREQ(target.error, "Copy from an unopened file");
    EXPECT_FALSE(target.CopyFrom(target));
    EXPECT_STREQ(target.error, "Copy from an unopened file");
    ASSERT_TRUE(source.OpenRead(FileHolding(WaveBytes({}, "samples!"))));
    EXPECT_FALSE(source.CopyFrom(source));
    EXPECT_STREQ(source.error, "Copy to an unopened file");
}

TEST(WaveFileCopy, SaysThatTheSourceCannotBeReset) {
    const TestFolder folder;
    cWaveFile source;
    ASSERT_TRUE(source.OpenRead(folder.Write("a.wav", WaveBytes({}, Noise(10000)))));
    // Away from what the stream's buffer still holds of the start.
    std::fseek(source.reader->file.get(), 0, SEEK_END);
    folder.Write("a.wav", "");
    cWaveFile target;
    ASSERT_TRUE(target.OpenWrite(FileHolding("")));
    EXPECT_FALSE(target.CopyFrom(source));
    EXPECT_STREQ(target.error, "Couldn't reset input file to start");
    EXPECT_STREQ(source.error, "Couldn't find data chunk on reset");
}

TEST(WaveFileCopy, KeepsWhatWasCopiedBeforeTheSourceEnded) {
    const std::string samples = Noise(5000);
    for (const std::uint32_t announced : {5001U, 0xFFFFFFFFU}) {
        cWaveFile source;
        ASSERT_TRUE(source.OpenRead(FileHolding(ChunkOfSize("RIFF", 0xFFFFFFFF,
                                                            "WAVE" + Chunk("fmt ", FormatBytes(Mono(8))) +
                                                                ChunkOfSize("data", announced, samples)))));
        cWaveFile target;
        ASSERT_TRUE(target.OpenWrite(FileHolding("")));
        EXPECT_FALSE(target.CopyFrom(source));
        EXPECT_STREQ(target.error, "Error reading samples from input file");
        EXPECT_EQ(target.dataLength, 4096U);
        EXPECT_TRUE(target.headerDirty);
        EXPECT_EQ(SamplesOf(target), samples.substr(0, 4096));
    }
}

TEST(WaveFileCopy, SaysThatTheTargetCannotBeWritten) {
    cWaveFile source;
    ASSERT_TRUE(source.OpenRead(FileHolding(WaveBytes(Mono(8), Noise(100000)))));
    cWaveFile target;
    target.OpenWrite(std::fopen("/dev/full", "wb"));
    EXPECT_FALSE(target.CopyFrom(source));
    EXPECT_STREQ(target.error, "Error writing samples to output file");
    EXPECT_LT(target.dataLength, 100000U);
    EXPECT_EQ(target.dataLength % 4096, 0U);
}

TEST(WaveFileInfo, IsListedFromTheFirst) {
    const std::string items =
        Chunk("INAM", std::string("Rain") + '\0') + Chunk("IART", std::string("Anna") + '\0');
    cWaveFile file;
    ASSERT_TRUE(file.OpenRead(FileHolding(WaveBytes({}, "samples!", Form("LIST", "INFO", items)))));
    std::string description;
    std::string value;
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(file.GetFirstInfo(description, value));
        EXPECT_EQ(description + ": " + value, "Name: Rain");
        ASSERT_TRUE(file.GetNextInfo(description, value));
        EXPECT_EQ(description + ": " + value, "Artist: Anna");
    }
    EXPECT_FALSE(file.GetNextInfo(description, value));
    ASSERT_TRUE(file.Reset());
    std::array<std::int16_t, 4> frames{};
    EXPECT_TRUE(file.ReadFrames16(frames.data(), 2));
}

TEST(WaveFileInfo, IsNoneWithoutAReader) {
    cWaveFile file;
    std::string description;
    std::string value;
    EXPECT_FALSE(file.GetFirstInfo(description, value));
    EXPECT_FALSE(file.GetNextInfo(description, value));
    ASSERT_TRUE(file.OpenWrite(FileHolding("")));
    EXPECT_FALSE(file.GetFirstInfo(description, value));
    EXPECT_FALSE(file.GetNextInfo(description, value));
}

TEST(WaveFileInfo, IsNoneWhenTheFileCannotBeRewound) {
    const TestFolder folder;
    cWaveFile file;
    ASSERT_TRUE(file.OpenRead(folder.Write("a.wav", WaveBytes({}, Noise(10000)))));
    std::fseek(file.reader->file.get(), 0, SEEK_END);
    folder.Write("a.wav", "");
    std::string description;
    std::string value;
    EXPECT_FALSE(file.GetFirstInfo(description, value));
}

} // namespace
