#include "Hermetic.h"
#include "WaitFor.h"

#include <QtCore/QProcess>
#include <QtNetwork/QHostAddress>
#include <QtNetwork/QTcpSocket>
#include <gmock/gmock.h>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <csignal>

namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

/// The installed program in a process of its own.
class DeviceProgram : public ::testing::Test {
protected:
    ~DeviceProgram() override {
        mProcess.kill();
        mProcess.waitForFinished();
    }

    void Start(const QStringList& arguments) { mProcess.start(QUILLBOX_DEVICE_PROGRAM, arguments); }

    int Status() {
        EXPECT_TRUE(WaitFor([this] { return mProcess.state() == QProcess::NotRunning; }));
        EXPECT_EQ(mProcess.exitStatus(), QProcess::NormalExit);
        return mProcess.exitCode();
    }

    /// Starts it on a port of the system's choice and returns the port that it names.
    quint16 Serve() {
        Start({"--root", Root(), "--port", "0", "--name", "Program"});
        EXPECT_TRUE(WaitFor([this] { return mProcess.canReadLine(); }));
        const QByteArray line = mProcess.readLine();
        EXPECT_THAT(line.toStdString(), ::testing::MatchesRegex("listening on 127\\.0\\.0\\.1:[0-9]+\n"));
        return line.trimmed().split(':').last().toUShort();
    }

    QString Root() const { return QString::fromStdString(mFolder.Path().string()); }

    TestFolder mFolder;
    QProcess mProcess;
};

TEST_F(DeviceProgram, SaysWhereItListensAndServes) {
    QTcpSocket client;
    client.connectToHost(QHostAddress::LocalHost, Serve());
    EXPECT_TRUE(WaitFor([&] { return client.peek(1000).endsWith("</welcome>"); }));
    EXPECT_THAT(client.readAll().toStdString(), HasSubstr("Name = \"Program\"</welcome>"));
    client.write("<cmd dir>Path = \"User/\"</cmd>");
    EXPECT_TRUE(WaitFor([&] { return client.peek(1000).endsWith("</dir>"); }));
    EXPECT_TRUE(
        WaitFor([this] { return mProcess.peek(1000).contains("<cmd dir>Path = \"User/\"</cmd>\n"); }));
}

TEST_F(DeviceProgram, SignalsEndItInPeace) {
    for (const int signal : {SIGTERM, SIGINT}) {
        Serve();
        ASSERT_EQ(::kill(static_cast<pid_t>(mProcess.processId()), signal), 0);
        EXPECT_EQ(Status(), 0);
        mProcess.readAll();
    }
}

TEST_F(DeviceProgram, AClosedLogIsNoReasonToEnd) {
    std::array<int, 2> log{};
    ASSERT_EQ(::pipe2(log.data(), O_CLOEXEC), 0);
    mProcess.setChildProcessModifier([&log] { ::dup2(log[1], STDOUT_FILENO); });
    Start({"--root", Root(), "--port", "0"});
    std::array<char, 100> line{};
    const ssize_t length = ::read(log[0], line.data(), line.size());
    ::close(log[0]);
    ::close(log[1]);
    ASSERT_GT(length, 0);
    const quint16 port = QByteArray(line.data(), length).trimmed().split(':').last().toUShort();
    for (int i = 0; i < 3; ++i) {
        QTcpSocket client;
        client.connectToHost(QHostAddress::LocalHost, port);
        EXPECT_TRUE(WaitFor([&] { return client.peek(1000).endsWith("</welcome>"); }));
    }
}

TEST_F(DeviceProgram, HelpGoesToStandardOutput) {
    Start({"--help"});
    EXPECT_EQ(Status(), 0);
    EXPECT_THAT(mProcess.readAllStandardOutput().toStdString(), HasSubstr("--protocol-version"));
}

TEST_F(DeviceProgram, BadOptionsEndItWithStatusTwo) {
    Start({"--root", "/dev/null"});
    EXPECT_EQ(Status(), 2);
    EXPECT_EQ(mProcess.readAllStandardError().toStdString(),
              "quillbox-device: --root is no folder: /dev/null\n");
    EXPECT_EQ(mProcess.readAllStandardOutput().toStdString(), "");
}

TEST_F(DeviceProgram, ATakenPortEndsItWithStatusOne) {
    const quint16 port = Serve();
    QProcess second;
    second.start(QUILLBOX_DEVICE_PROGRAM, {"--root", Root(), "--port", QString::number(port)});
    EXPECT_TRUE(WaitFor([&] { return second.state() == QProcess::NotRunning; }));
    EXPECT_EQ(second.exitCode(), 1);
    EXPECT_THAT(second.readAllStandardError().toStdString(),
                StartsWith("quillbox-device: cannot listen on 127.0.0.1: "));
}

} // namespace
