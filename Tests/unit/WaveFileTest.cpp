#include "WaveFile.h"

#include "Hermetic.h"
#include "RiffBytes.h"
#include "TestStreams.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <array>

namespace {

const std::string kFormat = Chunk("fmt ", FormatBytes({}));

std::string Wave(const std::string& chunks) {
    return Form("RIFF", "WAVE", chunks);
}

/// The file that a writer should have made.
std::string Written(const WaveFormat& format, const std::string& samples) {
    const auto size = static_cast<std::uint32_t>(samples.size());
    return ChunkOfSize("RIFF", size + 36,
                       "WAVE" + Chunk("fmt ", FormatBytes(format)) + ChunkOfSize("data", size, samples));
}

void ExpectFormat(const cWaveFile& file, const WaveFormat& expected) {
    const unsigned blockAlign = expected.bits / 8 * expected.channels;
    EXPECT_EQ(file.formatTag, expected.tag);
    EXPECT_EQ(file.channels, expected.channels);
    EXPECT_EQ(file.sampleRate, expected.sampleRate);
    EXPECT_EQ(file.byteRate, blockAlign * expected.sampleRate);
    EXPECT_EQ(file.blockAlign, blockAlign);
    EXPECT_EQ(file.bitsPerSample, expected.bits);
}

std::string ReadBytes(cWaveFile& file, std::size_t count) {
    std::string bytes(count, '\0');
    EXPECT_TRUE(file.ReadRaw(bytes.data(), count));
    return bytes;
}

std::FILE* FullDisk() {
    return std::fopen("/dev/full", "wb");
}

/// A stream that cannot be moved, into a pipe whose other end stays open with it.
class OpenPipe {
public:
    OpenPipe() { EXPECT_EQ(::pipe(mEnds.data()), 0); }

    ~OpenPipe() { ::close(mEnds[0]); }

    OpenPipe(const OpenPipe&) = delete;
    OpenPipe& operator=(const OpenPipe&) = delete;

    std::FILE* Stream() { return ::fdopen(mEnds[1], "wb"); }

private:
    std::array<int, 2> mEnds{};
};

TEST(WaveFile, BeginsClosed) {
    cWaveFile file;
    EXPECT_EQ(file.reader, nullptr);
    EXPECT_EQ(file.out, nullptr);
    ExpectFormat(file, {0, 0, 0, 0});
    EXPECT_EQ(file.dataLength, 0U);
    EXPECT_EQ(file.error, nullptr);
    EXPECT_TRUE(file.headerDirty);
    EXPECT_TRUE(file.Close());
    EXPECT_FALSE(file.Reset());
    EXPECT_EQ(file.error, nullptr);
}

TEST(WaveFileReading, FillsTheFieldsAndStandsAtTheFirstSample) {
    const WaveFormat format{3, 6, 192000, 24};
    const TestFolder folder;
    cWaveFile file;
    ASSERT_TRUE(file.OpenRead(folder.Write("a.wav", WaveBytes(format, "samples!"))));
    ExpectFormat(file, format);
    EXPECT_EQ(file.dataLength, 8U);
    EXPECT_NE(file.reader, nullptr);
    EXPECT_EQ(file.out, nullptr);
    EXPECT_EQ(ReadBytes(file, 8), "samples!");
}

TEST(WaveFileReading, TakesAStreamOver) {
    std::FILE* const stream = FileHolding(WaveBytes({}, "samples!"));
    const int descriptor = ::fileno(stream);
    cWaveFile file;
    ASSERT_TRUE(file.OpenRead(stream));
    EXPECT_EQ(ReadBytes(file, 8), "samples!");
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(file.reader, nullptr);
    EXPECT_EQ(::fcntl(descriptor, F_GETFD), -1);
}

TEST(WaveFileReading, TakesEveryFieldFromItsPlace) {
    cWaveFile file;
    ASSERT_TRUE(file.OpenRead(
        FileHolding(Wave(Chunk("fmt ", "\x01\x82\x03\x84\x05\x06\x07\x88\x09\x0A\x0B\x8C\x0D\x8E\x0F\x90") +
                         Chunk("data", "")))));
    EXPECT_EQ(file.formatTag, 0x8201);
    EXPECT_EQ(file.channels, 0x8403);
    EXPECT_EQ(file.sampleRate, 0x88070605U);
    EXPECT_EQ(file.byteRate, 0x8C0B0A09U);
    EXPECT_EQ(file.blockAlign, 0x8E0D);
    EXPECT_EQ(file.bitsPerSample, 0x900F);
}

struct RefusedFile {
    const char* what;
    std::string content;
    const char* error;
};

const char* const kCouldNotOpen = "Couldn't open file";
const char* const kNoFormat = "Couldn't find RIFF, WAVE, or fmt";
const char* const kBadFormat = "Error reading format chunk";
const char* const kNoData = "Couldn't find data chunk";

const RefusedFile kRefusedFiles[] = {
    {"empty", "", kCouldNotOpen},
    {"not RIFF", Form("FORM", "AIFF", ""), kCouldNotOpen},
    {"AVI", Form("RIFF", "AVI ", kFormat + Chunk("data", "")), kNoFormat},
    {"no form type", Form("RIFF", std::string(4, '\0'), kFormat), kNoFormat},
    {"empty WAVE", Wave(""), kNoFormat},
    {"no fmt", Wave(Chunk("data", "samples!")), kNoFormat},
    {"fmt inside a list", Wave(Form("LIST", "wavl", kFormat) + Chunk("data", "")), kNoFormat},
    {"fmt of nothing", Wave(Chunk("fmt ", "") + Chunk("data", "")), kBadFormat},
    {"short fmt", Wave(Chunk("fmt ", FormatBytes({}).substr(0, 15)) + Chunk("data", "")), kBadFormat},
    {"cut fmt", Wave(ChunkOfSize("fmt ", 16, FormatBytes({}).substr(0, 14))), kBadFormat},
    {"cut long fmt", Wave(ChunkOfSize("fmt ", 40, FormatBytes({}))), kBadFormat},
    {"huge fmt", Wave(ChunkOfSize("fmt ", 0xFFFFFFFF, FormatBytes({}) + Chunk("data", ""))), kBadFormat},
    {"no data", Wave(kFormat + Chunk("fact", "1234")), kNoData},
    {"data outside", Wave(kFormat) + Chunk("data", "samples!"), kNoData},
    {"data behind 32 bits", Wave(kFormat + ChunkOfSize("hole", 0xFFFFFFF0) + Chunk("data", "")), kNoData},
};

TEST(WaveFileReading, SaysWhyAFileIsRefused) {
    for (const RefusedFile& given : kRefusedFiles) {
        cWaveFile file;
        std::FILE* const stream = FileHolding(given.content);
        const int descriptor = ::fileno(stream);
        EXPECT_FALSE(file.OpenRead(stream)) << given.what;
        EXPECT_STREQ(file.error, given.error) << given.what;
        EXPECT_EQ(file.reader, nullptr) << given.what;
        EXPECT_EQ(::fcntl(descriptor, F_GETFD), -1) << given.what;
    }
}

TEST(WaveFileReading, AFileThatIsMissingCannotBeOpened) {
    const TestFolder folder;
    cWaveFile file;
    EXPECT_FALSE(file.OpenRead(folder / "missing"));
    EXPECT_STREQ(file.error, "Couldn't open file");
    EXPECT_EQ(file.reader, nullptr);
}

TEST(WaveFileReading, FindsItsChunksInAnyOrder) {
    const std::string data = Chunk("data", "samples!");
    for (const std::string& chunks :
         {data + kFormat, Chunk("odd ", "xyz") + kFormat + Chunk("odd ", "x") + data,
          Form("LIST", "INFO", Chunk("INAM", "Rain")) + data + Chunk("fact", "1234") + kFormat,
          ChunkOfSize("LIST", 0) + kFormat + data}) {
        cWaveFile file;
        ASSERT_TRUE(file.OpenRead(FileHolding(Wave(chunks)))) << chunks;
        ExpectFormat(file, {});
        EXPECT_EQ(ReadBytes(file, 8), "samples!");
    }
}

TEST(WaveFileReading, IgnoresMoreOfTheFormat) {
    for (const std::size_t more : {1U, 2U, 24U, 10000U}) {
        cWaveFile file;
        ASSERT_TRUE(file.OpenRead(FileHolding(
            Wave(Chunk("fmt ", FormatBytes({}) + std::string(more, 'x')) + Chunk("data", "samples!")))))
            << more;
        ExpectFormat(file, {});
        EXPECT_EQ(ReadBytes(file, 8), "samples!");
    }
}

// A stream of memory cannot be moved behind the format, to a pad byte that is missing; there is no need to.
TEST(WaveFileReading, TheFormatMayEndTheFileWithoutItsPadByte) {
    const std::string bytes = ChunkOfSize(
        "RIFF", 100, "WAVE" + Chunk("data", "samples!") + ChunkOfSize("fmt ", 17, FormatBytes({}) + "x"));
    cWaveFile file;
    ASSERT_TRUE(file.OpenRead(MemoryHolding(bytes)));
    EXPECT_EQ(ReadBytes(file, 8), "samples!");
}

// Programs that write into a pipe leave sizes like these behind.
TEST(WaveFileReading, TakesTheLengthAsStored) {
    for (const std::uint32_t size : {9U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        cWaveFile file;
        ASSERT_TRUE(file.OpenRead(FileHolding(
            ChunkOfSize("RIFF", 0xFFFFFFFF, "WAVE" + kFormat + ChunkOfSize("data", size, "samples!")))));
        EXPECT_EQ(file.dataLength, size);
        EXPECT_EQ(ReadBytes(file, 8), "samples!");
    }
}

TEST(WaveFileReading, AnEarlierFileIsClosedFirst) {
    const TestFolder folder;
    cWaveFile file;
    ASSERT_TRUE(file.OpenWrite(folder / "a.wav"));
    file.SetFormat(8000, 8, 1);
    ASSERT_TRUE(file.WriteRaw("12", 2));
    ASSERT_TRUE(file.OpenRead(folder / "a.wav"));
    EXPECT_EQ(file.out, nullptr);
    ExpectFormat(file, {1, 1, 8000, 8});
    EXPECT_EQ(ReadBytes(file, 2), "12");
    EXPECT_FALSE(file.OpenRead(folder / "missing"));
    EXPECT_EQ(file.reader, nullptr);
}

TEST(WaveFileReading, ResetsToTheFirstSample) {
    cWaveFile file;
    ASSERT_TRUE(file.OpenRead(FileHolding(WaveBytes({}, "samples!", Chunk("odd ", "x")))));
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(ReadBytes(file, 8), "samples!");
        EXPECT_TRUE(file.Reset());
    }
}

TEST(WaveFileReading, CannotBeResetWhenItsDataChunkIsGone) {
    const TestFolder folder;
    for (const char* content : {"", "RIFF\x10\0\0\0WAVE"}) {
        cWaveFile file;
        ASSERT_TRUE(file.OpenRead(folder.Write("a.wav", WaveBytes({}, std::string(10000, 'x')))));
        // Away from what the stream's buffer still holds of the start.
        std::fseek(file.reader->file.get(), 0, SEEK_END);
        folder.Write("a.wav", content);
        EXPECT_FALSE(file.Reset());
        EXPECT_STREQ(file.error, "Couldn't find data chunk on reset");
    }
}

TEST(WaveFileWriting, AFileOfNothingIsItsHeader) {
    const TestFolder folder;
    cWaveFile file;
    file.SetFormat(48000, 16, 1);
    ASSERT_TRUE(file.OpenWrite(folder / "a.wav"));
    EXPECT_FALSE(file.headerDirty);
    EXPECT_EQ(file.dataLength, 0U);
    EXPECT_NE(file.out, nullptr);
    EXPECT_EQ(std::ftell(file.out.get()), 44);
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(file.out, nullptr);
    EXPECT_EQ(folder.Read("a.wav"), Written({1, 1, 48000, 16}, ""));
}

TEST(WaveFileWriting, TheHeaderHoldsEveryFieldInItsPlace) {
    cWaveFile file;
    file.formatTag = 0x8201;
    file.channels = 0x8403;
    file.sampleRate = 0x88070605U;
    file.byteRate = 0x8C0B0A09U;
    file.blockAlign = 0x8E0D;
    file.bitsPerSample = 0x900F;
    file.dataLength = 0x94939291U;
    const tStdioStream stream(FileHolding(std::string(50, '-')));
    ASSERT_TRUE(file.WriteHeader(stream.get()));
    EXPECT_EQ(std::ftell(stream.get()), 44);
    EXPECT_EQ(ContentOf(stream.get()),
              "RIFF" + Little32(0x949392B5) + "WAVEfmt " + Little32(16) +
                  "\x01\x82\x03\x84\x05\x06\x07\x88\x09\x0A\x0B\x8C\x0D\x8E\x0F\x90" +
                  "data\x91\x92\x93\x94------");
}

TEST(WaveFileWriting, AFormatSetAfterwardsIsInTheHeader) {
    const TestFolder folder;
    cWaveFile file;
    ASSERT_TRUE(file.OpenWrite(folder / "a.wav"));
    file.SetFormat(22050, 8, 2);
    EXPECT_TRUE(file.headerDirty);
    EXPECT_TRUE(file.Close());
    EXPECT_FALSE(file.headerDirty);
    EXPECT_EQ(folder.Read("a.wav"), Written({1, 2, 22050, 8}, ""));
}

struct FormatCase {
    std::uint32_t rate;
    std::uint16_t bits;
    std::uint16_t channels;
    std::uint16_t blockAlign;
    std::uint32_t byteRate;
};

TEST(WaveFileWriting, AFormatFollowsFromThreeNumbers) {
    for (const FormatCase& given : std::initializer_list<FormatCase>{
             {44100, 16, 2, 4, 176400},
             {8000, 8, 1, 1, 8000},
             {8000, 12, 2, 2, 16000},
             {8000, 7, 2, 0, 0},
             {0xFFFFFFFF, 24, 1, 3, 0xFFFFFFFD},
             {0xFFFFFFFF, 0xFFFF, 0xFFFF, 0xE001, 0xFFFF1FFF},
         }) {
        cWaveFile file;
        file.dataLength = 5;
        file.headerDirty = false;
        file.SetFormat(given.rate, given.bits, given.channels);
        EXPECT_EQ(file.formatTag, 1);
        EXPECT_EQ(file.channels, given.channels);
        EXPECT_EQ(file.sampleRate, given.rate);
        EXPECT_EQ(file.bitsPerSample, given.bits);
        EXPECT_EQ(file.blockAlign, given.blockAlign) << given.bits;
        EXPECT_EQ(file.byteRate, given.byteRate) << given.bits;
        EXPECT_EQ(file.dataLength, 0U);
        EXPECT_TRUE(file.headerDirty);
    }
}

TEST(WaveFileWriting, SixFieldsAreTheFormat) {
    cWaveFile one;
    one.SetFormat(44100, 16, 2);
    one.dataLength = 7;
    one.headerDirty = false;
    const auto differsBy = [&one](auto cWaveFile::*field) {
        cWaveFile other;
        other.CopyFormat(one);
        EXPECT_TRUE(one.SameFormat(other));
        ++(other.*field);
        const bool differs = !one.SameFormat(other) && !other.SameFormat(one);
        other.CopyFormat(one);
        return differs && other.SameFormat(one) && other.dataLength == 0 && other.headerDirty;
    };
    EXPECT_TRUE(differsBy(&cWaveFile::formatTag));
    EXPECT_TRUE(differsBy(&cWaveFile::channels));
    EXPECT_TRUE(differsBy(&cWaveFile::sampleRate));
    EXPECT_TRUE(differsBy(&cWaveFile::byteRate));
    EXPECT_TRUE(differsBy(&cWaveFile::blockAlign));
    EXPECT_TRUE(differsBy(&cWaveFile::bitsPerSample));
}

TEST(WaveFileWriting, OddSamplesHaveNoPadByte) {
    const TestFolder folder;
    cWaveFile file;
    ASSERT_TRUE(file.OpenWrite(folder / "a.wav"));
    file.SetFormat(8000, 8, 1);
    EXPECT_TRUE(file.WriteRaw("123", 3));
    EXPECT_EQ(file.dataLength, 3U);
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(folder.Read("a.wav"), Written({1, 1, 8000, 8}, "123"));
}

TEST(WaveFileWriting, SamplesMayGoToTheStreamDirectly) {
    const TestFolder folder;
    cWaveFile file;
    ASSERT_TRUE(file.OpenWrite(std::fopen((folder / "a.wav").c_str(), "wb")));
    file.SetFormat(8000, 16, 1);
    ASSERT_EQ(std::fwrite("samples!", 1, 8, file.out.get()), 8U);
    file.dataLength = 8;
    file.headerDirty = true;
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(folder.Read("a.wav"), Written({1, 1, 8000, 16}, "samples!"));
}

TEST(WaveFileWriting, IsFinishedByItsDestructor) {
    const TestFolder folder;
    {
        cWaveFile file;
        ASSERT_TRUE(file.OpenWrite(folder / "a.wav"));
        file.SetFormat(8000, 8, 1);
        ASSERT_TRUE(file.WriteRaw("12", 2));
    }
    EXPECT_EQ(folder.Read("a.wav"), Written({1, 1, 8000, 8}, "12"));
}

TEST(WaveFileWriting, TheLengthBeginsAtNothing) {
    const TestFolder folder;
    cWaveFile file;
    ASSERT_TRUE(file.OpenWrite(folder / "a.wav"));
    ASSERT_TRUE(file.WriteRaw("1234", 4));
    ASSERT_TRUE(file.OpenWrite(folder / "b.wav"));
    EXPECT_EQ(file.dataLength, 0U);
    EXPECT_EQ(folder.Read("a.wav"), Written({0, 0, 0, 0}, "1234"));
}

TEST(WaveFileWriting, KeepsAnEarlierFilesContentNowhere) {
    const TestFolder folder;
    folder.Write("a.wav", std::string(100, 'x'));
    cWaveFile file;
    ASSERT_TRUE(file.OpenWrite(folder / "a.wav"));
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(folder.Read("a.wav"), Written({0, 0, 0, 0}, ""));
}

TEST(WaveFileWriting, OnlyItsOwnHeaderCounts) {
    cWaveFile file;
    const tStdioStream other(FileHolding(""));
    ASSERT_TRUE(file.OpenWrite(FileHolding("")));
    file.SetFormat(8000, 8, 1);
    EXPECT_TRUE(file.WriteHeader(other.get()));
    EXPECT_TRUE(file.headerDirty);
    EXPECT_EQ(ContentOf(other.get()), Written({1, 1, 8000, 8}, ""));
    EXPECT_TRUE(file.WriteHeader(file.out.get()));
    EXPECT_FALSE(file.headerDirty);
    EXPECT_EQ(ContentOf(file.out.get()), Written({1, 1, 8000, 8}, ""));
}

// The place is the head of the data chunk, 8 bytes before the first sample.
TEST(WaveFileWriting, ResetsToTheDataTag) {
    cWaveFile file;
    ASSERT_TRUE(file.OpenWrite(FileHolding("")));
    EXPECT_TRUE(file.Reset());
    EXPECT_EQ(std::ftell(file.out.get()), 36);
    ASSERT_TRUE(file.WriteRaw("DATA", 4));
    EXPECT_EQ(ContentOf(file.out.get()).substr(36), "DATA" + Little32(0));
}

TEST(WaveFileWriting, ReadsFromAStreamThatCanBeRead) {
    cWaveFile file;
    ASSERT_TRUE(file.OpenWrite(FileHolding("")));
    ASSERT_TRUE(file.Reset());
    EXPECT_EQ(ReadBytes(file, 8), "data" + Little32(0));
    char more = 0;
    EXPECT_FALSE(file.ReadRaw(&more, 1));
    EXPECT_STREQ(file.error, "Couldn't read samples");
}

TEST(WaveFileWriting, ReadsNothingFromAStreamThatIsOnlyWritten) {
    const TestFolder folder;
    cWaveFile file;
    char byte = 0;
    ASSERT_TRUE(file.OpenWrite(folder / "a.wav"));
    ASSERT_TRUE(file.Reset());
    EXPECT_FALSE(file.ReadRaw(&byte, 1));
    EXPECT_STREQ(file.error, "Couldn't read samples");
}

TEST(WaveFileWriting, CountsModulo32Bits) {
    cWaveFile file;
    ASSERT_TRUE(file.OpenWrite(FileHolding("")));
    file.dataLength = 0xFFFFFFFF;
    ASSERT_TRUE(file.WriteRaw("12", 2));
    EXPECT_EQ(file.dataLength, 1U);
    file.dataLength = 0xFFFFFFFF;
    ASSERT_TRUE(file.WriteHeader(file.out.get()));
    EXPECT_EQ(ContentOf(file.out.get()).substr(4, 4), Little32(35));
}

TEST(WaveFileWriting, SaysThatAFileCannotBeCreated) {
    const TestFolder folder;
    cWaveFile file;
    EXPECT_FALSE(file.OpenWrite(folder / "missing/a.wav"));
    EXPECT_STREQ(file.error, "Couldn't open output file");
    EXPECT_EQ(file.out, nullptr);
    file.error = nullptr;
    EXPECT_FALSE(file.OpenWrite(static_cast<std::FILE*>(nullptr)));
    EXPECT_STREQ(file.error, "Couldn't open output file");
}

TEST(WaveFileWriting, SaysThatTheHeaderCannotBeWritten) {
    cWaveFile file;
    EXPECT_FALSE(file.OpenWrite("/dev/full"));
    EXPECT_STREQ(file.error, "Error writing header");
    EXPECT_NE(file.out, nullptr);
    EXPECT_TRUE(file.headerDirty);
    EXPECT_FALSE(file.Close());
    EXPECT_EQ(file.out, nullptr);

    const tStdioStream readOnly(std::fopen("/dev/null", "rb"));
    file.error = nullptr;
    EXPECT_FALSE(file.WriteHeader(readOnly.get()));
    EXPECT_STREQ(file.error, "Error writing header");
}

TEST(WaveFileWriting, AStreamThatCannotBeMovedIsRefusedInSilence) {
    OpenPipe pipe;
    cWaveFile file;
    EXPECT_FALSE(file.WriteHeader(nullptr));
    EXPECT_FALSE(file.OpenWrite(pipe.Stream()));
    EXPECT_FALSE(file.Reset());
    EXPECT_FALSE(file.Close());
    EXPECT_EQ(file.error, nullptr);
}

TEST(WaveFileWriting, SaysThatSamplesCannotBeWritten) {
    cWaveFile file;
    file.OpenWrite(FullDisk());
    file.headerDirty = false;
    const std::string samples(1 << 20, 'x');
    EXPECT_FALSE(file.WriteRaw(samples.data(), samples.size()));
    EXPECT_STREQ(file.error, "Couldn't write samples");
    EXPECT_EQ(file.dataLength, 0U);
    EXPECT_FALSE(file.headerDirty);
}

TEST(WaveFileWriting, SamplesThatWaitInTheBufferFailAtTheEnd) {
    for (const bool isDirty : {false, true}) {
        const TestFolder folder;
        cWaveFile file;
        ASSERT_TRUE(file.OpenWrite(folder / "a.wav"));
        // From here on the disk is full.
        const tStdioStream full(FullDisk());
        ASSERT_NE(::dup2(::fileno(full.get()), ::fileno(file.out.get())), -1);
        ASSERT_TRUE(file.WriteRaw("1234", 4));
        file.headerDirty = isDirty;
        EXPECT_FALSE(file.Close());
        EXPECT_STREQ(file.error, isDirty ? "Error writing header" : "Couldn't write samples");
    }
}

TEST(WaveFile, MovesNothingWhenClosed) {
    cWaveFile file;
    char byte = 0;
    EXPECT_FALSE(file.ReadRaw(&byte, 1));
    EXPECT_STREQ(file.error, "Couldn't read samples");
    EXPECT_FALSE(file.WriteRaw(&byte, 1));
    EXPECT_STREQ(file.error, "Couldn't write samples");
    EXPECT_EQ(file.dataLength, 0U);
}

TEST(WaveFile, AReaderIsNotWritten) {
    cWaveFile file;
    ASSERT_TRUE(file.OpenRead(FileHolding(WaveBytes({}, "samples!"))));
    EXPECT_FALSE(file.WriteRaw("x", 1));
    EXPECT_STREQ(file.error, "Couldn't write samples");
    EXPECT_EQ(file.dataLength, 8U);
    std::string bytes(9, '\0');
    EXPECT_FALSE(file.ReadRaw(bytes.data(), bytes.size()));
    EXPECT_STREQ(file.error, "Couldn't read samples");
}

} // namespace
