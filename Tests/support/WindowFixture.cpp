#include "WindowFixture.h"

#include "ModalSession.h"
#include "Settings.h"

#include <QtCore/QStringList>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QRadioButton>

#include <algorithm>
#include <stdexcept>

namespace {

constexpr int kNameColumn = 0;

std::string TextOf(QWidget& zrWindow, const char* zName) {
    const auto& field = Control<QLineEdit>(zrWindow, zName);
    // Assistive tools are told the same words.
    EXPECT_EQ(field.accessibleDescription(), field.text()) << zName;
    return field.text().toStdString();
}

void TypeAddress(QWidget& zrDialog, const std::string& zAddress) {
    QTest::mouseClick(&Control<QRadioButton>(zrDialog, "Enter IP address"), Qt::LeftButton);
    const QStringList octets = QString::fromStdString(zAddress).split(QLatin1Char('.'));
    for (int i = 0; i < octets.size(); ++i) {
        const std::string name = "Address octet " + std::to_string(i + 1);
        auto& field = Control<QLineEdit>(zrDialog, name.c_str());
        field.setFocus();
        field.selectAll();
        QTest::keyClick(&field, Qt::Key_Delete);
        QTest::keyClicks(&field, octets[i]);
    }
}

} // namespace

WindowFixture::WindowFixture() {
    GetSettings() = cSettings();
    QApplication::setQuitOnLastWindowClosed(false);
}

void WindowFixture::SetUp() {
    mController.applicationDidFinishLaunching();
    ShowActive(mWindow);
}

// --- What people see ---

std::string WindowFixture::Status() {
    return TextOf(mWindow, "Status");
}

std::string WindowFixture::Directory() {
    return TextOf(mWindow, "Directory");
}

WindowFixture::Names WindowFixture::Column(int zColumn) {
    const QAbstractItemModel& model = *Table().model();
    Names texts;
    for (int row = 0; row < model.rowCount(); ++row) {
        texts.push_back(model.index(row, zColumn).data().toString().toStdString());
    }
    return texts;
}

WindowFixture::Names WindowFixture::SelectedNames() {
    Names names;
    for (const QModelIndex& index : Table().selectionModel()->selectedRows(kNameColumn)) {
        names.push_back(index.data().toString().toStdString());
    }
    return names;
}

QAction& WindowFixture::MenuEntry(const char* zText) {
    for (const QMenu* menu : mWindow.menuBar()->findChildren<QMenu*>()) {
        for (QAction* entry : menu->actions()) {
            if (entry->text().remove(QLatin1Char('&')) == QString::fromUtf8(zText)) {
                return *entry;
            }
        }
    }
    throw std::runtime_error(std::string("no menu entry is called ") + zText);
}

std::string WindowFixture::TitleInFront() {
    for (const QWidget* window : QApplication::topLevelWidgets()) {
        if (ModalSession::IsRunning() && window->isVisible() && ModalSession::Accepts(*window)) {
            return window->windowTitle().toStdString();
        }
    }
    return {};
}

// --- What people do ---

void WindowFixture::PressAccessibly(const char* zButton) {
    QAccessibleInterface* face = QAccessible::queryAccessibleInterface(&Button(zButton));
    face->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
}

void WindowFixture::Key(Qt::Key zKey, Qt::KeyboardModifiers zModifiers) {
    if (QApplication::activeWindow() == nullptr) {
        // No window manager gives the keyboard back when a dialog has closed.
        mWindow.activateWindow();
        EXPECT_TRUE(WaitFor([&] { return mWindow.isActiveWindow(); }));
    }
    QWidget* focus = QApplication::focusWidget();
    QTest::keyClick(focus != nullptr ? focus : &mWindow, zKey, zModifiers);
    RunLoopPasses(1); // where menu entries act
}

void WindowFixture::Choose(const char* zEntry) {
    MenuEntry(zEntry).trigger();
    RunLoopPasses(1);
}

QRect WindowFixture::RowRect(const std::string& zName) {
    const Names names = RowNames();
    const auto found = std::ranges::find(names, zName);
    if (found == names.end()) {
        throw std::runtime_error("no row is called " + zName);
    }
    const QModelIndex index = Table().model()->index(static_cast<int>(found - names.begin()), kNameColumn);
    Table().scrollTo(index);
    return Table().visualRect(index);
}

void WindowFixture::SelectRows(const Names& zNames) {
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;
    for (const std::string& name : zNames) {
        QTest::mouseClick(Table().viewport(), Qt::LeftButton, modifiers, RowRect(name).center());
        modifiers = Qt::ControlModifier;
    }
}

void WindowFixture::DoubleClickRow(const std::string& zName) {
    const QPoint place = RowRect(zName).center();
    QTest::mouseClick(Table().viewport(), Qt::LeftButton, Qt::NoModifier, place);
    QTest::mouseDClick(Table().viewport(), Qt::LeftButton, Qt::NoModifier, place);
}

void WindowFixture::ChooseAddress(Meanwhile& zrMeanwhile, const std::string& zAddress) {
    zrMeanwhile.WhenShown("Select Device", [zAddress](QWidget& zrDialog) {
        TypeAddress(zrDialog, zAddress);
        Click<QPushButton>(zrDialog, "OK");
    });
}

bool WindowFixture::ConnectTo(const std::string& zAddress) {
    Meanwhile meanwhile;
    ChooseAddress(meanwhile, zAddress);
    Press("Connect");
    return mController.IsConnected();
}

int WindowFixture::RunApplication(const std::function<void()>& zAction) {
    Soon(zAction);
    QTimer deadline;
    QObject::connect(&deadline, &QTimer::timeout, &deadline, [] {
        ADD_FAILURE() << "the application has not quit";
        QApplication::closeAllWindows();
        QCoreApplication::exit(1);
    });
    deadline.start(kTestDeadline);
    return QApplication::exec();
}
