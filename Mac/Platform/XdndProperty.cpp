#include "XdndProperty.h"

#include <QtGui/QGuiApplication>
#include <xcb/xcb.h>

#include <cstdlib>
#include <string_view>

namespace {

constexpr std::string_view kProperty = "XdndDirectSave0";
/// Targets read the promise only if it is of this type.
constexpr std::string_view kType = "text/plain";
constexpr std::uint8_t kBitsPerItem = 8;
constexpr std::uint32_t kLongestUrlInWords = 16 * 1024;

struct Freed {
    void operator()(void* zpReply) const { std::free(zpReply); }
};

template <typename Reply>
std::unique_ptr<Reply, Freed> Owned(Reply* zpReply) {
    return std::unique_ptr<Reply, Freed>(zpReply);
}

xcb_atom_t Atom(xcb_connection_t* zpConnection, std::string_view zName) {
    const auto cookie =
        xcb_intern_atom(zpConnection, 0, static_cast<std::uint16_t>(zName.size()), zName.data());
    const auto reply = Owned(xcb_intern_atom_reply(zpConnection, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

xcb_window_t SourceOfDrag(xcb_connection_t* zpConnection) {
    const auto cookie = xcb_get_selection_owner(zpConnection, Atom(zpConnection, "XdndSelection"));
    const auto reply = Owned(xcb_get_selection_owner_reply(zpConnection, cookie, nullptr));
    return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

std::string TextOf(const xcb_get_property_reply_t& zrReply) {
    const bool isWhole = zrReply.format == kBitsPerItem && zrReply.bytes_after == 0;
    const auto length = static_cast<std::size_t>(xcb_get_property_value_length(&zrReply));
    return isWhole ? std::string(static_cast<const char*>(xcb_get_property_value(&zrReply)), length) : "";
}

} // namespace

std::unique_ptr<DirectSaveProperty> XdndProperty::Make() {
    const auto* interface = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    // A platform without windows has the interface too, and no connection.
    xcb_connection_t* connection = interface == nullptr ? nullptr : interface->connection();
    return connection == nullptr ? nullptr : std::make_unique<XdndProperty>(connection);
}

XdndProperty::XdndProperty(xcb_connection_t* zpConnection) : mpConnection(zpConnection) {}

bool XdndProperty::SetPromise(const std::string& zName) {
    mWindow = SourceOfDrag(mpConnection);
    if (mWindow == XCB_WINDOW_NONE) {
        return false;
    }
    xcb_change_property(mpConnection, XCB_PROP_MODE_REPLACE, mWindow, Atom(mpConnection, kProperty),
                        Atom(mpConnection, kType), kBitsPerItem, static_cast<std::uint32_t>(zName.size()),
                        zName.data());
    xcb_flush(mpConnection);
    return true;
}

std::string XdndProperty::ReadPromise() {
    const auto cookie = xcb_get_property(mpConnection, 0, mWindow, Atom(mpConnection, kProperty),
                                         XCB_GET_PROPERTY_TYPE_ANY, 0, kLongestUrlInWords);
    const auto reply = Owned(xcb_get_property_reply(mpConnection, cookie, nullptr));
    return reply ? TextOf(*reply) : "";
}
