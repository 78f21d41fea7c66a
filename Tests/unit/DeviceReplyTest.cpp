#include "Log.h"
#include "Replies.h"

#include <gmock/gmock.h>

namespace {

/// A client's way of reading a value: the first place where the key's letters stand, the next quote after
/// it, and everything up to the quote after that.
std::string ValueOf(const std::string& text, const std::string& key) {
    const std::size_t start = text.find('"', text.find(key) + 1) + 1;
    return text.substr(start, text.find('"', start) - start);
}

std::string Dir(const std::vector<TreeEntry>& entries, const std::string& rights = "cd-") {
    std::size_t leftOut = 0;
    return FormatDir(entries, rights, leftOut);
}

TEST(DeviceReply, Welcome) {
    EXPECT_EQ(FormatWelcome({"Field recorder", "0123abcd", "1.10", "cd-"}),
              "<welcome>Version = \"1.10\" ID = \"0123abcd\" Name = \"Field recorder\"</welcome>");
}

TEST(DeviceReply, WelcomeSurvivesANameFullOfKeys) {
    const std::string welcome = FormatWelcome({"Version ID Name", "77", "1.10", "cd-"});
    EXPECT_EQ(ValueOf(welcome, "Name"), "Version ID Name");
    EXPECT_EQ(ValueOf(welcome, "Version"), "1.10");
    EXPECT_EQ(ValueOf(welcome, "ID"), "77");
}

TEST(DeviceReply, EmptyDir) {
    EXPECT_EQ(Dir({}), "<dir>Rights = \"cd-\"\n</dir>");
}

TEST(DeviceReply, DirWithEntries) {
    EXPECT_EQ(
        Dir({{"Music", "2024-05-01 17:30", 4096, true}, {"a b.wav", "2024-05-02 08:00", 88244, false}},
            "-dr"),
        "<dir>Rights = \"-dr\"\n"
        "<item Type = \"Dir\" Date = \"2024-05-01 17:30\" Size = \"1\" Rights = \"-dr\" Name = \"Music\">\n"
        "<item Type = \"File\" Date = \"2024-05-02 08:00\" Size = \"88244\" Rights = \"-dr\" Name = \"a "
        "b.wav\">\n"
        "</dir>");
}

class NameWithKey : public ::testing::TestWithParam<std::string> {};

TEST_P(NameWithKey, ConfusesNoReader) {
    const std::string reply = Dir({{GetParam(), "2024-05-01 17:30", 77, false}});
    const std::string item = reply.substr(reply.find("<item"));
    EXPECT_EQ(ValueOf(item, "Name"), GetParam());
    EXPECT_EQ(ValueOf(item, "Type"), "File");
    EXPECT_EQ(ValueOf(item, "Date"), "2024-05-01 17:30");
    EXPECT_EQ(ValueOf(item, "Size"), "77");
    EXPECT_EQ(ValueOf(item, "Rights"), "cd-");
    EXPECT_EQ(ValueOf(reply.substr(5), "Rights"), "cd-");
}

INSTANTIATE_TEST_SUITE_P(Names, NameWithKey,
                         ::testing::Values("Name", "Type", "Date", "Size", "Rights", "Type = Dir", "item",
                                           "dir", "Size Type Rights Date Name.wav", "\n", " "));

TEST(DeviceReply, SizesStayWithinWhatClientsKeep) {
    EXPECT_THAT(Dir({{"a", "", 0, false}}), ::testing::HasSubstr("Size = \"0\""));
    EXPECT_THAT(Dir({{"a", "", 2147483647, false}}), ::testing::HasSubstr("Size = \"2147483647\""));
    EXPECT_THAT(Dir({{"a", "", 2147483648, false}}), ::testing::HasSubstr("Size = \"2147483647\""));
}

TEST(DeviceReply, LongListingEndsBelowTheLimit) {
    const std::vector<TreeEntry> entries(10000, {std::string(100, 'n'), "2024-05-01 17:30", 1, false});
    std::size_t leftOut = 0;
    const std::string reply = FormatDir(entries, "cd-", leftOut);
    const std::size_t itemSize = Dir({entries[0]}).size() - Dir({}).size();
    EXPECT_LE(reply.size(), kMaxReplyLength);
    EXPECT_GT(reply.size() + itemSize, kMaxReplyLength);
    EXPECT_EQ(reply.size(), Dir({}).size() + (entries.size() - leftOut) * itemSize);
    EXPECT_TRUE(reply.ends_with(">\n</dir>"));
}

TEST(DeviceReply, DirRecurse) {
    EXPECT_EQ(FormatDirRecurse({1234, 5}), "<dir_recurse>Size = \"1234\" NumFiles = \"5\"</dir_recurse>");
    EXPECT_EQ(FormatDirRecurse({}), "<dir_recurse>Size = \"0\" NumFiles = \"0\"</dir_recurse>");
    EXPECT_EQ(FormatDirRecurse({5000000000, 1}),
              "<dir_recurse>Size = \"2147483647\" NumFiles = \"1\"</dir_recurse>");
}

TEST(DeviceReply, LengthPrefixIsLittleEndian) {
    EXPECT_EQ(FormatLengthPrefix(0), std::string(4, '\0'));
    EXPECT_EQ(FormatLengthPrefix(0x04030201), "\x01\x02\x03\x04");
    EXPECT_EQ(FormatLengthPrefix(0xffffffff), "\xff\xff\xff\xff");
    EXPECT_EQ(FormatLengthPrefix(1073741824), std::string("\0\0\0\x40", 4));
}

TEST(DeviceReply, DirRecurseComesWithVersion110) {
    for (const char* version : {"1.10", "1.1", "2", "1.11", "10.0"}) {
        EXPECT_TRUE((DeviceIdentity{"", "", version, "cd-"}.KnowsDirRecurse())) << version;
    }
    for (const char* version : {"1.09", "1.0", "1", "0", "0.99"}) {
        EXPECT_FALSE((DeviceIdentity{"", "", version, "cd-"}.KnowsDirRecurse())) << version;
    }
}

TEST(DeviceReply, RightsAreReadByPlace) {
    const DeviceIdentity all{"", "", "1.10", "cdr"};
    EXPECT_TRUE(all.MayCreate() && all.MayDelete() && !all.MayUpload());
    const DeviceIdentity none{"", "", "1.10", "---"};
    EXPECT_TRUE(!none.MayCreate() && !none.MayDelete() && none.MayUpload());
}

struct EscapeCase {
    std::string text;
    std::string escaped;
};

void PrintTo(const EscapeCase& c, std::ostream* stream) {
    *stream << c.text.size() << " bytes";
}

class LogText : public ::testing::TestWithParam<EscapeCase> {};

TEST_P(LogText, StaysOnOneHarmlessLine) {
    EXPECT_EQ(Escaped(GetParam().text), GetParam().escaped);
}

INSTANTIATE_TEST_SUITE_P(Texts, LogText,
                         ::testing::Values(EscapeCase{"", ""}, EscapeCase{"plain \"text\"", "plain \"text\""},
                                           EscapeCase{"a\nb\r\t", "a\\x0ab\\x0d\\x09"},
                                           EscapeCase{"\x1b[2J\x7f", "\\x1b[2J\\x7f"},
                                           EscapeCase{std::string(1, '\0'), "\\x00"},
                                           EscapeCase{"back\\slash", "back\\x5cslash"},
                                           EscapeCase{"\xc3\x89t\xc3\xa9", "\xc3\x89t\xc3\xa9"},
                                           EscapeCase{"\xc2\x9b"
                                                      "2J",
                                                      "\\xc2\x9b"
                                                      "2J"},
                                           EscapeCase{"\xc2\xa0", "\xc2\xa0"}, EscapeCase{"\xc2", "\xc2"}));

} // namespace
