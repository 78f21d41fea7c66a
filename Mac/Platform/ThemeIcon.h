#pragma once

#include <QtGui/QIcon>

#include <string>

/// The desktop theme's icon of that name, or the toolkit's nearest own one where the theme has none.
QIcon ThemeIcon(const std::string& zName);
