#include "RecordingClient.h"

#include <gtest/gtest.h>

namespace {

using cDeviceFileInfo = cClientProtocol::cDeviceFileInfo;

/// The record of an entry with these pairs.
cDeviceFileInfo Parse(const std::string& pairs) {
    RecordingClient client;
    client.Welcome("1.0");
    cDeviceDirList list;
    client.GetDir("", &list);
    client.Feed("<dir> <item " + pairs + "></dir>");
    return list.mFile.size() == 1 ? list.mFile.front() : cDeviceFileInfo{"no single record", {}, false, 0, 0};
}

TEST(FileRecord, StartsEmpty) {
    const cDeviceFileInfo info;
    EXPECT_EQ(info.mName, "");
    EXPECT_EQ(info.mDate, "");
    EXPECT_FALSE(info.mIsFolder);
    EXPECT_EQ(info.mSize, 0);
    EXPECT_EQ(info.mRights, 0);
}

TEST(FileRecord, FieldsFollowOneAnother) {
    const auto [name, date, isFolder, size, rights] =
        Parse(R"(Rights = "-d-" Size = "12" Date = "today" Type = "Dir" Name = "Music")");
    EXPECT_EQ(name, "Music");
    EXPECT_EQ(date, "today");
    EXPECT_TRUE(isFolder);
    EXPECT_EQ(size, 12);
    EXPECT_EQ(rights, 2);
}

TEST(FileRecord, CopyIsIndependent) {
    cDeviceFileInfo first = Parse(R"(Name = "a" Type = "File" Date = "d" Size = "1" Rights = "c--")");
    const cDeviceFileInfo second = first;
    first.mName = "b";
    EXPECT_EQ(second.mName, "a");
    EXPECT_EQ(second.mSize, 1);
    EXPECT_EQ(second.mRights, 1);
}

struct RightsCase {
    const char* text;
    int rights;
};

TEST(FileRecord, RightsCountByPosition) {
    const std::vector<RightsCase> cases{
        {"cdr", 7}, {"c-r", 5}, {"-d-", 2}, {"--r", 4}, {"c--", 1}, {"---", 0},  {"cd", 0},
        {"c", 0},   {"", 0},    {"CDR", 0}, {"Cdr", 6}, {"rdc", 2}, {"cdrX", 7}, {"Xcdr", 0},
    };
    for (const auto& [text, rights] : cases) {
        EXPECT_EQ(ParseRights(text), rights) << text;
        EXPECT_EQ(Parse(std::string("Name = \"a\" Rights = \"") + text + "\"").mRights, rights) << text;
    }
}

struct TypeCase {
    const char* type;
    bool isFolder;
};

TEST(FileRecord, TypeDirInAnyLetterCaseIsAFolder) {
    const std::vector<TypeCase> cases{{"Dir", true},        {"dir", true}, {"DIR", true},   {"dIr", true},
                                      {"Directory", false}, {"", false},   {"File", false}, {" Dir", false}};
    for (const auto& [type, isFolder] : cases) {
        EXPECT_EQ(Parse(std::string("Name = \"a\" Type = \"") + type + "\"").mIsFolder, isFolder) << type;
    }
}

struct SizeCase {
    const char* size;
    std::int32_t value;
};

TEST(FileRecord, SizeTakesLeadingDigits) {
    const std::vector<SizeCase> cases{
        {"0", 0},
        {"12abc", 12},
        {"abc", 0},
        {"", 0},
        {" 7", 7},
        {"-5", -5},
        {"2147483647", 2147483647},
        {"2147483648", -2147483647 - 1},
        {"4294967297", 1},
        {"-2147483649", 2147483647},
        {"999999999999999999999999999999", -1},
    };
    for (const auto& [size, value] : cases) {
        EXPECT_EQ(Parse(std::string("Name = \"a\" Size = \"") + size + "\"").mSize, value) << size;
    }
}

TEST(FileRecord, DateIsKeptAsSent) {
    EXPECT_EQ(Parse(R"(Name = "a" Date = " 31/02/2009  25:61 ")").mDate, " 31/02/2009  25:61 ");
}

TEST(FileRecord, ListWithoutEntriesHasItsPath) {
    RecordingClient client;
    cDeviceDirList list{"old", {cDeviceFileInfo{"old.wav", {}, false, 1, 1}}};
    client.GetDir("Music/Live", &list);
    EXPECT_EQ(list.mDir, "");
    EXPECT_TRUE(list.mFile.empty());
    client.Feed("<dir></dir>");
    EXPECT_EQ(client.GetState(), FTS_IDLE);
    EXPECT_EQ(list.mDir, "Music/Live");
    EXPECT_TRUE(list.mFile.empty());
}

TEST(FileRecord, ListKeepsOrderAndDuplicates) {
    RecordingClient client;
    cDeviceDirList list;
    client.GetDir("", &list);
    client.Feed(R"(<dir> <f Name="b"><f Name="a"><f Name="b"></dir>)");
    EXPECT_EQ(Describe(list), "b|b|file|0|0\na|a|file|0|0\nb|b|file|0|0\n");
}

} // namespace
