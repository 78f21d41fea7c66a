#include "DatagramSocket.h"

#include <netinet/in.h>
#include <poll.h>

#include <cerrno>

namespace {

int ErrnoUnless(bool zSuccess) {
    if (zSuccess) {
        return 0;
    }
    return errno == EWOULDBLOCK || errno == EINTR ? EAGAIN : errno;
}

} // namespace

DatagramSocket::DatagramSocket(int zFamily, const Handler& zHandler)
    : mDescriptor(::socket(zFamily, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, IPPROTO_UDP)) {
    if (!IsOpen()) {
        return;
    }
    const int on = 1;
    const int off = 0;
    if (zFamily == AF_INET6) {
        SetOption(IPPROTO_IPV6, IPV6_V6ONLY, &on, sizeof on);
    } else {
        // The groups that other programs of this machine have joined are theirs.
        SetOption(IPPROTO_IP, IP_MULTICAST_ALL, &off, sizeof off);
    }
    mpReadable = MakeNotifier(QSocketNotifier::Read, kReadable, zHandler);
    mpWritable = MakeNotifier(QSocketNotifier::Write, kWritable, zHandler);
}

std::unique_ptr<QSocketNotifier> DatagramSocket::MakeNotifier(QSocketNotifier::Type zType, Event zEvent,
                                                              const Handler& zHandler) const {
    auto pNotifier = std::make_unique<QSocketNotifier>(mDescriptor.Get(), zType);
    pNotifier->setEnabled(false);
    QObject::connect(pNotifier.get(), &QSocketNotifier::activated, pNotifier.get(),
                     [notifier = pNotifier.get(), handler = zHandler, zEvent] {
                         notifier->setEnabled(false);
                         handler(zEvent);
                     });
    return pNotifier;
}

int DatagramSocket::SetOption(int zLevel, int zName, const void* zpValue, std::size_t zSize) {
    return ErrnoUnless(
        ::setsockopt(mDescriptor.Get(), zLevel, zName, zpValue, static_cast<socklen_t>(zSize)) == 0);
}

int DatagramSocket::Bind(const SocketAddress& zAddress) {
    return ErrnoUnless(::bind(mDescriptor.Get(), zAddress.Get(), zAddress.length) == 0);
}

SocketAddress DatagramSocket::GetLocalAddress() const {
    SocketAddress address;
    address.length = sizeof address.storage;
    const auto pStorage = reinterpret_cast<sockaddr*>(&address.storage);
    const bool known = ::getsockname(mDescriptor.Get(), pStorage, &address.length) == 0;
    return known && address.GetPort() != 0 ? address : SocketAddress();
}

bool DatagramSocket::HasDatagram() const {
    return IsReady(POLLIN);
}

bool DatagramSocket::CanSend() const {
    return IsReady(POLLOUT);
}

bool DatagramSocket::IsReady(short zEvents) const {
    pollfd question{mDescriptor.Get(), zEvents, 0};
    return ::poll(&question, 1, 0) > 0;
}

int DatagramSocket::Receive(QByteArray& zrData, SocketAddress& zrSender) {
    zrSender.length = sizeof zrSender.storage;
    const ssize_t size = ::recvfrom(mDescriptor.Get(), zrData.data(), static_cast<std::size_t>(zrData.size()),
                                    0, reinterpret_cast<sockaddr*>(&zrSender.storage), &zrSender.length);
    const int code = ErrnoUnless(size >= 0);
    zrData.truncate(code == 0 ? size : 0);
    return code;
}

int DatagramSocket::Send(const QByteArray& zData, const SocketAddress& zTarget) {
    return ErrnoUnless(::sendto(mDescriptor.Get(), zData.constData(), static_cast<std::size_t>(zData.size()),
                                MSG_NOSIGNAL, zTarget.Get(), zTarget.length) >= 0);
}
