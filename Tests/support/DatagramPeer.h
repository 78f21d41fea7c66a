#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

/// Somebody else on the network: a plain blocking UDP socket bound to an address of the loopback network, of
/// which every 127.x.y.z can be one.
class DatagramPeer {
public:
    explicit DatagramPeer(const std::string& address = "127.0.0.1", std::uint16_t port = 0)
        : mSocket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        const int reuse = 1;
        ::setsockopt(mSocket, SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof reuse);
        const sockaddr_in local = Address(address, port);
        if (::bind(mSocket, reinterpret_cast<const sockaddr*>(&local), sizeof local) != 0) {
            throw std::runtime_error("cannot bind a datagram peer");
        }
    }

    ~DatagramPeer() { ::close(mSocket); }

    DatagramPeer(const DatagramPeer&) = delete;
    DatagramPeer& operator=(const DatagramPeer&) = delete;

    std::uint16_t Port() const {
        sockaddr_in local{};
        socklen_t size = sizeof local;
        ::getsockname(mSocket, reinterpret_cast<sockaddr*>(&local), &size);
        return ntohs(local.sin_port);
    }

    void Join(const std::string& group) {
        const ip_mreq request{Address(group, 0).sin_addr, in_addr{INADDR_ANY}};
        if (::setsockopt(mSocket, IPPROTO_IP, IP_ADD_MEMBERSHIP, &request, sizeof request) != 0) {
            throw std::runtime_error("cannot join a group");
        }
    }

    /// Whether the system took the datagram.
    bool Send(std::string_view data, std::uint16_t port, const std::string& address = "127.0.0.1") {
        const sockaddr_in target = Address(address, port);
        return ::sendto(mSocket, data.data(), data.size(), 0, reinterpret_cast<const sockaddr*>(&target),
                        sizeof target) == static_cast<ssize_t>(data.size());
    }

    /// Whether a datagram is waiting.
    bool HasDatagram() const {
        pollfd question{mSocket, POLLIN, 0};
        return ::poll(&question, 1, 0) > 0;
    }

    /// The next datagram; waits for it.
    std::string Receive() {
        std::array<char, 65536> buffer{};
        const ssize_t size = ::recv(mSocket, buffer.data(), buffer.size(), 0);
        return size < 0 ? std::string() : std::string(buffer.data(), static_cast<std::size_t>(size));
    }

private:
    static sockaddr_in Address(const std::string& address, std::uint16_t port) {
        sockaddr_in internet{};
        internet.sin_family = AF_INET;
        internet.sin_port = htons(port);
        ::inet_pton(AF_INET, address.c_str(), &internet.sin_addr);
        return internet;
    }

    int mSocket;
};
