#pragma once

#include <string>
#include <vector>

/// A plain English text for those who help people with the program: the versions of the program, the toolkit
/// and the sound library, what is known of the system, and these lines of the log. It takes nothing from
/// files, and the home folder appears as "~" in it. It needs the application object.
std::string DiagnosticsText(const std::vector<std::string>& zLogLines);

/// The text with "~" in place of the home folder, where it stands alone or a path begins with it. An empty
/// home folder and "/" change nothing.
std::string WithoutHome(const std::string& zText, const std::string& zHome);
