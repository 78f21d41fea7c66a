#pragma once

#include "ModalDialog.h"

#include <memory>
#include <string>

class QLabel;

namespace Ui {
class CopyFolder;
}

/// The answers of the overwrite prompt.
enum {
    CopyCancel = 0,  ///< abort the whole operation
    CopyNo = 1,      ///< skip this item, go on with the next
    CopyYes = 2,     ///< replace this item
    CopyYesToAll = 3 ///< replace this item and every later one of the operation without asking
};

/// The overwrite prompt, made afresh for each question. The default button is No, so that a hasty Return
/// destroys nothing.
class CopyFolderController : public ModalDialog {
public:
    explicit CopyFolderController(QWidget* zpParent);
    ~CopyFolderController() override;

    /// Runs when the window has been made: without a pressed button the answer is CopyCancel.
    void windowDidLoad();

    /// Fills the window for what exists under the name zMessage.
    void setText(bool zIsFolder, const std::string& zMessage);

    void onYes();
    void onYesToAll();
    void onNo();
    void onCancel();

    int GetResult() const { return mResult; }

protected:
    void Dismiss() override { onCancel(); }

private:
    void Answer(int zResult);

    int mResult = CopyCancel;
    QLabel* mpText1 = nullptr;
    QLabel* mpText2 = nullptr;
    std::unique_ptr<Ui::CopyFolder> mpUi;
};
