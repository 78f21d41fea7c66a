#include "RunLoop.h"

#include "CommonUtils_OSX.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

namespace {

constexpr std::chrono::milliseconds kRoundLimit{100};
constexpr float kPauseSeconds = 0.01F;
constexpr int kQuestionsInQuietSlice = 2; // at the start, and when its time is up

} // namespace

bool RunLoop::RunSlice(std::chrono::milliseconds zLimit, const std::function<bool()>& zDone) {
    if (zDone()) {
        return true;
    }
    // The timer both wakes the loop and says that the time is up: comparing with a clock could leave the
    // loop waiting after the timer has fired a little early.
    bool timeUp = false;
    QTimer wakeUp;
    wakeUp.setSingleShot(true);
    wakeUp.setTimerType(Qt::PreciseTimer);
    QObject::connect(&wakeUp, &QTimer::timeout, &wakeUp, [&timeUp] { timeUp = true; });
    wakeUp.start(zLimit);
    while (!timeUp) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (zDone()) {
            return true;
        }
    }
    return false;
}

void RunLoop::WaitRound(const std::function<bool()>& zDone) {
    int questions = 0;
    const bool isDone = RunSlice(kRoundLimit, [&] {
        ++questions;
        return zDone();
    });
    if (!isDone && questions <= kQuestionsInQuietSlice) {
        OSX10_x::pauseThread(kPauseSeconds);
    }
}
