#include "Announcer.h"

#include <QtNetwork/QHostInfo>
#include <QtNetwork/QNetworkInterface>

#include <algorithm>
#include <utility>

namespace {

/// The desktops listen to IPv4 only.
bool IsIPv4(const QHostAddress& address) {
    return address.protocol() == QAbstractSocket::IPv4Protocol;
}

bool CanMulticast(const QNetworkInterface& interface) {
    constexpr auto kNeeded =
        QNetworkInterface::IsUp | QNetworkInterface::IsRunning | QNetworkInterface::CanMulticast;
    const QList<QNetworkAddressEntry> entries = interface.addressEntries();
    return (interface.flags() & kNeeded) == kNeeded &&
           std::ranges::any_of(entries, [](const auto& entry) { return IsIPv4(entry.ip()); });
}

} // namespace

std::string FormatAnnouncement(const std::string& name, quint16 port) {
    return name + ":FileServer:" + std::to_string(port) + ';';
}

Announcer::Announcer(const std::string& announcement, const AnnouncementPlan& plan, LogSink log)
    : mAnnouncement(QByteArray::fromStdString(announcement)), mPlan(plan),
      mLog(std::move(log)), mGroup{kAnnouncementGroup}, mHost{Escaped(plan.host.toStdString())} {
    connect(&mTimer, &QTimer::timeout, this, &Announcer::Announce);
    mTimer.start(mPlan.period);
    Announce();
}

void Announcer::Announce() {
    // Only a bound socket can choose the interface of its multicasts.
    if (mSocket.state() != QAbstractSocket::BoundState) {
        mSocket.bind(QHostAddress::AnyIPv4);
    }
    if (mPlan.toGroup) {
        AnnounceToGroup();
    }
    if (!mPlan.host.isEmpty()) {
        AnnounceToHost();
    }
}

void Announcer::AnnounceToGroup() {
    bool isSent = false;
    std::string failure = "no network";
    for (const QNetworkInterface& interface : QNetworkInterface::allInterfaces()) {
        if (!CanMulticast(interface)) {
            continue;
        }
        if (SendByInterface(interface)) {
            isSent = true;
        } else {
            failure = mSocket.errorString().toStdString();
        }
    }
    Note(mGroup, isSent ? "" : failure);
}

bool Announcer::SendByInterface(const QNetworkInterface& interface) {
    mSocket.setMulticastInterface(interface);
    return Send(QHostAddress(kAnnouncementGroup));
}

void Announcer::AnnounceToHost() {
    const QHostAddress numeric(mPlan.host);
    if (!numeric.isNull()) {
        SendToHost(numeric);
    } else if (!std::exchange(mLookingUp, true)) {
        // By name, since Qt frees a function that it was given only by calling it, and this may end before.
        QHostInfo::lookupHost(mPlan.host, this, SLOT(OnHostFound(QHostInfo)));
    }
}

void Announcer::OnHostFound(const QHostInfo& info) {
    mLookingUp = false;
    const QList<QHostAddress> addresses = info.addresses();
    const auto found = std::ranges::find_if(addresses, IsIPv4);
    if (found != addresses.end()) {
        SendToHost(*found);
    } else {
        Note(mHost,
             info.error() == QHostInfo::NoError ? "no IPv4 address" : info.errorString().toStdString());
    }
}

void Announcer::SendToHost(const QHostAddress& address) {
    Note(mHost, Send(address) ? "" : mSocket.errorString().toStdString());
}

bool Announcer::Send(const QHostAddress& address) {
    return mSocket.writeDatagram(mAnnouncement, address, mPlan.port) == mAnnouncement.size();
}

/// An empty failure is a success, after which the next failure is news again.
void Announcer::Note(Way& way, const std::string& failure) {
    if (failure.empty()) {
        way.failed = false;
    } else if (!std::exchange(way.failed, true)) {
        mLog("cannot announce to " + way.target + ": " + failure + ", trying on");
    }
}
