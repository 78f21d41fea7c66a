#pragma once

#include <QtGui/QIcon>

#include <string>

/// The desktop theme's icon of that name, or the program's own one where the theme has none. The buttons of
/// the main window stand side by side, so that a theme which lacks one of their icons is not asked for the
/// others. An icon that neither knows is null.
QIcon ThemeIcon(const std::string& zName);

/// The name, in the desktop's icon themes, for a file with that extension ("wav", in any case).
std::string IconNameForExtension(const std::string& zExtension);
