#pragma once

#include "DatagramPeer.h"
#include "Discover.h"
#include "WaitFor.h"

#include <QtCore/QElapsedTimer>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

inline constexpr std::uint16_t kTestDiscoveryPort = 10245;
inline constexpr const char* kTestOwnAddress = "127.0.0.99";

/// Discovery on a network of loopback addresses, one of which counts as this machine's own, and a clock
/// that stands still unless it is moved.
class DiscoverFixture : public ::testing::Test {
protected:
    void Start() {
        mpDiscover = Discover::initWithType(1, 10241, System());
        ASSERT_NE(mpDiscover, nullptr);
        ASSERT_TRUE(mpDiscover->connectSocket());
    }

    Discover::System System() {
        return {[this] { return mNow; }, [this] { return mInterfaces; }};
    }

    static void Send(const std::string& host, std::string_view data) {
        DatagramPeer peer(host);
        ASSERT_TRUE(peer.Send(data, kTestDiscoveryPort));
    }

    /// What the lists show, one "host name" for each record.
    static std::vector<std::string> Shown(const std::vector<HostRecord>& records) {
        std::vector<std::string> shown;
        for (const HostRecord& record : records) {
            shown.push_back(record.hostValue + ' ' + record.nameValue);
        }
        return shown;
    }

    std::vector<std::string> Devices() const { return Shown(mpDiscover->GetDeviceList()); }

    /// The other desktops; this one hears itself over loopback and is left out.
    std::vector<std::string> Desktops() const {
        std::vector<std::string> shown = Shown(mpDiscover->GetDesktopList());
        std::erase_if(shown, [](const std::string& line) { return line.ends_with(" mac"); });
        return shown;
    }

    static bool WaitForShown(const std::function<std::vector<std::string>()>& shown,
                             const std::vector<std::string>& expected) {
        return WaitFor([&] { return shown() == expected; });
    }

    bool WaitForDevices(const std::vector<std::string>& expected) {
        return WaitForShown([this] { return Devices(); }, expected);
    }

    /// Everything sent before has been worked off when the mark that this sends is. The mark is sent until
    /// it is heard, since the system drops what its buffer does not hold; but not so often that it fills it.
    void WaitUntilHeard() {
        const std::string mark = "mark " + std::to_string(++mMarks);
        QElapsedTimer sinceSent;
        ASSERT_TRUE(WaitFor([&] {
            if (!sinceSent.isValid() || sinceSent.hasExpired(kBetweenMarks)) {
                mMarker.Send(mark + ":StreamPlayer:1;", kTestDiscoveryPort);
                sinceSent.start();
            }
            return std::ranges::count(Desktops(), "127.0.0.250 " + mark) == 1;
        }));
    }

    static constexpr int kBetweenMarks = 100; // milliseconds

    Discover::TimePoint mNow{std::chrono::seconds(1'000'000)};
    std::optional<std::vector<LocalInterface>> mInterfaces{
        {{"lo", "127.0.0.1", true}, {"eth0", kTestOwnAddress, false}}};
    std::unique_ptr<Discover> mpDiscover;
    DatagramPeer mMarker{"127.0.0.250"};
    int mMarks = 0;
};
