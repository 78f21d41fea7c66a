#include "BenchmarkWindow.h"

#include <QtCore/QTimer>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QRadioButton>

#include <cstdlib>
#include <stdexcept>

namespace {

void AnswerSelection(MainWindow& zrWindow) {
    auto* dialog = zrWindow.findChild<QDialog*>(QStringLiteral("SelectView"));
    for (auto* button : dialog->findChildren<QRadioButton*>()) {
        if (button->text().contains(QStringLiteral("IP"))) {
            button->click();
        }
    }
    const QStringList octets{"127", "0", "0", "1"};
    for (auto* field : dialog->findChildren<QLineEdit*>()) {
        field->setText(octets.at(field->accessibleName().right(1).toInt() - 1));
    }
    for (auto* button : dialog->findChildren<QPushButton*>()) {
        if (button->text() == QStringLiteral("OK")) {
            button->click();
        }
    }
}

} // namespace

std::vector<std::string> NoPanel::Run(QWidget* /*zpParent*/, const sOpenPanelRequest& /*zrRequest*/) {
    return {};
}

BenchmarkWindow::BenchmarkWindow() : mController(mWindow, mPanel) {
    mController.applicationDidFinishLaunching();
    mWindow.show();
    QTimer answer;
    answer.setSingleShot(true);
    QObject::connect(&answer, &QTimer::timeout, &mWindow, [this] { AnswerSelection(mWindow); });
    answer.start(0); // when the dialog runs
    mController.OnConnectButton();
    if (!mController.IsConnected()) {
        throw std::runtime_error("no device answers at 127.0.0.1");
    }
    Paint();
}

BenchmarkWindow::~BenchmarkWindow() {
    mController.DisconnectDevice();
}

DeviceTableView& BenchmarkWindow::Table() {
    return *mWindow.Controls().tableView;
}

void BenchmarkWindow::Paint() {
    QApplication::processEvents();
    mWindow.repaint();
    Table().viewport()->repaint();
}

void BenchmarkWindow::ClickHeader(int zColumn) {
    QHeaderView* const header = Table().horizontalHeader();
    const QPointF place(header->sectionViewportPosition(zColumn) + header->sectionSize(zColumn) / 2.0,
                        header->height() / 2.0);
    const QPointF global = header->viewport()->mapToGlobal(place);
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const Qt::MouseButtons held = type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
        QMouseEvent event(type, place, global, Qt::LeftButton, held, Qt::NoModifier);
        QApplication::sendEvent(header->viewport(), &event);
    }
}

void PrepareOffscreen(const std::string& zHome) {
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    ::setenv("HOME", zHome.c_str(), 1);
}
