#pragma once

#include "ModalDialog.h"

#include <memory>
#include <string>

class QLabel;
class QProgressBar;
class QPushButton;

namespace Ui {
class ProgressView;
}

/// The progress window. One serves every operation; Init makes it ready for the next.
class ProgressController : public ModalDialog {
public:
    explicit ProgressController(QWidget* zpParent);
    ~ProgressController() override;

    /// Prepares the window for a new operation: empty bar, no texts, Cancel enabled.
    void Init(const std::string& zTitle);

    /// Shows the current item's text and a position between 0 and 1; outside of it the nearer end, and 0 for
    /// what is not a number.
    void SetProgress(const std::string& zText, float zPosition);

    /// Shows how much of the whole is done; an empty text takes the line away.
    void SetDetails(const std::string& zText);

    /// Whether the user has cancelled since Init.
    bool GetCancelled() const { return canceled; }

    /// The Cancel button's action. Asks for the end of the running session.
    void cancelDlg();

protected:
    void Dismiss() override { cancelDlg(); }

private:
    QLabel* label = nullptr;
    QProgressBar* progress = nullptr;
    QPushButton* cancel = nullptr;
    bool canceled = false;
    std::unique_ptr<Ui::ProgressView> mpUi;
};
