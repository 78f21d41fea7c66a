#pragma once

#include <functional>
#include <string>
#include <string_view>

/// Takes one line of the log, without its end.
using LogSink = std::function<void(const std::string& line)>;

/// The text with control characters and backslashes as "\xNN", so that whatever a peer sends stays on one
/// line and cannot steer a terminal.
std::string Escaped(std::string_view text);

/// Writes one line to standard output at once.
void PrintLine(const std::string& line);
