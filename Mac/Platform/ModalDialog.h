#pragma once

#include <QtWidgets/QDialog>

#include <functional>

class QAbstractButton;

/// A dialog that a ModalSession runs; it is never modal by the toolkit.
///
/// Escape and closing by the frame are the dialog's Cancel and leave the window open: whoever runs the
/// dialog closes it, with close() or hide(), neither of which cancels anything. Nothing in it acts while
/// another session is in front, by whatever way the user got there.
class ModalDialog : public QDialog {
public:
    explicit ModalDialog(QWidget* zpParent) : QDialog(zpParent) {}

    void reject() override;

protected:
    /// The user wants the dialog gone without an answer.
    virtual void Dismiss() = 0;

    /// Runs zAction when the button is pressed.
    void OnPress(QAbstractButton& zrButton, std::function<void()> zAction);

    void closeEvent(QCloseEvent* zpEvent) override;
};
