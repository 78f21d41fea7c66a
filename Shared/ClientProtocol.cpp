#include "ClientProtocol.h"

#include "CommonUtils.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace {

constexpr const char* kSource = "Shared/ClientProtocol";

constexpr const char* kRenameFormat = R"(<cmd rename>From = "%s" To = "%s"</cmd>)";

// In the order of cClientProtocol::eCommand.
constexpr std::array kCommandFormats{
    R"(<cmd dir>Path = "%s"</cmd>)",      R"(<cmd dir_recurse>Path = "%s"</cmd>)",
    R"(<cmd md>Path = "%s"</cmd>)",       R"(<cmd del>Path = "%s"</cmd>)",
    R"(<cmd download>Name = "%s"</cmd>)", R"(<cmd upload>Name = "%s" Length = "%d"</cmd>)",
};

struct sCommandStep {
    eClientState mUnsent;
    eClientState mSent;
};

// A command without a reply is over once it is sent.
constexpr std::array kCommandSteps{
    sCommandStep{FTS_SEND_DIR, FTS_WAIT_DIR},     sCommandStep{FTS_SEND_DIR_RECURSE, FTS_WAIT_DIR_RECURSE},
    sCommandStep{FTS_SEND_UPLOAD, FTS_UPLOADING}, sCommandStep{FTS_SEND_DOWNLOAD, FTS_DOWNLOADING},
    sCommandStep{FTS_SEND_MD, FTS_IDLE},          sCommandStep{FTS_SEND_DEL, FTS_IDLE},
    sCommandStep{FTS_SEND_RENAME, FTS_IDLE},
};

float Fraction(std::uint32_t zPart, std::uint32_t zWhole) {
    return zWhole == 0 ? 0.0F : static_cast<float>(zPart) / static_cast<float>(zWhole);
}

} // namespace

cClientProtocol::cClientProtocol() : mRootDir("User") {}

cClientProtocol::~cClientProtocol() {
    EndOperation(true);
}

void cClientProtocol::Connect() {
    Require(mState == FTS_IDLE, kSource, "mState == FTS_IDLE");
    BeginCommand();
    mBytesSent = 0;
    mSendFileSize = 0;
    mState = FTS_WELCOME;
}

void cClientProtocol::GetDir(const std::string& zPath, cDeviceDirList* zpDirList) {
    if (!BeginCommand()) {
        return;
    }
    Require(zpDirList != nullptr, kSource, "zpDirList != NULL");
    mDirPath = zPath; // before the list is emptied, whose own path zPath may be
    mpDirList = zpDirList;
    mpDirList->mDir.clear();
    mpDirList->mFile.clear();
    SendCommand(FTS_SEND_DIR, FormatString(FormatOf(eCommand::kDir), DevicePath(mDirPath).c_str()));
}

bool cClientProtocol::GetDirRecurse(const std::string& zPath) {
    if (!SupportsDirRecurse() || !BeginCommand()) {
        return false;
    }
    mDirRecurseSize = 0;
    mDirRecurseNumFiles = 0;
    SendCommand(FTS_SEND_DIR_RECURSE,
                FormatString(FormatOf(eCommand::kDirRecurse), DevicePath(zPath).c_str()));
    return true;
}

void cClientProtocol::MakeDir(const std::string& zPath) {
    if (BeginCommand()) {
        SendCommand(FTS_SEND_MD, FormatString(FormatOf(eCommand::kMakeDir), DevicePath(zPath).c_str()));
    }
}

void cClientProtocol::Delete(const std::string& zPath) {
    if (BeginCommand()) {
        SendCommand(FTS_SEND_DEL, FormatString(FormatOf(eCommand::kDelete), DevicePath(zPath).c_str()));
    }
}

void cClientProtocol::Rename(const std::string& zFrom, const std::string& zTo) {
    if (BeginCommand()) {
        SendCommand(FTS_SEND_RENAME,
                    FormatString(kRenameFormat, DevicePath(zFrom).c_str(), DevicePath(zTo).c_str()));
    }
}

const char* cClientProtocol::FormatOf(eCommand zCommand) {
    return kCommandFormats.at(static_cast<std::size_t>(zCommand));
}

bool cClientProtocol::CommandFits(eCommand zCommand, const std::string& zPath,
                                  const std::string& zName) const {
    const bool isTransfer = zCommand == eCommand::kDownload || zCommand == eCommand::kUpload;
    const std::string path = isTransfer ? DevicePath(zPath, zName) : DevicePath(zPath);
    // The formats without a length ignore the surplus argument.
    const int length = std::snprintf(nullptr, 0, FormatOf(zCommand), path.c_str(), kMaxUploadSize);
    return length >= 0 && static_cast<std::size_t>(length) <= kMaxFormattedLength &&
           path.find('\0') == std::string::npos;
}

void cClientProtocol::SetDirList(cDeviceDirList* zpDirList) {
    mpDirList = zpDirList;
}

void cClientProtocol::Update() {
    if (mState == FTS_UPLOADING) {
        SendSlice();
        return;
    }
    const auto isDue = [this](const sCommandStep& zStep) { return zStep.mUnsent == mState; };
    const auto* const step = std::find_if(kCommandSteps.begin(), kCommandSteps.end(), isDue);
    // A connection that breaks inside Send may have ended the operation.
    if (step != kCommandSteps.end() && SendAll() && mState == step->mUnsent) {
        mState = step->mSent;
    }
}

void cClientProtocol::OnReceive(const char* zpData, int zReceivedLength) {
    Require(zReceivedLength > 0, kSource, "zReceivedLength > 0");
    const auto length = static_cast<std::size_t>(zReceivedLength);
    if (mState == FTS_DOWNLOADING) {
        ReceiveBody(zpData, length);
    } else {
        ReceiveText(zpData, length);
    }
}

void cClientProtocol::EndOperation(bool zFailed) {
    mBytesSent = 0;
    mSendFileSize = 0;
    mBytesReceived = 0;
    mReceiveFileSize = 0;
    ClearReceived();
    mDirPath.clear();
    mpDirList = nullptr;
    mpSendBuffer.reset();
    mState = FinishFile(zFailed) ? FTS_IDLE : FTS_ERROR;
    mTempFileName.clear();
}

void cClientProtocol::Abort(const std::string& zText) {
    mErrorStr = zText;
    EndOperation(true);
    mState = FTS_ERROR;
}

void cClientProtocol::Reset() {
    EndOperation(true);
}

float cClientProtocol::GetProgress() {
    if (mState == FTS_UPLOADING) {
        mProgress = Fraction(mBytesSent, mSendFileSize);
    } else if (mState == FTS_DOWNLOADING) {
        mProgress = Fraction(mBytesReceived, mReceiveFileSize);
    }
    mProgress = std::clamp(mProgress, 0.0F, 1.0F);
    return mProgress;
}

std::uint32_t cClientProtocol::GetBytesAwaited() const {
    return mState == FTS_DOWNLOADING ? mReceiveFileSize - mBytesReceived : 0;
}

std::string cClientProtocol::DevicePath(const std::string& zPath) const {
    std::string path = mRootDir;
    AddTrailingSeparator(path);
    return path + zPath;
}

std::string cClientProtocol::DevicePath(const std::string& zDir, const std::string& zName) const {
    std::string path = DevicePath(zDir);
    AddTrailingSeparator(path);
    return path + zName;
}

bool cClientProtocol::BeginCommand() {
    if (mState != FTS_IDLE) {
        return false;
    }
    Require(mpFile == nullptr, kSource, "mpFile == NULL");
    mBytesReceived = 0;
    mReceiveFileSize = 0;
    mHasStoredFile = false;
    ClearReceived();
    return true;
}

void cClientProtocol::ClearReceived() {
    mReceiveBuffer.clear();
    mSearchedLength = 0;
}

void cClientProtocol::SendCommand(eClientState zState, std::string zCommand) {
    mSendString = std::move(zCommand);
    mState = zState;
    Update();
}

bool cClientProtocol::SendAll() {
    const int length = static_cast<int>(mSendString.size());
    return length == 0 || Send(mSendString.data(), length) == length;
}
