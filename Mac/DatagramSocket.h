#pragma once

#include "FileDescriptor.h"
#include "HostResolver.h"

#include <QtCore/QByteArray>
#include <QtCore/QSocketNotifier>

#include <cstddef>
#include <functional>
#include <memory>

/// A non-blocking UDP socket of one address family with its readiness events.
///
/// The operations of the system return 0 or its errno, EAGAIN where the socket is merely not ready.
class DatagramSocket {
public:
    enum Event : int { kReadable = 1, kWritable = 8 };

    /// Called from the event loop, once for each time that an event has been asked for. It may destroy the
    /// socket.
    using Handler = std::function<void(Event zEvent)>;

    /// zFamily is AF_INET or AF_INET6; an IPv6 socket takes no IPv4 traffic.
    DatagramSocket(int zFamily, const Handler& zHandler);

    /// False when the system had no such socket; errno says why, and nothing else may be called.
    bool IsOpen() const { return mDescriptor.IsOpen(); }

    /// The native handle.
    int Native() const { return mDescriptor.Get(); }

    int SetOption(int zLevel, int zName, const void* zpValue, std::size_t zSize);
    int Bind(const SocketAddress& zAddress);

    /// Where the socket is bound; without an address while it is not.
    SocketAddress GetLocalAddress() const;

    /// Whether a datagram, or an error in place of one, is waiting.
    bool HasDatagram() const;

    /// Whether the system has room for a datagram.
    bool CanSend() const;

    void AskForReadable() { mpReadable->setEnabled(true); }

    void AskForWritable() { mpWritable->setEnabled(true); }

    /// Takes one datagram into zrData, which is shrunk to it; what is longer than zrData was is cut off.
    int Receive(QByteArray& zrData, SocketAddress& zrSender);

    /// Sends one whole datagram.
    int Send(const QByteArray& zData, const SocketAddress& zTarget);

private:
    std::unique_ptr<QSocketNotifier> MakeNotifier(QSocketNotifier::Type zType, Event zEvent,
                                                  const Handler& zHandler) const;
    bool IsReady(short zEvents) const;

    FileDescriptor mDescriptor;
    std::unique_ptr<QSocketNotifier> mpReadable;
    std::unique_ptr<QSocketNotifier> mpWritable;
};
