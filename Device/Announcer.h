#pragma once

#include "Log.h"

#include <QtCore/QObject>
#include <QtCore/QTimer>
#include <QtNetwork/QUdpSocket>

#include <chrono>
#include <string>

class QHostInfo;
class QNetworkInterface;

/// Where the devices' announcements go.
inline constexpr const char* kAnnouncementGroup = "225.1.1.1";
inline constexpr quint16 kAnnouncementPort = 10245;

/// What a file server says of itself, "NAME:FileServer:PORT;". The name must hold no separator.
std::string FormatAnnouncement(const std::string& name, quint16 port);

/// To whom a device announces itself, and how often.
struct AnnouncementPlan {
    bool toGroup = false; ///< To the multicast group, by every interface that can.
    QString host;         ///< To this host as well, an IPv4 address or a name; "" for none.
    quint16 port = kAnnouncementPort;
    std::chrono::milliseconds period{4000};

    bool IsEmpty() const { return !toGroup && host.isEmpty(); }
};

/// Sends an announcement at once and then again with every period, for as long as it lives. Interfaces and
/// names are looked up anew each time, since networks come and go. While the group or the host cannot be
/// reached it goes on trying; only the first failure of each such time is logged.
class Announcer : public QObject {
    Q_OBJECT

public:
    Announcer(const std::string& announcement, const AnnouncementPlan& plan, LogSink log);

private:
    /// One of the two targets, and whether the last attempt failed.
    struct Way {
        std::string target;
        bool failed = false;
    };

    void Announce();
    void AnnounceToGroup();
    bool SendByInterface(const QNetworkInterface& interface);
    void AnnounceToHost();
    Q_SLOT void OnHostFound(const QHostInfo& info);
    void SendToHost(const QHostAddress& address);
    bool Send(const QHostAddress& address);
    void Note(Way& way, const std::string& failure);

    QByteArray mAnnouncement;
    AnnouncementPlan mPlan;
    LogSink mLog;
    QUdpSocket mSocket;
    QTimer mTimer;
    bool mLookingUp = false;
    Way mGroup;
    Way mHost;
};
