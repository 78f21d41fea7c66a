#include "Alert.h"

#include "CommonUtils.h"
#include "ModalSession.h"
#include "ThemeIcon.h"
#include "WidgetText.h"

#include <QtWidgets/QLabel>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStyle>

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
    const char* icon;
    const char* first;
    const char* second; ///< null: none
};

constexpr std::array kAlertKinds = {
    sAlertKind{AlertOk, "dialog-warning", "OK", nullptr},
    sAlertKind{AlertYesNo, "dialog-question", "Yes", "No"},
    sAlertKind{AlertOkCancel, "dialog-question", "OK", "Cancel"},
};

QPushButton* AddButton(QMessageBox& zrBox, const char* zText, QMessageBox::ButtonRole zRole) {
    return zrBox.addButton(ToWidgetText(Translated(zText)), zRole);
}

void ShowIcon(QMessageBox& zrBox, const QIcon& zIcon) {
    const int side = zrBox.style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, &zrBox);
    zrBox.setIconPixmap(zIcon.pixmap(QSize(side, side), zrBox.devicePixelRatioF()));
}

/// Adds the icon and the buttons of a kind and returns the first button.
QPushButton* AddButtons(QMessageBox& zrBox, int zKind) {
    for (const sAlertKind& row : kAlertKinds) {
        if (row.kind == zKind) {
            ShowIcon(zrBox, ThemeIcon(row.icon));
            QPushButton* first = AddButton(zrBox, row.first, QMessageBox::AcceptRole);
            if (row.second != nullptr) {
                zrBox.setEscapeButton(AddButton(zrBox, row.second, QMessageBox::RejectRole));
            }
            return first;
        }
    }
    return zrBox.addButton(QMessageBox::Ok);
}

void MakeBold(QLabel& zrLabel) {
    QFont font = zrLabel.font();
    font.setBold(true);
    zrLabel.setFont(font);
}

/// Shows every text of the box as it stands, which the box itself does for its main text only, makes that
/// one bold, and gives a sentence the room to be read in few lines.
void ArrangeTexts(QMessageBox& zrBox) {
    for (auto* label : zrBox.findChildren<QLabel*>()) {
        label->setTextFormat(Qt::PlainText);
        if (label->text() == zrBox.text()) {
            MakeBold(*label);
        }
        if (label->wordWrap()) {
            const int unit = label->fontMetrics().averageCharWidth();
            const int wanted = label->minimumSizeHint().width();
            label->setMinimumWidth(std::clamp(wanted, unit * kLeastWidth, unit * kGreatestWidth));
        }
    }
}

void SetTexts(QMessageBox& zrBox, const std::string& zTitle, const std::string& zMessage) {
    zrBox.setWindowTitle(QStringLiteral("Quillbox"));
    zrBox.setText(ToWidgetText(Translated(zTitle)));
    const std::string message = ExpandTemplate(TranslatedMessage(zMessage));
    zrBox.setInformativeText(ToWidgetText(Abbreviated(message, kLongestMessage)));
    ArrangeTexts(zrBox);
}

/// The keyboard is on a button from the start, where assistive tools read from.
void DescribeButtons(const QMessageBox& zrBox) {
    const QString message = zrBox.informativeText().isEmpty() ? zrBox.text() : zrBox.informativeText();
    for (QAbstractButton* button : zrBox.buttons()) {
        button->setAccessibleDescription(message);
    }
}

void ShowWithIcon(QWidget* zpParent, const std::string& zTitle, const std::string& zMessage,
                  const QIcon& zIcon) {
    QMessageBox box(zpParent);
    SetTexts(box, zTitle, zMessage);
    box.setDefaultButton(AddButtons(box, AlertOk));
    ShowIcon(box, zIcon);
    DescribeButtons(box);
    ModalSession::RunModal(box);
}

} // namespace

int ShowAlert(QWidget* zpParent, const std::string& zTitle, const std::string& zMessage, int zKind) {
    QMessageBox box(zpParent);
    SetTexts(box, zTitle, zMessage);
    QPushButton* first = AddButtons(box, zKind);
    box.setDefaultButton(first);
    DescribeButtons(box);
    ModalSession::RunModal(box);
    return box.clickedButton() == first ? 1 : 0;
}

void ShowNote(QWidget* zpParent, const std::string& zTitle, const std::string& zMessage) {
    ShowWithIcon(zpParent, zTitle, zMessage, ThemeIcon("dialog-information"));
}

void ShowAbout(QWidget* zpParent, const std::string& zTitle, const std::string& zMessage) {
    ShowWithIcon(zpParent, zTitle, zMessage, ThemeIcon("quillbox"));
}
