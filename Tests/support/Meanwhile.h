#pragma once

#include "WaitFor.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>
#include <QtWidgets/QWidget>

#include <chrono>
#include <deque>
#include <functional>
#include <string>

/// Steps for the time in which the program runs event loops of its own and the test's call has not returned:
/// each one acts once, as soon as its condition holds and the steps before it have begun.
///
/// A step that never comes fails the test when the deadline has passed, and closes every window then, so
/// that the loops end. So does the end of the object's life with steps left.
class Meanwhile {
public:
    using tCondition = std::function<bool()>;
    using tAction = std::function<void()>;

    Meanwhile();
    ~Meanwhile();
    Meanwhile(const Meanwhile&) = delete;
    Meanwhile& operator=(const Meanwhile&) = delete;

    /// zWhat says in a failure's text what did not come.
    Meanwhile& When(const std::string& zWhat, tCondition zCondition, tAction zAction = {});

    /// When a window with this title has the user's attention. An alert also goes by its text.
    Meanwhile& WhenShown(const std::string& zTitle, std::function<void(QWidget&)> zAction);

    /// Presses a button of such a window with the mouse.
    Meanwhile& Answer(const std::string& zTitle, const char* zButton);

    bool HasEnded() const { return mSteps.empty(); }

private:
    struct sStep {
        std::string what;
        tCondition condition;
        tAction action;
    };

    void Look();
    void GiveUp();

    std::deque<sStep> mSteps;
    QTimer mTimer;
    QElapsedTimer mSinceLastStep;
};

/// Runs zAction from the event loop, after what is happening now.
void Soon(const std::function<void()>& zAction, std::chrono::milliseconds zDelay = {});

/// The visible window of that title (or alert of that text) that input reaches now; null without one.
QWidget* WindowInFront(const std::string& zTitle);
