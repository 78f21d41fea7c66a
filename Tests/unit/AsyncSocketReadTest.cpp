#include "AsyncSocket.h"

#include "SocketFixture.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>

namespace {

class AsyncSocketReadTest : public SocketFixture {
protected:
    void SetUp() override { ConnectToPeer(); }
};

// Whatever there is

TEST_F(AsyncSocketReadTest, NothingHappensInsideTheCall) {
    mPeer.Send("data");
    RunLoopPasses(5);
    mpSocket->readDataWithTimeout(-1.0, 7);
    EXPECT_TRUE(mDelegate.mLines.empty());
    EXPECT_TRUE(WaitForLine("read data #7"));
}

TEST_F(AsyncSocketReadTest, WaitsForTheFirstByte) {
    mpSocket->readDataWithTimeout(-1.0, 7);
    RunLoopPasses(5);
    EXPECT_TRUE(mDelegate.mLines.empty());
    mPeer.Send("x");
    EXPECT_TRUE(WaitForLine("read x #7"));
    RunLoopPasses(5);
    EXPECT_EQ(mDelegate.mLines, Lines{"read x #7"}) << "once, and with no report of progress";
}

TEST_F(AsyncSocketReadTest, TakesEverythingAvailableAtOnce) {
    mPeer.Send(std::string(10000, 'a'));
    RunLoopPasses(5);
    mPeer.Send(std::string(345, 'a'));
    RunLoopPasses(5);
    mpSocket->readDataWithTimeout(-1.0, 1);
    EXPECT_TRUE(WaitForLine("read 10345 bytes #1"));
}

TEST_F(AsyncSocketReadTest, QueuedReadsRunInTurn) {
    mpSocket->readDataToLength(2, -1.0, 1);
    mpSocket->readDataToData("\n", -1.0, 2);
    mpSocket->readDataWithTimeout(-1.0, 3);
    mPeer.Send("abline\nrest");
    EXPECT_TRUE(WaitForLine("read rest #3"));
    EXPECT_EQ(mDelegate.mLines, (Lines{"read ab #1", "read line\n #2", "read rest #3"}));
}

TEST_F(AsyncSocketReadTest, ReadsQueuedBeforeTheConnectionCount) {
    AsyncSocket socket(&mDelegate);
    socket.readDataWithTimeout(-1.0, 5);
    RunLoopPasses(3);
    ScriptedPeer other;
    ASSERT_TRUE(socket.connectToHost("127.0.0.1", other.Port(), mConnectError));
    other.Send("early");
    EXPECT_TRUE(WaitFor([&] {
        other.PumpOut();
        return mDelegate.Has("read early #5");
    }));
}

TEST_F(AsyncSocketReadTest, ALongStreamArrivesWhole) {
    std::string sent(5'000'000, '\0');
    std::generate(sent.begin(), sent.end(), [state = 1U]() mutable {
        state = state * 1664525U + 1013904223U;
        return static_cast<char>(state >> 24U);
    });
    mDelegate.mHook = [this](const std::string&) { mpSocket->readDataWithTimeout(-1.0, 0); };
    mpSocket->readDataWithTimeout(-1.0, 0);
    mPeer.Send(sent);
    EXPECT_TRUE(WaitFor([&] {
        mPeer.PumpOut();
        return static_cast<std::size_t>(mDelegate.mData.size()) >= sent.size();
    }));
    EXPECT_TRUE(mDelegate.mData == QByteArray::fromStdString(sent));
}

// An exact length

TEST_F(AsyncSocketReadTest, ALengthReadReportsItsProgress) {
    mpSocket->readDataToLength(10, -1.0, 4);
    mPeer.Send("abc");
    EXPECT_TRUE(WaitForLine("partial 3 #4"));
    mPeer.Send("defg");
    EXPECT_TRUE(WaitForLine("partial 4 #4"));
    mPeer.Send("hijklm");
    EXPECT_TRUE(WaitForLine("read abcdefghij #4"));
    EXPECT_EQ(mDelegate.mLines, (Lines{"partial 3 #4", "partial 4 #4", "read abcdefghij #4"}));
}

TEST_F(AsyncSocketReadTest, WhatIsNotAReadIsIgnored) {
    mpSocket->readDataToLength(0, -1.0, 1);
    mpSocket->readDataToLength(-5, -1.0, 1);
    mpSocket->readDataToData("", -1.0, 1);
    mpSocket->readDataToData(QByteArray(), -1.0, 1);
    mpSocket->readDataToData("\r\n", -1.0, 1, 1);
    mpSocket->readDataToData("\r\n", -1.0, 0, 1);
    EXPECT_TRUE(mpSocket->canSafelySetDelegate());
    mpSocket->readDataToData("\r\n", -1.0, 2, 1);
    EXPECT_FALSE(mpSocket->canSafelySetDelegate());
}

TEST_F(AsyncSocketReadTest, TellsHowFarItIs) {
    long tag = 0;
    qsizetype done = 0;
    qsizetype total = 0;
    EXPECT_TRUE(std::isnan(mpSocket->progressOfReadReturningTag(tag, done, total)));
    mpSocket->readDataToLength(8, -1.0, 6);
    mPeer.Send("ab");
    EXPECT_TRUE(WaitForLine("partial 2 #6"));
    EXPECT_DOUBLE_EQ(mpSocket->progressOfReadReturningTag(tag, done, total), 0.25);
    EXPECT_EQ(tag, 6);
    EXPECT_EQ(done, 2);
    EXPECT_EQ(total, 8);
}

TEST_F(AsyncSocketReadTest, ATerminatorReadHasNoTotal) {
    long tag = 0;
    qsizetype done = 0;
    qsizetype total = 99;
    mpSocket->readDataToData("\n", -1.0, 6);
    mPeer.Send("ab");
    EXPECT_TRUE(WaitForLine("partial 2 #6"));
    EXPECT_TRUE(std::isnan(mpSocket->progressOfReadReturningTag(tag, done, total)));
    EXPECT_EQ(done, 2);
    EXPECT_EQ(total, 0);
}

// A terminator

TEST_F(AsyncSocketReadTest, KeepsWhatFollowsTheTerminator) {
    mPeer.Send("one\r\ntwo\r\n\r\nthree\r");
    for (long tag = 1; tag <= 4; ++tag) {
        mpSocket->readDataToData(AsyncSocket::CRLFData(), -1.0, tag);
    }
    EXPECT_TRUE(WaitForLine("partial 6 #4"));
    mPeer.Send("\n");
    EXPECT_TRUE(WaitForLine("read three\r\n #4"));
    EXPECT_EQ(mDelegate.mLines, (Lines{"read one\r\n #1", "read two\r\n #2", "read \r\n #3", "partial 6 #4",
                                       "read three\r\n #4"}));
}

TEST_F(AsyncSocketReadTest, FindsATerminatorInEverySplit) {
    const std::string text = "ab\r\n\rcd\r\n\r\nef";
    for (std::size_t split = 1; split < text.size(); ++split) {
        mDelegate.mLines.clear();
        mpSocket->readDataToData("\r\n\r\n", -1.0, 1);
        mpSocket->readDataToLength(2, -1.0, 2);
        mPeer.Send(text.substr(0, split));
        RunLoopPasses(4);
        mPeer.Send(text.substr(split));
        EXPECT_TRUE(WaitForLine("read ef #2")) << "split at " << split;
        EXPECT_TRUE(mDelegate.Has("read ab\r\n\rcd\r\n\r\n #1")) << "split at " << split;
    }
}

TEST_F(AsyncSocketReadTest, ManyShortLinesAreManyReads) {
    std::string sent;
    for (int line = 0; line < 500; ++line) {
        sent += "line " + std::to_string(line) + "\n";
        mpSocket->readDataToData(AsyncSocket::LFData(), -1.0, line);
    }
    mPeer.Send(sent);
    EXPECT_TRUE(WaitForLine("read line 499\n #499"));
    EXPECT_EQ(mDelegate.mData, QByteArray::fromStdString(sent));
}

TEST_F(AsyncSocketReadTest, ALineMayBeLongerThanTheReadAhead) {
    mpSocket->readDataToData("\n", -1.0, 1);
    mPeer.Send(std::string(1000, 'x') + "\nnext");
    EXPECT_TRUE(WaitForLine("read 1001 bytes #1"));
    mpSocket->readDataWithTimeout(-1.0, 2);
    EXPECT_TRUE(WaitForLine("read next #2"));
}

TEST_F(AsyncSocketReadTest, ALimitIsAnErrorOnlyWithoutTheTerminator) {
    mpSocket->readDataToData("\n", -1.0, 5, 1);
    mpSocket->readDataToData("\n", -1.0, 5, 2);
    mPeer.Send("abcd\nabcde\n");
    EXPECT_TRUE(WaitForLine("disconnected"));
    EXPECT_EQ(mDelegate.mLines, (Lines{"read abcd\n #1", "partial 5 #2",
                                       "will disconnect AsyncSocketErrorDomain 3", "disconnected"}));
}

// Time-outs

TEST_F(AsyncSocketReadTest, ATimeOutEndsTheConnection) {
    mpSocket->readDataToLength(4, 0.02, 1);
    EXPECT_TRUE(WaitForLine("disconnected"));
    EXPECT_EQ(mDelegate.mLines, (Lines{"will disconnect AsyncSocketErrorDomain 4", "disconnected"}));
}

TEST_F(AsyncSocketReadTest, ATimeOutBeginsWhenTheReadBecomesCurrent) {
    mpSocket->readDataWithTimeout(-1.0, 1);
    mpSocket->readDataWithTimeout(0.02, 2);
    RunLoopFor(std::chrono::milliseconds(60));
    EXPECT_TRUE(mpSocket->isConnected());
    mPeer.Send("first");
    EXPECT_TRUE(WaitForLine("disconnected"));
    EXPECT_EQ(mDelegate.mLines,
              (Lines{"read first #1", "will disconnect AsyncSocketErrorDomain 4", "disconnected"}));
}

TEST_F(AsyncSocketReadTest, ATimeOutEndsWithItsRead) {
    mpSocket->readDataWithTimeout(0.05, 1);
    mPeer.Send("in time");
    EXPECT_TRUE(WaitForLine("read in time #1"));
    mpSocket->readDataWithTimeout(-1.0, 2);
    RunLoopFor(std::chrono::milliseconds(100));
    EXPECT_TRUE(mpSocket->isConnected());
}

TEST_F(AsyncSocketReadTest, ATimeOutMayBeLongerThanAnyTimer) {
    mpSocket->readDataWithTimeout(1e300, 1);
    RunLoopFor(std::chrono::milliseconds(20));
    EXPECT_TRUE(mpSocket->isConnected());
    EXPECT_TRUE(mDelegate.mLines.empty());
}

// The end of the connection

TEST_F(AsyncSocketReadTest, WhatCameBeforeTheEndIsReadFirst) {
    mPeer.Send("abcdef");
    RunLoopPasses(5);
    mPeer.Close();
    RunLoopPasses(5);
    mDelegate.mHook = [this](const std::string& line) {
        if (line.starts_with("read")) {
            mpSocket->readDataToLength(2, -1.0, 1);
        }
    };
    mpSocket->readDataToLength(2, -1.0, 1);
    EXPECT_TRUE(WaitForLine("disconnected"));
    EXPECT_EQ(mDelegate.mLines,
              (Lines{"read ab #1", "read cd #1", "read ef #1", "will disconnect", "disconnected"}));
}

TEST_F(AsyncSocketReadTest, WhatCameBeforeAResetIsReadFirst) {
    mpSocket->readDataWithTimeout(-1.0, 1);
    mPeer.Send("answer");
    mPeer.Reset();
    EXPECT_TRUE(WaitForLine("disconnected"));
    EXPECT_EQ(
        mDelegate.mLines,
        (Lines{"read answer #1", "will disconnect POSIX " + std::to_string(ECONNRESET), "disconnected"}));
}

TEST_F(AsyncSocketReadTest, WhatNobodyReadIsThereWhileTheCloseIsAnnounced) {
    QByteArray unread;
    mDelegate.mHook = [&](const std::string& line) {
        if (line.starts_with("will disconnect")) {
            unread = mpSocket->unreadData();
            EXPECT_EQ(mpSocket->unreadData(), unread) << "asking again changes nothing";
        }
    };
    mpSocket->readDataToData("\n", -1.0, 5, 1);
    mPeer.Send("abcdefgh" + std::string(1000, 'i'));
    EXPECT_TRUE(mpSocket->unreadData().isEmpty());
    EXPECT_TRUE(WaitForLine("disconnected"));
    EXPECT_EQ(unread, QByteArray("abcdefgh") + QByteArray(1000, 'i'));
    EXPECT_TRUE(mpSocket->unreadData().isEmpty());
}

TEST_F(AsyncSocketReadTest, WhatWasLeftOverIsUnreadToo) {
    QByteArray unread;
    mDelegate.mHook = [&](const std::string& line) {
        if (line == "read line\n #1") {
            mpSocket->readDataToLength(100, -1.0, 2);
        } else if (line == "partial 4 #2") {
            mPeer.Close();
        } else if (line == "will disconnect") {
            unread = mpSocket->unreadData();
        }
    };
    mpSocket->readDataToData("\n", -1.0, 1);
    mPeer.Send("line\nrest");
    EXPECT_TRUE(WaitForLine("disconnected"));
    EXPECT_EQ(unread, QByteArray("rest"));
}

// Disconnecting afterwards

TEST_F(AsyncSocketReadTest, DisconnectsAfterTheQueuedReads) {
    mpSocket->readDataToLength(2, -1.0, 1);
    mpSocket->readDataToLength(2, -1.0, 2);
    mpSocket->disconnectAfterReading();
    mpSocket->readDataWithTimeout(-1.0, 3);
    mpSocket->writeData("forbidden", -1.0, 4);
    mPeer.Send("ab");
    EXPECT_TRUE(WaitForLine("read ab #1"));
    EXPECT_TRUE(mpSocket->isConnected());
    mPeer.Send("cdef");
    EXPECT_TRUE(WaitForLine("disconnected"));
    EXPECT_EQ(mDelegate.mLines, (Lines{"read ab #1", "read cd #2", "disconnected"}));
    EXPECT_EQ(ReceiveToEnd(), "");
}

TEST_F(AsyncSocketReadTest, DisconnectsOnTheNextPassWhenNothingIsQueued) {
    mpSocket->disconnectAfterReading();
    EXPECT_TRUE(mpSocket->isConnected());
    EXPECT_TRUE(WaitForLine("disconnected"));
    EXPECT_EQ(mDelegate.mLines, Lines{"disconnected"});
}

TEST_F(AsyncSocketReadTest, ADisconnectDropsTheQueuedReads) {
    mpSocket->readDataWithTimeout(-1.0, 1);
    mpSocket->readDataWithTimeout(-1.0, 2);
    RunLoopPasses(2);
    mpSocket->disconnect();
    EXPECT_TRUE(mpSocket->canSafelySetDelegate());
}

} // namespace
