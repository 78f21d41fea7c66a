#include "MainWindow.h"

#include "CommonUtils.h"
#include "Controller.h"
#include "DeviceTableView.h"
#include "TableModel.h"
#include "ThemeIcon.h"
#include "WidgetText.h"
#include "ui_MainWindow.h"

#include <QtGui/QCloseEvent>
#include <QtGui/QScreen>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QStyle>

#include <array>

namespace {

// Widths in characters; names get what is left of the window's width.
constexpr int kTypeWidth = 18;
constexpr int kDateWidth = 26;

std::vector<sTableColumn> DeviceColumns() {
    return {{"Name", Translated("Name")},
            {"Type", Translated("Type")},
            {"Date Modified", Translated("Date Modified")},
            {"waveform", Translated("Waveform")}};
}

} // namespace

MainWindow::MainWindow()
    : mpUi(std::make_unique<Ui::MainWindow>()), mpModel(new TableModel(DeviceColumns(), this)) {
    mpUi->setupUi(this);
    SetUpTable();
    SetUpIcons();
    FitScreen();
    // A line of text, not a field: the window shows through.
    QPalette flat = mpUi->statusText->palette();
    flat.setColor(QPalette::Base, Qt::transparent);
    mpUi->statusText->setPalette(flat);
    // Set here, not in the layout file: Back has two keys.
    mpUi->backAction->setShortcuts({QKeySequence(Qt::Key_Backspace), QKeySequence(Qt::ALT | Qt::Key_Up)});
}

MainWindow::~MainWindow() = default;

sMainWindowControls MainWindow::Controls() const {
    return {mpUi->bgView,
            mpUi->connectButton,
            mpUi->backButton,
            mpUi->createFolderButton,
            mpUi->deleteButton,
            mpUi->uploadButton,
            mpUi->downloadButton,
            mpUi->tableView,
            mpModel,
            mpUi->statusText,
            mpUi->directoryText};
}

void MainWindow::SetUpTable() {
    mpUi->tableView->setModel(mpModel);
    QHeaderView* header = mpUi->tableView->horizontalHeader();
    header->setSortIndicator(1, Qt::AscendingOrder);
    const int unit = header->fontMetrics().averageCharWidth();
    header->resizeSection(1, unit * kTypeWidth);
    header->resizeSection(2, unit * kDateWidth);
}

void MainWindow::SetUpIcons() {
    mpUi->connectButton->setIcon(ThemeIcon("network-connect"));
    mpUi->backButton->setIcon(ThemeIcon("go-up"));
    mpUi->createFolderButton->setIcon(ThemeIcon("folder-new"));
    mpUi->deleteButton->setIcon(ThemeIcon("edit-delete"));
    mpUi->uploadButton->setIcon(ThemeIcon("document-send"));
    mpUi->downloadButton->setIcon(ThemeIcon("document-save"));
    mpUi->uploadFolderAction->setIcon(ThemeIcon("document-send"));
    mpUi->openAction->setIcon(ThemeIcon("folder"));
    mpUi->quitAction->setIcon(ThemeIcon("application-exit"));
    mpUi->refreshAction->setIcon(ThemeIcon("view-refresh"));
    mpUi->userGuideAction->setIcon(ThemeIcon("help-contents"));
    mpUi->copyDiagnosticsAction->setIcon(ThemeIcon("edit-copy"));
    mpUi->aboutAction->setIcon(ThemeIcon("quillbox"));
}

/// A small screen has to hold the window with its frame.
void MainWindow::FitScreen() {
    const int titleBar = style()->pixelMetric(QStyle::PM_TitleBarHeight);
    resize(size().boundedTo(screen()->availableSize() - QSize(0, titleBar)));
}

void MainWindow::Attach(Controller& zrController) {
    mpController = &zrController;
    mpWiring = std::make_unique<QObject>();
    mpModel->SetDataSource(mpController);
    mpUi->tableView->SetDataSource(mpController);
    Connect(mpUi->connectButton, mpUi->connectAction, &Controller::OnConnectButton);
    Connect(mpUi->backButton, mpUi->backAction, &Controller::OnBackButton);
    Connect(mpUi->createFolderButton, mpUi->createFolderAction, &Controller::OnCreateFolderButton);
    Connect(mpUi->deleteButton, mpUi->deleteAction, &Controller::OnDeleteButton);
    Connect(mpUi->uploadButton, mpUi->uploadAction, &Controller::OnUploadButton);
    Connect(mpUi->downloadButton, mpUi->downloadAction, &Controller::OnDownloadButton);
    ConnectTable();
    MakeContextMenu();
    ConnectMenu();
    connect(mpUi->transparencySlider, &QSlider::valueChanged, mpWiring.get(), [this](int zPercent) {
        mpController->changeTransparency(static_cast<double>(zPercent) / 100.0);
    });
}

void MainWindow::Detach() {
    mpWiring.reset();
    mpModel->SetDataSource(nullptr);
    mpUi->tableView->SetDataSource(nullptr);
    mpController = nullptr;
}

void MainWindow::Connect(QPushButton* zpButton, QAction* zpAction, tOperation zOperation) {
    mTwins.push_back({zpButton, zpAction});
    connect(zpButton, &QPushButton::clicked, mpWiring.get(),
            [this, zOperation] { mpController->Perform(zOperation); });
    connect(zpAction, &QAction::triggered, mpWiring.get(),
            [this, zOperation] { mpController->Perform(zOperation); });
}

/// Queued, so that an assistive tool that chooses the entry need not wait for the end of the operation.
void MainWindow::ConnectEntry(QAction* zpAction, tOperation zOperation) {
    connect(
        zpAction, &QAction::triggered, mpWiring.get(),
        [this, zOperation] { mpController->Perform(zOperation); }, Qt::QueuedConnection);
}

void MainWindow::ConnectTable() {
    const auto open = [this] { mpController->Perform(&Controller::OnTableViewDoubleClick); };
    connect(mpUi->tableView, &DeviceTableView::doubleClicked, mpWiring.get(), open);
    connect(mpUi->tableView, &DeviceTableView::rowOpened, mpWiring.get(), open);
    // Queued, so that the other program need not wait for the end of the upload.
    connect(
        mpUi->tableView, &DeviceTableView::pathsDropped, mpWiring.get(),
        [this](const std::vector<std::string>& zPaths, int zRow) {
            PerformDrop([&] { mpController->tableViewAcceptDrop(zPaths, zRow); });
        },
        Qt::QueuedConnection);
    connect(mpUi->tableView, &DeviceTableView::promiseDropped, mpWiring.get(),
            [this](const std::string& zFolder) {
                PerformDrop([&] { mpController->namesOfPromisedFilesDroppedAtDestination(zFolder); });
            });
    connect(mpUi->tableView->selectionModel(), &QItemSelectionModel::selectionChanged, mpWiring.get(),
            [this] { mpController->tableViewSelectionDidChange(); });
    connect(mpUi->tableView->horizontalHeader(), &QHeaderView::sectionResized, mpWiring.get(),
            [this] { mpController->tableViewColumnDidResize(); });
}

/// The other program has been told already that the drop is taken, and people see nothing of a refusal.
void MainWindow::PerformDrop(const std::function<void()>& zOperation) {
    if (!mpController->Perform(zOperation)) {
        DebugPrintf("Drop ignored: something else is going on\n");
    }
}

/// What can be done with the folder shown and with what is selected in it.
void MainWindow::MakeContextMenu() {
    auto* const separator = new QAction(mpWiring.get());
    separator->setSeparator(true);
    mpUi->tableView->setContextMenuPolicy(Qt::ActionsContextMenu);
    mpUi->tableView->addActions({mpUi->openAction, mpUi->downloadAction, mpUi->deleteAction, separator,
                                 mpUi->uploadAction, mpUi->uploadFolderAction, mpUi->createFolderAction,
                                 mpUi->backAction, mpUi->refreshAction, mpUi->connectAction});
}

/// What a click on a heading does, for people without a mouse.
void MainWindow::ConnectSorting() {
    const QHeaderView* const header = mpUi->tableView->horizontalHeader();
    const std::array actions = {mpUi->sortByNameAction, mpUi->sortByTypeAction, mpUi->sortByDateAction};
    const auto showColumn = [actions](int zColumn) {
        for (std::size_t column = 0; column < actions.size(); ++column) {
            actions[column]->setChecked(static_cast<int>(column) == zColumn);
        }
    };
    for (std::size_t column = 0; column < actions.size(); ++column) {
        connect(actions[column], &QAction::triggered, mpWiring.get(), [this, showColumn, header, column] {
            mpController->Perform([this, column] { SortBy(static_cast<int>(column)); });
            showColumn(header->sortIndicatorSection());
        });
    }
    connect(header, &QHeaderView::sortIndicatorChanged, mpWiring.get(), showColumn);
    showColumn(header->sortIndicatorSection());
}

/// The same column once more turns the order round.
void MainWindow::SortBy(int zColumn) {
    const QHeaderView& header = *mpUi->tableView->horizontalHeader();
    const bool isUpwards =
        header.sortIndicatorSection() == zColumn && header.sortIndicatorOrder() == Qt::AscendingOrder;
    mpUi->tableView->sortByColumn(zColumn, isUpwards ? Qt::DescendingOrder : Qt::AscendingOrder);
}

void MainWindow::ConnectMenu() {
    ConnectSorting();
    ConnectEntry(mpUi->openAction, &Controller::OnOpen);
    ConnectEntry(mpUi->uploadFolderAction, &Controller::OnUploadFolder);
    ConnectEntry(mpUi->refreshAction, &Controller::OnRefresh);
    ConnectEntry(mpUi->userGuideAction, &Controller::OnUserGuide);
    ConnectEntry(mpUi->copyDiagnosticsAction, &Controller::OnCopyDiagnostics);
    ConnectEntry(mpUi->aboutAction, &Controller::OnAbout);
    connect(mpUi->quitAction, &QAction::triggered, mpWiring.get(),
            [this] { mpController->applicationShouldTerminate(); });
}

void MainWindow::MirrorButtons(bool zConnected, bool zMayOpen) {
    for (const sTwin& twin : mTwins) {
        twin.action->setText(twin.button->text());
        twin.action->setIcon(twin.button->icon());
        twin.action->setEnabled(twin.button->isEnabled());
    }
    for (QAction* action :
         {mpUi->refreshAction, mpUi->sortByNameAction, mpUi->sortByTypeAction, mpUi->sortByDateAction}) {
        action->setEnabled(zConnected);
    }
    mpUi->uploadFolderAction->setEnabled(mpUi->uploadAction->isEnabled());
    mpUi->openAction->setEnabled(zMayOpen);
}

void MainWindow::closeEvent(QCloseEvent* zpEvent) {
    if (mpController != nullptr && mpController->applicationShouldTerminateAfterLastWindowClosed()) {
        mpController->applicationShouldTerminate();
    }
    zpEvent->accept();
}
