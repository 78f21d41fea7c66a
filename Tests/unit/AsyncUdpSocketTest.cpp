#include "UdpSocketFixture.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <cstring>
#include <netdb.h>
#include <netinet/in.h>

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class AsyncUdpSocketTest : public UdpSocketFixture {};

std::string MisuseOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const AsyncUdpSocketException& misuse) {
        return misuse.what();
    }
    return "";
}

// --- Opening and binding ---

TEST_F(AsyncUdpSocketTest, BeginsWithBothFamiliesUnboundAndOpen) {
    EXPECT_TRUE(mpSocket->isIPv4());
    EXPECT_TRUE(mpSocket->isIPv6());
    EXPECT_FALSE(mpSocket->isClosed());
    EXPECT_EQ(mpSocket->localHost(), "");
    EXPECT_EQ(mpSocket->localPort(), 0);
    EXPECT_EQ(mpSocket->maxReceiveBufferSize(), 9216U);
}

TEST_F(AsyncUdpSocketTest, OneFamilyCanBeLeftOut) {
    const AsyncUdpSocket only4(nullptr, 0, true, false);
    EXPECT_TRUE(only4.isIPv4() && !only4.isIPv6());
    const AsyncUdpSocket only6(nullptr, 0, false, true);
    EXPECT_TRUE(!only6.isIPv4() && only6.isIPv6());
    EXPECT_THROW(AsyncUdpSocket(nullptr, 0, false, false), std::system_error);
}

TEST_F(AsyncUdpSocketTest, CarriesUserDataAndDelegate) {
    mpSocket->setUserData(42);
    EXPECT_EQ(mpSocket->userData(), 42);
    EXPECT_EQ(mpSocket->delegate(), &mDelegate);
    mpSocket->setDelegate(nullptr);
    EXPECT_EQ(mpSocket->delegate(), nullptr);
}

TEST_F(AsyncUdpSocketTest, BindsBothFamiliesToAPort) {
    Bind();
    EXPECT_EQ(mpSocket->localHost(), "0.0.0.0");
    EXPECT_NE(mpSocket->localPort(), 0);
    EXPECT_TRUE(mpSocket->isIPv4() && mpSocket->isIPv6());
}

TEST_F(AsyncUdpSocketTest, BindingToAnAddressClosesTheOtherHalf) {
    ASSERT_TRUE(mpSocket->bindToAddress("127.0.0.1", 0, mError));
    EXPECT_FALSE(mpSocket->isIPv6());
    EXPECT_EQ(mpSocket->localHost(), "127.0.0.1");

    AsyncUdpSocket six;
    ASSERT_TRUE(six.bindToAddress("::1", 0, mError));
    EXPECT_FALSE(six.isIPv4());
    EXPECT_EQ(six.localHost(), "::1");
}

TEST_F(AsyncUdpSocketTest, TwoSocketsShareAPort) {
    Bind();
    AsyncUdpSocket other;
    EXPECT_TRUE(other.bindToPort(mpSocket->localPort(), mError));
}

TEST_F(AsyncUdpSocketTest, BindingFailsWhereTheFamilyIsMissing) {
    AsyncUdpSocket only6(nullptr, 0, false, true);
    EXPECT_FALSE(only6.bindToAddress("127.0.0.1", 0, mError));
    EXPECT_EQ(mError->domain, "AsyncUdpSocketErrorDomain");
    EXPECT_EQ(mError->code, 2);
    EXPECT_EQ(mError->description, "IPv4 is unavailable due to binding/connecting using IPv6 only");

    AsyncUdpSocket only4(nullptr, 0, true, false);
    EXPECT_FALSE(only4.bindToAddress("::1", 0, mError));
    EXPECT_EQ(mError->code, 3);
    EXPECT_EQ(mError->description, "IPv6 is unavailable due to binding/connecting using IPv4 only or is not "
                                   "supported on this platform");
}

TEST_F(AsyncUdpSocketTest, BindingFailsWhereTheSystemRefuses) {
    EXPECT_FALSE(mpSocket->bindToAddress("192.0.2.1", 0, mError)); // no address of this machine
    EXPECT_EQ(mError->domain, "AsyncUdpSocketErrorDomain");
    EXPECT_EQ(mError->code, -1);
    EXPECT_EQ(mError->description, "General CFSocket error");
}

TEST_F(AsyncUdpSocketTest, BindingFailsWhereTheNameIsUnknown) {
    EXPECT_FALSE(mpSocket->bindToAddress("no such host", 0, mError));
    EXPECT_EQ(mError->domain, "kCFStreamErrorDomainNetDB");
    EXPECT_EQ(mError->description, ::gai_strerror(mError->code));
}

TEST_F(AsyncUdpSocketTest, BindingTwiceIsMisuse) {
    Bind();
    EXPECT_EQ(MisuseOf([this] { mpSocket->bindToPort(0, mError); }), "Cannot bind a socket more than once.");
}

TEST_F(AsyncUdpSocketTest, SendingBindsTheSocket) {
    ASSERT_TRUE(mpSocket->sendData("x", PeerAddress(), -1.0, 1));
    ASSERT_TRUE(WaitForLine("sent #1"));
    EXPECT_EQ(MisuseOf([this] { mpSocket->bindToPort(0, mError); }), "Cannot bind a socket more than once.");
}

TEST_F(AsyncUdpSocketTest, AClosedSocketCannotBeUsedAgain) {
    Bind();
    mpSocket->close();
    EXPECT_EQ(MisuseOf([this] { mpSocket->bindToPort(0, mError); }), "The socket is closed.");
    EXPECT_EQ(MisuseOf([this] { mpSocket->joinMulticastGroup("225.1.1.1", mError); }),
              "The socket is closed.");
    EXPECT_FALSE(mpSocket->sendData("x", PeerAddress(), -1.0, 1));
    mpSocket->receiveWithTimeout(-1.0, 2);
    EXPECT_TRUE(WaitForLine("closed"));
    RunLoopPasses(5);
    EXPECT_THAT(mDelegate.mLines, ElementsAre("closed"));
}

// --- Joining ---

TEST_F(AsyncUdpSocketTest, JoiningAnIPv4GroupClosesTheOtherHalf) {
    Bind();
    ASSERT_TRUE(mpSocket->joinMulticastGroup("225.1.1.1", mError));
    EXPECT_TRUE(mpSocket->isIPv4());
    EXPECT_FALSE(mpSocket->isIPv6());
}

TEST_F(AsyncUdpSocketTest, JoiningAnIPv6GroupClosesTheOtherHalf) {
    Bind();
    ASSERT_TRUE(mpSocket->joinMulticastGroup("ff02::4242", "::1", mError));
    EXPECT_FALSE(mpSocket->isIPv4());
    EXPECT_TRUE(mpSocket->isIPv6());
}

TEST_F(AsyncUdpSocketTest, AMemberReceivesWhatIsSentToTheGroup) {
    Bind();
    ASSERT_TRUE(mpSocket->joinMulticastGroup("225.1.1.1", "127.0.0.1", mError));
    mpSocket->receiveWithTimeout(-1.0, 3);
    ASSERT_TRUE(mPeer.Send("hello", mpSocket->localPort(), "225.1.1.1"));
    EXPECT_TRUE(WaitForLine("received hello #3 from 127.0.0.1"));
}

TEST_F(AsyncUdpSocketTest, JoiningBeforeBindingIsMisuse) {
    EXPECT_EQ(MisuseOf([this] { mpSocket->joinMulticastGroup("225.1.1.1", mError); }),
              "Must bind a socket before joining a multicast group.");
}

TEST_F(AsyncUdpSocketTest, JoiningFailsWhereNothingMatches) {
    Bind();
    EXPECT_FALSE(mpSocket->joinMulticastGroup("225.1.1.1", "::1", mError));
    EXPECT_EQ(mError->domain, "AsyncUdpSocketErrorDomain");
    EXPECT_EQ(mError->code, 1);
    EXPECT_EQ(mError->description, "Invalid group and/or address, not matching existing socket(s)");
    EXPECT_TRUE(mpSocket->isIPv4() && mpSocket->isIPv6());
}

TEST_F(AsyncUdpSocketTest, JoiningFailsWhereTheSystemRefuses) {
    Bind();
    EXPECT_FALSE(mpSocket->joinMulticastGroup("10.0.0.1", mError)); // no group
    EXPECT_EQ(mError->domain, "kCFStreamErrorDomainPOSIX");
    EXPECT_EQ(mError->code, -1);
    EXPECT_EQ(mError->description, "Unable to join IPv4 multicast group");
    EXPECT_FALSE(mpSocket->joinMulticastGroup("fe80::1", mError));
    EXPECT_EQ(mError->description, "Unable to join IPv6 multicast group");
}

TEST_F(AsyncUdpSocketTest, JoiningFailsWhereANameIsUnknown) {
    Bind();
    EXPECT_FALSE(mpSocket->joinMulticastGroup("225.1.1.1", "no such host", mError));
    EXPECT_EQ(mError->domain, "kCFStreamErrorDomainNetDB");
    EXPECT_EQ(mError->description,
              std::string("Invalid parameter 'address': ") + ::gai_strerror(mError->code));
    EXPECT_FALSE(mpSocket->joinMulticastGroup("no such group", mError));
    EXPECT_EQ(mError->domain, "kCFStreamErrorDomainNetDB");
    EXPECT_EQ(mError->description, std::string("Invalid parameter 'group': ") + ::gai_strerror(mError->code));
}

TEST_F(AsyncUdpSocketTest, ErrorTextsAreTheDocumentedOnes) {
    EXPECT_EQ(MakeUdpSocketError(kAsyncUdpSocketSendTimeoutError).description, "Send operation timed out");
    EXPECT_EQ(MakeUdpSocketError(kAsyncUdpSocketReceiveTimeoutError).description,
              "Receive operation timed out");
}

// --- Closing ---

TEST_F(AsyncUdpSocketTest, ClosesAtOnceAndReportsItLater) {
    Bind();
    mpSocket->close();
    EXPECT_TRUE(mpSocket->isClosed());
    EXPECT_FALSE(mpSocket->isIPv4() || mpSocket->isIPv6());
    EXPECT_EQ(mpSocket->localPort(), 0);
    EXPECT_THAT(mDelegate.mLines, IsEmpty());
    EXPECT_TRUE(WaitForLine("closed"));
}

TEST_F(AsyncUdpSocketTest, ClosingForgetsWhatIsQueued) {
    Bind();
    ASSERT_TRUE(mpSocket->sendData("x", PeerAddress(), -1.0, 1));
    mpSocket->receiveWithTimeout(0.0, 2);
    mpSocket->close();
    mpSocket->close();
    ASSERT_TRUE(WaitForLine("closed"));
    RunLoopPasses(5);
    EXPECT_THAT(mDelegate.mLines, ElementsAre("closed"));
    EXPECT_FALSE(mPeer.HasDatagram());
}

TEST_F(AsyncUdpSocketTest, ClosesAfterSending) {
    ASSERT_TRUE(mpSocket->sendData("a", PeerAddress(), -1.0, 1));
    ASSERT_TRUE(mpSocket->sendData("b", PeerAddress(), -1.0, 2));
    mpSocket->receiveWithTimeout(-1.0, 3);
    mpSocket->closeAfterSending();
    EXPECT_FALSE(mpSocket->sendData("c", PeerAddress(), -1.0, 4));
    EXPECT_FALSE(mpSocket->isClosed());
    ASSERT_TRUE(WaitForLine("closed"));
    EXPECT_THAT(mDelegate.mLines, ElementsAre("sent #1", "sent #2", "closed"));
}

TEST_F(AsyncUdpSocketTest, ClosesAfterReceiving) {
    Bind();
    mpSocket->receiveWithTimeout(-1.0, 1);
    mpSocket->closeAfterReceiving();
    mpSocket->receiveWithTimeout(-1.0, 2);
    RunLoopPasses(5);
    EXPECT_FALSE(mpSocket->isClosed());
    ASSERT_TRUE(mPeer.Send("last", mpSocket->localPort()));
    ASSERT_TRUE(WaitForLine("closed"));
    EXPECT_THAT(mDelegate.mLines, ElementsAre("received last #1 from 127.0.0.1", "closed"));
}

TEST_F(AsyncUdpSocketTest, ClosesAfterBothOnlyWhenBothAreDrained) {
    Bind();
    mpSocket->receiveWithTimeout(-1.0, 1);
    ASSERT_TRUE(mpSocket->sendData("a", PeerAddress(), -1.0, 2));
    mpSocket->closeAfterSendingAndReceiving();
    ASSERT_TRUE(WaitForLine("sent #2"));
    RunLoopPasses(5);
    EXPECT_FALSE(mpSocket->isClosed()); // a receive without a time-out keeps it open
    ASSERT_TRUE(mPeer.Send("last", mpSocket->localPort()));
    EXPECT_TRUE(WaitForLine("closed"));
}

TEST_F(AsyncUdpSocketTest, ClosesOnTheNextPassWithNothingToDo) {
    mpSocket->closeAfterSendingAndReceiving();
    EXPECT_FALSE(mpSocket->isClosed());
    EXPECT_TRUE(WaitForLine("closed"));
}

TEST_F(AsyncUdpSocketTest, DestructionReportsNothing) {
    Bind();
    mpSocket->receiveWithTimeout(-1.0, 1);
    mpSocket->close();
    mpSocket.reset();
    RunLoopPasses(5);
    EXPECT_THAT(mDelegate.mLines, IsEmpty());
}

// --- Out of turn ---

using AsyncUdpSocketDeathTest = AsyncUdpSocketTest;

TEST_F(AsyncUdpSocketDeathTest, StepsOutOfTurnStopTheProgram) {
    const SocketError error{"domain", 1, "text"};
    const std::vector<std::pair<std::string, std::function<void()>>> steps = {
        {"Trying to complete current receive when there is no current receive.",
         [this] { mpSocket->CompleteCurrentReceive(); }},
        {"Trying to end current receive when there is no current receive.",
         [this] { mpSocket->EndCurrentReceive(); }},
        {"Trying to fail current receive when there is no current receive.",
         [&] { mpSocket->FailCurrentReceive(error); }},
        {"Trying to complete current send when there is no current send.",
         [this] { mpSocket->CompleteCurrentSend(); }},
        {"Trying to end current send when there is no current send.", [this] { mpSocket->EndCurrentSend(); }},
        {"Trying to fail current send when there is no current send.",
         [&] { mpSocket->FailCurrentSend(error); }},
        {"\\(sock == theSocket4\\) \\|\\| \\(sock == theSocket6\\)",
         [this] { mpSocket->onSocketEvent(nullptr, DatagramSocket::kReadable); }},
    };
    for (const auto& [condition, step] : steps) {
        EXPECT_DEATH(step(), "Mac/AsyncUdpSocket.*" + condition);
    }
}

TEST_F(AsyncUdpSocketTest, AnUnknownEventIsLogged) {
    ::testing::internal::CaptureStdout();
    mpSocket->onSocketEvent(mpSocket->Half(AF_INET), 3);
    const std::string log = ::testing::internal::GetCapturedStdout();
    EXPECT_THAT(log, HasSubstr("AsyncUdpSocket 0x"));
    EXPECT_THAT(log, HasSubstr(" received unexpected CFSocketCallBackType 3.\n"));
}

} // namespace
