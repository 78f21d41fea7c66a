#pragma once

#include "AsyncSocketErrors.h"
#include "ByteRing.h"
#include "FileDescriptor.h"
#include "HostResolver.h"

#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// What one side of a pair of streams reports.
enum class StreamEvent : int {
    kOpenCompleted = 1,
    kHasBytesAvailable = 2,
    kCanAcceptBytes = 4,
    kErrorOccurred = 8,
    kEndEncountered = 16,
};

/// Receives the events of a pair of streams, always from the event loop, never from within a call of the
/// streams. The streams may be destroyed inside each of these.
class SocketStreamsClient {
public:
    virtual ~SocketStreamsClient() = default;
    virtual void onReadStreamEvent(StreamEvent zEvent) = 0;
    virtual void onWriteStreamEvent(StreamEvent zEvent) = 0;
};

/// The two directions of one TCP connection, each with a buffer of its own, so that small reads and writes
/// cost a memory copy and not a system call. The event loop fills and empties the buffers.
///
/// Both sides report "open completed" first, or "error occurred" when no address of the host answers. Then
/// the read side reports "has bytes available" whenever bytes came in, the write side "can accept bytes"
/// whenever there is room for more. The end is reported by the read side, an error by both. The end and a
/// failure to receive come after everything received has been read; a failure to send waits for a reader
/// only as long as it keeps reading.
class SocketStreams : public QObject {
public:
    static constexpr std::size_t kBufferSize = std::size_t{256} * 1024;
    static constexpr int kLingerMilliseconds = 10'000;

    SocketStreams(std::string zHost, std::uint16_t zPort, SocketStreamsClient& zrClient,
                  HostLookup zLookup = LookUpHost);

    /// Closes without further events. What was written is still sent, while the event loop runs and for at
    /// most kLingerMilliseconds.
    ~SocketStreams() override;

    SocketStreams(const SocketStreams&) = delete;
    SocketStreams& operator=(const SocketStreams&) = delete;

    /// Starts to connect; the addresses of a name are tried in turn and the error of the last one counts.
    /// Returns an error when not even the start was possible; there are no events then.
    StreamError Open();

    bool HasBytesAvailable() const { return !mIncoming.IsEmpty(); }

    std::size_t BytesAvailable() const { return mIncoming.Size(); }

    /// Takes up to zSize of the bytes available and returns how many.
    std::size_t Read(char* zpBytes, std::size_t zSize);

    bool CanAcceptBytes() const { return mOpen && !mSendingFailed && !mOutgoing.IsFull(); }

    /// Takes up to zSize bytes for sending and returns how many.
    std::size_t Write(const char* zpBytes, std::size_t zSize);

    /// Sends what the system takes of what was written, at once instead of with the next pass of the event
    /// loop. False when that failed, which is also reported as an event.
    bool SendNow();

    /// What "error occurred" was about; "no error" otherwise.
    StreamError GetError() const { return mError; }

    /// The native handle; -1 while there is none.
    int GetDescriptor() const { return mDescriptor.Get(); }

    /// The two ends of the connection, without an address while there is none.
    SocketAddress GetPeerAddress() const { return mOpen ? mPeer : SocketAddress(); }

    SocketAddress GetLocalAddress() const;

private:
    void OnResolved(const ResolvedHost& zHost);
    StreamError ConnectToNextAddress(StreamError zError);
    int StartConnecting(const SocketAddress& zAddress);
    void FinishConnecting();
    void OpenCompleted();
    void OnReadable();
    void OnWritable();
    void SendWritten();
    void ReceivingEnded(StreamError zError);
    void SendingFailed(StreamError zError);
    void SetError(StreamError zError);
    void ReportEnding();
    void ReportError();
    void UpdateReadNotifier();

    std::string mHost;
    std::uint16_t mPort;
    SocketStreamsClient& mrClient;
    HostLookup mLookup;
    std::unique_ptr<HostResolver> mpResolver;
    std::vector<SocketAddress> mAddresses;
    std::size_t mNextAddress = 0;

    FileDescriptor mDescriptor;
    std::unique_ptr<QSocketNotifier> mpReadable; ///< off while there is no room
    std::unique_ptr<QSocketNotifier> mpWritable; ///< off unless the system did not take all there was to send
    QTimer mSendCall;                            ///< what is written may go with the next pass of the loop
    SocketAddress mPeer;
    ByteRing mIncoming{kBufferSize};
    ByteRing mOutgoing{kBufferSize};

    bool mOpen = false;
    bool mReceivingEnded = false;
    bool mSendingFailed = false;
    int mPatience = 0; ///< passes of the loop that a failure to send still waits for a reader
    StreamError mError;
    QTimer mReportCall;
};
