#include "SocketStreams.h"

#include "DeferredCall.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QPointer>

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/uio.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

namespace {

/// A reader that takes its bytes piece by piece asks for the next piece one pass of the loop later.
constexpr int kReaderPatience = 3;

struct SocketOption {
    int level;
    int name;
    int value;
};

constexpr auto kSocketOptions = std::to_array<SocketOption>({
    {IPPROTO_TCP, TCP_NODELAY, 1},
    {SOL_SOCKET, SO_KEEPALIVE, 1},
    {IPPROTO_TCP, TCP_KEEPIDLE, 15},
    {IPPROTO_TCP, TCP_KEEPINTVL, 5},
    {IPPROTO_TCP, TCP_KEEPCNT, 4},
});

StreamError PosixError(int zErrno) {
    return {StreamErrorDomain::kPosix, zErrno};
}

/// A socket that is merely not ready, as opposed to broken.
bool IsTemporary(int zErrno) {
    return zErrno == EAGAIN || zErrno == EWOULDBLOCK || zErrno == EINTR;
}

/// Sends what the system takes. Returns 0 or the errno of a broken connection.
int SendFrom(ByteRing& zrRing, int zDescriptor) {
    ByteRing::Parts parts = zrRing.UsedParts();
    msghdr message{};
    message.msg_iov = parts.data();
    message.msg_iovlen = parts.size();
    const ssize_t sent = ::sendmsg(zDescriptor, &message, MSG_NOSIGNAL);
    if (sent < 0) {
        return IsTemporary(errno) ? 0 : errno;
    }
    zrRing.Removed(static_cast<std::size_t>(sent));
    return 0;
}

/// Sends what a closed pair of streams still held, then goes away.
class LingeringSend : public QObject {
public:
    LingeringSend(FileDescriptor zDescriptor, ByteRing zBytes, QObject* zpOwner)
        : QObject(zpOwner), mDescriptor(std::move(zDescriptor)), mBytes(std::move(zBytes)),
          mWritable(mDescriptor.Get(), QSocketNotifier::Write) {
        QObject::connect(&mWritable, &QSocketNotifier::activated, this, [this] { OnWritable(); });
        QObject::connect(&mDeadline, &QTimer::timeout, this, [this] { Finish(); });
        mDeadline.start(SocketStreams::kLingerMilliseconds);
    }

private:
    void OnWritable() {
        if (SendFrom(mBytes, mDescriptor.Get()) != 0 || mBytes.IsEmpty()) {
            Finish();
        }
    }

    /// The connection closes at once; the object may have to wait until a nested event loop returns.
    void Finish() {
        mDeadline.stop();
        mWritable.setEnabled(false);
        mDescriptor = FileDescriptor();
        deleteLater();
    }

    FileDescriptor mDescriptor;
    ByteRing mBytes;
    QSocketNotifier mWritable;
    QTimer mDeadline;
};

} // namespace

SocketStreams::SocketStreams(std::string zHost, std::uint16_t zPort, SocketStreamsClient& zrClient,
                             HostLookup zLookup)
    : mHost(std::move(zHost)), mPort(zPort), mrClient(zrClient), mLookup(std::move(zLookup)) {
    PrepareCall(mSendCall, [this] { SendWritten(); });
    PrepareCall(mReportCall, [this] { ReportEnding(); });
}

SocketStreams::~SocketStreams() {
    mpReadable.reset();
    mpWritable.reset();
    if (mSendingFailed || mOutgoing.IsEmpty() || SendFrom(mOutgoing, mDescriptor.Get()) != 0 ||
        mOutgoing.IsEmpty() || QCoreApplication::instance() == nullptr) {
        return;
    }
    QObject* const pApplication = QCoreApplication::instance();
    auto pRest = std::make_unique<LingeringSend>(std::move(mDescriptor), std::move(mOutgoing), pApplication);
    static_cast<void>(pRest.release()); // the application owns it from here on
}

StreamError SocketStreams::Open() {
    if (std::optional<ResolvedHost> numeric = ResolveNumericHost(mHost, mPort)) {
        mAddresses = std::move(numeric->addresses);
        return ConnectToNextAddress({StreamErrorDomain::kNetDB, numeric->code});
    }
    try {
        mpResolver = std::make_unique<HostResolver>(mHost, mPort, mLookup,
                                                    [this](const ResolvedHost& host) { OnResolved(host); });
    } catch (const std::system_error& error) {
        return PosixError(error.code().value());
    }
    return {};
}

void SocketStreams::OnResolved(const ResolvedHost& zHost) {
    mAddresses = zHost.addresses;
    const int code = zHost.code != 0 ? zHost.code : EAI_NONAME;
    SetError(ConnectToNextAddress({StreamErrorDomain::kNetDB, code}));
    if (mError != StreamError()) {
        ReportError();
    }
}

StreamError SocketStreams::ConnectToNextAddress(StreamError zError) {
    while (mNextAddress < mAddresses.size()) {
        const int code = StartConnecting(mAddresses[mNextAddress++]);
        if (code == 0) {
            return {};
        }
        zError = PosixError(code);
    }
    return zError;
}

int SocketStreams::StartConnecting(const SocketAddress& zAddress) {
    mpWritable.reset();
    mDescriptor =
        FileDescriptor(::socket(zAddress.storage.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!mDescriptor.IsOpen()) {
        return errno;
    }
    for (const SocketOption& option : kSocketOptions) {
        ::setsockopt(mDescriptor.Get(), option.level, option.name, &option.value, sizeof option.value);
    }
    if (::connect(mDescriptor.Get(), zAddress.Get(), zAddress.length) != 0 && errno != EINPROGRESS) {
        return errno;
    }
    mPeer = zAddress;
    mpWritable = std::make_unique<QSocketNotifier>(mDescriptor.Get(), QSocketNotifier::Write);
    QObject::connect(mpWritable.get(), &QSocketNotifier::activated, this, [this] { OnWritable(); });
    return 0;
}

void SocketStreams::FinishConnecting() {
    mpWritable->setEnabled(false);
    int code = 0;
    socklen_t size = sizeof code;
    ::getsockopt(mDescriptor.Get(), SOL_SOCKET, SO_ERROR, &code, &size);
    if (code == 0) {
        OpenCompleted();
        return;
    }
    SetError(ConnectToNextAddress(PosixError(code)));
    if (mError != StreamError()) {
        ReportError();
    }
}

void SocketStreams::OpenCompleted() {
    mOpen = true;
    mpReadable = std::make_unique<QSocketNotifier>(mDescriptor.Get(), QSocketNotifier::Read);
    QObject::connect(mpReadable.get(), &QSocketNotifier::activated, this, [this] { OnReadable(); });
    const QPointer<SocketStreams> alive(this);
    mrClient.onReadStreamEvent(StreamEvent::kOpenCompleted);
    if (alive) {
        mrClient.onWriteStreamEvent(StreamEvent::kOpenCompleted);
    }
    if (alive && CanAcceptBytes()) {
        mrClient.onWriteStreamEvent(StreamEvent::kCanAcceptBytes);
    }
}

void SocketStreams::OnReadable() {
    // One bounded refill for each readiness: a sender that is faster than this program must not keep the
    // loop from running, nor a read from completing.
    ByteRing::Parts parts = mIncoming.FreeParts();
    const ssize_t received = ::readv(mDescriptor.Get(), parts.data(), static_cast<int>(parts.size()));
    if (received > 0) {
        mIncoming.Added(static_cast<std::size_t>(received));
        UpdateReadNotifier();
        mrClient.onReadStreamEvent(StreamEvent::kHasBytesAvailable);
    } else if (received == 0) {
        ReceivingEnded({});
    } else if (!IsTemporary(errno)) {
        ReceivingEnded(PosixError(errno));
    }
}

void SocketStreams::OnWritable() {
    if (mOpen) {
        SendWritten();
    } else {
        FinishConnecting();
    }
}

void SocketStreams::SendWritten() {
    SendNow();
    if (CanAcceptBytes()) {
        mrClient.onWriteStreamEvent(StreamEvent::kCanAcceptBytes);
    }
}

std::size_t SocketStreams::Read(char* zpBytes, std::size_t zSize) {
    const bool wasFull = mIncoming.IsFull();
    const std::size_t size = mIncoming.Take(zpBytes, zSize);
    if (wasFull) {
        UpdateReadNotifier();
    }
    if (mReceivingEnded && mIncoming.IsEmpty()) {
        StartCall(mReportCall);
    }
    mPatience = kReaderPatience;
    return size;
}

std::size_t SocketStreams::Write(const char* zpBytes, std::size_t zSize) {
    if (!CanAcceptBytes()) {
        return 0;
    }
    // Switching the notifier costs the event loop two system calls each time; mostly it is not needed.
    if (!mpWritable->isEnabled()) {
        StartCall(mSendCall);
    }
    return mOutgoing.Put(zpBytes, zSize);
}

bool SocketStreams::SendNow() {
    mSendCall.stop();
    const int code = SendFrom(mOutgoing, mDescriptor.Get());
    mpWritable->setEnabled(code == 0 && !mOutgoing.IsEmpty());
    if (code != 0) {
        SendingFailed(PosixError(code));
    }
    return code == 0;
}

SocketAddress SocketStreams::GetLocalAddress() const {
    SocketAddress address;
    address.length = sizeof address.storage;
    if (::getsockname(mDescriptor.Get(), reinterpret_cast<sockaddr*>(&address.storage), &address.length) !=
        0) {
        return {};
    }
    return address;
}

void SocketStreams::UpdateReadNotifier() {
    const bool wanted = !mReceivingEnded && !mIncoming.IsFull();
    if (mpReadable && mpReadable->isEnabled() != wanted) {
        mpReadable->setEnabled(wanted);
    }
}

void SocketStreams::ReceivingEnded(StreamError zError) {
    mReceivingEnded = true;
    SetError(zError);
    UpdateReadNotifier();
    if (mIncoming.IsEmpty()) {
        StartCall(mReportCall);
    }
}

void SocketStreams::SendingFailed(StreamError zError) {
    mSendingFailed = true;
    SetError(zError);
    mPatience = kReaderPatience;
    StartCall(mReportCall);
}

void SocketStreams::SetError(StreamError zError) {
    if (mError == StreamError()) {
        mError = zError;
    }
}

void SocketStreams::ReportEnding() {
    const bool everythingRead = mReceivingEnded && mIncoming.IsEmpty();
    if (!everythingRead && mPatience-- > 0) {
        StartCall(mReportCall);
        return;
    }
    if (mError == StreamError()) {
        mrClient.onReadStreamEvent(StreamEvent::kEndEncountered);
    } else {
        ReportError();
    }
}

void SocketStreams::ReportError() {
    const QPointer<SocketStreams> alive(this);
    mrClient.onReadStreamEvent(StreamEvent::kErrorOccurred);
    if (alive) {
        mrClient.onWriteStreamEvent(StreamEvent::kErrorOccurred);
    }
}
