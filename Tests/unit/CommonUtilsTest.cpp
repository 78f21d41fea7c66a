#include "CommonUtils.h"
#include "CommonUtils_OSX.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstdio>
#include <limits>
#include <vector>

namespace {

struct sTextCase {
    std::string given;
    std::string expected;
};

TEST(AddTrailingSeparator, EndsEveryPathInOneSlash) {
    const std::vector<sTextCase> cases = {
        {"", ""},          {"User", "User/"}, {"User/", "User/"}, {"User\\", "User/"},
        {"/", "/"},        {"\\", "/"},       {"a\\b", "a\\b/"},  {"a//", "a//"},
        {"a\\\\", "a\\/"}, {"a/\\", "a//"},   {"a/b", "a/b/"},
    };
    for (const auto& [given, expected] : cases) {
        std::string path = given;
        AddTrailingSeparator(path);
        EXPECT_EQ(path, expected) << given;
    }
}

TEST(RemoveLastComponent, CutsBeforeTheLastSeparatorOfEitherKind) {
    const std::vector<sTextCase> cases = {
        {"a/b/c", "a/b"}, {"a/b/", "a/b"},    {"abc", ""},       {"", ""},      {"/", ""},
        {"/abc", ""},     {"a\\b/c", "a\\b"}, {"a/b\\c", "a/b"}, {"a\\b", "a"}, {"a//", "a/"},
    };
    for (const auto& [given, expected] : cases) {
        std::string path = given;
        RemoveLastComponent(path);
        EXPECT_EQ(path, expected) << given;
    }
}

TEST(TruncateText, CountsFromEitherEnd) {
    struct sCase {
        int count;
        std::string expected;
    };

    const std::vector<sCase> cases = {
        {0, ""},   {3, "abc"}, {6, "abcdef"}, {7, "abcdef"},       {-1, "abcde"},
        {-5, "a"}, {-6, ""},   {-7, ""},      {INT_MAX, "abcdef"}, {INT_MIN, ""},
    };

    for (const auto& [count, expected] : cases) {
        std::string text = "abcdef";
        TruncateText(text, count);
        EXPECT_EQ(text, expected) << count;
    }
}

TEST(GetExtension, IsWhatFollowsTheLastDotOfTheLastComponent) {
    const std::vector<sTextCase> cases = {
        {"dir.x/file", ""}, {"dir.x\\file", ""}, {"a.tar.gz", "gz"},
        {"name.", ""},      {"name", ""},        {".hidden", "hidden"},
        {"", ""},           {"a/b.WAV", "WAV"},  {"a.b/", ""},
        {"..", ""},
    };
    for (const auto& [given, expected] : cases) {
        EXPECT_EQ(GetExtension(given), expected) << given;
    }
}

TEST(FormatString, FollowsPrintf) {
    EXPECT_EQ(FormatString("%s:%u %5.1f%%", "a", 7U, 2.25), "a:7   2.2%");
    EXPECT_EQ(FormatString("%s", ""), "");
}

TEST(FormatString, CutsAt255Bytes) {
    for (const std::size_t length : {254U, 255U, 256U, 300U, 100000U}) {
        const std::string text(length, 'x');
        EXPECT_EQ(FormatString("%s", text.c_str()), text.substr(0, 255)) << length;
    }
    EXPECT_EQ(FormatString("ab%s", std::string(300, 'x').c_str()), "ab" + std::string(253, 'x'));
}

TEST(FormatString, EndsAtTheFirstZeroByte) {
    EXPECT_EQ(FormatString("a%cb", 0), "a");
}

TEST(FormatString, GivesNothingForWhatCannotBeFormatted) {
    const char* const none = nullptr;
    EXPECT_EQ(FormatString(none), "");
    const std::array<wchar_t, 2> noCharacter = {static_cast<wchar_t>(-1), 0};
    EXPECT_EQ(FormatString("%ls", noCharacter.data()), "");
}

TEST(ExpandTemplate, KnowsOnlyTheDoubledPercentSign) {
    const std::vector<sTextCase> cases = {
        {"", ""},       {"plain", "plain"},   {"100%%", "100%"}, {"%", "%"},   {"%%%", "%%"},
        {"%%%%", "%%"}, {"%s%n%d", "%s%n%d"}, {"%%s", "%s"},     {"a%", "a%"}, {"%5.1f", "%5.1f"},
    };
    for (const auto& [given, expected] : cases) {
        EXPECT_EQ(ExpandTemplate(given), expected) << given;
    }
}

/// Standard output led into a pipe, read without flushing: what has not left the program does not count.
class OutputPipe {
public:
    OutputPipe() {
        std::fflush(stdout);
        mStdout = ::dup(STDOUT_FILENO);
        EXPECT_EQ(::pipe2(mEnds.data(), O_NONBLOCK | O_CLOEXEC), 0);
        ::dup2(mEnds[1], STDOUT_FILENO);
    }

    ~OutputPipe() {
        std::fflush(stdout);
        ::dup2(mStdout, STDOUT_FILENO);
        for (const int end : {mStdout, mEnds[0], mEnds[1]}) {
            ::close(end);
        }
    }

    OutputPipe(const OutputPipe&) = delete;
    OutputPipe& operator=(const OutputPipe&) = delete;

    std::string Read() const {
        std::string text(4096, '\0');
        const auto length = ::read(mEnds[0], text.data(), text.size());
        text.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
        return text;
    }

private:
    int mStdout = -1;
    std::array<int, 2> mEnds = {-1, -1};
};

TEST(DebugPrintf, WritesAtOnce) {
    const OutputPipe output;
    DebugPrintf("New device host: %s (%d)\n", "10.0.0.1", 3);
    EXPECT_EQ(output.Read(), "New device host: 10.0.0.1 (3)\n");
    DebugPrintf("short");
    EXPECT_EQ(output.Read(), "short");
}

TEST(DebugPrintf, WritesAtMost1023BytesAndNoWordOfOverflow) {
    const OutputPipe output;
    for (const std::size_t length : {1022U, 1023U, 1024U, 3000U}) {
        const std::string text(length, 'x');
        DebugPrintf("%s", text.c_str());
        EXPECT_EQ(output.Read(), text.substr(0, 1023)) << length;
    }
}

TEST(DebugPrintf, DoesNothingWithoutFormat) {
    const OutputPipe output;
    const char* const none = nullptr;
    DebugPrintf(none);
    EXPECT_EQ(output.Read(), "");
}

TEST(DebugPrint, TakesNoNoticeOfPercentSigns) {
    const OutputPipe output;
    DebugPrint("100% %s %n");
    EXPECT_EQ(output.Read(), "100% %s %n");
}

TEST(AssertFailDeathTest, ReportsAndAborts) {
    EXPECT_EXIT(AssertFail(kAssertFormat, "Shared/ClientProtocol", 105, "mState == 0"),
                ::testing::KilledBySignal(SIGABRT),
                "Shared/ClientProtocol:105: failed assertion `mState == 0'\n");
}

TEST(AssertFailDeathTest, RequireReportsWhatIsGiven) {
    EXPECT_EXIT(Require(false, "Mac/AsyncSocket", "zTag > 0", 17), ::testing::KilledBySignal(SIGABRT),
                "Mac/AsyncSocket:17: failed assertion `zTag > 0'\n");
    Require(true, "Mac/AsyncSocket", "zTag > 0", 17);
}

TEST(PathTexts, TakePathsApart) {
    struct sCase {
        std::string path;
        std::string title;
        std::string name;
        std::string withoutExtension;
        std::string parent;
    };

    const std::vector<sCase> cases = {
        {"/a/b/song.wav", "song", "song.wav", "/a/b/song", "/a/b"},
        {"song.tar.gz", "song.tar", "song.tar.gz", "song.tar", ""},
        {"/a.b/song", "song", "song", "/a.b/song", "/a.b"},
        {"/song.wav", "song", "song.wav", "/song", "/"},
        {"a/.hidden", "", ".hidden", "a/", "a"},
        {"a/name.", "name", "name.", "a/name", "a"},
        {"/a/folder/", "folder", "folder", "/a/folder", "/a"},
        {"/a//song.wav", "song", "song.wav", "/a//song", "/a"},
        {"a\\b.wav", "a\\b", "a\\b.wav", "a\\b", ""},
        {"/", "", "", "/", "/"},
        {"", "", "", "", ""},
    };

    for (const auto& entry : cases) {
        EXPECT_EQ(GetFileTitle(entry.path), entry.title) << entry.path;
        EXPECT_EQ(GetFileName(entry.path), entry.name) << entry.path;
        EXPECT_EQ(RemoveExtension(entry.path), entry.withoutExtension) << entry.path;
        EXPECT_EQ(GetParentPath(entry.path), entry.parent) << entry.path;
    }
}

TEST(HasExtension, ComparesThreeCharacters) {
    struct sCase {
        std::string path;
        std::string extension;
        bool expected;
    };

    const std::vector<sCase> cases = {
        {"song.WAVE", "wav", true}, {"song.wav", "WAV", true},    {"a.aiff", "aif", true},
        {"song.wav", "aif", false}, {"song.wave", "wave", false}, {"song.wa", "wav", false},
        {"song.wa", "wa", false},   {"wav", "wav", false},        {"x.wav/song", "wav", false},
        {"song.", "", false},       {"", "wav", false},
    };

    for (const auto& [path, extension, expected] : cases) {
        EXPECT_EQ(HasExtension(path, extension), expected) << path << " " << extension;
    }
}

TEST(SameTextNoCase, IgnoresCaseAndNothingElse) {
    struct sCase {
        std::string left;
        std::string right;
        bool expected;
    };

    const std::vector<sCase> cases = {
        {"", "", true},           {"Song", "sONG", true},
        {"song", "songs", false}, {"ÄÖ", "äö", true},
        {"a", "ä", false},        {"\xff", "\xff", true},
        {"\xff", "\xfe", false},  {"a\xff", "A\xff", true},
        {"\xc3", "\xc4", false},  {std::string("a\0b", 3), std::string("A\0c", 3), false},
    };

    for (const auto& [left, right, expected] : cases) {
        EXPECT_EQ(SameTextNoCase(left, right), expected) << left << " " << right;
    }
}

TEST(MakeValidUtf8, ReplacesOnlyWhatIsIllFormed) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"", ""},
        {"\ufeffÄ\U0001f3b5", "\ufeffÄ\U0001f3b5"},
        {"caf\xe9", "caf\ufffd"},
        {"\xff.", "\ufffd."},
        {std::string("a\0b", 3), std::string("a\0b", 3)},
    };
    for (const auto& [given, expected] : cases) {
        EXPECT_EQ(MakeValidUtf8(given), expected);
    }
}

TEST(Desktop, PausesAtLeastAsLongAsAsked) {
    const auto start = std::chrono::steady_clock::now();
    OSX10_x::pauseThread(0.01F);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::microseconds(9'999));
    for (const float none : {0.0F, -1.0F, std::numeric_limits<float>::quiet_NaN()}) {
        OSX10_x::pauseThread(none);
    }
}

TEST(Desktop, ScansIntegers) {
    struct sCase {
        std::string text;
        std::size_t start;
        std::int32_t value;
        std::size_t end;
    };

    const std::vector<sCase> cases = {
        {"10240", 0, 10240, 5},
        {"  \t\r\n7x", 0, 7, 6},
        {"port 12;", 4, 12, 7},
        {"-5", 0, -5, 2},
        {"+5", 0, 5, 2},
        {"007", 0, 7, 3},
        {"2147483648", 0, INT32_MIN, 10},
        {"-2147483648", 0, INT32_MIN, 11},
        {"4294967301", 0, 5, 10},
        {"18446744073709551621", 0, 5, 20},
    };

    for (const auto& entry : cases) {
        std::int32_t value = -77;
        std::size_t position = entry.start;
        EXPECT_TRUE(OSX10_x::scanInteger(value, entry.text, position)) << entry.text;
        EXPECT_EQ(value, entry.value) << entry.text;
        EXPECT_EQ(position, entry.end) << entry.text;
    }
}

TEST(Desktop, LeavesAllAsItIsWhereNoIntegerIs) {
    for (const std::string text : {"", "   ", "x1", "-", "+ 1", "--1", ".5"}) {
        std::int32_t value = -77;
        std::size_t position = 0;
        EXPECT_FALSE(OSX10_x::scanInteger(value, text, position)) << text;
        EXPECT_EQ(value, -77) << text;
        EXPECT_EQ(position, 0U) << text;
    }
    std::int32_t value = -77;
    std::size_t beyond = 9;
    EXPECT_FALSE(OSX10_x::scanInteger(value, "12", beyond));
    EXPECT_EQ(beyond, 9U);
}

TEST(OneLogLine, HoldsNothingThatATerminalObeys) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"plain \u00e9\u20ac", "plain \u00e9\u20ac"},
        {"a\nb\r\x1b[2J\x07\x7f", "a?b??[2J??"},
        {"\u009b2J \u0080\u009f\u00a0", "?2J ??\u00a0"},
        {"\x9b"
         "2J",
         "\ufffd2J"},
        {std::string("zero\0", 5), "zero?"},
        {std::string(300, 'x'), std::string(255, 'x')},
    };
    for (const auto& [text, line] : cases) {
        EXPECT_EQ(OneLogLine(text), line);
    }
    EXPECT_EQ(OneLogLine(std::string(300, 'x'), 300), std::string(300, 'x'));
}

TEST(Abbreviated, KeepsWholeCharactersAndSaysThatThereIsMore) {
    EXPECT_EQ(Abbreviated(std::string(255, 'x')), std::string(255, 'x'));
    EXPECT_EQ(Abbreviated(std::string(200, 'x') + std::string(56, 'y')),
              std::string(189, 'x') + "\u2026" + std::string(7, 'x') + std::string(56, 'y'));
    EXPECT_EQ(Abbreviated("\u00e9\u00e9\u00e9\u00e9\u00e9", 9), "\u00e9\u00e9\u2026\u00e9");
    EXPECT_EQ(Abbreviated("\u20ac\u20ac\u20ac\u20ac", 11), "\u20ac\u20ac\u2026");
    EXPECT_EQ(Abbreviated(std::string(300, '\x80')), "\u2026");
}

TEST(Desktop, BoxesNumbers) {
    EXPECT_EQ(std::any_cast<std::int32_t>(OSX10_x::numberWithInteger(-10240)), -10240);
}

} // namespace
