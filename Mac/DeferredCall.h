#pragma once

#include <QtCore/QTimer>

#include <algorithm>
#include <cmath>
#include <limits>

/// Makes a timer run zCall each time that it is started; the owner of the timer owns the call.
template <typename Call>
void PrepareCall(QTimer& zrTimer, Call zCall) {
    zrTimer.setSingleShot(true);
    zrTimer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&zrTimer, &QTimer::timeout, &zrTimer, zCall);
}

/// Has a call run on the next pass of the event loop. One that is due stays due: starting it anew with every
/// pass would put it off for ever.
inline void StartCall(QTimer& zrTimer) {
    if (!zrTimer.isActive()) {
        zrTimer.start(0);
    }
}

/// Starts a time-out in seconds; negative is none.
inline void StartTimer(QTimer& zrTimer, double zSeconds) {
    if (zSeconds >= 0.0) {
        constexpr double kLongest = std::numeric_limits<int>::max();
        zrTimer.start(static_cast<int>(std::min(std::ceil(zSeconds * 1000.0), kLongest)));
    }
}
