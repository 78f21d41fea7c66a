#include "ProgressController.h"

#include "ModalSession.h"
#include "WidgetText.h"
#include "ui_ProgressView.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLocale>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kBarSteps = 1000;
constexpr int kBetweenChanges = 40; // milliseconds

/// The accessible name of these labels is their role, so the words go into the description.
void ShowWords(QLabel& zrLabel, const std::string& zText) {
    const QString words = ToWidgetText(zText);
    if (zrLabel.text() != words) {
        zrLabel.setText(words);
        zrLabel.setAccessibleDescription(words);
    }
}

std::string AmountText(std::uint64_t zDone, std::uint64_t zTotal) {
    if (zTotal == 0 || zDone > zTotal) {
        return {};
    }
    const QLocale locale;
    return FromWidgetText(QCoreApplication::translate("Quillbox", "%1 of %2")
                              .arg(locale.formattedDataSize(static_cast<qint64>(zDone), 1),
                                   locale.formattedDataSize(static_cast<qint64>(zTotal), 1)));
}

} // namespace

ProgressController::ProgressController(QWidget* zpParent)
    : ModalDialog(zpParent), mpUi(std::make_unique<Ui::ProgressView>()) {
    mpUi->setupUi(this);
    label = mpUi->label;
    progress = mpUi->progress;
    cancel = mpUi->cancel;
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
    setWindowTitle(ToWidgetText(zTitle));
    SetProgress("", 0.0F);
    SetAmount(0, 0);
    ShowNow();
    mSinceShown.invalidate();
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
    if (mDone != zDone || mTotal != zTotal) {
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
    progress->setValue(static_cast<int>(std::lround(mPosition * static_cast<float>(kBarSteps))));
    ShowWords(*label, mText);
    const std::string amount = AmountText(mDone, mTotal);
    ShowWords(*mpUi->details, amount);
    mpUi->details->setVisible(!amount.empty());
}

void ProgressController::cancelDlg() {
    if (!canceled) {
        cancel->setEnabled(false);
        canceled = true;
        ModalSession::StopCurrent();
    }
}
