#include "Controller.h"

#include "CommonUtils.h"
#include "DeviceTableView.h"
#include "RunLoop.h"
#include "SelectController.h"
#include "WidgetText.h"

#include <QtCore/QDeadlineTimer>
#include <QtWidgets/QLineEdit>

#include <algorithm>
#include <limits>

namespace {

using namespace std::chrono_literals;

constexpr char kSource[] = "Mac/Classes/Controller";
constexpr char kOneSocket[] = "[mClientSockets count] == 1";
constexpr char kNoSocket[] = "[mClientSockets count] == 0";

/// Shorter operations than this open no progress window, so that opening a folder does not flicker.
constexpr auto kProgressDelay = 200ms;
constexpr auto kSlice = 100ms;
constexpr auto kCancelPatience = 4s;

/// What this program announces itself as; nothing listens on the port.
constexpr int kDesktopType = 1;
constexpr std::int32_t kDesktopPort = 10241;

constexpr double kNoTimeout = -1.0;
constexpr long kTag = 0;

} // namespace

// --- Connecting ---

void Controller::OnConnectButton() {
    mSuperUser = false;
    if (IsConnected()) {
        DisconnectDevice();
    } else if (ChooseDevice()) {
        mSuperUser = true;
        mFileTypes = std::string(1, '*');
        if (ConnectDevice()) {
            tableView->setFocus(); // the arrow keys and Return go on from here
        }
    }
    UpdateControls();
}

/// Discovery that could not even begin is begun anew whenever the dialog asks for it.
bool Controller::EnsureListening() {
    if (!discover) {
        discover = Discover::initWithType(kDesktopType, kDesktopPort);
    }
    return discover && discover->EnsureListening();
}

const std::vector<HostRecord>& Controller::GetDeviceList() const {
    static const std::vector<HostRecord> none;
    return discover ? discover->GetDeviceList() : none;
}

bool Controller::ChooseDevice() {
    SelectController dialog(&mrWindow);
    dialog.Init(this);
    ModalSession session(dialog);
    while (dialog.GetResult() == 0 && !mTerminating) {
        if (session.RunOnce() != ModalSession::eModalResponse::Continues) {
            break;
        }
        RunLoop::RunSlice(kSlice, [&] { return dialog.GetResult() != 0 || mTerminating; });
    }
    session.End();
    const bool chosen = dialog.GetResult() == 1 && !mTerminating;
    if (chosen) {
        mIPAddressStr = dialog.GetIPAddressStr();
        mPortNumber = dialog.GetPortNumber();
        mDeviceName = dialog.GetDeviceName();
    }
    dialog.close();
    return chosen;
}

bool Controller::ConnectDevice(const std::string& zStartDir) {
    DisconnectDevice();
    Require(mClientSockets.empty(), kSource, kNoSocket);
    mLastSocketError.clear();
    mpAdmission->Clear();
    OpenSocket();
    mpSocket->Connect();

    const std::string message = Filled("Searching for '%s'", mIPAddressStr.c_str());
    const auto session = InitProgressDialogue(message);
    progressDlg->SetProgress(message, 0.0F);
    const bool connected = WaitForWelcome(*session);
    CloseProgress(*session);
    if (connected) {
        SetCurrentDirectory(zStartDir);
    }
    return connected;
}

void Controller::OpenSocket() {
    auto socket = std::make_shared<AsyncSocket>(this);
    std::optional<SocketError> error;
    // A call that fails at once sends no callback, so its socket must not be waited for.
    if (socket->connectToHost(mIPAddressStr, static_cast<std::uint16_t>(mPortNumber), error)) {
        mClientSockets.push_back(std::move(socket));
    } else if (error) {
        mLastSocketError = ErrorText(*error);
    }
}

/// There is no time-out: people see the progress window and decide when they have waited long enough.
bool Controller::WaitForWelcome(ModalSession& zrSession) {
    const auto somethingHappened = [this] {
        return mpSocket->GetState() == FTS_IDLE || !IsConnected() || progressDlg->GetCancelled() ||
               !GetLastError().empty();
    };
    while (true) {
        if (zrSession.RunOnce() != ModalSession::eModalResponse::Continues) {
            DisconnectDevice();
            return false;
        }
        progressDlg->SetProgress("", 0.0F);
        if (IsConnected() && mpSocket->GetState() == FTS_IDLE) {
            GreetDevice();
            return true;
        }
        if (progressDlg->GetCancelled()) {
            DisconnectDevice();
            return false;
        }
        if (!GetLastError().empty() || !IsConnected()) {
            EndConnectionAttempt();
            return false;
        }
        RunLoop::WaitRound(somethingHappened);
    }
}

void Controller::GreetDevice() {
    mDeviceName = mpSocket->HasDeviceName() ? mpSocket->GetDeviceName() : mIPAddressStr;
    ShowConnected();
    UpdateControls();
}

void Controller::ShowConnected() {
    SetStatusText(Filled("Connected to '%s'", mDeviceName.c_str()));
}

void Controller::EndConnectionAttempt() {
    const std::string reason = GetLastError();
    DisconnectDevice(reason.empty() ? Translated("Connection has been closed") : reason);
    mClientFailureCounts = false;
}

bool Controller::DisconnectDevice() {
    mpSocket->Reset();
    return DisconnectDevice("");
}

bool Controller::DisconnectDevice(const std::string& zMessage) {
    SetStatusText(zMessage.empty() ? Translated("Press the 'Connect' button to begin") : zMessage);
    for (const auto& socket : std::vector(mClientSockets)) {
        socket->disconnect();
    }
    RemoveAllRows();
    UpdateControls();
    while (IsConnected()) {
        RunLoop::WaitRound([this] { return !IsConnected(); });
    }
    return true;
}

// --- What people are told ---

std::string Controller::GetLastError() const {
    if (!mLastSocketError.empty()) {
        return mLastSocketError;
    }
    return mClientFailureCounts ? mpSocket->GetErrorStr() : std::string();
}

void Controller::SetStatusText(const std::string& zText) {
    const QString text = ToWidgetText(TranslatedMessage(zText));
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

// --- Bytes ---

int Controller::SendBytes(const char* zpBytes, int zLength) {
    Require(mClientSockets.size() == 1, kSource, kOneSocket);
    mClientSockets.front()->writeData(QByteArray(zpBytes, zLength), kNoTimeout, kTag);
    return zLength;
}

bool Controller::HasSocket(const AsyncSocket& zrSocket) const {
    return std::any_of(mClientSockets.begin(), mClientSockets.end(),
                       [&](const auto& socket) { return socket.get() == &zrSocket; });
}

void Controller::onSocketDidConnectToHost(AsyncSocket& zrSocket, const std::string& zHost,
                                          std::uint16_t zPort) {
    DebugPrintf("didConnectToHost: %s port %d\n", zHost.c_str(), static_cast<int>(zPort));
    mLastSocketError.clear();
    Require(mClientSockets.size() == 1, kSource, kOneSocket);
    zrSocket.readDataWithTimeout(kNoTimeout, kTag);
}

void Controller::onSocketDidReadData(AsyncSocket& zrSocket, const QByteArray& zData, long /*zTag*/) {
    Require(mClientSockets.size() == 1, kSource, kOneSocket);
    if (HasSocket(zrSocket)) {
        const bool hadFailed = mpSocket->GetState() == FTS_ERROR;
        mpAdmission->Receive(zData.constData(), static_cast<int>(zData.size()));
        mClientFailureCounts |= !hadFailed && mpSocket->GetState() == FTS_ERROR;
    }
    zrSocket.readDataWithTimeout(kNoTimeout, kTag);
}

void Controller::onSocketDidWriteDataWithTag(AsyncSocket& zrSocket, long /*zTag*/) {
    if (HasSocket(zrSocket)) {
        mpSocket->Update();
    }
    if (!zrSocket.HasReads()) { // one is enough, however many writes there are
        zrSocket.readDataWithTimeout(kNoTimeout, kTag);
    }
}

void Controller::onSocketWillDisconnectWithError(AsyncSocket& /*zrSocket*/,
                                                 const std::optional<SocketError>& zError) {
    mLastSocketError = zError ? ErrorText(*zError) : std::string();
}

void Controller::onSocketDidDisconnect(AsyncSocket& zrSocket) {
    const auto found = std::find_if(mClientSockets.begin(), mClientSockets.end(),
                                    [&](const auto& socket) { return socket.get() == &zrSocket; });
    if (found != mClientSockets.end()) {
        // Alive until this call returns: it is the socket's own callback.
        const std::shared_ptr<AsyncSocket> released = *found;
        mClientSockets.erase(found);
        DisconnectDevice(GetLastError());
    }
    UpdateControls();
}

void Controller::onSocketDidAcceptNewSocket(AsyncSocket& /*zrSocket*/, AsyncSocket& /*zrNewSocket*/) {
    Require(false, kSource, "0");
}
