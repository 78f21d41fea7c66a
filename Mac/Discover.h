#pragma once

#include "AsyncUdpSocket.h"
#include "DeviceListSource.h"
#include "HostTable.h"
#include "LocalInterfaces.h"
#include "LogLimit.h"

#include <QtCore/QTimer>

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

/// Finds the devices on the local network, and the other desktops: announces this program to a multicast
/// group every four seconds and listens there for the announcements of others. Whoever was silent for more
/// than ten seconds at an announcement is forgotten. Works in the background on the event loop of the thread
/// that made it. docs/protocol.md describes the announcements.
class Discover : public DeviceListSource, public AsyncUdpSocketDelegate {
public:
    using TimePoint = HostTable::TimePoint;

    /// What a test may put in place of the system.
    struct System {
        std::function<TimePoint()> now = std::chrono::system_clock::now;
        std::function<std::optional<std::vector<LocalInterface>>()> interfaces = ReadLocalInterfaces;
    };

    /// zType is what this program announces itself as: 1 for "StreamPlayer", 2 for "FileServer". zPort is
    /// announced with it. Null for another type, or when the network interfaces cannot be read.
    static std::unique_ptr<Discover> initWithType(int zType, std::int32_t zPort);
    static std::unique_ptr<Discover> initWithType(int zType, std::int32_t zPort, System zSystem);

    ~Discover() override;

    /// Opens the socket, joins the group, announces, and starts to listen. Where that fails it leaves one
    /// log line, returns false, and may be called again.
    bool connectSocket();

    /// One announcement, and the end of who was silent for too long. The timer calls it. The own addresses
    /// are read anew.
    void sendString();

    /// Ends announcing; what is listening still goes with the object.
    void disconnectSocket();

    const std::vector<HostRecord>& GetDeviceList() const override { return mDeviceList.GetRecords(); }

    /// The other desktops; live like the list of devices.
    const std::vector<HostRecord>& GetDesktopList() const { return mDesktopList.GetRecords(); }

    /// Also joins anew where nobody is heard: the network may be another one since.
    bool EnsureListening() override;

    bool onUdpSocketDidReceiveData(AsyncUdpSocket& zrSocket, const QByteArray& zData, long zTag,
                                   const std::string& zHost, std::uint16_t zPort) override;
    void onUdpSocketDidNotReceiveDataWithTag(AsyncUdpSocket& zrSocket, long zTag,
                                             const SocketError& zError) override;

private:
    Discover(std::string zOptionName, std::int32_t zPort, System zSystem);

    bool ReadLocalIPs();
    bool OpenSocket();
    void TakeAnnouncements(const std::string& zText, const std::string& zHost);

    HostTable mDeviceList{"device"};
    HostTable mDesktopList{"desktop"};
    std::unique_ptr<AsyncUdpSocket> mpSocket;
    QTimer mTimer;
    SocketAddress mAddress4; ///< where announcements go
    std::set<std::string> mLocalIPs;
    std::string mOptionName; ///< the service that this program announces
    std::int32_t mOptionPort;
    System mSystem;
    LogLimit mMalformedLog{1};
    LogLimit mUnknownLog{10};
};
