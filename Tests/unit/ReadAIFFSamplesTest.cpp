#include "ReadAIFF.h"

#include "AiffBytes.h"
#include "AiffFile.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

namespace {

const char* const kTooWide = "cReadAIFF: AIFF-data does not fit requested destination datatype!";

/// A file of one channel that claims so many frames, whatever it holds.
std::string Mono(int bits, std::uint32_t frames, const std::string& samples) {
    return AiffChunkOfSize("FORM", 0xFFFFFFFFU,
                           "AIFF" + CommonChunk({1, frames, bits, 8000}) + SoundChunk(samples));
}

/// Samples of these bits, as one destination type has them.
template <class Element>
std::vector<Element> Samples(int bits, std::uint32_t count, const std::string& bytes) {
    OpenAiff file(Mono(bits, count, bytes));
    std::vector<Element> samples(count);
    file.reader.Read(samples.data(), static_cast<std::int32_t>(count));
    return samples;
}

template <class Element>
class ReadAIFFAs : public testing::Test {};

using Elements =
    testing::Types<std::int64_t, std::int32_t, std::uint32_t, std::int16_t, std::int8_t, double, float>;
TYPED_TEST_SUITE(ReadAIFFAs, Elements);

/// The most whole bytes of a sample that each destination takes.
template <class Element>
constexpr int kMaxBytes = sizeof(Element);
template <>
constexpr int kMaxBytes<std::int64_t> = 7;
template <>
constexpr int kMaxBytes<double> = 6;
template <>
constexpr int kMaxBytes<float> = 3;

TYPED_TEST(ReadAIFFAs, TakesSamplesUpToItsWidth) {
    for (int bytes = 1; bytes <= 7; ++bytes) {
        OpenAiff file(Mono(8 * bytes, 1, std::string(7, '\x40')));
        TypeParam sample{};
        const std::string message = bytes <= kMaxBytes<TypeParam> ? "" : kTooWide;
        EXPECT_EQ(ThrownText([&] { file.reader.Read(&sample, 1); }), message) << bytes;
        EXPECT_EQ(sample != TypeParam{}, message.empty()) << bytes;
        EXPECT_EQ(file.reader.GetFramesToGo(), message.empty() ? 0U : 1U) << bytes;
    }
}

TYPED_TEST(ReadAIFFAs, SaysWhyItRefuses) {
    OpenAiff file(AiffBytes({1, 2, 8, 8000}, "ab"));
    TypeParam samples[3] = {};
    EXPECT_EQ(ThrownText([&] { file.reader.Read(static_cast<TypeParam*>(nullptr), -1); }),
              "cReadAIFF: NULL pointer supplied to read()!");
    EXPECT_EQ(ThrownText([&] { file.reader.Read(samples, -1); }),
              "cReadAIFF: Cannot read negative amount of frames!");
    EXPECT_EQ(ThrownText([&] { file.reader.Read(samples, std::numeric_limits<std::int32_t>::min()); }),
              "cReadAIFF: Cannot read negative amount of frames!");
    EXPECT_EQ(ThrownText([&] { file.reader.Read(samples, 3); }),
              "cReadAIFF: Requested to read more frames than available!");
    EXPECT_EQ(file.reader.GetFramesToGo(), 2U);
    EXPECT_EQ(samples[0], TypeParam{});
    file.reader.Close();
    EXPECT_EQ(ThrownText([&] { file.reader.Read(static_cast<TypeParam*>(nullptr), -1); }),
              "cReadAIFF: Cannot read from a closed file!");
    cReadAIFF fresh;
    EXPECT_EQ(ThrownText([&] { fresh.Read(samples, 1); }), "cReadAIFF: Cannot read from a closed file!");
}

TYPED_TEST(ReadAIFFAs, ChecksTheWidthBeforeAllElse) {
    OpenAiff file(Mono(56, 1, "sevenby"));
    const bool isLimited = sizeof(TypeParam) < 8 || kMaxBytes<TypeParam> < 7;
    const auto read = [&] { file.reader.Read(static_cast<TypeParam*>(nullptr), -1); };
    EXPECT_EQ(ThrownText(read), isLimited ? kTooWide : "cReadAIFF: NULL pointer supplied to read()!");
    file.reader.Close();
    EXPECT_EQ(ThrownText(read), isLimited ? kTooWide : "cReadAIFF: Cannot read from a closed file!");
}

TYPED_TEST(ReadAIFFAs, ReadsExactlyTheFramesThereAre) {
    OpenAiff file(AiffBytes({2, 3, 8, 8000}, std::string("\x01\x02\x03\x04\x05\x06", 6)));
    TypeParam samples[6] = {};
    file.reader.Read(samples, 0);
    EXPECT_EQ(samples[0], TypeParam{});
    EXPECT_EQ(file.reader.GetFramesToGo(), 3U);
    file.reader.Read(samples, 1);
    file.reader.Read(samples + 2, 2);
    for (int i = 1; i < 6; ++i) {
        EXPECT_EQ(samples[i], samples[0] * static_cast<TypeParam>(i + 1)) << i;
    }
    EXPECT_EQ(file.reader.GetFramesToGo(), 0U);
    file.reader.Read(samples, 0);
    EXPECT_EQ(ThrownText([&] { file.reader.Read(samples, 1); }),
              "cReadAIFF: Requested to read more frames than available!");
}

TEST(ReadAIFFSamples, IntegersHaveTheirSign) {
    EXPECT_EQ(Samples<std::int8_t>(8, 4, std::string("\xFF\x80\x7F\0", 4)),
              (std::vector<std::int8_t>{-1, -128, 127, 0}));
    EXPECT_EQ(Samples<std::int16_t>(16, 3, "\x80\x01\x7F\xFE\xFF\xFD"),
              (std::vector<std::int16_t>{-32767, 32766, -3}));
    EXPECT_EQ(Samples<std::int16_t>(8, 2, "\x80\x7F"), (std::vector<std::int16_t>{-128, 127}));
    EXPECT_EQ(Samples<std::int32_t>(24, 2, std::string("\x80\0\0\x7F\xFF\xFF", 6)),
              (std::vector<std::int32_t>{-8388608, 8388607}));
    EXPECT_EQ(Samples<std::int32_t>(32, 2, std::string("\x80\0\0\0\x7F\xFF\xFF\xFF", 8)),
              (std::vector<std::int32_t>{std::numeric_limits<std::int32_t>::min(), 2147483647}));
    EXPECT_EQ(Samples<std::uint32_t>(16, 2, "\xFF\xFE\x01\x02"),
              (std::vector<std::uint32_t>{0xFFFFFFFEU, 258}));
    EXPECT_EQ(Samples<std::int64_t>(56, 2, std::string("\x80\0\0\0\0\0\0\x7F\xFF\xFF\xFF\xFF\xFF\xFF", 14)),
              (std::vector<std::int64_t>{-(std::int64_t{1} << 55), (std::int64_t{1} << 55) - 1}));
}

TEST(ReadAIFFSamples, NumbersAreFromMinusOneToBelowOne) {
    EXPECT_EQ(Samples<double>(24, 2, std::string("\x80\0\0\x7F\xFF\xFF", 6)),
              (std::vector<double>{-1.0, 8388607.0 / 8388608.0}));
    EXPECT_EQ(Samples<float>(24, 2, std::string("\x80\0\0\x7F\xFF\xFF", 6)),
              (std::vector<float>{-1.0F, 8388607.0F / 8388608.0F}));
    EXPECT_EQ(Samples<double>(48, 1, "\x7F\xFF\xFF\xFF\xFF\xFF"),
              (std::vector<double>{1 - std::ldexp(1, -47)}));
    EXPECT_EQ(Samples<float>(8, 3, std::string("\xC0\x20\0", 3)), (std::vector<float>{-0.5F, 0.25F, 0}));
}

TEST(ReadAIFFSamples, TakeTheBytesThatTheirBitsAreReckonedTo) {
    const int bytesOf[57] = {0, 1, 1, 1, 0, 1, 1, 1, 1, 2, 2, 2, 1, 2, 2, 2, 2, 3, 3,
                             3, 2, 3, 3, 3, 3, 4, 4, 4, 3, 4, 4, 4, 4, 5, 5, 5, 4, 5,
                             5, 5, 5, 6, 6, 6, 5, 6, 6, 6, 6, 7, 7, 7, 6, 7, 7, 7, 7};
    for (int bits = 1; bits <= 56; ++bits) {
        OpenAiff file(Mono(bits, 2, std::string("\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0A\x0B\x0C\x0D\x0E")));
        std::int64_t samples[2] = {};
        file.reader.Read(samples, 2);
        EXPECT_EQ(bytesOf[bits] == 0 ? 0 : samples[1] >> 8 * (bytesOf[bits] - 1),
                  bytesOf[bits] == 0 ? 0 : bytesOf[bits] + 1)
            << bits;
    }
}

TEST(ReadAIFFSamples, StayAsTheyStandInTheirBytes) {
    EXPECT_EQ(Samples<std::int16_t>(10, 1, "\x12\x40"), (std::vector<std::int16_t>{0x1240}));
    EXPECT_EQ(Samples<double>(10, 1, std::string("\xC0\0", 2)), (std::vector<double>{-0.5}));
}

TEST(ReadAIFFSamples, OfFourBitsTakeNoBytesAndAreMinusOne) {
    EXPECT_EQ(Samples<std::int8_t>(4, 3, ""), (std::vector<std::int8_t>{-1, -1, -1}));
    EXPECT_EQ(Samples<std::int64_t>(4, 1, "x"), (std::vector<std::int64_t>{-1}));
    EXPECT_EQ(Samples<double>(4, 1, ""), (std::vector<double>{-std::numeric_limits<double>::infinity()}));
    EXPECT_EQ(Samples<std::int16_t>(4, 100000, ""), std::vector<std::int16_t>(100000, -1));
}

TEST(ReadAIFFSamples, BeforeTheEndOfTheFileAreStored) {
    // Two whole frames, one sample of the third, and one byte of that frame's second sample.
    const std::string form =
        "AIFF" + CommonChunk({2, 4, 16, 8000}) + SoundChunk(std::string("\0\1\0\2\0\3\0\4\0\5\0", 11));
    OpenAiff file(AiffChunkOfSize("FORM", 100, form));
    std::int16_t samples[8] = {9, 9, 9, 9, 9, 9, 9, 9};
    EXPECT_EQ(ThrownText([&] { file.reader.Read(samples, 4); }), "cReadAIFF: Error reading audiosample!");
    EXPECT_EQ(std::vector<std::int16_t>(samples, samples + 8),
              (std::vector<std::int16_t>{1, 2, 3, 4, 5, 9, 9, 9}));
    EXPECT_EQ(file.reader.GetFramesToGo(), 2U);
    EXPECT_EQ(ThrownText([&] { file.reader.Read(samples, 1); }), "cReadAIFF: Error reading audiosample!");
    EXPECT_EQ(samples[0], 1);
    EXPECT_EQ(file.reader.GetFramesToGo(), 2U);
}

TEST(ReadAIFFSamples, AreReadToTheLastInOneCall) {
    const std::uint32_t frames = 100003;
    std::string bytes;
    for (std::uint32_t i = 0; i < 3 * frames; ++i) {
        bytes += Big16(static_cast<int>(i % 30011));
    }
    OpenAiff file(AiffBytes({3, frames, 16, 44100}, bytes));
    std::vector<std::int32_t> samples(3 * std::size_t{frames});
    file.reader.Read(samples.data(), static_cast<std::int32_t>(frames));
    EXPECT_EQ(file.reader.GetFramesToGo(), 0U);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        ASSERT_EQ(samples[i], static_cast<std::int32_t>(i % 30011)) << i;
    }
}

TEST(ReadAIFFSamples, OfTheWidestFramesAreRead) {
    OpenAiff file(AiffBytes({1000, 6, 56, 8000}, std::string(42000, '\x01')));
    std::vector<std::int64_t> samples(6000);
    file.reader.Read(samples.data(), 6);
    EXPECT_EQ(samples, std::vector<std::int64_t>(6000, 0x01010101010101));
}

TEST(ReadAIFFSamples, AfterFarMoreFramesWereAnnouncedThanThereAre) {
    OpenAiff file(Mono(16, 0xFFFFFFFFU, "abcd"));
    std::vector<std::int16_t> samples(40000);
    EXPECT_EQ(ThrownText([&] { file.reader.Read(samples.data(), 40000); }),
              "cReadAIFF: Error reading audiosample!");
    EXPECT_EQ(samples[1], 'c' << 8 | 'd');
    EXPECT_EQ(samples[2], 0);
    EXPECT_EQ(file.reader.GetFramesToGo(), 0xFFFFFFFDU);
}

} // namespace
