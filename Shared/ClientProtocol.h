#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct cDeviceDirList;

/// What the client is doing. Every operation starts in FTS_IDLE and ends there or in FTS_ERROR.
enum eClientState : std::int32_t {
    FTS_IDLE = 0,
    FTS_WELCOME = 1,
    FTS_SEND_DIR = 2,
    FTS_WAIT_DIR = 3,
    FTS_SEND_DIR_RECURSE = 4,
    FTS_WAIT_DIR_RECURSE = 5,
    FTS_SEND_UPLOAD = 6,
    FTS_UPLOADING = 7,
    FTS_SEND_DOWNLOAD = 8,
    FTS_DOWNLOADING = 9,
    FTS_SEND_MD = 10,
    FTS_SEND_DEL = 11,
    FTS_SEND_RENAME = 12,
    FTS_ERROR = 13
};

/// Flags of a rights text, as ParseRights gives them.
inline constexpr std::int32_t kRightCreate = 1;
inline constexpr std::int32_t kRightDelete = 2;
inline constexpr std::int32_t kRightReadOnly = 4;

/// The TCP port on which devices serve.
inline constexpr std::int32_t kDevicePort = 10240;

/// The largest file that an upload takes, in bytes.
inline constexpr std::int32_t kMaxUploadSize = 268435455;

/// The flags of a three-letter rights text such as "cd-"; each letter counts only in its own position.
/// A shorter text gives 0.
std::int32_t ParseRights(std::string_view zText);

/// Reads the quoted value that follows the first occurrence of zKey into zrOut. Without the key the first
/// quoted value of the text is taken; "" when no quote follows. Always reports success.
bool GetValue(std::string_view zText, std::string_view zKey, std::string& zrOut);

/// The same for a decimal number: leading digits count, garbage gives 0. An int keeps the low 32 bits.
bool GetIntValue(std::string_view zText, std::string_view zKey, std::int32_t& zrOut);
bool GetLongValue(std::string_view zText, std::string_view zKey, long& zrOut);

/// The client side of the device's file server. It runs one operation at a time and does no network
/// input or output itself: it hands bytes to Send and is fed through OnReceive. Its owner calls Update after
/// each completed write and polls GetState to learn when an operation has ended.
///
/// Bytes from a device belong into cReceiveAdmission, which checks what OnReceive merely asserts.
class cClientProtocol {
public:
    /// One file or folder on the device.
    struct cDeviceFileInfo {
        std::string mName; ///< no path
        std::string mDate; ///< as the device sent it, never parsed
        bool mIsFolder = false;
        std::int32_t mSize = 0;   ///< bytes
        std::int32_t mRights = 0; ///< flags of ParseRights
    };

    /// The commands of CommandFits.
    enum class eCommand { kDir, kDirRecurse, kMakeDir, kDelete, kDownload, kUpload };

    cClientProtocol();
    cClientProtocol(const cClientProtocol&) = delete;
    cClientProtocol& operator=(const cClientProtocol&) = delete;

    /// Hands bytes to the connection and returns how many it accepted.
    virtual int Send(const char* zpData, int zLength) = 0;

    /// Ends a running operation as failed.
    virtual ~cClientProtocol();

    /// Arms for the welcome that a device sends by itself. Requires FTS_IDLE.
    void Connect();

    /// Device paths are relative to the device's root folder, "" being that folder itself. Outside FTS_IDLE
    /// these do nothing. zpDirList is emptied at once, filled when the reply is complete, and must live
    /// until the operation has ended or SetDirList has named another list.
    void GetDir(const std::string& zPath, cDeviceDirList* zpDirList);
    void MakeDir(const std::string& zPath);
    void Delete(const std::string& zPath);
    void Rename(const std::string& zFrom, const std::string& zTo);

    /// Asks for size and number of the files in a folder tree; false when busy or not supported.
    bool GetDirRecurse(const std::string& zPath);

    /// Start a transfer of one file; "" when started, else the reason for the user. A download arrives in
    /// zLocalPath + ".tmp" and replaces zLocalPath in one step when it is whole.
    std::string Download(const std::string& zLocalPath, const std::string& zDeviceDir,
                         const std::string& zName);
    std::string Upload(const std::string& zLocalPath, const std::string& zDeviceDir,
                       const std::string& zName);

    /// Whether the command would be sent whole. A longer one is cut, and so names another path.
    /// zName is the file's name for a download or an upload; an upload counts with its longest length text.
    /// A path with a zero byte never fits: the command would end there.
    bool CommandFits(eCommand zCommand, const std::string& zPath, const std::string& zName = {}) const;

    /// Names another list for the reply of the running "dir" command. With null nobody wants the reply any
    /// more: cReceiveAdmission then reads it into a list of its own, while OnReceive alone asserts.
    void SetDirList(cDeviceDirList* zpDirList);

    /// Sends what is due: a command that was not accepted yet, or the next slice of an upload.
    void Update();

    /// Takes received bytes; zReceivedLength must be above 0.
    void OnReceive(const char* zpData, int zReceivedLength);

    /// Ends the current operation and goes to FTS_IDLE. A download is stored, or removed if zFailed; if it
    /// cannot be stored the state is FTS_ERROR.
    void EndOperation(bool zFailed);

    /// Ends the current operation as failed, with zText as the failure text, in FTS_ERROR.
    void Abort(const std::string& zText);

    /// Ends the current operation as failed, in FTS_IDLE and with no failure text of its own.
    void Reset();

    eClientState GetState() const { return mState; }

    /// Progress of the current transfer, 0 to 1; outside a transfer that of the last one.
    float GetProgress();

    /// The text of the last failure. A success does not clear it.
    const std::string& GetErrorStr() const { return mErrorStr; }

    /// The device's protocol version times 100; 0 before the first welcome.
    std::int32_t GetVersion() const { return mVersion; }

    /// The same as the device sent it.
    const std::string& GetVersionStr() const { return mVersionStr; }

    const std::string& GetDeviceName() const { return mDeviceName; }

    /// Whether the welcome named the device: without a "Name" key GetDeviceName gives another key's value.
    bool HasDeviceName() const { return mHasDeviceName; }

    const std::string& GetDeviceID() const { return mDeviceID; }

    /// The rights of the folder last listed.
    std::int32_t GetDirRights() const { return mDirRights; }

    /// Results of the last GetDirRecurse; the size is in bytes.
    std::int32_t GetDirRecurseSize() const { return mDirRecurseSize; }

    std::int32_t GetDirRecurseNumFiles() const { return mDirRecurseNumFiles; }

    /// Whether the device is new enough for GetDirRecurse.
    bool SupportsDirRecurse() const { return mVersion > 109; }

    /// A download that waits for its length prefix.
    bool IsAwaitingLength() const { return mState == FTS_DOWNLOADING && mReceiveFileSize == 0; }

    /// How many body bytes the current download still lacks; 0 without one.
    std::uint32_t GetBytesAwaited() const;

    /// Whether the last operation was a download that has arrived whole and stands under its local name.
    bool HasStoredFile() const { return mHasStoredFile; }

    /// A "dir" command is running and nobody wants its reply any more.
    bool IsListingUnclaimed() const { return mState == FTS_WAIT_DIR && mpDirList == nullptr; }

private:
    struct sReply;

    struct sFileCloser {
        void operator()(std::FILE* zpFile) const;
    };

    static const char* FormatOf(eCommand zCommand);
    std::string DevicePath(const std::string& zPath) const;
    std::string DevicePath(const std::string& zDir, const std::string& zName) const;
    bool BeginCommand();
    void ClearReceived();
    void SendCommand(eClientState zState, std::string zCommand);
    bool SendAll();
    void SendSlice();
    std::string ReadUploadFile();
    void ReceiveText(const char* zpData, std::size_t zLength);
    bool IsComplete(std::string_view zClosing);
    bool ParseReply(const sReply& zReply);
    void ParseWelcome(std::string_view zText);
    void ParseDir(std::string_view zText);
    void ParseDirRecurse(std::string_view zText);
    void ReceiveBody(const char* zpData, std::size_t zLength);
    void WriteFileData(const char* zpData, std::size_t zLength);
    bool FinishFile(bool zFailed);
    void RemoveTempFile() const;

    eClientState mState = FTS_IDLE;
    std::unique_ptr<std::FILE, sFileCloser> mpFile;
    // Not a vector: a body for which there is no memory is refused, and it need not be filled twice.
    std::unique_ptr<char[]> mpSendBuffer; // NOLINT(modernize-avoid-c-arrays)
    std::uint32_t mBytesSent = 0;
    std::uint32_t mSendFileSize = 0;
    std::uint32_t mBytesReceived = 0;
    std::uint32_t mReceiveFileSize = 0;
    std::string mReceiveBuffer;
    std::string mSendString;
    std::string mTempFileName;
    std::string mLocalFileName;
    std::string mDeviceFileName;
    std::string mRootDir;
    std::string mDirPath;
    cDeviceDirList* mpDirList = nullptr;
    std::int32_t mDirRecurseSize = 0;
    std::int32_t mDirRecurseNumFiles = 0;
    std::int32_t mDirRights = 0;
    std::string mErrorStr;
    float mProgress = 0;
    std::int32_t mVersion = 0;
    std::string mVersionStr;
    std::string mDeviceName;
    std::string mDeviceID;
    bool mHasDeviceName = false;
    bool mHasStoredFile = false;
    std::size_t mSearchedLength = 0; ///< bytes of mReceiveBuffer that hold no closing tag
};

/// The listing of one device folder.
struct cDeviceDirList {
    std::string mDir;                                    ///< as the caller of GetDir gave it
    std::vector<cClientProtocol::cDeviceFileInfo> mFile; ///< in the device's order
};
