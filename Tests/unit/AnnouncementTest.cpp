#include "Announcement.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace {

using Texts = std::vector<std::string>;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Parsed {
    Texts announcements;
    bool wellFormed = false;
};

Parsed Parse(const std::string& text) {
    Parsed parsed;
    parsed.wellFormed = ParseAnnouncements(text, [&](const Announcement& next) {
        parsed.announcements.push_back(next.name + '|' + next.optionName + '|' + std::to_string(next.port));
    });
    return parsed;
}

TEST(Announcement, IsWrittenWithOneSeparatorAfterEachField) {
    EXPECT_EQ(FormatAnnouncement({"mac", "StreamPlayer", 10241}), "mac:StreamPlayer:10241;");
}

TEST(Announcement, WhatIsWrittenCanBeRead) {
    const Parsed parsed = Parse(FormatAnnouncement({"My phone", "FileServer", -7}));
    EXPECT_THAT(parsed.announcements, ElementsAre("My phone|FileServer|-7"));
    EXPECT_TRUE(parsed.wellFormed);
}

struct Case {
    const char* name;
    std::string text;
    Texts announcements;
};

void PrintTo(const Case& zCase, std::ostream* stream) {
    *stream << zCase.name;
}

class WellFormed : public ::testing::TestWithParam<Case> {};

TEST_P(WellFormed, IsReadToTheEnd) {
    const Parsed parsed = Parse(GetParam().text);
    EXPECT_EQ(parsed.announcements, GetParam().announcements);
    EXPECT_TRUE(parsed.wellFormed);
}

const std::vector<Case> kWellFormed = {
    {"Nothing", "", {}},
    {"OnlyWhiteSpace", " \t\r\n", {}},
    {"One", "Phone:FileServer:10240;", {"Phone|FileServer|10240"}},
    {"Two", "a:StreamPlayer:1;b:FileServer:2;", {"a|StreamPlayer|1", "b|FileServer|2"}},
    {"SeparatorsAreInterchangeable", "a;b:1:c;d;2:", {"a|b|1", "c|d|2"}},
    {"RunsOfSeparatorsCountAsOne", "a::;b;;;1:;:c:d:2;", {"a|b|1", "c|d|2"}},
    {"LastFieldWithoutSeparator", "a:b:1", {"a|b|1"}},
    {"LineEndAfterTheLastField", "a:b:1;\r\n", {"a|b|1"}},
    {"WhiteSpaceBeforeFields", " a:\tb:\n 1; c: d: 2;", {"a|b|1", "c|d|2"}},
    {"WhiteSpaceInsideFieldsIsKept", "a b :c\nd:1;", {"a b |c\nd|1"}},
    {"WhiteSpaceAfterTheNumber", "a:b:1 ;c:d:2 ", {"a|b|1", "c|d|2"}},
    {"SignedNumbers", "a:b:-5;c:d:+6;", {"a|b|-5", "c|d|6"}},
    {"NamesInUtf8", "Jürgens Gerät:FileServer:1;", {"Jürgens Gerät|FileServer|1"}},
    {"OneField", "1", {}},
    {"TwoFields", "1:2", {}},
    {"TwoFieldsWithSeparator", "1:2;", {}},
    {"ThirdFieldNoNumberAtTheEnd", "a:b:c", {}},
    {"IncompleteAfterComplete", "a:b:1;c:d", {"a|b|1"}},
    // The number ends where its digits end; what follows begins a new announcement.
    {"TextAfterTheNumber", "a:b:12x", {"a|b|12"}},
};

INSTANTIATE_TEST_SUITE_P(Announcement, WellFormed, ::testing::ValuesIn(kWellFormed),
                         [](const auto& info) { return std::string(info.param.name); });

class Malformed : public ::testing::TestWithParam<Case> {};

TEST_P(Malformed, EndsWhereNothingCanBeTold) {
    const Parsed parsed = Parse(GetParam().text);
    EXPECT_EQ(parsed.announcements, GetParam().announcements);
    EXPECT_FALSE(parsed.wellFormed);
}

const std::vector<Case> kMalformed = {
    {"SeparatorFirst", ":a:b:1;", {}},
    {"OtherSeparatorFirst", ";a:b:1;", {}},
    {"OnlySeparators", ":;:;", {}},
    {"WhiteSpaceThenSeparator", "  ;a:b:1;", {}},
    {"NoNumber", "a:b:c;d:e:1;", {}},
    {"SignWithoutNumber", "a:b:-;", {}},
    {"WhiteSpaceInPlaceOfTheSecondField", "a: :1;", {}},
    {"AfterAnnouncementsThatCount", "a:b:1;c:d:e;f:g:2;", {"a|b|1"}},
};

INSTANTIATE_TEST_SUITE_P(Announcement, Malformed, ::testing::ValuesIn(kMalformed),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(Announcement, ZeroBytesAreTextLikeAnyOther) {
    const std::string zero(1, '\0');
    EXPECT_THAT(Parse("a" + zero + "b:c:1;").announcements, ElementsAre("a" + zero + "b|c|1"));
    EXPECT_THAT(Parse(zero).announcements, IsEmpty());
}

} // namespace
