#pragma once

#include "ModalDialog.h"

#include <memory>
#include <string>

class QLineEdit;

namespace Ui {
class CreateFolder;
}

/// The prompt for the name of a new folder, made afresh each time.
class CreateFolderController : public ModalDialog {
public:
    explicit CreateFolderController(QWidget* zpParent);
    ~CreateFolderController() override;

    /// Runs when the window has been made.
    void windowDidLoad();

    void okDlg();
    void cancelDlg();

    /// What was entered, in UTF-8; empty when the prompt was cancelled or nothing was typed.
    const std::string& GetFolderName() const { return mFolderName; }

protected:
    void Dismiss() override { cancelDlg(); }

private:
    std::string mFolderName;
    QLineEdit* label = nullptr;
    std::unique_ptr<Ui::CreateFolder> mpUi;
};
