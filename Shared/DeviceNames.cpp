#include "DeviceNames.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

constexpr char16_t kLastPlain = 126;
constexpr char16_t kFirstLatin = 191;
constexpr std::string_view kUnknown = "!";

// What the devices in the field expect. Some rows look like slips (Ë is "I", Î is unknown, þ is "d"), but
// files are found again by these names: do not mend them.
constexpr std::array<std::string_view, 65> kLatin = {
    "?",                                      // 191: inverted question mark
    "A", "A", "A", "A", "A", "A", "AE", "C",  // 192: À Á Â Ã Ä Å Æ Ç
    "E", "E", "E", "I", "I", "I", "!",  "I",  // 200: È É Ê Ë Ì Í Î Ï
    "D", "N", "O", "O", "O", "O", "O",  "x",  // 208: Ð Ñ Ò Ó Ô Õ Ö ×
    "O", "U", "U", "U", "U", "Y", "D",  "ss", // 216: Ø Ù Ú Û Ü Ý Þ ß
    "a", "a", "a", "a", "a", "a", "ae", "c",  // 224: à á â ã ä å æ ç
    "e", "e", "e", "e", "i", "i", "i",  "i",  // 232: è é ê ë ì í î ï
    "o", "n", "o", "o", "o", "o", "o",  "!",  // 240: ð ñ ò ó ô õ ö ÷
    "o", "u", "u", "u", "u", "y", "d",  "y",  // 248: ø ù ú û ü ý þ ÿ
};

struct sSpelling {
    char16_t unit;
    std::string_view text;
};

constexpr std::array<sSpelling, 5> kBeyondLatin = {{
    {338, "OE"},
    {339, "oe"},
    {352, "S"},
    {376, "Y"},
    {402, "f"},
}};

std::string_view Spelling(char16_t zUnit) {
    if (zUnit >= kFirstLatin && zUnit < kFirstLatin + kLatin.size()) {
        return kLatin.at(zUnit - std::size_t{kFirstLatin});
    }
    const auto* const found = std::find_if(kBeyondLatin.begin(), kBeyondLatin.end(),
                                           [zUnit](const sSpelling& entry) { return entry.unit == zUnit; });
    return found == kBeyondLatin.end() ? kUnknown : found->text;
}

} // namespace

void AppendDeviceSpelling(char16_t zUnit, std::string& zrOut) {
    if (zUnit <= kLastPlain) {
        zrOut += static_cast<char>(zUnit);
    } else {
        zrOut += Spelling(zUnit);
    }
}
