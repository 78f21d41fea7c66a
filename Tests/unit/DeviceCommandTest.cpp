#include "CommandParser.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <vector>

namespace {

using Kind = ParseResult::Kind;

struct CommandCase {
    std::string text;
    Verb verb;
    std::string path;
    std::string newPath;
    std::uint64_t length;
};

void PrintTo(const CommandCase& command, std::ostream* stream) {
    *stream << command.text.size() << " bytes";
}

class EveryCommand : public ::testing::TestWithParam<CommandCase> {};

TEST_P(EveryCommand, IsReadWhole) {
    const CommandCase& expected = GetParam();
    const ParseResult result = ParseCommand(expected.text);
    ASSERT_EQ(result.kind, Kind::Parsed);
    EXPECT_EQ(result.consumed, expected.text.size());
    EXPECT_EQ(result.command.verb, expected.verb);
    EXPECT_EQ(result.command.path, expected.path);
    EXPECT_EQ(result.command.newPath, expected.newPath);
    EXPECT_EQ(result.command.length, expected.length);
    EXPECT_EQ(result.command.text, expected.text);
}

TEST_P(EveryCommand, WaitsForItsEnd) {
    const std::string& text = GetParam().text;
    for (std::size_t length = 5; length < text.size(); ++length) {
        const ParseResult result = ParseCommand(text.substr(0, length));
        ASSERT_EQ(result.kind, Kind::NeedMore) << text.substr(0, length);
        ASSERT_EQ(result.consumed, 0U);
    }
}

TEST_P(EveryCommand, LeavesWhatFollows) {
    const std::string& text = GetParam().text;
    EXPECT_EQ(ParseCommand(text + "<cmd dir>").consumed, text.size());
    EXPECT_EQ(ParseCommand(text + text).consumed, text.size());
    EXPECT_EQ(ParseCommand(text + std::string(3, '\0')).consumed, text.size());
}

INSTANTIATE_TEST_SUITE_P(
    Verbs, EveryCommand,
    ::testing::Values(
        CommandCase{"<cmd dir>Path = \"User/\"</cmd>", Verb::Dir, "User/", "", 0},
        CommandCase{"<cmd dir_recurse>Path = \"User/Music\"</cmd>", Verb::DirRecurse, "User/Music", "", 0},
        CommandCase{"<cmd md>Path = \"User/New\"</cmd>", Verb::MakeDir, "User/New", "", 0},
        CommandCase{"<cmd del>Path = \"User/a.wav\"</cmd>", Verb::Delete, "User/a.wav", "", 0},
        CommandCase{"<cmd rename>From = \"User/a\" To = \"User/b\"</cmd>", Verb::Rename, "User/a", "User/b",
                    0},
        CommandCase{"<cmd download>Name = \"User/a.wav\"</cmd>", Verb::Download, "User/a.wav", "", 0},
        CommandCase{"<cmd upload>Name = \"User/a.wav\" Length = \"44\"</cmd>", Verb::Upload, "User/a.wav", "",
                    44},
        CommandCase{"<cmd dir>Path = \"\"</cmd>", Verb::Dir, "", "", 0}));

INSTANTIATE_TEST_SUITE_P(
    NamesWithSpecialCharacters, EveryCommand,
    ::testing::Values(
        CommandCase{"<cmd dir>Path = \"User/say \"hi\"\"</cmd>", Verb::Dir, "User/say \"hi\"", "", 0},
        CommandCase{"<cmd md>Path = \"User/a > b < c = d\"</cmd>", Verb::MakeDir, "User/a > b < c = d", "",
                    0},
        CommandCase{"<cmd del>Path = \"User/<cmd md>\"</cmd>", Verb::Delete, "User/<cmd md>", "", 0},
        CommandCase{"<cmd download>Name = \"User/Length = \"</cmd>", Verb::Download, "User/Length = ", "", 0},
        CommandCase{"<cmd upload>Name = \"User/\" Length = \"7\" Length = \"44\"</cmd>", Verb::Upload,
                    "User/\" Length = \"7", "", 44},
        CommandCase{"<cmd dir>Path = \"User/\r\n\t\"</cmd>", Verb::Dir, "User/\r\n\t", "", 0},
        CommandCase{"<cmd dir>Path = \"User/\xff\xc3\xa9\"</cmd>", Verb::Dir, "User/\xff\xc3\xa9", "", 0}));

class LengthText : public ::testing::TestWithParam<std::pair<std::string, std::uint64_t>> {};

TEST_P(LengthText, IsANumberAndNothingElse) {
    const auto& [text, length] = GetParam();
    const ParseResult result =
        ParseCommand(R"(<cmd upload>Name = "User/a" Length = ")" + text + R"("</cmd>)");
    ASSERT_EQ(result.kind, Kind::Parsed);
    EXPECT_EQ(result.command.length, length);
}

INSTANTIATE_TEST_SUITE_P(Texts, LengthText,
                         ::testing::Values(std::pair{"0", 0U}, std::pair{"1", 1U},
                                           std::pair{"268435455", 268435455U}, std::pair{"-1", 0U},
                                           std::pair{"+1", 0U}, std::pair{"", 0U}, std::pair{" 1", 0U},
                                           std::pair{"1x", 0U}, std::pair{"0x10", 0U},
                                           std::pair{"18446744073709551615", 18446744073709551615U},
                                           std::pair{"18446744073709551616", 0U},
                                           std::pair{"99999999999999999999999", 0U}));

class StrangeCommand : public ::testing::TestWithParam<std::string> {};

TEST_P(StrangeCommand, IsNotUnderstoodAndPassedOver) {
    const ParseResult result = ParseCommand(GetParam() + "<cmd dir>");
    EXPECT_EQ(result.kind, Kind::NotUnderstood);
    EXPECT_EQ(result.consumed, GetParam().size());
    EXPECT_EQ(result.command.text, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Texts, StrangeCommand,
    ::testing::Values("<cmd format>Path = \"User/\"</cmd>", "<cmd >Path = \"User/\"</cmd>", "<cmd </cmd>",
                      "<cmd dir</cmd>", "<cmd dir></cmd>", "<cmd dir>User/</cmd>", "<cmd dir>Path = </cmd>",
                      "<cmd dir>Path = \"</cmd>", "<cmd dir>Path = \"User/</cmd>",
                      "<cmd dir>Name = \"User/\"</cmd>", "<cmd DIR>Path = \"User/\"</cmd>",
                      "<cmd dir >Path = \"User/\"</cmd>", "<cmd download>Path = \"User/a\"</cmd>",
                      "<cmd rename>From = \"User/a\"</cmd>",
                      "<cmd rename>To = \"User/a\" From = \"User/b\"</cmd>"));

TEST(DeviceCommand, UploadWithoutALengthStillAnnouncesABody) {
    for (const char* text : {"<cmd upload>Name = \"User/a\"</cmd>", "<cmd upload></cmd>"}) {
        const ParseResult result = ParseCommand(text);
        EXPECT_EQ(result.kind, Kind::Parsed) << text;
        EXPECT_EQ(result.command.verb, Verb::Upload);
        EXPECT_EQ(result.command.length, 0U);
    }
}

struct ForeignCase {
    std::string bytes;
    std::size_t consumed;
};

void PrintTo(const ForeignCase& c, std::ostream* stream) {
    *stream << c.bytes.size() << " bytes, " << c.consumed << " consumed";
}

class ForeignBytes : public ::testing::TestWithParam<ForeignCase> {};

TEST_P(ForeignBytes, AreSkippedButForTheBeginningOfACommand) {
    const ParseResult result = ParseCommand(GetParam().bytes);
    EXPECT_EQ(result.kind, Kind::NoCommand);
    EXPECT_EQ(result.consumed, GetParam().consumed);
}

INSTANTIATE_TEST_SUITE_P(Texts, ForeignBytes,
                         ::testing::Values(ForeignCase{"\r\n", 2}, ForeignCase{"x<cmd dir>", 1},
                                           ForeignCase{"GET / HTTP/1.1\r\n", 16}, ForeignCase{"abc<", 3},
                                           ForeignCase{"abc<cmd", 3}, ForeignCase{"<cmd\n", 5},
                                           ForeignCase{"<<cmd ", 1}, ForeignCase{"<c<c", 2},
                                           ForeignCase{std::string(4, '\0'), 4},
                                           ForeignCase{std::string(100000, 'x'), 100000}));

TEST(DeviceCommand, NothingYetIsNoReasonToDoAnything) {
    for (const char* text : {"", "<", "<c", "<cm", "<cmd", "<cmd "}) {
        const ParseResult result = ParseCommand(text);
        EXPECT_EQ(result.kind, Kind::NeedMore) << text;
        EXPECT_EQ(result.consumed, 0U);
    }
}

std::string CommandOfLength(std::size_t length) {
    std::string text = "<cmd dir>Path = \"User/";
    const std::string end = "\"</cmd>";
    text.append(length - text.size() - end.size(), 'x');
    return text + end;
}

TEST(DeviceCommand, MayBeAsLongAsTheLimit) {
    const std::string text = CommandOfLength(kMaxCommandLength);
    EXPECT_EQ(ParseCommand(text).kind, Kind::Parsed);
    EXPECT_EQ(ParseCommand(text.substr(0, text.size() - 1)).kind, Kind::NeedMore);
}

TEST(DeviceCommand, OverTheLimitIsRefusedHoweverItArrives) {
    const std::string text = CommandOfLength(kMaxCommandLength + 1);
    EXPECT_EQ(ParseCommand(text).kind, Kind::TooLong);
    EXPECT_EQ(ParseCommand(text.substr(0, kMaxCommandLength)).kind, Kind::TooLong);
    EXPECT_EQ(ParseCommand("<cmd " + std::string(1000000, 'x')).kind, Kind::TooLong);
}

/// What a server does with a stream that comes in pieces of the same size.
std::vector<std::string> ReadStream(const std::string& stream, std::size_t pieceSize) {
    std::vector<std::string> commands;
    std::string pending;
    for (std::size_t at = 0; at < stream.size(); at += pieceSize) {
        pending += stream.substr(at, pieceSize);
        for (ParseResult result = ParseCommand(pending); result.kind != Kind::NeedMore;
             result = ParseCommand(pending)) {
            pending.erase(0, result.consumed);
            if (result.kind != Kind::NoCommand) {
                commands.push_back(result.command.text);
            }
        }
    }
    return commands;
}

TEST(DeviceCommand, ReadingDoesNotDependOnThePackets) {
    const std::string stream = "\r\n<cmd dir>Path = \"User/\"</cmd>xx<c<cmd md>Path = \"User/a\"</cmd>"
                               "<cmd nonsense></cmd><<cmd del>Path = \"User/a\"</cmd>\n";
    const std::vector<std::string> expected{"<cmd dir>Path = \"User/\"</cmd>",
                                            "<cmd md>Path = \"User/a\"</cmd>", "<cmd nonsense></cmd>",
                                            "<cmd del>Path = \"User/a\"</cmd>"};
    for (std::size_t size = 1; size <= stream.size(); ++size) {
        EXPECT_EQ(ReadStream(stream, size), expected) << "in pieces of " << size;
    }
}

} // namespace
