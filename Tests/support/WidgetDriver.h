#pragma once

#include "WaitFor.h"

#include <QtCore/QTimer>
#include <QtGui/QAccessible>
#include <QtGui/QCloseEvent>
#include <QtGui/QWindow>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

/// Finds controls the way that assistive tools do, and works them with real events.

inline QString AccessibleText(QWidget& zrWidget, QAccessible::Text zKind) {
    const QAccessibleInterface* face = QAccessible::queryAccessibleInterface(&zrWidget);
    return face != nullptr ? face->text(zKind) : QString();
}

/// The control of a type that assistive tools know by a name; an exception where there is none.
template <typename Widget>
Widget& Control(QWidget& zrWindow, const char* zName) {
    for (Widget* widget : zrWindow.findChildren<Widget*>()) {
        if (AccessibleText(*widget, QAccessible::Name) == QString::fromUtf8(zName)) {
            return *widget;
        }
    }
    throw std::runtime_error(std::string("no control is called ") + zName);
}

/// Presses a button with the mouse.
template <typename Button>
void Click(QWidget& zrWindow, const char* zName) {
    QTest::mouseClick(&Control<Button>(zrWindow, zName), Qt::LeftButton);
}

/// Shows a window and waits until it has the keyboard.
inline void ShowActive(QWidget& zrWindow) {
    zrWindow.show();
    zrWindow.activateWindow();
    ASSERT_TRUE(WaitFor([&] { return QApplication::activeWindow() == &zrWindow; }));
}

/// Closes a shown window as its frame does; returns whether the window agreed.
inline bool CloseByFrame(QWidget& zrWindow) {
    QCloseEvent event;
    QSpontaneKeyEvent::setSpontaneous(&event);
    QCoreApplication::instance()->notify(zrWindow.windowHandle(), &event);
    return event.isAccepted();
}

/// Waits, while a blocking prompt runs the event loop, until a window of a type is up and active, and then
/// works it. Destroyed unused it fails the test.
template <typename Window>
class Answer {
public:
    explicit Answer(std::function<void(Window&)> zAct) : mAct(std::move(zAct)) {
        QObject::connect(&mTimer, &QTimer::timeout, &mTimer, [this] { Look(); });
        mTimer.start(1);
    }

    ~Answer() { EXPECT_TRUE(mDone) << "the prompt never came up"; }

    Answer(const Answer&) = delete;
    Answer& operator=(const Answer&) = delete;

private:
    void Look() {
        auto* window = qobject_cast<Window*>(QApplication::activeWindow());
        if (window != nullptr && window->isVisible()) {
            mTimer.stop();
            mDone = true;
            mAct(*window);
        }
    }

    std::function<void(Window&)> mAct;
    QTimer mTimer;
    bool mDone = false;
};
