#include "Controller.h"

#include "CommonUtils.h"
#include "CommonUtils_OSX.h"
#include "DeviceTableView.h"
#include "ThemeIcon.h"
#include "WidgetText.h"

#include <QtCore/QCoreApplication>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>

namespace {

constexpr int kTypeColumn = 1;

const std::string& ValueOf(const sTableEntry& zEntry, const std::string& zColumn) {
    static const std::map<std::string, std::string sTableEntry::*> kValues = {
        {"Name", &sTableEntry::Name},
        {"Type", &sTableEntry::Type},
        {"Date Modified", &sTableEntry::DateModified},
    };
    static const std::string kNothing;
    const auto value = kValues.find(zColumn);
    return value == kValues.end() ? kNothing : zEntry.*(value->second);
}

std::string FileType(const std::string& zExtension) {
    return zExtension.empty() ? Translated(" file") : Filled("%s file", zExtension.c_str());
}

} // namespace

// --- Rows ---

void Controller::RemoveAllRows() {
    mTableEntries.clear();
    tableView->clearSelection();
    SetEmptyText("");
    mpTableModel->Reload();
}

sTableEntry Controller::MakeTableEntry(const cClientProtocol::cDeviceFileInfo& zrInfo) const {
    sTableEntry entry;
    entry.Name = zrInfo.mName;
    entry.Type = zrInfo.mIsFolder ? Translated("Folder") : FileType(GetExtension(zrInfo.mName));
    entry.DateModified = zrInfo.mIsFolder ? std::string() : zrInfo.mDate;
    entry.FileInfo = FileInfoValue(&zrInfo);
    return entry;
}

bool Controller::IsShown(const cClientProtocol::cDeviceFileInfo& zrInfo) const {
    return zrInfo.mIsFolder || mFileTypes == "*" || SameTextNoCase(GetExtension(zrInfo.mName), mFileTypes);
}

/// Every new listing starts out sorted by type, whatever order the last one was left in.
void Controller::ShowCurrentListing() {
    mTableEntries.clear();
    for (const auto& info : mCurrentDirList.mFile) {
        if (IsShown(info)) {
            mTableEntries.push_back(MakeTableEntry(info));
        }
    }
    mShownRights = mpSocket->GetDirRights();
    ShowConnected(); // in place of what an operation that has ended by now had to say
    SetDirectoryText(mCurrentDirList.mDir);
    SetEmptyText(mTableEntries.empty() ? "This folder is empty" : "");
    tableView->sortByColumn(kTypeColumn, Qt::AscendingOrder);
}

void Controller::ShowFailedListing() {
    mShownRights = kRightReadOnly; // nothing is known of the folder
    if (IsConnected()) {
        SetDirectoryText(mCurrentDirList.mDir);
        SetEmptyText("The folder could not be listed. Press F5 to try again.");
    }
}

void Controller::SetEmptyText(const char* zText) {
    tableView->SetPlaceholder(*zText == '\0' ? QString() : QCoreApplication::translate("Quillbox", zText));
    if (*zText == '\0') {
        tableView->setAccessibleDescription(ToWidgetText(Translated("What the folder of the device holds")));
    }
}

const cClientProtocol::cDeviceFileInfo* Controller::RecordAt(int zRow) const {
    if (zRow < 0 || zRow >= numberOfRowsInTableView()) {
        return nullptr;
    }
    const auto& value = mTableEntries[static_cast<std::size_t>(zRow)].FileInfo;
    return value ? value->mpFileInfo : nullptr;
}

// --- Folders ---

void Controller::SetCurrentDirectory(const std::string& zPath) {
    RemoveAllRows();
    if (!IsConnected()) {
        UpdateControls(); // brings back what the empty table says then
        return;
    }
    const auto session = InitProgressDialogue(Translated("Reading Folder Contents"));
    if (GetDirectoryContents(session.get(), zPath)) {
        ShowCurrentListing();
    } else {
        ShowFailedListing();
    }
    CloseProgress(*session);
    UpdateControls();
}

void Controller::SetDirectoryText(const std::string& zText) {
    const QString text = ToWidgetText("/" + zText);
    mpDirectoryText->setText(text);
    mpDirectoryText->setAccessibleDescription(text);
}

void Controller::OpenFolder(const std::string& zPath) {
    if (mpSocket->CommandFits(cClientProtocol::eCommand::kDir, zPath)) {
        SetCurrentDirectory(zPath);
    } else {
        SetStatusText(NameAndReason(GetFileName(zPath), "Path too long"));
    }
}

void Controller::OpenRow(int zRow) {
    const auto* info = RecordAt(zRow);
    if (!IsConnected() || info == nullptr || !info->mIsFolder) {
        return;
    }
    OpenFolder(DevicePathIn(mCurrentDirList.mDir, info->mName));
}

void Controller::OnTableViewDoubleClick() {
    OpenRow(tableView->currentIndex().row());
}

void Controller::OnOpen() {
    OpenRow(SelectedFolder());
}

/// The row of the folder that alone is selected; -1 for anything else.
int Controller::SelectedFolder() const {
    const std::vector<int> rows = tableView->SelectedRows();
    const auto* info = rows.size() == 1 ? RecordAt(rows.front()) : nullptr;
    return info != nullptr && info->mIsFolder ? rows.front() : -1;
}

void Controller::OnBackButton() {
    if (!IsConnected() || mCurrentDirList.mDir.empty()) {
        return;
    }
    std::string path = mCurrentDirList.mDir;
    if (path.back() == '/' || path.back() == '\\') {
        path.pop_back();
    }
    const std::string left = GetFileName(path);
    RemoveLastComponent(path);
    SetCurrentDirectory(path);
    GoOnFrom(left);
}

/// Makes a row the one that the keyboard goes on from.
void Controller::GoOnFrom(const std::string& zName) {
    for (int row = 0; row < numberOfRowsInTableView(); ++row) {
        if (RecordAt(row)->mName == zName) {
            tableView->MakeCurrent(row);
            return;
        }
    }
}

void Controller::OnRefresh() {
    if (IsConnected()) {
        SetCurrentDirectory(mCurrentDirList.mDir);
    }
}

// --- The table's questions ---

int Controller::numberOfRowsInTableView() const {
    return static_cast<int>(mTableEntries.size());
}

std::string Controller::tableViewObjectValueForTableColumn(const std::string& zColumn, int zRow) const {
    const bool known = zRow >= 0 && zRow < numberOfRowsInTableView();
    return known ? ValueOf(mTableEntries[static_cast<std::size_t>(zRow)], zColumn) : std::string();
}

bool Controller::tableViewShouldSelectRow(int zRow) const {
    const auto* info = RecordAt(zRow);
    return mSuperUser || info == nullptr || !info->mIsFolder;
}

bool Controller::tableViewShouldShowCellExpansionForTableColumn(const std::string& /*zColumn*/,
                                                                int /*zRow*/) const {
    return false;
}

std::string Controller::tableViewIconNameForRow(int zRow) const {
    const auto* info = RecordAt(zRow);
    if (info == nullptr || info->mIsFolder) {
        return "folder";
    }
    return IconNameForExtension(GetExtension(info->mName));
}

void Controller::tableViewSortDescriptorsDidChange(const sSortDescriptor& zDescriptor) {
    std::vector<std::pair<QString, sTableEntry>> rows;
    rows.reserve(mTableEntries.size());
    for (sTableEntry& entry : mTableEntries) {
        const QString key = ToWidgetText(ValueOf(entry, zDescriptor.key)).toCaseFolded();
        rows.emplace_back(key, std::move(entry));
    }
    // Stable both ways: rows of equal value keep the device's order.
    std::stable_sort(rows.begin(), rows.end(), [&](const auto& left, const auto& right) {
        return zDescriptor.ascending ? left.first < right.first : right.first < left.first;
    });
    std::transform(rows.begin(), rows.end(), mTableEntries.begin(),
                   [](auto& row) { return std::move(row.second); });
    tableView->clearSelection();
    mpTableModel->Reload();
}

void Controller::tableViewSelectionDidChange() {
    UpdateControls();
}

void Controller::tableViewColumnDidResize() {
    tableView->viewport()->update();
}

// --- Enabled states ---

void Controller::UpdateControls() {
    const bool connected = IsConnected();
    const QString words = QCoreApplication::translate("Quillbox", connected ? "Dis&connect" : "&Connect");
    if (mpConnectButton->text() != words) { // every change of the selection comes here
        mpConnectButton->setText(words);
        mpConnectButton->setAccessibleDescription(ToWidgetText(Translated(
            connected ? "Ends the connection to the device" : "Finds devices and connects to one")));
        mpConnectButton->setIcon(ThemeIcon(connected ? "network-disconnect" : "network-connect"));
    }
    SetEnabled(*tableView, connected); // first: it takes the keyboard of what is disabled below
    SetEnabled(*mpDirectoryText, connected);
    if (connected) {
        UpdateConnectedControls();
    } else {
        UpdateDisconnectedControls();
    }
    mrWindow.MirrorButtons(connected, connected && SelectedFolder() >= 0);
}

/// Left alone, the keyboard would go on to whatever comes next, and Space would press that.
void Controller::SetEnabled(QWidget& zrControl, bool zEnabled) {
    if (!zEnabled && mrWindow.focusWidget() == &zrControl) {
        QWidget* heir = IsConnected() ? static_cast<QWidget*>(tableView) : mpConnectButton;
        heir->setFocus(); // within the window, which need not be the one in front
    }
    zrControl.setEnabled(zEnabled);
}

void Controller::UpdateConnectedControls() {
    const std::vector<int> rows = tableView->SelectedRows();
    const bool allDeletable = std::all_of(rows.begin(), rows.end(), [this](int row) {
        const auto* info = RecordAt(row);
        return info != nullptr && (info->mRights & kRightDelete) != 0;
    });
    SetEnabled(*mpCreateFolderButton, (mShownRights & kRightCreate) != 0);
    SetEnabled(*mpUploadButton, (mShownRights & kRightReadOnly) == 0);
    SetEnabled(*mpDeleteButton, !rows.empty() && allDeletable);
    SetEnabled(*mpDownloadButton, !rows.empty());
    SetEnabled(*mpBackButton, !mCurrentDirList.mDir.empty());
}

void Controller::UpdateDisconnectedControls() {
    for (QPushButton* button :
         {mpCreateFolderButton, mpDeleteButton, mpUploadButton, mpDownloadButton, mpBackButton}) {
        SetEnabled(*button, false);
    }
    SetDirectoryText("");
    SetEmptyText("Press Connect, then choose your device or type its address.\n"
                 "The device and this computer must be on the same network.");
}
