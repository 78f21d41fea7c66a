#include "Announcement.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

// The input is one datagram. What is read from it must be made of its bytes, and what is written again must
// read the same.

namespace {

void Check(bool holds) {
    if (!holds) {
        std::abort();
    }
}

void CheckAnnouncement(const Announcement& heard, const std::string& datagram) {
    Check(!heard.name.empty() && datagram.find(heard.name) != std::string::npos);
    Check(!heard.optionName.empty() && datagram.find(heard.optionName) != std::string::npos);
    int count = 0;
    const bool wellFormed = ParseAnnouncements(FormatAnnouncement(heard), [&](const Announcement& again) {
        Check(again.name == heard.name && again.optionName == heard.optionName && again.port == heard.port);
        ++count;
    });
    Check(wellFormed && count == 1);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string datagram(reinterpret_cast<const char*>(data), size);
    std::size_t taken = 0;
    ParseAnnouncements(datagram, [&](const Announcement& heard) {
        CheckAnnouncement(heard, datagram);
        ++taken;
    });
    // Three fields and the two separators between them, and no byte serves two announcements.
    Check(taken <= size / 5);
    return 0;
}
