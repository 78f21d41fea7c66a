#include "Replies.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr std::string_view kDirEnd = "</dir>";

/// One pair. Clients look for the first place in the text where the key's letters occur, so what could
/// contain any word (a name) has to come last.
std::string Pair(std::string_view key, std::string_view value) {
    std::string text(key);
    text += " = \"";
    text += value;
    text += '"';
    return text;
}

std::string AnnouncedSize(std::uint64_t size) {
    return std::to_string(std::min(size, kMaxAnnouncedSize));
}

std::string FormatEntry(const TreeEntry& entry, std::string_view rights) {
    // Clients take a size of 0 for "nothing to download", which would leave out a folder's contents.
    const std::string size = entry.isFolder ? "1" : AnnouncedSize(entry.size);
    return "<item " + Pair("Type", entry.isFolder ? "Dir" : "File") + ' ' + Pair("Date", entry.date) + ' ' +
           Pair("Size", size) + ' ' + Pair("Rights", rights) + ' ' + Pair("Name", entry.name) + ">\n";
}

} // namespace

bool DeviceIdentity::KnowsDirRecurse() const {
    return std::lround(std::strtod(version.c_str(), nullptr) * 100.0) >= 110;
}

std::string FormatWelcome(const DeviceIdentity& identity) {
    return "<welcome>" + Pair("Version", identity.version) + ' ' + Pair("ID", identity.id) + ' ' +
           Pair("Name", identity.name) + "</welcome>";
}

std::string FormatDir(const std::vector<TreeEntry>& entries, std::string_view rights, std::size_t& leftOut) {
    leftOut = 0;
    std::string reply = "<dir>" + Pair("Rights", rights) + '\n';
    for (const TreeEntry& entry : entries) {
        const std::string item = FormatEntry(entry, rights);
        if (reply.size() + item.size() + kDirEnd.size() > kMaxReplyLength) {
            ++leftOut;
        } else {
            reply += item;
        }
    }
    reply += kDirEnd;
    return reply;
}

std::string FormatDirRecurse(const TreeTotals& totals) {
    return "<dir_recurse>" + Pair("Size", AnnouncedSize(totals.size)) + ' ' +
           Pair("NumFiles", AnnouncedSize(totals.files)) + "</dir_recurse>";
}

std::string FormatLengthPrefix(std::uint32_t length) {
    std::string prefix;
    for (unsigned shift = 0; shift < 32; shift += 8) {
        prefix += static_cast<char>(length >> shift & 0xffU);
    }
    return prefix;
}
