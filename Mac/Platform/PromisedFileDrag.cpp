#include "PromisedFileDrag.h"

#include "CommonUtils.h"
#include "DirectSave.h"
#include "ExtractionOffer.h"
#include "ThemeIcon.h"
#include "XdndProperty.h"

#include <QtCore/QMimeData>
#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtWidgets/QWidget>

#include <chrono>
#include <memory>
#include <utility>
#include <vector>

namespace {

/// How long a target that accepted the drop may take to name its folder, before the log says so.
constexpr std::chrono::seconds kPatience{10};

/// Has a call run on the event loop, unless zrOwner is gone by then.
void CallLater(QWidget& zrOwner, std::chrono::milliseconds zDelay, const std::function<void()>& zrCall) {
    auto* timer = new QTimer(&zrOwner);
    timer->setSingleShot(true);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, zrCall] {
        timer->deleteLater();
        zrCall();
    });
    timer->start(zDelay);
}

/// What one drag promises, by all the ways there are here.
class Promise {
public:
    Promise(QWidget& zrSource, const std::string& zFirstName, PromisedFileDrag::OnDestination zOnDestination);

    const std::vector<std::unique_ptr<PromiseWay>>& Ways() const { return mWays; }

    /// To be called just before the drag's event loop: it has no source that others could see earlier.
    void PostStart() { mStart.start(0); }

    void OnDropped();

    /// Takes the promise back unless it was taken. Whether it did so.
    bool Expire();

private:
    void Add(std::unique_ptr<PromiseWay> zpWay);
    void Take(const std::string& zFolder);

    QPointer<QWidget> mpSource;
    PromisedFileDrag::OnDestination mOnDestination;
    bool mIsTaken = false;
    std::vector<std::unique_ptr<PromiseWay>> mWays;
    QTimer mStart;
};

Promise::Promise(QWidget& zrSource, const std::string& zFirstName,
                 PromisedFileDrag::OnDestination zOnDestination)
    : mpSource(&zrSource), mOnDestination(std::move(zOnDestination)) {
    const auto take = [this](const std::string& folder) { Take(folder); };
    if (auto property = XdndProperty::Make()) {
        Add(std::make_unique<DirectSave>(std::move(property), zFirstName, take));
    }
    Add(ExtractionOffer::Make(QDBusConnection::sessionBus(), take));
    mStart.setSingleShot(true);
    QObject::connect(&mStart, &QTimer::timeout, &mStart, [this] {
        for (const auto& way : mWays) {
            way->OnStarted();
        }
    });
}

void Promise::OnDropped() {
    for (const auto& way : mWays) {
        way->OnDropped();
    }
}

bool Promise::Expire() {
    if (!mIsTaken) {
        mWays.clear();
    }
    return mWays.empty();
}

void Promise::Add(std::unique_ptr<PromiseWay> zpWay) {
    if (zpWay) {
        mWays.push_back(std::move(zpWay));
    }
}

void Promise::Take(const std::string& zFolder) {
    if (mpSource && !std::exchange(mIsTaken, true)) {
        // The target, and with it the other program's window, waits for the answer to its request.
        CallLater(*mpSource, std::chrono::seconds(0), [call = mOnDestination, zFolder] { call(zFolder); });
    }
}

/// The promise as the data of the drag. The platform keeps it until the target has finished.
class PromiseMime : public QMimeData {
public:
    explicit PromiseMime(std::shared_ptr<Promise> zpPromise) : mpPromise(std::move(zpPromise)) {}

    QStringList formats() const override {
        QStringList formats;
        for (const auto& way : mpPromise->Ways()) {
            formats += way->Formats();
        }
        return formats;
    }

protected:
    QVariant retrieveData(const QString& zFormat, QMetaType /*zType*/) const override {
        for (const auto& way : mpPromise->Ways()) {
            if (way->Formats().contains(zFormat)) {
                return way->Data(zFormat);
            }
        }
        return {};
    }

private:
    std::shared_ptr<Promise> mpPromise;
};

/// The platform owns the drag, and keeps it as long as the target needs it.
QDrag* MakeDrag(QWidget& zrSource, const std::shared_ptr<Promise>& zrpPromise) {
    constexpr int kSize = 32;
    auto* drag = new QDrag(&zrSource);
    drag->setMimeData(new PromiseMime(zrpPromise));
    drag->setPixmap(ThemeIcon("application-octet-stream").pixmap(kSize, kSize));
    return drag;
}

/// Keeps the promise for a while, whatever the target does with the data of the drag, but no longer: people
/// select other rows by then.
void AwaitDestination(QWidget& zrSource, const std::shared_ptr<Promise>& zrpPromise) {
    CallLater(zrSource, kPatience, [zrpPromise] {
        if (zrpPromise->Expire()) {
            DebugPrintf("Drag: no destination was given\n");
        }
    });
}

} // namespace

Qt::DropAction PromisedFileDrag::ExecCopy(QDrag& zrDrag) {
    return zrDrag.exec(Qt::CopyAction, Qt::CopyAction);
}

void PromisedFileDrag::Run(QWidget& zrSource, const std::string& zFirstName, OnDestination zOnDestination,
                           const Exec& zrExec) {
    const QPointer<QWidget> source(&zrSource);
    const auto promise = std::make_shared<Promise>(zrSource, zFirstName, std::move(zOnDestination));
    promise->PostStart();
    const Qt::DropAction action = zrExec(*MakeDrag(zrSource, promise));
    if (action == Qt::CopyAction && source) {
        promise->OnDropped();
        AwaitDestination(*source, promise);
    }
}
