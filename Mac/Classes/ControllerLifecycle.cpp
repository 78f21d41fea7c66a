#include "Controller.h"

#include "Alert.h"
#include "CommonUtils.h"
#include "DeviceTableView.h"
#include "Diagnostics.h"
#include "Help.h"
#include "RecentLines.h"
#include "Settings.h"
#include "WidgetText.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QCoreApplication>
#include <QtGui/QClipboard>
#include <QtWidgets/QApplication>
#include <QtWidgets/QHeaderView>

namespace {

constexpr int kRowHeight = 20;

} // namespace

Controller::Controller(MainWindow& zrWindow, OpenPanel& zrPanel)
    : Controller(zrWindow, zrPanel, zrWindow.Controls()) {}

Controller::Controller(MainWindow& zrWindow, OpenPanel& zrPanel, const sMainWindowControls& zControls)
    : mrWindow(zrWindow), mrPanel(zrPanel), bgView(zControls.bgView),
      mpConnectButton(zControls.connectButton), mpBackButton(zControls.backButton),
      mpCreateFolderButton(zControls.createFolderButton), mpDeleteButton(zControls.deleteButton),
      mpUploadButton(zControls.uploadButton), mpDownloadButton(zControls.downloadButton),
      tableView(zControls.tableView), mpTableModel(zControls.tableModel), mpStatusText(zControls.statusText),
      mpDirectoryText(zControls.directoryText) {}

Controller::~Controller() {
    mrWindow.Detach();
}

void Controller::applicationDidFinishLaunching() {
    mSuperUser = false;
    GetSettings();
    progressDlg = std::make_unique<ProgressController>(&mrWindow);
    mpAttention = std::make_unique<Attention>([this] { AskForAttention(); });
    mpSocket = std::make_unique<cSocketClientProtocol>(*this);
    mpAdmission = std::make_unique<cReceiveAdmission>(*mpSocket);
    mrWindow.Attach(*this);
    tableView->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    tableView->verticalHeader()->setDefaultSectionSize(kRowHeight);
    mPortNumber = kDevicePort;
    EnsureListening();
    UpdateControls();
    SetStatusText("Press the 'Connect' button to begin");
}

void Controller::AskForAttention() {
    QApplication::alert(&mrWindow);
    // The toolkit sends that to the desktop with whatever comes next, which may be nothing for long.
    QAbstractEventDispatcher::instance()->wakeUp();
}

bool Controller::applicationShouldTerminate() {
    if (!mTerminating) {
        mTerminating = true;
        GetSettings().Save();
        DisconnectDevice();
        // The client outlives this call: loops further up the stack end by looking at it.
        ModalSession::StopAll();
        QCoreApplication::exit(0);
    }
    return true;
}

void Controller::changeTransparency(double zOpacity) {
    mrWindow.setWindowOpacity(zOpacity);
}

bool Controller::Perform(void (Controller::*zOperation)()) {
    return Perform([this, zOperation] { (this->*zOperation)(); });
}

bool Controller::Perform(const std::function<void()>& zOperation) {
    if (mPerforming || mTerminating || ModalSession::IsRunning()) {
        return false;
    }
    mPerforming = true;
    zOperation();
    mPerforming = false;
    return true;
}

void Controller::OnAbout() {
    ShowAbout(&mrWindow, "Quillbox " + FromWidgetText(QCoreApplication::applicationVersion()),
              Translated("Browses your device on the network and copies files both ways."));
}

void Controller::OnUserGuide() {
    ShowUserGuide(&mrWindow);
}

void Controller::OnCopyDiagnostics() {
    const std::string text = DiagnosticsText(RecentLog().Lines());
    QGuiApplication::clipboard()->setText(QString::fromStdString(text));
    ShowNote(
        &mrWindow, "Diagnostics copied",
        Translated("Paste them where you ask for help. They say which versions and which system you use, and "
                   "hold the last lines of the log, in which names of devices and files and network "
                   "addresses may appear."));
}

void Controller::ShowMessage(const std::string& zTitle, const std::string& zMessage) {
    if (!mTerminating) {
        DebugPrintf("%s: %s\n", zTitle.c_str(), OneLogLine(zMessage).c_str());
        ShowAlert(&mrWindow, Translated(zTitle), zMessage, AlertOk);
    }
}
