#pragma once

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QTimer>

#include <chrono>

inline constexpr std::chrono::seconds kTestDeadline{20};

/// Runs the event loop until zCondition holds and tells whether it did before the deadline. The condition
/// is asked after every batch of events, and at least every few milliseconds, as some conditions are no
/// event of the loop.
template <typename Condition>
bool WaitFor(Condition zCondition, std::chrono::milliseconds zDeadline = kTestDeadline) {
    const QDeadlineTimer deadline(zDeadline);
    QTimer heartbeat;
    heartbeat.start(5);
    while (!zCondition()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

/// Runs zCount passes of the event loop, for what must not happen in them. Never blocks.
inline void RunLoopPasses(int zCount) {
    for (int pass = 0; pass < zCount; ++pass) {
        QCoreApplication::processEvents();
    }
}

/// Runs the event loop for zTime, for what must not happen in it.
inline void RunLoopFor(std::chrono::milliseconds zTime) {
    bool over = false;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, [&over] { over = true; });
    timer.start(zTime);
    while (!over) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}
