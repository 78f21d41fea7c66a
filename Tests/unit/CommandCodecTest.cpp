#include "CommonUtils.h"
#include "Hermetic.h"
#include "RecordingClient.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

using eCommand = cClientProtocol::eCommand;

/// A command as its starters see it: how to start it with a path, and what goes out around the path.
struct CommandCase {
    const char* name;
    std::function<void(RecordingClient&, const std::string& path)> start;
    const char* before;
    const char* after;
    eClientState unsent;
    eClientState sent;
};

cDeviceDirList theList;

const std::vector<CommandCase>& Commands() {
    static const std::vector<CommandCase> commands{
        {"dir", [](RecordingClient& client, const std::string& path) { client.GetDir(path, &theList); },
         "<cmd dir>Path = \"User/", "\"</cmd>", FTS_SEND_DIR, FTS_WAIT_DIR},
        {"dir_recurse",
         [](RecordingClient& client, const std::string& path) { EXPECT_TRUE(client.GetDirRecurse(path)); },
         "<cmd dir_recurse>Path = \"User/", "\"</cmd>", FTS_SEND_DIR_RECURSE, FTS_WAIT_DIR_RECURSE},
        {"md", [](RecordingClient& client, const std::string& path) { client.MakeDir(path); },
         "<cmd md>Path = \"User/", "\"</cmd>", FTS_SEND_MD, FTS_IDLE},
        {"del", [](RecordingClient& client, const std::string& path) { client.Delete(path); },
         "<cmd del>Path = \"User/", "\"</cmd>", FTS_SEND_DEL, FTS_IDLE},
        {"rename", [](RecordingClient& client, const std::string& path) { client.Rename(path, "new"); },
         "<cmd rename>From = \"User/", R"(" To = "User/new"</cmd>)", FTS_SEND_RENAME, FTS_IDLE},
    };
    return commands;
}

TEST(Command, TextsAndStates) {
    for (const CommandCase& command : Commands()) {
        for (const char* path :
             {"", "a.wav", "Music/Live", "say \"hi\"", "100%s %d", "\xC3\xB6", "a/", "b\\"}) {
            RecordingClient client;
            client.Welcome("1.10");
            command.start(client, path);
            EXPECT_EQ(client.mSent, command.before + std::string(path) + command.after) << command.name;
            EXPECT_EQ(client.GetState(), command.sent) << command.name;
        }
    }
}

TEST(Command, RenameTakesBothPathsFromTheRoot) {
    RecordingClient client;
    client.Rename("Music/a.wav", "b.wav");
    EXPECT_EQ(client.mSent, "<cmd rename>From = \"User/Music/a.wav\" To = \"User/b.wav\"</cmd>");
}

TEST(Command, StaysUntilItIsAcceptedWhole) {
    for (const CommandCase& command : Commands()) {
        for (const int accepted : {-1, 0, 5}) {
            RecordingClient client;
            client.Welcome("1.10");
            client.mAccepted = accepted;
            command.start(client, "p");
            EXPECT_EQ(client.GetState(), command.unsent) << command.name;
            client.Update();
            EXPECT_EQ(client.GetState(), command.unsent) << command.name;
            EXPECT_EQ(client.mCalls, 2);
            client.mSent.clear();
            client.mAccepted = RecordingClient::kEverything;
            client.Update();
            EXPECT_EQ(client.GetState(), command.sent) << command.name;
            EXPECT_EQ(client.mSent, command.before + std::string("p") + command.after);
            client.Update();
            EXPECT_EQ(client.mCalls, 3) << "sent once only";
        }
    }
}

TEST(Command, StartsOnlyInIdle) {
    const TestFolder folder;
    const std::string file = folder.Write("a.wav", "data");
    for (const eClientState state : {FTS_WELCOME, FTS_ERROR, FTS_WAIT_DIR}) {
        RecordingClient client;
        client.Welcome("1.10");
        cDeviceDirList list;
        if (state == FTS_WELCOME) {
            client.Connect();
        } else if (state == FTS_ERROR) {
            client.Abort("text");
        } else {
            client.GetDir("", &list);
        }
        client.mSent.clear();
        cDeviceDirList other{"kept", {}};
        client.GetDir("x", &other);
        EXPECT_FALSE(client.GetDirRecurse("x"));
        client.MakeDir("x");
        client.Delete("x");
        client.Rename("x", "y");
        EXPECT_EQ(client.Download(folder / "b", "", "b"), "Waiting for operation to finish");
        EXPECT_EQ(client.Upload(file, "", "a.wav"), "Waiting for operation to finish");
        EXPECT_EQ(client.mSent, "");
        EXPECT_EQ(client.GetState(), state);
        EXPECT_EQ(other.mDir, "kept");
        EXPECT_FALSE(std::filesystem::exists(folder / "b.tmp"));
    }
}

TEST(Command, UpdateDoesNothingWithoutACommand) {
    RecordingClient client;
    client.Update();
    client.Connect();
    client.Update();
    client.Abort("text");
    client.Update();
    EXPECT_EQ(client.mCalls, 0);
    EXPECT_EQ(client.GetState(), FTS_ERROR);
}

TEST(Command, DirRecurseNeedsVersion110) {
    for (const char* version : {"", "1.0", "1.09"}) {
        RecordingClient client;
        client.Welcome(version);
        EXPECT_FALSE(client.SupportsDirRecurse());
        EXPECT_FALSE(client.GetDirRecurse("Music"));
        EXPECT_EQ(client.mSent, "");
        EXPECT_EQ(client.GetState(), FTS_IDLE);
    }
}

TEST(Command, DirTakesItsPathFromTheListItEmpties) {
    RecordingClient client;
    cDeviceDirList list{"Music", {}};
    client.GetDir(list.mDir, &list);
    EXPECT_EQ(client.mSent, "<cmd dir>Path = \"User/Music\"</cmd>");
    client.Feed("<dir></dir>");
    EXPECT_EQ(list.mDir, "Music");
}

TEST(CommandDeathTest, DirNeedsAList) {
    EXPECT_DEATH(RecordingClient().GetDir("", nullptr),
                 "Shared/ClientProtocol:[0-9]+: failed assertion `zpDirList != NULL'");
}

TEST(CommandDeathTest, ConnectNeedsIdle) {
    EXPECT_DEATH(
        {
            RecordingClient client;
            client.Connect();
            client.Connect();
        },
        "Shared/ClientProtocol:[0-9]+: failed assertion `mState == FTS_IDLE'");
}

TEST(Command, ConnectionThatBreaksInsideSendEndsIt) {
    class BreakingClient : public RecordingClient {
    public:
        int Send(const char* zpData, int zLength) override {
            RecordingClient::Send(zpData, zLength);
            Reset();
            return zLength;
        }
    };

    BreakingClient client;
    cDeviceDirList list;
    client.GetDir("", &list);
    EXPECT_EQ(client.GetState(), FTS_IDLE);
}

struct FitCase {
    eCommand command;
    std::function<void(RecordingClient&, const std::string& path)> start;
};

TEST(CommandLength, LongerTextIsCutAndSaysSoBefore) {
    for (const CommandCase& command : Commands()) {
        RecordingClient client;
        client.Welcome("1.10");
        const std::string path(300, 'x');
        command.start(client, path);
        EXPECT_EQ(client.mSent, (command.before + path + command.after).substr(0, 255)) << command.name;
        EXPECT_EQ(client.GetState(), command.sent) << command.name;
    }
}

TEST(CommandLength, FitsUpTo255Bytes) {
    const std::vector<FitCase> cases{
        {eCommand::kDir, Commands()[0].start},
        {eCommand::kDirRecurse, Commands()[1].start},
        {eCommand::kMakeDir, Commands()[2].start},
        {eCommand::kDelete, Commands()[3].start},
    };
    for (const auto& [kind, start] : cases) {
        for (std::size_t length = 0; length < 300; ++length) {
            RecordingClient client;
            client.Welcome("1.10");
            const std::string path(length, 'x');
            start(client, path);
            EXPECT_EQ(client.CommandFits(kind, path), client.mSent.ends_with("\"</cmd>")) << length;
        }
    }
}

TEST(CommandLength, TransfersCountFolderAndName) {
    const RecordingClient client;
    const std::size_t download = std::string("<cmd download>Name = \"User//\"</cmd>").size();
    const std::size_t upload =
        std::string(R"(<cmd upload>Name = "User//" Length = "268435455"</cmd>)").size();
    for (const std::size_t split : {1U, 50U, 150U}) {
        const std::string folder(split, 'f');
        const auto fits = [&](eCommand command, std::size_t frame, std::size_t over) {
            return client.CommandFits(command, folder, std::string(255 - frame - split + over, 'n'));
        };
        EXPECT_TRUE(fits(eCommand::kDownload, download, 0));
        EXPECT_FALSE(fits(eCommand::kDownload, download, 1));
        EXPECT_TRUE(fits(eCommand::kUpload, upload, 0));
        EXPECT_FALSE(fits(eCommand::kUpload, upload, 1));
    }
    EXPECT_TRUE(client.CommandFits(eCommand::kDownload, "", std::string(256 - download, 'n')));
    EXPECT_FALSE(client.CommandFits(eCommand::kDownload, "", std::string(257 - download, 'n')));
}

TEST(CommandLength, APathEndsBeforeNoZeroByte) {
    const RecordingClient client;
    EXPECT_FALSE(client.CommandFits(eCommand::kDelete, std::string("Music\0x", 7)));
    EXPECT_FALSE(client.CommandFits(eCommand::kDownload, "Music", std::string("a\0b", 3)));
}

TEST(CommandLength, PercentSignsAreCountedAsTheyAre) {
    const RecordingClient client;
    const std::size_t frame = std::string("<cmd dir>Path = \"User/\"</cmd>").size();
    EXPECT_TRUE(client.CommandFits(eCommand::kDir, std::string(255 - frame, '%')));
    EXPECT_FALSE(client.CommandFits(eCommand::kDir, std::string(256 - frame, '%')));
}

} // namespace
