#include "Announcer.h"
#include "Hermetic.h"
#include "WaitFor.h"

#include <QtCore/QProcess>
#include <QtNetwork/QNetworkDatagram>
#include <QtNetwork/QNetworkInterface>
#include <gmock/gmock.h>

#include <cstdlib>
#include <set>

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::SizeIs;
using ::testing::StartsWith;

constexpr char kText[] = "Été 2:FileServer:10240;";
constexpr std::chrono::hours kOnce{1};
constexpr std::chrono::milliseconds kOften{10};
constexpr std::chrono::milliseconds kManyPeriods{200};

/// A program that waits for announcements, to an address of this machine or to the group.
class Listener {
public:
    explicit Listener(const char* address, quint16 port = 0) {
        EXPECT_TRUE(mSocket.bind(QHostAddress(address), port, QUdpSocket::ShareAddress));
        if (QHostAddress(address).isMulticast()) {
            for (const QNetworkInterface& interface : QNetworkInterface::allInterfaces()) {
                EXPECT_TRUE(mSocket.joinMulticastGroup(QHostAddress(address), interface));
            }
        }
    }

    quint16 Port() const { return mSocket.localPort(); }

    bool HasHeard() const { return mSocket.hasPendingDatagrams(); }

    /// The next announcement; waits for it.
    std::string Hear() {
        EXPECT_TRUE(WaitFor([this] { return HasHeard(); }));
        return mSocket.receiveDatagram().data().toStdString();
    }

    /// Adds the senders of what has come so far.
    void AddSenders(std::set<std::string>& senders) {
        while (HasHeard()) {
            senders.insert(mSocket.receiveDatagram().senderAddress().toString().toStdString());
        }
    }

    void Forget() {
        while (HasHeard()) {
            mSocket.receiveDatagram();
        }
    }

private:
    QUdpSocket mSocket;
};

/// Runs a command of the system's network tools; tests have a network of their own.
bool RunIp(const std::string& words) {
    return std::system(("PATH=$PATH:/usr/sbin:/sbin ip " + words + " 2>/dev/null").c_str()) == 0;
}

class AnnouncerTest : public ::testing::Test {
protected:
    LogSink Log() {
        return [this](const std::string& line) { mLog.push_back(line); };
    }

    std::vector<std::string> mLog;
};

TEST(AnnouncementText, IsExact) {
    EXPECT_EQ(FormatAnnouncement("Été 2", 10240), kText);
}

TEST_F(AnnouncerTest, TellsTheGroupAtOnce) {
    Listener listener(kAnnouncementGroup);
    const Announcer announcer(kText, {true, "", listener.Port(), kOnce}, Log());
    EXPECT_EQ(listener.Hear(), kText);
    EXPECT_THAT(mLog, IsEmpty());
}

TEST_F(AnnouncerTest, TellsItAgainWithEveryPeriod) {
    Listener listener(kAnnouncementGroup);
    const Announcer announcer(kText, {true, "", listener.Port(), kOften}, Log());
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(listener.Hear(), kText);
    }
}

TEST_F(AnnouncerTest, EndsWithTheObject) {
    Listener listener(kAnnouncementGroup);
    {
        const Announcer announcer(kText, {true, "", listener.Port(), kOften}, Log());
        listener.Hear();
    }
    EXPECT_TRUE(WaitFor([&] {
        listener.Forget(); // what was on its way
        RunLoopFor(kManyPeriods);
        return !listener.HasHeard();
    }));
}

TEST_F(AnnouncerTest, TellsAHostAlone) {
    for (const char* host : {"127.0.0.1", "localhost"}) {
        Listener listener("127.0.0.1");
        const Listener group(kAnnouncementGroup, listener.Port());
        const Announcer announcer(kText, {false, host, listener.Port(), kOften}, Log());
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(listener.Hear(), kText) << host;
        }
        EXPECT_FALSE(group.HasHeard()) << host;
    }
    EXPECT_THAT(mLog, IsEmpty());
}

TEST_F(AnnouncerTest, TellsBoth) {
    Listener listener("127.0.0.1");
    Listener group(kAnnouncementGroup, listener.Port());
    const Announcer announcer(kText, {true, "127.0.0.1", listener.Port(), kOnce}, Log());
    EXPECT_EQ(listener.Hear(), kText);
    EXPECT_EQ(group.Hear(), kText);
}

TEST_F(AnnouncerTest, UsesEveryInterface) {
    if (!RunIp("link add one type veth peer name two")) {
        GTEST_SKIP() << "no virtual Ethernet here";
    }
    ASSERT_TRUE(RunIp("address add 10.77.1.1/24 dev one") && RunIp("address add 10.77.2.1/24 dev two"));
    ASSERT_TRUE(RunIp("link set one up") && RunIp("link set two up"));
    Listener listener(kAnnouncementGroup);
    const Announcer announcer(kText, {true, "", listener.Port(), kOften}, Log());
    std::set<std::string> senders;
    EXPECT_TRUE(WaitFor([&] {
        listener.AddSenders(senders);
        return senders.size() >= 3;
    }));
    EXPECT_THAT(senders, IsSupersetOf({"127.0.0.1", "10.77.1.1", "10.77.2.1"}));
}

TEST_F(AnnouncerTest, GoesOnWithoutANetworkAndSaysSoOnce) {
    ASSERT_TRUE(RunIp("link set lo down"));
    Listener listener(kAnnouncementGroup);
    const Announcer announcer(kText, {true, "", listener.Port(), kOften}, Log());
    RunLoopFor(kManyPeriods);
    EXPECT_THAT(mLog, ElementsAre("cannot announce to 225.1.1.1: no network, trying on"));
    EXPECT_FALSE(listener.HasHeard());

    ASSERT_TRUE(RunIp("link set lo up"));
    EXPECT_EQ(listener.Hear(), kText);
    EXPECT_THAT(mLog, SizeIs(1));

    ASSERT_TRUE(RunIp("link set lo down"));
    EXPECT_TRUE(WaitFor([this] { return mLog.size() == 2; }));
}

TEST_F(AnnouncerTest, AHostThatCannotBeReachedIsLoggedOnce) {
    const Announcer announcer(kText, {false, "192.0.2.1", 9, kOften}, Log());
    RunLoopFor(kManyPeriods);
    ASSERT_THAT(mLog, SizeIs(1));
    EXPECT_THAT(mLog[0], StartsWith("cannot announce to 192.0.2.1: "));
}

TEST_F(AnnouncerTest, AnUnknownHostIsLoggedOnceAndKeepsNobodyElseWaiting) {
    Listener group(kAnnouncementGroup);
    const Announcer announcer(kText, {true, "no-such-host.invalid", group.Port(), kOften}, Log());
    EXPECT_EQ(group.Hear(), kText);
    EXPECT_TRUE(WaitFor([this] { return !mLog.empty(); }));
    RunLoopFor(kManyPeriods);
    ASSERT_THAT(mLog, SizeIs(1));
    EXPECT_THAT(mLog[0], StartsWith("cannot announce to no-such-host.invalid: "));
}

TEST_F(AnnouncerTest, AnUnfitAnnouncementIsLoggedOnce) {
    const Announcer announcer(std::string(70000, 'x'), {true, "127.0.0.1", 9, kOften}, Log());
    RunLoopFor(kManyPeriods);
    EXPECT_THAT(mLog, SizeIs(2));
}

/// The whole program, which always uses the same port.
class AnnouncingProgram : public ::testing::Test {
protected:
    ~AnnouncingProgram() override {
        mProcess.kill();
        mProcess.waitForFinished();
    }

    /// Starts it and returns what it is to announce.
    std::string Start(const QStringList& more) {
        const QString root = QString::fromStdString(mFolder.Path().string());
        mProcess.start(QUILLBOX_DEVICE_PROGRAM,
                       QStringList{"--root", root, "--port", "0", "--name", "Été"} + more);
        EXPECT_TRUE(WaitFor([this] { return mProcess.canReadLine(); }));
        return "Été:FileServer:" + mProcess.readLine().trimmed().split(':').last().toStdString() + ";";
    }

    TestFolder mFolder;
    QProcess mProcess;
};

TEST_F(AnnouncingProgram, TellsTheGroupThePortOnWhichItListens) {
    Listener group(kAnnouncementGroup, kAnnouncementPort);
    const std::string expected = Start({"--announce", "--address", "0.0.0.0"});
    EXPECT_EQ(group.Hear(), expected);
}

TEST_F(AnnouncingProgram, TellsAHostThePortOnWhichItListens) {
    Listener listener("127.0.0.2", kAnnouncementPort);
    const std::string expected = Start({"--announce-to", "127.0.0.2"});
    EXPECT_EQ(listener.Hear(), expected);
}

TEST_F(AnnouncingProgram, SaysThatNobodyElseCanConnect) {
    Start({"--announce"});
    EXPECT_TRUE(WaitFor([this] { return mProcess.canReadLine(); }));
    EXPECT_THAT(mProcess.readLine().toStdString(), HasSubstr("only this machine can connect"));
}

TEST_F(AnnouncingProgram, IsSilentUnlessAsked) {
    const Listener group(kAnnouncementGroup, kAnnouncementPort);
    const Listener listener("127.0.0.1", kAnnouncementPort);
    Start({});
    // The first announcement would follow the line on which Start waits at once.
    RunLoopFor(kManyPeriods);
    EXPECT_FALSE(group.HasHeard());
    EXPECT_FALSE(listener.HasHeard());
}

} // namespace
