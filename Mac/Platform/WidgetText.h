#pragma once

#include <QtCore/QString>

#include <string>

class QLabel;

/// The edge between our byte strings and the texts of widgets.

/// UTF-8 bytes as a widget may show them. A character cut off at the end is dropped, invalid bytes become
/// U+FFFD, and characters that would break lines, hide or reorder the words are shown as a visible sign.
/// Not for paths that come back from a widget.
QString ToWidgetText(const std::string& zText);

/// The UTF-8 bytes of what a widget holds.
std::string FromWidgetText(const QString& zText);

/// The user's language for an English source text; the text itself where there is no translation.
std::string Translated(const char* zSource);
std::string Translated(const std::string& zSource);

/// The same for what comes out of the toolkit-free rooms, where it may be one of TextsAroundNames with its
/// name.
std::string TranslatedMessage(const std::string& zText);

/// A source text in the user's language, filled by printf's rules with whatever it has marks for, however
/// long.
std::string Filled(const char* zSource, ...) __attribute__((format(printf, 1, 2)));

/// What went wrong with something, as in "song.wav - Path too long"; the reason is a source text.
std::string NameAndReason(const std::string& zName, const std::string& zReason);

/// Shows words on a label whose accessible name is its role, so that they are its description as well.
void ShowWords(QLabel& zrLabel, const std::string& zText);
