#pragma once

#include "DeviceListSource.h"
#include "ModalDialog.h"

#include <QtCore/QTimer>

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
    std::int32_t port = 0; ///< of the record, of no meaning; connections always go to the device port
};

/// The dialog in which the user picks a found device or types an address. It remembers the choice in the
/// settings, in memory only.
///
/// The list is a snapshot, so that nothing moves under the pointer. A line under it says why it is empty, or
/// that there are devices by now that it does not show.
class SelectController : public ModalDialog {
public:
    explicit SelectController(QWidget* zpParent);
    ~SelectController() override;

    /// Sets the source of the device list (null: no devices) and then runs windowDidLoad. Called once,
    /// before showing; the source must outlive the dialog.
    void Init(DeviceListSource* zpDiscover);

    /// Fills the fields and the list from the settings and the source, and chooses the mode. Before Init
    /// there is no source yet; Init does it again.
    void windowDidLoad();

    /// 0 while the dialog runs, 1 after OK, 2 after Cancel.
    int GetResult() const { return mResult; }

    const std::string& GetIPAddressStr() const { return mIPAddressStr; }

    int GetPortNumber() const { return mPortNumber; }

    /// The chosen device's announced name; empty for a typed address.
    const std::string& GetDeviceName() const { return mDeviceName; }

    /// Starts the source unless it has started, and renews the list.
    void OnRefreshButton();
    void OnUseFoundDeviceButton();
    void OnEnterIPButton();
    void okDlg();
    void cancelDlg();
    void OnHelpButton();

    int numberOfRowsInTableView() const;

    /// The text of a row, the same for every column; nothing for a row outside the list.
    std::optional<std::string> tableViewObjectValueForTableColumn(const std::string& zColumn, int zRow) const;

    /// Keeps an address field a number from 0 to 255; a typed "." goes on to the next field, and a pasted
    /// dotted address fills all four.
    void controlTextDidChange(QLineEdit& zrField);

protected:
    void Dismiss() override { cancelDlg(); }

    void changeEvent(QEvent* zpEvent) override;

    virtual std::string FetchName(const cListEntry& zrEntry) const { return zrEntry.name; }

private:
    void Connect();
    void ConnectMode(QRadioButton& zrButton, const std::function<void()>& zAction);
    void SetFoundDeviceMode(bool zOn);
    void FocusChosenWay();
    void ReloadList(int zSelectedRow);
    QStringList ShownNames() const;
    void AddRow(const QString& zName, bool zIsUnique, const QString& zAddress);
    bool IsListed(const std::string& zAddress) const;
    bool HasNews() const;
    const char* ChooseHint(bool zHasNews) const;
    void ShowNews();
    void SetHint(const std::string& zText);
    void LimitSize();
    std::vector<QLineEdit*> AddressFields() const;
    bool TakeWholeAddress(const QLineEdit& zrField);
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
    DeviceListSource* mpDiscover = nullptr;
    bool mIsLooking = true; ///< false while the source cannot be started
    QTimer mNewsTimer;      ///< for looking at the live list
    QTimer mLimitTimer;     ///< for LimitSize in the next pass of the event loop
    int mResult = 0;
    std::string mIPAddressStr;
    int mPortNumber = 0;
    std::string mDeviceName;
    QString mListDescription;    ///< while the hint has nothing to say
    QString mRefreshDescription; ///< while there are no news
    std::vector<cListEntry> mListEntries;
    std::unique_ptr<Ui::SelectView> mpUi;
};
