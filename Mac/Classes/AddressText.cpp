#include "AddressText.h"

#include "WidgetText.h"

#include <QtCore/QRegularExpression>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

#include <algorithm>
#include <cstdlib>
#include <string>

namespace {

constexpr long kLargestOctet = 255;

/// The number at the start of a text, brought into the range of an octet; 0 where there is none.
long LeadingOctet(const std::string& zText) {
    return std::clamp(std::strtol(zText.c_str(), nullptr, 10), 0L, kLargestOctet);
}

/// The four numbers of a text that is a dotted address and nothing else but white space around it.
QStringList WholeAddress(const QString& zText) {
    static const QRegularExpression kDotted(QStringLiteral("^[0-9]+([.][0-9]+){3}$"));
    const QString text = zText.trimmed();
    return kDotted.match(text).hasMatch() ? text.split(QLatin1Char('.')) : QStringList();
}

} // namespace

QString OctetText(const QString& zText) {
    return QString::number(LeadingOctet(FromWidgetText(zText)));
}

QStringList PastedAddress(const QString& zText, bool zWasEmpty) {
    constexpr int kDots = 3; // nobody types as many, since each goes at once
    if (zWasEmpty || zText.count(QLatin1Char('.')) < kDots) {
        return WholeAddress(zText);
    }
    QString longest;
    for (const QClipboard::Mode mode : {QClipboard::Clipboard, QClipboard::Selection}) {
        const QString pasted = QGuiApplication::clipboard()->text(mode).trimmed();
        if (pasted.size() > longest.size() && !WholeAddress(pasted).isEmpty() && zText.contains(pasted)) {
            longest = pasted;
        }
    }
    return WholeAddress(longest.isEmpty() ? zText : longest); // or dropped, or brought by an input method
}
