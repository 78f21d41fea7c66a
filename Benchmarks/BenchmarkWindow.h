#pragma once

#include "Controller.h"
#include "DeviceTableView.h"
#include "MainWindow.h"

#include <string>
#include <vector>

class NoPanel : public OpenPanel {
public:
    std::vector<std::string> Run(QWidget* zpParent, const sOpenPanelRequest& zrRequest) override;
};

/// The real window on the offscreen platform, connected as people do it to the device at 127.0.0.1.
class BenchmarkWindow {
public:
    /// Throws std::runtime_error where no device answers.
    BenchmarkWindow();
    ~BenchmarkWindow();
    BenchmarkWindow(const BenchmarkWindow&) = delete;
    BenchmarkWindow& operator=(const BenchmarkWindow&) = delete;

    Controller& GetController() { return mController; }

    DeviceTableView& Table();

    /// Handles what is waiting and paints at once, whether or not anything has changed.
    void Paint();

    /// Presses and releases the left button over a column's header.
    void ClickHeader(int zColumn);

private:
    MainWindow mWindow;
    NoPanel mPanel;
    Controller mController;
};

/// To be called before the application is made: no display is needed, and no settings of the user are.
void PrepareOffscreen(const std::string& zHome);
