#include "UdpSocketFixture.h"

#include <gmock/gmock.h>

#include <netinet/in.h>

#include <cerrno>
#include <cstring>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class AsyncUdpSocketQueueTest : public UdpSocketFixture {
protected:
    SocketAddress Address6(std::uint16_t port) { return ResolveNumericHost("::1", port)->addresses.front(); }

    void SendToSelf6(const QByteArray& data) {
        AsyncUdpSocket sender;
        ASSERT_TRUE(sender.sendData(data, Address6(mpSocket->localPort()), -1.0, 0));
        sender.closeAfterSending();
        ASSERT_TRUE(WaitFor([&] { return sender.isClosed(); }));
    }
};

// --- Sending ---

TEST_F(AsyncUdpSocketQueueTest, SendsNothingWithinTheCall) {
    ASSERT_TRUE(mpSocket->sendData("later", PeerAddress(), -1.0, 7));
    EXPECT_FALSE(mPeer.HasDatagram());
    EXPECT_TRUE(WaitForLine("sent #7"));
    EXPECT_EQ(mPeer.Receive(), "later");
}

TEST_F(AsyncUdpSocketQueueTest, SendsInTheOrderOfTheCalls) {
    for (long tag = 1; tag <= 3; ++tag) {
        ASSERT_TRUE(
            mpSocket->sendData(QByteArray::number(static_cast<qlonglong>(tag)), PeerAddress(), -1.0, tag));
    }
    ASSERT_TRUE(WaitForLines(3));
    EXPECT_THAT(mDelegate.mLines, ElementsAre("sent #1", "sent #2", "sent #3"));
    for (const char* text : {"1", "2", "3"}) {
        EXPECT_EQ(mPeer.Receive(), text);
    }
}

TEST_F(AsyncUdpSocketQueueTest, SendsToAHostByName) {
    ASSERT_TRUE(mpSocket->sendData("named", "127.0.0.1", mPeer.Port(), -1.0, 1));
    ASSERT_TRUE(WaitForLine("sent #1"));
    EXPECT_EQ(mPeer.Receive(), "named");
    EXPECT_FALSE(mpSocket->sendData("x", "no such host", mPeer.Port(), -1.0, 2));
}

TEST_F(AsyncUdpSocketQueueTest, RefusesWhatItCannotSend) {
    EXPECT_FALSE(mpSocket->sendData(QByteArray(), PeerAddress(), -1.0, 1));
    EXPECT_FALSE(mpSocket->sendData("x", SocketAddress(), -1.0, 1));
    Bind();
    ASSERT_TRUE(mpSocket->joinMulticastGroup("225.1.1.1", mError));
    EXPECT_FALSE(mpSocket->sendData("x", Address6(mPeer.Port()), -1.0, 1));
    AsyncUdpSocket without4(&mDelegate);
    ASSERT_TRUE(without4.bindToAddress("::1", 0, mError));
    EXPECT_FALSE(without4.sendData("x", PeerAddress(), -1.0, 1));
    RunLoopPasses(5);
    EXPECT_THAT(mDelegate.mLines, IsEmpty());
    EXPECT_FALSE(mPeer.HasDatagram());
}

TEST_F(AsyncUdpSocketQueueTest, AFailedSendIsReportedAndTheNextOneGoes) {
    ASSERT_TRUE(
        mpSocket->sendData(QByteArray(70'000, 'x'), PeerAddress(), -1.0, 1)); // no datagram is so long
    ASSERT_TRUE(mpSocket->sendData("y", PeerAddress(), -1.0, 2));
    ASSERT_TRUE(WaitForLines(2));
    EXPECT_THAT(mDelegate.mLines,
                ElementsAre(std::string("not sent #1 ") + std::strerror(EMSGSIZE), "sent #2"));
    EXPECT_FALSE(mpSocket->isClosed());
}

/// A send whose half was closed meanwhile stays until its time-out.
TEST_F(AsyncUdpSocketQueueTest, ASendWithoutItsHalfTimesOut) {
    Bind();
    ASSERT_TRUE(mpSocket->sendData("x", Address6(mPeer.Port()), 0.01, 1));
    ASSERT_TRUE(mpSocket->joinMulticastGroup("225.1.1.1", mError));
    ::testing::internal::CaptureStdout();
    const bool timedOut = WaitForLine("not sent #1 Send operation timed out");
    EXPECT_EQ(::testing::internal::GetCapturedStdout(),
              "Error - Could not get CFSocketNativeHandle from CFSocketRef\n");
    EXPECT_TRUE(timedOut);
    EXPECT_FALSE(mpSocket->isClosed());
    ASSERT_TRUE(mpSocket->sendData("y", PeerAddress(), -1.0, 2));
    EXPECT_TRUE(WaitForLine("sent #2"));
}

// --- Receiving ---

TEST_F(AsyncUdpSocketQueueTest, ReceivesOneDatagramForEachRequest) {
    Bind();
    for (const char* text : {"a", "b", "c"}) {
        ASSERT_TRUE(mPeer.Send(text, mpSocket->localPort()));
    }
    mpSocket->receiveWithTimeout(-1.0, 1);
    mpSocket->receiveWithTimeout(-1.0, 2);
    EXPECT_THAT(mDelegate.mLines, IsEmpty());
    ASSERT_TRUE(WaitForLines(2));
    RunLoopPasses(5);
    EXPECT_THAT(mDelegate.mLines,
                ElementsAre("received a #1 from 127.0.0.1", "received b #2 from 127.0.0.1"));
    mpSocket->receiveWithTimeout(-1.0, 3);
    EXPECT_TRUE(WaitForLine("received c #3 from 127.0.0.1"));
}

TEST_F(AsyncUdpSocketQueueTest, TellsThePortOfTheSender) {
    Bind();
    mpSocket->receiveWithTimeout(-1.0, 1);
    ASSERT_TRUE(mPeer.Send("x", mpSocket->localPort()));
    ASSERT_TRUE(WaitForLines(1));
    EXPECT_EQ(mDelegate.mPort, mPeer.Port());
}

TEST_F(AsyncUdpSocketQueueTest, AnEmptyDatagramIsOneToo) {
    Bind();
    mpSocket->receiveWithTimeout(-1.0, 1);
    ASSERT_TRUE(mPeer.Send("", mpSocket->localPort()));
    EXPECT_TRUE(WaitForLine("received  #1 from 127.0.0.1"));
}

TEST_F(AsyncUdpSocketQueueTest, CutsLongDatagrams) {
    Bind();
    mpSocket->receiveWithTimeout(-1.0, 1);
    ASSERT_TRUE(mPeer.Send(std::string(9217, 'x'), mpSocket->localPort()));
    EXPECT_TRUE(WaitForLine("received 9216 bytes #1 from 127.0.0.1"));

    mpSocket->setMaxReceiveBufferSize(3);
    mpSocket->receiveWithTimeout(-1.0, 2);
    ASSERT_TRUE(mPeer.Send("12345", mpSocket->localPort()));
    EXPECT_TRUE(WaitForLine("received 123 #2 from 127.0.0.1"));
}

TEST_F(AsyncUdpSocketQueueTest, ARefusedDatagramKeepsTheReceiveActive) {
    Bind();
    mDelegate.mTakes = false;
    mDelegate.mHook = [this](const std::string&) { mDelegate.mTakes = true; };
    mpSocket->receiveWithTimeout(-1.0, 9);
    ASSERT_TRUE(mPeer.Send("refused", mpSocket->localPort()));
    ASSERT_TRUE(mPeer.Send("taken", mpSocket->localPort()));
    ASSERT_TRUE(mPeer.Send("too much", mpSocket->localPort()));
    ASSERT_TRUE(WaitForLines(2));
    RunLoopPasses(5);
    EXPECT_THAT(mDelegate.mLines,
                ElementsAre("received refused #9 from 127.0.0.1", "received taken #9 from 127.0.0.1"));
}

TEST_F(AsyncUdpSocketQueueTest, RefusingManyLeavesTheLoopItsTurn) {
    Bind();
    mDelegate.mTakes = false;
    for (int i = 0; i < 150; ++i) {
        ASSERT_TRUE(mPeer.Send("x", mpSocket->localPort()));
    }
    int turns = 0;
    QTimer other;
    QObject::connect(&other, &QTimer::timeout, [&turns] { ++turns; });
    mDelegate.mHook = [&](const std::string&) {
        if (mDelegate.mLines.size() == 1) {
            other.start(0);
        }
    };
    mpSocket->receiveWithTimeout(-1.0, 1);
    ASSERT_TRUE(WaitForLines(150));
    EXPECT_GE(turns, 1);
}

TEST_F(AsyncUdpSocketQueueTest, BothFamiliesAreHeard) {
    ASSERT_TRUE(mpSocket->bindToPort(10245, mError)); // one port for both halves
    mpSocket->receiveWithTimeout(-1.0, 1);
    SendToSelf6("six");
    EXPECT_TRUE(WaitForLine("received six #1 from ::1"));
    mpSocket->receiveWithTimeout(-1.0, 2);
    ASSERT_TRUE(mPeer.Send("four", mpSocket->localPort()));
    EXPECT_TRUE(WaitForLine("received four #2 from 127.0.0.1"));
}

TEST_F(AsyncUdpSocketQueueTest, TheFamiliesTakeTurns) {
    ASSERT_TRUE(mpSocket->bindToPort(10245, mError)); // one port for both halves
    for (int i = 0; i < 2; ++i) {
        SendToSelf6("six");
        ASSERT_TRUE(mPeer.Send("four", mpSocket->localPort()));
    }
    for (long tag = 1; tag <= 4; ++tag) {
        mpSocket->receiveWithTimeout(-1.0, tag);
    }
    ASSERT_TRUE(WaitForLines(4));
    EXPECT_THAT(mDelegate.mLines, ElementsAre("received six #1 from ::1", "received four #2 from 127.0.0.1",
                                              "received six #3 from ::1", "received four #4 from 127.0.0.1"));
}

TEST_F(AsyncUdpSocketQueueTest, AReceiveTimesOutAndTheNextOneRuns) {
    Bind();
    mpSocket->receiveWithTimeout(0.01, 1);
    mpSocket->receiveWithTimeout(-1.0, 2);
    ASSERT_TRUE(WaitForLine("not received #1 Receive operation timed out"));
    EXPECT_FALSE(mpSocket->isClosed());
    ASSERT_TRUE(mPeer.Send("late", mpSocket->localPort()));
    EXPECT_TRUE(WaitForLine("received late #2 from 127.0.0.1"));
}

TEST_F(AsyncUdpSocketQueueTest, ATimerOfAnEarlierRequestHarmsNobody) {
    Bind();
    mpSocket->receiveWithTimeout(0.05, 1);
    ASSERT_TRUE(mPeer.Send("x", mpSocket->localPort()));
    ASSERT_TRUE(WaitForLine("received x #1 from 127.0.0.1"));
    mpSocket->receiveWithTimeout(-1.0, 2);
    RunLoopFor(std::chrono::milliseconds(120));
    EXPECT_EQ(mDelegate.mLines.size(), 1U);
}

TEST_F(AsyncUdpSocketQueueTest, AnErrorFailsTheReceive) {
    Bind();
    // The system then tells a receiver that nobody listens where it has sent to.
    const int on = 1;
    mpSocket->Half(AF_INET)->SetOption(IPPROTO_IP, IP_RECVERR, &on, sizeof on);
    const std::uint16_t closedPort = DatagramPeer().Port();
    mpSocket->receiveWithTimeout(-1.0, 1);
    RunLoopPasses(3);
    ASSERT_TRUE(mpSocket->sendData("x", "127.0.0.1", closedPort, -1.0, 3));
    ASSERT_TRUE(WaitForLines(2));
    EXPECT_THAT(mDelegate.mLines,
                ElementsAre("sent #3", std::string("not received #1 ") + std::strerror(ECONNREFUSED)));
    mpSocket->receiveWithTimeout(-1.0, 2);
    ASSERT_TRUE(mPeer.Send("x", mpSocket->localPort()));
    EXPECT_TRUE(WaitForLine("received x #2 from 127.0.0.1"));
}

TEST_F(AsyncUdpSocketQueueTest, ADelegateWithoutTheCallbackTakesEverything) {
    AsyncUdpSocketDelegate indifferent;
    Bind();
    mpSocket->setDelegate(&indifferent);
    mpSocket->receiveWithTimeout(-1.0, 1);
    mpSocket->closeAfterReceiving();
    ASSERT_TRUE(mPeer.Send("x", mpSocket->localPort()));
    EXPECT_TRUE(WaitFor([this] { return mpSocket->isClosed(); }));
}

// --- What a delegate may do meanwhile ---

class InsideCallback : public AsyncUdpSocketQueueTest, public ::testing::WithParamInterface<bool> {};

TEST_P(InsideCallback, TheSocketMayBeDestroyed) {
    mDelegate.mTakes = GetParam();
    Bind();
    mDelegate.mHook = [this](const std::string&) { mpSocket.reset(); };
    mpSocket->receiveWithTimeout(-1.0, 1);
    ASSERT_TRUE(mPeer.Send("x", mpSocket->localPort()));
    ASSERT_TRUE(mPeer.Send("y", mpSocket->localPort()));
    ASSERT_TRUE(WaitForLines(1));
    RunLoopPasses(5);
    EXPECT_EQ(mDelegate.mLines.size(), 1U);
}

TEST_P(InsideCallback, TheSocketMayBeClosed) {
    mDelegate.mTakes = GetParam();
    Bind();
    mDelegate.mHook = [this](const std::string&) { mpSocket->close(); };
    mpSocket->receiveWithTimeout(-1.0, 1);
    mpSocket->receiveWithTimeout(-1.0, 2);
    ASSERT_TRUE(mPeer.Send("x", mpSocket->localPort()));
    ASSERT_TRUE(mPeer.Send("y", mpSocket->localPort()));
    ASSERT_TRUE(WaitForLine("closed"));
    EXPECT_THAT(mDelegate.mLines, ElementsAre("received x #1 from 127.0.0.1", "closed"));
}

INSTANTIATE_TEST_SUITE_P(TakesOrNot, InsideCallback, ::testing::Bool());

TEST_F(AsyncUdpSocketQueueTest, TheSocketMayBeDestroyedWhenAReceiveTimesOut) {
    mDelegate.mHook = [this](const std::string&) { mpSocket.reset(); };
    Bind();
    mpSocket->receiveWithTimeout(0.01, 1);
    mpSocket->receiveWithTimeout(0.01, 2);
    ASSERT_TRUE(WaitForLines(1));
    RunLoopPasses(5);
    EXPECT_THAT(mDelegate.mLines, ElementsAre("not received #1 Receive operation timed out"));
}

TEST_F(AsyncUdpSocketQueueTest, TheSocketMayBeDestroyedWhenASendFails) {
    mDelegate.mHook = [this](const std::string&) { mpSocket.reset(); };
    ASSERT_TRUE(mpSocket->sendData(QByteArray(70'000, 'x'), PeerAddress(), -1.0, 1));
    ASSERT_TRUE(mpSocket->sendData("y", PeerAddress(), -1.0, 2));
    ASSERT_TRUE(WaitForLines(1));
    RunLoopPasses(5);
    EXPECT_EQ(mDelegate.mLines.size(), 1U);
}

TEST_F(AsyncUdpSocketQueueTest, TheSocketMayBeDestroyedWhenItHasClosed) {
    mDelegate.mHook = [this](const std::string&) { mpSocket.reset(); };
    mpSocket->close();
    EXPECT_TRUE(WaitForLine("closed"));
}

TEST_F(AsyncUdpSocketQueueTest, TheSocketMayBeDestroyedWhenASendIsDone) {
    mDelegate.mHook = [this](const std::string&) { mpSocket.reset(); };
    ASSERT_TRUE(mpSocket->sendData("x", PeerAddress(), -1.0, 1));
    ASSERT_TRUE(mpSocket->sendData("y", PeerAddress(), -1.0, 2));
    ASSERT_TRUE(WaitForLines(1));
    RunLoopPasses(5);
    EXPECT_THAT(mDelegate.mLines, ElementsAre("sent #1"));
}

} // namespace
