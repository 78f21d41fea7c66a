#include "RecordingClient.h"

#include <climits>
#include <gtest/gtest.h>

namespace {

constexpr std::size_t kReplyLimit = 524288;
constexpr const char* kOverflow = "Receive buffer overflow";

const std::string kWelcome =
    "\r\n<welcome>\nName = \"Recorder\"\nVersion = \"1.10\"\nID = \"0042\"\n</welcome>";
const std::string kDir =
    "<dir>\n Rights = \"cd-\"\n"
    "<entry Name = \"Music\" Type = \"Dir\" Date = \"1/2/09\" Size = \"0\" Rights = \"-d-\">\n"
    "<entry Name = \"a.wav\" Type = \"File\" Date = \"3/4/09\" Size = \"77\" Rights = \"--r\">\n"
    "</dir>";
const std::string kDirEntries = "Music|1/2/09|dir|0|2\na.wav|3/4/09|file|77|4\n";
const std::string kDirRecurse = R"(<dir_recurse>Size = "3145728" NumFiles = "17"</dir_recurse>)";

struct ValueCase {
    const char* text;
    const char* key;
    const char* value;
};

TEST(ReplyValue, FollowsTheFirstOccurrenceOfItsKey) {
    const std::vector<ValueCase> cases{
        {R"(Name = "a.wav")", "Name", "a.wav"},
        {R"(Name="a" Name="b")", "Name", "a"},
        {R"(FileName = "x" Name = "y")", "Name", "x"},
        {R"(Size = "1" Name = "y")", "Name", "y"},
        {R"(Name = "")", "Name", ""},
        {R"(name = "low" Name = "high")", "Name", "high"},
        // Without the key: the first quoted value.
        {R"(Size = "1" Date = "d")", "Name", "1"},
        // Without the closing quote: the rest.
        {R"(Name = "rest of it)", "Name", "rest of it"},
        {R"(Name = ")", "Name", ""},
        // Without an opening quote.
        {"Name = plain", "Name", ""},
        {"no quote at all", "Name", ""},
        {R"(Size = "1" Name)", "Name", ""},
        {"", "Name", ""},
        {"", "", ""},
        // The search for the quote begins inside the key.
        {R"("x" "y")", "\"", " "},
        {R"(x"yz")", "x\"y", "yz"},
    };
    for (const auto& [text, key, value] : cases) {
        std::string out = "before";
        EXPECT_TRUE(GetValue(text, key, out));
        EXPECT_EQ(out, value) << text << " / " << key;
    }
}

struct NumberCase {
    const char* text;
    std::int32_t intValue;
    long longValue;
};

TEST(ReplyValue, LongNumbersEndAtTheirLimitsAndIntsKeepTheLowBits) {
    const std::vector<NumberCase> cases{
        {"0", 0, 0},
        {"12abc", 12, 12},
        {"abc", 0, 0},
        {"", 0, 0},
        {" \t42", 42, 42},
        {"+3", 3, 3},
        {"-3", -3, -3},
        {"1.9", 1, 1},
        {"5000000000", 705032704, 5000000000},
        {"-5000000000", -705032704, -5000000000},
        {"99999999999999999999", -1, LONG_MAX},
        {"-99999999999999999999", 0, LONG_MIN},
    };
    for (const auto& [text, intValue, longValue] : cases) {
        const std::string pair = std::string("Size = \"") + text + "\"";
        std::int32_t intOut = -1;
        long longOut = -1;
        EXPECT_TRUE(GetIntValue(pair, "Size", intOut));
        EXPECT_TRUE(GetLongValue(pair, "Size", longOut));
        EXPECT_EQ(intOut, intValue) << text;
        EXPECT_EQ(longOut, longValue) << text;
    }
}

struct VersionCase {
    const char* text;
    std::int32_t version;
};

TEST(WelcomeReply, VersionIsRoundedToHundredths) {
    const std::vector<VersionCase> cases{
        {"1.1", 110},
        {"1.05", 105},
        {"2", 200},
        {"1.09", 109},
        {"1.10", 110},
        {"1.094", 109},
        {"1.095x", 110},
        {"", 0},
        {"beta", 0},
        {" 1.5", 150},
        {"+1.5", 150},
        {"+-1.5", 0},
        {"-1.5", -149},
        {".5", 50},
        {"1e1", 1000},
        {"nan", 0},
        {"inf", 0},
        {"-inf", 0},
        {"1e999", 0},
        {"1e300", INT_MAX},
        {"-1e300", INT_MIN},
        {"   ", 0},
        {"99999999", INT_MAX},
        {"1,5", 100},
    };
    for (const auto& [text, version] : cases) {
        RecordingClient client;
        client.Welcome(text);
        EXPECT_EQ(client.GetState(), FTS_IDLE);
        EXPECT_EQ(client.GetVersion(), version) << text;
        EXPECT_EQ(client.GetVersionStr(), text);
        EXPECT_EQ(client.SupportsDirRecurse(), version > 109) << text;
    }
}

TEST(WelcomeReply, FillsInWhatTheDeviceIs) {
    RecordingClient client;
    EXPECT_EQ(client.GetVersion(), 0);
    client.Connect();
    EXPECT_EQ(client.GetState(), FTS_WELCOME);
    client.Feed(kWelcome + "surplus");
    EXPECT_EQ(client.GetState(), FTS_IDLE);
    EXPECT_EQ(client.GetDeviceName(), "Recorder");
    EXPECT_EQ(client.GetDeviceID(), "0042");
    EXPECT_EQ(client.GetVersionStr(), "1.10");
    EXPECT_EQ(client.GetVersion(), 110);
    EXPECT_EQ(client.GetErrorStr(), "");
    EXPECT_TRUE(client.mSent.empty());
}

TEST(WelcomeReply, WithoutANameTakesTheFirstQuotedValue) {
    RecordingClient client;
    client.Connect();
    client.Feed(R"(<welcome>Version = "1.2" ID = "7"</welcome>)");
    EXPECT_EQ(client.GetDeviceName(), "1.2");
}

TEST(WelcomeReply, HeaderEndsAtTheLastClosingTag) {
    RecordingClient client;
    client.Connect();
    client.Feed(R"(<welcome>Name = "a</welcome>b" Version = "1"</welcome>)");
    EXPECT_EQ(client.GetDeviceName(), "a</welcome>b");
}

TEST(WelcomeReply, NewWelcomeReplacesTheOldOne) {
    RecordingClient client;
    client.Welcome("1.2");
    client.Connect();
    client.Feed("<welcome></welcome>");
    EXPECT_EQ(client.GetDeviceName(), "");
    EXPECT_EQ(client.GetVersion(), 0);
}

/// A client that waits for the reply to zState, with an older failure text.
class WaitingClient : public RecordingClient {
public:
    explicit WaitingClient(eClientState zState) {
        Abort("an older failure");
        Reset();
        Welcome("1.10");
        if (zState == FTS_WELCOME) {
            Connect();
        } else if (zState == FTS_WAIT_DIR) {
            GetDir("Music", &mList);
        } else if (zState == FTS_WAIT_DIR_RECURSE) {
            GetDirRecurse("Music");
        }
    }

    cDeviceDirList mList;
};

struct BadReplyCase {
    eClientState state;
    const char* reply;
};

TEST(Reply, ThatCannotBeParsedFailsWithoutText) {
    const std::vector<BadReplyCase> cases{
        {FTS_WELCOME, "</welcome>"},
        {FTS_WELCOME, "Name = \"a\"</welcome>"},
        {FTS_WELCOME, "</welcome><welcome>Name = \"a\""},
        {FTS_WAIT_DIR, "</dir>"},
        {FTS_WAIT_DIR, "<dir</dir>"},
        {FTS_WAIT_DIR, "</dir><dir>"},
        {FTS_WAIT_DIR, "</dir> <dir> <f Name = \"a\">"},
        {FTS_WAIT_DIR, "<dir_recurse></dir>"},
        {FTS_WAIT_DIR_RECURSE, "</dir_recurse>"},
        {FTS_WAIT_DIR_RECURSE, "<dir></dir_recurse>"},
        {FTS_WAIT_DIR_RECURSE, "</dir_recurse><dir_recurse>"},
    };
    for (const auto& [state, reply] : cases) {
        WaitingClient client(state);
        ASSERT_EQ(client.GetState(), state);
        EXPECT_EQ(client.GetErrorStr(), "an older failure");
        client.Feed(reply);
        EXPECT_EQ(client.GetState(), FTS_ERROR) << reply;
        EXPECT_EQ(client.GetErrorStr(), "") << reply;
        EXPECT_TRUE(client.mList.mFile.empty()) << reply;
    }
}

struct IncompleteCase {
    eClientState state;
    const char* text;
};

TEST(Reply, ThatIsNotCompleteIsWaitedFor) {
    const std::vector<IncompleteCase> cases{
        {FTS_WELCOME, "<welcome>Name = \"a\"</welcome"},
        {FTS_WELCOME, "</dir></dir_recurse>"},
        {FTS_WAIT_DIR, "<dir></Dir></dir >"},
        {FTS_WAIT_DIR, "</dir_recurse></welcome>"},
        {FTS_WAIT_DIR_RECURSE, "<dir_recurse></dir>"},
    };
    for (const auto& [state, text] : cases) {
        WaitingClient client(state);
        client.Feed(text);
        EXPECT_EQ(client.GetState(), state) << text;
    }
}

struct DirCase {
    const char* reply;
    std::int32_t rights;
    const char* entries;
};

TEST(DirReply, TakesTagLikeRunsAsEntries) {
    const std::vector<DirCase> cases{
        {"<dir></dir>", 0, ""},
        {"<dir> </dir>", 0, ""},
        {"<dir>Rights</dir>", 0, ""},
        {"<dir>Rights = \"cdr", 0, nullptr},
        {"<dir>Rights = \"cdr\"</dir>", 7, ""},
        {"<dir>Rights = \"cdr</dir>", 7, ""},
        // Any element name, any order, any layout.
        {R"(<dir> <Size="5"Rights="cd-"Type="dir"Date="d"Name="n"></dir>)", 3, "n|d|dir|5|3\n"},
        {"<dir>\n\n<a Name=\"x\"/>text<b\nName\n=\n\"y\"\n>\n</dir>", 0, "x|x|file|0|0\ny|y|file|0|0\n"},
        // What an entry or the header lacks is taken from the first quoted value.
        {R"(<dir> <f Name="Dir"></dir>)", 4, "Dir|Dir|dir|0|4\n"},
        {R"(<dir> <f Name="a" Type="File"></dir>)", 0, "a|a|file|0|0\n"},
        {"<dir> <></dir>", 0, "||file|0|0\n"},
        // No character after the opening tag: that entry is lost.
        {R"(<dir><f Name="a"> <f Name="b"></dir>)", 0, "b|b|file|0|0\n"},
        // Only an entry's own rights: the search for the folder's finds them.
        {R"(<dir> <f Name="a" Rights="c--"></dir>)", 1, "a|a|file|0|1\n"},
        // Cut short.
        {"<dir> <f Name=\"a\"</dir>", 0, ""},
        {"<dir> <</dir>", 0, ""},
        {"<dir> ></dir>", 0, ""},
        {R"(<dir> > <f Name="a"></dir>)", 0, "a|a|file|0|0\n"},
        // The last closing tag counts; an earlier one is a run like any other.
        {R"(<dir> <f Name="a"></dir></dir>)", 0, "a|a|file|0|0\n||file|0|0\n"},
        {R"(<dir> <f Name="a"><dir></dir>)", 0, "a|a|file|0|0\n||file|0|0\n"},
        {R"(junk <dir> <f Name="a"></dir> <f Name="b">)", 0, "a|a|file|0|0\n"},
        {R"(</dir> <dir> <f Name="a"></dir>)", 0, "a|a|file|0|0\n"},
        // Bytes are opaque.
        {"<dir> <f Name=\"\xC3\xB6\xFF&amp;\"></dir>", 0, "\xC3\xB6\xFF&amp;|\xC3\xB6\xFF&amp;|file|0|0\n"},
    };
    for (const auto& [reply, rights, entries] : cases) {
        WaitingClient client(FTS_WAIT_DIR);
        client.Feed(reply);
        if (entries == nullptr) {
            EXPECT_EQ(client.GetState(), FTS_WAIT_DIR) << reply;
            continue;
        }
        EXPECT_EQ(client.GetState(), FTS_IDLE) << reply;
        EXPECT_EQ(client.mList.mDir, "Music") << reply;
        EXPECT_EQ(Describe(client.mList), entries) << reply;
        EXPECT_EQ(client.GetDirRights(), rights) << reply;
        EXPECT_EQ(client.GetErrorStr(), "an older failure");
    }
}

TEST(DirReply, EmbeddedZeroBytesAreBytes) {
    WaitingClient client(FTS_WAIT_DIR);
    client.Feed(std::string_view("<dir>\0<f Name=\"a\0b\"></dir>", 26));
    ASSERT_EQ(client.mList.mFile.size(), 1U);
    EXPECT_EQ(client.mList.mFile.front().mName, std::string("a\0b", 3));
}

TEST(DirReply, GoesIntoTheListNamedLast) {
    WaitingClient client(FTS_WAIT_DIR);
    cDeviceDirList other;
    client.SetDirList(&other);
    EXPECT_FALSE(client.IsListingUnclaimed());
    client.Feed(kDir);
    EXPECT_EQ(Describe(other), kDirEntries);
    EXPECT_TRUE(client.mList.mFile.empty());
}

TEST(DirReply, ListIsNamedOnlyForARunningListing) {
    RecordingClient client;
    cDeviceDirList list;
    client.SetDirList(&list);
    EXPECT_FALSE(client.IsListingUnclaimed());
    client.GetDir("", &list);
    EXPECT_FALSE(client.IsListingUnclaimed());
    client.SetDirList(nullptr);
    EXPECT_TRUE(client.IsListingUnclaimed());
    client.Reset();
    EXPECT_FALSE(client.IsListingUnclaimed());
}

TEST(DirReplyDeathTest, NeedsAList) {
    EXPECT_DEATH(
        {
            WaitingClient client(FTS_WAIT_DIR);
            client.SetDirList(nullptr);
            client.Feed(kDir);
        },
        "Shared/ClientProtocol:[0-9]+: failed assertion `mpDirList != NULL'");
}

struct TreeSizeCase {
    const char* pairs;
    std::int32_t size;
    std::int32_t files;
    const char* line;
};

TEST(DirRecurseReply, GivesSizeAndNumber) {
    const std::vector<TreeSizeCase> cases{
        {R"(Size = "3145728" NumFiles = "17")", 3145728, 17, "Dir Size = 3MB\n"},
        {R"(NumFiles = "2" Size = "1048575")", 1048575, 2, "Dir Size = 0MB\n"},
        {R"(Size = "4")", 4, 4, "Dir Size = 0MB\n"},
        {"", 0, 0, "Dir Size = 0MB\n"},
        {R"(Size = "many" NumFiles = "few")", 0, 0, "Dir Size = 0MB\n"},
        {R"(Size = "2147483648" NumFiles = "4294967297")", INT_MIN, 1, "Dir Size = -2048MB\n"},
        {R"(Size = "-1048576" NumFiles = "-1")", -1048576, -1, "Dir Size = -1MB\n"},
    };
    for (const auto& [pairs, size, files, line] : cases) {
        WaitingClient client(FTS_WAIT_DIR_RECURSE);
        testing::internal::CaptureStdout();
        client.Feed(std::string("<dir_recurse>") + pairs + "</dir_recurse>");
        EXPECT_EQ(testing::internal::GetCapturedStdout(), line);
        EXPECT_EQ(client.GetState(), FTS_IDLE);
        EXPECT_EQ(client.GetDirRecurseSize(), size) << pairs;
        EXPECT_EQ(client.GetDirRecurseNumFiles(), files) << pairs;
    }
}

TEST(DirRecurseReply, OldResultsEndWithTheNextCommand) {
    WaitingClient client(FTS_WAIT_DIR_RECURSE);
    client.Feed(kDirRecurse);
    EXPECT_EQ(client.GetDirRecurseNumFiles(), 17);
    client.GetDirRecurse("");
    EXPECT_EQ(client.GetDirRecurseSize(), 0);
    EXPECT_EQ(client.GetDirRecurseNumFiles(), 0);
}

struct SplitCase {
    eClientState state;
    const std::string& reply;
};

const std::vector<SplitCase> kSplitCases{
    {FTS_WELCOME, kWelcome}, {FTS_WAIT_DIR, kDir}, {FTS_WAIT_DIR_RECURSE, kDirRecurse}};

/// What a reply left in the client, in one text.
std::string Outcome(const WaitingClient& client) {
    return std::to_string(client.GetState()) + client.GetErrorStr() + client.GetDeviceName() +
           client.GetDeviceID() + client.GetVersionStr() + std::to_string(client.GetVersion()) +
           client.mList.mDir + Describe(client.mList) + std::to_string(client.GetDirRights()) +
           std::to_string(client.GetDirRecurseSize()) + std::to_string(client.GetDirRecurseNumFiles());
}

TEST(Reply, ParsesTheSameHoweverItIsCut) {
    for (const auto& [state, reply] : kSplitCases) {
        WaitingClient whole(state);
        whole.Feed(reply);
        ASSERT_EQ(whole.GetState(), FTS_IDLE);
        for (std::size_t cut = 1; cut < reply.size(); ++cut) {
            WaitingClient client(state);
            client.Feed(reply.substr(0, cut));
            EXPECT_EQ(client.GetState(), state) << cut;
            client.Feed(reply.substr(cut));
            EXPECT_EQ(Outcome(client), Outcome(whole)) << cut;
        }
        for (const std::size_t piece : {1U, 2U, 3U, 5U, 7U}) {
            WaitingClient client(state);
            FeedInPieces(reply, piece, [&client](std::string_view bytes) { client.Feed(bytes); });
            EXPECT_EQ(Outcome(client), Outcome(whole)) << piece;
        }
    }
}

TEST(Reply, TextBeforeACommandIsForgotten) {
    RecordingClient client;
    client.Feed("<dir> <f Name=\"stale\"></dir>");
    EXPECT_EQ(client.GetState(), FTS_IDLE);
    cDeviceDirList list;
    client.GetDir("", &list);
    client.Feed("\n");
    EXPECT_EQ(client.GetState(), FTS_WAIT_DIR);
    client.Feed(kDir);
    EXPECT_EQ(Describe(list), kDirEntries);
}

TEST(Reply, TextThatCameBeforeTheCommandWasAcceptedCounts) {
    RecordingClient client;
    client.mAccepted = 0;
    cDeviceDirList list;
    client.GetDir("", &list);
    client.Feed(kDir);
    EXPECT_EQ(client.GetState(), FTS_SEND_DIR);
    client.mAccepted = RecordingClient::kEverything;
    client.Update();
    EXPECT_EQ(client.GetState(), FTS_WAIT_DIR);
    client.Feed("\n");
    EXPECT_EQ(client.GetState(), FTS_IDLE);
    EXPECT_EQ(Describe(list), kDirEntries);
}

struct LimitCase {
    eClientState state;
    std::size_t before;
    std::size_t chunk;
    bool overflows;
};

TEST(ReplyLimit, CountsTheLastChunkTwice) {
    for (const eClientState state : {FTS_IDLE, FTS_WELCOME, FTS_WAIT_DIR, FTS_WAIT_DIR_RECURSE}) {
        const std::vector<LimitCase> cases{
            {state, 0, kReplyLimit / 2 - 1, false},
            {state, 0, kReplyLimit / 2, true},
            {state, 1, kReplyLimit / 2 - 1, false},
            {state, 2, kReplyLimit / 2 - 1, true},
            {state, kReplyLimit / 2 - 1, kReplyLimit / 4, false},
            {state, kReplyLimit / 2 - 1, kReplyLimit / 4 + 1, true},
        };
        for (const auto& [start, before, chunk, overflows] : cases) {
            WaitingClient client(start);
            client.Feed(std::string(before, 'x'));
            client.Feed(std::string(chunk, 'x'));
            EXPECT_EQ(client.GetState(), overflows ? FTS_ERROR : start) << before << "+" << chunk;
            EXPECT_EQ(client.GetErrorStr(), overflows ? kOverflow : "an older failure");
        }
    }
}

TEST(ReplyLimit, HoldsOneByteAtATime) {
    WaitingClient client(FTS_WAIT_DIR);
    for (std::size_t fed = 0; fed < kReplyLimit - 2; ++fed) {
        client.OnReceive("x", 1);
    }
    EXPECT_EQ(client.GetState(), FTS_WAIT_DIR);
    client.OnReceive("x", 1);
    EXPECT_EQ(client.GetErrorStr(), kOverflow);
}

TEST(ReplyLimit, StandsBeforeCompletion) {
    WaitingClient client(FTS_WAIT_DIR);
    client.Feed("<dir> " + std::string(kReplyLimit / 2, 'x') + "</dir>");
    EXPECT_EQ(client.GetState(), FTS_ERROR);
    EXPECT_EQ(client.GetErrorStr(), kOverflow);
}

TEST(ReplyLimit, HoldsInTheErrorState) {
    RecordingClient client;
    client.Abort("first");
    client.Feed(std::string(kReplyLimit / 2 - 1, 'x'));
    EXPECT_EQ(client.GetErrorStr(), "first");
    client.Feed(std::string(kReplyLimit / 2 - 1, 'x'));
    EXPECT_EQ(client.GetErrorStr(), kOverflow);
    EXPECT_EQ(client.GetState(), FTS_ERROR);
}

TEST(ReplyDeathTest, NeedsBytes) {
    for (const int length : {0, -1}) {
        EXPECT_DEATH(RecordingClient().OnReceive("x", length),
                     "Shared/ClientProtocol:[0-9]+: failed assertion `zReceivedLength > 0'");
    }
}

} // namespace
