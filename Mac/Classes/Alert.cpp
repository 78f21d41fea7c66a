#include "Alert.h"

#include "CommonUtils.h"
#include "ModalSession.h"
#include "WidgetText.h"

#include <QtWidgets/QLabel>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>

#include <algorithm>
#include <array>

namespace {

// The width of a message in characters; it takes more than the least only for a long word.
constexpr int kLeastWidth = 48;
constexpr int kGreatestWidth = 110;

/// Bytes of a message; a device may have the longest name, and the buttons must stay on the screen.
constexpr std::size_t kLongestMessage = 1000;

struct sAlertKind {
    int kind;
    QMessageBox::Icon icon;
    const char* first;
    const char* second; ///< null: none
};

constexpr std::array kAlertKinds = {
    sAlertKind{AlertOk, QMessageBox::Warning, "OK", nullptr},
    sAlertKind{AlertYesNo, QMessageBox::Question, "Yes", "No"},
    sAlertKind{AlertOkCancel, QMessageBox::Question, "OK", "Cancel"},
};

QPushButton* AddButton(QMessageBox& zrBox, const char* zText, QMessageBox::ButtonRole zRole) {
    return zrBox.addButton(ToWidgetText(Translated(zText)), zRole);
}

/// Adds the buttons of a kind and returns the first.
QPushButton* AddButtons(QMessageBox& zrBox, int zKind) {
    for (const sAlertKind& row : kAlertKinds) {
        if (row.kind == zKind) {
            zrBox.setIcon(row.icon);
            QPushButton* first = AddButton(zrBox, row.first, QMessageBox::AcceptRole);
            if (row.second != nullptr) {
                zrBox.setEscapeButton(AddButton(zrBox, row.second, QMessageBox::RejectRole));
            }
            return first;
        }
    }
    return zrBox.addButton(QMessageBox::Ok);
}

/// Shows every text of the box as it stands, which the box itself does for its main text only, and gives
/// a sentence the room to be read in few lines.
void ArrangeTexts(QMessageBox& zrBox) {
    for (auto* label : zrBox.findChildren<QLabel*>()) {
        label->setTextFormat(Qt::PlainText);
        if (label->wordWrap()) {
            const int unit = label->fontMetrics().averageCharWidth();
            const int wanted = label->minimumSizeHint().width();
            label->setMinimumWidth(std::clamp(wanted, unit * kLeastWidth, unit * kGreatestWidth));
        }
    }
}

} // namespace

int ShowAlert(QWidget* zpParent, const std::string& zTitle, const std::string& zMessage, int zKind) {
    QMessageBox box(zpParent);
    box.setWindowTitle(QStringLiteral("Quillbox"));
    box.setText(ToWidgetText(Translated(zTitle)));
    const std::string message = ExpandTemplate(TranslatedMessage(zMessage));
    box.setInformativeText(ToWidgetText(Abbreviated(message, kLongestMessage)));
    ArrangeTexts(box);
    QPushButton* first = AddButtons(box, zKind);
    box.setDefaultButton(first);
    ModalSession::RunModal(box);
    return box.clickedButton() == first ? 1 : 0;
}
