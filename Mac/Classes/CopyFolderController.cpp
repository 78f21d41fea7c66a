#include "CopyFolderController.h"

#include "CommonUtils.h"
#include "ModalSession.h"
#include "WidgetText.h"
#include "ui_CopyFolder.h"

namespace {

struct sPromptTexts {
    const char* title;
    const char* exists; ///< takes the name
    const char* question;
};

constexpr sPromptTexts kFolderTexts = {
    "Copy Folder", "A folder with the name '%s' already exists.",
    "Any files in the destination folder with the same name as those in the source folder will be replaced.  "
    "Do you still want to copy the folder?"};
constexpr sPromptTexts kFileTexts = {"Copy File", "A file with the name '%s' already exists.",
                                     "Do you want to replace it?"};

} // namespace

CopyFolderController::CopyFolderController(QWidget* zpParent)
    : ModalDialog(zpParent), mpUi(std::make_unique<Ui::CopyFolder>()) {
    mpUi->setupUi(this);
    mpText1 = mpUi->text1;
    mpText2 = mpUi->text2;
    OnPress(*mpUi->yes, [this] { onYes(); });
    OnPress(*mpUi->yesToAll, [this] { onYesToAll(); });
    OnPress(*mpUi->no, [this] { onNo(); });
    OnPress(*mpUi->cancel, [this] { onCancel(); });
    mpUi->no->setFocus();
    windowDidLoad();
}

CopyFolderController::~CopyFolderController() = default;

void CopyFolderController::windowDidLoad() {
    mResult = CopyCancel;
}

void CopyFolderController::setText(bool zIsFolder, const std::string& zMessage) {
    const sPromptTexts& texts = zIsFolder ? kFolderTexts : kFileTexts;
    setWindowTitle(ToWidgetText(Translated(texts.title)));
    ShowWords(*mpText1, Filled(texts.exists, Abbreviated(zMessage).c_str()));
    mpText1->setAccessibleDescription(ToWidgetText(Filled(texts.exists, zMessage.c_str())));
    ShowWords(*mpText2, Translated(texts.question));
    adjustSize();
}

void CopyFolderController::onYes() {
    Answer(CopyYes);
}

void CopyFolderController::onYesToAll() {
    Answer(CopyYesToAll);
}

void CopyFolderController::onNo() {
    Answer(CopyNo);
}

void CopyFolderController::onCancel() {
    Answer(CopyCancel);
}

void CopyFolderController::Answer(int zResult) {
    mResult = zResult;
    ModalSession::StopCurrent();
}
