#include "ImpatientUser.h"

#include "ModalSession.h"
#include "ProgressController.h"

#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>

#include <iostream>
#include <string>
#include <vector>

namespace {

QWidget* DialogInFront() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (ModalSession::IsRunning() && window->isVisible() && ModalSession::Accepts(*window)) {
            return window;
        }
    }
    return nullptr;
}

std::vector<QPushButton*> EnabledButtons(const QWidget& zrWindow) {
    std::vector<QPushButton*> buttons;
    for (auto* button : zrWindow.findChildren<QPushButton*>()) {
        if (button->isVisible() && button->isEnabled()) {
            buttons.push_back(button);
        }
    }
    return buttons;
}

/// An alert says more by its texts than by its title.
std::string WordsOf(const QWidget& zrWindow) {
    const auto* box = qobject_cast<const QMessageBox*>(&zrWindow);
    const QString words =
        box == nullptr ? zrWindow.windowTitle() : box->text() + ' ' + box->informativeText();
    return words.left(200).toStdString();
}

const std::vector<std::string>& FolderNames() {
    static const std::vector<std::string> kNames = {
        "New", "..", "a/b", "%n%s", "Beats", "\"\" x", "<tag>", " ", "\xC3\xA4\xE2\x82\xAC"};
    return kNames;
}

} // namespace

ImpatientUser::ImpatientUser() {
    QObject::connect(&mTimer, &QTimer::timeout, &mTimer, [this] { Look(); });
    mTimer.start(1);
}

void ImpatientUser::BeginSession(std::uint64_t zSeed) {
    mChoice = SeededChoice(zSeed);
}

void ImpatientUser::BeginToWait() {
    mPatience.setRemainingTime(mChoice.Between(0, 300));
}

/// The dialog in which a device is chosen is worked by those who choose one.
void ImpatientUser::Look() {
    QWidget* const window = DialogInFront();
    if (window == nullptr || window->windowTitle() == QLatin1String("Select Device")) {
        return;
    }
    if (dynamic_cast<ProgressController*>(window) == nullptr || mPatience.hasExpired()) {
        Answer(*window);
    }
}

void ImpatientUser::Answer(QWidget& zrWindow) {
    if (zrWindow.windowTitle() == QLatin1String("Create Folder")) {
        for (auto* field : zrWindow.findChildren<QLineEdit*>()) {
            field->setText(QString::fromStdString(mChoice.Of(FolderNames())));
        }
    }
    const std::vector<QPushButton*> buttons = EnabledButtons(zrWindow);
    if (!buttons.empty()) {
        QPushButton* const button = mChoice.Of(buttons);
        std::cout << "The user answers " << WordsOf(zrWindow) << ": " << button->text().toStdString() << '\n';
        QTest::mouseClick(button, Qt::LeftButton);
    }
}
