#include "Discover.h"

#include "Announcement.h"
#include "CommonUtils.h"
#include "CommonUtils_OSX.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <chrono>
#include <cstring>
#include <optional>
#include <system_error>
#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr const char* kGroup = "225.1.1.1";
constexpr std::uint16_t kDiscoveryPort = 10245;
constexpr const char* kOwnName = "mac";
constexpr auto kPeriod = 4s;
constexpr auto kExpiryAge = 10s;

constexpr int kTypeDesktop = 1;
constexpr int kTypeDevice = 2;

/// What a device announces as its port is not to be relied on; its file service has a fixed one.
constexpr std::int32_t kNoPort = 0;

constexpr double kNoTimeout = -1.0;
constexpr long kTag = 0;

/// False, for the callers that give up, with a log line.
bool LogFailure(const std::string& zWhat, const std::optional<SocketError>& zError) {
    DebugPrint("Discover: Can't " + zWhat + (zError ? ", " + zError->description : "") + '\n');
    return false;
}

SocketAddress GroupAddress() {
    sockaddr_in group{};
    group.sin_family = AF_INET;
    group.sin_port = htons(kDiscoveryPort);
    ::inet_pton(AF_INET, kGroup, &group.sin_addr);
    SocketAddress address;
    std::memcpy(&address.storage, &group, sizeof group);
    address.length = sizeof group;
    return address;
}

} // namespace

std::unique_ptr<Discover> Discover::initWithType(int zType, std::int32_t zPort) {
    return initWithType(zType, zPort, System());
}

std::unique_ptr<Discover> Discover::initWithType(int zType, std::int32_t zPort, System zSystem) {
    if (zType != kTypeDesktop && zType != kTypeDevice) {
        return nullptr;
    }
    const char* const pService = zType == kTypeDesktop ? kDesktopService : kDeviceService;
    std::unique_ptr<Discover> pDiscover(new Discover(pService, zPort, std::move(zSystem)));
    return pDiscover->ReadLocalIPs() ? std::move(pDiscover) : nullptr;
}

Discover::Discover(std::string zOptionName, std::int32_t zPort, System zSystem)
    : mOptionName(std::move(zOptionName)), mOptionPort(zPort), mSystem(std::move(zSystem)) {
    QObject::connect(&mTimer, &QTimer::timeout, &mTimer, [this] { sendString(); });
}

Discover::~Discover() {
    disconnectSocket();
    if (mpSocket) {
        mpSocket->setDelegate(nullptr);
    }
}

/// A device on this very machine announces itself from the loopback address, which is therefore not an own
/// one. False when the interfaces cannot be read.
bool Discover::ReadLocalIPs() {
    const std::optional<std::vector<LocalInterface>> interfaces = mSystem.interfaces();
    if (!interfaces) {
        return false;
    }
    mLocalIPs.clear();
    for (const LocalInterface& entry : *interfaces) {
        if (!entry.loopback) {
            mLocalIPs.insert(entry.address);
        }
    }
    return true;
}

// --- Starting and ending ---

bool Discover::EnsureListening() {
    const bool isAnnouncing = mTimer.isActive();
    return (isAnnouncing && !GetDeviceList().empty()) || connectSocket();
}

bool Discover::connectSocket() {
    if (!OpenSocket()) {
        mTimer.stop();
        mpSocket.reset();
        return false;
    }
    mAddress4 = GroupAddress();
    sendString();
    mTimer.start(kPeriod);
    mpSocket->receiveWithTimeout(kNoTimeout, kTag);
    DebugPrint("Discover: Socket created\n");
    return true;
}

bool Discover::OpenSocket() {
    try {
        mpSocket = std::make_unique<AsyncUdpSocket>(this);
    } catch (const std::system_error&) {
        return LogFailure("create socket", std::nullopt);
    }
    std::optional<SocketError> error;
    if (!mpSocket->bindToPort(kDiscoveryPort, error)) {
        return LogFailure("bind socket", error);
    }
    if (!mpSocket->joinMulticastGroup(kGroup, error)) {
        return LogFailure("join group", error);
    }
    return true;
}

void Discover::disconnectSocket() {
    mTimer.stop();
    if (mpSocket) {
        mpSocket->closeAfterSendingAndReceiving();
    }
}

// --- Announcing ---

void Discover::sendString() {
    // The addresses of a laptop change; where they cannot be read, the last ones stay.
    ReadLocalIPs();
    const std::string text = FormatAnnouncement({kOwnName, mOptionName, mOptionPort});
    if (mpSocket) {
        mpSocket->sendData(QByteArray::fromStdString(text), mAddress4, kNoTimeout, kTag);
    }
    const TimePoint now = mSystem.now();
    mDesktopList.RemoveSilent(now, kExpiryAge);
    mDeviceList.RemoveSilent(now, kExpiryAge);
}

// --- Listening ---

bool Discover::onUdpSocketDidReceiveData(AsyncUdpSocket& zrSocket, const QByteArray& zData, long /*zTag*/,
                                         const std::string& zHost, std::uint16_t /*zPort*/) {
    if (mLocalIPs.contains(zHost)) {
        return false;
    }
    TakeAnnouncements(zData.toStdString(), zHost);
    zrSocket.receiveWithTimeout(kNoTimeout, kTag);
    return true;
}

void Discover::onUdpSocketDidNotReceiveDataWithTag(AsyncUdpSocket& zrSocket, long /*zTag*/,
                                                   const SocketError& /*zError*/) {
    // A receive that failed would otherwise have been the last one.
    zrSocket.receiveWithTimeout(kNoTimeout, kTag);
}

void Discover::TakeAnnouncements(const std::string& zText, const std::string& zHost) {
    const TimePoint now = mSystem.now();
    const auto take = [&](const Announcement& heard) {
        if (heard.optionName == kDesktopService) {
            mDesktopList.Heard(zHost, heard.name, heard.port, now);
        } else if (heard.optionName == kDeviceService) {
            mDeviceList.Heard(zHost, heard.name, kNoPort, now);
        } else if (mUnknownLog.Admits()) {
            DebugPrint("Unknown option name received: " + OneLogLine(heard.optionName) + '\n');
        }
    };
    const bool wellFormed = MakeValidUtf8(zText) == zText && ParseAnnouncements(zText, take);
    if (!wellFormed && mMalformedLog.Admits()) {
        DebugPrint("Discover: Malformed datagram ignored\n");
    }
}
