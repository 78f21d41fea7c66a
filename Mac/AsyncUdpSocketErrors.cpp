#include "AsyncUdpSocketErrors.h"

#include <QtCore/QCoreApplication>

#include <netdb.h>

#include <algorithm>
#include <array>

namespace {

struct UdpSocketErrorText {
    int code;
    const char* text;
};

constexpr auto kUdpSocketErrorTexts = std::to_array<UdpSocketErrorText>({
    {kAsyncUdpSocketCFSocketError, QT_TRANSLATE_NOOP("AsyncUdpSocket", "General CFSocket error")},
    {kAsyncUdpSocketBadParameter,
     QT_TRANSLATE_NOOP("AsyncUdpSocket", "Invalid group and/or address, not matching existing socket(s)")},
    {kAsyncUdpSocketIPv4Unavailable,
     QT_TRANSLATE_NOOP("AsyncUdpSocket", "IPv4 is unavailable due to binding/connecting using IPv6 only")},
    {kAsyncUdpSocketIPv6Unavailable,
     QT_TRANSLATE_NOOP("AsyncUdpSocket",
                       "IPv6 is unavailable due to binding/connecting using IPv4 only or is "
                       "not supported on this platform")},
    {kAsyncUdpSocketSendTimeoutError, QT_TRANSLATE_NOOP("AsyncUdpSocket", "Send operation timed out")},
    {kAsyncUdpSocketReceiveTimeoutError, QT_TRANSLATE_NOOP("AsyncUdpSocket", "Receive operation timed out")},
});

} // namespace

SocketError MakeUdpSocketError(AsyncUdpSocketErrorCode zCode) {
    const auto* const pText =
        std::ranges::find(kUdpSocketErrorTexts, static_cast<int>(zCode), &UdpSocketErrorText::code);
    return {kAsyncUdpSocketErrorDomain, zCode,
            QCoreApplication::translate("AsyncUdpSocket", pText->text).toStdString()};
}

SocketError MakeResolverError(int zCode, const std::string& zTemplate) {
    std::string text = zTemplate;
    text.replace(text.find("%@"), 2, ::gai_strerror(zCode));
    return {kNetDBErrorDomain, zCode, text};
}
