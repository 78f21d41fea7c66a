#include "AsyncSocket.h"

#include "SocketFixture.h"

#include <gmock/gmock.h>

#include <cmath>

namespace {

using ::testing::Contains;
using ::testing::Not;

class AsyncSocketWriteTest : public SocketFixture {
protected:
    void SetUp() override { ConnectToPeer(); }

    /// More than all buffers on the way to a peer that does not read can hold.
    const QByteArray kHuge = QByteArray(40'000'000, 'h');
};

TEST_F(AsyncSocketWriteTest, NothingHappensInsideTheCall) {
    mpSocket->writeData("data", -1.0, 7);
    EXPECT_TRUE(mDelegate.mLines.empty());
    EXPECT_TRUE(WaitForLine("written #7"));
    EXPECT_TRUE(WaitForReceived(4));
    EXPECT_EQ(mPeer.Received(), "data");
}

TEST_F(AsyncSocketWriteTest, EmptyDataIsIgnored) {
    mpSocket->writeData("", -1.0, 1);
    mpSocket->writeData(QByteArray(), -1.0, 2);
    EXPECT_TRUE(mpSocket->canSafelySetDelegate());
    RunLoopPasses(5);
    EXPECT_TRUE(mDelegate.mLines.empty());
}

TEST_F(AsyncSocketWriteTest, QueuedWritesRunInTurn) {
    mpSocket->writeData("one ", -1.0, 1);
    mpSocket->writeData("two ", -1.0, 2);
    mpSocket->writeData("three", -1.0, 3);
    EXPECT_TRUE(WaitForReceived(13));
    EXPECT_EQ(mPeer.Received(), "one two three");
    EXPECT_EQ(mDelegate.mLines, (Lines{"written #1", "written #2", "written #3"}));
}

TEST_F(AsyncSocketWriteTest, IsNotPutOffByMoreOfThem) {
    QTimer writer;
    QObject::connect(&writer, &QTimer::timeout, [this] { mpSocket->writeData("x", -1.0, 1); });
    writer.start(0);
    EXPECT_TRUE(WaitForLine("written #1"));
}

TEST_F(AsyncSocketWriteTest, WritesQueuedBeforeTheConnectionCount) {
    AsyncSocket socket(&mDelegate);
    ScriptedPeer other;
    socket.writeData("early", -1.0, 1);
    ASSERT_TRUE(socket.connectToHost("127.0.0.1", other.Port(), mConnectError));
    socket.writeData(" bird", -1.0, 2);
    EXPECT_TRUE(WaitFor([&] {
        other.Pump();
        return other.Received() == "early bird";
    }));
    EXPECT_EQ(mDelegate.mLines,
              (Lines{"will connect", "connected to 127.0.0.1", "written #1", "written #2"}));
}

TEST_F(AsyncSocketWriteTest, ALongWriteArrivesWhole) {
    QByteArray data(5'000'000, Qt::Uninitialized);
    std::generate(data.begin(), data.end(), [state = 1U]() mutable {
        state = state * 1664525U + 1013904223U;
        return static_cast<char>(state >> 24U);
    });
    mpSocket->writeData(data, -1.0, 1);
    EXPECT_TRUE(WaitForReceived(static_cast<std::size_t>(data.size())));
    EXPECT_TRUE(mPeer.Received() == data.toStdString());
    EXPECT_EQ(mDelegate.mLines, Lines{"written #1"});
}

TEST_F(AsyncSocketWriteTest, AWriteIsCompleteOnlyWhenTheStreamHasAllOfIt) {
    mpSocket->writeData(kHuge, -1.0, 1);
    EXPECT_TRUE(WaitFor([this] {
        long tag = 0;
        qsizetype done = 0;
        qsizetype total = 0;
        return mpSocket->progressOfWriteReturningTag(tag, done, total) > 0.0;
    }));
    RunLoopPasses(20);
    EXPECT_TRUE(mDelegate.mLines.empty());
    EXPECT_TRUE(WaitForReceived(static_cast<std::size_t>(kHuge.size())));
    EXPECT_EQ(mDelegate.mLines, Lines{"written #1"});
}

TEST_F(AsyncSocketWriteTest, TellsHowFarItIs) {
    long tag = 0;
    qsizetype done = 0;
    qsizetype total = 0;
    EXPECT_TRUE(std::isnan(mpSocket->progressOfWriteReturningTag(tag, done, total)));
    mpSocket->writeData(kHuge, -1.0, 8);
    EXPECT_TRUE(WaitFor([&] { return mpSocket->progressOfWriteReturningTag(tag, done, total) > 0.0; }));
    EXPECT_EQ(tag, 8);
    EXPECT_EQ(total, kHuge.size());
    EXPECT_DOUBLE_EQ(mpSocket->progressOfWriteReturningTag(tag, done, total),
                     static_cast<double>(done) / static_cast<double>(total));
}

TEST_F(AsyncSocketWriteTest, ATimeOutEndsTheConnection) {
    mpSocket->writeData(kHuge, 0.02, 1);
    EXPECT_TRUE(WaitForLine("disconnected"));
    EXPECT_EQ(mDelegate.mLines, (Lines{"will disconnect AsyncSocketErrorDomain 5", "disconnected"}));
}

TEST_F(AsyncSocketWriteTest, ATimeOutBeginsWhenTheWriteBecomesCurrent) {
    mpSocket->writeData(kHuge, -1.0, 1);
    mpSocket->writeData("short", 0.02, 2);
    RunLoopFor(std::chrono::milliseconds(60));
    EXPECT_TRUE(mpSocket->isConnected());
    EXPECT_TRUE(WaitForReceived(static_cast<std::size_t>(kHuge.size()) + 5));
    EXPECT_EQ(mDelegate.mLines, (Lines{"written #1", "written #2"}));
}

TEST_F(AsyncSocketWriteTest, ATimeOutEndsWithItsWrite) {
    mpSocket->writeData("short", 0.05, 1);
    mpSocket->writeData(kHuge, -1.0, 2);
    EXPECT_TRUE(WaitForLine("written #1"));
    RunLoopFor(std::chrono::milliseconds(100));
    EXPECT_TRUE(mpSocket->isConnected());
    EXPECT_EQ(mDelegate.mLines, Lines{"written #1"});
}

TEST_F(AsyncSocketWriteTest, APeerThatIsGoneIsAnError) {
    mpSocket->writeData(kHuge, -1.0, 1);
    RunLoopPasses(5);
    mPeer.Reset();
    EXPECT_TRUE(WaitForLine("disconnected"));
    ASSERT_EQ(mDelegate.mLines.size(), 2U);
    ASSERT_TRUE(mDelegate.mError);
    EXPECT_EQ(mDelegate.mError->domain, "POSIX");
}

TEST_F(AsyncSocketWriteTest, WhatTheSystemRefusesIsNotWritten) {
    mPeer.Reset();
    mpSocket->writeData("short", -1.0, 1);
    EXPECT_TRUE(WaitForLine("disconnected"));
    EXPECT_THAT(mDelegate.mLines, Not(Contains("written #1")));
}

TEST_F(AsyncSocketWriteTest, WhatThePeerSaidLastIsReadThoughWritingFails) {
    mDelegate.mHook = [this](const std::string& line) {
        if (line.starts_with("read")) {
            mpSocket->readDataToLength(4, -1.0, 2);
        }
    };
    mpSocket->writeData(kHuge, -1.0, 1);
    mpSocket->readDataToLength(4, -1.0, 2);
    RunLoopPasses(5);
    mPeer.Send("disk full now");
    mPeer.Reset();
    EXPECT_TRUE(WaitForLine("disconnected"));
    EXPECT_EQ(mDelegate.mData, QByteArray("disk full no"));
}

// Disconnecting afterwards

TEST_F(AsyncSocketWriteTest, DisconnectsAfterTheQueuedWrites) {
    mpSocket->writeData("one ", -1.0, 1);
    mpSocket->writeData("two", -1.0, 2);
    mpSocket->disconnectAfterWriting();
    mpSocket->writeData("forbidden", -1.0, 3);
    EXPECT_EQ(ReceiveToEnd(), "one two");
    EXPECT_TRUE(WaitForLine("disconnected"));
    EXPECT_EQ(mDelegate.mLines, (Lines{"written #1", "written #2", "disconnected"}));
}

TEST_F(AsyncSocketWriteTest, WhatWasWrittenArrivesThoughTheSocketIsGone) {
    const QByteArray data(3'000'000, 'd');
    mDelegate.mHook = [this](const std::string&) { mpSocket.reset(); };
    mpSocket->writeData(data, -1.0, 1);
    EXPECT_EQ(ReceiveToEnd().size(), static_cast<std::size_t>(data.size()));
    EXPECT_EQ(mDelegate.mLines, Lines{"written #1"});
}

TEST_F(AsyncSocketWriteTest, DisconnectsOnTheNextPassWhenNothingIsQueued) {
    mpSocket->disconnectAfterWriting();
    EXPECT_TRUE(mpSocket->isConnected());
    EXPECT_TRUE(WaitForLine("disconnected"));
}

TEST_F(AsyncSocketWriteTest, PendingReadsDoNotKeepItFromDisconnecting) {
    mpSocket->readDataWithTimeout(-1.0, 1);
    mpSocket->writeData("bye", -1.0, 2);
    mpSocket->disconnectAfterWriting();
    EXPECT_EQ(ReceiveToEnd(), "bye");
    EXPECT_TRUE(WaitForLine("disconnected"));
    EXPECT_EQ(mDelegate.mLines, (Lines{"written #2", "disconnected"}));
}

TEST_F(AsyncSocketWriteTest, AfterReadingAndWritingWaitsForBoth) {
    mpSocket->readDataToLength(2, -1.0, 1);
    mpSocket->writeData("question", -1.0, 2);
    mpSocket->disconnectAfterReadingAndWriting();
    EXPECT_TRUE(WaitForReceived(8));
    RunLoopPasses(5);
    EXPECT_TRUE(mpSocket->isConnected()) << "the read is still waiting";
    mPeer.Send("no");
    EXPECT_TRUE(WaitForLine("disconnected"));
    EXPECT_EQ(mDelegate.mLines, (Lines{"written #2", "read no #1", "disconnected"}));
}

TEST_F(AsyncSocketWriteTest, AfterReadingAndWritingWaitsForAWriteToo) {
    mpSocket->readDataToLength(2, -1.0, 1);
    mpSocket->writeData(kHuge, -1.0, 2);
    mpSocket->disconnectAfterReadingAndWriting();
    mPeer.Send("ok");
    EXPECT_TRUE(WaitForLine("read ok #1"));
    RunLoopPasses(5);
    EXPECT_TRUE(mpSocket->isConnected()) << "the write is still waiting";
    EXPECT_EQ(ReceiveToEnd().size(), static_cast<std::size_t>(kHuge.size()));
    EXPECT_TRUE(WaitForLine("disconnected"));
}

} // namespace
