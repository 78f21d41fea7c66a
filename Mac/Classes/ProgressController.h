#pragma once

#include "ModalDialog.h"
#include "ProgressEstimate.h"
#include "SteadyClock.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

class QLabel;
class QProgressBar;
class QPushButton;

namespace Ui {
class ProgressView;
}

/// The progress window. One serves every operation; Init makes it ready for the next. A change is shown at
/// once, but for one that follows another sooner than people can see: showing each of a thousand small files
/// would take longer than to transfer it. Such a one waits a moment; the latest is always shown in the end.
class ProgressController : public ModalDialog {
public:
    explicit ProgressController(QWidget* zpParent);
    ~ProgressController() override;

    /// Prepares the window for a new operation: empty bar, no texts, Cancel enabled.
    void Init(const std::string& zTitle);

    /// Shows the current item's text and a position between 0 and 1; outside of it the nearer end, and 0 for
    /// what is not a number.
    void SetProgress(const std::string& zText, float zPosition);

    /// Shows how many bytes of the whole are done, how fast it goes and how long it will take; nothing where
    /// the whole is unknown (0), or turns out to be more than was said. To be told now and then while nothing
    /// moves, too.
    void SetAmount(std::uint64_t zDone, std::uint64_t zTotal);

    /// Shows the latest at once. For the steps of an operation that has few, and before the window closes.
    void ShowNow();

    /// Whether the user has cancelled since Init.
    bool GetCancelled() const { return canceled; }

    /// Another clock to work out rates with, for tests.
    void UseClock(tClock zClock) { mClock = std::move(zClock); }

    /// The Cancel button's action. Asks for the end of the running session.
    void cancelDlg();

protected:
    void Dismiss() override { cancelDlg(); }

private:
    void MakeRoom();
    void ShowSoon();

    QLabel* label = nullptr;
    QProgressBar* progress = nullptr;
    QPushButton* cancel = nullptr;
    bool canceled = false;
    std::string mText;
    float mPosition = 0.0F;
    std::uint64_t mDone = 0;
    std::uint64_t mTotal = 0;
    tClock mClock = SteadyTime;
    std::chrono::milliseconds mShownAt{};
    cProgressEstimate mEstimate;
    QElapsedTimer mSinceShown;
    QTimer mShowTimer; ///< runs while the window does not show the latest yet
    std::unique_ptr<Ui::ProgressView> mpUi;
};
