#include "ScriptedDevice.h"

#include <QtCore/QCoreApplication>
#include <QtNetwork/QHostAddress>

#include <sys/socket.h>

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace {

constexpr const char* kDate = "2024-05-06 07:08:09";
constexpr int kWholePiece = 1 << 20;

/// Tests run side by side, and the port is fixed, so each process takes an address of its own.
std::string OwnLoopbackAddress(int zNumber) {
    const auto process = static_cast<unsigned long>(QCoreApplication::applicationPid());
    const unsigned long octet2 = 10UL + 70UL * static_cast<unsigned long>(zNumber) + (process >> 16) % 70;
    return "127." + std::to_string(octet2) + "." + std::to_string(process >> 8 & 255UL) + "." +
           std::to_string(process & 255UL);
}

std::string ParentOf(const std::string& zPath) {
    const std::size_t slash = zPath.rfind('/');
    return slash == std::string::npos ? "" : zPath.substr(0, slash);
}

std::string NameOf(const std::string& zPath) {
    return zPath.substr(zPath.rfind('/') + 1);
}

/// The first quoted value of a command, without the root folder that every path starts with.
std::string PathIn(const std::string& zCommand) {
    const std::size_t begin = zCommand.find('"') + 1;
    const std::string path = zCommand.substr(begin, zCommand.find('"', begin) - begin);
    return path.starts_with("User/") ? path.substr(5) : path;
}

qsizetype LengthIn(const std::string& zCommand) {
    static constexpr std::string_view kLength = "Length = \"";
    return static_cast<qsizetype>(std::stol(zCommand.substr(zCommand.find(kLength) + kLength.size())));
}

bool IsInside(const std::string& zPath, const std::string& zFolder) {
    return zFolder.empty() || zPath.starts_with(zFolder + "/");
}

} // namespace

ScriptedDevice::ScriptedDevice(int zNumber) : mAddress(OwnLoopbackAddress(zNumber)) {
    QObject::connect(&mServer, &QTcpServer::newConnection, &mServer, [this] { OnConnection(); });
    QObject::connect(&mSendTimer, &QTimer::timeout, &mSendTimer, [this] { OnWantsToSend(); });
    SwitchOn();
}

void ScriptedDevice::SwitchOn() {
    if (!mServer.listen(QHostAddress(QString::fromStdString(mAddress)), kPort)) {
        throw std::runtime_error("the scripted device cannot listen at " + mAddress);
    }
}

void ScriptedDevice::SwitchOff() {
    mServer.close();
}

// --- The tree ---

void ScriptedDevice::AddFolder(const std::string& zPath, const std::string& zRights) {
    mEntries.push_back({zPath, true, "", zRights, 1});
}

void ScriptedDevice::AddFile(const std::string& zPath, const std::string& zContent,
                             const std::string& zRights, std::optional<long> zAnnouncedSize) {
    const long size = zAnnouncedSize.value_or(static_cast<long>(zContent.size()));
    mEntries.push_back({zPath, false, zContent, zRights, size});
}

void ScriptedDevice::Remove(const std::string& zPath) {
    std::erase_if(mEntries,
                  [&](const sEntry& zEntry) { return zEntry.path == zPath || IsInside(zEntry.path, zPath); });
}

void ScriptedDevice::SetFolderRights(const std::string& zPath, const std::string& zRights) {
    if (zPath.empty()) {
        mRootRights = zRights;
    }
    for (sEntry& entry : mEntries) {
        entry.rights = entry.path == zPath ? zRights : entry.rights;
    }
}

const ScriptedDevice::sEntry* ScriptedDevice::Find(const std::string& zPath) const {
    const auto found = std::ranges::find(mEntries, zPath, &sEntry::path);
    return found == mEntries.end() ? nullptr : &*found;
}

std::optional<std::string> ScriptedDevice::Content(const std::string& zPath) const {
    const sEntry* file = Find(zPath);
    return file == nullptr || file->isFolder ? std::nullopt : std::optional(file->content);
}

// --- Texts ---

std::string ScriptedDevice::DirCommand(const std::string& zPath) {
    return R"(<cmd dir>Path = "User/)" + zPath + R"("</cmd>)";
}

std::string ScriptedDevice::DownloadCommand(const std::string& zPath) {
    return R"(<cmd download>Name = "User/)" + zPath + R"("</cmd>)";
}

std::string ScriptedDevice::UploadCommand(const std::string& zPath, std::size_t zLength) {
    return R"(<cmd upload>Name = "User/)" + zPath + R"(" Length = ")" + std::to_string(zLength) +
           R"("</cmd>)";
}

std::string ScriptedDevice::DeleteCommand(const std::string& zPath) {
    return R"(<cmd del>Path = "User/)" + zPath + R"("</cmd>)";
}

std::string ScriptedDevice::MakeDirCommand(const std::string& zPath) {
    return R"(<cmd md>Path = "User/)" + zPath + R"("</cmd>)";
}

std::string ScriptedDevice::LengthPrefix(std::size_t zLength) {
    std::string prefix;
    for (unsigned shift = 0; shift < 32; shift += 8) {
        prefix += static_cast<char>(zLength >> shift & 255U);
    }
    return prefix;
}

std::string ScriptedDevice::DirReply(const std::string& zPath) const {
    const sEntry* folder = Find(zPath);
    std::string reply = R"(<dir> Rights = ")" + (folder == nullptr ? mRootRights : folder->rights) + "\"\n";
    for (const sEntry& entry : mEntries) {
        if (ParentOf(entry.path) == zPath) {
            reply += R"(<item Name = ")" + NameOf(entry.path) + R"(" Type = ")" +
                     (entry.isFolder ? "Dir" : "File") + R"(" Date = ")" + kDate + R"(" Size = ")" +
                     std::to_string(entry.announcedSize) + R"(" Rights = ")" + entry.rights + "\">\n";
        }
    }
    return reply + "</dir>";
}

std::string ScriptedDevice::DirRecurseReply(const std::string& zPath) const {
    long size = 0;
    int count = 0;
    for (const sEntry& entry : mEntries) {
        if (!entry.isFolder && IsInside(entry.path, zPath)) {
            size += entry.announcedSize;
            ++count;
        }
    }
    return R"(<dir_recurse>Size = ")" + std::to_string(size) + R"(" NumFiles = ")" + std::to_string(count) +
           R"("</dir_recurse>)";
}

std::string ScriptedDevice::DownloadReply(const std::string& zPath) const {
    const sEntry* file = Find(zPath);
    const std::string content = file == nullptr ? "" : file->content;
    return LengthPrefix(content.size()) + content;
}

std::string ScriptedDevice::AnswerFromTree(const std::string& zCommand) const {
    const std::string path = PathIn(zCommand);
    if (zCommand.starts_with("<cmd dir>")) {
        return DirReply(path);
    }
    if (zCommand.starts_with("<cmd dir_recurse>")) {
        return DirRecurseReply(path);
    }
    return zCommand.starts_with("<cmd download>") ? DownloadReply(path) : "";
}

/// What a command without a reply does.
void ScriptedDevice::Change(const std::string& zCommand) {
    const std::string path = PathIn(zCommand);
    if (zCommand.starts_with("<cmd del>")) {
        Remove(path);
    } else if (zCommand.starts_with("<cmd md>")) {
        AddFolder(path);
    }
}

// --- The connection ---

bool ScriptedDevice::HasConnection() const {
    return mpConnection != nullptr && mpConnection->state() == QAbstractSocket::ConnectedState;
}

void ScriptedDevice::OnConnection() {
    while (QTcpSocket* connection = mServer.nextPendingConnection()) {
        ++mConnectionCount;
        mListening = true;
        delete mpConnection;
        mpConnection = connection;
        mIncoming.clear();
        mUploadLength = 0;
        mOutgoing.clear();
        connection->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        QObject::connect(connection, &QTcpSocket::readyRead, &mServer, [this] { OnReadable(); });
        Send(mWelcome);
    }
}

void ScriptedDevice::OnReadable() {
    if (!mListening) {
        return;
    }
    mIncoming += mpConnection->readAll();
    while (mUploadLength > 0 ? TakeBody() : TakeCommand()) {
    }
}

bool ScriptedDevice::TakeBody() {
    if (mIncoming.size() < mUploadLength) {
        return false;
    }
    Store(mUploadPath, mIncoming.left(mUploadLength).toStdString());
    mIncoming.remove(0, mUploadLength);
    mUploadLength = 0;
    return true;
}

bool ScriptedDevice::TakeCommand() {
    static constexpr std::string_view kEnd = "</cmd>";
    const qsizetype end = mIncoming.indexOf(kEnd.data());
    if (end < 0) {
        return false;
    }
    const qsizetype length = end + static_cast<qsizetype>(kEnd.size());
    const std::string command = mIncoming.left(length).toStdString();
    mIncoming.remove(0, length);
    mCommands.push_back(command);
    if (command.starts_with("<cmd upload>")) {
        mUploadPath = PathIn(command);
        mUploadLength = LengthIn(command);
    }
    Answer(command);
    return true;
}

/// As a device does, with the folders on the way.
void ScriptedDevice::Store(const std::string& zPath, const std::string& zContent) {
    for (std::size_t slash = zPath.find('/'); slash != std::string::npos;
         slash = zPath.find('/', slash + 1)) {
        if (Find(zPath.substr(0, slash)) == nullptr) {
            AddFolder(zPath.substr(0, slash));
        }
    }
    Remove(zPath);
    AddFile(zPath, zContent);
}

void ScriptedDevice::StopListening() {
    mListening = false;
    if (mpConnection != nullptr) {
        mpConnection->setReadBufferSize(1);
    }
}

void ScriptedDevice::ListenAgain() {
    mListening = true;
    if (HasConnection()) {
        mpConnection->setReadBufferSize(0);
        OnReadable();
    }
}

void ScriptedDevice::Answer(const std::string& zCommand) {
    const std::optional<std::string> special = mOnCommand ? mOnCommand(zCommand) : std::nullopt;
    if (!special) {
        Change(zCommand);
    }
    Send(special ? *special : AnswerFromTree(zCommand));
}

void ScriptedDevice::Send(const std::string& zBytes) {
    mOutgoing += QByteArray::fromStdString(zBytes);
    mSendTimer.start(0);
}

void ScriptedDevice::Release() {
    mHolding = false;
    mSendTimer.start(0);
}

void ScriptedDevice::OnWantsToSend() {
    if (mHolding || mOutgoing.isEmpty() || !HasConnection()) {
        mSendTimer.stop();
        return;
    }
    if (mpConnection->bytesToWrite() == 0) {
        const QByteArray piece = mOutgoing.left(mPieceSize > 0 ? mPieceSize : kWholePiece);
        mOutgoing.remove(0, piece.size());
        mpConnection->write(piece);
        mpConnection->flush();
    }
}

void ScriptedDevice::DropConnection() {
    if (mpConnection != nullptr) {
        mpConnection->close();
    }
}

void ScriptedDevice::ResetConnection() {
    if (mpConnection != nullptr) {
        const linger atOnce{1, 0};
        ::setsockopt(static_cast<int>(mpConnection->socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce,
                     sizeof atOnce);
        mpConnection->abort();
    }
}

int ScriptedDevice::CountOf(const std::string& zPart) const {
    return static_cast<int>(std::ranges::count_if(
        mCommands, [&](const std::string& zCommand) { return zCommand.find(zPart) != std::string::npos; }));
}
