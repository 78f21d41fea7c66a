#pragma once

#include <QtWidgets/QMainWindow>

#include <functional>
#include <memory>
#include <vector>

class Controller;
class DeviceTableView;
class QAction;
class QLineEdit;
class QPushButton;
class TableModel;

namespace Ui {
class MainWindow;
}

/// What the controller works with in the main window; all of it belongs to the window.
struct sMainWindowControls {
    QWidget* bgView;
    QPushButton* connectButton;
    QPushButton* backButton;
    QPushButton* createFolderButton;
    QPushButton* deleteButton;
    QPushButton* uploadButton;
    QPushButton* downloadButton;
    DeviceTableView* tableView;
    TableModel* tableModel;
    QLineEdit* statusText;
    QLineEdit* directoryText;
};

/// The one main window: lays the controls out and turns clicks, keys and menu entries into the
/// controller's operations. It holds no rules of its own.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    MainWindow();
    ~MainWindow() override;

    sMainWindowControls Controls() const;

    /// Sends every action to zrController until Detach.
    void Attach(Controller& zrController);
    void Detach();

    /// Gives the menu entries the texts and enabled states of the buttons that do the same. zMayOpen: a
    /// folder is selected, and nothing else.
    void MirrorButtons(bool zConnected, bool zMayOpen);

protected:
    void closeEvent(QCloseEvent* zpEvent) override;

private:
    using tOperation = void (Controller::*)();
    void SetUpTable();
    void SetUpIcons();
    void Connect(QPushButton* zpButton, QAction* zpAction, tOperation zOperation);
    void ConnectEntry(QAction* zpAction, tOperation zOperation);
    void ConnectTable();
    void PerformDrop(const std::function<void()>& zOperation);
    void MakeContextMenu();
    void ConnectMenu();
    void ConnectSorting();
    void SortBy(int zColumn);
    void FitScreen();

    std::unique_ptr<Ui::MainWindow> mpUi;
    TableModel* mpModel;
    Controller* mpController = nullptr;

    struct sTwin {
        QPushButton* button;
        QAction* action;
    };

    std::vector<sTwin> mTwins;
    /// Every connection to the controller ends with it: widgets still report while they are destroyed.
    std::unique_ptr<QObject> mpWiring;
};
