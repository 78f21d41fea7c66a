#include "ModalDialog.h"

#include "ModalSession.h"

#include <QtGui/QCloseEvent>
#include <QtWidgets/QAbstractButton>

#include <utility>

void ModalDialog::reject() {
    if (ModalSession::Accepts(*this)) {
        Dismiss();
    }
}

void ModalDialog::OnPress(QAbstractButton& zrButton, std::function<void()> zAction) {
    // Assistive tools press buttons without any event that a session could keep away.
    connect(&zrButton, &QAbstractButton::clicked, this, [this, action = std::move(zAction)] {
        if (ModalSession::Accepts(*this)) {
            action();
        }
    });
}

void ModalDialog::closeEvent(QCloseEvent* zpEvent) {
    if (zpEvent->spontaneous()) {
        zpEvent->ignore();
        reject();
    } else {
        zpEvent->accept();
    }
}
