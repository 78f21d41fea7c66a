#pragma once

#include <string>

/// The spelling of single characters in the repertoire of the device, which is plain ASCII.

/// Appends the spelling of one UTF-16 unit to zrOut: one or two letters, and "!" for whatever has no
/// spelling, each half of a surrogate pair included.
void AppendDeviceSpelling(char16_t zUnit, std::string& zrOut);
