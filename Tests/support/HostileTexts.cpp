#include "HostileTexts.h"

#include "ScriptedDevice.h"

#include <array>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t kLongName = 4000;
constexpr std::uint32_t kOneGibibyte = 1U << 30;

const std::string kListingBegin = "<dir> Rights = \"cd-\"\n";

} // namespace

HostileTexts::HostileTexts(SeededChoice& zrChoice, std::string zOutside)
    : mrChoice(zrChoice), mOutside(std::move(zOutside)) {}

std::string HostileTexts::Filler(std::size_t zLength) {
    static constexpr std::string_view kPattern = "<item Name = \"x\" Type = \"Dir\" Size = \"1\"> ";
    std::string text;
    while (text.size() < zLength) {
        text += kPattern;
    }
    return text.substr(0, zLength);
}

// --- Names ---

std::string HostileTexts::PlainName() {
    static const std::vector<std::string> kNames = {
        "1.wav", "2.wav", "old.wav", "Beats", "f", "a b.aif", "\xC3\xA9t\xC3\xA9.wav", "README"};
    return mrChoice.Of(kNames);
}

/// Names that would lead out of the folder in which they are used.
std::string HostileTexts::ClimbingName() {
    static const std::vector<std::string> kNames = {"..",
                                                    "../",
                                                    "../escaped.wav",
                                                    "../../escaped.wav",
                                                    "./../escaped.wav",
                                                    "f/../../escaped.wav",
                                                    "..\\",
                                                    "..\\escaped.wav"};
    return mrChoice.OneIn(5) ? mOutside + "/escaped.wav" : mrChoice.Of(kNames);
}

std::string HostileTexts::Name() {
    static const std::vector<std::string> kNames = {
        "",
        ".",
        "/",
        "f/inner.wav",
        "Beats/",
        "%n%s%n%s",
        "100%",
        "%999999999d",
        "<b>bold</b>",
        "&lt;img src=\"x\"&gt;",
        "<script",
        std::string("zero\0byte", 9),
        "\x1b[2J\x07\r\n\t\x7f",
        "\xFF\xFE\x80",
        "\xE2\x80\xAEvaw.exe",
        "-rf",
        "~",
        std::string(kLongName, 'n'),
        std::string(255, 'm'),
        std::string(225, 'k'),
        std::string(240, '%') + ".wav",
        std::string(60, '/'),
        "Name = Type = Size",
    };
    if (!mrChoice.OneIn(static_cast<std::size_t>(mNameHonesty))) {
        return PlainName();
    }
    return mrChoice.OneIn(2) ? ClimbingName() : mrChoice.Of(kNames);
}

// --- Listings ---

std::string HostileTexts::Size() {
    static const std::vector<std::string> kSizes = {
        "0",          "-1",         "-2147483648",          "2147483647", "2147483648", "4294967295",
        "4294967296", "1073741825", "99999999999999999999", "garbage",    "",           "0x10",
        "1e9",        "268435456"};
    return Misbehaves() ? mrChoice.Of(kSizes) : std::to_string(mrChoice.Between(1, 5000));
}

std::string HostileTexts::Item(const std::string& zName, const char* zType) {
    static const std::vector<std::string> kRights = {"cd-", "---", "cdr", "", "c", "ddddddd"};
    return "<item Type = \"" + std::string(zType) + "\" Date = \"2024-05-06\" Size = \"" + Size() +
           "\" Rights = \"" + (Misbehaves() ? mrChoice.Of(kRights) : kRights.front()) + "\" Name = \"" +
           zName + "\">\n";
}

std::string HostileTexts::Item() {
    static const std::vector<const char*> kTypes = {"File", "File", "Dir", "dIR", ""};
    return Item(Name(), mrChoice.Of(kTypes));
}

std::string HostileTexts::Items() {
    std::string items;
    for (int count = mrChoice.Between(0, 8); count > 0; --count) {
        items += Item();
    }
    return items;
}

/// One folder, or many of them, whose listings are made anew each time, and so for ever.
std::string HostileTexts::FoldersInThemselves() {
    std::string items;
    for (int count = mrChoice.OneIn(2) ? 1 : mrChoice.Between(2, 40); count > 0; --count) {
        items += Item("f" + std::to_string(count), "Dir");
    }
    return items + Items();
}

/// As short as entries can be, since a longer reply would not be read.
std::string HostileTexts::HundredThousandItems() {
    std::string items;
    for (int count = 0; count < 100000; ++count) {
        items += "<\"1\">";
    }
    return items;
}

std::string HostileTexts::Listing() {
    if (mrChoice.OneIn(400)) {
        return kListingBegin + HundredThousandItems() + "</dir>";
    }
    return Spoilt(kListingBegin + (mrChoice.OneIn(3) ? FoldersInThemselves() : Items()) + "</dir>");
}

/// The text, or something like it that is not whole, not alone or not in order.
std::string HostileTexts::Spoilt(std::string zText) {
    if (!Misbehaves() || mrChoice.OneIn(2)) {
        return zText;
    }
    const std::size_t place = mrChoice.Below(zText.size());
    switch (mrChoice.Below(7)) {
    case 0:
        return zText.substr(0, place);
    case 1:
        return zText.substr(place);
    case 2:
        return zText.erase(place, mrChoice.Below(20));
    case 3:
        return zText.insert(place, std::string(1, static_cast<char>(mrChoice.Below(256))));
    case 4:
        return zText.insert(place, Filler(mrChoice.Below(600000)));
    case 5:
        return zText + zText;
    default:
        return zText + Spoilt(zText);
    }
}

// --- The other replies ---

std::string HostileTexts::Welcome() {
    static const std::vector<std::string> kVersions = {"1.10", "1.1", "1.9",    "0",
                                                       "-1",   "",    "%n%n%s", "99999999999999999999"};
    const std::string version = Misbehaves() ? mrChoice.Of(kVersions) : kVersions.front();
    const std::string name = mrChoice.OneIn(3) ? Name() : "Hostile";
    return Spoilt("<welcome>Version = \"" + version + R"(" ID = "1" Name = ")" + name + "\"</welcome>");
}

std::string HostileTexts::DirRecurse() {
    return Spoilt("<dir_recurse>Size = \"" + Size() + "\" NumFiles = \"" + Size() + "\"</dir_recurse>");
}

std::string HostileTexts::Body(std::size_t zLength) {
    return std::string(zLength, static_cast<char>(mrChoice.Below(256)));
}

std::string HostileTexts::File() {
    const std::size_t length = mrChoice.OneIn(10) ? mrChoice.Below(400000) : mrChoice.Below(5000);
    const std::string whole = ScriptedDevice::LengthPrefix(length) + Body(length);
    if (!Misbehaves()) {
        return whole;
    }
    switch (mrChoice.Below(8)) {
    case 0:
        return whole.substr(0, mrChoice.Below(whole.size()));
    case 1:
        return whole.substr(0, mrChoice.Below(4));
    case 2:
        return whole + Body(mrChoice.Below(5000) + 1);
    case 3:
        return ScriptedDevice::LengthPrefix(0);
    case 4:
        return ScriptedDevice::LengthPrefix(0) + Body(mrChoice.Below(5000));
    case 5:
        return ScriptedDevice::LengthPrefix(kOneGibibyte + mrChoice.Below(3 * std::size_t{kOneGibibyte})) +
               Body(length);
    case 6:
        return ScriptedDevice::LengthPrefix(mrChoice.Of(std::array{kOneGibibyte, 0xFFFFFFFFU})) +
               Body(length);
    default:
        return Listing();
    }
}

std::string HostileTexts::Anything() {
    switch (mrChoice.Below(5)) {
    case 0:
        return Welcome();
    case 1:
        return Listing();
    case 2:
        return DirRecurse();
    case 3:
        return File();
    default:
        return Body(mrChoice.Below(2000));
    }
}
