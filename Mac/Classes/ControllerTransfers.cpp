#include "Controller.h"

#include "CommonUtils.h"
#include "CopyFolderController.h"
#include "RunLoop.h"
#include "WidgetText.h"

/// Between any two steps people may have cancelled, and the connection may be lost or useless; the latter
/// leaves its reason in zrErrorText.
bool Controller::MayGoOn(std::string& zrErrorText) {
    if (progressDlg->GetCancelled()) {
        return false;
    }
    if (!IsConnected() || mpSocket->GetState() == FTS_ERROR) {
        zrErrorText = LostTransferText();
        return false;
    }
    return true;
}

/// Gives people's clicks and the window their turn now and then, in work that does not wait for anything.
/// Returns whether it was time to.
bool Controller::LetWindowLive(ModalSession& zrSession) {
    constexpr int kMilliseconds = 20;
    if (mSinceWindowLived.isValid() && !mSinceWindowLived.hasExpired(kMilliseconds)) {
        return false;
    }
    zrSession.RunOnce(); // shows the progress window when it is time
    RunLoop::RunSlice({}, [] { return false; });
    mSinceWindowLived.start();
    return true;
}

/// A device would take what follows such a name for further commands.
bool Controller::EndsTheCommand(const std::string& zName) {
    return zName.find("</cmd") != std::string::npos;
}

/// A name from a device becomes a local path, or that of something to delete, only if it stays one entry of
/// its folder.
bool Controller::IsPlainEntryName(const std::string& zName) {
    return !zName.empty() && zName != "." && zName != ".." && zName.find('/') == std::string::npos &&
           zName.find('\0') == std::string::npos && !EndsTheCommand(zName);
}

/// Tells on standard output what is left out without telling it on the screen.
void Controller::LogSkipped(const std::string& zName, const char* zReason) {
    DebugPrintf("Skipped '%s': %s\n", OneLogLine(zName).c_str(), zReason);
}

std::string Controller::DevicePathIn(const std::string& zFolder, const std::string& zName) {
    std::string path = zFolder;
    AddTrailingSeparator(path);
    return path + zName;
}

int Controller::AskToOverwrite(bool zIsFolder, const std::string& zName) {
    CopyFolderController prompt(&mrWindow);
    prompt.setText(zIsFolder, zName);
    CentreOverWindow(prompt);
    ModalSession::RunModal(prompt);
    prompt.close();
    return prompt.GetResult();
}
