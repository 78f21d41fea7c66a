#pragma once

#include "WaitFor.h"

#include <QtCore/QDir>
#include <QtCore/QProcess>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>
#include <sys/prctl.h>

#include <csignal>
#include <stdexcept>

/// A message bus of this process's own, which nobody else is on.
class PrivateBus {
public:
    PrivateBus() {
        mDaemon.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
        mDaemon.start(QStringLiteral("dbus-daemon"),
                      {QStringLiteral("--session"), QStringLiteral("--nofork"),
                       QStringLiteral("--print-address"),
                       QStringLiteral("--address=unix:tmpdir=") + QDir::tempPath()});
        if (!WaitFor([this] { return mDaemon.canReadLine() || mDaemon.state() == QProcess::NotRunning; }) ||
            !mDaemon.canReadLine()) {
            throw std::runtime_error("dbus-daemon does not start");
        }
        mAddress = QString::fromUtf8(mDaemon.readLine()).trimmed();
    }

    ~PrivateBus() {
        mDaemon.kill();
        mDaemon.waitForFinished();
    }

    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    const QString& Address() const { return mAddress; }

    QDBusConnection Connect(const char* name) const {
        return QDBusConnection::connectToBus(mAddress, QLatin1String(name));
    }

private:
    QProcess mDaemon;
    QString mAddress;
};

/// What a file manager does with the data of an extraction offer; the answer, which may be an error.
inline QDBusMessage CallForExtraction(const QDBusConnection& bus, const QByteArray& service,
                                      const QByteArray& path, const QString& folder) {
    QDBusMessage call = QDBusMessage::createMethodCall(QString::fromUtf8(service), QString::fromUtf8(path),
                                                       QStringLiteral("org.kde.ark.DndExtract"),
                                                       QStringLiteral("extractSelectedFilesTo"));
    call.setArguments({folder});
    QDBusPendingCall pending = bus.asyncCall(call);
    if (!WaitFor([&pending] { return pending.isFinished(); })) {
        throw std::runtime_error("the extraction offer does not answer");
    }
    return pending.reply();
}
