#pragma once

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>

/// Takes the place of the user's browser while it lives, for files.
class Browser : public QObject {
    Q_OBJECT
public:
    Browser() { QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "Open"); }

    ~Browser() override { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); }

    Browser(const Browser&) = delete;
    Browser& operator=(const Browser&) = delete;

    const QList<QUrl>& Opened() const { return mOpened; }

    Q_INVOKABLE void Open(const QUrl& zUrl) { mOpened.append(zUrl); }

private:
    QList<QUrl> mOpened;
};
