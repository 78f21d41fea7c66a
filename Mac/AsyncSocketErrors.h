#pragma once

#include <optional>
#include <stdexcept>
#include <string>

/// What ended a connection or kept it from starting.
struct SocketError {
    std::string domain;
    int code = 0;
    std::string description; ///< for the user; "" where the domain has no texts

    /// One short sentence for the user about what the error means, without a full stop; the code as text
    /// where no better reason is known.
    std::string localizedFailureReason() const;
};

inline constexpr const char* kAsyncSocketErrorDomain = "AsyncSocketErrorDomain";
inline constexpr const char* kPosixErrorDomain = "POSIX";
inline constexpr const char* kNetDBErrorDomain = "kCFStreamErrorDomainNetDB";

/// The codes of kAsyncSocketErrorDomain.
enum AsyncSocketErrorCode : int {
    kAsyncSocketCFSocketError = -1,
    kAsyncSocketCanceledError = 1,
    kAsyncSocketConnectTimeoutError = 2,
    kAsyncSocketReadMaxedOutError = 3,
    kAsyncSocketReadTimeoutError = 4,
    kAsyncSocketWriteTimeoutError = 5,
};

/// The domains in which the streams report errors.
enum class StreamErrorDomain : int {
    kNone = 0,
    kPosix = 1,
    kSSL = 3,
    kSOCKS = 5,
    kNetServices = 10,
    kNetDB = 12,
    kSystemConfiguration = 13,
};

/// An error as the streams report it; the default is "no error".
struct StreamError {
    StreamErrorDomain domain = StreamErrorDomain::kNone;
    int code = 0;

    friend bool operator==(const StreamError&, const StreamError&) = default;
};

/// The error of the socket itself, with its text in the user's language.
SocketError MakeSocketError(AsyncSocketErrorCode zCode);

/// The error that a failed system call leaves behind.
SocketError MakeErrnoError(int zErrno);

/// What the streams report, as an error object; none for "no error".
std::optional<SocketError> MakeStreamError(const StreamError& zError);

/// Misuse of the connect calls.
class AsyncSocketException : public std::logic_error {
public:
    using std::logic_error::logic_error;
};
