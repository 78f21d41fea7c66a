#pragma once

#include "AsyncUdpSocketErrors.h"
#include "DatagramSocket.h"

#include <QtCore/QByteArray>
#include <QtCore/QTimer>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>

class AsyncUdpSocket;

/// Receives the outcomes of an AsyncUdpSocket. The socket may be closed or destroyed inside each of these;
/// none may run the event loop.
class AsyncUdpSocketDelegate {
public:
    virtual ~AsyncUdpSocketDelegate() = default;

    virtual void onUdpSocketDidSendDataWithTag(AsyncUdpSocket& /*socket*/, long /*tag*/) {}

    virtual void onUdpSocketDidNotSendDataWithTag(AsyncUdpSocket& /*socket*/, long /*tag*/,
                                                  const SocketError& /*error*/) {}

    /// One datagram and the numeric address and port that it came from. True ends the receive; false
    /// discards the datagram and keeps the same receive active for the next one.
    virtual bool onUdpSocketDidReceiveData(AsyncUdpSocket& /*socket*/, const QByteArray& /*data*/,
                                           long /*tag*/, const std::string& /*host*/,
                                           std::uint16_t /*port*/) {
        return true;
    }

    virtual void onUdpSocketDidNotReceiveDataWithTag(AsyncUdpSocket& /*socket*/, long /*tag*/,
                                                     const SocketError& /*error*/) {}

    /// Sent on the pass of the event loop after the close, unless the socket is gone by then.
    virtual void onUdpSocketDidClose(AsyncUdpSocket& /*socket*/) {}
};

/// One datagram to send.
struct AsyncSendPacket {
    QByteArray mData;
    SocketAddress mAddress;
    double mTimeout = -1.0; ///< seconds; negative is none
    long mTag = 0;
};

/// One request for a datagram and, once there is one, the datagram and where it came from.
struct AsyncReceivePacket {
    double mTimeout = -1.0; ///< seconds; negative is none
    long mTag = 0;
    QByteArray mData;
    std::string mHost;
    std::uint16_t mPort = 0;
};

/// A datagram socket driven by the event loop of the thread that made it, with an IPv4 and an IPv6 half.
/// Sends and receives are queued, run one of each at a time, and reported to the delegate. Nothing is
/// started inside the call that asks for it; the work begins with the next pass of the loop.
///
/// Time-outs are in seconds, negative for none, and run from when a request is taken from its queue. They
/// fail the request and leave the socket open. The tag of a request comes back in its callbacks.
class AsyncUdpSocket {
public:
    /// Opens the halves that are enabled. A half that this system does not support is left out; throws
    /// std::system_error when there is none at all.
    explicit AsyncUdpSocket(AsyncUdpSocketDelegate* zpDelegate = nullptr, long zUserData = 0,
                            bool zEnableIPv4 = true, bool zEnableIPv6 = true);

    /// Closes; nothing is reported any more.
    ~AsyncUdpSocket() = default;

    AsyncUdpSocket(const AsyncUdpSocket&) = delete;
    AsyncUdpSocket& operator=(const AsyncUdpSocket&) = delete;

    AsyncUdpSocketDelegate* delegate() const { return mpDelegate; }

    void setDelegate(AsyncUdpSocketDelegate* zpDelegate) { mpDelegate = zpDelegate; }

    /// A value of the caller, carried but never interpreted.
    long userData() const { return mUserData; }

    void setUserData(long zUserData) { mUserData = zUserData; }

    /// Binds each half to a port (0: any free one for each) on all interfaces, or on those of an address; a
    /// half without an address there is closed. Other sockets that allow it too may be bound to the same. A
    /// name in place of a numeric address is looked up while the caller waits. False, with zrError filled,
    /// when that fails; a half may be bound then, and only another socket is of use. Throws
    /// AsyncUdpSocketException when the socket is closed or bound.
    bool bindToPort(std::uint16_t zPort, std::optional<SocketError>& zrError);
    bool bindToAddress(const std::string& zAddress, std::uint16_t zPort, std::optional<SocketError>& zrError);

    /// Receives from now on what is sent to a multicast group, on the system's default interface or on the
    /// one that has an address. The half of the other family is closed. False, with zrError filled, when
    /// that fails. Throws AsyncUdpSocketException when the socket is closed or not bound.
    bool joinMulticastGroup(const std::string& zGroup, std::optional<SocketError>& zrError);
    bool joinMulticastGroup(const std::string& zGroup, const std::string& zAddress,
                            std::optional<SocketError>& zrError);

    /// Queues one datagram. False, and nothing is queued, when it is empty, when no more are taken, or when
    /// there is no half for the address. A name in place of a numeric host is looked up while the caller
    /// waits.
    bool sendData(const QByteArray& zData, const SocketAddress& zAddress, double zTimeout, long zTag);
    bool sendData(const QByteArray& zData, const std::string& zHost, std::uint16_t zPort, double zTimeout,
                  long zTag);

    /// Queues a request for one datagram; ignored when no more are taken.
    void receiveWithTimeout(double zTimeout, long zTag);

    /// Closes at once and forgets what is queued.
    void close();

    /// Take no more requests and close as soon as the named queues have been worked off.
    void closeAfterSending();
    void closeAfterReceiving();
    void closeAfterSendingAndReceiving();

    bool isClosed() const { return mClosed; }

    bool isIPv4() const { return mpSocket4 != nullptr; }

    bool isIPv6() const { return mpSocket6 != nullptr; }

    /// Where the socket is bound, of the IPv4 half if there is one; "" and 0 while it is not.
    std::string localHost() const { return LocalAddress().GetHost(); }

    std::uint16_t localPort() const { return LocalAddress().GetPort(); }

    /// How much of a datagram is taken, in bytes; the rest of a longer one is lost.
    std::uint32_t maxReceiveBufferSize() const { return mMaxReceiveBufferSize; }

    void setMaxReceiveBufferSize(std::uint32_t zSize) { mMaxReceiveBufferSize = zSize; }

protected:
    // The steps of the state machine. Out of turn they stop the program.
    void onSocketEvent(const DatagramSocket* zpSocket, int zEvent);
    bool CompleteCurrentReceive();
    void EndCurrentReceive();
    void FailCurrentReceive(const SocketError& zError);
    void CompleteCurrentSend();
    void EndCurrentSend();
    void FailCurrentSend(const SocketError& zError);

    /// The half of a family; null when it is closed or does not exist.
    DatagramSocket* Half(int zFamily) const;

private:
    std::unique_ptr<DatagramSocket> OpenHalf(int zFamily);
    std::unique_ptr<DatagramSocket>& OwnerOfHalf(int zFamily);
    void ThrowIfClosed() const;
    bool BindHalf(int zFamily, const std::optional<SocketAddress>& zAddress);
    bool JoinHalf(int zFamily, int zOption, const void* zpRequest, std::size_t zSize,
                  std::optional<SocketError>& zrError);
    SocketAddress LocalAddress() const;
    void DequeueReceive();
    void DoReceive(int zFamily);
    int TakeDatagram(DatagramSocket& zrSocket);
    void DequeueSend();
    void DoSend(int zFamily);
    void CloseAfter(bool zSends, bool zReceives);
    void CloseWhenDrained();

    AsyncUdpSocketDelegate* mpDelegate;
    long mUserData;
    std::unique_ptr<DatagramSocket> mpSocket4;
    std::unique_ptr<DatagramSocket> mpSocket6;

    std::deque<AsyncSendPacket> mSendQueue;
    std::optional<AsyncSendPacket> mCurrentSend;
    std::deque<AsyncReceivePacket> mReceiveQueue;
    std::optional<AsyncReceivePacket> mCurrentReceive;

    bool mBound = false;
    bool mForbidSendsAndReceives = false;
    bool mCloseAfterSends = false;
    bool mCloseAfterReceives = false;
    bool mClosed = false;
    bool mReceiveFromIPv4First = false; ///< the families take turns
    std::uint32_t mMaxReceiveBufferSize = 9216;

    // Destroyed first, so that no deferred call finds a half destroyed socket.
    QTimer mSendTimer;
    QTimer mReceiveTimer;
    QTimer mDequeueSendCall;
    QTimer mDequeueReceiveCall;
    QTimer mCloseCall;
    QTimer mReportCall;
};
