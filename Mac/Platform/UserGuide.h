#pragma once

#include <QtCore/QString>

/// Opens the installed user guide in the user's browser: the one beside the program's own folder, else the
/// one in the system's data folders. Where there is none, a log line says so.
void OpenUserGuide(const QString& zProgramFolder);

/// The same for the folder of the running program.
void OpenUserGuide();
