#pragma once

#include <sys/socket.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QSocketNotifier;

/// An address and port to connect to, of any family.
struct SocketAddress {
    sockaddr_storage storage{};
    socklen_t length = 0;

    const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(&storage); }

    bool IsInternet() const;

    /// The numeric address as text, "" where there is none.
    std::string GetHost() const;

    /// The port, 0 where there is none.
    std::uint16_t GetPort() const;
};

/// The addresses of a host in the order in which to try them, or the getaddrinfo code that explains why
/// there are none.
struct ResolvedHost {
    int code = 0;
    std::vector<SocketAddress> addresses;
};

/// Finds the addresses of a name; may block for as long as it likes, on any thread.
using HostLookup = std::function<ResolvedHost(const std::string& zName, std::uint16_t zPort)>;

/// The lookup of the system.
ResolvedHost LookUpHost(const std::string& zName, std::uint16_t zPort);

/// The result for a numeric address, or for a text that cannot be a name at all. No resolver is asked.
std::optional<ResolvedHost> ResolveNumericHost(const std::string& zHost, std::uint16_t zPort);

/// One lookup that does not block the event loop. It runs on a thread of its own, which may outlive this
/// object; the handler is called on the thread of the loop, once, and never after the destruction.
/// The constructor throws std::system_error when the system has no thread or descriptor left.
class HostResolver {
public:
    using Handler = std::function<void(const ResolvedHost& zHost)>;

    HostResolver(const std::string& zName, std::uint16_t zPort, HostLookup zLookup, Handler zHandler);
    ~HostResolver();
    HostResolver(const HostResolver&) = delete;
    HostResolver& operator=(const HostResolver&) = delete;

private:
    struct State;

    void Finish();

    std::shared_ptr<State> mpState; ///< shared with the worker
    std::unique_ptr<QSocketNotifier> mpNotifier;
    Handler mHandler;
};
