#include "Log.h"

#include <cstdio>

namespace {

bool IsControl(unsigned char byte) {
    return byte < 0x20 || byte == 0x7f;
}

/// The controls U+0080 to U+009F, which UTF-8 writes as C2 80 to C2 9F.
bool IsHighControl(unsigned char byte, unsigned char next) {
    return byte == 0xc2 && next >= 0x80 && next <= 0x9f;
}

void AppendHex(std::string& out, unsigned char byte) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    out += "\\x";
    out += kDigits[byte >> 4U];
    out += kDigits[byte & 0xfU];
}

} // namespace

std::string Escaped(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : '\0');
        if (IsControl(byte) || IsHighControl(byte, next) || byte == '\\') {
            AppendHex(out, byte);
        } else {
            out += text[i];
        }
    }
    return out;
}

void PrintLine(const std::string& line) {
    static_cast<void>(std::fwrite(line.data(), 1, line.size(), stdout));
    static_cast<void>(std::fputc('\n', stdout));
    static_cast<void>(std::fflush(stdout));
}
