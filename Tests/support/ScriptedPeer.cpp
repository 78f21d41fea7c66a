#include "ScriptedPeer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <utility>

namespace {

int MakeSocket() {
    const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (descriptor < 0) {
        throw std::runtime_error("cannot make a socket for the tests");
    }
    return descriptor;
}

sockaddr_in LoopbackAddress(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

/// Binds to a free port and returns that.
std::uint16_t Bind(int descriptor) {
    sockaddr_in address = LoopbackAddress(0);
    socklen_t size = sizeof address;
    auto* pAddress = reinterpret_cast<sockaddr*>(&address);
    if (::bind(descriptor, pAddress, size) != 0 || ::getsockname(descriptor, pAddress, &size) != 0) {
        throw std::runtime_error("cannot bind to the loopback interface; is it up?");
    }
    return ntohs(address.sin_port);
}

void CloseIfOpen(int& descriptor) {
    if (descriptor >= 0) {
        ::close(std::exchange(descriptor, -1));
    }
}

} // namespace

ScriptedPeer::ScriptedPeer() : mListener(MakeSocket()), mPort(Bind(mListener)) {
    ::listen(mListener, 8);
}

ScriptedPeer::~ScriptedPeer() {
    CloseIfOpen(mConnection);
    CloseIfOpen(mListener);
}

bool ScriptedPeer::Accept() {
    const int connection = ::accept4(mListener, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (connection < 0) {
        return false;
    }
    CloseIfOpen(mConnection);
    mConnection = connection;
    mEnded = false;
    return true;
}

void ScriptedPeer::Send(const std::string& bytes) {
    mOutgoing += bytes;
    PumpOut();
}

void ScriptedPeer::PumpOut() {
    if (!HasConnection() && !Accept()) {
        return;
    }
    const ssize_t sent =
        ::send(mConnection, mOutgoing.data() + mSent, mOutgoing.size() - mSent, MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent > 0) {
        mSent += static_cast<std::size_t>(sent);
    }
}

void ScriptedPeer::Pump() {
    PumpOut();
    if (!HasConnection() || mEnded) {
        return;
    }
    std::array<char, 65536> buffer{};
    ssize_t count = 0;
    while ((count = ::recv(mConnection, buffer.data(), buffer.size(), MSG_DONTWAIT)) > 0) {
        mReceived.append(buffer.data(), static_cast<std::size_t>(count));
    }
    mEnded = count == 0 || errno != EAGAIN;
}

void ScriptedPeer::FinishSending() {
    ::shutdown(mConnection, SHUT_WR);
}

void ScriptedPeer::Close() {
    CloseIfOpen(mConnection);
}

void ScriptedPeer::Reset() {
    const linger atOnce{1, 0};
    ::setsockopt(mConnection, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    Close();
}

RefusingPort::RefusingPort() : mSocket(MakeSocket()), mPort(Bind(mSocket)) {}

RefusingPort::~RefusingPort() {
    CloseIfOpen(mSocket);
}

SilentPort::SilentPort() : mListener(MakeSocket()), mPort(Bind(mListener)) {
    ::listen(mListener, 0);
    const sockaddr_in address = LoopbackAddress(mPort);
    for (int& filler : mFillers) {
        filler = MakeSocket();
        const int result = ::connect(filler, reinterpret_cast<const sockaddr*>(&address), sizeof address);
        if (result != 0 && errno != EINPROGRESS) {
            throw std::runtime_error("cannot fill the queue of a port");
        }
    }
}

SilentPort::~SilentPort() {
    for (int& filler : mFillers) {
        CloseIfOpen(filler);
    }
    CloseIfOpen(mListener);
}
