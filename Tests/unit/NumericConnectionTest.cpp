#include "FileDescriptor.h"
#include "ScriptedPeer.h"
#include "SocketStreams.h"
#include "WaitFor.h"

#include <gtest/gtest.h>

#include <netinet/in.h>
#include <sys/socket.h>

#include <atomic>
#include <cerrno>

namespace {

/// A listener on the loopback address of IPv6, where this machine has one.
class Ipv6Listener {
public:
    Ipv6Listener() {
        sockaddr_in6 address{};
        address.sin6_family = AF_INET6;
        address.sin6_addr = in6addr_loopback;
        socklen_t size = sizeof address;
        auto* pAddress = reinterpret_cast<sockaddr*>(&address);
        mListening = ::bind(mSocket.Get(), pAddress, size) == 0 && ::listen(mSocket.Get(), 1) == 0 &&
                     ::getsockname(mSocket.Get(), pAddress, &size) == 0;
        mPort = ntohs(address.sin6_port);
    }

    bool IsListening() const { return mListening; }

    std::uint16_t Port() const { return mPort; }

private:
    FileDescriptor mSocket{::socket(AF_INET6, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)};
    bool mListening = false;
    std::uint16_t mPort = 0;
};

/// Connections to addresses that need no resolver; one that is asked all the same fails the test.
class NumericConnection : public ::testing::Test, public SocketStreamsClient {
protected:
    void onReadStreamEvent(StreamEvent zEvent) override { mFailed |= zEvent == StreamEvent::kErrorOccurred; }

    void onWriteStreamEvent(StreamEvent zEvent) override { mOpen |= zEvent == StreamEvent::kOpenCompleted; }

    /// Opens, and waits for the outcome; whether the connection stands.
    bool Connect(const std::string& zHost, std::uint16_t zPort) {
        mOpen = false;
        mFailed = false;
        // A lookup would run on a thread of its own, which may outlive the test.
        const auto pAsked = mAsked;
        mpStreams =
            std::make_unique<SocketStreams>(zHost, zPort, *this, [pAsked](const std::string&, std::uint16_t) {
                *pAsked = true;
                return ResolvedHost();
            });
        EXPECT_EQ(mpStreams->Open(), StreamError()) << zHost;
        EXPECT_TRUE(WaitFor([this] { return mOpen || mFailed; })) << zHost;
        EXPECT_FALSE(*pAsked) << zHost;
        return mOpen;
    }

    std::unique_ptr<SocketStreams> mpStreams;
    std::shared_ptr<std::atomic<bool>> mAsked = std::make_shared<std::atomic<bool>>(false);
    bool mOpen = false;
    bool mFailed = false;
};

TEST_F(NumericConnection, AsksNoResolver) {
    const ScriptedPeer peer;
    for (const char* host : {"127.0.0.1", "127.1", "2130706433", "0x7f.0.0.1"}) {
        EXPECT_TRUE(Connect(host, peer.Port())) << host;
        EXPECT_EQ(mpStreams->GetPeerAddress().GetHost(), "127.0.0.1") << host;
    }
}

TEST_F(NumericConnection, AsksNoResolverWhenItIsRefused) {
    const RefusingPort refusing;
    EXPECT_FALSE(Connect("127.0.0.1", refusing.Port()));
    EXPECT_EQ(mpStreams->GetError(), (StreamError{StreamErrorDomain::kPosix, ECONNREFUSED}));
}

TEST_F(NumericConnection, GoesOverIpv6) {
    const Ipv6Listener listener;
    if (!listener.IsListening()) {
        GTEST_SKIP() << "this machine has no IPv6 loopback address";
    }
    ASSERT_TRUE(Connect("::1", listener.Port()));
    EXPECT_EQ(mpStreams->GetPeerAddress().GetHost(), "::1");
    EXPECT_EQ(mpStreams->GetPeerAddress().GetPort(), listener.Port());
    EXPECT_EQ(mpStreams->GetLocalAddress().GetHost(), "::1");
}

} // namespace
