// What docs/protocol.md shows byte by byte is what the device server hears and says.

#include "Announcer.h"
#include "FileServer.h"
#include "Hermetic.h"
#include "WaitFor.h"
#include "WireExamples.h"

#include <QtNetwork/QTcpSocket>
#include <gmock/gmock.h>

#include <algorithm>
#include <ctime>
#include <functional>
#include <set>

namespace {

namespace fs = std::filesystem;

/// A day of May 2024 in the time zone of this computer, which is the one that a listing shows.
fs::file_time_type DateInMay(int day, int hour, int minute) {
    std::tm parts{};
    parts.tm_year = 124;
    parts.tm_mon = 4;
    parts.tm_mday = day;
    parts.tm_hour = hour;
    parts.tm_min = minute;
    parts.tm_isdst = -1;
    const auto time = std::chrono::system_clock::from_time_t(std::mktime(&parts));
    return std::chrono::file_clock::from_sys(std::chrono::time_point_cast<std::chrono::seconds>(time));
}

/// The device of the examples, and a connection to it.
class DocumentedDevice : public ::testing::Test {
protected:
    DocumentedDevice()
        : mServer(Service{FileTree(MakeFiles()),
                          {"Field recorder", "5f0c1d2e3a4b5968", "1.10", "cd-"},
                          [](const std::string&) {}}) {
        EXPECT_EQ(mServer.Listen(QHostAddress::LocalHost, 0), "");
        mSocket.connectToHost(QHostAddress::LocalHost, mServer.Port());
    }

    const fs::path& MakeFiles() {
        for (const auto& [path, content] : ExampleFiles()) {
            mFolder.Write(path, content);
        }
        fs::create_directory(mFolder / "Music/Live");
        fs::last_write_time(mFolder / "Music/Live", DateInMay(1, 17, 30));
        fs::last_write_time(mFolder / "Music/Été.wav", DateInMay(2, 8, 5));
        return mFolder.Path();
    }

    std::string Receive(std::size_t count) {
        const auto wanted = static_cast<qint64>(count);
        WaitFor([&] { return mSocket.bytesAvailable() >= wanted; });
        return mSocket.read(wanted).toStdString();
    }

    /// Sends what an example shows and expects what it shows in return, with nothing around it.
    void Play(const std::string& name) {
        const WireExample& example = WireExamples().at(name);
        const WireExample& next = WireExamples().at("dir-refused");
        const std::string sent = example.sent + next.sent;
        mSocket.write(sent.data(), static_cast<qint64>(sent.size()));
        EXPECT_EQ(Receive(example.received.size()), example.received);
        EXPECT_EQ(Receive(next.received.size()), next.received) << "after " << name;
    }

    TestFolder mFolder;
    FileServer mServer;
    QTcpSocket mSocket;
};

struct EffectCase {
    std::string name;
    std::function<bool(const TestFolder&)> holds; ///< what the example has done to the folder
};

void PrintTo(const EffectCase& example, std::ostream* out) {
    *out << example.name;
}

const std::vector<EffectCase>& Cases() {
    static const std::vector<EffectCase> cases{
        {"welcome", [](auto&) { return true; }},
        {"dir", [](auto&) { return true; }},
        {"dir-refused", [](auto&) { return true; }},
        {"dir_recurse", [](auto&) { return true; }},
        {"md", [](auto& folder) { return fs::is_directory(folder / "Music/New folder"); }},
        {"del", [](auto& folder) { return !fs::exists(folder / "Music/Live"); }},
        {"rename",
         [](auto& folder) {
             return !fs::exists(folder / "hello.txt") && folder.Read("Music/hello.txt") == "Hello";
         }},
        {"download", [](auto& folder) { return folder.Read("hello.txt") == "Hello"; }},
        {"download-nothing", [](auto& folder) { return fs::exists(folder / "empty.txt"); }},
        {"upload", [](auto& folder) { return folder.Read("Music/note.txt") == "Bonjour"; }},
    };
    return cases;
}

class DocumentedExchange : public DocumentedDevice, public ::testing::WithParamInterface<EffectCase> {};

TEST_P(DocumentedExchange, IsHeardAndAnswered) {
    const std::string welcome = WireExamples().at("welcome").received;
    EXPECT_EQ(Receive(welcome.size()), welcome);
    if (GetParam().name != "welcome") {
        Play(GetParam().name);
    }
    EXPECT_TRUE(GetParam().holds(mFolder));
}

INSTANTIATE_TEST_SUITE_P(Examples, DocumentedExchange, ::testing::ValuesIn(Cases()), [](const auto& info) {
    std::string name = info.param.name;
    std::ranges::replace(name, '-', '_');
    return name;
});

TEST(DocumentedAnnouncement, IsWhatADeviceTells) {
    EXPECT_EQ(FormatAnnouncement("Field recorder", 10240), WireExamples().at("announcement").received);
}

TEST(DocumentedAnnouncement, AndEveryOtherExampleArePlayed) {
    std::set<std::string> known{"announcement"};
    std::set<std::string> documented;
    for (const EffectCase& example : Cases()) {
        known.insert(example.name);
    }
    for (const auto& [name, example] : WireExamples()) {
        documented.insert(name);
    }
    EXPECT_EQ(documented, known);
}

} // namespace
