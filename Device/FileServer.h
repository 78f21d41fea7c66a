#pragma once

#include "Session.h"

#include <QtCore/QObject>
#include <QtNetwork/QHostAddress>
#include <QtNetwork/QTcpServer>

/// Accepts clients and gives each a session of its own; the sessions end with it.
class FileServer : public QObject {
public:
    explicit FileServer(Service service);
    ~FileServer() override;
    FileServer(const FileServer&) = delete;
    FileServer& operator=(const FileServer&) = delete;

    /// Starts to listen; a port of 0 means one of the system's choice. Returns why it failed, "" on success.
    std::string Listen(const QHostAddress& address, quint16 port);

    quint16 Port() const { return mServer.serverPort(); }

    /// "ADDRESS:PORT", an IPv6 address in brackets.
    std::string Endpoint() const;

private:
    void AcceptClients();

    Service mService;
    QTcpServer mServer;
    int mSessions = 0;
};
