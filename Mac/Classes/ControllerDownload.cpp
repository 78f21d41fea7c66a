#include "Controller.h"

#include "CommonUtils.h"
#include "CommonUtils_OSX.h"
#include "CopyFolderController.h"
#include "DeviceTableView.h"
#include "Settings.h"
#include "WidgetText.h"

#include <QtCore/QDir>

#include <algorithm>
#include <filesystem>

namespace {

/// A device can fill each listing and nest folders; all those that are open at a time take memory.
constexpr std::size_t kMostOpenEntries = 1'000'000;

using tFileInfo = cClientProtocol::cDeviceFileInfo;
using eCommand = cClientProtocol::eCommand;

/// Not AddTrailingSeparator: a backslash belongs to the name of a local folder, and without it "..\" would
/// lead out of the destination.
std::string LocalPathIn(const std::string& zFolder, const std::string& zName) {
    return zFolder + (zFolder.ends_with('/') ? "" : "/") + zName;
}

/// People's link to a folder may lead anywhere, and a device must not choose to follow it.
bool IsLink(const std::string& zPath) {
    std::error_code ignored;
    return std::filesystem::is_symlink(std::filesystem::symlink_status(zPath, ignored));
}

/// A link that leads nowhere, and a file that cannot be read, are there as well.
bool IsThere(const std::string& zPath) {
    std::error_code ignored;
    return std::filesystem::exists(std::filesystem::symlink_status(zPath, ignored));
}

/// A device may tell any size; none counts for less than nothing.
std::uint64_t Size(const tFileInfo& zInfo) {
    return static_cast<std::uint64_t>(std::max(zInfo.mSize, 0));
}

std::uint64_t ListingTotal(const cDeviceDirList& zList) {
    std::uint64_t total = 0;
    for (const tFileInfo& info : zList.mFile) {
        total += Size(info);
    }
    return total;
}

} // namespace

struct Controller::sDownload {
    ModalSession* session;
    std::uint64_t totalFileSize; ///< bytes of the whole download, 0 when unknown
    std::string errorStr = {};
    std::uint64_t numBytesCopied = 0;
    bool overwriteAll = false;
    std::size_t numOpenEntries = 0; ///< of the folders around the present one
};

/// How far one listing of a download has come.
struct Controller::sListingProgress {
    std::uint64_t total; ///< bytes of the listing
    std::uint64_t done = 0;
};

// --- The button ---

void Controller::OnDownloadButton() {
    if (!IsConnected()) {
        return;
    }
    if (tableView->SelectedRows().empty()) {
        ShowMessage("No files selected", Translated("Please select the files you wish to download"));
        return;
    }
    const cDeviceDirList list = SelectedRecords();
    std::string destination;
    if (list.mFile.empty() || !ChooseDestination(destination)) {
        return;
    }
    GetSettings().RecentDownloadPath = destination;
    DownloadInto(destination, list);
}

void Controller::DownloadInto(const std::string& zDestination, const cDeviceDirList& zList) {
    const std::string error = DownloadFiles(zDestination, zList);
    if (!error.empty()) {
        ShowMessage("Download failed", error);
    }
}

cDeviceDirList Controller::SelectedRecords() const {
    cDeviceDirList list;
    list.mDir = mCurrentDirList.mDir;
    for (const int row : tableView->SelectedRows()) {
        const tFileInfo* info = RecordAt(row);
        if (info == nullptr) {
            continue;
        }
        if (info->mSize >= 1) {
            list.mFile.push_back(*info);
        } else {
            LogSkipped(info->mName, "it has no size");
        }
    }
    return list;
}

bool Controller::ChooseDestination(std::string& zrDestination) {
    sOpenPanelRequest request;
    request.title = Translated("Choose file download destination folder");
    request.canChooseFiles = false;
    request.canChooseFolders = true;
    request.canCreateFolders = true;
    request.allowsMultiple = false;
    if (!mSuperUser) {
        request.allowedTypes = {"wav", "aif"};
    }
    const std::string& recent = GetSettings().RecentDownloadPath;
    request.initialFolder = recent.empty() ? FromWidgetText(QDir::homePath()) : recent;

    const std::vector<std::string> chosen = mrPanel.Run(&mrWindow, request);
    if (chosen.empty() || mTerminating) {
        return false;
    }
    zrDestination = chosen.front();
    return !zrDestination.empty();
}

// --- The whole download ---

std::string Controller::DownloadFiles(const std::string& zDestination,
                                      const cDeviceDirList& zrDeviceFileList) {
    if (!IsConnected()) {
        return Translated("Connection has been closed");
    }
    if (IsClientBusy()) {
        return Translated("Waiting for operation to finish"); // a cancelled one, whose reply is still due
    }
    std::uint64_t total = 0;
    if (!MeasureDownload(zrDeviceFileList, total)) {
        return {};
    }
    const std::string title = Filled("Downloading to '%s'", zDestination.c_str());
    auto session = InitProgressDialogue(title);
    sDownload download{session.get(), total};
    const bool walked = DownloadFilesRecurse(zDestination, zrDeviceFileList, download);
    const bool cancelled = !walked && download.errorStr.empty();
    if (cancelled || progressDlg->GetCancelled()) {
        // What is left to do is a listing, which people can cancel again.
        session = InitProgressDialogue(title);
    }
    RefreshAfterTransfer(*session, zrDeviceFileList.mDir);
    CloseProgress(*session);
    UpdateControls();
    return download.errorStr;
}

/// False when people cancelled while the size of a folder was asked for.
bool Controller::MeasureDownload(const cDeviceDirList& zrList, std::uint64_t& zrTotal) {
    if (!mpSocket->SupportsDirRecurse()) {
        return true;
    }
    for (const tFileInfo& info : zrList.mFile) {
        std::uint32_t folderSize = 0;
        std::int32_t numFiles = 0;
        const bool asked =
            info.mIsFolder && GetDirRecurseInfo(DevicePathIn(zrList.mDir, info.mName), folderSize, numFiles);
        if (asked && progressDlg->GetCancelled()) {
            return false;
        }
        zrTotal += info.mIsFolder ? folderSize : Size(info);
    }
    return true;
}

void Controller::RefreshAfterTransfer(ModalSession& zrSession, const std::string& zPath) {
    RemoveAllRows();
    if (GetDirectoryContents(&zrSession, zPath)) {
        ShowCurrentListing();
    } else {
        ShowFailedListing();
    }
}

// --- One folder of it ---

bool Controller::DownloadFilesRecurse(const std::string& zDestination, const cDeviceDirList& zrDeviceFileList,
                                      sDownload& zrDownload) {
    sListingProgress progress{ListingTotal(zrDeviceFileList)};
    for (const tFileInfo& info : zrDeviceFileList.mFile) {
        if (!MayGoOn(zrDownload.errorStr)) {
            return false;
        }
        if (!IsPlainEntryName(info.mName)) {
            LogSkipped(info.mName, "not a file name");
            LetWindowLive(*zrDownload.session);
            continue;
        }
        const bool goOn = info.mIsFolder
                              ? DownloadFolder(zDestination, zrDeviceFileList.mDir, info, zrDownload)
                              : DownloadFile(zDestination, zrDeviceFileList.mDir, info, progress, zrDownload);
        if (!goOn) {
            return false;
        }
    }
    return true;
}

bool Controller::DownloadFolder(const std::string& zDestination, const std::string& zDeviceDir,
                                const tFileInfo& zInfo, sDownload& zrDownload) {
    const std::string localPath = LocalPathIn(zDestination, zInfo.mName);
    const std::string devicePath = DevicePathIn(zDeviceDir, zInfo.mName);
    if (!mpSocket->CommandFits(eCommand::kDir, devicePath)) {
        zrDownload.errorStr = NameAndReason(zInfo.mName, "Path too long");
        return false;
    }
    if (IsLink(localPath)) {
        zrDownload.errorStr = NameAndReason(zInfo.mName, "Could not open file");
        return false;
    }
    MakeFolder(localPath); // leaves alone, unopened, what is there already
    cDeviceDirList list;
    if (GetDirectoryContents(zrDownload.session, devicePath, &list)) {
        return DownloadListing(localPath, list, zInfo.mName, zrDownload);
    }
    if (!MayGoOn(zrDownload.errorStr)) {
        return false;
    }
    LogSkipped(devicePath, "the folder cannot be listed");
    return true;
}

bool Controller::DownloadListing(const std::string& zDestination, const cDeviceDirList& zList,
                                 const std::string& zName, sDownload& zrDownload) {
    zrDownload.numOpenEntries += zList.mFile.size();
    if (zrDownload.numOpenEntries > kMostOpenEntries) {
        zrDownload.errorStr = NameAndReason(zName, "Too many files");
        return false;
    }
    const bool walked = DownloadFilesRecurse(zDestination, zList, zrDownload);
    zrDownload.numOpenEntries -= zList.mFile.size();
    return walked;
}

bool Controller::DownloadFile(const std::string& zDestination, const std::string& zDeviceDir,
                              const tFileInfo& zInfo, sListingProgress& zrProgress, sDownload& zrDownload) {
    const std::string localPath = LocalPathIn(zDestination, zInfo.mName);
    const bool isTaken = IsThere(localPath);
    std::string problem = isTaken && IsFolder(localPath) ? "Could not open file" : "";
    if (!mpSocket->CommandFits(eCommand::kDownload, zDeviceDir, zInfo.mName)) {
        problem = "Path too long";
    }
    const int answer = problem.empty() ? AskForPlace(localPath, isTaken, zrDownload) : CopyYes;
    if (answer == CopyCancel) {
        return false;
    }
    if (!MayGoOn(zrDownload.errorStr)) {
        return false;
    }
    if (answer == CopyNo) {
        return true;
    }
    if (problem.empty()) {
        problem = mpSocket->Download(localPath, zDeviceDir, zInfo.mName);
    }
    if (!problem.empty()) {
        zrDownload.errorStr = NameAndReason(zInfo.mName, problem);
        return false;
    }
    const bool goOn = WaitForDownload(zInfo, zrProgress, zrDownload);
    if (goOn && !mpSocket->HasStoredFile()) {
        LogSkipped(zInfo.mName, "the device sent nothing");
    }
    return goOn;
}

/// Asks before anything that exists is lost: the file itself, where zIsTaken says that it is there, and what
/// stands where it arrives.
int Controller::AskForPlace(const std::string& zLocalPath, bool zIsTaken, sDownload& zrDownload) {
    int answer = CopyYes;
    const auto askFor = [&](const std::string& zPath) {
        if (answer == CopyYes && !zrDownload.overwriteAll) {
            answer = AskToOverwrite(false, zPath);
            zrDownload.overwriteAll = answer == CopyYesToAll;
        }
    };
    if (zIsTaken) {
        askFor(zLocalPath);
    }
    const std::string arrival = zLocalPath + ".tmp";
    if (IsLink(arrival) || (IsThere(arrival) && !IsFolder(arrival))) {
        askFor(arrival);
    }
    return answer;
}

bool Controller::WaitForDownload(const tFileInfo& zInfo, sListingProgress& zrProgress,
                                 sDownload& zrDownload) {
    eReply reply = StillWaiting;
    while (reply == StillWaiting) {
        ShowDownload(zInfo, zrProgress, zrDownload);
        reply = CheckForReply(zrDownload.session);
    }
    if (reply == FailedOrDisconnected) {
        zrDownload.errorStr = LostTransferText();
        return false;
    }
    if (reply == Cancelled) {
        DisconnectDevice();
        ConnectDevice(mCurrentDirList.mDir);
        return false;
    }
    zrDownload.numBytesCopied += Size(zInfo);
    zrProgress.done += Size(zInfo);
    return true;
}

void Controller::ShowDownload(const tFileInfo& zInfo, const sListingProgress& zProgress,
                              const sDownload& zDownload) {
    const float progress = mpSocket->GetProgress();
    progressDlg->SetProgress(ExpandTemplate(zInfo.mName),
                             DownloadPosition(zInfo, progress, zProgress, zDownload));
    const double current = static_cast<double>(Size(zInfo)) * static_cast<double>(progress);
    progressDlg->SetAmount(zDownload.numBytesCopied + static_cast<std::uint64_t>(current),
                           zDownload.totalFileSize);
}

float Controller::DownloadPosition(const tFileInfo& zInfo, float zFileProgress,
                                   const sListingProgress& zProgress, const sDownload& zDownload) {
    const float current = static_cast<float>(Size(zInfo)) * zFileProgress;
    if (zDownload.totalFileSize != 0) {
        return (static_cast<float>(zDownload.numBytesCopied) + current) /
               static_cast<float>(zDownload.totalFileSize);
    }
    if (zProgress.total == 0) {
        return 0.0F;
    }
    return (current + static_cast<float>(zProgress.done)) / static_cast<float>(zProgress.total);
}
