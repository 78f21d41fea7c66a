#pragma once

#include "AsyncSocketErrors.h"

#include <stdexcept>
#include <string>

inline constexpr const char* kAsyncUdpSocketErrorDomain = "AsyncUdpSocketErrorDomain";
inline constexpr const char* kStreamPosixErrorDomain = "kCFStreamErrorDomainPOSIX";

/// The codes of kAsyncUdpSocketErrorDomain.
enum AsyncUdpSocketErrorCode : int {
    kAsyncUdpSocketCFSocketError = -1,
    kAsyncUdpSocketBadParameter = 1,
    kAsyncUdpSocketIPv4Unavailable = 2,
    kAsyncUdpSocketIPv6Unavailable = 3,
    kAsyncUdpSocketSendTimeoutError = 4,
    kAsyncUdpSocketReceiveTimeoutError = 5,
};

/// The error of the socket itself, with its text in the user's language.
SocketError MakeUdpSocketError(AsyncUdpSocketErrorCode zCode);

/// What getaddrinfo said of a host. zTemplate stands around its text in place of "%@"; "%@" alone leaves
/// the text bare.
SocketError MakeResolverError(int zCode, const std::string& zTemplate = "%@");

/// Misuse of a datagram socket.
class AsyncUdpSocketException : public std::logic_error {
public:
    using std::logic_error::logic_error;
};
