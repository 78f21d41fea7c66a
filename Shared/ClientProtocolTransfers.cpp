#include "ClientProtocol.h"
#include "CommonUtils.h"
#include "CommonUtils_OSX.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <new>
#include <system_error>

namespace {

constexpr const char* kSource = "Shared/ClientProtocol";

constexpr std::uint32_t kMaxDownloadSize = 1073741824;
constexpr std::uint32_t kSliceLength = 131072;
constexpr std::size_t kLengthPrefix = 4;

constexpr const char* kBusy = "Waiting for operation to finish";
constexpr const char* kCannotOpen = "Could not open file";
constexpr const char* kCannotRead = "Couldn't read file";
constexpr const char* kTooLarge = "File too large";
constexpr const char* kCannotWrite = " - failed to write file";

bool IsLeftover(const std::string& zPath) {
    std::error_code ignored;
    const std::filesystem::file_type type = std::filesystem::symlink_status(zPath, ignored).type();
    return type == std::filesystem::file_type::regular || type == std::filesystem::file_type::symlink;
}

/// Makes a file that did not exist before. A leftover of an earlier download gives way, and so does a link
/// (not what it names); exclusive creation then follows no link that appears in between.
std::FILE* CreateTempFile(const std::string& zPath) {
    if (zPath.find('\0') != std::string::npos) {
        return nullptr; // it would name another file
    }
    errno = 0; // a path too long to be tried at all leaves it alone
    std::FILE* pFile = OpenFile(zPath, "wbx");
    if (pFile == nullptr && errno == EEXIST && IsLeftover(zPath) && ::unlink(zPath.c_str()) == 0) {
        pFile = OpenFile(zPath, "wbx");
    }
    return pFile;
}

std::uint32_t ReadLittleEndian(const char* zpBytes) {
    std::uint32_t value = 0;
    for (std::size_t index = kLengthPrefix; index-- > 0;) {
        value = value << 8 | static_cast<unsigned char>(zpBytes[index]);
    }
    return value;
}

} // namespace

void cClientProtocol::sFileCloser::operator()(std::FILE* zpFile) const {
    static_cast<void>(std::fclose(zpFile));
}

std::string cClientProtocol::Download(const std::string& zLocalPath, const std::string& zDeviceDir,
                                      const std::string& zName) {
    if (!BeginCommand()) {
        return kBusy;
    }
    mLocalFileName = zLocalPath;
    mTempFileName = zLocalPath + ".tmp";
    mDeviceFileName = zName;
    mpFile.reset(CreateTempFile(mTempFileName));
    if (!mpFile) {
        mTempFileName.clear();
        return kCannotOpen;
    }
    SendCommand(FTS_SEND_DOWNLOAD,
                FormatString(FormatOf(eCommand::kDownload), DevicePath(zDeviceDir, zName).c_str()));
    return {};
}

std::string cClientProtocol::Upload(const std::string& zLocalPath, const std::string& zDeviceDir,
                                    const std::string& zName) {
    if (!BeginCommand()) {
        return kBusy;
    }
    mTempFileName.clear();
    mLocalFileName = zLocalPath;
    mDeviceFileName = zName;
    mpFile.reset(OpenRegularFile(zLocalPath));
    if (!mpFile) {
        return kCannotOpen;
    }
    std::string error = ReadUploadFile();
    mpFile.reset();
    if (!error.empty()) {
        return error;
    }
    mBytesSent = 0;
    SendCommand(FTS_SEND_UPLOAD,
                FormatString(FormatOf(eCommand::kUpload), DevicePath(zDeviceDir, zName).c_str(),
                             static_cast<int>(mSendFileSize)));
    return {};
}

/// Reads mpFile whole into mpSendBuffer; returns the reason where that is not possible.
std::string cClientProtocol::ReadUploadFile() {
    static_cast<void>(std::fseek(mpFile.get(), 0, SEEK_END));
    const long size = std::ftell(mpFile.get());
    std::rewind(mpFile.get());
    if (size < 0) {
        return kCannotRead;
    }
    if (size == 0) {
        return "File zero size";
    }
    if (size > kMaxUploadSize) {
        return kTooLarge;
    }
    Require(mpSendBuffer == nullptr, kSource, "mpSendBuffer == NULL");
    const auto length = static_cast<std::size_t>(size);
    mpSendBuffer.reset(new (std::nothrow) char[length]);
    if (!mpSendBuffer) {
        return kTooLarge;
    }
    if (std::fread(mpSendBuffer.get(), 1, length, mpFile.get()) != length) {
        mpSendBuffer.reset();
        return kCannotRead;
    }
    mSendFileSize = static_cast<std::uint32_t>(length);
    return {};
}

void cClientProtocol::SendSlice() {
    const int length = static_cast<int>(std::min(mSendFileSize - mBytesSent, kSliceLength));
    const int sent = Send(mpSendBuffer.get() + mBytesSent, length);
    if (mState != FTS_UPLOADING) {
        return; // the connection broke inside Send
    }
    mBytesSent += static_cast<std::uint32_t>(std::clamp(sent, 0, length));
    if (mBytesSent == mSendFileSize) {
        EndOperation(false);
    }
}

void cClientProtocol::ReceiveBody(const char* zpData, std::size_t zLength) {
    if (mReceiveFileSize != 0) {
        WriteFileData(zpData, zLength);
        return;
    }
    Require(zLength >= kLengthPrefix, kSource, "zReceivedLength >= 4");
    mReceiveFileSize = ReadLittleEndian(zpData);
    if (mReceiveFileSize == 0) {
        EndOperation(true);
    } else if (mReceiveFileSize > kMaxDownloadSize) {
        Abort(mLocalFileName + " too large to download");
    } else {
        WriteFileData(zpData + kLengthPrefix, zLength - kLengthPrefix);
    }
}

void cClientProtocol::WriteFileData(const char* zpData, std::size_t zLength) {
    if (zLength == 0) {
        return;
    }
    mBytesReceived += static_cast<std::uint32_t>(zLength);
    if (std::fwrite(zpData, 1, zLength, mpFile.get()) != zLength) {
        Abort(mLocalFileName + kCannotWrite);
    } else if (mBytesReceived >= mReceiveFileSize) {
        Require(mBytesReceived == mReceiveFileSize, kSource, "mBytesReceived == mReceiveFileSize");
        EndOperation(false);
    }
}

/// Closes mpFile and stores or removes a download; false, with the failure text, where storing it did not
/// work. The last bytes reach the disk only with the close, so that its failure is a failed write.
bool cClientProtocol::FinishFile(bool zFailed) {
    if (!mpFile) {
        return true;
    }
    const bool isClosed = std::fclose(mpFile.release()) == 0;
    if (mTempFileName.empty()) {
        return true;
    }
    if (!zFailed && isClosed && IsFolder(mLocalFileName)) {
        return true;
    }
    if (!zFailed && isClosed && IsRegularFile(mTempFileName) && RenameFile(mTempFileName, mLocalFileName)) {
        mHasStoredFile = true;
        return true;
    }
    RemoveTempFile();
    if (zFailed) {
        return true;
    }
    mErrorStr = mLocalFileName + kCannotWrite;
    return false;
}

/// Only what is no folder: people may have put one there meanwhile.
void cClientProtocol::RemoveTempFile() const {
    ::unlink(mTempFileName.c_str());
}
