#include "CreateFolderController.h"

#include "ModalSession.h"
#include "WidgetText.h"
#include "ui_CreateFolder.h"

CreateFolderController::CreateFolderController(QWidget* zpParent)
    : ModalDialog(zpParent), mpUi(std::make_unique<Ui::CreateFolder>()) {
    mpUi->setupUi(this);
    label = mpUi->label;
    OnPress(*mpUi->ok, [this] { okDlg(); });
    OnPress(*mpUi->cancel, [this] { cancelDlg(); });
    label->setFocus();
    windowDidLoad();
}

CreateFolderController::~CreateFolderController() = default;

void CreateFolderController::windowDidLoad() {
    mFolderName.clear();
}

void CreateFolderController::okDlg() {
    mFolderName = FromWidgetText(label->text());
    ModalSession::StopCurrent();
}

void CreateFolderController::cancelDlg() {
    mFolderName.clear();
    ModalSession::StopCurrent();
}
