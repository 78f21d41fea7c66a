#include "InfoTags.h"

#include <algorithm>
#include <array>

namespace {

struct sInfoTag {
    std::string_view mTag;
    const char* mpDescription;
};

constexpr std::array<sInfoTag, 24> kInfoTags{{
    {"DISP", "Display name"},  {"IARL", "Archival location"}, {"IART", "Artist"},
    {"ICMS", "Commissioned"},  {"ICMT", "Comments"},          {"ICOP", "Copyright"},
    {"ICRD", "Creation date"}, {"ICRP", "Cropped"},           {"IDIM", "Dimensions"},
    {"IDPI", "Dots Per Inch"}, {"IENG", "Engineer"},          {"IGNR", "Genre"},
    {"IKEY", "Keywords"},      {"ILGT", "Lightness"},         {"IMED", "Medium"},
    {"INAM", "Name"},          {"IPLT", "Palette Setting"},   {"IPRD", "Product"},
    {"ISBJ", "Subject"},       {"ISFT", "Software"},          {"ISHP", "Sharpness"},
    {"ISRC", "Source"},        {"ISRF", "Source Form"},       {"ITCH", "Technician"},
}};

} // namespace

const char* GetInfoDescription(std::string_view zTag) {
    const auto* const found = std::find_if(kInfoTags.begin(), kInfoTags.end(),
                                           [&](const sInfoTag& zRow) { return zRow.mTag == zTag; });
    return found != kInfoTags.end() ? found->mpDescription : nullptr;
}
