#include "AsyncSocketErrors.h"

#include <QtCore/QCoreApplication>

#include <netdb.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace {

constexpr const char* kTranslationContext = "AsyncSocket";

struct KeyedText {
    const char* text;
    const char* key; ///< tells translators which text is meant
};

struct SocketErrorText {
    int code;
    KeyedText text;
};

constexpr auto kSocketErrorTexts = std::to_array<SocketErrorText>({
    {kAsyncSocketCFSocketError,
     QT_TRANSLATE_NOOP3("AsyncSocket", "General CFSocket error", "AsyncSocketCFSocketError")},
    {kAsyncSocketCanceledError,
     QT_TRANSLATE_NOOP3("AsyncSocket", "Connection canceled", "AsyncSocketCanceledError")},
    {kAsyncSocketConnectTimeoutError,
     QT_TRANSLATE_NOOP3("AsyncSocket", "Attempt to connect to host timed out",
                        "AsyncSocketConnectTimeoutError")},
    {kAsyncSocketReadMaxedOutError,
     QT_TRANSLATE_NOOP3("AsyncSocket", "Read operation reached set maximum length",
                        "AsyncSocketReadMaxedOutError")},
    {kAsyncSocketReadTimeoutError,
     QT_TRANSLATE_NOOP3("AsyncSocket", "Read operation timed out", "AsyncSocketReadTimeoutError")},
    {kAsyncSocketWriteTimeoutError,
     QT_TRANSLATE_NOOP3("AsyncSocket", "Write operation timed out", "AsyncSocketWriteTimeoutError")},
});

struct FailureReason {
    const char* domain;
    int code;
    const char* reason;
};

constexpr auto kFailureReasons = std::to_array<FailureReason>({
    {kPosixErrorDomain, ECONNREFUSED,
     QT_TRANSLATE_NOOP("AsyncSocket", "nothing answers at this address and port")},
    {kPosixErrorDomain, EHOSTUNREACH, QT_TRANSLATE_NOOP("AsyncSocket", "there is no way to this address")},
    {kPosixErrorDomain, ENETUNREACH,
     QT_TRANSLATE_NOOP("AsyncSocket", "this computer is not on that network")},
    {kPosixErrorDomain, ENETDOWN, QT_TRANSLATE_NOOP("AsyncSocket", "the network connection is down")},
    {kPosixErrorDomain, EHOSTDOWN, QT_TRANSLATE_NOOP("AsyncSocket", "the device is switched off")},
    {kPosixErrorDomain, ETIMEDOUT, QT_TRANSLATE_NOOP("AsyncSocket", "the device does not answer")},
    {kPosixErrorDomain, ECONNRESET, QT_TRANSLATE_NOOP("AsyncSocket", "the device broke the connection off")},
    {kPosixErrorDomain, ECONNABORTED, QT_TRANSLATE_NOOP("AsyncSocket", "the connection was broken off")},
    {kPosixErrorDomain, EPIPE, QT_TRANSLATE_NOOP("AsyncSocket", "the device has closed the connection")},
    {kPosixErrorDomain, EACCES, QT_TRANSLATE_NOOP("AsyncSocket", "this connection is not allowed")},
    {kPosixErrorDomain, EPERM, QT_TRANSLATE_NOOP("AsyncSocket", "this connection is not allowed")},
    {kPosixErrorDomain, EADDRNOTAVAIL, QT_TRANSLATE_NOOP("AsyncSocket", "this address cannot be used")},
    {kPosixErrorDomain, EINVAL, QT_TRANSLATE_NOOP("AsyncSocket", "this address cannot be used")},
    {kPosixErrorDomain, EMFILE, QT_TRANSLATE_NOOP("AsyncSocket", "too many files are open")},
    {kPosixErrorDomain, ENFILE, QT_TRANSLATE_NOOP("AsyncSocket", "too many files are open")},
    {kNetDBErrorDomain, EAI_NONAME,
     QT_TRANSLATE_NOOP("AsyncSocket", "there is no device of this name or address")},
    {kNetDBErrorDomain, EAI_NODATA, QT_TRANSLATE_NOOP("AsyncSocket", "this name has no address")},
    {kNetDBErrorDomain, EAI_AGAIN,
     QT_TRANSLATE_NOOP("AsyncSocket", "names cannot be looked up at the moment")},
    {kNetDBErrorDomain, EAI_FAIL, QT_TRANSLATE_NOOP("AsyncSocket", "the name could not be looked up")},
    {kAsyncSocketErrorDomain, kAsyncSocketCanceledError,
     QT_TRANSLATE_NOOP("AsyncSocket", "the attempt was called off")},
    {kAsyncSocketErrorDomain, kAsyncSocketConnectTimeoutError,
     QT_TRANSLATE_NOOP("AsyncSocket", "the device did not answer in time")},
    {kAsyncSocketErrorDomain, kAsyncSocketReadMaxedOutError,
     QT_TRANSLATE_NOOP("AsyncSocket", "the device sent more than expected")},
    {kAsyncSocketErrorDomain, kAsyncSocketReadTimeoutError,
     QT_TRANSLATE_NOOP("AsyncSocket", "the device did not send in time")},
    {kAsyncSocketErrorDomain, kAsyncSocketWriteTimeoutError,
     QT_TRANSLATE_NOOP("AsyncSocket", "the device did not take the data in time")},
});

/// Domains of which nothing but the name is known.
struct BareDomain {
    StreamErrorDomain domain;
    const char* name;
};

constexpr auto kBareDomains = std::to_array<BareDomain>({
    {StreamErrorDomain::kNetServices, "kCFStreamErrorDomainNetServices"},
    {StreamErrorDomain::kSOCKS, "kCFStreamErrorDomainSOCKS"},
    {StreamErrorDomain::kSystemConfiguration, "kCFStreamErrorDomainSystemConfiguration"},
    {StreamErrorDomain::kSSL, "kCFStreamErrorDomainSSL"},
});

std::string Translate(const char* zText, const char* zKey = nullptr) {
    return QCoreApplication::translate(kTranslationContext, zText, zKey).toStdString();
}

} // namespace

std::string SocketError::localizedFailureReason() const {
    const auto* const pReason = std::ranges::find_if(kFailureReasons, [this](const FailureReason& reason) {
        return domain == reason.domain && code == reason.code;
    });
    return pReason != kFailureReasons.end() ? Translate(pReason->reason) : std::to_string(code);
}

SocketError MakeSocketError(AsyncSocketErrorCode zCode) {
    const auto* const pText =
        std::ranges::find(kSocketErrorTexts, static_cast<int>(zCode), &SocketErrorText::code);
    return {kAsyncSocketErrorDomain, zCode, Translate(pText->text.text, pText->text.key)};
}

SocketError MakeErrnoError(int zErrno) {
    return {kPosixErrorDomain, zErrno, std::strerror(zErrno)};
}

std::optional<SocketError> MakeStreamError(const StreamError& zError) {
    if (zError == StreamError()) {
        return std::nullopt;
    }
    if (zError.domain == StreamErrorDomain::kPosix) {
        return MakeErrnoError(zError.code);
    }
    if (zError.domain == StreamErrorDomain::kNetDB) {
        return SocketError{kNetDBErrorDomain, zError.code, ::gai_strerror(zError.code)};
    }
    const auto* const pDomain = std::ranges::find(kBareDomains, zError.domain, &BareDomain::domain);
    const bool known = pDomain != kBareDomains.end();
    return SocketError{known ? pDomain->name : "CFStreamError (unlisted domain)", zError.code, ""};
}
