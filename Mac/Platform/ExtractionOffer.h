#pragma once

#include "PromiseWay.h"

#include <QtCore/QObject>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusContext>

#include <memory>

/// The extraction offer of archive programs over the session bus, which some file managers take instead of a
/// direct save: the drag carries a bus name and an object path, and the target calls that object with the
/// folder dropped on. The object stands on the bus as long as this one lives.
class ExtractionOffer : public QObject, public PromiseWay, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.ark.DndExtract")

public:
    /// None where the bus cannot be reached.
    static std::unique_ptr<ExtractionOffer> Make(const QDBusConnection& zrBus, OnDestination zOnDestination);
    ~ExtractionOffer() override;

    QStringList Formats() const override;
    QByteArray Data(const QString& zFormat) override;
    void OnDropped() override;

    /// The target's call. zFolder is an absolute path or a local file URL; anything else, and a call before
    /// the drop, is answered by an error. Of several calls the first counts.
    Q_SCRIPTABLE Q_INVOKABLE void extractSelectedFilesTo(const QString& zFolder);

private:
    ExtractionOffer(QDBusConnection zBus, OnDestination zOnDestination);

    QDBusConnection mBus;
    QString mObjectPath;
    OnDestination mOnDestination;
    bool mIsDropped = false;
    bool mIsTaken = false;
};
