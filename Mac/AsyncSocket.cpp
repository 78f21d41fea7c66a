#include "AsyncSocket.h"

#include "CommonUtils.h"
#include "DeferredCall.h"

#include <QtCore/QPointer>

#include <algorithm>
#include <limits>
#include <utility>

namespace {

constexpr const char* kSource = "Mac/AsyncSocket";
constexpr const char* kDefaultMode = "default";
constexpr qsizetype kWriteSlice = 4096;

template <typename Packet>
double GetProgress(const Packet& zPacket, qsizetype zTotal, long& zrTag, qsizetype& zrBytesDone,
                   qsizetype& zrTotal) {
    zrTag = zPacket.mTag;
    zrBytesDone = zPacket.mBytesDone;
    zrTotal = zTotal;
    return zTotal > 0 ? static_cast<double>(zrBytesDone) / static_cast<double>(zTotal)
                      : std::numeric_limits<double>::quiet_NaN();
}

} // namespace

AsyncSocket::AsyncSocket(AsyncSocketDelegate* zpDelegate, long zUserData)
    : mpDelegate(zpDelegate), mUserData(zUserData), mRunLoopModes{kDefaultMode} {
    PrepareCall(mConnectTimer, [this] { CloseWithError(MakeSocketError(kAsyncSocketConnectTimeoutError)); });
    PrepareCall(mReadTimer, [this] {
        EndCurrentRead();
        CloseWithError(MakeSocketError(kAsyncSocketReadTimeoutError));
    });
    PrepareCall(mWriteTimer, [this] {
        EndCurrentWrite();
        CloseWithError(MakeSocketError(kAsyncSocketWriteTimeoutError));
    });
    PrepareCall(mDequeueReadCall, [this] { DequeueRead(); });
    PrepareCall(mDequeueWriteCall, [this] { DequeueWrite(); });
    PrepareCall(mDisconnectCall, [this] { disconnect(); });
    PrepareCall(mReportCall, [this] { ReportClose(); });
}

AsyncSocket::~AsyncSocket() = default;

bool AsyncSocket::canSafelySetDelegate() const {
    return !HasReads() && !HasWrites();
}

// Connecting

bool AsyncSocket::connectToHost(const std::string& zHost, std::uint16_t zPort,
                                std::optional<SocketError>& zrError) {
    return connectToHost(zHost, zPort, -1.0, zrError);
}

bool AsyncSocket::connectToHost(const std::string& zHost, std::uint16_t zPort, double zTimeout,
                                std::optional<SocketError>& zrError) {
    if (mpDelegate == nullptr) {
        throw AsyncSocketException("Attempting to connect without a delegate. Set a delegate first.");
    }
    if (mpStreams) {
        throw AsyncSocketException(
            "Attempting to connect while connected or accepting connections. Disconnect first.");
    }
    zrError.reset();
    if (!OpenStreams(zHost, zPort, zrError)) {
        return false;
    }
    StartTimer(mConnectTimer, zTimeout);
    mConnectStarted = true;
    return true;
}

std::unique_ptr<SocketStreams> AsyncSocket::MakeStreams(const std::string& zHost, std::uint16_t zPort) {
    return std::make_unique<SocketStreams>(zHost, zPort, static_cast<SocketStreamsClient&>(*this));
}

bool AsyncSocket::OpenStreams(const std::string& zHost, std::uint16_t zPort,
                              std::optional<SocketError>& zrError) {
    mpStreams = MakeStreams(zHost, zPort);
    const QPointer<SocketStreams> connection(mpStreams.get());
    const bool wanted = mpDelegate->onSocketWillConnect(*this);
    if (!connection || !wanted) {
        zrError = MakeSocketError(kAsyncSocketCanceledError);
    } else if ((zrError = MakeStreamError(mpStreams->Open()))) {
        DebugPrintf("AsyncSocket %p couldn't open read stream,\n", static_cast<const void*>(this));
    }
    if (zrError && connection) {
        disconnect();
    }
    return !zrError;
}

void AsyncSocket::StreamOpened() {
    if (!isConnected()) {
        return;
    }
    const SocketAddress peer = mpStreams->GetPeerAddress();
    if (!peer.IsInternet()) {
        SocketError error = MakeSocketError(kAsyncSocketCFSocketError);
        error.description = "AsyncSocket couldn't determine IP version of socket";
        DebugPrintf("AsyncSocket %p couldn't get socket from streams, %s. Disconnecting.\n",
                    static_cast<const void*>(this), error.description.c_str());
        CloseWithError(error);
        return;
    }
    mConnectTimer.stop();
    StartCall(mDequeueReadCall);
    StartCall(mDequeueWriteCall);
    if (mpDelegate != nullptr) {
        mpDelegate->onSocketDidConnectToHost(*this, peer.GetHost(), peer.GetPort());
    }
}

std::string AsyncSocket::connectedHost() const {
    return isConnected() ? mpStreams->GetPeerAddress().GetHost() : "";
}

std::uint16_t AsyncSocket::connectedPort() const {
    return isConnected() ? mpStreams->GetPeerAddress().GetPort() : std::uint16_t{0};
}

std::string AsyncSocket::localHost() const {
    return isConnected() ? mpStreams->GetLocalAddress().GetHost() : "";
}

std::uint16_t AsyncSocket::localPort() const {
    return isConnected() ? mpStreams->GetLocalAddress().GetPort() : std::uint16_t{0};
}

bool AsyncSocket::setRunLoopModes(const std::vector<std::string>& zModes) {
    if (zModes.empty()) {
        return false;
    }
    mRunLoopModes = zModes;
    return true;
}

// Stream events

void AsyncSocket::onReadStreamEvent(StreamEvent zEvent) {
    Require(mpStreams != nullptr, kSource, "theReadStream != NULL");
    switch (zEvent) {
    case StreamEvent::kOpenCompleted:
        mReadStreamOpen = true;
        StreamOpened();
        break;
    case StreamEvent::kHasBytesAvailable:
        DoBytesAvailable();
        break;
    case StreamEvent::kErrorOccurred:
    case StreamEvent::kEndEncountered:
        CloseWithError(MakeStreamError(mpStreams->GetError()));
        break;
    default:
        DebugPrintf("AsyncSocket %p received unexpected CFReadStream callback, CFStreamEventType %d.\n",
                    static_cast<const void*>(this), static_cast<int>(zEvent));
    }
}

void AsyncSocket::onWriteStreamEvent(StreamEvent zEvent) {
    Require(mpStreams != nullptr, kSource, "theWriteStream != NULL");
    switch (zEvent) {
    case StreamEvent::kOpenCompleted:
        mWriteStreamOpen = true;
        StreamOpened();
        break;
    case StreamEvent::kCanAcceptBytes:
        DoSendBytes();
        break;
    case StreamEvent::kErrorOccurred:
    case StreamEvent::kEndEncountered:
        CloseWithError(MakeStreamError(mpStreams->GetError()));
        break;
    default:
        DebugPrintf("AsyncSocket %p received unexpected CFWriteStream callback, CFStreamEventType %d.\n",
                    static_cast<const void*>(this), static_cast<int>(zEvent));
    }
}

// Reading

void AsyncSocket::readDataWithTimeout(double zTimeout, long zTag) {
    QueueRead(AsyncReadPacket::AllAvailable(zTimeout, zTag));
}

void AsyncSocket::readDataToLength(qsizetype zLength, double zTimeout, long zTag) {
    if (zLength > 0 && !mForbidReadsAndWrites) {
        QueueRead(AsyncReadPacket::ToLength(zLength, zTimeout, zTag));
    }
}

void AsyncSocket::readDataToData(const QByteArray& zTerminator, double zTimeout, long zTag) {
    readDataToData(zTerminator, zTimeout, -1, zTag);
}

void AsyncSocket::readDataToData(const QByteArray& zTerminator, double zTimeout, qsizetype zMaxLength,
                                 long zTag) {
    const bool fits = zMaxLength < 0 || zMaxLength >= zTerminator.size();
    if (!zTerminator.isEmpty() && fits) {
        QueueRead(AsyncReadPacket::ToTerminator(zTerminator, zTimeout, zMaxLength, zTag));
    }
}

void AsyncSocket::QueueRead(AsyncReadPacket zPacket) {
    if (!mForbidReadsAndWrites) {
        mReadQueue.push_back(std::move(zPacket));
        StartCall(mDequeueReadCall);
    }
}

void AsyncSocket::DequeueRead() {
    if (mCurrentRead || !mpStreams || mClosingWithError) {
        return;
    }
    if (!mReadQueue.empty()) {
        mCurrentRead = std::move(mReadQueue.front());
        mReadQueue.pop_front();
        StartTimer(mReadTimer, mCurrentRead->mTimeout);
        DoBytesAvailable();
    } else if (mDisconnectAfterReads && !IsWaitingForWrites()) {
        disconnect();
    }
}

void AsyncSocket::DoBytesAvailable() {
    if (!mCurrentRead) {
        return;
    }
    const qsizetype doneBefore = mCurrentRead->mBytesDone;
    if (mCurrentRead->mReadAllAvailable) {
        const auto available = static_cast<qsizetype>(mpStreams->BytesAvailable());
        mCurrentRead->mBuffer.reserve(available + mLeftover.size() + kReadAllStep);
    }
    bool complete = false;
    while (!complete && !mCurrentRead->HasReachedMaxLength() &&
           (!mLeftover.isEmpty() || mpStreams->HasBytesAvailable())) {
        complete = ReadStep();
    }
    const qsizetype newBytes = mCurrentRead->mBytesDone - doneBefore;
    if (complete || (mCurrentRead->mReadAllAvailable && newBytes > 0)) {
        CompleteCurrentRead();
        return;
    }
    const bool maxedOut = mCurrentRead->HasReachedMaxLength();
    const QPointer<SocketStreams> connection(mpStreams.get());
    if (newBytes > 0 && mpDelegate != nullptr) {
        mpDelegate->onSocketDidReadPartialDataOfLength(*this, newBytes, mCurrentRead->mTag);
    }
    if (connection && maxedOut) {
        CloseWithError(MakeSocketError(kAsyncSocketReadMaxedOutError));
    }
}

bool AsyncSocket::ReadStep() {
    AsyncReadPacket& rPacket = *mCurrentRead;
    const bool preBuffering = rPacket.IsTerminatorRead() && mPreBuffering && mLeftover.isEmpty();
    if (rPacket.mReadAllAvailable) {
        rPacket.SetFreeLength(kReadAllStep);
    } else if (rPacket.IsTerminatorRead()) {
        rPacket.SetFreeLength(preBuffering ? rPacket.PreBufferLength() : rPacket.SafeLength());
    }
    const qsizetype taken = TakeBytes();
    rPacket.mBytesDone += taken;
    return IsReadComplete(preBuffering ? taken : 0);
}

qsizetype AsyncSocket::TakeBytes() {
    AsyncReadPacket& rPacket = *mCurrentRead;
    const qsizetype room = rPacket.FreeLength();
    if (mLeftover.isEmpty()) {
        return static_cast<qsizetype>(mpStreams->Read(rPacket.FreePart(), static_cast<std::size_t>(room)));
    }
    const qsizetype taken = std::min(room, mLeftover.size());
    std::copy_n(mLeftover.constData(), taken, rPacket.FreePart());
    mLeftover.remove(0, taken);
    return taken;
}

bool AsyncSocket::IsReadComplete(qsizetype zPreBuffered) {
    AsyncReadPacket& rPacket = *mCurrentRead;
    if (!rPacket.IsTerminatorRead()) {
        return rPacket.IsLengthRead() && rPacket.FreeLength() == 0;
    }
    if (zPreBuffered == 0) {
        return rPacket.EndsWithTerminator();
    }
    const qsizetype past = rPacket.CountPastTerminator(zPreBuffered);
    if (past > 0) {
        rPacket.mBytesDone -= past;
        mLeftover = QByteArray(rPacket.FreePart(), past);
    }
    return past >= 0;
}

void AsyncSocket::CompleteCurrentRead() {
    Require(mCurrentRead.has_value(), kSource,
            "Trying to complete current read when there is no current read.");
    AsyncReadPacket packet = std::move(*mCurrentRead);
    EndCurrentRead();
    packet.mBuffer.truncate(packet.mBytesDone);
    StartCall(mDequeueReadCall);
    if (mpDelegate != nullptr) {
        mpDelegate->onSocketDidReadData(*this, packet.mBuffer, packet.mTag);
    }
}

void AsyncSocket::EndCurrentRead() {
    Require(mCurrentRead.has_value(), kSource, "Trying to end current read when there is no current read.");
    mReadTimer.stop();
    mCurrentRead.reset();
}

// Writing

void AsyncSocket::writeData(const QByteArray& zData, double zTimeout, long zTag) {
    if (!zData.isEmpty() && !mForbidReadsAndWrites) {
        mWriteQueue.push_back({zData, 0, zTimeout, zTag});
        StartCall(mDequeueWriteCall);
    }
}

void AsyncSocket::DequeueWrite() {
    if (mCurrentWrite || !mpStreams || mClosingWithError) {
        return;
    }
    if (!mWriteQueue.empty()) {
        mCurrentWrite = std::move(mWriteQueue.front());
        mWriteQueue.pop_front();
        StartTimer(mWriteTimer, mCurrentWrite->mTimeout);
        DoSendBytes();
    } else if (mDisconnectAfterWrites && !IsWaitingForReads()) {
        disconnect();
    }
}

void AsyncSocket::DoSendBytes() {
    if (!mCurrentWrite) {
        return;
    }
    while (mCurrentWrite->LeftLength() > 0 && mpStreams->CanAcceptBytes()) {
        const qsizetype slice = std::min(kWriteSlice, mCurrentWrite->LeftLength());
        mCurrentWrite->mBytesDone += static_cast<qsizetype>(
            mpStreams->Write(mCurrentWrite->LeftPart(), static_cast<std::size_t>(slice)));
    }
    if (mCurrentWrite->LeftLength() == 0 && mpStreams->SendNow()) {
        CompleteCurrentWrite();
    }
}

void AsyncSocket::CompleteCurrentWrite() {
    Require(mCurrentWrite.has_value(), kSource,
            "Trying to complete current write when there is no current write.");
    const long tag = mCurrentWrite->mTag;
    EndCurrentWrite();
    StartCall(mDequeueWriteCall);
    if (mpDelegate != nullptr) {
        mpDelegate->onSocketDidWriteDataWithTag(*this, tag);
    }
}

void AsyncSocket::EndCurrentWrite() {
    mWriteTimer.stop();
    mCurrentWrite.reset();
}

// Progress

double AsyncSocket::progressOfReadReturningTag(long& zrTag, qsizetype& zrBytesDone,
                                               qsizetype& zrTotal) const {
    if (!mCurrentRead) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    const qsizetype total = mCurrentRead->IsLengthRead() ? mCurrentRead->mBuffer.size() : 0;
    return GetProgress(*mCurrentRead, total, zrTag, zrBytesDone, zrTotal);
}

double AsyncSocket::progressOfWriteReturningTag(long& zrTag, qsizetype& zrBytesDone,
                                                qsizetype& zrTotal) const {
    if (!mCurrentWrite) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    return GetProgress(*mCurrentWrite, mCurrentWrite->mData.size(), zrTag, zrBytesDone, zrTotal);
}

// Closing

void AsyncSocket::disconnectAfterReading() {
    DisconnectAfter(true, false);
}

void AsyncSocket::disconnectAfterWriting() {
    DisconnectAfter(false, true);
}

void AsyncSocket::disconnectAfterReadingAndWriting() {
    DisconnectAfter(true, true);
}

void AsyncSocket::DisconnectAfter(bool zReads, bool zWrites) {
    mForbidReadsAndWrites = true;
    mDisconnectAfterReads = mDisconnectAfterReads || zReads;
    mDisconnectAfterWrites = mDisconnectAfterWrites || zWrites;
    if (!IsWaitingForReads() && !IsWaitingForWrites()) {
        StartCall(mDisconnectCall);
    }
}

QByteArray AsyncSocket::unreadData() {
    if (!mClosingWithError) {
        return {};
    }
    while (mpStreams && mpStreams->HasBytesAvailable()) {
        const qsizetype size = mLeftover.size();
        mLeftover.resize(size + kReadAllStep);
        const std::size_t taken = mpStreams->Read(mLeftover.data() + size, kReadAllStep);
        mLeftover.truncate(size + static_cast<qsizetype>(taken));
    }
    return mLeftover;
}

void AsyncSocket::EmptyQueues() {
    if (mCurrentRead) {
        EndCurrentRead();
    }
    if (mCurrentWrite) {
        EndCurrentWrite();
    }
    mReadQueue.clear();
    mWriteQueue.clear();
    mDequeueReadCall.stop();
    mDequeueWriteCall.stop();
}

void AsyncSocket::CloseWithError(const std::optional<SocketError>& zError) {
    // The delegate may run the event loop from within the callback, and with it another failure.
    if (mClosingWithError) {
        return;
    }
    mClosingWithError = true;
    const QPointer<SocketStreams> connection(mpStreams.get());
    if (mCurrentRead) {
        mLeftover.prepend(mCurrentRead->mBuffer.constData(), mCurrentRead->mBytesDone);
    }
    EmptyQueues();
    if (mConnectStarted && mpDelegate != nullptr) {
        mpDelegate->onSocketWillDisconnectWithError(*this, zError);
    }
    if (connection) {
        disconnect();
    }
}

void AsyncSocket::disconnect() {
    EmptyQueues();
    mLeftover.clear();
    mDisconnectCall.stop();
    mConnectTimer.stop();
    mpStreams.reset();
    if (mConnectStarted) {
        ++mUnreportedCloses;
        StartCall(mReportCall);
    }
    mConnectStarted = false;
    mReadStreamOpen = false;
    mWriteStreamOpen = false;
    mForbidReadsAndWrites = false;
    mDisconnectAfterReads = false;
    mDisconnectAfterWrites = false;
    mClosingWithError = false;
}

void AsyncSocket::ReportClose() {
    if (--mUnreportedCloses > 0) {
        StartCall(mReportCall);
    }
    if (mpDelegate != nullptr) {
        mpDelegate->onSocketDidDisconnect(*this);
    }
}

// Terminators

QByteArray AsyncSocket::ZeroData() {
    return {1, '\0'};
}

QByteArray AsyncSocket::LFData() {
    return "\n";
}

QByteArray AsyncSocket::CRData() {
    return "\r";
}

QByteArray AsyncSocket::CRLFData() {
    return "\r\n";
}
