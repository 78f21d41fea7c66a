#include "ModalSession.h"

#include "RunLoop.h"

#include <QtGui/QAction>
#include <QtGui/QShortcut>
#include <QtWidgets/QApplication>

#include <algorithm>
#include <vector>

namespace {

constexpr std::chrono::milliseconds kSlice{100};

/// Whether a widget belongs to a window: inside it, or inside a window that it owns at any remove.
bool BelongsTo(const QWidget* zpWidget, const QWidget* zpWindow) {
    const QWidget* outermost = zpWidget->window();
    if (outermost->parentWidget() == nullptr && outermost->windowType() == Qt::Popup) {
        // The list of a completer has no owner; its keys go to the field that it serves.
        zpWidget = outermost->focusProxy();
    }
    while (zpWidget != nullptr && zpWidget != zpWindow) {
        zpWidget = zpWidget->parentWidget();
    }
    return zpWidget != nullptr;
}

bool IsPointerOrKey(QEvent::Type zType) {
    switch (zType) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::InputMethod:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::NativeGesture:
    case QEvent::ContextMenu:
        return true;
    default:
        return false;
    }
}

bool IsDrag(QEvent::Type zType) {
    return zType == QEvent::DragEnter || zType == QEvent::DragMove || zType == QEvent::Drop;
}

/// Whether a shortcut that fires may act: everywhere in the program, or in a widget that is accepted.
bool AcceptsShortcutOf(QObject* zpObject) {
    if (const auto* widget = qobject_cast<QWidget*>(zpObject)) {
        return ModalSession::Accepts(*widget);
    }
    if (const auto* shortcut = qobject_cast<QShortcut*>(zpObject)) {
        const auto* owner = qobject_cast<QWidget*>(shortcut->parent());
        return shortcut->context() == Qt::ApplicationShortcut ||
               (owner != nullptr && ModalSession::Accepts(*owner));
    }
    const auto* action = qobject_cast<QAction*>(zpObject);
    if (action == nullptr || action->shortcutContext() == Qt::ApplicationShortcut) {
        return true;
    }
    const QList<QObject*> users = action->associatedObjects();
    return std::any_of(users.begin(), users.end(), [](QObject* zpUser) {
        const auto* widget = qobject_cast<QWidget*>(zpUser);
        return widget != nullptr && ModalSession::Accepts(*widget);
    });
}

} // namespace

/// The running sessions, the one begun last at the end, and the filter that keeps input from the rest.
class ModalSessionStack : public QObject {
public:
    static ModalSessionStack& Instance() {
        static ModalSessionStack instance;
        return instance;
    }

    bool IsEmpty() const { return mSessions.empty(); }

    ModalSession& Top() const { return *mSessions.back(); }

    void Add(ModalSession& zrSession) {
        if (mSessions.empty()) {
            QCoreApplication::instance()->installEventFilter(this);
        }
        zrSession.mStopped = mUnwinding;
        mSessions.push_back(&zrSession);
    }

    void Remove(ModalSession& zrSession) {
        std::erase(mSessions, &zrSession);
        if (mSessions.empty()) {
            mUnwinding = false;
            QCoreApplication::instance()->removeEventFilter(this);
        }
    }

    void StopAll() {
        for (ModalSession* session : mSessions) {
            session->mStopped = true;
        }
        mUnwinding = !mSessions.empty();
        CloseBelongings();
    }

    bool eventFilter(QObject* zpObject, QEvent* zpEvent) override;

private:
    static void MakeNonModal(QWidget& zrWidget);
    bool KeepsAway(QObject* zpObject, QEvent& zrEvent) const;
    void NoteHidden(const QWidget& zrWidget);
    bool IsBelonging(const QWidget& zrWindow) const;
    void CloseBelongings() const;

    std::vector<ModalSession*> mSessions;
    bool mUnwinding = false; ///< StopAll was called, and sessions of that time have not ended yet
};

bool ModalSessionStack::eventFilter(QObject* zpObject, QEvent* zpEvent) {
    auto* widget = qobject_cast<QWidget*>(zpObject);
    if (widget != nullptr && zpEvent->type() == QEvent::Polish) {
        MakeNonModal(*widget);
    } else if (widget != nullptr && zpEvent->type() == QEvent::Hide && !zpEvent->spontaneous()) {
        NoteHidden(*widget);
    }
    return KeepsAway(zpObject, *zpEvent);
}

/// The toolkit opens boxes of its own, modal ones, over some of its dialogs; they would keep the main
/// window from being closed.
void ModalSessionStack::MakeNonModal(QWidget& zrWidget) {
    if (zrWidget.isWindow() && zrWidget.isModal()) {
        zrWidget.setWindowModality(Qt::NonModal);
    }
}

bool ModalSessionStack::KeepsAway(QObject* zpObject, QEvent& zrEvent) const {
    if (zrEvent.type() == QEvent::Shortcut) {
        return !AcceptsShortcutOf(zpObject);
    }
    const bool drag = IsDrag(zrEvent.type());
    if (!drag && !IsPointerOrKey(zrEvent.type())) {
        return false;
    }
    const auto* widget = qobject_cast<QWidget*>(zpObject);
    if (widget == nullptr || ModalSession::Accepts(*widget)) {
        return false;
    }
    if (zrEvent.type() == QEvent::MouseButtonPress) {
        Top().RaiseWindow();
    }
    zrEvent.setAccepted(!drag); // an accepted event is not offered to the widget's parents; a drop is refused
    return true;
}

void ModalSessionStack::NoteHidden(const QWidget& zrWidget) {
    for (ModalSession* session : mSessions) {
        session->mStopped = session->mStopped || session->mpWindow == &zrWidget;
    }
}

bool ModalSessionStack::IsBelonging(const QWidget& zrWindow) const {
    const auto isWindow = [&](const ModalSession* zpSession) { return zpSession->mpWindow == &zrWindow; };
    const auto owns = [&](const ModalSession* zpSession) {
        return zpSession->mpWindow != nullptr && BelongsTo(&zrWindow, zpSession->mpWindow);
    };
    return std::none_of(mSessions.begin(), mSessions.end(), isWindow) &&
           std::any_of(mSessions.begin(), mSessions.end(), owns);
}

/// Boxes and menus that the toolkit opened over a session's window run event loops of their own.
void ModalSessionStack::CloseBelongings() const {
    QList<QPointer<QWidget>> belongings;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && IsBelonging(*window)) {
            belongings.append(window);
        }
    }
    for (const QPointer<QWidget>& window : belongings) {
        if (window != nullptr) {
            window->close();
        }
    }
}

ModalSession::ModalSession(QWidget& zrWindow, std::chrono::milliseconds zShowDelay) : mpWindow(&zrWindow) {
    ModalSessionStack::Instance().Add(*this);
    mShowTimer.setSingleShot(true);
    QObject::connect(&mShowTimer, &QTimer::timeout, &mShowTimer, [this] { ShowWindow(); });
    if (zShowDelay.count() > 0) {
        mShowTimer.start(zShowDelay);
    } else {
        ShowWindow();
    }
}

ModalSession::~ModalSession() {
    End();
}

ModalSession::eModalResponse ModalSession::RunOnce() {
    QCoreApplication::processEvents();
    return IsStopped() || mEnded ? eModalResponse::Stopped : eModalResponse::Continues;
}

void ModalSession::End() {
    if (!mEnded) {
        mEnded = true;
        mShowTimer.stop();
        ModalSessionStack::Instance().Remove(*this);
    }
}

void ModalSession::RunModal(QWidget& zrWindow) {
    const ModalSession session(zrWindow);
    while (!RunLoop::RunSlice(kSlice, [&session] { return session.IsStopped(); })) {
    }
}

void ModalSession::StopCurrent() {
    if (IsRunning()) {
        ModalSessionStack::Instance().Top().mStopped = true;
    }
}

void ModalSession::StopAll() {
    ModalSessionStack::Instance().StopAll();
}

bool ModalSession::IsRunning() {
    return !ModalSessionStack::Instance().IsEmpty();
}

bool ModalSession::Accepts(const QWidget& zrWidget) {
    if (!IsRunning()) {
        return true;
    }
    const QWidget* window = ModalSessionStack::Instance().Top().mpWindow;
    return window != nullptr && BelongsTo(&zrWidget, window);
}

void ModalSession::ShowWindow() {
    if (IsStopped()) {
        return;
    }
    if (&ModalSessionStack::Instance().Top() != this) {
        mShowTimer.start(kSlice); // a prompt has come up meanwhile, and keeps the keyboard
        return;
    }
    mpWindow->show();
    RaiseWindow();
}

void ModalSession::RaiseWindow() {
    if (mpWindow != nullptr && mpWindow->isVisible()) {
        mpWindow->raise();
        mpWindow->activateWindow();
    }
}
