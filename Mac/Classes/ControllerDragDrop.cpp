#include "Controller.h"

#include "CommonUtils.h"
#include "DeviceTableView.h"
#include "PromisedFileDrag.h"
#include "WidgetText.h"

// --- Onto the table ---

eDragOperation Controller::tableViewValidateDrop(int /*zRow*/) {
    DebugPrintf("validate Drop\n");
    return eDragOperation::kCopy;
}

bool Controller::tableViewAcceptDrop(const std::vector<std::string>& zPaths, int /*zRow*/) {
    if (!IsConnected()) {
        return false;
    }
    if ((mShownRights & kRightReadOnly) != 0) {
        ShowMessage("File drop failed", Translated("This folder is read only."));
        return false;
    }
    if (!zPaths.empty()) {
        UploadIntoShownFolder(zPaths);
    }
    mpTableModel->Reload();
    return true;
}

// --- Out of the table ---

bool Controller::tableViewWriteRowsWithIndexes(const std::vector<int>& zRows) {
    DebugPrintf("writeRowsWithIndexes\n");
    const cClientProtocol::cDeviceFileInfo* const info = zRows.empty() ? nullptr : RecordAt(zRows.front());
    // By way of the window, which outlives this.
    PromisedFileDrag::Run(
        *tableView, info != nullptr ? info->mName : "",
        [table = tableView](const std::string& zFolder) { emit table->promiseDropped(zFolder); });
    return false;
}

std::vector<std::string>
Controller::namesOfPromisedFilesDroppedAtDestination(const std::string& zDestination) {
    if (!IsConnected() || tableView->SelectedRows().empty()) {
        return {};
    }
    const cDeviceDirList list = SelectedRecords();
    if (!list.mFile.empty() && !zDestination.empty()) {
        DownloadInto(zDestination, list);
    }
    return {};
}
