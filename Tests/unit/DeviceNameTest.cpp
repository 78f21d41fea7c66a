#include "CommonUtils_OSX.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <vector>

namespace {

std::string Converted(const std::string& name) {
    std::string out = "left over";
    ConvertNameForDevice(name, out);
    return out;
}

/// A character below U+0800 in UTF-8.
std::string Utf8(unsigned code) {
    if (code < 0x80) {
        return {static_cast<char>(code)};
    }
    return {static_cast<char>(0xC0 | (code >> 6)), static_cast<char>(0x80 | (code & 0x3F))};
}

// Every code with a spelling of its own, in ranges. All others from 127 on are "!".
struct sSpelling {
    unsigned first;
    unsigned last;
    std::string text;
};

const std::vector<sSpelling> kSpellings = {
    {191, 191, "?"},  {192, 197, "A"}, {198, 198, "AE"}, {199, 199, "C"},  {200, 202, "E"}, {203, 205, "I"},
    {207, 207, "I"},  {208, 208, "D"}, {209, 209, "N"},  {210, 214, "O"},  {215, 215, "x"}, {216, 216, "O"},
    {217, 220, "U"},  {221, 221, "Y"}, {222, 222, "D"},  {223, 223, "ss"}, {224, 229, "a"}, {230, 230, "ae"},
    {231, 231, "c"},  {232, 235, "e"}, {236, 239, "i"},  {240, 240, "o"},  {241, 241, "n"}, {242, 246, "o"},
    {248, 248, "o"},  {249, 252, "u"}, {253, 253, "y"},  {254, 254, "d"},  {255, 255, "y"}, {338, 338, "OE"},
    {339, 339, "oe"}, {352, 352, "S"}, {376, 376, "Y"},  {402, 402, "f"},
};

std::map<unsigned, std::string> AllSpellings() {
    std::map<unsigned, std::string> spellings;
    for (const auto& [first, last, text] : kSpellings) {
        for (unsigned code = first; code <= last; ++code) {
            spellings[code] = text;
        }
    }
    return spellings;
}

TEST(ConvertNameForDevice, KeepsTheFirst127Characters) {
    for (unsigned code = 0; code <= 126; ++code) {
        EXPECT_EQ(Converted(Utf8(code)), std::string(1, static_cast<char>(code))) << code;
    }
}

TEST(ConvertNameForDevice, SpellsEveryOtherCharacterAsTheTableSays) {
    const auto spellings = AllSpellings();
    // Up to here no character stands for another one in its composed form.
    for (unsigned code = 127; code < 0x300; ++code) {
        const auto found = spellings.find(code);
        EXPECT_EQ(Converted(Utf8(code)), found == spellings.end() ? "!" : found->second) << code;
    }
}

TEST(ConvertNameForDevice, ConvertsNames) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"", ""},
        {"Ærø.wav", "AEro.wav"},
        {"Straße", "Strasse"},
        {"Ëlan", "Ilan"},
        {"Îsle", "!sle"},
        {"île", "ile"},
        {"a÷b", "a!b"},
        {"Œuvre œuf Šš Žž Ÿƒ", "OEuvre oeuf S! !! Yf"},
        {"caf\u00e9", "cafe"},
        {"cafe\u0301", "cafe"},
        {"A\u030a", "A"},
        {"\u212b", "A"},
        {"q\u0301", "q!"},
        {"\u00a1\u00a9\u00ae\u00b0", "!!!!"},
        {"日本", "!!"},
        {"\U0001f3b5.wav", "!!.wav"},
        {"\ufeffx", "!x"},
        {"a/b c", "a/b c"},
    };
    for (const auto& [name, expected] : cases) {
        EXPECT_EQ(Converted(name), expected) << name;
    }
}

TEST(ConvertNameForDevice, TakesIllFormedNames) {
    const std::vector<std::string> names = {
        "\xff", "a\xc3", "\xe9t\xe9", "\xed\xa0\x80", "\xf8\x88\x80\x80\x80", "\xc0\x80"};
    for (const std::string& name : names) {
        const std::string out = Converted(name);
        EXPECT_NE(out.find('!'), std::string::npos) << name;
        EXPECT_TRUE(std::all_of(out.begin(), out.end(), [](char c) { return c > 0; })) << name;
    }
    EXPECT_EQ(Converted("\xe9t\xe9.wav"), "!t!.wav");
}

} // namespace
