#pragma once

#include "AsyncSocketErrors.h"
#include "AsyncSocketPackets.h"
#include "SocketStreams.h"

#include <QtCore/QByteArray>
#include <QtCore/QTimer>

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class AsyncSocket;

/// Receives the outcomes of an AsyncSocket. The socket may be disconnected, connected again or destroyed
/// inside each of these.
class AsyncSocketDelegate {
public:
    virtual ~AsyncSocketDelegate() = default;

    /// Asked within the connect call, before the streams are opened; false cancels it.
    virtual bool onSocketWillConnect(AsyncSocket& /*socket*/) { return true; }

    /// Both streams are open.
    virtual void onSocketDidConnectToHost(AsyncSocket& /*socket*/, const std::string& /*host*/,
                                          std::uint16_t /*port*/) {}

    /// A read is complete.
    virtual void onSocketDidReadData(AsyncSocket& /*socket*/, const QByteArray& /*data*/, long /*tag*/) {}

    /// A length or terminator read has come length bytes further without being complete.
    virtual void onSocketDidReadPartialDataOfLength(AsyncSocket& /*socket*/, qsizetype /*length*/,
                                                    long /*tag*/) {}

    /// A write has been handed completely to the stream.
    virtual void onSocketDidWriteDataWithTag(AsyncSocket& /*socket*/, long /*tag*/) {}

    /// The connection is about to close, not by a call of disconnect; no error means that the stream ended.
    virtual void onSocketWillDisconnectWithError(AsyncSocket& /*socket*/,
                                                 const std::optional<SocketError>& /*error*/) {}

    /// Sent on the pass of the event loop after each close, unless the socket is gone by then.
    virtual void onSocketDidDisconnect(AsyncSocket& /*socket*/) {}

    /// For sockets that listen; a client socket never sends it.
    virtual void onSocketDidAcceptNewSocket(AsyncSocket& /*socket*/, AsyncSocket& /*newSocket*/) {}
};

/// A TCP client socket driven by the event loop of the thread that made it. Reads and writes are queued,
/// run one at a time as the streams become ready, and reported to the delegate. Nothing is started inside
/// the call that asks for it; the work begins with the next pass of the loop.
///
/// Time-outs are in seconds, negative for none, and run from when a request is taken from its queue.
/// The tag of a request comes back in its callbacks.
class AsyncSocket : protected SocketStreamsClient {
public:
    explicit AsyncSocket(AsyncSocketDelegate* zpDelegate = nullptr, long zUserData = 0);

    /// Closes; nothing is reported any more.
    ~AsyncSocket() override;

    AsyncSocket(const AsyncSocket&) = delete;
    AsyncSocket& operator=(const AsyncSocket&) = delete;

    AsyncSocketDelegate* delegate() const { return mpDelegate; }

    void setDelegate(AsyncSocketDelegate* zpDelegate) { mpDelegate = zpDelegate; }

    /// True when no request is queued or current, so that no callback can go to the wrong delegate.
    bool canSafelySetDelegate() const;

    /// A value of the caller, carried but never interpreted.
    long userData() const { return mUserData; }

    void setUserData(long zUserData) { mUserData = zUserData; }

    /// Starts to connect to a name or numeric address. False, with zrError filled and no callbacks, when
    /// not even that is possible; every later failure arrives as the pair of disconnect callbacks.
    /// Throws AsyncSocketException without a delegate, or when already connected or connecting.
    bool connectToHost(const std::string& zHost, std::uint16_t zPort, std::optional<SocketError>& zrError);
    bool connectToHost(const std::string& zHost, std::uint16_t zPort, double zTimeout,
                       std::optional<SocketError>& zrError);

    /// Closes at once. What was handed to the streams is still sent; queued requests are forgotten.
    void disconnect();

    /// Take no more requests and close as soon as the named queues have been worked off.
    void disconnectAfterReading();
    void disconnectAfterWriting();
    void disconnectAfterReadingAndWriting();

    /// Queues a read of whatever there is, at least one byte.
    void readDataWithTimeout(double zTimeout, long zTag);

    /// Queues a read of exactly zLength bytes; a length of 0 is ignored.
    void readDataToLength(qsizetype zLength, double zTimeout, long zTag);

    /// Queues a read up to and including zTerminator. Ignored when that is empty, or longer than a
    /// zMaxLength that is not negative. Reaching zMaxLength without it closes with an error.
    void readDataToData(const QByteArray& zTerminator, double zTimeout, long zTag);
    void readDataToData(const QByteArray& zTerminator, double zTimeout, qsizetype zMaxLength, long zTag);

    /// Queues a write; empty data is ignored.
    void writeData(const QByteArray& zData, double zTimeout, long zTag);

    /// The bytes that nobody has read; only while onSocketWillDisconnectWithError runs, else empty.
    QByteArray unreadData();

    /// Lets terminator reads take more than they need and keep the rest for the next read. It is on from
    /// the start.
    void enablePreBuffering() { mPreBuffering = true; }

    bool isConnected() const { return mReadStreamOpen && mWriteStreamOpen; }

    /// The two ends of the connection; "" and 0 while there is none.
    std::string connectedHost() const;
    std::uint16_t connectedPort() const;
    std::string localHost() const;
    std::uint16_t localPort() const;

    /// The event loop has one mode; the list is remembered. False when it is empty.
    bool setRunLoopModes(const std::vector<std::string>& zModes);

    const std::vector<std::string>& runLoopModes() const { return mRunLoopModes; }

    /// Whether a request of the kind is queued or current.
    bool HasReads() const { return mCurrentRead.has_value() || !mReadQueue.empty(); }

    bool HasWrites() const { return mCurrentWrite.has_value() || !mWriteQueue.empty(); }

    /// How much of the current request is done, from 0 to 1. Not a number when none is current or its
    /// total is unknown (zrTotal is 0 then). Without a current request nothing is filled in.
    double progressOfReadReturningTag(long& zrTag, qsizetype& zrBytesDone, qsizetype& zrTotal) const;
    double progressOfWriteReturningTag(long& zrTag, qsizetype& zrBytesDone, qsizetype& zrTotal) const;

    /// The usual terminators: a zero byte, "\n", "\r" and "\r\n".
    static QByteArray ZeroData();
    static QByteArray LFData();
    static QByteArray CRData();
    static QByteArray CRLFData();

protected:
    /// The pair of streams for one connection.
    virtual std::unique_ptr<SocketStreams> MakeStreams(const std::string& zHost, std::uint16_t zPort);

    // The steps of the state machine. Out of turn they stop the program.
    void onReadStreamEvent(StreamEvent zEvent) override;
    void onWriteStreamEvent(StreamEvent zEvent) override;
    void CompleteCurrentRead();
    void EndCurrentRead();
    void CompleteCurrentWrite();
    void EndCurrentWrite();

private:
    bool OpenStreams(const std::string& zHost, std::uint16_t zPort, std::optional<SocketError>& zrError);
    void StreamOpened();
    void QueueRead(AsyncReadPacket zPacket);
    void DequeueRead();
    void DequeueWrite();
    void DoBytesAvailable();
    bool ReadStep();
    qsizetype TakeBytes();
    bool IsReadComplete(qsizetype zPreBuffered);
    void DoSendBytes();
    void DisconnectAfter(bool zReads, bool zWrites);

    bool IsWaitingForReads() const { return mDisconnectAfterReads && HasReads(); }

    bool IsWaitingForWrites() const { return mDisconnectAfterWrites && HasWrites(); }

    void EmptyQueues();
    void CloseWithError(const std::optional<SocketError>& zError);
    void ReportClose();

    AsyncSocketDelegate* mpDelegate;
    long mUserData;
    std::unique_ptr<SocketStreams> mpStreams; ///< one connection; none while disconnected

    std::deque<AsyncReadPacket> mReadQueue;
    std::optional<AsyncReadPacket> mCurrentRead;
    std::deque<AsyncWritePacket> mWriteQueue;
    std::optional<AsyncWritePacket> mCurrentWrite;
    QByteArray mLeftover; ///< received past the end of a completed read

    std::vector<std::string> mRunLoopModes;
    bool mPreBuffering = true;
    bool mConnectStarted = false; ///< whether a close is reported
    bool mReadStreamOpen = false;
    bool mWriteStreamOpen = false;
    bool mForbidReadsAndWrites = false;
    bool mDisconnectAfterReads = false;
    bool mDisconnectAfterWrites = false;
    bool mClosingWithError = false;
    int mUnreportedCloses = 0; ///< more than one when connected again before the first was reported

    // Destroyed first, so that no deferred call finds a half destroyed socket.
    QTimer mConnectTimer;
    QTimer mReadTimer;
    QTimer mWriteTimer;
    QTimer mDequeueReadCall;
    QTimer mDequeueWriteCall;
    QTimer mDisconnectCall;
    QTimer mReportCall;
};
