#include "DiscoverFixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <random>
#include <thread>

namespace {

using ::testing::HasSubstr;
using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;

std::size_t CountLines(const std::string& log, const std::string& line) {
    std::size_t count = 0;
    for (std::size_t at = log.find(line); at != std::string::npos; at = log.find(line, at + 1)) {
        ++count;
    }
    return count;
}

/// Everything that may come from a network, from a seed.
class DatagramMaker {
public:
    explicit DatagramMaker(unsigned seed) : mRandom(seed) {}

    std::string Next() {
        switch (Below(8)) {
        case 0:
            return Bytes(Below(200));
        case 1:
            return Record().substr(0, Below(30));
        case 2:
            return ":;" + Record();
        case 3:
            return Name() + ":FileServer:" + Name() + ';' + Record();
        case 4:
            return "\xC3\x28" + Record() + "\xFF\xFE";
        case 5:
            return Below(100) == 0 ? Bytes(65'507) : Record();
        case 6:
            return Name() + ':' + Name() + ":99999999999999999999;" + Record();
        default:
            return Records(Below(50));
        }
    }

private:
    std::size_t Below(std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(mRandom);
    }

    std::string Bytes(std::size_t count) {
        std::string bytes(count, '\0');
        std::ranges::generate(bytes, [this] { return static_cast<char>(Below(256)); });
        return bytes;
    }

    std::string Name() { return "name" + std::to_string(Below(1000)); }

    std::string Record() {
        constexpr auto kServices = std::to_array<const char*>({"FileServer", "StreamPlayer", "Printer"});
        return Name() + ':' + kServices.at(Below(kServices.size())) + ':' + std::to_string(Below(70'000)) +
               ';';
    }

    std::string Records(std::size_t count) {
        std::string records;
        for (std::size_t i = 0; i < count; ++i) {
            records += Record();
        }
        return records;
    }

    std::mt19937 mRandom;
};

class DiscoverFloodTest : public DiscoverFixture {};

TEST_F(DiscoverFloodTest, AHundredThousandBadDatagramsDoNoHarm) {
    constexpr int kDatagrams = 100'000;
    constexpr int kBatch = 100; // few enough for the system to keep nearly all
    constexpr std::size_t kSenders = 4;
    Start();
    std::array<DatagramPeer, kSenders> senders{DatagramPeer("127.0.1.1"), DatagramPeer("127.0.1.2"),
                                               DatagramPeer("127.0.1.3"), DatagramPeer("127.0.1.4")};
    DatagramMaker maker(20261121);
    CaptureStdout();
    for (int i = 0; i < kDatagrams; ++i) {
        ASSERT_TRUE(
            senders.at(static_cast<std::size_t>(i) % kSenders).Send(maker.Next(), kTestDiscoveryPort));
        if (i % kBatch == kBatch - 1) {
            WaitUntilHeard();
        }
    }
    const std::string log = GetCapturedStdout();
    EXPECT_LE(Devices().size(), kSenders);
    EXPECT_LE(Desktops().size(), kSenders + 1); // and the marks' one
    EXPECT_THAT(log, HasSubstr("Discover: Malformed datagram ignored\n"));
    Send("127.0.0.5", "Phone:FileServer:1;");
    EXPECT_TRUE(WaitFor([this] { return std::ranges::count(Devices(), "127.0.0.5 Phone") == 1; }));
}

TEST_F(DiscoverFloodTest, MalformedDatagramsAreLoggedOnceASecond) {
    Start();
    CaptureStdout();
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 100; ++i) {
        Send("127.0.0.5", ":x");
        Send("127.0.0.5", "\xFF:FileServer:1;");
    }
    WaitUntilHeard();
    const auto seconds = std::chrono::steady_clock::now() - start;
    const std::size_t lines = CountLines(GetCapturedStdout(), "Discover: Malformed datagram ignored\n");
    EXPECT_GE(lines, 1U);
    EXPECT_LE(lines, 1U + static_cast<std::size_t>(std::chrono::ceil<std::chrono::seconds>(seconds).count()));
    EXPECT_TRUE(Devices().empty());
}

TEST_F(DiscoverFloodTest, WhatStandsBeforeTheMalformedCounts) {
    Start();
    Send("127.0.0.5", "Phone:FileServer:1;::bad:port:x;Lost:FileServer:1;");
    WaitUntilHeard();
    EXPECT_EQ(Devices(), std::vector<std::string>{"127.0.0.5 Phone"});
}

TEST_F(DiscoverFloodTest, UnknownServicesDoNotFillTheLog) {
    Start();
    std::string many;
    for (int i = 0; i < 1000; ++i) {
        many += "x:y:1;";
    }
    CaptureStdout();
    const auto start = std::chrono::steady_clock::now();
    Send("127.0.0.5", many);
    WaitUntilHeard();
    const auto seconds = std::chrono::steady_clock::now() - start;
    const std::size_t lines = CountLines(GetCapturedStdout(), "Unknown option name received: y\n");
    EXPECT_GE(lines, 10U);
    EXPECT_LE(lines, 10U * (1U + static_cast<std::size_t>(
                                     std::chrono::ceil<std::chrono::seconds>(seconds).count())));
}

TEST_F(DiscoverFloodTest, ManySendersDoNotFillTheTables) {
    Start();
    for (int i = 0; i < 300; ++i) {
        const std::string host = "127.0." + std::to_string(10 + i / 200) + '.' + std::to_string(1 + i % 200);
        mNow += std::chrono::milliseconds(1);
        Send(host, "d:FileServer:1;");
        WaitUntilHeard();
    }
    EXPECT_EQ(mpDiscover->GetDeviceList().size(), HostTable::kMostHosts);
    EXPECT_EQ(mpDiscover->GetDeviceList().back().hostValue, "127.0.11.100");
}

TEST_F(DiscoverFloodTest, TheLoopGoesOnDuringAFlood) {
    constexpr int kDatagrams = 50'000;
    Start();
    std::atomic<bool> sent = false;
    std::thread flood([&sent] {
        DatagramPeer sender("127.0.1.1");
        for (int i = 0; i < kDatagrams; ++i) {
            sender.Send("x:FileServer:1;", kTestDiscoveryPort);
        }
        sent = true;
    });
    int turns = 0;
    QTimer window;
    QObject::connect(&window, &QTimer::timeout, [&turns] { ++turns; });
    window.start(1);
    const bool over = WaitFor([&] { return sent.load(); });
    flood.join();
    EXPECT_TRUE(over);
    EXPECT_GE(turns, 10);
    WaitUntilHeard();
    EXPECT_EQ(Devices(), std::vector<std::string>{"127.0.1.1 x"});
}

} // namespace
