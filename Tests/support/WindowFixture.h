#pragma once

#include "Controller.h"
#include "DeviceTableView.h"
#include "MainWindow.h"
#include "Meanwhile.h"
#include "OpenPanel.h"
#include "ScriptedDevice.h"
#include "WidgetDriver.h"

#include <QtWidgets/QPushButton>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

/// Answers what the program asks about local files, without a window.
class ScriptedPanel : public OpenPanel {
public:
    std::vector<std::string> Run(QWidget* /*zpParent*/, const sOpenPanelRequest& zrRequest) override {
        mRequests.push_back(zrRequest);
        if (mOnRun) {
            mOnRun();
        }
        return mAnswer;
    }

    std::vector<std::string> mAnswer; ///< the chosen paths; none: dismissed
    std::function<void()> mOnRun;     ///< what happens while the panel is up
    std::vector<sOpenPanelRequest> mRequests;
};

/// The program as people see it: the shown main window with its controller, and a device to connect to.
///
/// A press returns when the program is done with it, so what has to happen meanwhile goes into a Meanwhile
/// that is made before.
class WindowFixture : public ::testing::Test {
protected:
    using Names = std::vector<std::string>;

    static constexpr const char* kHint = "Press the 'Connect' button to begin";
    static constexpr const char* kReading = "Reading Folder Contents";

    WindowFixture();

    void SetUp() override;

    // --- What people see ---

    QPushButton& Button(const char* zName) { return Control<QPushButton>(mWindow, zName); }

    bool IsEnabled(const char* zName) { return Button(zName).isEnabled(); }

    DeviceTableView& Table() { return Control<DeviceTableView>(mWindow, "Device folder"); }

    std::string Status();
    std::string Directory();

    /// The texts of a column (0 is Name, 1 is Type, 2 is Date Modified, 3 is the waveform) from top to
    /// bottom.
    Names Column(int zColumn);

    Names RowNames() { return Column(0); }

    Names SelectedNames();

    /// The entry of the menu bar with these words, without their mnemonic.
    QAction& MenuEntry(const char* zText);

    // --- What people do ---

    void Press(const char* zButton) { Click<QPushButton>(mWindow, zButton); }

    /// The same through assistive tools.
    void PressAccessibly(const char* zButton);

    /// Chooses an entry of the menu bar.
    void Choose(const char* zEntry);

    /// Presses a key in the widget that has the keyboard, shortcuts included.
    void Key(Qt::Key zKey, Qt::KeyboardModifiers zModifiers = Qt::NoModifier);

    /// Clicks the first row, and the others with Ctrl.
    void SelectRows(const Names& zNames);

    void DoubleClickRow(const std::string& zName);

    /// Goes through the selection dialog: presses Connect, types the four octets, presses OK. Returns, when
    /// the attempt has ended, whether the program is connected.
    bool ConnectTo(const std::string& zAddress);

    bool ConnectTo(const ScriptedDevice& zDevice) { return ConnectTo(zDevice.Address()); }

    /// The step of this in the selection dialog, for tests that press Connect in their own way.
    static void ChooseAddress(Meanwhile& zrMeanwhile, const std::string& zAddress);

    /// Runs the application until it quits by itself, zAction being the first thing that happens, and
    /// returns the exit status.
    static int RunApplication(const std::function<void()>& zAction);

    /// The title of the window that runs a session and is visible, "" without one.
    static std::string TitleInFront();

    MainWindow mWindow;
    ScriptedPanel mPanel;
    ScriptedDevice mDevice;
    Controller mController{mWindow, mPanel};

private:
    QRect RowRect(const std::string& zName);
};
