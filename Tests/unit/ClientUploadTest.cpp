#include "LoweredLimit.h"
#include "TransferFixture.h"

#include <sys/stat.h>

#include <functional>

namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kTooLargeUpload = 268435456;
constexpr std::size_t kSlice = 131072;

using Upload = Transfer;

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

} // namespace
