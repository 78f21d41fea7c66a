#pragma once

#include "FileTree.h"

#include <string>
#include <string_view>
#include <vector>

/// Who this device says it is, and what it allows.
struct DeviceIdentity {
    std::string name;
    std::string id;
    std::string version = "1.10";
    std::string rights = "cd-";

    bool MayCreate() const { return rights[0] == 'c'; }

    bool MayDelete() const { return rights[1] == 'd'; }

    bool MayUpload() const { return rights[2] != 'r'; }

    /// Devices below version 1.10 know no "dir_recurse".
    bool KnowsDirRecurse() const;
};

/// Clients give up on a text reply of 524288 bytes and count the last packet twice, so a listing stays
/// below that by some packets.
inline constexpr std::size_t kMaxReplyLength = 512000;

/// Sizes are announced as at most this: clients keep them in 32 bits with a sign.
inline constexpr std::uint64_t kMaxAnnouncedSize = 0x7fffffff;

std::string FormatWelcome(const DeviceIdentity& identity);

/// The listing of a folder. Entries that would make it longer than kMaxReplyLength are left out and counted
/// in leftOut.
std::string FormatDir(const std::vector<TreeEntry>& entries, std::string_view rights, std::size_t& leftOut);

std::string FormatDirRecurse(const TreeTotals& totals);

/// The four bytes before the body of a download: its length, the least significant byte first.
std::string FormatLengthPrefix(std::uint32_t length);
