#include "Controller.h"

#include "CommonUtils.h"
#include "DeviceTableView.h"
#include "RunLoop.h"
#include "SelectController.h"
#include "WidgetText.h"

#include <algorithm>

namespace {

using namespace std::chrono_literals;

constexpr char kSource[] = "Mac/Classes/Controller";
constexpr char kOneSocket[] = "[mClientSockets count] == 1";
constexpr char kNoSocket[] = "[mClientSockets count] == 0";

constexpr auto kSlice = 100ms;

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
        ConnectDevice();
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
    tableView->setFocus(); // the arrow keys and Return go on from here
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
