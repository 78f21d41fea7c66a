#include "Hermetic.h"
#include "LoweredLimit.h"
#include "RecordingClient.h"

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kTooLargeUpload = 268435456;
constexpr std::uint32_t kLargestDownload = 1073741824;
constexpr std::size_t kSlice = 131072;

std::string Bytes(std::size_t length) {
    std::string bytes(length, '\0');
    for (std::size_t index = 0; index < length; ++index) {
        bytes[index] = static_cast<char>(index * 31 + index / 251);
    }
    return bytes;
}

class Transfer : public testing::Test {
protected:
    void StartDownload(const std::string& name = "a.wav") {
        ASSERT_EQ(mClient.Download(mFolder / name, "Music", name), "");
        ASSERT_EQ(mClient.GetState(), FTS_DOWNLOADING);
    }

    bool Exists(const std::string& name) const { return fs::exists(fs::symlink_status(mFolder / name)); }

    std::string MakeSparse(const std::string& name, std::uintmax_t size) const {
        std::string path = mFolder.Write(name, "");
        fs::resize_file(path, size);
        return path;
    }

    /// Only this entry is in the folder.
    void ExpectOnly(const std::string& name, const std::string& content) const {
        EXPECT_EQ(std::distance(fs::directory_iterator(mFolder.Path()), {}), 1);
        EXPECT_EQ(mFolder.Read(name), content);
    }

    void ExpectFailed(const std::string& text) {
        EXPECT_EQ(mClient.GetState(), FTS_ERROR);
        EXPECT_EQ(mClient.GetErrorStr(), text);
    }

    TestFolder mFolder;
    RecordingClient mClient;
};

using Upload = Transfer;
using Download = Transfer;

TEST_F(Upload, BodyFollowsTheCommandInSlices) {
    const std::string body = Bytes(2 * kSlice + 5);
    const std::string command = R"(<cmd upload>Name = "User/Music/b.wav" Length = "262149"</cmd>)";
    ASSERT_EQ(mClient.Upload(mFolder.Write("a.wav", body), "Music", "b.wav"), "");
    EXPECT_EQ(mClient.GetState(), FTS_UPLOADING);
    EXPECT_EQ(mClient.mSent, command);
    EXPECT_EQ(mClient.GetProgress(), 0.0F);
    for (const std::size_t sent : {kSlice, 2 * kSlice}) {
        mClient.Update();
        EXPECT_EQ(mClient.mSent.size(), command.size() + sent);
        EXPECT_EQ(mClient.GetState(), FTS_UPLOADING);
        EXPECT_FLOAT_EQ(mClient.GetProgress(), static_cast<float>(sent) / static_cast<float>(body.size()));
    }
    const float lastSeen = mClient.GetProgress();
    mClient.Update();
    EXPECT_EQ(mClient.GetState(), FTS_IDLE);
    EXPECT_TRUE(mClient.mSent == command + body);
    EXPECT_EQ(mClient.GetProgress(), lastSeen);
    EXPECT_EQ(mClient.GetErrorStr(), "");
    ExpectOnly("a.wav", body);
}

TEST_F(Upload, ToTheRootFolder) {
    ASSERT_EQ(mClient.Upload(mFolder.Write("a.wav", "x"), "", "a.wav"), "");
    EXPECT_EQ(mClient.mSent, "<cmd upload>Name = \"User/a.wav\" Length = \"1\"</cmd>");
    mClient.Update();
    EXPECT_EQ(mClient.GetState(), FTS_IDLE);
}

TEST_F(Upload, SendsAgainWhatWasNotAccepted) {
    const std::string body = Bytes(1000);
    mClient.mAccepted = 0;
    ASSERT_EQ(mClient.Upload(mFolder.Write("a.wav", body), "", "a.wav"), "");
    EXPECT_EQ(mClient.GetState(), FTS_SEND_UPLOAD);
    EXPECT_EQ(mClient.GetProgress(), 0.0F);
    mClient.mAccepted = RecordingClient::kEverything;
    mClient.Update();
    mClient.mSent.clear();
    mClient.mAccepted = -1; // a refusal
    mClient.Update();
    mClient.mAccepted = 300;
    mClient.Update();
    EXPECT_FLOAT_EQ(mClient.GetProgress(), 0.3F);
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(mClient.GetState(), FTS_UPLOADING);
        mClient.Update();
    }
    EXPECT_EQ(mClient.GetState(), FTS_IDLE);
    EXPECT_EQ(mClient.mSent, body);
}

TEST_F(Upload, NoConnectionAcceptsMoreThanItWasGiven) {
    class BoastingClient : public RecordingClient {
    public:
        int Send(const char* zpData, int zLength) override {
            RecordingClient::Send(zpData, zLength);
            return GetState() == FTS_UPLOADING ? zLength + 1000 : zLength;
        }
    };

    BoastingClient client;
    ASSERT_EQ(client.Upload(mFolder.Write("a.wav", Bytes(kSlice + 500)), "", "a.wav"), "");
    client.Update();
    EXPECT_EQ(client.GetState(), FTS_UPLOADING);
    client.Update();
    EXPECT_EQ(client.GetState(), FTS_IDLE);
}

TEST_F(Upload, ConnectionThatBreaksInsideSendEndsIt) {
    class BreakingClient : public RecordingClient {
    public:
        int Send(const char* /*zpData*/, int zLength) override {
            if (GetState() == FTS_UPLOADING) {
                Abort("gone");
            }
            return GetState() == FTS_ERROR ? 0 : zLength;
        }
    };

    BreakingClient client;
    ASSERT_EQ(client.Upload(mFolder.Write("a.wav", "data"), "", "a.wav"), "");
    client.Update();
    EXPECT_EQ(client.GetState(), FTS_ERROR);
    EXPECT_EQ(client.GetErrorStr(), "gone");
}

TEST_F(Upload, ResetForgetsTheBody) {
    const std::string first = mFolder.Write("a.wav", Bytes(3 * kSlice));
    ASSERT_EQ(mClient.Upload(first, "", "a.wav"), "");
    mClient.Update();
    mClient.Reset();
    EXPECT_EQ(mClient.GetState(), FTS_IDLE);
    mClient.mSent.clear();
    mClient.Update();
    EXPECT_EQ(mClient.mSent, "");
    ASSERT_EQ(mClient.Upload(mFolder.Write("b.wav", "bb"), "", "b.wav"), "");
    mClient.mSent.clear();
    mClient.Update();
    EXPECT_EQ(mClient.mSent, "bb");
    EXPECT_TRUE(Exists("a.wav"));
}

struct RefusedUpload {
    const char* what;
    std::function<std::string(const TestFolder&)> make;
    const char* text;
};

TEST_F(Upload, RefusesWhatItCannotSend) {
    const std::vector<RefusedUpload> cases{
        {"missing", [](const TestFolder& folder) { return folder / "none"; }, "Could not open file"},
        {"folder", [](const TestFolder& folder) { return folder.Path().string(); }, "Could not open file"},
        {"fifo",
         [](const TestFolder& folder) {
             ::mkfifo((folder / "fifo").c_str(), 0600);
             return folder / "fifo";
         },
         "Could not open file"},
        {"device", [](const TestFolder&) { return std::string("/dev/zero"); }, "Could not open file"},
        {"dangling link",
         [](const TestFolder& folder) {
             fs::create_symlink("nowhere", folder / "link");
             return folder / "link";
         },
         "Could not open file"},
        {"no path", [](const TestFolder&) { return std::string(); }, "Could not open file"},
        {"too long a path", [](const TestFolder& folder) { return folder / std::string(1024, 'x'); },
         "Could not open file"},
        {"empty", [](const TestFolder& folder) { return folder.Write("empty", ""); }, "File zero size"},
        {"too large",
         [](const TestFolder& folder) {
             fs::resize_file(folder.Write("large", ""), kTooLargeUpload);
             return folder / "large";
         },
         "File too large"},
        {"beyond 4 GiB",
         [](const TestFolder& folder) {
             fs::resize_file(folder.Write("larger", ""), (std::uintmax_t{1} << 32) + 10);
             return folder / "larger";
         },
         "File too large"},
    };
    for (const auto& [what, make, text] : cases) {
        EXPECT_EQ(mClient.Upload(make(mFolder), "", "a.wav"), text) << what;
        EXPECT_EQ(mClient.GetState(), FTS_IDLE) << what;
        EXPECT_EQ(mClient.GetErrorStr(), "") << what;
    }
    EXPECT_EQ(mClient.mCalls, 0);
    ASSERT_EQ(mClient.Upload(mFolder.Write("good", "x"), "", "a.wav"), "");
}

TEST_F(Upload, FollowsALinkToAFile) {
    mFolder.Write("a.wav", "data");
    fs::create_symlink("a.wav", mFolder / "link");
    ASSERT_EQ(mClient.Upload(mFolder / "link", "", "a.wav"), "");
    mClient.mSent.clear();
    mClient.Update();
    EXPECT_EQ(mClient.mSent, "data");
}

TEST_F(Upload, TakesTheLargestFile) {
    class CountingClient : public cClientProtocol {
    public:
        int Send(const char* zpData, int zLength) override {
            mCommand = mTotal == 0 ? std::string(zpData, static_cast<std::size_t>(zLength)) : mCommand;
            mTotal += static_cast<std::uintmax_t>(zLength);
            return zLength;
        }

        std::string mCommand;
        std::uintmax_t mTotal = 0;
    };

    CountingClient client;
    ASSERT_EQ(client.Upload(MakeSparse("large.wav", kTooLargeUpload - 1), "", "l.wav"), "");
    EXPECT_EQ(client.mCommand, "<cmd upload>Name = \"User/l.wav\" Length = \"268435455\"</cmd>");
    for (int slice = 0; slice < 2047; ++slice) {
        client.Update();
    }
    EXPECT_EQ(client.GetState(), FTS_UPLOADING);
    EXPECT_GT(client.GetProgress(), 0.999F);
    client.Update();
    EXPECT_EQ(client.GetState(), FTS_IDLE);
    EXPECT_EQ(client.mTotal, client.mCommand.size() + kTooLargeUpload - 1);
}

TEST_F(Upload, ReportsAFileThatGivesLessThanItsSize) {
    // Such files announce a page and hold one line.
    const std::string path = "/sys/kernel/mm/transparent_hugepage/enabled";
    if (!fs::exists(path)) {
        GTEST_SKIP() << "needs " << path;
    }
    EXPECT_EQ(mClient.Upload(path, "", "a.wav"), "Couldn't read file");
    EXPECT_EQ(mClient.GetState(), FTS_IDLE);
    EXPECT_EQ(mClient.mCalls, 0);
    ASSERT_EQ(mClient.Upload(mFolder.Write("good", "x"), "", "a.wav"), "");
}

#if defined(__SANITIZE_ADDRESS__)
#define QUILLBOX_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QUILLBOX_ADDRESS_SANITIZER
#endif
#endif

TEST_F(Upload, ReportsThatThereIsNoMemoryForIt) {
#ifdef QUILLBOX_ADDRESS_SANITIZER
    GTEST_SKIP() << "the address sanitizer does not run with a limited address space";
#endif
    const std::string path = MakeSparse("large.wav", kTooLargeUpload - 1);
    {
        const LoweredLimit limit(RLIMIT_AS, kTooLargeUpload / 2);
        EXPECT_EQ(mClient.Upload(path, "", "a.wav"), "File too large");
    }
    EXPECT_EQ(mClient.GetState(), FTS_IDLE);
    EXPECT_EQ(mClient.Upload(path, "", "a.wav"), "");
}

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
