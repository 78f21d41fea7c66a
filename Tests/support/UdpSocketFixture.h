#pragma once

#include "AsyncUdpSocket.h"
#include "DatagramPeer.h"
#include "WaitFor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Writes down the callbacks of datagram sockets, one line for each, and runs a hook after each.
class RecordingUdpDelegate : public AsyncUdpSocketDelegate {
public:
    std::vector<std::string> mLines;
    QByteArray mData;        ///< of the last datagram
    std::uint16_t mPort = 0; ///< that it came from
    bool mTakes = true;
    std::function<void(const std::string& line)> mHook;

    bool Has(const std::string& line) const { return std::ranges::count(mLines, line) > 0; }

    void onUdpSocketDidSendDataWithTag(AsyncUdpSocket& /*socket*/, long tag) override {
        Record("sent #" + std::to_string(tag));
    }

    void onUdpSocketDidNotSendDataWithTag(AsyncUdpSocket& /*socket*/, long tag,
                                          const SocketError& error) override {
        Record("not sent #" + std::to_string(tag) + ' ' + error.description);
    }

    bool onUdpSocketDidReceiveData(AsyncUdpSocket& /*socket*/, const QByteArray& data, long tag,
                                   const std::string& host, std::uint16_t port) override {
        mData = data;
        mPort = port;
        const bool takes = mTakes; // the hook may change it, for the next one
        Record("received " +
               (data.size() < 40 ? data.toStdString() : std::to_string(data.size()) + " bytes") + " #" +
               std::to_string(tag) + " from " + host);
        return takes;
    }

    void onUdpSocketDidNotReceiveDataWithTag(AsyncUdpSocket& /*socket*/, long tag,
                                             const SocketError& error) override {
        Record("not received #" + std::to_string(tag) + ' ' + error.description);
    }

    void onUdpSocketDidClose(AsyncUdpSocket& /*socket*/) override { Record("closed"); }

private:
    void Record(const std::string& line) {
        mLines.push_back(line);
        if (mHook) {
            // The hook may replace itself, or destroy the socket.
            const auto hook = mHook;
            hook(line);
        }
    }
};

/// Opens the steps of the state machine to tests of what happens when they come out of turn.
class OpenUdpSocket : public AsyncUdpSocket {
public:
    using AsyncUdpSocket::AsyncUdpSocket;
    using AsyncUdpSocket::CompleteCurrentReceive;
    using AsyncUdpSocket::CompleteCurrentSend;
    using AsyncUdpSocket::EndCurrentReceive;
    using AsyncUdpSocket::EndCurrentSend;
    using AsyncUdpSocket::FailCurrentReceive;
    using AsyncUdpSocket::FailCurrentSend;
    using AsyncUdpSocket::Half;
    using AsyncUdpSocket::onSocketEvent;
};

/// A socket with a recording delegate, and somebody to exchange datagrams with.
class UdpSocketFixture : public ::testing::Test {
protected:
    void Bind() { ASSERT_TRUE(mpSocket->bindToPort(0, mError)); }

    SocketAddress PeerAddress() { return ResolveNumericHost("127.0.0.1", mPeer.Port())->addresses.front(); }

    bool WaitForLine(const std::string& line) {
        return WaitFor([&] { return mDelegate.Has(line); });
    }

    bool WaitForLines(std::size_t count) {
        return WaitFor([&] { return mDelegate.mLines.size() >= count; });
    }

    DatagramPeer mPeer;
    RecordingUdpDelegate mDelegate;
    std::unique_ptr<OpenUdpSocket> mpSocket = std::make_unique<OpenUdpSocket>(&mDelegate);
    std::optional<SocketError> mError;
};
