#pragma once

#include <cstddef>
#include <string>

/// Text and path helpers shared by every room. Paths are byte strings with "/" between their
/// components, on the device as well as here; none of these operations touches a file.

/// Makes zrPath end in "/". An empty text stays empty; one trailing backslash becomes "/".
void AddTrailingSeparator(std::string& zrPath);

/// Cuts zrPath just before its last "/" or backslash, whichever is further right; with neither the
/// text becomes empty.
void RemoveLastComponent(std::string& zrPath);

/// Keeps the first zCount bytes. A negative zCount counts from the end; one beyond the start keeps nothing.
void TruncateText(std::string& zrText, int zCount);

/// What follows the last dot of the last path component, without the dot; "" where there is no dot.
std::string GetExtension(const std::string& zPath);

/// The longest text that FormatString returns, in bytes. It bounds every command of the device protocol.
inline constexpr std::size_t kMaxFormattedLength = 255;

/// printf rules into a text, cut to kMaxFormattedLength bytes. A null format gives "".
std::string FormatString(const char* zFormat, ...) __attribute__((format(printf, 1, 2)));

/// Expands a template that has no arguments: "%%" becomes "%" and every other "%" stays. For texts from
/// outside, which must never reach a real format function.
std::string ExpandTemplate(const std::string& zTemplate);

/// Writes a formatted diagnostic text to standard output, at most 1023 bytes of it. Main thread only.
void DebugPrintf(const char* zFormat, ...) __attribute__((format(printf, 1, 2)));

/// Writes one text to standard output as it stands, up to a zero byte; RecentLog keeps what was written last.
void DebugPrint(const std::string& zText);

/// A text from outside, fit for one log line: at most zLongest bytes of it, with "?" for control characters
/// and U+FFFD for what is no UTF-8.
std::string OneLogLine(std::string zText, std::size_t zLongest = kMaxFormattedLength);

/// A text from outside that people can read: of more than zLongest bytes (at least 8) the middle gives way to
/// an ellipsis, in whole characters.
std::string Abbreviated(std::string zText, std::size_t zLongest = kMaxFormattedLength);

inline constexpr const char* kAssertFormat = "%s:%u: failed assertion `%s'\n";

/// Reports a programming error on standard error and aborts the process.
/// zFormat takes the source name, the line and the condition, in this order.
[[noreturn]] void AssertFail(const char* zFormat, const char* zFile, unsigned zLine, const char* zCondition);

/// Aborts through AssertFail unless zHolds. zSource and zCondition are what the report names; they are
/// fixed texts, so that reports stay comparable wherever the check moves to.
inline void Require(bool zHolds, const char* zSource, const char* zCondition,
                    unsigned zLine = __builtin_LINE()) {
    if (!zHolds) {
        AssertFail(kAssertFormat, zSource, zLine, zCondition);
    }
}
