#include "ProgressDetails.h"

#include "WidgetText.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLocale>

#include <algorithm>
#include <limits>

namespace {

using namespace std::chrono_literals;
using tSeconds = std::chrono::seconds;

constexpr const char* kBetweenParts = " · ";

QString SizeText(std::uint64_t zBytes) {
    constexpr auto kLargest = static_cast<std::uint64_t>(std::numeric_limits<qint64>::max());
    return QLocale().formattedDataSize(static_cast<qint64>(std::min(zBytes, kLargest)), 1);
}

/// How many whole units a time is, to the nearest.
int Rounded(tSeconds zTime, tSeconds zUnit) {
    return static_cast<int>((zTime + zUnit / 2) / zUnit);
}

// The numbers have names: lupdate never ends over an expression in their place.

QString SecondsText(tSeconds zTime) {
    const int seconds = 10 * Rounded(zTime, 10s);
    return QCoreApplication::translate("Quillbox", "about %n seconds left", nullptr, seconds);
}

QString MinutesText(tSeconds zTime) {
    const int minutes = zTime < 10min ? Rounded(zTime, 1min) : 5 * Rounded(zTime, 5min);
    return QCoreApplication::translate("Quillbox", "about %n minutes left", nullptr, minutes);
}

QString HoursText(tSeconds zTime) {
    const int hours = Rounded(zTime, 1h);
    return QCoreApplication::translate("Quillbox", "about %n hours left", nullptr, hours);
}

std::string AmountText(std::uint64_t zDone, std::uint64_t zTotal) {
    return FromWidgetText(
        QCoreApplication::translate("Quillbox", "%1 of %2").arg(SizeText(zDone), SizeText(zTotal)));
}

std::string RateText(std::uint64_t zBytesPerSecond) {
    //: A rate: so much in a second.
    return FromWidgetText(QCoreApplication::translate("Quillbox", "%1/s").arg(SizeText(zBytesPerSecond)));
}

} // namespace

std::string ProgressDetails(std::uint64_t zDone, std::uint64_t zTotal, const cProgressEstimate& zrEstimate) {
    if (zTotal == 0 || zDone > zTotal) {
        return {};
    }
    std::string details = AmountText(zDone, zTotal);
    if (const auto rate = zrEstimate.Rate()) {
        details += kBetweenParts + RateText(*rate);
    }
    if (const auto left = zrEstimate.TimeLeft()) {
        details += kBetweenParts + TimeLeftText(*left);
    }
    return details;
}

std::string LongestProgressDetails() {
    constexpr std::uint64_t kLongestSize = 1023U << 20U;
    return AmountText(kLongestSize, kLongestSize) + kBetweenParts + RateText(kLongestSize) + kBetweenParts +
           TimeLeftText(50s);
}

std::string TimeLeftText(tSeconds zTime) {
    QString text;
    if (zTime <= 10s) {
        text = QCoreApplication::translate("Quillbox", "a few seconds left");
    } else if (zTime < 55s) {
        text = SecondsText(zTime);
    } else if (zTime < 90s) {
        text = QCoreApplication::translate("Quillbox", "about a minute left");
    } else if (zTime < 55min) {
        text = MinutesText(zTime);
    } else if (zTime < 90min) {
        text = QCoreApplication::translate("Quillbox", "about an hour left");
    } else if (zTime < 24h) {
        text = HoursText(zTime);
    } else {
        text = QCoreApplication::translate("Quillbox", "more than a day left");
    }
    return FromWidgetText(text);
}
