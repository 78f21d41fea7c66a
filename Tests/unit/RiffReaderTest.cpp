#include "RiffReader.h"

#include "Hermetic.h"
#include "RiffBytes.h"
#include "TestStreams.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <filesystem>

namespace {

const std::string kWave = Form(
    "RIFF", "WAVE", Chunk("fmt ", "0123456789abcdef") + Chunk("odd ", "xyz") + Chunk("data", "samples!"));

long Place(const cRiffReader& reader) {
    return std::ftell(reader.file.get());
}

std::string ReadBytes(cRiffReader& reader, std::size_t count) {
    std::string bytes(count, '\0');
    bytes.resize(std::fread(bytes.data(), 1, count, reader.file.get()));
    return bytes;
}

TEST(RiffReader, OpensAFileInItsOuterChunk) {
    const TestFolder folder;
    const cRiffReader reader(folder.Write("a.wav", kWave));
    ASSERT_NE(reader.file, nullptr);
    ASSERT_EQ(reader.stack.size(), 1U);
    const cRiffChunk& chunk = reader.stack[0];
    EXPECT_STREQ(chunk.id, "RIFF");
    EXPECT_STREQ(chunk.type, "WAVE");
    EXPECT_EQ(chunk.size, kWave.size() - 12);
    EXPECT_EQ(chunk.start, 12U);
    EXPECT_EQ(chunk.end, kWave.size());
    EXPECT_EQ(reader.riffSize, chunk.size);
    EXPECT_EQ(Place(reader), 12);
}

TEST(RiffReader, RefusesWhatDoesNotBeginWithRiff) {
    for (const std::string& content :
         {std::string(), std::string("RIF"), std::string("RIFF\x04\0\0", 7), ChunkOfSize("RIFF", 4),
          ChunkOfSize("RIFF", 4, "WAV"), Form("RIFX", "WAVE", ""), Form("LIST", "INFO", ""),
          Form("FORM", "AIFF", ""), " " + kWave}) {
        const cRiffReader reader(FileHolding(content));
        EXPECT_EQ(reader.file, nullptr) << content;
        EXPECT_TRUE(reader.stack.empty()) << content;
    }
}

TEST(RiffReader, RefusesWhatCannotBeOpenedOrMoved) {
    const TestFolder folder;
    EXPECT_EQ(cRiffReader(folder / "missing").file, nullptr);
    EXPECT_EQ(cRiffReader(folder.Path().string()).file, nullptr);
    EXPECT_EQ(cRiffReader(static_cast<std::FILE*>(nullptr)).file, nullptr);
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    ASSERT_EQ(::write(ends[1], kWave.data(), kWave.size()), static_cast<ssize_t>(kWave.size()));
    ::close(ends[1]);
    EXPECT_EQ(cRiffReader(::fdopen(ends[0], "rb")).file, nullptr);
}

TEST(RiffReader, ClosesTheStreamThatItTookOver) {
    for (const std::string& content : {kWave, std::string("no RIFF file")}) {
        std::FILE* const stream = FileHolding(content);
        const int descriptor = ::fileno(stream);
        { const cRiffReader reader(stream); }
        EXPECT_EQ(::fcntl(descriptor, F_GETFD), -1) << content;
    }
}

TEST(RiffReader, ThatIsOfNoUseRefusesEverything) {
    cRiffReader reader(FileHolding(""));
    std::string description;
    std::string value;
    EXPECT_FALSE(reader.Rewind());
    EXPECT_FALSE(reader.Descend("data"));
    EXPECT_FALSE(reader.Descend(nullptr));
    EXPECT_FALSE(reader.Ascend());
    EXPECT_FALSE(reader.NextInfo(description, value));
    EXPECT_EQ(reader.CurrentId(), nullptr);
    EXPECT_EQ(reader.CurrentType(), nullptr);
    EXPECT_EQ(reader.CurrentSize(), 0U);
}

TEST(RiffReader, DescribesTheInnermostChunk) {
    cRiffReader reader(FileHolding(kWave));
    EXPECT_STREQ(reader.CurrentId(), "RIFF");
    EXPECT_STREQ(reader.CurrentType(), "WAVE");
    EXPECT_EQ(reader.CurrentSize(), kWave.size() - 12);
    ASSERT_TRUE(reader.Descend("odd "));
    EXPECT_STREQ(reader.CurrentId(), "odd ");
    EXPECT_EQ(reader.CurrentType(), nullptr);
    EXPECT_EQ(reader.CurrentSize(), 3U);
}

TEST(RiffReader, AFormTypeOfZerosIsNone) {
    EXPECT_EQ(cRiffReader(FileHolding(Form("RIFF", std::string(4, '\0'), ""))).CurrentType(), nullptr);
}

TEST(RiffReader, FindsAChildWhereverTheStreamStands) {
    cRiffReader reader(FileHolding(kWave));
    for (const auto& [name, data] :
         {std::pair{"data", "samples!"}, {"fmt ", "0123456789abcdef"}, {"odd ", "xyz"}}) {
        ASSERT_TRUE(reader.Descend(name));
        EXPECT_EQ(reader.stack.size(), 2U);
        EXPECT_EQ(static_cast<std::uint32_t>(Place(reader)), reader.stack.back().start);
        EXPECT_EQ(ReadBytes(reader, reader.CurrentSize()), data);
        EXPECT_TRUE(reader.Ascend());
    }
}

TEST(RiffReader, TakesTheFirstChildOfAName) {
    cRiffReader reader(FileHolding(Form("RIFF", "WAVE", Chunk("data", "1st.") + Chunk("data", "2nd."))));
    ASSERT_TRUE(reader.Descend("data"));
    EXPECT_EQ(ReadBytes(reader, 4), "1st.");
    reader.Ascend();
    ASSERT_TRUE(reader.Descend("data"));
    EXPECT_EQ(ReadBytes(reader, 4), "1st.");
}

TEST(RiffReader, WithoutANameTakesTheNextChild) {
    cRiffReader reader(FileHolding(kWave));
    for (const char* id : {"fmt ", "odd ", "data"}) {
        ASSERT_TRUE(reader.Descend(nullptr));
        EXPECT_STREQ(reader.CurrentId(), id);
        EXPECT_TRUE(reader.Ascend());
    }
    EXPECT_FALSE(reader.Descend(nullptr));
    EXPECT_EQ(Place(reader), 12);
}

TEST(RiffReader, AChildThatIsMissingLeavesTheStreamAtTheStartOfItsParent) {
    cRiffReader reader(FileHolding(kWave));
    std::fseek(reader.file.get(), 40, SEEK_SET);
    EXPECT_FALSE(reader.Descend("DISP"));
    EXPECT_EQ(Place(reader), 12);
    EXPECT_EQ(reader.stack.size(), 1U);
}

TEST(RiffReader, AStreamAtItsEndHasNoNextChild) {
    cRiffReader reader(FileHolding(ChunkOfSize("RIFF", 1000, "WAVE" + Chunk("fmt ", "data"))));
    EXPECT_EQ(ReadBytes(reader, 100).size(), 12U);
    EXPECT_FALSE(reader.Descend(nullptr));
    EXPECT_EQ(Place(reader), 12);
    EXPECT_TRUE(reader.Descend(nullptr));
}

TEST(RiffReader, LooksOnlyInsideTheInnermostChunk) {
    cRiffReader reader(FileHolding(
        Form("RIFF", "WAVE",
             Form("LIST", "adtl", Chunk("note", "in")) + Chunk("data", "out!") + Chunk("note", "no"))));
    ASSERT_TRUE(reader.Descend("LIST"));
    EXPECT_STREQ(reader.CurrentType(), "adtl");
    EXPECT_EQ(reader.CurrentSize(), 10U);
    EXPECT_FALSE(reader.Descend("data"));
    ASSERT_TRUE(reader.Descend("note"));
    EXPECT_EQ(reader.stack.size(), 3U);
    EXPECT_EQ(ReadBytes(reader, 2), "in");
    EXPECT_TRUE(reader.Ascend());
    EXPECT_TRUE(reader.Ascend());
    EXPECT_EQ(ReadBytes(reader, 4), "data");
}

TEST(RiffReader, NeverLeavesTheOuterChunk) {
    cRiffReader reader(FileHolding(kWave));
    std::fseek(reader.file.get(), 20, SEEK_SET);
    EXPECT_FALSE(reader.Ascend());
    EXPECT_EQ(reader.stack.size(), 1U);
    EXPECT_EQ(Place(reader), 20);
}

TEST(RiffReader, RewindsToTheOuterChunk) {
    cRiffReader reader(FileHolding(kWave));
    ASSERT_TRUE(reader.Descend("data"));
    reader.riffSize = 0;
    EXPECT_TRUE(reader.Rewind());
    EXPECT_EQ(reader.stack.size(), 1U);
    EXPECT_EQ(reader.riffSize, kWave.size() - 12);
    EXPECT_EQ(Place(reader), 12);
}

TEST(RiffReader, AHeaderThatIsCutIsNoChunk) {
    const std::string whole = ChunkOfSize("RIFF", 1000, "WAVE" + ChunkOfSize("LIST", 4, "INFO"));
    for (std::size_t size = 12; size < whole.size(); ++size) {
        for (const char* name : {static_cast<const char*>(nullptr), "LIST"}) {
            cRiffReader reader(FileHolding(whole.substr(0, size)));
            EXPECT_FALSE(reader.Descend(name)) << size;
            EXPECT_EQ(reader.stack.size(), 1U) << size;
            EXPECT_EQ(Place(reader), 12) << size;
        }
    }
    EXPECT_TRUE(cRiffReader(FileHolding(whole)).Descend("LIST"));
}

struct SizeCase {
    const char* id;
    std::uint32_t stored;
    std::uint32_t size;
    std::uint32_t start;
    std::uint32_t end;
};

// The chunk stands at offset 12. The end is past the pad byte, not past 32 bits, and past the id and size
// also of a list too small for its form type.
TEST(RiffReader, ReckonsWithAnySize) {
    constexpr std::uint32_t kMax = 0xFFFFFFFF;
    for (const SizeCase& given : std::initializer_list<SizeCase>{
             {"data", 0, 0, 20, 20},
             {"data", 1, 1, 20, 22},
             {"data", 2, 2, 20, 22},
             {"data", 0x7FFFFFFF, 0x7FFFFFFF, 20, 0x80000014},
             {"data", kMax - 22, kMax - 22, 20, kMax - 1},
             {"data", kMax - 21, kMax - 21, 20, kMax - 1},
             {"data", kMax - 20, kMax - 20, 20, kMax},
             {"data", kMax - 19, kMax - 19, 20, kMax},
             {"data", kMax, kMax, 20, kMax},
             {"LIST", 0, 0, 24, 20},
             {"LIST", 1, 0, 24, 22},
             {"LIST", 3, 0, 24, 24},
             {"LIST", 4, 0, 24, 24},
             {"LIST", 5, 1, 24, 26},
             {"RIFF", 6, 2, 24, 26},
             {"LIST", kMax, kMax - 4, 24, kMax},
         }) {
        cRiffReader reader(
            FileHolding(ChunkOfSize("RIFF", 100, "WAVE" + ChunkOfSize(given.id, given.stored, "type"))));
        ASSERT_TRUE(reader.Descend(nullptr));
        const cRiffChunk& chunk = reader.stack.back();
        EXPECT_EQ(chunk.size, given.size) << given.id << given.stored;
        EXPECT_EQ(chunk.start, given.start) << given.id << given.stored;
        EXPECT_EQ(chunk.end, given.end) << given.id << given.stored;
    }
}

TEST(RiffReader, AnOuterChunkTooSmallForItsFormTypeIsEmpty) {
    cRiffReader reader(FileHolding(ChunkOfSize("RIFF", 0, "WAVE" + Chunk("data", "x"))));
    ASSERT_NE(reader.file, nullptr);
    EXPECT_EQ(reader.riffSize, 0U);
    EXPECT_FALSE(reader.Descend("data"));
    EXPECT_FALSE(reader.Descend(nullptr));
}

TEST(RiffReader, AChunkThatWouldEndBeyond32BitsEndsTheWalk) {
    for (const std::string& first : {ChunkOfSize("LIST", 0xFFFFFFF4, "hole"), ChunkOfSize("hole", 0xFFFFFFEC),
                                     ChunkOfSize("hole", 0xFFFFFFF8)}) {
        cRiffReader reader(FileHolding(ChunkOfSize("RIFF", 0xFFFFFFFF, "WAVE" + first + Chunk("data", "x"))));
        EXPECT_FALSE(reader.Descend("data"));
        EXPECT_EQ(Place(reader), 12);
        ASSERT_TRUE(reader.Descend(nullptr));
        EXPECT_TRUE(reader.Ascend());
        EXPECT_FALSE(reader.Descend(nullptr));
    }
}

TEST(RiffReader, AStreamThatCannotBeMovedBehindAChunkEndsTheWalk) {
    const std::string bytes = ChunkOfSize("RIFF", 1000, "WAVE" + ChunkOfSize("hole", 900, "x"));
    cRiffReader reader(MemoryHolding(bytes));
    EXPECT_FALSE(reader.Descend("data"));
    EXPECT_EQ(Place(reader), 20);
    ASSERT_TRUE(reader.Descend("hole"));
    EXPECT_FALSE(reader.Ascend());
    EXPECT_EQ(reader.stack.size(), 1U);
}

TEST(RiffReader, HoldsAnyDepthThatAFileHas) {
    constexpr std::size_t kDepth = 20000;
    std::string bytes = ChunkOfSize("RIFF", 0xFFFFFFF0, "WAVE");
    for (std::size_t i = 0; i < kDepth; ++i) {
        bytes += ChunkOfSize("LIST", 0xFFFFFFFF, "INFO");
    }
    cRiffReader reader(FileHolding(bytes));
    while (reader.Descend(nullptr)) {
    }
    EXPECT_EQ(reader.stack.size(), kDepth + 1);
    while (reader.Ascend()) {
    }
    EXPECT_EQ(reader.stack.size(), 1U);
}

class LargeRiffFile : public ::testing::Test {
protected:
    /// A file of this size with these bytes at its start and end, and a hole between them.
    std::string Make(std::uintmax_t size, const std::string& start, const std::string& end) {
        const std::string path = mFolder.Write("large.wav", start);
        std::filesystem::resize_file(path, size - end.size());
        std::FILE* const stream = std::fopen(path.c_str(), "ab");
        EXPECT_EQ(std::fwrite(end.data(), 1, end.size(), stream), end.size());
        EXPECT_EQ(std::fclose(stream), 0);
        return path;
    }

    TestFolder mFolder;
};

TEST_F(LargeRiffFile, IsWalkedBeyondTwoGibibytes) {
    const std::string data = Chunk("data", "far off!");
    const std::uint32_t size = 0xC0000000;
    cRiffReader reader(Make(
        size,
        ChunkOfSize("RIFF", size - 8, "WAVE" + ChunkOfSize("hole", size - 20 - std::uint32_t(data.size()))),
        data));
    ASSERT_TRUE(reader.Descend("data"));
    EXPECT_EQ(reader.stack.back().start, size - 8);
    EXPECT_EQ(ReadBytes(reader, 9), "far off!");
}

TEST_F(LargeRiffFile, EndsWhere32BitsEnd) {
    constexpr std::uint32_t kHole = 0xFFFFFFFE - 8 - 20;
    const std::string start = ChunkOfSize("RIFF", 0xFFFFFFFF, "WAVE" + ChunkOfSize("hole", kHole));
    // One chunk ends before the border; the header of the next is across it.
    cRiffReader reader(
        Make(0x100000100, start, ChunkOfSize("fine", 0) + ChunkOfSize("over", 0) + std::string(0xFA, '\0')));
    EXPECT_TRUE(reader.Descend("fine"));
    EXPECT_EQ(reader.stack.back().end, 0xFFFFFFFE);
    EXPECT_TRUE(reader.Ascend());
    EXPECT_FALSE(reader.Descend(nullptr));
    EXPECT_FALSE(reader.Descend("over"));
    EXPECT_EQ(Place(reader), 12);
}

} // namespace
