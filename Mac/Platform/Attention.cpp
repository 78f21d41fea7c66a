#include "Attention.h"

#include <QtWidgets/QApplication>

#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr auto kLong = 10s;
constexpr auto kSettling = 1s;

} // namespace

Attention::Attention(std::function<void()> zAsk, tClock zClock)
    : mAsk(std::move(zAsk)), mClock(std::move(zClock)) {
    mSettleTimer.setSingleShot(true);
    QObject::connect(&mSettleTimer, &QTimer::timeout, &mSettleTimer, [this] { Settle(); });
}

void Attention::Begin() {
    mSettleTimer.stop();
    if (!mBegan) {
        mBegan = mClock();
    }
}

void Attention::End() {
    mEnded = mClock();
    mSettleTimer.start(kSettling);
}

void Attention::Settle() {
    const bool wasLong = mBegan && mEnded - *mBegan >= kLong;
    mBegan.reset();
    if (wasLong && QApplication::activeWindow() == nullptr) {
        mAsk();
    }
}
