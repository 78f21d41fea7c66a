// What docs/protocol.md shows byte by byte is what the client says and understands.

#include "Hermetic.h"
#include "RecordingClient.h"
#include "WireExamples.h"

#include <gmock/gmock.h>

#include <functional>
#include <set>

namespace {

using ::testing::HasSubstr;
using eCommand = cClientProtocol::eCommand;

/// Begins the operation of an example, hears the reply, and tells what came of it.
using tPlay = std::function<std::string(RecordingClient&, const TestFolder&, const std::string& received)>;

struct ExampleCase {
    std::string name;
    tPlay play;
    std::string outcome;
};

std::string Listing(RecordingClient& client, const std::string& folder, const std::string& received) {
    cDeviceDirList list;
    client.GetDir(folder, &list);
    client.Feed(received);
    return Describe(list) + "rights " + std::to_string(client.GetDirRights());
}

std::string Downloaded(RecordingClient& client, const TestFolder& folder, const std::string& name,
                       const std::string& received) {
    EXPECT_EQ(client.Download(folder / name, "", name), "");
    client.Feed(received);
    return std::filesystem::exists(folder / name) ? "holds " + folder.Read(name) : "no file";
}

std::string PlayWelcome(RecordingClient& client, const TestFolder& /*folder*/, const std::string& received) {
    client.Connect();
    client.Feed(received);
    return client.GetDeviceName() + "|" + client.GetVersionStr() + "|" + client.GetDeviceID();
}

std::string PlayDirRecurse(RecordingClient& client, const TestFolder& /*folder*/,
                           const std::string& received) {
    client.Welcome("1.10");
    EXPECT_TRUE(client.GetDirRecurse("Music"));
    client.Feed(received);
    return std::to_string(client.GetDirRecurseSize()) + "|" + std::to_string(client.GetDirRecurseNumFiles());
}

std::string PlayUpload(RecordingClient& client, const TestFolder& folder, const std::string& /*received*/) {
    EXPECT_EQ(client.Upload(folder.Write("note.txt", "Bonjour"), "Music", "note.txt"), "");
    client.Update();
    return "";
}

const std::vector<ExampleCase>& Cases() {
    static const std::vector<ExampleCase> cases{
        {"welcome", PlayWelcome, "Field recorder|1.10|5f0c1d2e3a4b5968"},
        {"dir", [](auto& client, auto&, auto& received) { return Listing(client, "Music", received); },
         "Live|2024-05-01 17:30|dir|1|3\nÉté.wav|2024-05-02 08:05|file|44|3\nrights 3"},
        {"dir-refused",
         [](auto& client, auto&, auto& received) { return Listing(client, "Nowhere", received); },
         "rights 0"},
        {"dir_recurse", PlayDirRecurse, "44|1"},
        {"md", [](auto& client, auto&, auto&) { return client.MakeDir("Music/New folder"), ""; }, ""},
        {"del", [](auto& client, auto&, auto&) { return client.Delete("Music/Live"), ""; }, ""},
        {"rename",
         [](auto& client, auto&, auto&) { return client.Rename("hello.txt", "Music/hello.txt"), ""; }, ""},
        {"download",
         [](auto& client, auto& folder, auto& received) {
             return Downloaded(client, folder, "hello.txt", received);
         },
         "holds Hello"},
        {"download-nothing",
         [](auto& client, auto& folder, auto& received) {
             return Downloaded(client, folder, "empty.txt", received);
         },
         "no file"},
        {"upload", PlayUpload, ""},
    };
    return cases;
}

TEST(DocumentedClient, SaysAndUnderstandsTheExamples) {
    for (const ExampleCase& example : Cases()) {
        SCOPED_TRACE(example.name);
        const WireExample& bytes = WireExamples().at(example.name);
        const TestFolder folder;
        RecordingClient client;
        EXPECT_EQ(example.play(client, folder, bytes.received), example.outcome);
        EXPECT_EQ(client.mSent, bytes.sent);
        EXPECT_EQ(client.GetState(), FTS_IDLE);
    }
}

TEST(DocumentedClient, KnowsEveryExample) {
    std::set<std::string> known{"announcement"}; // which is no matter of the client's
    std::set<std::string> documented;
    for (const ExampleCase& example : Cases()) {
        known.insert(example.name);
    }
    for (const auto& [name, example] : WireExamples()) {
        documented.insert(name);
    }
    EXPECT_EQ(documented, known);
}

struct PathLimit {
    eCommand command;
    std::size_t bytes;
    const char* told; ///< by the user guide, behind the number
};

/// Whether a command takes a path of so many bytes, folder and slash included.
bool Fits(eCommand command, std::size_t length) {
    const RecordingClient client;
    const std::string name(length - 2, 'n');
    const bool isTransfer = command == eCommand::kDownload || command == eCommand::kUpload;
    return isTransfer ? client.CommandFits(command, "f", name) : client.CommandFits(command, "f/" + name);
}

TEST(DocumentedClient, TakesPathsAsLongAsTheUserGuideTells) {
    const std::string guide = ReadDocument("user-guide.md");
    for (const PathLimit& limit : std::vector<PathLimit>{{eCommand::kDir, 226, " bytes to open or delete"},
                                                         {eCommand::kDelete, 226, " bytes to open or delete"},
                                                         {eCommand::kMakeDir, 227, " to create a folder"},
                                                         {eCommand::kDownload, 221, " to download a file"},
                                                         {eCommand::kUpload, 202, " to upload one"}}) {
        EXPECT_TRUE(Fits(limit.command, limit.bytes)) << limit.told;
        EXPECT_FALSE(Fits(limit.command, limit.bytes + 1)) << limit.told;
        EXPECT_THAT(guide, HasSubstr(std::to_string(limit.bytes) + limit.told));
    }
}

} // namespace
