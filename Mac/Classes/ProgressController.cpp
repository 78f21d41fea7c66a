#include "ProgressController.h"

#include "ModalSession.h"
#include "ProgressDetails.h"
#include "WidgetText.h"
#include "ui_ProgressView.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kBarSteps = 1000;
constexpr int kBetweenChanges = 40;                     // milliseconds
constexpr std::chrono::milliseconds kBetweenLooks{500}; ///< at an amount that stays the same

/// A line that comes and goes must not move the others, nor change the window's size.
void KeepRoom(QWidget& zrWidget) {
    QSizePolicy policy = zrWidget.sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    zrWidget.setSizePolicy(policy);
}

} // namespace

ProgressController::ProgressController(QWidget* zpParent)
    : ModalDialog(zpParent), mpUi(std::make_unique<Ui::ProgressView>()) {
    mpUi->setupUi(this);
    label = mpUi->label;
    progress = mpUi->progress;
    cancel = mpUi->cancel;
    KeepRoom(*mpUi->details);
    OnPress(*cancel, [this] { cancelDlg(); });
    mShowTimer.setSingleShot(true);
    connect(&mShowTimer, &QTimer::timeout, this, [this] { ShowNow(); });
    Init("");
}

ProgressController::~ProgressController() = default;

void ProgressController::Init(const std::string& zTitle) {
    progress->setRange(0, kBarSteps);
    cancel->setEnabled(true);
    cancel->setFocus();
    canceled = false;
    MakeRoom();
    setWindowTitle(ToWidgetText(zTitle));
    SetProgress("", 0.0F);
    SetAmount(0, 0);
    mEstimate.Restart();
    ShowNow();
    mSinceShown.invalidate();
}

/// Details are never to be cut, whatever the font: of a name the ends will do, of these they will not.
void ProgressController::MakeRoom() {
    const QString longest = ToWidgetText(LongestProgressDetails());
    mpUi->details->setMinimumWidth(fontMetrics().horizontalAdvance(longest));
    resize(size().expandedTo(minimumSizeHint()));
}

void ProgressController::SetProgress(const std::string& zText, float zPosition) {
    const float position = std::isnan(zPosition) ? 0.0F : std::clamp(zPosition, 0.0F, 1.0F);
    if (mText != zText || mPosition != position) {
        mText = zText;
        mPosition = position;
        ShowSoon();
    }
}

void ProgressController::SetAmount(std::uint64_t zDone, std::uint64_t zTotal) {
    const bool changed = mDone != zDone || mTotal != zTotal;
    if (changed || (zTotal != 0 && mClock() - mShownAt >= kBetweenLooks)) { // the rate falls
        mDone = zDone;
        mTotal = zTotal;
        ShowSoon();
    }
}

void ProgressController::ShowSoon() {
    const qint64 since = mSinceShown.isValid() ? mSinceShown.elapsed() : kBetweenChanges;
    if (since >= kBetweenChanges) {
        ShowNow();
    } else if (!mShowTimer.isActive()) {
        mShowTimer.start(static_cast<int>(kBetweenChanges - since));
    }
}

void ProgressController::ShowNow() {
    mShowTimer.stop();
    mSinceShown.start();
    mShownAt = mClock();
    mEstimate.Note(mShownAt, mDone, mTotal);
    progress->setValue(static_cast<int>(std::lround(mPosition * static_cast<float>(kBarSteps))));
    ShowWords(*label, mText);
    const std::string details = ProgressDetails(mDone, mTotal, mEstimate);
    ShowWords(*mpUi->details, details);
    mpUi->details->setVisible(!details.empty());
}

void ProgressController::cancelDlg() {
    if (!canceled) {
        cancel->setEnabled(false);
        canceled = true;
        ModalSession::StopCurrent();
    }
}
