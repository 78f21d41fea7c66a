#pragma once

#include <cstdint>
#include <functional>
#include <string>

/// What a host says of itself on the network: its name, the service it offers and the port of that.
/// As text it is "name:service:port;"; docs/protocol.md has the format.
struct Announcement {
    std::string name;
    std::string optionName; ///< the service
    std::int32_t port = 0;
};

inline constexpr const char* kDesktopService = "StreamPlayer";
inline constexpr const char* kDeviceService = "FileServer";

std::string FormatAnnouncement(const Announcement& zAnnouncement);

/// Reads the announcements of one datagram in turn. Runs of ":" and ";" separate the fields, white space
/// before a field is passed over, and the last field may lack its separator. An incomplete announcement at
/// the end is passed over as well.
/// Returns false when something in the text is no announcement; what came before it has been taken.
bool ParseAnnouncements(const std::string& zText, const std::function<void(const Announcement&)>& zTake);
