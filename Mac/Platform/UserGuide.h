#pragma once

#include <QtCore/QString>

#include <string>

/// Opens the installed user guide in the user's browser: the one beside the program's own folder, else the
/// one in the system's data folders. Where that cannot be, returns why, in
/// the user's language, and logs it; else "".
std::string OpenUserGuide(const QString& zProgramFolder);

/// The same for the folder of the running program.
std::string OpenUserGuide();
