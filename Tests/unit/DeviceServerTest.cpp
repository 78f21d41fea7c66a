#include "FileServer.h"
#include "Hermetic.h"
#include "WaitFor.h"

#include <QtNetwork/QTcpSocket>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <memory>

namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr char kWelcome[] = "<welcome>Version = \"1.10\" ID = \"id\" Name = \"Test\"</welcome>";
constexpr char kEmptyDir[] = "<dir>Rights = \"---\"\n</dir>";

/// A plain TCP client that collects what the server says.
class Client {
public:
    explicit Client(quint16 port) {
        mSocket.connectToHost(QHostAddress::LocalHost, port);
        WaitFor([this] { return mSocket.state() == QAbstractSocket::ConnectedState; });
    }

    void Send(const std::string& bytes) {
        mSocket.write(bytes.data(), static_cast<qint64>(bytes.size()));
        mSocket.flush();
    }

    /// Waits for as many bytes as the expected text has and returns them.
    std::string Receive(std::size_t count) {
        WaitFor([&] { return mSocket.bytesAvailable() >= static_cast<qint64>(count); });
        return mSocket.read(static_cast<qint64>(count)).toStdString();
    }

    /// Everything up to the end of the text.
    std::string ReceiveUntil(const std::string& end) {
        std::string received;
        WaitFor([&] {
            received += mSocket.readAll().toStdString();
            return received.ends_with(end);
        });
        return received;
    }

    /// True when the server has ended the connection.
    bool IsDropped() {
        return WaitFor([this] { return mSocket.state() == QAbstractSocket::UnconnectedState; });
    }

    /// Asks for an empty listing: whatever the server had to do before, it has done when the reply is here.
    bool IsInStep() {
        Send("<cmd dir>Path = \"nowhere\"</cmd>");
        return Receive(sizeof kEmptyDir - 1) == kEmptyDir;
    }

    QTcpSocket& Socket() { return mSocket; }

private:
    QTcpSocket mSocket;
};

class DeviceServer : public ::testing::Test {
protected:
    DeviceServer() { Restart({"Test", "id", "1.10", "cd-"}); }

    void Restart(const DeviceIdentity& identity) {
        mServer.reset();
        mServer = std::make_unique<FileServer>(Service{
            FileTree(mFolder.Path()), identity, [this](const std::string& line) { mLog.push_back(line); }});
        ASSERT_EQ(mServer->Listen(QHostAddress::LocalHost, 0), "");
    }

    std::unique_ptr<Client> Connect() {
        auto client = std::make_unique<Client>(mServer->Port());
        EXPECT_EQ(client->ReceiveUntil("</welcome>"), kWelcome);
        return client;
    }

    bool Logged(const std::string& end) const {
        return std::ranges::any_of(mLog, [&](const std::string& line) { return line.ends_with(end); });
    }

    /// Names of everything in the folder, unfinished uploads included.
    std::vector<std::string> AllNames() const {
        std::vector<std::string> names;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(mFolder.Path())) {
            names.push_back(entry.path().lexically_relative(mFolder.Path()).string());
        }
        return names;
    }

    TestFolder mFolder;
    std::vector<std::string> mLog;
    std::unique_ptr<FileServer> mServer;
};

std::string UploadCommand(const std::string& path, std::size_t length) {
    return "<cmd upload>Name = \"" + path + "\" Length = \"" + std::to_string(length) + "\"</cmd>";
}

std::string DownloadCommand(const std::string& path) {
    return "<cmd download>Name = \"" + path + "\"</cmd>";
}

/// Bytes without a pattern that a misplaced piece could repeat.
std::string Noise(std::size_t size) {
    std::string bytes(size, '\0');
    std::uint32_t state = 1;
    for (char& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<char>(state >> 24U);
    }
    return bytes;
}

TEST_F(DeviceServer, GreetsAtOnce) {
    Connect();
}

TEST_F(DeviceServer, ListsAFolder) {
    mFolder.Write("Music/a.wav", "four");
    const std::unique_ptr<Client> client = Connect();
    client->Send("<cmd dir>Path = \"User/Music\"</cmd>");
    EXPECT_THAT(
        client->ReceiveUntil("</dir>"),
        ::testing::MatchesRegex("<dir>Rights = \"cd-\"\n<item Type = \"File\" Date = \"[-0-9: ]{16}\" "
                                "Size = \"4\" Rights = \"cd-\" Name = \"a.wav\">\n</dir>"));
}

TEST_F(DeviceServer, AnswersAnyDirSoThatNobodyWaitsForEver) {
    mFolder.Write("file", "x");
    const std::unique_ptr<Client> client = Connect();
    for (const char* path : {"User/none", "User/file", "User/..", "/etc", "", "User/a\"b"}) {
        client->Send("<cmd dir>Path = \"" + std::string(path) + "\"</cmd>");
        EXPECT_EQ(client->Receive(sizeof kEmptyDir - 1), kEmptyDir) << path;
    }
}

TEST_F(DeviceServer, LogsNamesThatNoListingCanCarry) {
    mFolder.Write("a<b", "x");
    const std::unique_ptr<Client> client = Connect();
    client->Send("<cmd dir>Path = \"User\"</cmd>");
    EXPECT_EQ(client->ReceiveUntil("</dir>"), "<dir>Rights = \"cd-\"\n</dir>");
    EXPECT_TRUE(Logged(" cannot be listed: a<b"));
}

TEST_F(DeviceServer, AddsUpATree) {
    mFolder.Write("Music/a.wav", "four");
    mFolder.Write("Music/Deep/b.wav", "seven77");
    const std::unique_ptr<Client> client = Connect();
    client->Send("<cmd dir_recurse>Path = \"User/Music\"</cmd>");
    EXPECT_EQ(client->ReceiveUntil("</dir_recurse>"),
              "<dir_recurse>Size = \"11\" NumFiles = \"2\"</dir_recurse>");
    client->Send("<cmd dir_recurse>Path = \"User/../x\"</cmd>");
    EXPECT_EQ(client->ReceiveUntil("</dir_recurse>"),
              "<dir_recurse>Size = \"0\" NumFiles = \"0\"</dir_recurse>");
}

TEST_F(DeviceServer, OldVersionsDoNotKnowDirRecurse) {
    Restart({"Old", "id", "1.09", "cd-"});
    Client client(mServer->Port());
    EXPECT_EQ(client.ReceiveUntil("</welcome>"),
              "<welcome>Version = \"1.09\" ID = \"id\" Name = \"Old\"</welcome>");
    client.Send("<cmd dir_recurse>Path = \"User\"</cmd>");
    EXPECT_TRUE(client.IsInStep());
    EXPECT_TRUE(Logged(" failed: not understood in this version"));
}

TEST_F(DeviceServer, MakesRenamesAndDeletesWithoutAWord) {
    mFolder.Write("note.txt", "x");
    const std::unique_ptr<Client> client = Connect();
    client->Send(
        "<cmd md>Path = \"User/New\"</cmd><cmd rename>From = \"User/note.txt\" To = \"User/New/n\"</cmd>");
    EXPECT_TRUE(client->IsInStep());
    EXPECT_EQ(mFolder.Read("New/n"), "x");
    client->Send("<cmd del>Path = \"User/New\"</cmd>");
    EXPECT_TRUE(client->IsInStep());
    EXPECT_THAT(AllNames(), IsEmpty());
}

TEST_F(DeviceServer, TheRightsBindTheServerToo) {
    mFolder.Write("note.txt", "old");
    Restart({"Test", "id", "1.10", "--r"});
    const std::unique_ptr<Client> client = Connect();
    client->Send("<cmd md>Path = \"User/New\"</cmd><cmd del>Path = \"User/note.txt\"</cmd>"
                 "<cmd rename>From = \"User/note.txt\" To = \"User/n\"</cmd>" +
                 UploadCommand("User/note.txt", 3) + "new" + UploadCommand("User/more.txt", 4) + "more");
    EXPECT_TRUE(client->IsInStep());
    EXPECT_THAT(AllNames(), ::testing::ElementsAre("note.txt"));
    EXPECT_EQ(mFolder.Read("note.txt"), "old");
    EXPECT_EQ(
        std::ranges::count_if(mLog, [](const std::string& line) { return line.ends_with("not allowed"); }),
        5);
}

TEST_F(DeviceServer, AnnouncesItsRights) {
    mFolder.Write("note.txt", "");
    Restart({"Test", "id", "1.10", "-dr"});
    const std::unique_ptr<Client> client = Connect();
    client->Send("<cmd dir>Path = \"User\"</cmd>");
    const std::string reply = client->ReceiveUntil("</dir>");
    EXPECT_THAT(reply, ::testing::StartsWith("<dir>Rights = \"-dr\"\n"));
    EXPECT_THAT(reply, HasSubstr("Rights = \"-dr\" Name = \"note.txt\""));
}

TEST_F(DeviceServer, SendsAFileAfterItsLength) {
    const std::string content = Noise(1000000);
    mFolder.Write("a.bin", content);
    const std::unique_ptr<Client> client = Connect();
    client->Send(DownloadCommand("User/a.bin"));
    EXPECT_EQ(client->Receive(4), std::string("\x40\x42\x0f\0", 4));
    EXPECT_TRUE(client->Receive(content.size()) == content);
    EXPECT_TRUE(client->IsInStep());
    EXPECT_TRUE(Logged(" sent 1000000 bytes"));
}

TEST_F(DeviceServer, WhatCannotBeSentHasLengthZero) {
    mFolder.Write("empty", "");
    mFolder.Write("folder/a", "x");
    ASSERT_EQ(::mkfifo((mFolder / "pipe").c_str(), 0600), 0);
    fs::resize_file(mFolder.Write("huge", ""), 4294967297);
    fs::create_symlink("/etc/hostname", mFolder / "out");
    const std::unique_ptr<Client> client = Connect();
    for (const char* name : {"none", "empty", "folder", "pipe", "huge", "out", "../x", ""}) {
        client->Send(DownloadCommand(std::string("User/") + name));
        EXPECT_EQ(client->Receive(4), std::string(4, '\0')) << name;
    }
    EXPECT_TRUE(client->IsInStep());
}

TEST_F(DeviceServer, UploadComesBackAsItWas) {
    const std::string content = Noise(3000000);
    const std::unique_ptr<Client> client = Connect();
    client->Send(UploadCommand("User/Deep/er/new.bin", content.size()) + content);
    client->Send(DownloadCommand("User/Deep/er/new.bin"));
    EXPECT_EQ(client->Receive(4), FormatLengthPrefix(3000000));
    EXPECT_TRUE(client->Receive(content.size()) == content);
    EXPECT_THAT(AllNames(), ::testing::UnorderedElementsAre("Deep", "Deep/er", "Deep/er/new.bin"));
    EXPECT_TRUE(Logged(" stored"));
}

TEST_F(DeviceServer, ABodyMayLookLikeACommand) {
    mFolder.Write("keep", "x");
    const std::string body = "<cmd del>Path = \"User/keep\"</cmd>";
    const std::unique_ptr<Client> client = Connect();
    client->Send(UploadCommand("User/trap", body.size()) + body);
    EXPECT_TRUE(client->IsInStep());
    EXPECT_EQ(mFolder.Read("trap"), body);
    EXPECT_EQ(mFolder.Read("keep"), "x");
}

TEST_F(DeviceServer, UploadReplacesAFileOnlyWhenWhole) {
    mFolder.Write("a.txt", "old");
    const std::unique_ptr<Client> client = Connect();
    client->Send(UploadCommand("User/a.txt", 10) + "12345");
    EXPECT_TRUE(WaitFor([&] { return AllNames().size() == 2; }));
    EXPECT_EQ(mFolder.Read("a.txt"), "old");
    client->Send("67890");
    EXPECT_TRUE(client->IsInStep());
    EXPECT_EQ(mFolder.Read("a.txt"), "1234567890");
    EXPECT_EQ(AllNames().size(), 1U);
}

TEST_F(DeviceServer, AnUnfinishedUploadIsNotListed) {
    const std::unique_ptr<Client> client = Connect();
    const std::unique_ptr<Client> other = Connect();
    client->Send(UploadCommand("User/a.txt", 10) + "12345");
    EXPECT_TRUE(WaitFor([&] { return AllNames().size() == 1; }));
    other->Send("<cmd dir>Path = \"User\"</cmd>");
    EXPECT_EQ(other->ReceiveUntil("</dir>"), "<dir>Rights = \"cd-\"\n</dir>");
}

TEST_F(DeviceServer, InterruptedUploadLeavesNothing) {
    mFolder.Write("a.txt", "old");
    const std::unique_ptr<Client> client = Connect();
    client->Send(UploadCommand("User/a.txt", 10) + "12345");
    EXPECT_TRUE(WaitFor([&] { return AllNames().size() == 2; }));
    client->Socket().abort();
    EXPECT_TRUE(WaitFor([&] { return Logged(" disconnected"); }));
    EXPECT_TRUE(Logged(" failed: upload broken off"));
    EXPECT_THAT(AllNames(), ::testing::ElementsAre("a.txt"));
    EXPECT_EQ(mFolder.Read("a.txt"), "old");
}

TEST_F(DeviceServer, InterruptedUploadLeavesNoNewFolders) {
    std::unique_ptr<Client> client = Connect();
    client->Send(UploadCommand("User/new/folder/a.txt", 10) + "12345");
    EXPECT_TRUE(WaitFor([&] { return !AllNames().empty(); }));
    client->Socket().disconnectFromHost();
    EXPECT_TRUE(WaitFor([&] { return Logged(" disconnected"); }));
    EXPECT_THAT(AllNames(), IsEmpty());
}

TEST_F(DeviceServer, AWholeUploadIsKeptWhenItsClientLeavesAtOnce) {
    const std::string content = Noise(3000000);
    const std::unique_ptr<Client> client = Connect();
    client->Send(UploadCommand("User/a.bin", content.size()) + content);
    client->Socket().disconnectFromHost();
    EXPECT_TRUE(WaitFor([&] { return Logged(" disconnected"); }));
    EXPECT_TRUE(mFolder.Read("a.bin") == content);
}

TEST_F(DeviceServer, TheServersEndLeavesNoHalfUploads) {
    const std::unique_ptr<Client> client = Connect();
    client->Send(UploadCommand("User/a.txt", 10) + "12345");
    EXPECT_TRUE(WaitFor([&] { return !AllNames().empty(); }));
    mServer.reset();
    EXPECT_THAT(AllNames(), IsEmpty());
    EXPECT_TRUE(client->IsDropped());
}

TEST_F(DeviceServer, RefusedUploadsAreReadToTheirEnd) {
    mFolder.Write("folder/a", "x");
    mFolder.Write("file", "x");
    const std::unique_ptr<Client> client = Connect();
    for (const char* path :
         {"User/../out.txt", "User/folder", "User", "User/a<b", "nowhere", "User/file/below"}) {
        client->Send(UploadCommand(path, 300000) + Noise(300000));
        EXPECT_TRUE(client->IsInStep()) << path;
    }
    EXPECT_THAT(AllNames(), ::testing::UnorderedElementsAre("folder", "folder/a", "file"));
    EXPECT_FALSE(fs::exists(mFolder.Path().parent_path() / "out.txt"));
}

class AbsurdLength : public DeviceServer, public ::testing::WithParamInterface<std::string> {};

TEST_P(AbsurdLength, EndsTheConnection) {
    const std::unique_ptr<Client> client = Connect();
    client->Send("<cmd upload>Name = \"User/a\" Length = \"" + GetParam() + "\"</cmd>");
    EXPECT_TRUE(client->IsDropped());
    EXPECT_TRUE(Logged(" failed: no possible length of an upload, connection dropped"));
    EXPECT_THAT(AllNames(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Lengths, AbsurdLength,
                         ::testing::Values("0", "-1", "268435456", "99999999999999999999", "ten", ""));

TEST_F(DeviceServer, TheLongestUploadIsAccepted) {
    const std::unique_ptr<Client> client = Connect();
    client->Send(UploadCommand("User/a", 268435455) + "x");
    EXPECT_TRUE(WaitFor([&] { return !AllNames().empty(); }));
    EXPECT_EQ(client->Socket().state(), QAbstractSocket::ConnectedState);
}

TEST_F(DeviceServer, CommandsComeInAnyPieces) {
    const std::unique_ptr<Client> client = Connect();
    const std::string commands = "<cmd md>Path = \"User/a\"</cmd>\r\n" + UploadCommand("User/a/b", 3) +
                                 "123" + DownloadCommand("User/a/b");
    for (const char byte : commands) {
        client->Send(std::string(1, byte));
        RunLoopPasses(2);
    }
    EXPECT_EQ(client->Receive(7), FormatLengthPrefix(3) + "123");
}

TEST_F(DeviceServer, ManyCommandsInOnePacketAreAnsweredInOrder) {
    mFolder.Write("a", "AAA");
    mFolder.Write("b", "BBB");
    const std::unique_ptr<Client> client = Connect();
    client->Send("<cmd dir>Path = \"x\"</cmd>" + DownloadCommand("User/a") + DownloadCommand("User/none") +
                 DownloadCommand("User/b") + "<cmd dir_recurse>Path = \"User\"</cmd>");
    EXPECT_EQ(client->ReceiveUntil("</dir_recurse>"),
              kEmptyDir + FormatLengthPrefix(3) + "AAA" + FormatLengthPrefix(0) + FormatLengthPrefix(3) +
                  "BBB" + "<dir_recurse>Size = \"6\" NumFiles = \"2\"</dir_recurse>");
}

TEST_F(DeviceServer, CommandsDuringADownloadWaitForItsEnd) {
    const std::string content = Noise(2000000);
    mFolder.Write("a", content);
    const std::unique_ptr<Client> client = Connect();
    client->Send(DownloadCommand("User/a") + "<cmd del>Path = \"User/a\"</cmd>" + DownloadCommand("User/a"));
    EXPECT_TRUE(client->Receive(4 + content.size()).substr(4) == content);
    EXPECT_EQ(client->Receive(4), FormatLengthPrefix(0));
}

TEST_F(DeviceServer, SurvivesGarbage) {
    const std::unique_ptr<Client> client = Connect();
    client->Send("GET / HTTP/1.1\r\n\r\n" + std::string(1, '\0') + Noise(500000));
    client->Send("<cmd format>Path = \"User\"</cmd><cmd dir></cmd></cmd>");
    EXPECT_TRUE(client->IsInStep());
    const auto isComplaint = [](const std::string& line) {
        return line.ends_with("outside of a command, ignored");
    };
    EXPECT_EQ(std::ranges::count_if(mLog, isComplaint), 1);
    EXPECT_TRUE(Logged(" <cmd format>Path = \"User\"</cmd>"));
    EXPECT_TRUE(Logged(" failed: not understood"));
}

TEST_F(DeviceServer, CommandWithoutAnEndIsDropped) {
    const std::unique_ptr<Client> client = Connect();
    client->Send("<cmd dir>Path = \"" + std::string(kMaxCommandLength, 'x'));
    EXPECT_TRUE(client->IsDropped());
    EXPECT_TRUE(Logged(" failed: command without an end, connection dropped"));
}

TEST_F(DeviceServer, HalfACommandAndGoneHarmsNobody) {
    std::unique_ptr<Client> client = Connect();
    client->Send("<cmd del>Path = \"User/");
    client.reset();
    EXPECT_TRUE(WaitFor([&] { return Logged(" disconnected"); }));
    EXPECT_TRUE(Connect()->IsInStep());
}

TEST_F(DeviceServer, AClientGoneInMidDownloadHarmsNobody) {
    fs::resize_file(mFolder.Write("big", ""), 1073741824);
    std::unique_ptr<Client> client = Connect();
    client->Send(DownloadCommand("User/big"));
    EXPECT_EQ(client->Receive(4), FormatLengthPrefix(1073741824));
    client->Socket().abort();
    EXPECT_TRUE(WaitFor([&] { return Logged(" disconnected"); }));
    EXPECT_TRUE(Logged(" failed: download broken off"));
    EXPECT_TRUE(Connect()->IsInStep());
}

TEST_F(DeviceServer, AFileThatShrinksEndsTheConnection) {
    const std::string big = mFolder.Write("big", "");
    fs::resize_file(big, 1073741824);
    const std::unique_ptr<Client> client = Connect();
    client->Socket().setReadBufferSize(65536);
    client->Send(DownloadCommand("User/big"));
    EXPECT_EQ(client->Receive(4), FormatLengthPrefix(1073741824));
    fs::resize_file(big, 1000);
    EXPECT_TRUE(WaitFor([&] {
        client->Socket().readAll();
        return client->Socket().state() == QAbstractSocket::UnconnectedState;
    }));
    EXPECT_TRUE(Logged(" failed: the file has become shorter than announced, connection dropped"));
}

long PeakMemoryKiB() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

// Far below the file's size, far above what a sanitizer keeps of freed memory.
constexpr long kFlatKiB = 400L * 1024;

TEST_F(DeviceServer, AGibibyteGoesOutInFlatMemory) {
    constexpr qint64 kSize = 1073741824;
    fs::resize_file(mFolder.Write("big", ""), kSize);
    const std::unique_ptr<Client> client = Connect();
    client->Socket().setReadBufferSize(262144);
    const long before = PeakMemoryKiB();
    client->Send(DownloadCommand("User/big"));
    EXPECT_EQ(client->Receive(4), FormatLengthPrefix(kSize));
    qint64 received = 0;
    EXPECT_TRUE(WaitFor(
        [&] {
            received += client->Socket().readAll().size();
            return received >= kSize;
        },
        std::chrono::seconds(100)));
    EXPECT_EQ(received, kSize);
    EXPECT_LT(PeakMemoryKiB() - before, kFlatKiB);
    EXPECT_TRUE(client->IsInStep());
}

TEST_F(DeviceServer, TheLongestUploadComesInInFlatMemory) {
    constexpr qint64 kSize = 268435455;
    const QByteArray slice(131072, 'u');
    const std::unique_ptr<Client> client = Connect();
    const long before = PeakMemoryKiB();
    client->Send(UploadCommand("User/big", kSize));
    qint64 sent = 0;
    EXPECT_TRUE(WaitFor(
        [&] {
            while (sent < kSize && client->Socket().bytesToWrite() < slice.size()) {
                sent +=
                    client->Socket().write(slice.constData(), std::min<qint64>(slice.size(), kSize - sent));
            }
            return Logged(" stored");
        },
        std::chrono::seconds(100)));
    EXPECT_EQ(fs::file_size(mFolder / "big"), static_cast<std::uintmax_t>(kSize));
    EXPECT_LT(PeakMemoryKiB() - before, kFlatKiB);
}

TEST_F(DeviceServer, WhoNeverReadsCostsNoMemory) {
    for (int i = 0; i < 2000; ++i) {
        mFolder.Write("folder/" + std::string(100, 'n') + std::to_string(i), "");
    }
    const std::unique_ptr<Client> client = Connect();
    client->Socket().setReadBufferSize(1);
    std::string commands;
    for (int i = 0; i < 3000; ++i) {
        commands += "<cmd dir>Path = \"User/folder\"</cmd>";
    }
    // All replies together would be more than 1 GiB.
    client->Send(commands);
    const auto others = Connect();
    EXPECT_TRUE(others->IsInStep());
    const auto isCommand = [](const std::string& line) { return line.ends_with("User/folder\"</cmd>"); };
    EXPECT_TRUE(WaitFor([&] { return std::ranges::any_of(mLog, isCommand); }));
    RunLoopPasses(1000);
    EXPECT_LT(std::ranges::count_if(mLog, isCommand), 100);
    EXPECT_TRUE(others->IsInStep());
}

TEST_F(DeviceServer, WhatIsSentDuringADownloadWaitsWithTheClient) {
    constexpr qint64 kFlood = 67108864;
    fs::resize_file(mFolder.Write("big", ""), 1073741824);
    const std::unique_ptr<Client> client = Connect();
    client->Socket().setReadBufferSize(4096);
    client->Send(DownloadCommand("User/big"));
    client->Send(std::string(kFlood, 'x'));
    RunLoopPasses(5000);
    // What has gone is in the system's buffers, which are smaller by far.
    EXPECT_GT(client->Socket().bytesToWrite(), kFlood / 2);
}

TEST_F(DeviceServer, ServesSeveralClientsAtOnce) {
    fs::resize_file(mFolder.Write("big", ""), 1073741824);
    const std::unique_ptr<Client> slow = Connect();
    slow->Socket().setReadBufferSize(4096);
    slow->Send(DownloadCommand("User/big"));
    const std::unique_ptr<Client> uploader = Connect();
    uploader->Send(UploadCommand("User/up", 10) + "12345");
    const std::unique_ptr<Client> third = Connect();
    EXPECT_TRUE(third->IsInStep());
    uploader->Send("67890");
    EXPECT_TRUE(uploader->IsInStep());
    EXPECT_EQ(mFolder.Read("up"), "1234567890");
    EXPECT_EQ(slow->Receive(4), FormatLengthPrefix(1073741824));
}

TEST_F(DeviceServer, TooManyClientsAreRefusedUntilOneLeaves) {
    std::vector<std::unique_ptr<Client>> clients;
    for (int i = 0; i < 100; ++i) {
        clients.push_back(Connect());
    }
    Client surplus(mServer->Port());
    EXPECT_TRUE(surplus.IsDropped());
    EXPECT_THAT(mLog, Contains("too many clients, one refused"));
    clients.pop_back();
    EXPECT_TRUE(WaitFor([&] { return Logged(" disconnected"); }));
    RunLoopPasses(3);
    EXPECT_TRUE(Connect()->IsInStep());
}

TEST_F(DeviceServer, LogsEachCommandOnOneLine) {
    const std::unique_ptr<Client> client = Connect();
    client->Send("<cmd md>Path = \"User/a\nb\x1b\"</cmd>");
    EXPECT_TRUE(client->IsInStep());
    const std::string peer = "127.0.0.1:" + std::to_string(client->Socket().localPort());
    EXPECT_THAT(mLog, Contains(peer + " connected"));
    EXPECT_THAT(mLog, Contains(peer + " <cmd md>Path = \"User/a\\x0ab\\x1b\"</cmd>"));
    EXPECT_THAT(mLog, Not(Contains(HasSubstr("\n"))));
}

TEST_F(DeviceServer, SaysWhereItListens) {
    EXPECT_EQ(mServer->Endpoint(), "127.0.0.1:" + std::to_string(mServer->Port()));
    FileServer six({FileTree(mFolder.Path()), {}, [](const std::string&) {}});
    if (six.Listen(QHostAddress("::1"), 0).empty()) {
        EXPECT_EQ(six.Endpoint(), "[::1]:" + std::to_string(six.Port()));
    }
    FileServer second({FileTree(mFolder.Path()), {}, [](const std::string&) {}});
    EXPECT_NE(second.Listen(QHostAddress::LocalHost, mServer->Port()), "");
}

} // namespace
