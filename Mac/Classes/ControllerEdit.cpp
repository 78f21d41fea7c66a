#include "Controller.h"

#include "Alert.h"
#include "CommonUtils.h"
#include "CommonUtils_OSX.h"
#include "CreateFolderController.h"
#include "DeviceTableView.h"
#include "WidgetText.h"

#include <algorithm>

namespace {

using eCommand = cClientProtocol::eCommand;
using tFileInfo = cClientProtocol::cDeviceFileInfo;

constexpr int kLongestFolderName = 24;

constexpr const char* kDeleteFolder =
    "Are you sure you want to delete this folder from '%s:/%s'?  This operation cannot be undone.";
constexpr const char* kDeleteFile =
    "Are you sure you want to delete this file from '%s:/%s'?  This operation cannot be undone.";
constexpr const char* kDeleteFiles =
    "Are you sure you want to delete %d files from '%s:/%s'?  This operation cannot be undone.";

/// The other names would make a folder elsewhere, or none.
bool IsPlainFolderName(const std::string& zName) {
    return zName != "." && zName != ".." && zName.find('/') == std::string::npos;
}

} // namespace

/// The device owes the answer to a cancelled operation, and takes no command until then.
bool Controller::RefusesWhileBusy(const char* zTitle) {
    if (IsClientBusy()) {
        ShowMessage(zTitle, Translated("Waiting for operation to finish"));
    }
    return IsClientBusy();
}

/// People see what came of it, since the device does not say.
void Controller::ListAfterEdit() {
    tableView->clearSelection();
    SetCurrentDirectory(mCurrentDirList.mDir);
}

// --- Delete ---

void Controller::OnDeleteButton() {
    if (!IsConnected()) {
        return;
    }
    const std::vector<int> rows = tableView->SelectedRows();
    if (rows.empty()) {
        ShowMessage("No files selected", Translated("Please select the files you wish to delete"));
        return;
    }
    if (RefusesWhileBusy("Delete failed")) {
        return;
    }
    const int answer = ShowAlert(&mrWindow, Translated("Delete files"), DeleteQuestion(rows), AlertOkCancel);
    if (answer == 1 && IsConnected()) {
        const std::string error = DeleteRows(rows);
        if (!error.empty()) {
            ShowMessage("Delete failed", error);
        }
        ListAfterEdit(); // also after an error, which concerns single items
    }
}

std::string Controller::DeleteQuestion(const std::vector<int>& zRows) const {
    const char* const device = mDeviceName.c_str();
    const char* const folder = mCurrentDirList.mDir.c_str();
    if (zRows.size() > 1) {
        return Filled(kDeleteFiles, static_cast<int>(zRows.size()), device, folder);
    }
    const tFileInfo* const info = RecordAt(zRows.front());
    return Filled(info != nullptr && info->mIsFolder ? kDeleteFolder : kDeleteFile, device, folder);
}

/// A device that refuses one item, and people who will not wait for one, do not keep the others from being
/// deleted. Returns the error text.
std::string Controller::DeleteRows(const std::vector<int>& zRows) {
    const auto session = InitProgressDialogue(Translated("Deleting files"));
    std::string errorText;
    for (std::size_t number = 1; number <= zRows.size() && IsConnected() && !IsClientBusy(); ++number) {
        const tFileInfo* const info = RecordAt(zRows[number - 1]);
        if (info == nullptr) {
            continue;
        }
        if (!IsPlainEntryName(info->mName)) {
            LogSkipped(info->mName, "not a file name");
            continue;
        }
        const std::string path = DevicePathIn(mCurrentDirList.mDir, info->mName);
        if (!mpSocket->CommandFits(eCommand::kDelete, path)) {
            errorText = NameAndReason(info->mName, "Path too long");
            continue;
        }
        mpSocket->Delete(path);
        WaitForDelete(*session, number, zRows.size());
    }
    CloseProgress(*session);
    return errorText;
}

void Controller::WaitForDelete(ModalSession& zrSession, std::size_t zNumber, std::size_t zCount) {
    const std::string text = Filled("File %d of %d", static_cast<int>(zNumber), static_cast<int>(zCount));
    AwaitReply(&zrSession, [&] {
        const float done = mpSocket->GetProgress() + static_cast<float>(zNumber - 1);
        progressDlg->SetProgress(text, done / static_cast<float>(zCount));
        progressDlg->ShowNow(); // nothing else tells people which items are gone
    });
}

// --- Create Folder ---

void Controller::OnCreateFolderButton() {
    if (!IsConnected()) {
        return;
    }
    if (RefusesWhileBusy("Create Folder Failed")) {
        return;
    }
    const std::string typed = AskForFolderName();
    if (typed.empty() || !IsConnected()) {
        return;
    }
    const std::string error = CreateFolder(typed);
    if (error.empty()) {
        ListAfterEdit();
    } else {
        ShowMessage("Create Folder Failed", error);
    }
}

std::string Controller::AskForFolderName() {
    CreateFolderController prompt(&mrWindow);
    CentreOverWindow(prompt);
    ModalSession::RunModal(prompt);
    prompt.close();
    return prompt.GetFolderName();
}

/// Returns the error text.
std::string Controller::CreateFolder(const std::string& zTypedName) {
    std::string name;
    ConvertNameForDevice(zTypedName, name);
    TruncateText(name, kLongestFolderName);
    if (name.empty()) { // which no name becomes at present
        return {};
    }
    if (!IsPlainFolderName(zTypedName) || !IsPlainFolderName(name)) {
        return Filled("'%s' is not a valid folder name.", zTypedName.c_str());
    }
    const std::string path = DevicePathIn(mCurrentDirList.mDir, name);
    if (!mpSocket->CommandFits(eCommand::kMakeDir, path)) {
        return NameAndReason(name, "Path too long");
    }
    if (std::ranges::any_of(mCurrentDirList.mFile,
                            [&](const tFileInfo& info) { return SameTextNoCase(info.mName, name); })) {
        ShowMessage(
            "File already exists",
            Filled("A file or folder called '%s' already exists.  Please try another name.", name.c_str()));
        return {};
    }
    MakeDeviceFolder(path);
    return {};
}

void Controller::MakeDeviceFolder(const std::string& zPath) {
    const auto session = InitProgressDialogue(Translated("Creating Folder"));
    mpSocket->MakeDir(zPath);
    AwaitReply(session.get());
    CloseProgress(*session);
}
