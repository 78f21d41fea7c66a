#include "ExtractionOffer.h"

#include "LocalUrl.h"

#include <QtCore/QUrl>
#include <QtCore/QUuid>

#include <utility>

namespace {

const QLatin1String kServiceFormat("application/x-kde-ark-dndextract-service");
const QLatin1String kPathFormat("application/x-kde-ark-dndextract-path");

/// Each drag has a path of its own, as the target of the one before may still be asking. It is not secret:
/// programs of the same session can list the objects on their bus, and are trusted as much as the target.
QString NextObjectPath() {
    return QStringLiteral("/drag/") + QUuid::createUuid().toString(QUuid::Id128);
}

/// A path is taken as it stands: a "%" in it is part of a name.
std::optional<std::string> LocalFolder(const QString& zFolder) {
    return zFolder.startsWith(QLatin1Char('/')) ? zFolder.toStdString()
                                                : LocalPath(QUrl::fromEncoded(zFolder.toUtf8()));
}

} // namespace

std::unique_ptr<ExtractionOffer> ExtractionOffer::Make(const QDBusConnection& zrBus,
                                                       OnDestination zOnDestination) {
    std::unique_ptr<ExtractionOffer> offer(new ExtractionOffer(zrBus, std::move(zOnDestination)));
    QDBusConnection bus = zrBus;
    if (!bus.registerObject(offer->mObjectPath, offer.get(), QDBusConnection::ExportScriptableInvokables)) {
        return nullptr;
    }
    return offer;
}

ExtractionOffer::ExtractionOffer(QDBusConnection zBus, OnDestination zOnDestination)
    : mBus(std::move(zBus)), mObjectPath(NextObjectPath()), mOnDestination(std::move(zOnDestination)) {}

ExtractionOffer::~ExtractionOffer() {
    mBus.unregisterObject(mObjectPath);
}

QStringList ExtractionOffer::Formats() const {
    return {kServiceFormat, kPathFormat};
}

QByteArray ExtractionOffer::Data(const QString& zFormat) {
    return zFormat == kServiceFormat ? mBus.baseService().toUtf8() : mObjectPath.toUtf8();
}

void ExtractionOffer::OnDropped() {
    mIsDropped = true;
}

void ExtractionOffer::extractSelectedFilesTo(const QString& zFolder) {
    const std::optional<std::string> folder = LocalFolder(zFolder);
    if (!mIsDropped || !folder) {
        sendErrorReply(mIsDropped ? QDBusError::InvalidArgs : QDBusError::AccessDenied);
        return;
    }
    if (!std::exchange(mIsTaken, true)) {
        mOnDestination(*folder);
    }
}
