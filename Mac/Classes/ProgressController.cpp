#include "ProgressController.h"

#include "ModalSession.h"
#include "WidgetText.h"
#include "ui_ProgressView.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kBarSteps = 1000;

/// The accessible name of these labels is their role, so the words go into the description.
void ShowWords(QLabel& zrLabel, const std::string& zText) {
    const QString words = ToWidgetText(zText);
    if (zrLabel.text() != words) {
        zrLabel.setText(words);
        zrLabel.setAccessibleDescription(words);
    }
}

} // namespace

ProgressController::ProgressController(QWidget* zpParent)
    : ModalDialog(zpParent), mpUi(std::make_unique<Ui::ProgressView>()) {
    mpUi->setupUi(this);
    label = mpUi->label;
    progress = mpUi->progress;
    cancel = mpUi->cancel;
    OnPress(*cancel, [this] { cancelDlg(); });
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
    SetDetails("");
}

void ProgressController::SetProgress(const std::string& zText, float zPosition) {
    const float position = std::isnan(zPosition) ? 0.0F : std::clamp(zPosition, 0.0F, 1.0F);
    progress->setValue(static_cast<int>(std::lround(position * static_cast<float>(kBarSteps))));
    ShowWords(*label, zText);
}

void ProgressController::SetDetails(const std::string& zText) {
    ShowWords(*mpUi->details, zText);
    mpUi->details->setVisible(!zText.empty());
}

void ProgressController::cancelDlg() {
    if (!canceled) {
        cancel->setEnabled(false);
        canceled = true;
        ModalSession::StopCurrent();
    }
}
