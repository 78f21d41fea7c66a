#include "RecentLines.h"

#include "CommonUtils.h"

#include <algorithm>

namespace {

std::string Readable(const std::string& zLine) {
    if (zLine.size() <= cRecentLines::kLongestLine) {
        return OneLogLine(zLine, zLine.size());
    }
    // No character has more than three of the bytes that go on with one.
    std::size_t end = cRecentLines::kLongestLine;
    while (end > cRecentLines::kLongestLine - 3 && (static_cast<unsigned char>(zLine[end]) & 0xC0) == 0x80) {
        --end;
    }
    return OneLogLine(zLine, end) + "\u2026";
}

} // namespace

void cRecentLines::Add(std::string_view zText) {
    while (!zText.empty()) {
        const std::size_t end = zText.find('\n');
        Append(zText.substr(0, end));
        if (end == std::string_view::npos) {
            return;
        }
        mHasOpenLine = false;
        zText.remove_prefix(end + 1);
    }
}

void cRecentLines::Append(std::string_view zPart) {
    if (!mHasOpenLine) {
        mLines[mBegun++ % kLines].clear();
        mHasOpenLine = true;
    }
    std::string& line = mLines[(mBegun - 1) % kLines];
    line += zPart.substr(0, kLongestLine + 1 - line.size());
}

std::vector<std::string> cRecentLines::Lines() const {
    std::vector<std::string> lines;
    for (std::size_t i = mBegun - std::min(mBegun, kLines); i < mBegun; ++i) {
        lines.push_back(Readable(mLines[i % kLines]));
    }
    return lines;
}

cRecentLines& RecentLog() {
    static cRecentLines lines;
    return lines;
}
