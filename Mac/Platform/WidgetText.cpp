#include "WidgetText.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QStringDecoder>

namespace {

constexpr const char* kTranslationContext = "Quillbox";
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
