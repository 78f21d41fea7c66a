#include "Meanwhile.h"

#include "ModalSession.h"
#include "WidgetDriver.h"

#include <QtWidgets/QApplication>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>

#include <utility>

namespace {

bool GoesBy(const QWidget& zrWindow, const std::string& zTitle) {
    const auto* box = qobject_cast<const QMessageBox*>(&zrWindow);
    return zrWindow.windowTitle().toStdString() == zTitle ||
           (box != nullptr && box->text().toStdString() == zTitle);
}

} // namespace

QWidget* WindowInFront(const std::string& zTitle) {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && GoesBy(*window, zTitle) && ModalSession::Accepts(*window)) {
            return window;
        }
    }
    return nullptr;
}

void Soon(const std::function<void()>& zAction, std::chrono::milliseconds zDelay) {
    auto* timer = new QTimer(qApp);
    timer->setSingleShot(true);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, zAction] {
        timer->deleteLater();
        zAction();
    });
    timer->start(zDelay);
}

Meanwhile::Meanwhile() {
    mTimer.setSingleShot(true);
    mTimer.setInterval(1);
    QObject::connect(&mTimer, &QTimer::timeout, &mTimer, [this] { Look(); });
}

Meanwhile::~Meanwhile() {
    EXPECT_TRUE(mSteps.empty()) << "never came: " << mSteps.front().what;
}

Meanwhile& Meanwhile::When(const std::string& zWhat, tCondition zCondition, tAction zAction) {
    if (mSteps.empty()) {
        mSinceLastStep.start();
        mTimer.start();
    }
    mSteps.push_back({zWhat, std::move(zCondition), std::move(zAction)});
    return *this;
}

Meanwhile& Meanwhile::WhenShown(const std::string& zTitle, std::function<void(QWidget&)> zAction) {
    return When(
        "the window " + zTitle, [zTitle] { return WindowInFront(zTitle) != nullptr; },
        [zTitle, action = std::move(zAction)] { action(*WindowInFront(zTitle)); });
}

Meanwhile& Meanwhile::Answer(const std::string& zTitle, const char* zButton) {
    return WhenShown(zTitle, [zButton](QWidget& zrWindow) { Click<QPushButton>(zrWindow, zButton); });
}

void Meanwhile::Look() {
    if (mSteps.empty()) {
        return;
    }
    if (!mSteps.front().condition()) {
        if (mSinceLastStep.hasExpired(std::chrono::milliseconds(kTestDeadline).count())) {
            GiveUp();
        } else {
            mTimer.start();
        }
        return;
    }
    const sStep step = std::move(mSteps.front());
    mSteps.pop_front();
    mSinceLastStep.start();
    // Before the action, which may run an event loop in which the next step is due.
    mTimer.start();
    if (step.action) {
        step.action();
    }
}

void Meanwhile::GiveUp() {
    ADD_FAILURE() << "never came: " << mSteps.front().what;
    mSteps.clear();
    QApplication::closeAllWindows();
}
