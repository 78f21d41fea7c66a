#include "AsyncUdpSocket.h"

#include "CommonUtils.h"
#include "DeferredCall.h"
#include "LocalInterfaces.h"

#include <QtCore/QPointer>

#include <net/if.h>
#include <netinet/in.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

namespace {

constexpr const char* kSource = "Mac/AsyncUdpSocket";

/// How many datagrams in a row a delegate may refuse before the event loop has its turn again.
constexpr int kMostRefusals = 64;

/// What one host means in each family.
struct FamilyAddresses {
    int code = 0; ///< of getaddrinfo
    std::optional<SocketAddress> address4;
    std::optional<SocketAddress> address6;
};

template <typename Native>
SocketAddress MakeAddress(const Native& zNative) {
    SocketAddress address;
    std::memcpy(&address.storage, &zNative, sizeof zNative);
    address.length = sizeof zNative;
    return address;
}

FamilyAddresses AnyAddress(std::uint16_t zPort) {
    sockaddr_in any4{};
    any4.sin_family = AF_INET;
    any4.sin_port = htons(zPort);
    sockaddr_in6 any6{};
    any6.sin6_family = AF_INET6;
    any6.sin6_port = htons(zPort);
    return {0, MakeAddress(any4), MakeAddress(any6)};
}

FamilyAddresses Resolve(const std::string& zHost, std::uint16_t zPort) {
    const ResolvedHost host = LookUpHost(zHost, zPort);
    FamilyAddresses found{host.code, std::nullopt, std::nullopt};
    for (const SocketAddress& address : host.addresses) {
        auto& place = address.storage.ss_family == AF_INET ? found.address4 : found.address6;
        place = place.value_or(address);
    }
    return found;
}

const sockaddr_in& As4(const SocketAddress& zAddress) {
    return *reinterpret_cast<const sockaddr_in*>(&zAddress.storage);
}

const sockaddr_in6& As6(const SocketAddress& zAddress) {
    return *reinterpret_cast<const sockaddr_in6*>(&zAddress.storage);
}

int FamilyOf(const AsyncSendPacket& zPacket) {
    return zPacket.mAddress.storage.ss_family;
}

/// An IPv6 interface goes by its number; 0 is the default one.
unsigned InterfaceNumber(const SocketAddress& zAddress) {
    const std::optional<std::vector<LocalInterface>> interfaces = ReadLocalInterfaces();
    for (const LocalInterface& entry : interfaces.value_or(std::vector<LocalInterface>())) {
        if (entry.address == zAddress.GetHost()) {
            return ::if_nametoindex(entry.name.c_str());
        }
    }
    return 0;
}

} // namespace

AsyncUdpSocket::AsyncUdpSocket(AsyncUdpSocketDelegate* zpDelegate, long zUserData, bool zEnableIPv4,
                               bool zEnableIPv6)
    : mpDelegate(zpDelegate), mUserData(zUserData), mpSocket4(zEnableIPv4 ? OpenHalf(AF_INET) : nullptr),
      mpSocket6(zEnableIPv6 ? OpenHalf(AF_INET6) : nullptr) {
    if (!isIPv4() && !isIPv6()) {
        throw std::system_error(errno, std::generic_category());
    }
    PrepareCall(mSendTimer, [this] { FailCurrentSend(MakeUdpSocketError(kAsyncUdpSocketSendTimeoutError)); });
    PrepareCall(mReceiveTimer,
                [this] { FailCurrentReceive(MakeUdpSocketError(kAsyncUdpSocketReceiveTimeoutError)); });
    PrepareCall(mDequeueSendCall, [this] { DequeueSend(); });
    PrepareCall(mDequeueReceiveCall, [this] { DequeueReceive(); });
    PrepareCall(mCloseCall, [this] { CloseWhenDrained(); });
    PrepareCall(mReportCall, [this] {
        if (mpDelegate != nullptr) {
            mpDelegate->onUdpSocketDidClose(*this);
        }
    });
}

std::unique_ptr<DatagramSocket> AsyncUdpSocket::OpenHalf(int zFamily) {
    auto pHalf = std::make_unique<DatagramSocket>(
        zFamily, [this, zFamily](DatagramSocket::Event event) { onSocketEvent(Half(zFamily), event); });
    if (!pHalf->IsOpen()) {
        pHalf.reset();
    }
    return pHalf;
}

std::unique_ptr<DatagramSocket>& AsyncUdpSocket::OwnerOfHalf(int zFamily) {
    return zFamily == AF_INET ? mpSocket4 : mpSocket6;
}

DatagramSocket* AsyncUdpSocket::Half(int zFamily) const {
    return zFamily == AF_INET ? mpSocket4.get() : mpSocket6.get();
}

void AsyncUdpSocket::ThrowIfClosed() const {
    if (mClosed) {
        throw AsyncUdpSocketException("The socket is closed.");
    }
}

// --- Binding and joining ---

bool AsyncUdpSocket::bindToPort(std::uint16_t zPort, std::optional<SocketError>& zrError) {
    return bindToAddress("", zPort, zrError);
}

bool AsyncUdpSocket::bindToAddress(const std::string& zAddress, std::uint16_t zPort,
                                   std::optional<SocketError>& zrError) {
    ThrowIfClosed();
    if (mBound) {
        throw AsyncUdpSocketException("Cannot bind a socket more than once.");
    }
    const FamilyAddresses addresses = zAddress.empty() ? AnyAddress(zPort) : Resolve(zAddress, zPort);
    if (addresses.code != 0) {
        zrError = MakeResolverError(addresses.code);
        return false;
    }
    Require(addresses.address4 || addresses.address6, kSource, "address4 and address6 are nil");
    if (!(addresses.address4 && isIPv4()) && !(addresses.address6 && isIPv6())) {
        zrError = MakeUdpSocketError(addresses.address4 ? kAsyncUdpSocketIPv4Unavailable
                                                        : kAsyncUdpSocketIPv6Unavailable);
        return false;
    }
    if (!BindHalf(AF_INET, addresses.address4) || !BindHalf(AF_INET6, addresses.address6)) {
        zrError = MakeUdpSocketError(kAsyncUdpSocketCFSocketError);
        return false;
    }
    mBound = true;
    return true;
}

bool AsyncUdpSocket::BindHalf(int zFamily, const std::optional<SocketAddress>& zAddress) {
    if (!zAddress) {
        OwnerOfHalf(zFamily).reset();
    }
    DatagramSocket* const pSocket = Half(zFamily);
    if (pSocket == nullptr) {
        return true;
    }
    const int reuse = 1;
    return pSocket->SetOption(SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof reuse) == 0 &&
           pSocket->Bind(*zAddress) == 0;
}

SocketAddress AsyncUdpSocket::LocalAddress() const {
    const DatagramSocket* const pSocket = isIPv4() ? mpSocket4.get() : mpSocket6.get();
    return pSocket != nullptr ? pSocket->GetLocalAddress() : SocketAddress();
}

bool AsyncUdpSocket::joinMulticastGroup(const std::string& zGroup, std::optional<SocketError>& zrError) {
    return joinMulticastGroup(zGroup, "", zrError);
}

bool AsyncUdpSocket::joinMulticastGroup(const std::string& zGroup, const std::string& zAddress,
                                        std::optional<SocketError>& zrError) {
    ThrowIfClosed();
    if (!mBound) {
        throw AsyncUdpSocketException("Must bind a socket before joining a multicast group.");
    }
    const FamilyAddresses from = zAddress.empty() ? AnyAddress(0) : Resolve(zAddress, 0);
    if (from.code != 0) {
        zrError = MakeResolverError(from.code, "Invalid parameter 'address': %@");
        return false;
    }
    const FamilyAddresses group = Resolve(zGroup, 0);
    if (group.code != 0) {
        zrError = MakeResolverError(group.code, "Invalid parameter 'group': %@");
        return false;
    }
    Require(from.address4 || from.address6, kSource, "address4 and address6 are nil");
    Require(group.address4 || group.address6, kSource, "group4 and group6 are nil");
    if (isIPv4() && group.address4 && from.address4) {
        const ip_mreq request{As4(*group.address4).sin_addr, As4(*from.address4).sin_addr};
        return JoinHalf(AF_INET, IP_ADD_MEMBERSHIP, &request, sizeof request, zrError);
    }
    if (isIPv6() && group.address6 && from.address6) {
        const ipv6_mreq request{As6(*group.address6).sin6_addr, InterfaceNumber(*from.address6)};
        return JoinHalf(AF_INET6, IPV6_JOIN_GROUP, &request, sizeof request, zrError);
    }
    zrError = MakeUdpSocketError(kAsyncUdpSocketBadParameter);
    return false;
}

bool AsyncUdpSocket::JoinHalf(int zFamily, int zOption, const void* zpRequest, std::size_t zSize,
                              std::optional<SocketError>& zrError) {
    const bool isFour = zFamily == AF_INET;
    if (Half(zFamily)->SetOption(isFour ? IPPROTO_IP : IPPROTO_IPV6, zOption, zpRequest, zSize) != 0) {
        zrError = SocketError{kStreamPosixErrorDomain, -1,
                              isFour ? "Unable to join IPv4 multicast group"
                                     : "Unable to join IPv6 multicast group"};
        return false;
    }
    OwnerOfHalf(isFour ? AF_INET6 : AF_INET).reset();
    return true;
}

// --- Events ---

void AsyncUdpSocket::onSocketEvent(const DatagramSocket* zpSocket, int zEvent) {
    Require(zpSocket != nullptr && (zpSocket == mpSocket4.get() || zpSocket == mpSocket6.get()), kSource,
            "(sock == theSocket4) || (sock == theSocket6)");
    const int family = zpSocket == mpSocket4.get() ? AF_INET : AF_INET6;
    switch (zEvent) {
    case DatagramSocket::kReadable:
        DoReceive(family);
        break;
    case DatagramSocket::kWritable:
        DoSend(family);
        break;
    default:
        DebugPrintf("AsyncUdpSocket %p received unexpected CFSocketCallBackType %d.\n",
                    static_cast<const void*>(this), zEvent);
    }
}

// --- Receiving ---

void AsyncUdpSocket::receiveWithTimeout(double zTimeout, long zTag) {
    if (mForbidSendsAndReceives || mClosed) {
        return;
    }
    mReceiveQueue.push_back({zTimeout, zTag, {}, {}, 0});
    StartCall(mDequeueReceiveCall);
}

void AsyncUdpSocket::DequeueReceive() {
    if (mCurrentReceive) {
        return;
    }
    if (mReceiveQueue.empty()) {
        CloseWhenDrained();
        return;
    }
    mCurrentReceive = std::move(mReceiveQueue.front());
    mReceiveQueue.pop_front();
    StartTimer(mReceiveTimer, mCurrentReceive->mTimeout);
    const bool first4 = std::exchange(mReceiveFromIPv4First, !mReceiveFromIPv4First);
    const QPointer<QObject> alive(&mReportCall);
    DoReceive(first4 ? AF_INET : AF_INET6);
    if (alive) {
        DoReceive(first4 ? AF_INET6 : AF_INET);
    }
}

void AsyncUdpSocket::DoReceive(int zFamily) {
    const QPointer<QObject> alive(&mReportCall);
    for (int refused = 0; alive && mCurrentReceive && Half(zFamily) != nullptr; ++refused) {
        DatagramSocket& socket = *Half(zFamily);
        if (refused == kMostRefusals || !socket.HasDatagram()) {
            socket.AskForReadable();
            return;
        }
        const int code = TakeDatagram(socket);
        if (code != 0 && code != EAGAIN) {
            FailCurrentReceive(MakeErrnoError(code));
            return;
        }
        if (code == 0 && CompleteCurrentReceive()) {
            return;
        }
    }
}

int AsyncUdpSocket::TakeDatagram(DatagramSocket& zrSocket) {
    AsyncReceivePacket& packet = *mCurrentReceive;
    packet.mData = QByteArray(static_cast<qsizetype>(mMaxReceiveBufferSize), Qt::Uninitialized);
    SocketAddress sender;
    const int code = zrSocket.Receive(packet.mData, sender);
    if (code == 0) {
        packet.mHost = sender.GetHost();
        packet.mPort = sender.GetPort();
    }
    return code;
}

bool AsyncUdpSocket::CompleteCurrentReceive() {
    Require(mCurrentReceive.has_value(), kSource,
            "Trying to complete current receive when there is no current receive.");
    const AsyncReceivePacket packet = *mCurrentReceive;
    const QPointer<QObject> alive(&mReportCall);
    const bool taken =
        mpDelegate == nullptr ||
        mpDelegate->onUdpSocketDidReceiveData(*this, packet.mData, packet.mTag, packet.mHost, packet.mPort);
    if (taken && alive && mCurrentReceive) {
        EndCurrentReceive();
        StartCall(mDequeueReceiveCall);
    }
    return taken;
}

void AsyncUdpSocket::EndCurrentReceive() {
    Require(mCurrentReceive.has_value(), kSource,
            "Trying to end current receive when there is no current receive.");
    mReceiveTimer.stop();
    mCurrentReceive.reset();
}

void AsyncUdpSocket::FailCurrentReceive(const SocketError& zError) {
    Require(mCurrentReceive.has_value(), kSource,
            "Trying to fail current receive when there is no current receive.");
    const long tag = mCurrentReceive->mTag;
    EndCurrentReceive();
    StartCall(mDequeueReceiveCall);
    if (mpDelegate != nullptr) {
        mpDelegate->onUdpSocketDidNotReceiveDataWithTag(*this, tag, zError);
    }
}

// --- Sending ---

bool AsyncUdpSocket::sendData(const QByteArray& zData, const SocketAddress& zAddress, double zTimeout,
                              long zTag) {
    if (zData.isEmpty() || mForbidSendsAndReceives || mClosed || !zAddress.IsInternet() ||
        Half(zAddress.storage.ss_family) == nullptr) {
        return false;
    }
    mSendQueue.push_back({zData, zAddress, zTimeout, zTag});
    StartCall(mDequeueSendCall);
    return true;
}

bool AsyncUdpSocket::sendData(const QByteArray& zData, const std::string& zHost, std::uint16_t zPort,
                              double zTimeout, long zTag) {
    const FamilyAddresses target = Resolve(zHost, zPort);
    return (target.address4 && sendData(zData, *target.address4, zTimeout, zTag)) ||
           (target.address6 && sendData(zData, *target.address6, zTimeout, zTag));
}

void AsyncUdpSocket::DequeueSend() {
    if (mCurrentSend) {
        return;
    }
    if (mSendQueue.empty()) {
        CloseWhenDrained();
        return;
    }
    mCurrentSend = std::move(mSendQueue.front());
    mSendQueue.pop_front();
    StartTimer(mSendTimer, mCurrentSend->mTimeout);
    DoSend(FamilyOf(*mCurrentSend));
}

void AsyncUdpSocket::DoSend(int zFamily) {
    if (!mCurrentSend || FamilyOf(*mCurrentSend) != zFamily) {
        return;
    }
    DatagramSocket* const pSocket = Half(zFamily);
    if (pSocket == nullptr) {
        DebugPrint("Error - Could not get CFSocketNativeHandle from CFSocketRef\n");
        return;
    }
    // The system's answer counts, not an event that may be long past.
    const int code = pSocket->CanSend() ? pSocket->Send(mCurrentSend->mData, mCurrentSend->mAddress) : EAGAIN;
    if (code == EAGAIN) {
        pSocket->AskForWritable();
    } else if (code != 0) {
        FailCurrentSend(MakeErrnoError(code));
    } else {
        mBound = true;
        CompleteCurrentSend();
    }
}

void AsyncUdpSocket::CompleteCurrentSend() {
    Require(mCurrentSend.has_value(), kSource,
            "Trying to complete current send when there is no current send.");
    const long tag = mCurrentSend->mTag;
    EndCurrentSend();
    StartCall(mDequeueSendCall);
    if (mpDelegate != nullptr) {
        mpDelegate->onUdpSocketDidSendDataWithTag(*this, tag);
    }
}

void AsyncUdpSocket::EndCurrentSend() {
    Require(mCurrentSend.has_value(), kSource, "Trying to end current send when there is no current send.");
    mSendTimer.stop();
    mCurrentSend.reset();
}

void AsyncUdpSocket::FailCurrentSend(const SocketError& zError) {
    Require(mCurrentSend.has_value(), kSource, "Trying to fail current send when there is no current send.");
    const long tag = mCurrentSend->mTag;
    EndCurrentSend();
    StartCall(mDequeueSendCall);
    if (mpDelegate != nullptr) {
        mpDelegate->onUdpSocketDidNotSendDataWithTag(*this, tag, zError);
    }
}

// --- Closing ---

void AsyncUdpSocket::closeAfterSending() {
    CloseAfter(true, false);
}

void AsyncUdpSocket::closeAfterReceiving() {
    CloseAfter(false, true);
}

void AsyncUdpSocket::closeAfterSendingAndReceiving() {
    CloseAfter(true, true);
}

void AsyncUdpSocket::CloseAfter(bool zSends, bool zReceives) {
    if (mClosed) {
        return;
    }
    mForbidSendsAndReceives = true;
    mCloseAfterSends = mCloseAfterSends || zSends;
    mCloseAfterReceives = mCloseAfterReceives || zReceives;
    StartCall(mCloseCall);
}

void AsyncUdpSocket::CloseWhenDrained() {
    const bool sending = mCurrentSend.has_value() || !mSendQueue.empty();
    const bool receiving = mCurrentReceive.has_value() || !mReceiveQueue.empty();
    const bool wanted = mCloseAfterSends || mCloseAfterReceives;
    if (wanted && !(mCloseAfterSends && sending) && !(mCloseAfterReceives && receiving)) {
        close();
    }
}

void AsyncUdpSocket::close() {
    if (mClosed) {
        return;
    }
    for (QTimer* pTimer :
         {&mSendTimer, &mReceiveTimer, &mDequeueSendCall, &mDequeueReceiveCall, &mCloseCall}) {
        pTimer->stop();
    }
    mSendQueue.clear();
    mCurrentSend.reset();
    mReceiveQueue.clear();
    mCurrentReceive.reset();
    mpSocket4.reset();
    mpSocket6.reset();
    mClosed = true;
    StartCall(mReportCall);
}
