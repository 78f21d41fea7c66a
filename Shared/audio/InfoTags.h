#pragma once

#include <string_view>

/// What a text item of a sound file's INFO list says, in English, by its four-character tag ("INAM" gives
/// "Name"); null for a tag that is not known. The tags are those of the document named in RiffReader.h, and
/// DISP.
const char* GetInfoDescription(std::string_view zTag);
