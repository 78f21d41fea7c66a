#include "Controller.h"

#include "Alert.h"
#include "AudioConversion.h"
#include "CommonUtils.h"
#include "CommonUtils_OSX.h"
#include "CopyFolderController.h"
#include "Settings.h"
#include "WidgetText.h"

#include <QtCore/QDir>

#include <algorithm>
#include <map>

namespace {

using eCommand = cClientProtocol::eCommand;
using tFileInfo = cClientProtocol::cDeviceFileInfo;

constexpr std::size_t kLongestRoot = 1024;
constexpr int kLongestComparedName = 24;

std::string NameForDevice(const std::string& zName) {
    std::string name;
    ConvertNameForDevice(zName, name);
    return name;
}

/// How many bytes of a path stand before the item itself.
std::size_t RootLength(const std::string& zPath) {
    std::string parent = zPath;
    if (IsFolder(zPath)) {
        RemoveLastComponent(parent);
    } else {
        parent = GetParentPath(zPath);
    }
    return parent == "/" || parent == "\\" ? 1 : parent.size() + 1;
}

std::size_t CommonRootLength(const std::vector<std::string>& zPaths) {
    std::size_t length = kLongestRoot;
    for (const std::string& path : zPaths) {
        length = std::min(length, RootLength(path));
    }
    return length;
}

/// A separator at the end of a path would make the item itself part of the root.
std::vector<std::string> WithoutLastSeparators(std::vector<std::string> zPaths) {
    for (std::string& path : zPaths) {
        path.resize(path.find_last_not_of('/') + 1);
    }
    std::erase(zPaths, "");
    return zPaths;
}

std::string PathBelow(const std::string& zPath, std::size_t zRootLength) {
    return zPath.substr(std::min(zRootLength, zPath.size()));
}

/// Names that are equal but for the case of their letters have this in common.
QString Folded(const std::string& zName) {
    return ToWidgetText(zName).toCaseFolded();
}

bool IsAllowedSound(const std::string& zPath) {
    return HasExtension(zPath, "wav") || HasExtension(zPath, "aif");
}

} // namespace

struct Controller::sUpload {
    std::string devicePath;
    std::size_t rootLength;
    std::map<QString, bool> isListedFolder = {}; ///< by the folded names of the folder shown
    std::vector<std::string> sendList = {};
    std::uint64_t total = 0; ///< bytes of the source files
    bool folderYesToAll = false;
    bool fileYesToAll = false;
    std::uint64_t bytesDone = 0; ///< of the files as they are sent
    ModalSession* session = nullptr;
    std::string errorText = {};
};

// --- The button ---

void Controller::OnUploadButton() {
    UploadChosen(
        {.title = Filled("Upload files to '%s:/%s'", mDeviceName.c_str(), mCurrentDirList.mDir.c_str()),
         .allowsMultiple = true});
}

void Controller::OnUploadFolder() {
    UploadChosen(
        {.title = Filled("Upload a folder to '%s:/%s'", mDeviceName.c_str(), mCurrentDirList.mDir.c_str()),
         .canChooseFiles = false,
         .canChooseFolders = true});
}

void Controller::UploadChosen(sOpenPanelRequest zRequest) {
    if (!IsConnected()) {
        return;
    }
    if (!mSuperUser) {
        zRequest.allowedTypes = {"wav", "aif"};
    }
    const std::string& recent = GetSettings().RecentUploadPath;
    zRequest.initialFolder = recent.empty() ? FromWidgetText(QDir::homePath()) : recent;
    const std::vector<std::string> paths = mrPanel.Run(&mrWindow, zRequest);
    if (paths.empty() || mTerminating) {
        return;
    }
    GetSettings().RecentUploadPath = GetParentPath(paths.front());
    UploadIntoShownFolder(paths);
}

void Controller::UploadIntoShownFolder(const std::vector<std::string>& zPaths) {
    const std::string folder = mCurrentDirList.mDir;
    const std::string error = UploadFiles(zPaths, folder);
    if (!error.empty()) {
        ShowMessage("Upload failed", error);
    }
    SetCurrentDirectory(folder);
}

// --- The whole upload ---

std::string Controller::UploadFiles(const std::vector<std::string>& zPaths, const std::string& zrDevicePath) {
    if (!IsConnected()) {
        return Translated("Connection has been closed");
    }
    if (IsClientBusy()) {
        return Translated("Waiting for operation to finish"); // a cancelled one, whose reply is still due
    }
    const std::vector<std::string> paths = WithoutLastSeparators(zPaths);
    sUpload upload{zrDevicePath, CommonRootLength(paths)};
    for (const tFileInfo& info : mCurrentDirList.mFile) {
        upload.isListedFolder.emplace(Folded(info.mName), info.mIsFolder);
    }
    if (!DecideUploads(paths, upload)) {
        return {};
    }
    if (!IsConnected()) {
        return mTerminating ? "" : Translated("Connection has been closed");
    }
    if (upload.total == 0) {
        return {};
    }
    const auto session = InitProgressDialogue(Translated("Uploading files"));
    upload.session = session.get();
    SendFiles(upload);
    CloseProgress(*session);
    UpdateControls();
    return upload.errorText;
}

/// Asks about everything that is there already, before the first byte goes. False when people cancel; ends
/// early where the connection is lost meanwhile.
bool Controller::DecideUploads(const std::vector<std::string>& zPaths, sUpload& zrUpload) {
    for (const std::string& path : zPaths) {
        const int answer = IsConnected() ? AskForUpload(path, zrUpload) : CopyNo;
        if (answer == CopyCancel) {
            return false;
        }
        if (!IsConnected()) {
            return true;
        }
        if (answer == CopyNo) {
            continue;
        }
        if (IsFolder(path)) {
            if (!CollectFolder(path, zrUpload)) {
                return false;
            }
        } else {
            zrUpload.sendList.push_back(path);
            zrUpload.total += GetFileSize(path);
        }
    }
    return true;
}

int Controller::AskForUpload(const std::string& zPath, sUpload& zrUpload) {
    std::string name = NameForDevice(PathBelow(zPath, zrUpload.rootLength));
    TruncateText(name, kLongestComparedName);
    const auto entry = zrUpload.isListedFolder.find(Folded(name));
    if (entry == zrUpload.isListedFolder.end()) {
        return CopyYes;
    }
    const bool isFolder = IsFolder(zPath);
    if (entry->second != isFolder) {
        return CopyNo;
    }
    bool& yesToAll = isFolder ? zrUpload.folderYesToAll : zrUpload.fileYesToAll;
    const int answer = yesToAll ? CopyYesToAll : AskToOverwrite(isFolder, name);
    yesToAll = answer == CopyYesToAll;
    return answer;
}

/// False when people cancel, which they may want in a large folder.
bool Controller::CollectFolder(std::string zPath, sUpload& zrUpload) {
    const auto session = InitProgressDialogue(Translated("Reading Folder Contents"));
    GetLocalFileList(zPath, zrUpload.sendList, zrUpload.total, [&] {
        LetWindowLive(*session);
        return IsConnected() && !progressDlg->GetCancelled();
    });
    const bool cancelled = progressDlg->GetCancelled();
    CloseProgress(*session);
    return !cancelled;
}

void Controller::SendFiles(sUpload& zrUpload) {
    for (const std::string& path : zrUpload.sendList) {
        if (IsFolder(path) || (!mSuperUser && !IsAllowedSound(path))) {
            continue;
        }
        if (!MayGoOn(zrUpload.errorText) || !UploadFile(path, zrUpload)) {
            return;
        }
    }
}

// --- One file of it ---

bool Controller::UploadFile(const std::string& zPath, sUpload& zrUpload) {
    cAudioConversion record(zPath);
    ShowConversions(record, zrUpload);
    if (!record.ConvertForUpload()) { // which it does not say at present: it falls back to the source
        ShowMessage("File convert failed", record.message);
        return true;
    }
    if (!MayGoOn(zrUpload.errorText)) { // while it was converted
        return false;
    }
    std::string name = NameForDevice(GetParentPath(PathBelow(zPath, zrUpload.rootLength)));
    AddTrailingSeparator(name);
    name += record.deviceName;
    if (EndsTheCommand(name)) {
        zrUpload.errorText = NameAndReason(record.deviceName, "Not a name for a device");
        return false;
    }
    if (!mpSocket->CommandFits(eCommand::kUpload, zrUpload.devicePath, name)) {
        zrUpload.errorText = NameAndReason(record.deviceName, "Path too long");
        return false;
    }
    mpSocket->Upload(record.outputPath, zrUpload.devicePath, name); // one that it refuses leaves it idle
    return WaitForUpload(name, record, zrUpload);
}

/// Keeps the window alive while a file is converted, and lets people cancel that.
void Controller::ShowConversions(cAudioConversion& zrRecord, sUpload& zrUpload) {
    zrRecord.progress = [this, &zrRecord, &zrUpload](double) {
        if (LetWindowLive(*zrUpload.session)) {
            ShowUpload(GetFileName(zrRecord.sourcePath), 0.0, zrUpload);
        }
        return MayGoOn(zrUpload.errorText);
    };
}

/// What has its turn, and how many bytes of it are done.
void Controller::ShowUpload(const std::string& zName, double zDone, const sUpload& zUpload) {
    const double done = zDone + static_cast<double>(zUpload.bytesDone);
    progressDlg->SetProgress(ExpandTemplate(zName),
                             static_cast<float>(done) / static_cast<float>(zUpload.total));
    progressDlg->SetAmount(static_cast<std::uint64_t>(done), zUpload.total);
}

bool Controller::WaitForUpload(const std::string& zName, cAudioConversion& zrRecord, sUpload& zrUpload) {
    eReply reply = StillWaiting;
    while (reply == StillWaiting) {
        const auto progress = static_cast<double>(mpSocket->GetProgress());
        ShowUpload(zName, progress * static_cast<double>(zrRecord.outputSize), zrUpload);
        reply = CheckForReply(zrUpload.session);
    }
    zrUpload.bytesDone += zrRecord.outputSize;
    zrRecord.DeleteTempFile(); // before a connection is made anew, which may take long
    if (reply == FailedOrDisconnected) {
        zrUpload.errorText = LostTransferText();
    } else if (reply == Cancelled) {
        DisconnectDevice();
        ConnectDevice(mCurrentDirList.mDir);
    }
    return reply == Done;
}
