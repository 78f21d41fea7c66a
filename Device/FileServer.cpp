#include "FileServer.h"

#include <utility>

namespace {

/// Far below the number of files that a process may open.
constexpr int kMaxSessions = 100;

} // namespace

FileServer::FileServer(Service service) : mService(std::move(service)) {
    connect(&mServer, &QTcpServer::newConnection, this, &FileServer::AcceptClients);
}

FileServer::~FileServer() {
    // Sessions use the service until their end, and the base class would end them after it.
    const QObjectList sessions = children();
    qDeleteAll(sessions);
}

std::string FileServer::Listen(const QHostAddress& address, quint16 port) {
    return mServer.listen(address, port) ? "" : mServer.errorString().toStdString();
}

std::string FileServer::Endpoint() const {
    const QHostAddress address = mServer.serverAddress();
    const std::string text = address.toString().toStdString();
    const bool isSix = address.protocol() == QAbstractSocket::IPv6Protocol;
    return (isSix ? '[' + text + ']' : text) + ':' + std::to_string(Port());
}

void FileServer::AcceptClients() {
    while (QTcpSocket* socket = mServer.nextPendingConnection()) {
        if (mSessions == kMaxSessions) {
            mService.log("too many clients, one refused");
            delete socket;
            continue;
        }
        ++mSessions;
        const auto* session = new Session(*socket, mService, this);
        connect(session, &QObject::destroyed, this, [this] { --mSessions; });
    }
}
