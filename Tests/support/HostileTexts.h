#pragma once

#include "SeededChoice.h"

#include <string>

/// What a device says that means no good, or knows no better.
class HostileTexts {
public:
    /// zOutside is a local folder into which names try to lead.
    HostileTexts(SeededChoice& zrChoice, std::string zOutside);

    /// One in how many texts breaks the rules; 1 is each of them.
    int mHonesty = 4;

    /// The same for the names of entries.
    int mNameHonesty = 4;

    std::string Welcome();

    /// The listing of the folder in which a folder of this name lies.
    std::string Listing();
    std::string DirRecurse();

    /// A length and a body, which may be told apart only by who made them.
    std::string File();

    /// Anything of the above.
    std::string Anything();

    /// A text of as many bytes as one likes, without an end tag.
    static std::string Filler(std::size_t zLength);

private:
    bool Misbehaves() { return mrChoice.OneIn(static_cast<std::size_t>(mHonesty)); }

    std::string Name();
    std::string PlainName();
    std::string ClimbingName();
    std::string Size();
    std::string Item();
    std::string Item(const std::string& zName, const char* zType);
    std::string Items();
    std::string FoldersInThemselves();
    static std::string HundredThousandItems();
    std::string Spoilt(std::string zText);
    std::string Body(std::size_t zLength);

    SeededChoice& mrChoice;
    std::string mOutside;
};
