#pragma once

#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtWidgets/QWidget>

#include <chrono>

/// A window that has the user's attention for a while: begin (the constructor), run once, end.
///
/// Mouse, wheel, key, touch, tablet, input method, context menu and drop events reach only the window of the
/// session begun last, and the windows that belong to it. This is done here and not by the toolkit's
/// modality, which would also refuse to close the main window: closing it, shortcuts with application
/// context and painting always work. Sessions nest and may end in any order, also for the same window.
///
/// A session stops when somebody asks for it or when its window is hidden or destroyed. Stopping is only
/// an answer to RunOnce; input stays confined until End. Hiding the window is its owner's business.
class ModalSession {
public:
    enum class eModalResponse { Continues, Stopped };

    /// Begins the session and shows the window, non-modally, once zShowDelay has passed (0: at once) and no
    /// other session is in front of it, from which it would take the keyboard.
    explicit ModalSession(QWidget& zrWindow, std::chrono::milliseconds zShowDelay = {});
    ~ModalSession();
    ModalSession(const ModalSession&) = delete;
    ModalSession& operator=(const ModalSession&) = delete;

    /// Delivers pending events once, without waiting, and reports.
    eModalResponse RunOnce();

    /// Ends the session; a window that still waits for its delay will not be shown. Once is enough.
    void End();

    /// Blocks, pumping the event loop, until the session of zrWindow stops.
    static void RunModal(QWidget& zrWindow);

    /// Asks for the end of the session begun last.
    static void StopCurrent();

    /// Asks for the end of every session, for quitting. A session begun before they all have ended is
    /// stopped from the start, so that the loops in between unwind without another question.
    static void StopAll();

    static bool IsRunning();

    /// Whether the user may act on this widget now: always while no session runs, else only when it belongs
    /// to the window of the session begun last.
    static bool Accepts(const QWidget& zrWidget);

private:
    friend class ModalSessionStack;

    bool IsStopped() const { return mStopped || mpWindow.isNull(); }

    void ShowWindow();
    void RaiseWindow();

    QPointer<QWidget> mpWindow;
    QTimer mShowTimer;
    bool mStopped = false;
    bool mEnded = false;
};
