#include "LoweredLimit.h"
#include "TransferFixture.h"

#include <sys/stat.h>

#include <functional>

namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kLargestDownload = 1073741824;

using Download = Transfer;

TEST_F(Download, BodyReplacesTheOldFileWhenItIsWhole) {
    mFolder.Write("a.wav", "the old file");
    StartDownload();
    EXPECT_EQ(mClient.mSent, "<cmd download>Name = \"User/Music/a.wav\"</cmd>");
    EXPECT_EQ(mClient.GetProgress(), 0.0F);
    EXPECT_TRUE(mClient.IsAwaitingLength());
    EXPECT_EQ(mClient.GetBytesAwaited(), 0U);

    mClient.Feed(LengthPrefix(10));
    EXPECT_EQ(mClient.GetState(), FTS_DOWNLOADING);
    EXPECT_FALSE(mClient.IsAwaitingLength());
    EXPECT_EQ(mClient.GetBytesAwaited(), 10U);
    EXPECT_EQ(mClient.GetProgress(), 0.0F);

    mClient.Feed("0123");
    EXPECT_FLOAT_EQ(mClient.GetProgress(), 0.4F);
    EXPECT_EQ(mClient.GetBytesAwaited(), 6U);
    EXPECT_EQ(mFolder.Read("a.wav"), "the old file");
    EXPECT_TRUE(Exists("a.wav.tmp"));

    mClient.Feed("456789");
    EXPECT_EQ(mClient.GetState(), FTS_IDLE);
    EXPECT_EQ(mClient.GetErrorStr(), "");
    EXPECT_EQ(mClient.GetBytesAwaited(), 0U);
    ExpectOnly("a.wav", "0123456789");
}

TEST_F(Download, FromTheRootFolder) {
    ASSERT_EQ(mClient.Download(mFolder / "x", "", "a.wav"), "");
    EXPECT_EQ(mClient.mSent, "<cmd download>Name = \"User/a.wav\"</cmd>");
}

TEST_F(Download, ChunkWithLengthAndWholeBody) {
    StartDownload();
    mClient.Feed(LengthPrefix(3) + "abc");
    EXPECT_EQ(mClient.GetState(), FTS_IDLE);
    ExpectOnly("a.wav", "abc");
}

TEST_F(Download, BodyMayBeLargerThanAnyTextReply) {
    const std::string body = Bytes(600000);
    StartDownload();
    mClient.Feed(LengthPrefix(600000));
    FeedInPieces(body, 262144, [this](std::string_view bytes) { mClient.Feed(bytes); });
    EXPECT_EQ(mClient.GetState(), FTS_IDLE);
    EXPECT_TRUE(mFolder.Read("a.wav") == body);
}

TEST_F(Download, LengthZeroEndsInSilence) {
    mFolder.Write("a.wav", "the old file");
    StartDownload();
    mClient.Feed(LengthPrefix(0) + "surplus");
    EXPECT_EQ(mClient.GetState(), FTS_IDLE);
    EXPECT_EQ(mClient.GetErrorStr(), "");
    ExpectOnly("a.wav", "the old file");
}

TEST_F(Download, OnlyAWholeFileCountsAsStored) {
    EXPECT_FALSE(mClient.HasStoredFile());
    for (const std::uint32_t length : {3U, 0U, 3U}) {
        StartDownload();
        EXPECT_FALSE(mClient.HasStoredFile()) << "while it runs";
        mClient.Feed(LengthPrefix(length) + "abc");
        EXPECT_EQ(mClient.HasStoredFile(), length != 0);
    }
    StartDownload();
    mClient.Feed(LengthPrefix(3) + "ab");
    mClient.Reset();
    EXPECT_FALSE(mClient.HasStoredFile());
}

struct LengthCase {
    std::uint32_t length;
    bool accepted;
};

TEST_F(Download, LengthHasALimit) {
    const std::vector<LengthCase> cases{
        {1, true},           {0x00010203, true}, {kLargestDownload, true}, {kLargestDownload + 1, false},
        {0x80000000, false}, {0xFFFFFFFF, false}};
    for (const auto& [length, accepted] : cases) {
        RecordingClient client;
        mFolder.Write("a.wav", "old");
        ASSERT_EQ(client.Download(mFolder / "a.wav", "", "a.wav"), "");
        client.Feed(LengthPrefix(length));
        EXPECT_EQ(client.GetState(), accepted ? FTS_DOWNLOADING : FTS_ERROR) << length;
        EXPECT_EQ(client.GetBytesAwaited(), accepted ? length : 0) << length;
        EXPECT_EQ(client.GetErrorStr(), accepted ? "" : (mFolder / "a.wav") + " too large to download");
        EXPECT_EQ(Exists("a.wav.tmp"), accepted) << length;
        client.Reset();
        ExpectOnly("a.wav", "old");
    }
}

TEST_F(Download, EndsWithoutTraceInEveryOtherWay) {
    const std::vector<std::function<void(RecordingClient&)>> ways{
        [](RecordingClient& client) { client.Reset(); },
        [](RecordingClient& client) { client.EndOperation(true); },
        [](RecordingClient& client) { client.Abort("stopped"); },
    };
    for (const auto& end : ways) {
        for (const std::string& received : {std::string(), LengthPrefix(10), LengthPrefix(10) + "012"}) {
            RecordingClient client;
            mFolder.Write("a.wav", "the old file");
            ASSERT_EQ(client.Download(mFolder / "a.wav", "", "a.wav"), "");
            client.Feed(received);
            end(client);
            ExpectOnly("a.wav", "the old file");
            EXPECT_FALSE(client.IsAwaitingLength());
        }
    }
}

TEST_F(Download, CommandThatWasNeverSentLeavesNoTrace) {
    mClient.mAccepted = 0;
    ASSERT_EQ(mClient.Download(mFolder / "a.wav", "", "a.wav"), "");
    EXPECT_EQ(mClient.GetState(), FTS_SEND_DOWNLOAD);
    EXPECT_FALSE(mClient.IsAwaitingLength());
    mClient.Feed("text");
    mClient.Reset();
    EXPECT_TRUE(fs::is_empty(mFolder.Path()));
}

TEST_F(Download, ClientThatEndsLeavesNoTrace) {
    {
        RecordingClient client;
        ASSERT_EQ(client.Download(mFolder / "a.wav", "", "a.wav"), "");
        client.Feed(LengthPrefix(10) + "012");
    }
    EXPECT_TRUE(fs::is_empty(mFolder.Path()));
}

TEST_F(Download, EarlierFailureTextStays) {
    mClient.Abort("earlier");
    mClient.Reset();
    StartDownload();
    mClient.Feed(LengthPrefix(1) + "x");
    EXPECT_EQ(mClient.GetState(), FTS_IDLE);
    EXPECT_EQ(mClient.GetErrorStr(), "earlier");
    mClient.Connect();
    EXPECT_EQ(mClient.GetErrorStr(), "earlier");
}

TEST_F(Download, ShortPathLeavesNoTemporaryEither) {
    // Below the nine bytes from which on whole folders may be deleted.
    const fs::path before = fs::current_path();
    fs::current_path(mFolder.Path());
    ASSERT_EQ(mClient.Download("a", "", "a"), "");
    EXPECT_TRUE(Exists("a.tmp"));
    mClient.Reset();
    EXPECT_FALSE(Exists("a.tmp"));
    mFolder.Write("a", "old");
    ASSERT_EQ(mClient.Download("a", "", "a"), "");
    mClient.Feed(LengthPrefix(3) + "new");
    fs::current_path(before);
    ExpectOnly("a", "new");
}

TEST_F(Download, ReportsThatTheTemporaryCannotBeMade) {
    mFolder.Write("a", "other file");
    const std::vector<std::string> paths{mFolder / "none/a.wav", "/proc/none",
                                         mFolder / std::string(1024, 'x'), mFolder / std::string(300, 'x'),
                                         mFolder / std::string("a\0b", 3)};
    for (const std::string& path : paths) {
        EXPECT_EQ(mClient.Download(path, "", "a.wav"), "Could not open file");
        EXPECT_EQ(mClient.GetState(), FTS_IDLE);
        EXPECT_EQ(mClient.GetErrorStr(), "");
    }
    EXPECT_EQ(mClient.mCalls, 0);
    ExpectOnly("a", "other file");
}

TEST_F(Download, LeftoverOfAnEarlierOneGivesWay) {
    mFolder.Write("a.wav.tmp", "a longer leftover");
    StartDownload();
    mClient.Feed(LengthPrefix(3) + "abc");
    ExpectOnly("a.wav", "abc");
}

TEST_F(Download, NeverWritesThroughALink) {
    for (const char* target : {"victim", "/dev/null", "nowhere"}) {
        mFolder.Write("victim", "precious");
        fs::create_symlink(target, mFolder / "a.wav.tmp");
        StartDownload();
        mClient.Feed(LengthPrefix(3) + "abc");
        EXPECT_EQ(mClient.GetState(), FTS_IDLE);
        EXPECT_EQ(mFolder.Read("victim"), "precious");
        EXPECT_FALSE(Exists("nowhere"));
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(mFolder / "a.wav")));
        EXPECT_EQ(mFolder.Read("a.wav"), "abc");
    }
}

TEST_F(Download, HardLinkKeepsItsContent) {
    mFolder.Write("victim", "precious");
    fs::create_hard_link(mFolder / "victim", mFolder / "a.wav.tmp");
    StartDownload();
    mClient.Feed(LengthPrefix(3) + "abc");
    EXPECT_EQ(mFolder.Read("victim"), "precious");
    EXPECT_EQ(mFolder.Read("a.wav"), "abc");
}

TEST_F(Download, OpensNoOtherKindOfTemporary) {
    ::mkfifo((mFolder / "fifo.tmp").c_str(), 0600);
    fs::create_directory(mFolder / "folder.tmp");
    for (const char* name : {"fifo", "folder"}) {
        EXPECT_EQ(mClient.Download(mFolder / name, "", name), "Could not open file");
        EXPECT_TRUE(Exists(std::string(name) + ".tmp"));
        EXPECT_EQ(mClient.GetState(), FTS_IDLE);
    }
}

TEST_F(Download, OntoAFolderLeavesTheTemporary) {
    fs::create_directory(mFolder / "a.wav");
    StartDownload();
    mClient.Feed(LengthPrefix(3) + "abc");
    EXPECT_EQ(mClient.GetState(), FTS_IDLE);
    EXPECT_EQ(mClient.GetErrorStr(), "");
    EXPECT_TRUE(fs::is_directory(mFolder / "a.wav"));
    EXPECT_EQ(mFolder.Read("a.wav.tmp"), "abc");
}

TEST_F(Download, AFolderThatTookThePlaceOfTheTemporaryIsNotDeleted) {
    StartDownload();
    fs::remove(mFolder / "a.wav.tmp");
    mFolder.Write("a.wav.tmp/precious", "mine");
    mClient.Reset();
    EXPECT_EQ(mFolder.Read("a.wav.tmp/precious"), "mine");
}

TEST_F(Download, AFolderThatTookThePlaceOfTheTemporaryIsNoDownload) {
    StartDownload();
    fs::remove(mFolder / "a.wav.tmp");
    mFolder.Write("a.wav.tmp/precious", "mine");
    mClient.Feed(LengthPrefix(3) + "abc");
    ExpectFailed((mFolder / "a.wav") + " - failed to write file");
    EXPECT_FALSE(Exists("a.wav"));
    EXPECT_EQ(mFolder.Read("a.wav.tmp/precious"), "mine");
}

TEST_F(Download, FailedRenameKeepsTheOldFile) {
    mFolder.Write("a.wav", "the old file");
    StartDownload();
    fs::remove(mFolder / "a.wav.tmp");
    mClient.Feed(LengthPrefix(3) + "abc");
    ExpectFailed((mFolder / "a.wav") + " - failed to write file");
    ExpectOnly("a.wav", "the old file");
}

struct FullDiskCase {
    const char* what;
    std::size_t size;
    rlim_t limit;
};

TEST_F(Download, FullDiskKeepsTheOldFile) {
    const std::vector<FullDiskCase> cases{
        {"while writing", 1000000, 65536},
        {"at the last piece", 1000000, 999999},
        {"only when closing", 100, 0},
    };
    for (const auto& [what, size, limit] : cases) {
        RecordingClient client;
        const std::string path = mFolder.Write("a.wav", "the old file");
        ASSERT_EQ(client.Download(path, "", "a.wav"), "");
        client.Feed(LengthPrefix(static_cast<std::uint32_t>(size)));
        {
            const LoweredLimit lowered(RLIMIT_FSIZE, limit);
            const std::string body = Bytes(size);
            FeedInPieces(body, 50000, [&client](std::string_view bytes) {
                if (client.GetState() == FTS_DOWNLOADING) {
                    client.Feed(bytes);
                }
            });
        }
        EXPECT_EQ(client.GetState(), FTS_ERROR) << what;
        EXPECT_EQ(client.GetErrorStr(), path + " - failed to write file") << what;
        ExpectOnly("a.wav", "the old file");
        client.Reset();
        EXPECT_EQ(client.GetState(), FTS_IDLE);
        ASSERT_EQ(client.Download(path, "", "a.wav"), "") << what;
    }
}

TEST_F(Download, EndOperationAsSuccessStoresWhatThereIs) {
    StartDownload();
    mClient.Feed(LengthPrefix(10) + "012");
    mClient.EndOperation(false);
    EXPECT_EQ(mClient.GetState(), FTS_IDLE);
    ExpectOnly("a.wav", "012");
}

using TransferDeathTest = Transfer;

TEST_F(TransferDeathTest, LengthPrefixComesWhole) {
    for (std::size_t length = 1; length < 4; ++length) {
        EXPECT_DEATH(
            {
                StartDownload();
                mClient.Feed(LengthPrefix(3).substr(0, length));
            },
            "Shared/ClientProtocol:[0-9]+: failed assertion `zReceivedLength >= 4'");
    }
}

TEST_F(TransferDeathTest, BodyIsNotLongerThanAnnounced) {
    for (const std::string& first : {LengthPrefix(3) + "abcd", LengthPrefix(3) + "ab"}) {
        EXPECT_DEATH(
            {
                StartDownload();
                mClient.Feed(first);
                mClient.Feed("xyz");
            },
            "Shared/ClientProtocol:[0-9]+: failed assertion `mBytesReceived == mReceiveFileSize'");
    }
}

TEST_F(Transfer, ProgressIsThatOfTheLastTransferOutsideOne) {
    EXPECT_EQ(mClient.GetProgress(), 0.0F);
    StartDownload();
    mClient.Feed(LengthPrefix(4) + "abc");
    EXPECT_FLOAT_EQ(mClient.GetProgress(), 0.75F);
    mClient.Reset();
    EXPECT_FLOAT_EQ(mClient.GetProgress(), 0.75F);
    mClient.Abort("x");
    EXPECT_FLOAT_EQ(mClient.GetProgress(), 0.75F);
}

TEST_F(Transfer, AbortEndsInTheErrorStateWithItsText) {
    mClient.Abort("first");
    ExpectFailed("first");
    mClient.Abort("second");
    ExpectFailed("second");
    mClient.Reset();
    EXPECT_EQ(mClient.GetState(), FTS_IDLE);
    EXPECT_EQ(mClient.GetErrorStr(), "second");
}

} // namespace
