#include "AiffBytes.h"
#include "AiffFile.h"
#include "ExtendedFloat.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <vector>

namespace {

const AiffFormat kFormat{1, 3, 8, 8000};
const std::string kCommon = CommonChunk(kFormat);
const std::string kSound = SoundChunk("abc");

const char* const kNoChunk = "cReadAIFF: Failed to read chunkID!";
const char* const kNoOffset = "cReadAIFF: Error while skipping offset in SSND chunk!";
const char* const kNoRate = "cReadAIFF: Samplerate out of range!";

/// A file that claims to be large enough for any samples that are not there.
std::string LargeForm(const std::string& chunks) {
    return AiffChunkOfSize("FORM", 10000, "AIFF" + chunks);
}

/// The samples of a file of three frames, one byte each.
std::string Sound(const std::string& content) {
    OpenAiff file(content);
    std::int8_t samples[3] = {};
    file.reader.Read(samples, 3);
    return {samples, samples + 3};
}

std::string WithRate(const std::string& rate) {
    return AiffForm(AiffChunk("COMM", CommonBytes(kFormat).substr(0, 8) + rate) + kSound);
}

/// A stream that cannot be moved, which holds this content and then ends.
class Pipe {
public:
    explicit Pipe(const std::string& content) {
        if (::pipe(mEnds.data()) != 0 ||
            ::write(mEnds[1], content.data(), content.size()) != static_cast<ssize_t>(content.size())) {
            throw std::runtime_error("no pipe");
        }
        ::close(mEnds[1]);
    }

    ~Pipe() { ::close(mEnds[0]); }

    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    std::string Path() const { return "/proc/self/fd/" + std::to_string(mEnds[0]); }

private:
    std::array<int, 2> mEnds{};
};

std::string PipeError(const std::string& content) {
    const Pipe pipe(content);
    return ThrownText([&] { const cReadAIFF reader(pipe.Path().c_str()); });
}

/// A file with a hole, so that what follows the start stands at this offset.
std::string WriteWithHole(const TestFolder& folder, const std::string& start, std::uint64_t offset,
                          const std::string& rest) {
    const std::string path = folder.Write("hole.aif", start);
    std::ofstream stream(path, std::ios::binary | std::ios::in);
    stream.seekp(static_cast<std::streamoff>(offset));
    stream << rest;
    return path;
}

TEST(AiffHeader, SaysWhereTheFileEnds) {
    struct Case {
        std::size_t firstLength;
        const char* message;
    };

    const Case cases[] = {{0, "cReadAIFF: Failed to read FORM chunk!"},
                          {4, "cReadAIFF: Failed to read FORM size!"},
                          {8, "cReadAIFF: Failed to read AIFF type!"},
                          {12, kNoChunk},
                          {16, "cReadAIFF: Failed to read chunksize!"},
                          {20, "cReadAIFF: Failed to read number of channels!"},
                          {22, "cReadAIFF: Failed to read number of sampleframes in COMM chunk!"},
                          {26, "cReadAIFF: Failed to read number of bits resolution in COMM chunk!"},
                          {28, "cReadAIFF: Error reading samplerate!"},
                          {38, kNoChunk},
                          {42, "cReadAIFF: Failed to read chunksize!"},
                          {46, ""}};
    const std::string file = AiffForm(kCommon + kSound);
    for (std::size_t length = 0; length <= file.size(); ++length) {
        const auto after = std::upper_bound(std::begin(cases), std::end(cases), length,
                                            [](std::size_t l, const Case& c) { return l < c.firstLength; });
        EXPECT_EQ(OpenError(file.substr(0, length)), std::prev(after)->message) << length;
    }
}

TEST(AiffHeader, SaysWhatIsWrong) {
    const std::string badChannels = "cReadAIFF: Invalid number of channels!";
    const std::string badBits = "cReadAIFF: Invalid number of resolution bits!";
    const std::string small = "cReadAIFF: COMM chunk has bad size (too small)!";

    const struct {
        std::string content;
        std::string message;
    } cases[] = {
        {AiffChunk("RIFF", "AIFF" + kCommon + kSound),
         "cReadAIFF: Header doesn't start with magic word FORM!"},
        {AiffChunk("form", "AIFF" + kCommon + kSound),
         "cReadAIFF: Header doesn't start with magic word FORM!"},
        {AiffForm(kCommon + kSound, "AIFC"), "cReadAIFF: Header doesn't specify AIFF type!"},
        {AiffForm(kCommon + kSound, std::string("AIF\0", 4)), "cReadAIFF: Header doesn't specify AIFF type!"},
        {LargeForm(kCommon), kNoChunk},
        {AiffForm(kSound), kNoChunk},
        {AiffForm(""), kNoChunk},
        {AiffForm(kCommon + kCommon + kSound), "cReadAIFF: Multiple COMM chunks!"},
        {AiffForm(kSound + kSound + kCommon), "cReadAIFF: Multiple SSND chunks!"},
        {AiffForm(AiffChunkOfSize("COMM", 17, CommonBytes(kFormat)) + kSound), small},
        {AiffForm(AiffChunkOfSize("COMM", 0, CommonBytes(kFormat)) + kSound), small},
        {AiffForm(CommonChunk({0, 0, 8, 8000}) + kSound), badChannels},
        {AiffForm(CommonChunk({1001, 0, 8, 8000}) + kSound), badChannels},
        {AiffForm(CommonChunk({-1, 0, 8, 8000}) + kSound), badChannels},
        {AiffForm(CommonChunk({1000, 0, 8, 8000}) + kSound), ""},
        {AiffForm(CommonChunk({1, 0, 0, 8000}) + kSound), badBits},
        {AiffForm(CommonChunk({1, 0, 57, 8000}) + kSound), badBits},
        {AiffForm(CommonChunk({1, 0, -8, 8000}) + kSound), badBits},
        {AiffForm(CommonChunk({1, 0, 56, 8000}) + kSound), ""},
        {AiffForm(CommonChunk({1, 0, 1, 8000}) + kSound), ""},
    };

    for (const auto& test : cases) {
        EXPECT_EQ(OpenError(test.content), test.message);
    }
}

TEST(AiffHeader, OfAFolderCannotBeRead) {
    const TestFolder folder;
    EXPECT_EQ(ThrownText([&] { const cReadAIFF reader(folder.Path().c_str()); }),
              "cReadAIFF: Failed to read FORM chunk!");
}

TEST(AiffHeader, ComparesTheFormSizeWithTheSamples) {
    const struct {
        AiffFormat format;
        std::uint32_t formSize;
        bool isSuspicious;
    } cases[] = {{{2, 3, 16, 8000}, 57, true},
                 {{2, 3, 16, 8000}, 58, false},
                 {{1, 0, 16, 8000}, 45, true},
                 {{1, 0, 16, 8000}, 46, false},
                 {{1, 1000, 4, 8000}, 46, false},
                 {{1, 1000, 12, 8000}, 1045, true},
                 // 2^31 - 1 is compared, 2^31 and more is not.
                 {{1, 0x7FFFFFD1U, 8, 8000}, 0x7FFFFFFEU, true},
                 {{1, 0x7FFFFFD1U, 8, 8000}, 0x7FFFFFFFU, false},
                 {{1, 0x7FFFFFD2U, 8, 8000}, 0, false},
                 {{1000, 0xFFFFFFFFU, 56, 8000}, 0, false}};

    for (const auto& test : cases) {
        const std::string chunks = "AIFF" + CommonChunk(test.format) + SoundChunk("");
        EXPECT_EQ(OpenError(AiffChunkOfSize("FORM", test.formSize, chunks)),
                  test.isSuspicious ? "cReadAIFF: Suspicious size in FORM chunk!" : "")
            << test.format.frames << " " << test.formSize;
    }
}

TEST(AiffHeader, TakesRatesUpToAMillion) {
    EXPECT_EQ(OpenAiff(WithRate(RateBytes(1000000))).reader.GetSampleRate(), 1000000.0);
    EXPECT_GT(OpenAiff(WithRate(ExtendedBytes(16383 - 500, std::uint64_t{1} << 63))).reader.GetSampleRate(),
              0);
    EXPECT_EQ(OpenError(WithRate(RateBytes(std::nextafter(1000000.0, 2e6)))), kNoRate);
    EXPECT_EQ(OpenError(WithRate(ExtendedBytes(0, 0))), kNoRate);
    EXPECT_EQ(OpenError(WithRate(ExtendedBytes(0x8000, 0))), kNoRate);
    EXPECT_EQ(OpenError(WithRate(ExtendedBytes(0x8000 | 16383, std::uint64_t{1} << 63))), kNoRate);
    EXPECT_EQ(OpenError(WithRate(ExtendedBytes(0x7FFF, std::uint64_t{1} << 63))), kNoRate);
    EXPECT_EQ(OpenError(WithRate(ExtendedBytes(1, ~std::uint64_t{0}))), kNoRate) << "too small for a double";
}

TEST(AiffHeader, PassesOverOtherChunks) {
    const std::string name = AiffChunk("NAME", "four");
    const std::string large = AiffChunk("APPL", std::string(100000, 'x'));
    EXPECT_EQ(Sound(AiffForm(name + kCommon + large + AiffChunk("ANNO", "") + kSound + name)), "abc");
}

TEST(AiffHeader, ExpectsNoPadByteBehindOddChunks) {
    EXPECT_EQ(Sound(AiffForm(kCommon + AiffChunk("NAME", "odd") + kSound)), "abc");
    EXPECT_EQ(OpenError(AiffForm(kCommon + AiffChunk("NAME", "odd") + std::string(1, '\0') + kSound)),
              kNoChunk);
}

TEST(AiffHeader, PassesOverAnExtensionOfTheCommonChunk) {
    const std::string common = AiffChunk("COMM", CommonBytes(kFormat) + "more");
    EXPECT_EQ(Sound(AiffForm(common + kSound)), "abc");
    EXPECT_EQ(Sound(AiffForm(kSound + common)), "abc");
    EXPECT_EQ(OpenError(AiffForm(AiffChunkOfSize("COMM", 0xFFFFFFFFU, CommonBytes(kFormat)) + kSound)),
              kNoChunk);
}

TEST(AiffHeader, ReturnsToSamplesThatCameFirst) {
    EXPECT_EQ(Sound(AiffForm(kSound + kCommon)), "abc");
    EXPECT_EQ(Sound(AiffForm(kSound + AiffChunk("NAME", "four") + kCommon)), "abc");
    OpenAiff file(AiffForm(kSound + kCommon));
    std::int8_t samples[3] = {};
    file.reader.Read(samples, 3);
    file.reader.Rewind();
    file.reader.Read(samples, 1);
    EXPECT_EQ(samples[0], 'a');
}

TEST(AiffHeader, PassesOverTheOffsetOfTheSamples) {
    EXPECT_EQ(Sound(AiffForm(kCommon + SoundChunk("abc", 7, 512))), "abc");
    // Ahead of COMM, the size is counted from behind the offset, though it includes it.
    const std::string before = AiffChunkOfSize("SSND", 8 + 3, Big32(2) + Big32(0) + "__abc");
    EXPECT_EQ(Sound(AiffForm(before + kCommon)), "abc");
    EXPECT_EQ(OpenError(AiffForm(SoundChunk("abc", 2) + kCommon)), kNoChunk);
}

TEST(AiffHeader, PassesOverSamplesToTheEndOfTheirBlock) {
    const struct {
        std::uint32_t blockSize;
        std::size_t pad;
    } cases[] = {{0, 0}, {1, 0}, {3, 0}, {2, 1}, {4, 1}, {7, 4}, {512, 509}};

    for (const auto& test : cases) {
        EXPECT_EQ(
            Sound(AiffForm(SoundChunk("abc", 0, test.blockSize) + std::string(test.pad, '_') + kCommon)),
            "abc")
            << test.blockSize;
    }
    EXPECT_EQ(OpenError(AiffForm(SoundChunk("abc", 0, 0xFFFFFFFFU) + kCommon)), kNoChunk);
}

TEST(AiffHeader, WalksOnFromASoundChunkTooSmallForItsHead) {
    // The next chunk begins within the head: its offset is the id, its block size the size of that chunk.
    const std::string tiny = AiffChunkOfSize("SSND", 0, std::string("\0\0\0\0\0\0\0\0", 8));
    EXPECT_EQ(OpenError(AiffForm(tiny)), kNoChunk);
    EXPECT_EQ(Sound(AiffForm(tiny + kCommon + "abc")).size(), 3U);
    // Of five bytes less than none, the next block of two begins at four less, which is the block size.
    const std::string odd = AiffChunkOfSize("SSND", 3, Big32(0) + Big32(2));
    EXPECT_EQ(OpenError(AiffForm(odd + Big32(0))), kNoChunk);
    EXPECT_EQ(OpenError(AiffForm(odd + Big32(0) + "COM")), kNoChunk);
    EXPECT_EQ(OpenAiff(AiffForm(odd + Big32(0) + kCommon)).reader.GetFrames(), 3U);
}

TEST(AiffHeader, MayEndWithinTheHeadOfTheSamples) {
    OpenAiff file(LargeForm(CommonChunk({1, 0, 8, 8000}) + AiffChunkOfSize("SSND", 8, "")));
    std::int8_t sample = 5;
    file.reader.Read(&sample, 0);
    EXPECT_EQ(ThrownText([&] { file.reader.Rewind(); }), "cReadAIFF: Failed to rewind!");

    OpenAiff silent(LargeForm(CommonChunk({1, 9, 4, 8000}) + AiffChunkOfSize("SSND", 8, "")));
    EXPECT_EQ(ThrownText([&] { silent.reader.Read(&sample, 1); }), "cReadAIFF: Error reading audiosample!");
    EXPECT_EQ(sample, 5);
    EXPECT_EQ(silent.reader.GetFramesToGo(), 9U);

    EXPECT_EQ(OpenError(LargeForm(kCommon + AiffChunkOfSize("SSND", 8, Big32(1) + "bl"))), kNoOffset);
    EXPECT_EQ(OpenError(LargeForm(AiffChunkOfSize("SSND", 8, "") + kCommon.substr(0, 3))), kNoChunk);
}

TEST(AiffHeader, OfAStreamThatCannotBeMoved) {
    const std::string extended = AiffChunkOfSize("COMM", 1018, CommonBytes(kFormat));
    EXPECT_EQ(PipeError(LargeForm(AiffChunkOfSize("NAME", 2000, "x"))),
              "cReadAIFF: Error during skipping unknown chunk!");
    EXPECT_EQ(PipeError(LargeForm(extended)),
              "cReadAIFF: Error while skipping extension-bytes in COMM chunk!");
    EXPECT_EQ(PipeError(LargeForm(kCommon + AiffChunk("SSND", Big32(2000) + Big32(0)))), kNoOffset);
    EXPECT_EQ(PipeError(LargeForm(kSound + kCommon)), kNoChunk);
}

TEST(AiffHeader, OfAPipeLeadsToSamplesThatCannotBeRewound) {
    const Pipe pipe(AiffForm(AiffChunk("NAME", "near") + kCommon + kSound));
    cReadAIFF reader(pipe.Path().c_str());
    std::int8_t samples[3] = {};
    reader.Read(samples, 2);
    EXPECT_EQ(samples[1], 'b');
    EXPECT_EQ(ThrownText([&] { reader.Rewind(); }), "cReadAIFF: Failed to rewind!");
}

TEST(AiffHeader, ReachesSamplesThatBeginWithin2GiB) {
    const TestFolder folder;
    const std::uint64_t last = 0x7FFFFFFF;
    const std::string sound = AiffChunk("SSND", Big32(0) + Big32(0) + "abc");
    for (const bool fits : {true, false}) {
        const std::uint64_t place = last - 16 + (fits ? 0 : 1);
        const std::string start = "FORM" + Big32(0x7FFFFFFF) + "AIFF" + kCommon;
        const auto skipped = static_cast<std::uint32_t>(place - start.size() - 8);
        const std::string path = WriteWithHole(folder, start + "HOLE" + Big32(skipped), place, sound);
        cReadAIFF reader;
        EXPECT_EQ(ThrownText([&] { reader.Open(path.c_str()); }), fits ? "" : kNoOffset);
        if (fits) {
            std::int8_t samples[3] = {};
            reader.Read(samples, 3);
            reader.Rewind();
            reader.Read(samples, 1);
            EXPECT_EQ(samples[0], 'a');
        }
    }
}

TEST(AiffHeader, PassesOverMoreSamplesThan2GiB) {
    const TestFolder folder;
    const std::uint32_t size = 0xFFFFFFF0U;
    const std::string start =
        "FORM" + Big32(0xFFFFFFFFU) + "AIFF" + AiffChunkOfSize("SSND", size, Big32(0) + Big32(0)) + "abc";
    cReadAIFF reader(WriteWithHole(folder, start, 20 + std::uint64_t{size}, kCommon).c_str());
    std::int8_t samples[3] = {};
    reader.Read(samples, 3);
    EXPECT_EQ(samples[2], 'c');
}

TEST(AiffHeader, RefusesAnOffsetBeyond2GiB) {
    EXPECT_EQ(OpenError(LargeForm(kCommon + AiffChunk("SSND", Big32(0x80000000U) + Big32(0)))), kNoOffset);
    EXPECT_EQ(OpenError(LargeForm(kCommon + AiffChunk("SSND", Big32(0xFFFFFFFFU) + Big32(0)))), kNoOffset);
}

TEST(ExtendedFloat, IsTheNearestDouble) {
    const std::uint64_t one = std::uint64_t{1} << 63;
    const double infinity = std::numeric_limits<double>::infinity();

    const struct {
        std::string bytes;
        double value;
    } cases[] = {{ExtendedBytes(0, 0), 0},
                 {ExtendedBytes(16383, one), 1},
                 {ExtendedBytes(0x8000 | 16383, one), -1},
                 {RateBytes(44100), 44100},
                 {RateBytes(22254.54545454545), 22254.54545454545},
                 {ExtendedBytes(16383 + 63, 1), 1},
                 {ExtendedBytes(16383 + 31, std::uint64_t{5} << 32 | std::uint64_t{1} << 31), 5.5},
                 {ExtendedBytes(16383, 0), 0},
                 {ExtendedBytes(0x7FFF, 0), infinity},
                 {ExtendedBytes(0x7FFF, one | 1), infinity},
                 {ExtendedBytes(0xFFFF, one), -infinity},
                 {ExtendedBytes(0x7FFE, one), infinity},
                 {ExtendedBytes(16383 + 1023, one), std::ldexp(1, 1023)},
                 {ExtendedBytes(0, ~std::uint64_t{0}), 0}};

    for (const auto& test : cases) {
        tExtendedFloat bytes{};
        std::copy(test.bytes.begin(), test.bytes.end(), bytes.begin());
        EXPECT_EQ(DecodeExtendedFloat(bytes), test.value) << test.value;
    }
    EXPECT_FALSE(std::signbit(DecodeExtendedFloat({0x80})));
}

} // namespace
