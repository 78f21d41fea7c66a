#include "HostResolver.h"

#include "FileDescriptor.h"

#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>

#include <netdb.h>
#include <netinet/in.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace {

ResolvedHost GetAddresses(const std::string& zName, std::uint16_t zPort, int zFlags) {
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_NUMERICSERV | zFlags;
    addrinfo* pList = nullptr;
    ResolvedHost host;
    host.code = ::getaddrinfo(zName.c_str(), std::to_string(zPort).c_str(), &hints, &pList);
    if (host.code != 0) {
        return host;
    }
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(pList, &::freeaddrinfo);
    for (const addrinfo* pEntry = pList; pEntry != nullptr; pEntry = pEntry->ai_next) {
        SocketAddress& address = host.addresses.emplace_back();
        address.length = pEntry->ai_addrlen;
        std::memcpy(&address.storage, pEntry->ai_addr, pEntry->ai_addrlen);
    }
    return host;
}

/// Host and port of an Internet address as the system writes them.
std::pair<std::string, std::string> GetNumericNames(const SocketAddress& zAddress) {
    std::array<char, NI_MAXHOST> host{};
    std::array<char, NI_MAXSERV> port{};
    const int code = zAddress.IsInternet()
                         ? ::getnameinfo(zAddress.Get(), zAddress.length, host.data(), host.size(),
                                         port.data(), port.size(), NI_NUMERICHOST | NI_NUMERICSERV)
                         : EAI_FAMILY;
    return code == 0 ? std::pair<std::string, std::string>(host.data(), port.data())
                     : std::pair<std::string, std::string>("", "0");
}

} // namespace

bool SocketAddress::IsInternet() const {
    return storage.ss_family == AF_INET || storage.ss_family == AF_INET6;
}

std::string SocketAddress::GetHost() const {
    return GetNumericNames(*this).first;
}

std::uint16_t SocketAddress::GetPort() const {
    return static_cast<std::uint16_t>(std::stoul(GetNumericNames(*this).second));
}

ResolvedHost LookUpHost(const std::string& zName, std::uint16_t zPort) {
    return GetAddresses(zName, zPort, 0);
}

std::optional<ResolvedHost> ResolveNumericHost(const std::string& zHost, std::uint16_t zPort) {
    if (zHost.empty() || zHost.find('\0') != std::string::npos) {
        return ResolvedHost{EAI_NONAME, {}};
    }
    ResolvedHost host = GetAddresses(zHost, zPort, AI_NUMERICHOST);
    return host.code == EAI_NONAME ? std::nullopt : std::optional(std::move(host));
}

struct HostResolver::State {
    FileDescriptor done{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
    std::mutex mutex;
    ResolvedHost host;
};

HostResolver::HostResolver(const std::string& zName, std::uint16_t zPort, HostLookup zLookup,
                           Handler zHandler)
    : mpState(std::make_shared<State>()), mHandler(std::move(zHandler)) {
    if (!mpState->done.IsOpen()) {
        throw std::system_error(errno, std::generic_category());
    }
    mpNotifier = std::make_unique<QSocketNotifier>(mpState->done.Get(), QSocketNotifier::Read);
    QObject::connect(mpNotifier.get(), &QSocketNotifier::activated, [this] { Finish(); });
    std::thread([pState = mpState, lookup = std::move(zLookup), zName, zPort] {
        ResolvedHost host = lookup(zName, zPort);
        const std::scoped_lock lock(pState->mutex);
        pState->host = std::move(host);
        ::eventfd_write(pState->done.Get(), 1);
    }).detach();
}

HostResolver::~HostResolver() = default;

void HostResolver::Finish() {
    mpNotifier->setEnabled(false);
    ResolvedHost host;
    {
        const std::scoped_lock lock(mpState->mutex);
        host = std::move(mpState->host);
    }
    // The handler may destroy this object, and itself with it.
    const Handler handler = std::move(mHandler);
    handler(host);
}
