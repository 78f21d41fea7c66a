#include "LocalUrl.h"

#include <QtCore/QMimeData>
#include <QtCore/QSysInfo>
#include <QtCore/QUrl>

namespace {

bool IsThisComputer(const QString& zHost) {
    return zHost.isEmpty() || zHost.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0 ||
           zHost.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0;
}

} // namespace

std::optional<std::string> LocalPath(const QUrl& zUrl) {
    // A "#" or "?" that was not encoded would leave the path of something else.
    if (zUrl.scheme() != QLatin1String("file") || !IsThisComputer(zUrl.host()) || zUrl.hasQuery() ||
        zUrl.hasFragment()) {
        return {};
    }
    // Decoded as bytes: a name on the disk need not be text.
    std::string path = QByteArray::fromPercentEncoding(zUrl.path(QUrl::FullyEncoded).toUtf8()).toStdString();
    const bool isPath = path.starts_with('/') && path.find('\0') == std::string::npos;
    return isPath ? std::optional(std::move(path)) : std::nullopt;
}

std::vector<std::string> LocalPaths(const QMimeData& zData) {
    std::vector<std::string> paths;
    for (const QUrl& url : zData.urls()) {
        if (auto path = LocalPath(url)) {
            paths.push_back(std::move(*path));
        }
    }
    return paths;
}
