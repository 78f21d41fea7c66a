#include "DirectSave.h"

#include "LocalUrl.h"

#include <QtCore/QUrl>

#include <algorithm>
#include <utility>

namespace {

/// Targets refuse a name with "/" in it. "." and ".." would make the target name another folder.
std::string LeafName(std::string zName) {
    std::replace(zName.begin(), zName.end(), '/', '_');
    std::replace(zName.begin(), zName.end(), '\0', '_');
    return zName.empty() || zName == "." || zName == ".." ? "_" : zName;
}

/// Some targets write the zero byte after the text too.
std::string WithoutTrailingZeros(std::string zText) {
    zText.erase(zText.find_last_not_of('\0') + 1);
    return zText;
}

bool HasScheme(const QByteArray& zrText) {
    return !QUrl::fromEncoded(zrText).scheme().isEmpty();
}

std::string FolderOf(const std::string& zPath) {
    return zPath.substr(0, std::max<std::size_t>(zPath.rfind('/'), 1));
}

} // namespace

DirectSave::DirectSave(std::unique_ptr<DirectSaveProperty> zpProperty, const std::string& zName,
                       OnDestination zOnDestination)
    : mpProperty(std::move(zpProperty)), mName(LeafName(zName)), mOnDestination(std::move(zOnDestination)) {}

QStringList DirectSave::Formats() const {
    return {QStringLiteral("XdndDirectSave0")};
}

QByteArray DirectSave::Data(const QString& /*zFormat*/) {
    // Until the promise is made, the property may hold the URL of the drag before.
    const std::string answer = mIsPromised ? WithoutTrailingZeros(mpProperty->ReadPromise()) : std::string();
    const QByteArray url = QByteArray::fromStdString(answer);
    if (!mIsDropped || answer == mName || !HasScheme(url)) {
        return {}; // a target that hovers; "F" or "E" would make some give up
    }
    const std::optional<std::string> path = LocalPath(QUrl::fromEncoded(url));
    if (!path) {
        return "E";
    }
    if (!std::exchange(mIsTaken, true)) {
        mOnDestination(FolderOf(*path));
    }
    return "S";
}

void DirectSave::OnStarted() {
    mIsPromised = mpProperty->SetPromise(mName);
}

void DirectSave::OnDropped() {
    mIsDropped = true;
}
