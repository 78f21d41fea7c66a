#include "SelectController.h"

#include "Alert.h"
#include "CommonUtils.h"
#include "ModalSession.h"
#include "Settings.h"
#include "UserGuide.h"
#include "WidgetText.h"
#include "ui_SelectView.h"

#include <algorithm>
#include <cstdlib>
#include <exception>

namespace {

constexpr int kDevicePort = 10240;
constexpr int kRunning = 0;
constexpr int kAccepted = 1;
constexpr int kCancelled = 2;
constexpr long kLargestOctet = 255;

/// The number at the start of a text, brought into the range of an octet; 0 where there is none.
long LeadingOctet(const std::string& zText) {
    return std::clamp(std::strtol(zText.c_str(), nullptr, 10), 0L, kLargestOctet);
}

} // namespace

SelectController::SelectController(QWidget* zpParent)
    : ModalDialog(zpParent), mpUi(std::make_unique<Ui::SelectView>()) {
    mpUi->setupUi(this);
    tableView = mpUi->tableView;
    ipTextField1 = mpUi->ipTextField1;
    ipTextField2 = mpUi->ipTextField2;
    ipTextField3 = mpUi->ipTextField3;
    ipTextField4 = mpUi->ipTextField4;
    mpRefreshButton = mpUi->refresh;
    mpUseFoundDevice = mpUi->useFoundDevice;
    mpEnterIP = mpUi->enterIP;
    Connect();
}

SelectController::~SelectController() = default;

void SelectController::Connect() {
    OnPress(*mpRefreshButton, [this] { OnRefreshButton(); });
    ConnectMode(*mpUseFoundDevice, [this] { OnUseFoundDeviceButton(); });
    ConnectMode(*mpEnterIP, [this] { OnEnterIPButton(); });
    OnPress(*mpUi->ok, [this] { okDlg(); });
    OnPress(*mpUi->cancel, [this] { cancelDlg(); });
    OnPress(*mpUi->help, [this] { OnHelpButton(); });
    connect(tableView, &QListWidget::itemDoubleClicked, this, [this] { okDlg(); });
    for (QLineEdit* field : AddressFields()) {
        connect(field, &QLineEdit::textEdited, this, [this, field] { controlTextDidChange(*field); });
    }
}

/// Assistive tools switch a radio button on without pressing it.
void SelectController::ConnectMode(QRadioButton& zrButton, const std::function<void()>& zAction) {
    OnPress(zrButton, zAction);
    connect(&zrButton, &QRadioButton::toggled, this, [this, zAction](bool zOn) {
        if (zOn && ModalSession::Accepts(*this)) {
            zAction();
        }
    });
}

void SelectController::Init(const DeviceListSource* zpDiscover) {
    mResult = kRunning;
    mpDiscover = zpDiscover;
    mPortNumber = kDevicePort;
    windowDidLoad();
}

void SelectController::windowDidLoad() {
    const QStringList octets = ToWidgetText(GetSettings().RecentDeviceIP).split(QLatin1Char('.'));
    const std::vector<QLineEdit*> fields = AddressFields();
    if (octets.size() == static_cast<qsizetype>(fields.size())) {
        for (std::size_t i = 0; i < fields.size(); ++i) {
            fields[i]->setText(octets[static_cast<qsizetype>(i)]);
        }
    }
    OnRefreshButton();
    if (mListEntries.empty() && !GetSettings().ConnectionAuto) {
        OnEnterIPButton();
    } else {
        OnUseFoundDeviceButton();
    }
}

void SelectController::OnRefreshButton() {
    mListEntries.clear();
    int selectedRow = 0;
    const std::vector<HostRecord> none;
    for (const HostRecord& host : mpDiscover != nullptr ? mpDiscover->GetDeviceList() : none) {
        if (host.nameValue == GetSettings().RecentDeviceName) {
            selectedRow = numberOfRowsInTableView();
        }
        mListEntries.push_back({host.nameValue, host.hostValue, host.portValue});
    }
    ReloadList(selectedRow);
}

void SelectController::ReloadList(int zSelectedRow) {
    tableView->clear();
    for (int row = 0; row < numberOfRowsInTableView(); ++row) {
        tableView->addItem(ToWidgetText(tableViewObjectValueForTableColumn("", row).value_or("")));
    }
    mpUi->emptyHint->setVisible(mListEntries.empty());
    if (zSelectedRow < numberOfRowsInTableView()) {
        tableView->setCurrentRow(zSelectedRow, QItemSelectionModel::ClearAndSelect);
    }
}

int SelectController::numberOfRowsInTableView() const {
    return static_cast<int>(mListEntries.size());
}

std::optional<std::string>
SelectController::tableViewObjectValueForTableColumn(const std::string& /*zColumn*/, int zRow) const {
    if (zRow < 0 || zRow >= numberOfRowsInTableView()) {
        return std::nullopt;
    }
    try {
        return FetchName(mListEntries[static_cast<std::size_t>(zRow)]);
    } catch (const std::exception&) {
        DebugPrint("Bad name identifier\n");
        return std::nullopt;
    }
}

std::vector<QLineEdit*> SelectController::AddressFields() const {
    return {ipTextField1, ipTextField2, ipTextField3, ipTextField4};
}

void SelectController::controlTextDidChange(QLineEdit& zrField) {
    const QString typed = zrField.text();
    const QString octet = QString::number(LeadingOctet(FromWidgetText(typed)));
    if (octet != typed) {
        zrField.setText(octet);
    }
    if (typed.endsWith(QLatin1Char('.'))) {
        zrField.setFocus();
        focusNextChild();
    }
}

void SelectController::OnUseFoundDeviceButton() {
    SetFoundDeviceMode(true);
    tableView->setFocus();
}

void SelectController::OnEnterIPButton() {
    SetFoundDeviceMode(false);
    ipTextField1->setFocus();
    ipTextField1->selectAll();
}

void SelectController::SetFoundDeviceMode(bool zOn) {
    mpUseFoundDevice->setChecked(zOn);
    mpEnterIP->setChecked(!zOn);
    for (QLineEdit* field : AddressFields()) {
        field->setEnabled(!zOn);
    }
    mpRefreshButton->setEnabled(zOn);
    tableView->setEnabled(zOn);
}

void SelectController::okDlg() {
    mIPAddressStr.clear();
    mDeviceName.clear();
    if (mpUseFoundDevice->isChecked()) {
        if (mListEntries.empty()) {
            AskForTypedAddress();
            return;
        }
        TakeFoundDevice();
    } else {
        TakeTypedAddress();
    }
    GetSettings().RecentDeviceIP = mIPAddressStr;
    Finish(kAccepted);
}

void SelectController::AskForTypedAddress() {
    if (ShowAlert(this, "No devices were found", "Do you wish to try manually entering an IP address?",
                  AlertYesNo) == 1) {
        OnEnterIPButton();
    } else {
        Finish(kCancelled);
    }
}

void SelectController::TakeFoundDevice() {
    const QModelIndexList selected = tableView->selectionModel()->selectedIndexes();
    const int row = selected.isEmpty() ? 0 : selected.first().row();
    const cListEntry& entry =
        mListEntries[row < numberOfRowsInTableView() ? static_cast<std::size_t>(row) : 0];
    mIPAddressStr = entry.address;
    mDeviceName = entry.name;
    GetSettings().RecentDeviceName = mDeviceName;
    GetSettings().ConnectionAuto = true;
}

void SelectController::TakeTypedAddress() {
    GetSettings().ConnectionAuto = false;
    for (const QLineEdit* field : AddressFields()) {
        mIPAddressStr += (field == ipTextField1 ? "" : ".") + FromWidgetText(field->text());
    }
}

void SelectController::Finish(int zResult) {
    mResult = zResult;
    ModalSession::StopCurrent();
}

void SelectController::cancelDlg() {
    Finish(kCancelled);
}

void SelectController::OnHelpButton() {
    OpenUserGuide();
}
