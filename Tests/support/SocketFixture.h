#pragma once

#include "AsyncSocket.h"
#include "RecordingSocketDelegate.h"
#include "ScriptedPeer.h"
#include "WaitFor.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using Lines = std::vector<std::string>;

/// A socket with a recording delegate, and the peer to which it connects.
class SocketFixture : public ::testing::Test {
protected:
    bool Connect(double timeout = -1.0) {
        return mpSocket->connectToHost("127.0.0.1", mPeer.Port(), timeout, mConnectError);
    }

    /// Connects and forgets the callbacks of that.
    void ConnectToPeer() {
        ASSERT_TRUE(Connect());
        ASSERT_TRUE(WaitForLine("connected to 127.0.0.1"));
        ASSERT_TRUE(WaitFor([this] { return mPeer.HasConnection() || mPeer.Accept(); }));
        Lines().swap(mDelegate.mLines);
    }

    /// Waits for a callback while the peer sends, but does not receive.
    bool WaitForLine(const std::string& line) {
        return WaitFor([&] {
            mPeer.PumpOut();
            return mDelegate.Has(line);
        });
    }

    /// Waits until the peer has received that many bytes.
    bool WaitForReceived(std::size_t count) {
        return WaitFor([&] {
            mPeer.Pump();
            return mPeer.Received().size() >= count;
        });
    }

    /// What the peer receives until the socket closes.
    std::string ReceiveToEnd() {
        EXPECT_TRUE(WaitFor([this] {
            mPeer.Pump();
            return mPeer.HasEnded();
        }));
        return mPeer.Received();
    }

    ScriptedPeer mPeer;
    RecordingSocketDelegate mDelegate;
    std::unique_ptr<AsyncSocket> mpSocket = std::make_unique<AsyncSocket>(&mDelegate);
    std::optional<SocketError> mConnectError;
};
