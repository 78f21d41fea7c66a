#pragma once

#include "SelectController.h"

#include "Settings.h"
#include "WidgetDriver.h"

#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QRadioButton>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

/// Stands in for discovery.
struct sDeviceList : DeviceListSource {
    std::vector<HostRecord> records;

    bool canStart = true;
    int starts = 0; ///< how often it was asked to start

    const std::vector<HostRecord>& GetDeviceList() const override { return records; }

    bool EnsureListening() override {
        ++starts;
        return canStart;
    }

    void Add(const std::string& zName, const std::string& zAddress, int zPort = 4711) {
        records.push_back({zAddress, zName, zPort, {}});
    }
};

/// The selection dialog over a list of devices that the test makes up.
class Selection : public ::testing::Test {
protected:
    void SetUp() override {
        GetSettings() = cSettings();
        ShowActive(mMain);
    }

    /// Makes the dialog from the settings and the devices of now, and shows it.
    SelectController& Open() {
        mpDialog = std::make_unique<SelectController>(&mMain);
        mpDialog->Init(&mDevices);
        ShowActive(*mpDialog);
        return *mpDialog;
    }

    QLineEdit& Octet(int zNumber) {
        return Control<QLineEdit>(*mpDialog, ("Address octet " + std::to_string(zNumber)).c_str());
    }

    std::vector<std::string> Octets() {
        std::vector<std::string> texts;
        for (int number = 1; number <= 4; ++number) {
            texts.push_back(Octet(number).text().toStdString());
        }
        return texts;
    }

    QListWidget& List() { return Control<QListWidget>(*mpDialog, "Devices"); }

    QRadioButton& FoundButton() { return Control<QRadioButton>(*mpDialog, "Use found device"); }

    QRadioButton& TypedButton() { return Control<QRadioButton>(*mpDialog, "Enter IP address"); }

    QPushButton& RefreshButton() { return Control<QPushButton>(*mpDialog, "Refresh"); }

    void Press(const char* zName) { Click<QPushButton>(*mpDialog, zName); }

    void ExpectMode(bool zFoundDevice) {
        EXPECT_EQ(FoundButton().isChecked(), zFoundDevice);
        EXPECT_EQ(TypedButton().isChecked(), !zFoundDevice);
        EXPECT_EQ(List().isEnabled(), zFoundDevice);
        EXPECT_EQ(RefreshButton().isEnabled(), zFoundDevice);
        for (int number = 1; number <= 4; ++number) {
            EXPECT_EQ(Octet(number).isEnabled(), !zFoundDevice) << number;
        }
        const QWidget* focus = zFoundDevice ? static_cast<QWidget*>(&List()) : &Octet(1);
        EXPECT_EQ(mpDialog->focusWidget(), focus);
    }

    QMainWindow mMain;
    sDeviceList mDevices;
    std::unique_ptr<SelectController> mpDialog;
};
