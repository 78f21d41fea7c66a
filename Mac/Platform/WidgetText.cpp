#include "WidgetText.h"

#include "TranslatedTexts.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QStringDecoder>
#include <QtWidgets/QLabel>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <string_view>

namespace {

constexpr const char* kTranslationContext = "Quillbox";
constexpr std::string_view kNameMark = "%s";
constexpr char16_t kControlPictures = 0x2400;
constexpr char16_t kDeleteCharacter = 0x7F;
constexpr char16_t kDeletePicture = 0x2421;

/// A visible sign for a character that would break the line, hide, or turn the reading direction around.
QChar Harmless(QChar zCharacter) {
    const char16_t code = zCharacter.unicode();
    if (code < 0x20) {
        return {static_cast<char16_t>(kControlPictures + code)};
    }
    if (code == kDeleteCharacter) {
        return {kDeletePicture};
    }
    switch (zCharacter.category()) {
    case QChar::Other_Control:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return {QChar::ReplacementCharacter};
    default:
        break;
    }
    const bool turnsDirection = (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
    return turnsDirection ? QChar(QChar::ReplacementCharacter) : zCharacter;
}

/// For a text that came with a name in it: the words around the name are translated, and its bytes stay.
std::string TranslatedAroundName(const std::string& zText) {
    for (const std::string_view source : TextsAroundNames()) {
        const std::string_view head = source.substr(0, source.find(kNameMark));
        const std::string_view tail = source.substr(head.size() + kNameMark.size());
        if (zText.size() >= head.size() + tail.size() && zText.starts_with(head) && zText.ends_with(tail)) {
            const std::size_t length = zText.size() - head.size() - tail.size();
            return Filled(source.data(), zText.substr(head.size(), length).c_str());
        }
    }
    return zText;
}

} // namespace

QString ToWidgetText(const std::string& zText) {
    // A stateful decoder keeps an incomplete character at the end for later, which here means for never.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringConverter::Flag::ConvertInitialBom);
    QString text = decoder.decode(QByteArrayView(zText.data(), static_cast<qsizetype>(zText.size())));
    for (QChar& character : text) {
        character = Harmless(character);
    }
    return text;
}

std::string FromWidgetText(const QString& zText) {
    return zText.toStdString();
}

std::string Translated(const char* zSource) {
    return Translated(std::string(zSource));
}

std::string Translated(const std::string& zSource) {
    const QString words = QCoreApplication::translate(kTranslationContext, zSource.c_str());
    // Without a translation the bytes stay what they were, also where they are no valid UTF-8.
    return words == QString::fromUtf8(zSource.c_str()) ? zSource : words.toStdString();
}

std::string TranslatedMessage(const std::string& zText) {
    const std::string words = Translated(zText);
    return words == zText ? TranslatedAroundName(zText) : words;
}

// The compiler checks the arguments by the format.
// NOLINTNEXTLINE(cert-dcl50-cpp)
std::string Filled(const char* zSource, ...) {
    const std::string words = Translated(zSource);
    std::va_list arguments;
    va_start(arguments, zSource);
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, words.c_str(), arguments);
    va_end(arguments);
    std::string text(static_cast<std::size_t>(std::max(length, 0)), '\0');
    static_cast<void>(std::vsnprintf(text.data(), text.size() + 1, words.c_str(), again));
    va_end(again);
    return text;
}

std::string NameAndReason(const std::string& zName, const std::string& zReason) {
    return Filled("%s - %s", zName.c_str(), Translated(zReason).c_str());
}

void ShowWords(QLabel& zrLabel, const std::string& zText) {
    const QString words = ToWidgetText(zText);
    if (zrLabel.text() != words) { // else it would be laid out and told to assistive tools again
        zrLabel.setText(words);
        zrLabel.setAccessibleDescription(words);
    }
}
