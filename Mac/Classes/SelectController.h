#pragma once

#include "DeviceListSource.h"
#include "ModalDialog.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;

namespace Ui {
class SelectView;
}

/// One row of the device list.
struct cListEntry {
    std::string name;
    std::string address;
    std::int32_t port = 0; ///< as announced; connections always go to the device port
};

/// The dialog in which the user picks a found device or types an address. It remembers the choice in the
/// settings, in memory only.
class SelectController : public ModalDialog {
public:
    explicit SelectController(QWidget* zpParent);
    ~SelectController() override;

    /// Sets the source of the device list (null: no devices) and then runs windowDidLoad. Called once,
    /// before showing; the source must outlive the dialog.
    void Init(const DeviceListSource* zpDiscover);

    /// Fills the fields and the list from the settings and the source, and chooses the mode.
    void windowDidLoad();

    /// 0 while the dialog runs, 1 after OK, 2 after Cancel.
    int GetResult() const { return mResult; }

    const std::string& GetIPAddressStr() const { return mIPAddressStr; }

    int GetPortNumber() const { return mPortNumber; }

    /// The chosen device's announced name; empty for a typed address.
    const std::string& GetDeviceName() const { return mDeviceName; }

    void OnRefreshButton();
    void OnUseFoundDeviceButton();
    void OnEnterIPButton();
    void okDlg();
    void cancelDlg();
    void OnHelpButton();

    int numberOfRowsInTableView() const;

    /// The text of a row, the same for every column; nothing for a row outside the list.
    std::optional<std::string> tableViewObjectValueForTableColumn(const std::string& zColumn, int zRow) const;

    /// Keeps an address field a number from 0 to 255; a typed "." goes on to the next field.
    void controlTextDidChange(QLineEdit& zrField);

protected:
    void Dismiss() override { cancelDlg(); }

    virtual std::string FetchName(const cListEntry& zrEntry) const { return zrEntry.name; }

private:
    void Connect();
    void ConnectMode(QRadioButton& zrButton, const std::function<void()>& zAction);
    void SetFoundDeviceMode(bool zOn);
    void ReloadList(int zSelectedRow);
    std::vector<QLineEdit*> AddressFields() const;
    void TakeFoundDevice();
    void TakeTypedAddress();
    void AskForTypedAddress();
    void Finish(int zResult);

    QListWidget* tableView = nullptr;
    QLineEdit* ipTextField1 = nullptr;
    QLineEdit* ipTextField2 = nullptr;
    QLineEdit* ipTextField3 = nullptr;
    QLineEdit* ipTextField4 = nullptr;
    QPushButton* mpRefreshButton = nullptr;
    QRadioButton* mpUseFoundDevice = nullptr;
    QRadioButton* mpEnterIP = nullptr;
    const DeviceListSource* mpDiscover = nullptr;
    int mResult = 0;
    std::string mIPAddressStr;
    int mPortNumber = 0;
    std::string mDeviceName;
    std::vector<cListEntry> mListEntries;
    std::unique_ptr<Ui::SelectView> mpUi;
};
