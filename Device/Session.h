#pragma once

#include "CommandParser.h"
#include "FileTree.h"
#include "Log.h"
#include "Replies.h"
#include "Transfer.h"

#include <QtCore/QObject>
#include <QtNetwork/QTcpSocket>

#include <optional>
#include <string>

/// What all sessions of a server share; it outlives them.
struct Service {
    FileTree tree;
    DeviceIdentity identity;
    LogSink log;
};

/// One client's connection, from the welcome to the end. Commands are carried out one after the other, each
/// when the replies before it have gone out but for a bounded rest, so that a client which sends without
/// reading costs no memory. A session deletes itself when its connection has ended.
class Session : public QObject {
public:
    /// Takes a connected socket over.
    Session(QTcpSocket& socket, const Service& service, QObject* parent);

private:
    void Advance();
    bool Step();
    bool SendPiece();
    bool TakeBody();
    bool TakeCommand();
    bool Refill(qint64 count);
    void OnDisconnected();

    void Run(const Command& command);
    void RunDir(const Command& command);
    void RunDirRecurse(const Command& command);
    void RunMakeDir(const Command& command);
    void RunDelete(const Command& command);
    void RunRename(const Command& command);
    void RunDownload(const Command& command);
    void RunUpload(const Command& command);
    void FinishUpload();
    std::string BeginUpload(const Command& command);

    void Reply(const std::string& bytes);
    void Note(const std::string& text) const;
    void NoteFailure(const std::string& reason) const;
    void NoteForeignBytes();
    void Drop(const std::string& reason);

    QTcpSocket& mSocket;
    const Service& mService;
    std::string mPeer;
    std::string mInput;
    std::optional<Download> mDownload;
    std::optional<Upload> mUpload; ///< None while a refused upload's body is dropped.
    std::uint64_t mBodyLeft = 0;   ///< Bytes of an upload still to come.
    bool mForeignNoted = false;
};
