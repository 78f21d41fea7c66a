#include "Session.h"

#include <QtNetwork/QHostAddress>

#include <algorithm>
#include <utility>

namespace {

constexpr qint64 kMaxPendingOutput = 262144;
constexpr qint64 kMaxPendingInput = 262144;
constexpr qint64 kCommandPiece = 4096;
constexpr std::size_t kDownloadPiece = 65536;
constexpr qint64 kUploadPiece = kMaxPendingInput; // all that may wait, so that one write is enough

constexpr std::string_view kNoRights = "---";
constexpr const char* kNotAllowed = "not allowed";

std::string DescribePeer(const QTcpSocket& socket) {
    return socket.peerAddress().toString().toStdString() + ':' + std::to_string(socket.peerPort());
}

} // namespace

Session::Session(QTcpSocket& socket, const Service& service, QObject* parent)
    : QObject(parent), mSocket(socket), mService(service), mPeer(DescribePeer(socket)) {
    mSocket.setParent(this);
    mSocket.setReadBufferSize(kMaxPendingInput);
    mSocket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    mSocket.setSocketOption(QAbstractSocket::KeepAliveOption, 1);
    connect(&mSocket, &QTcpSocket::readyRead, this, &Session::Advance);
    connect(&mSocket, &QTcpSocket::bytesWritten, this, &Session::Advance);
    connect(&mSocket, &QTcpSocket::disconnected, this, &Session::OnDisconnected);
    Note("connected");
    Reply(FormatWelcome(mService.identity));
}

void Session::Advance() {
    while (Step()) {
    }
}

/// Does one piece of work; false when there is nothing to do before the next event.
bool Session::Step() {
    if (mSocket.state() == QAbstractSocket::UnconnectedState || mSocket.bytesToWrite() >= kMaxPendingOutput) {
        return false;
    }
    if (mDownload) {
        return SendPiece();
    }
    return mBodyLeft > 0 ? TakeBody() : TakeCommand();
}

bool Session::SendPiece() {
    const std::string piece = mDownload->ReadPiece(kDownloadPiece);
    if (piece.empty()) {
        Drop("the file has become shorter than announced");
        return false;
    }
    Reply(piece);
    if (mDownload->Remaining() == 0) {
        Note("sent " + std::to_string(mDownload->Length()) + " bytes");
        mDownload.reset();
    }
    return true;
}

bool Session::TakeBody() {
    if (mInput.empty() && !Refill(kUploadPiece)) {
        return false;
    }
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(mInput.size(), mBodyLeft));
    if (mUpload) {
        mUpload->Write(std::string_view(mInput).substr(0, count));
    }
    mInput.erase(0, count);
    mBodyLeft -= count;
    if (mBodyLeft == 0) {
        FinishUpload();
    }
    return true;
}

bool Session::TakeCommand() {
    using Kind = ParseResult::Kind;
    const ParseResult result = ParseCommand(mInput);
    mInput.erase(0, result.consumed);
    switch (result.kind) {
    case Kind::NeedMore:
        return Refill(kCommandPiece);
    case Kind::NoCommand:
        NoteForeignBytes();
        return true;
    case Kind::NotUnderstood:
        Note(result.command.text);
        NoteFailure("not understood");
        return true;
    case Kind::TooLong:
        Drop("command without an end");
        return false;
    case Kind::Parsed:
        mForeignNoted = false;
        Note(result.command.text);
        Run(result.command);
        return true;
    }
    return false;
}

/// Moves received bytes behind mInput; false when there are none.
bool Session::Refill(qint64 count) {
    const std::size_t before = mInput.size();
    const qint64 available = std::min(count, mSocket.bytesAvailable());
    mInput.resize(before + static_cast<std::size_t>(available));
    const qint64 got = std::max<qint64>(mSocket.read(mInput.data() + before, available), 0);
    mInput.resize(before + static_cast<std::size_t>(got));
    return got > 0;
}

void Session::OnDisconnected() {
    if (mBodyLeft > 0) {
        NoteFailure("upload broken off");
    }
    if (mDownload) {
        NoteFailure("download broken off");
    }
    mUpload.reset();
    mDownload.reset();
    Note("disconnected");
    deleteLater();
}

void Session::Run(const Command& command) {
    switch (command.verb) {
    case Verb::Dir:
        return RunDir(command);
    case Verb::DirRecurse:
        return RunDirRecurse(command);
    case Verb::MakeDir:
        return RunMakeDir(command);
    case Verb::Delete:
        return RunDelete(command);
    case Verb::Rename:
        return RunRename(command);
    case Verb::Download:
        return RunDownload(command);
    case Verb::Upload:
        return RunUpload(command);
    }
}

void Session::RunDir(const Command& command) {
    const std::optional<std::filesystem::path> folder = mService.tree.Locate(command.path);
    std::size_t leftOut = 0;
    std::error_code error;
    // A reply comes in any case: the client knows no other end of its wait.
    if (!folder || !std::filesystem::is_directory(*folder, error)) {
        NoteFailure(folder ? "no such folder" : kPathRefused);
        Reply(FormatDir({}, kNoRights, leftOut));
        return;
    }
    const auto notePassedOver = [this](const std::string& name) { Note("cannot be listed: " + name); };
    Reply(FormatDir(mService.tree.List(*folder, notePassedOver), mService.identity.rights, leftOut));
    if (leftOut > 0) {
        NoteFailure("too many entries for one listing, left out " + std::to_string(leftOut));
    }
}

void Session::RunDirRecurse(const Command& command) {
    if (!mService.identity.KnowsDirRecurse()) {
        NoteFailure("not understood in this version");
        return;
    }
    const std::optional<std::filesystem::path> path = mService.tree.Locate(command.path);
    if (!path) {
        NoteFailure(kPathRefused);
    }
    Reply(FormatDirRecurse(path ? mService.tree.Total(*path) : TreeTotals()));
}

void Session::RunMakeDir(const Command& command) {
    NoteFailure(mService.identity.MayCreate() ? mService.tree.MakeFolder(command.path) : kNotAllowed);
}

void Session::RunDelete(const Command& command) {
    NoteFailure(mService.identity.MayDelete() ? mService.tree.Remove(command.path) : kNotAllowed);
}

void Session::RunRename(const Command& command) {
    const bool allowed = mService.identity.MayCreate() && mService.identity.MayDelete();
    NoteFailure(allowed ? mService.tree.Rename(command.path, command.newPath) : kNotAllowed);
}

void Session::RunDownload(const Command& command) {
    const std::optional<std::filesystem::path> path = mService.tree.Locate(command.path);
    if (path) {
        mDownload.emplace(*path);
    }
    const std::uint32_t length = path ? mDownload->Length() : 0;
    Reply(FormatLengthPrefix(length));
    if (length == 0) {
        NoteFailure(path ? "nothing to send" : kPathRefused);
        mDownload.reset();
    }
}

void Session::RunUpload(const Command& command) {
    if (command.length == 0 || command.length > kMaxUploadLength) {
        // Where the body ends and the next command begins is anybody's guess.
        Drop("no possible length of an upload");
        return;
    }
    mBodyLeft = command.length;
    NoteFailure(BeginUpload(command));
}

/// Sets mUpload, or returns why the body is to be dropped.
std::string Session::BeginUpload(const Command& command) {
    if (!mService.identity.MayUpload()) {
        return kNotAllowed;
    }
    const std::optional<std::filesystem::path> target = mService.tree.Locate(command.path);
    std::error_code error;
    if (!target) {
        return kPathRefused;
    }
    if (std::filesystem::is_directory(*target, error)) {
        return "a folder has this name";
    }
    mUpload.emplace(*target);
    return "";
}

void Session::FinishUpload() {
    if (!mUpload) {
        return;
    }
    const std::string error = mUpload->Commit();
    mUpload.reset();
    if (error.empty()) {
        Note("stored");
    }
    NoteFailure(error);
}

void Session::Reply(const std::string& bytes) {
    mSocket.write(bytes.data(), static_cast<qint64>(bytes.size()));
}

void Session::Note(const std::string& text) const {
    mService.log(mPeer + ' ' + Escaped(text));
}

/// One line about a command that was not carried out; none for an empty reason.
void Session::NoteFailure(const std::string& reason) const {
    if (!reason.empty()) {
        Note("failed: " + reason);
    }
}

/// Once for a run of such bytes, however many packets bring it.
void Session::NoteForeignBytes() {
    if (!std::exchange(mForeignNoted, true)) {
        NoteFailure("bytes outside of a command, ignored");
    }
}

/// Ends the connection without waiting for what is still to be sent.
void Session::Drop(const std::string& reason) {
    NoteFailure(reason + ", connection dropped");
    mSocket.abort();
}
