#include "CommonUtils.h"

#include "CommonUtils_OSX.h"
#include "RecentLines.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t kFirstCapacity = kMaxFormattedLength + 1;

// A formatter that fails for another reason than space would fail at every size.
constexpr std::size_t kLastCapacity = 64 * kFirstCapacity;

constexpr std::size_t kDebugBufferSize = 1024;

std::string FormatArguments(const char* zFormat, std::va_list zArguments) {
    for (std::size_t capacity = kFirstCapacity; capacity <= kLastCapacity; capacity *= 2) {
        std::vector<char> buffer(capacity | 1U, '\0');
        std::va_list arguments;
        va_copy(arguments, zArguments);
        const int length = std::vsnprintf(buffer.data(), capacity, zFormat, arguments);
        va_end(arguments);
        if (length >= 0) {
            std::string text = buffer.data();
            text.resize(std::min(text.size(), kMaxFormattedLength));
            return text;
        }
    }
    return {};
}

} // namespace

void AddTrailingSeparator(std::string& zrPath) {
    if (zrPath.empty() || zrPath.back() == '/') {
        return;
    }
    if (zrPath.back() == '\\') {
        zrPath.pop_back();
    }
    zrPath += '/';
}

void RemoveLastComponent(std::string& zrPath) {
    const std::size_t separator = zrPath.find_last_of("/\\");
    zrPath.resize(separator == std::string::npos ? 0 : separator);
}

void TruncateText(std::string& zrText, int zCount) {
    const auto length = static_cast<long long>(zrText.size());
    const long long kept = zCount < 0 ? length + zCount : zCount;
    zrText.resize(static_cast<std::size_t>(std::clamp(kept, 0LL, length)));
}

std::string GetExtension(const std::string& zPath) {
    const std::size_t mark = zPath.find_last_of("./\\");
    if (mark == std::string::npos || zPath[mark] != '.') {
        return {};
    }
    return zPath.substr(mark + 1);
}

// Both take arguments as the C library does; the compiler checks them by the format.
// NOLINTNEXTLINE(cert-dcl50-cpp)
std::string FormatString(const char* zFormat, ...) {
    if (zFormat == nullptr) {
        return {};
    }
    std::va_list arguments;
    va_start(arguments, zFormat);
    std::string text = FormatArguments(zFormat, arguments);
    va_end(arguments);
    return text;
}

std::string ExpandTemplate(const std::string& zTemplate) {
    std::string text;
    text.reserve(zTemplate.size());
    for (std::size_t i = 0; i < zTemplate.size(); ++i) {
        text += zTemplate[i];
        if (zTemplate.compare(i, 2, "%%") == 0) {
            ++i;
        }
    }
    return text;
}

// NOLINTNEXTLINE(cert-dcl50-cpp)
void DebugPrintf(const char* zFormat, ...) {
    static std::array<char, kDebugBufferSize> buffer;
    if (zFormat == nullptr) {
        return;
    }
    buffer.back() = '\0';
    std::va_list arguments;
    va_start(arguments, zFormat);
    static_cast<void>(std::vsnprintf(buffer.data(), buffer.size(), zFormat, arguments));
    va_end(arguments);
    // The last byte is the guard: a formatter that ends every text within the buffer leaves it 0.
    if (buffer.back() != '\0') {
        DebugPrint("Printf buffer overflow\n");
        buffer.back() = '\0';
    }
    DebugPrint(buffer.data());
}

void DebugPrint(const std::string& zText) {
    static_cast<void>(std::fprintf(stdout, "%s", zText.c_str()));
    // Standard output may be a pipe, in which a diagnostic should not wait for company.
    static_cast<void>(std::fflush(stdout));
    RecentLog().Add(zText.c_str()); // as far as it has been written
}

std::string OneLogLine(std::string zText, std::size_t zLongest) {
    zText.resize(std::min(zText.size(), zLongest));
    zText = MakeValidUtf8(zText);
    std::string line;
    for (std::size_t i = 0; i < zText.size(); ++i) {
        const auto byte = static_cast<unsigned char>(zText[i]);
        const auto next = static_cast<unsigned char>(i + 1 < zText.size() ? zText[i + 1] : 0);
        // Of two bytes are those that begin a command to the terminal in one character.
        const bool isLongControl = byte == 0xC2 && next >= 0x80 && next < 0xA0;
        const bool isControl = byte < 0x20 || byte == 0x7F || isLongControl;
        line += isControl ? '?' : zText[i];
        i += isLongControl ? 1 : 0;
    }
    return line;
}

std::string Abbreviated(std::string zText, std::size_t zLongest) {
    constexpr std::string_view kEllipsis = "\u2026";
    if (zText.size() <= zLongest) {
        return zText;
    }
    const auto isInsideCharacter = [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
    };
    const std::size_t kept = zLongest - kEllipsis.size();
    std::size_t begin = kept * 3 / 4;
    std::size_t end = zText.size() - (kept - begin);
    while (begin > 0 && isInsideCharacter(zText[begin])) {
        --begin;
    }
    while (end < zText.size() && isInsideCharacter(zText[end])) {
        ++end;
    }
    return zText.replace(begin, end - begin, kEllipsis);
}

void AssertFail(const char* zFormat, const char* zFile, unsigned zLine, const char* zCondition) {
    static_cast<void>(std::fprintf(stderr, zFormat, zFile, zLine, zCondition));
    static_cast<void>(std::fflush(stderr));
    std::abort();
}
