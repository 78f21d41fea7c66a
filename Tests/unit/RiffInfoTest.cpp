#include "InfoTags.h"
#include "RiffReader.h"

#include "RiffBytes.h"
#include "TestStreams.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace {

using Texts = std::vector<std::pair<std::string, std::string>>;

const std::string kZero(1, '\0');

/// All texts of a file, up to a limit that no walk in these tests comes near.
Texts ReadAll(cRiffReader& reader) {
    Texts texts;
    std::string description;
    std::string value;
    while (texts.size() < 1000 && reader.NextInfo(description, value)) {
        texts.emplace_back(description, value);
    }
    return texts;
}

Texts TextsOf(const std::string& bytes) {
    cRiffReader reader(FileHolding(bytes));
    return ReadAll(reader);
}

std::string Item(const std::string& id, const std::string& text) {
    return Chunk(id, text + kZero);
}

std::string InfoList(const std::string& items) {
    return Form("LIST", "INFO", items);
}

std::string Wave(const std::string& chunks) {
    return Form("RIFF", "WAVE", chunks);
}

std::string Display(const std::string& text) {
    return Chunk("DISP", Little32(1) + text + kZero);
}

TEST(InfoTags, HaveEnglishNames) {
    const Texts tags = {
        {"DISP", "Display name"},  {"IARL", "Archival location"}, {"IART", "Artist"},
        {"ICMS", "Commissioned"},  {"ICMT", "Comments"},          {"ICOP", "Copyright"},
        {"ICRD", "Creation date"}, {"ICRP", "Cropped"},           {"IDIM", "Dimensions"},
        {"IDPI", "Dots Per Inch"}, {"IENG", "Engineer"},          {"IGNR", "Genre"},
        {"IKEY", "Keywords"},      {"ILGT", "Lightness"},         {"IMED", "Medium"},
        {"INAM", "Name"},          {"IPLT", "Palette Setting"},   {"IPRD", "Product"},
        {"ISBJ", "Subject"},       {"ISFT", "Software"},          {"ISHP", "Sharpness"},
        {"ISRC", "Source"},        {"ISRF", "Source Form"},       {"ITCH", "Technician"},
    };
    for (const auto& [tag, description] : tags) {
        EXPECT_STREQ(GetInfoDescription(tag), description.c_str()) << tag;
        const std::string item = tag == "DISP" ? Display("A text") : Item(tag, "A text");
        EXPECT_EQ(TextsOf(Wave(InfoList(item))), (Texts{{description, "A text"}})) << tag;
    }
    for (const char* tag : {"", "INA", "INAMe", "inam", "IXXX", "LIST"}) {
        EXPECT_EQ(GetInfoDescription(tag), nullptr) << tag;
    }
}

TEST(RiffInfo, NoListNoText) {
    EXPECT_EQ(TextsOf(WaveBytes({}, "samples!")), Texts());
    EXPECT_EQ(TextsOf(Wave("")), Texts());
    EXPECT_EQ(TextsOf(Wave(InfoList(""))), Texts());
}

TEST(RiffInfo, VisitsEveryListAndEveryDisplayName) {
    const std::string bytes =
        WaveBytes({}, "odd", InfoList(Item("INAM", "Rain") + Item("IART", "Anna")) + Display("Rain by Anna"),
                  InfoList(Item("ICMT", "")) + InfoList("") + Display(""));
    EXPECT_EQ(TextsOf(bytes), (Texts{{"Name", "Rain"},
                                     {"Artist", "Anna"},
                                     {"Display name", "Rain by Anna"},
                                     {"Comments", ""},
                                     {"Display name", ""}}));
}

TEST(RiffInfo, SkipsItemsThatItDoesNotKnow) {
    const std::string inner = InfoList(Item("INAM", "inner"));
    EXPECT_EQ(TextsOf(Wave(InfoList(Item("IXXX", "odd") + inner + Item("INAM", "Rain") + Item("JUNK", "")))),
              (Texts{{"Name", "Rain"}}));
}

TEST(RiffInfo, SkipsListsOfAnotherType) {
    EXPECT_EQ(TextsOf(Wave(Form("LIST", "adtl", Item("INAM", "no")) + Item("INAM", "no"))), Texts());
}

TEST(RiffInfo, KeepsBothTextsWhenThereIsNoMore) {
    cRiffReader reader(FileHolding(Wave(InfoList(Item("IXXX", "unknown")))));
    std::string description = "old";
    std::string value = "older";
    EXPECT_FALSE(reader.NextInfo(description, value));
    EXPECT_EQ(description, "old");
    EXPECT_EQ(value, "older");
}

TEST(RiffInfo, BeginsAnewAfterTheLast) {
    cRiffReader reader(FileHolding(Wave(InfoList(Item("INAM", "Rain")))));
    EXPECT_EQ(ReadAll(reader).size(), 1U);
    EXPECT_EQ(ReadAll(reader).size(), 1U);
}

TEST(RiffInfo, GoesOnBehindTheChunkThatWasEntered) {
    cRiffReader reader(FileHolding(WaveBytes({}, std::string(64, '\0'), "", InfoList(Item("INAM", "Rain")))));
    ASSERT_TRUE(reader.Descend("data"));
    EXPECT_EQ(ReadAll(reader), (Texts{{"Name", "Rain"}}));
}

TEST(RiffInfo, ReadsTheDisplayNameThatWasEntered) {
    cRiffReader reader(FileHolding(Wave(Chunk("DISP", ""))));
    ASSERT_TRUE(reader.Descend("DISP"));
    EXPECT_EQ(ReadAll(reader), (Texts{{"Display name", ""}}));
}

// A text is ended by its zero byte alone; the walk goes on behind the item all the same.
TEST(RiffInfo, ATextRunsOnToItsZeroByte) {
    const Texts expected = {{"Name", "RainIART\x02"}, {"Artist", "A"}};
    EXPECT_EQ(TextsOf(Wave(InfoList(Chunk("INAM", "Rain") + Item("IART", "A")))), expected);
    EXPECT_EQ(TextsOf(Wave(InfoList(Chunk("INAM", "Rain" + kZero + "hidden")))), (Texts{{"Name", "Rain"}}));
}

TEST(RiffInfo, ATextEndsWithTheFile) {
    EXPECT_EQ(TextsOf(Wave(InfoList(Chunk("INAM", "Rain")))), (Texts{{"Name", "Rain"}}));
    EXPECT_EQ(TextsOf(ChunkOfSize(
                  "RIFF", 900, "WAVE" + ChunkOfSize("LIST", 800, "INFO" + ChunkOfSize("INAM", 700, "Rain")))),
              (Texts{{"Name", "Rain"}}));
    EXPECT_EQ(TextsOf(Wave(ChunkOfSize("DISP", 2, "ab"))), (Texts{{"Display name", ""}}));
}

// What the files below hold is nonsense; that each walk over them ends is the test.
TEST(RiffInfo, EndsOnHostileFiles) {
    std::string empty;
    std::string endless;
    for (int i = 0; i < 20000; ++i) {
        empty += ChunkOfSize("LIST", 0) + ChunkOfSize("\0\0\0\0", 0);
        endless += ChunkOfSize("LIST", 0xFFFFFFFF, "INFO");
    }
    EXPECT_EQ(TextsOf(ChunkOfSize("RIFF", 0xFFFFFFFF, "WAVE" + empty)), Texts());
    EXPECT_EQ(TextsOf(ChunkOfSize("RIFF", 0xFFFFFFFF, "WAVE" + endless)), Texts());
    EXPECT_EQ(TextsOf(ChunkOfSize("RIFF", 0xFFFFFFFF, "WAVE" + InfoList(endless))), Texts());
}

// A list without room for its form type gives way to what follows its size, the bytes of the type included.
TEST(RiffInfo, AListTooSmallForItsTypeIsPassedOver) {
    for (std::uint32_t size = 0; size < 4; ++size) {
        const std::string bytes =
            Wave(ChunkOfSize("LIST", size, std::string((size + 1) / 2 * 2, ' ')) + Display("Rain"));
        EXPECT_EQ(TextsOf(bytes), (Texts{{"Display name", "Rain"}})) << size;
    }
}

TEST(RiffInfo, EndsWhereTheStreamCannotBeMoved) {
    const std::string bytes = ChunkOfSize(
        "RIFF", 900,
        "WAVE" + ChunkOfSize("LIST", 800, "INFO" + Item("INAM", "Rain") + ChunkOfSize("IXXX", 700)));
    cRiffReader reader(MemoryHolding(bytes));
    EXPECT_EQ(ReadAll(reader), (Texts{{"Name", "Rain"}}));
}

} // namespace
