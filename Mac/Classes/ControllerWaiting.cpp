#include "Controller.h"

#include "CommonUtils.h"
#include "RunLoop.h"
#include "WidgetText.h"

#include <QtCore/QDeadlineTimer>
#include <QtWidgets/QLineEdit>

namespace {

using namespace std::chrono_literals;

/// Shorter operations than this open no progress window, so that opening a folder does not flicker.
constexpr auto kProgressDelay = 200ms;
constexpr auto kCancelPatience = 4s;

} // namespace

// --- What people are told ---

std::string Controller::GetLastError() const {
    if (!mLastSocketError.empty()) {
        return mLastSocketError;
    }
    return mClientFailureCounts ? mpSocket->GetErrorStr() : std::string();
}

void Controller::SetStatusText(const std::string& zText) {
    const QString text = ToWidgetText(TranslatedMessage(zText));
    if (mpStatusText->text() != text) {
        DebugPrintf("Status: %s\n", OneLogLine(zText).c_str());
    }
    mpStatusText->setText(text);
    mpStatusText->setAccessibleDescription(text);
    mpStatusText->setCursorPosition(0);
}

std::string Controller::ErrorText(const SocketError& zError) {
    return FormatString("%s (%s)", Translated(zError.description).c_str(),
                        Translated(zError.localizedFailureReason()).c_str());
}

std::unique_ptr<ModalSession> Controller::InitProgressDialogue(const std::string& zTitle) {
    mpAttention->Begin();
    auto session = std::make_unique<ModalSession>(*progressDlg, kProgressDelay);
    progressDlg->Init(zTitle);
    CentreOverWindow(*progressDlg);
    return session;
}

void Controller::CentreOverWindow(QWidget& zrDialog) const {
    // Frames are placed here, and those of both windows are alike.
    const QSize apart = (mrWindow.size() - zrDialog.size()) / 2;
    zrDialog.move(mrWindow.pos() + QPoint(apart.width(), apart.height()));
}

void Controller::CloseProgress(ModalSession& zrSession) {
    zrSession.End();
    progressDlg->ShowNow();
    progressDlg->close();
    mpAttention->End();
}

// --- Waiting for the client ---

/// The client has nothing more to do, and what it did has left the queue of the socket. Else operation would
/// be queued on operation, and people be told of files as sent that a lost connection takes along.
bool Controller::IsAllDone() const {
    return mpSocket->GetState() == FTS_IDLE && !mClientSockets.front()->HasWrites();
}

bool Controller::OperationEnded() const {
    return !IsConnected() || mpSocket->GetState() == FTS_ERROR || IsAllDone() || !GetLastError().empty();
}

Controller::eReply Controller::CheckForReply(ModalSession* zpSession) {
    if (!IsConnected()) {
        return FailedOrDisconnected;
    }
    if (zpSession != nullptr) {
        zpSession->RunOnce();
    }
    if (!IsConnected()) { // lost within the session's turn, where a reset client passes for an idle one
        return FailedOrDisconnected;
    }
    if (mpSocket->GetState() == FTS_ERROR) {
        DisconnectDevice(mpSocket->GetErrorStr());
        return FailedOrDisconnected;
    }
    if (IsAllDone()) {
        return Done;
    }
    if (progressDlg->GetCancelled()) {
        return Cancelled;
    }
    if (!GetLastError().empty()) {
        return FailedOrDisconnected;
    }
    RunLoop::WaitRound([this] { return OperationEnded() || progressDlg->GetCancelled(); });
    return StillWaiting;
}

Controller::eReply Controller::WaitForReply() {
    const QDeadlineTimer patience(kCancelPatience);
    while (!patience.hasExpired()) {
        if (!IsConnected()) {
            return FailedOrDisconnected;
        }
        if (mpSocket->GetState() == FTS_ERROR) {
            DisconnectDevice(mpSocket->GetErrorStr());
            return FailedOrDisconnected;
        }
        if (mpSocket->GetState() == FTS_IDLE) {
            return Done;
        }
        if (!GetLastError().empty()) {
            return FailedOrDisconnected;
        }
        RunLoop::WaitRound([this, &patience] { return OperationEnded() || patience.hasExpired(); });
    }
    return StillWaiting;
}

/// Waits for a text reply; one that people cancel is given time to end. zBeforeStep shows how far it is.
Controller::eReply Controller::AwaitReply(ModalSession* zpSession, const std::function<void()>& zBeforeStep) {
    eReply reply = StillWaiting;
    while (reply == StillWaiting) {
        if (zBeforeStep) {
            zBeforeStep();
        }
        reply = CheckForReply(zpSession);
    }
    if (reply == Cancelled && WaitForReply() == StillWaiting) {
        SetStatusText("Waiting for operation to finish");
    }
    return reply;
}

bool Controller::IsClientBusy() const {
    return mpSocket->GetState() != FTS_IDLE && mpSocket->GetState() != FTS_ERROR;
}

bool Controller::GetDirectoryContents(ModalSession* zpSession, const std::string& zPath,
                                      cDeviceDirList* zpDirList) {
    // While the client is busy, the end of what it is doing would pass for the end of this listing. One that
    // has failed unnoticed is not busy: the wait below then ends the connection with the reason.
    if (!IsConnected() || IsClientBusy() || !mpSocket->CommandFits(cClientProtocol::eCommand::kDir, zPath)) {
        return false;
    }
    mpSocket->GetDir(zPath, zpDirList == nullptr ? &mCurrentDirList : zpDirList);
    const eReply reply = AwaitReply(zpSession);
    mpSocket->SetDirList(nullptr);
    return reply == Done;
}

bool Controller::GetDirRecurseInfo(const std::string& zPath, std::uint32_t& zrFileSize,
                                   std::int32_t& zrNumFiles) {
    if (!IsConnected() || !mpSocket->CommandFits(cClientProtocol::eCommand::kDirRecurse, zPath) ||
        !mpSocket->GetDirRecurse(zPath)) {
        return false;
    }
    const auto session = InitProgressDialogue(Translated("Reading Folder Contents"));
    AwaitReply(session.get());
    zrFileSize = static_cast<std::uint32_t>(mpSocket->GetDirRecurseSize());
    zrNumFiles = mpSocket->GetDirRecurseNumFiles();
    CloseProgress(*session);
    return true;
}

/// Ends a transfer whose wait has failed, so that no temporary file stays, and tells why it failed.
std::string Controller::LostTransferText() {
    std::string text = mClientFailureCounts ? mpSocket->GetErrorStr() : std::string();
    if (text.empty()) {
        text = mLastSocketError.empty() ? Translated("Connection has been closed") : mLastSocketError;
    }
    mpSocket->Reset();
    if (IsConnected()) {
        DisconnectDevice(text);
    }
    return text;
}
