#include "SelectController.h"

#include "AddressText.h"
#include "Alert.h"
#include "ClientProtocol.h"
#include "CommonUtils.h"
#include "DeferredCall.h"
#include "Help.h"
#include "ModalSession.h"
#include "Settings.h"
#include "ThemeIcon.h"
#include "WidgetText.h"
#include "ui_SelectView.h"

#include <QtCore/QEvent>

#include <algorithm>
#include <array>
#include <chrono>
#include <exception>

namespace {

constexpr int kRunning = 0;
constexpr int kAccepted = 1;
constexpr int kCancelled = 2;
constexpr int kLeastWidth = 400;
constexpr int kLeastHeight = 320;
constexpr std::chrono::milliseconds kNewsInterval(500);

/// Of an address field: whether it held something before the edit of now.
constexpr const char* kHeldText = "heldText";

constexpr const char* kNothingToSay = "";
constexpr const char* kLooking =
    "Looking for devices. If yours does not appear, check that it is on the same network, that its file "
    "server is on, and that this computer's firewall lets UDP port 10245 in.";
constexpr const char* kCannotLook =
    "Devices cannot be looked for at the moment. Check the network connection "
    "and press Refresh.";
constexpr const char* kNews = "New devices were found. Press Refresh to see them.";
// While an address is typed, Refresh is out of reach.
constexpr const char* kCannotLookTyping =
    "Devices cannot be looked for at the moment. Check the network connection, choose \"Use found device\" "
    "and press Refresh.";
constexpr const char* kNewsTyping =
    "New devices were found. To see them, choose \"Use found device\" and press Refresh.";
constexpr std::array kHints = {kNothingToSay, kLooking, kCannotLook, kNews, kCannotLookTyping, kNewsTyping};
constexpr const char* kRefreshNews = "New devices were found";

QIcon NewsIcon() {
    return ThemeIcon("dialog-information");
}

QSize SizeWithIcon(const QPushButton& zrButton) {
    QPushButton twin(NewsIcon(), zrButton.text());
    twin.setFont(zrButton.font());
    return twin.sizeHint();
}

/// A tool tip of plain text; the toolkit guesses and would show markup as rich text.
QString PlainToolTip(const QString& zText) {
    return Qt::convertFromPlainText(zText, Qt::WhiteSpaceNormal);
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
    mListDescription = tableView->accessibleDescription();
    mRefreshDescription = mpRefreshButton->accessibleDescription();
    QSizePolicy hintPolicy = mpUi->hint->sizePolicy();
    hintPolicy.setRetainSizeWhenHidden(true);
    mpUi->hint->setSizePolicy(hintPolicy);
    LimitSize();
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
    PrepareCall(mLimitTimer, [this] { LimitSize(); });
    connect(&mNewsTimer, &QTimer::timeout, this, [this] { ShowNews(); });
    connect(tableView, &QListWidget::itemDoubleClicked, this, [this] { okDlg(); });
    for (QLineEdit* field : AddressFields()) {
        connect(field, &QLineEdit::textEdited, this, [this, field] { controlTextDidChange(*field); });
        connect(field, &QLineEdit::textChanged, field,
                [field](const QString& zText) { field->setProperty(kHeldText, !zText.isEmpty()); });
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
    // An arrow key takes the keyboard to the button after it has switched it on.
    const auto focusWhenOn = [this](bool zOn) {
        if (zOn) {
            FocusChosenWay();
        }
    };
    connect(&zrButton, &QRadioButton::toggled, this, focusWhenOn, Qt::QueuedConnection);
}

void SelectController::Init(DeviceListSource* zpDiscover) {
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
    mNewsTimer.start(kNewsInterval);
}

void SelectController::OnRefreshButton() {
    mIsLooking = mpDiscover == nullptr || mpDiscover->EnsureListening();
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
    const QStringList names = ShownNames();
    for (int row = 0; row < numberOfRowsInTableView(); ++row) {
        const QString address = ToWidgetText(mListEntries[static_cast<std::size_t>(row)].address);
        AddRow(names[row], names.count(names[row]) == 1, address);
    }
    if (zSelectedRow < numberOfRowsInTableView()) {
        tableView->setCurrentRow(zSelectedRow, QItemSelectionModel::ClearAndSelect);
    }
    ShowNews();
}

/// What the rows show of the devices' names, which may be long.
QStringList SelectController::ShownNames() const {
    QStringList names;
    for (int row = 0; row < numberOfRowsInTableView(); ++row) {
        names.append(ToWidgetText(Abbreviated(tableViewObjectValueForTableColumn("", row).value_or(""))));
    }
    return names;
}

/// Devices of the same name are told apart by the address, which is at hand for the others as well.
void SelectController::AddRow(const QString& zName, bool zIsUnique, const QString& zAddress) {
    auto item =
        std::make_unique<QListWidgetItem>(zIsUnique ? zName : QStringLiteral("%1 (%2)").arg(zName, zAddress));
    item->setData(Qt::AccessibleDescriptionRole, zAddress);
    item->setToolTip(PlainToolTip(zAddress));
    tableView->addItem(item.release()); // the list owns its items
}

bool SelectController::IsListed(const std::string& zAddress) const {
    return std::any_of(mListEntries.begin(), mListEntries.end(),
                       [&](const cListEntry& zrEntry) { return zrEntry.address == zAddress; });
}

bool SelectController::HasNews() const {
    if (mpDiscover == nullptr) {
        return false;
    }
    const std::vector<HostRecord>& hosts = mpDiscover->GetDeviceList();
    return std::any_of(hosts.begin(), hosts.end(),
                       [this](const HostRecord& zrHost) { return !IsListed(zrHost.hostValue); });
}

const char* SelectController::ChooseHint(bool zHasNews) const {
    const bool typing = mpEnterIP->isChecked();
    if (zHasNews) {
        return typing ? kNewsTyping : kNews;
    }
    if (!mListEntries.empty()) {
        return kNothingToSay;
    }
    if (mIsLooking) {
        return kLooking;
    }
    return typing ? kCannotLookTyping : kCannotLook;
}

/// Says by the line under the list and by the Refresh button what the list itself does not show.
void SelectController::ShowNews() {
    const bool hasNews = HasNews();
    SetHint(Translated(ChooseHint(hasNews)));
    const QString description = hasNews ? ToWidgetText(Translated(kRefreshNews)) : mRefreshDescription;
    if (mpRefreshButton->accessibleDescription() != description) {
        mpRefreshButton->setAccessibleDescription(description);
        mpRefreshButton->setIcon(hasNews ? NewsIcon() : QIcon());
    }
}

/// The list has the words too, as its keyboard focus is where assistive tools read from.
void SelectController::SetHint(const std::string& zText) {
    const QString words = ToWidgetText(zText);
    if (mpUi->hint->text() != words) {
        mpUi->hint->setText(words);
        tableView->setAccessibleDescription(words.isEmpty() ? mListDescription : words);
    }
    mpUi->hint->setVisible(!words.isEmpty());
}

/// Whatever the line and the button come to show, nothing grows for it.
void SelectController::LimitSize() {
    mpRefreshButton->setMinimumSize(SizeWithIcon(*mpRefreshButton));
    layout()->activate(); // the rows within it remember what they measured before
    const QString shown = mpUi->hint->text();
    const int width = std::max(kLeastWidth, layout()->totalMinimumSize().width());
    int height = kLeastHeight;
    for (const char* hint : kHints) {
        mpUi->hint->setText(ToWidgetText(Translated(hint)));
        layout()->activate();
        height = std::max(height, layout()->totalMinimumHeightForWidth(width));
    }
    mpUi->hint->setText(shown);
    setMinimumSize(width, height);
}

void SelectController::changeEvent(QEvent* zpEvent) {
    ModalDialog::changeEvent(zpEvent);
    const bool isLoaded = mpUi->hint != nullptr;
    if (isLoaded && (zpEvent->type() == QEvent::FontChange || zpEvent->type() == QEvent::StyleChange)) {
        StartCall(mLimitTimer); // the controls get theirs after the window
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
    if (TakeWholeAddress(zrField)) {
        return;
    }
    const QString octet = OctetText(typed);
    if (octet != typed) {
        zrField.setText(octet);
    }
    if (typed.endsWith(QLatin1Char('.'))) {
        zrField.setFocus();
        focusNextChild();
    }
}

bool SelectController::TakeWholeAddress(const QLineEdit& zrField) {
    const QStringList octets = PastedAddress(zrField.text(), !zrField.property(kHeldText).toBool());
    if (octets.isEmpty()) {
        return false;
    }
    qsizetype part = 0;
    for (QLineEdit* field : AddressFields()) {
        field->setText(OctetText(octets[part++]));
    }
    ipTextField4->setFocus();
    return true;
}

void SelectController::OnUseFoundDeviceButton() {
    SetFoundDeviceMode(true);
    FocusChosenWay();
}

void SelectController::OnEnterIPButton() {
    SetFoundDeviceMode(false);
    FocusChosenWay();
}

void SelectController::FocusChosenWay() {
    if (mpUseFoundDevice->isChecked()) {
        tableView->setFocus();
    } else {
        ipTextField1->setFocus();
        ipTextField1->selectAll();
    }
}

void SelectController::SetFoundDeviceMode(bool zOn) {
    mpUseFoundDevice->setChecked(zOn);
    mpEnterIP->setChecked(!zOn);
    // Tab stops at the way that is chosen, as everywhere; left alone, it stops at the one it was at last.
    mpUseFoundDevice->setFocusPolicy(zOn ? Qt::StrongFocus : Qt::ClickFocus);
    mpEnterIP->setFocusPolicy(zOn ? Qt::ClickFocus : Qt::StrongFocus);
    for (QLineEdit* field : AddressFields()) {
        field->setEnabled(!zOn);
    }
    mpRefreshButton->setEnabled(zOn);
    tableView->setEnabled(zOn);
    ShowNews();
}

void SelectController::okDlg() {
    if (mResult != kRunning) {
        return;
    }
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
    if (mResult != kRunning) {
        return; // a second answer within the same turn
    }
    mResult = zResult;
    ModalSession::StopCurrent();
}

void SelectController::cancelDlg() {
    Finish(kCancelled);
}

void SelectController::OnHelpButton() {
    ShowUserGuide(this);
}
