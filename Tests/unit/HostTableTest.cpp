#include "HostTable.h"
#include "LogLimit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;

const HostTable::TimePoint kStart(1'000'000s);

std::vector<std::string> Hosts(const HostTable& table) {
    std::vector<std::string> hosts;
    for (const HostRecord& record : table.GetRecords()) {
        hosts.push_back(record.hostValue);
    }
    return hosts;
}

TEST(HostTable, KeepsWhatTheLatestAnnouncementSaid) {
    HostTable table("device");
    table.Heard("10.0.0.1", "Phone", 1, kStart);
    table.Heard("10.0.0.1", "Phone2", 2, kStart + 3s);
    ASSERT_EQ(table.GetRecords().size(), 1U);
    const HostRecord& record = table.GetRecords().front();
    EXPECT_EQ(record.hostValue, "10.0.0.1");
    EXPECT_EQ(record.nameValue, "Phone2");
    EXPECT_EQ(record.portValue, 2);
    EXPECT_EQ(record.dateValue, kStart + 3s);
}

TEST(HostTable, KeepsTheOrderOfAppearance) {
    HostTable table("device");
    for (const char* host : {"10.0.0.2", "10.0.0.1", "10.0.0.3", "10.0.0.2"}) {
        table.Heard(host, "x", 1, kStart);
    }
    EXPECT_THAT(Hosts(table), ElementsAre("10.0.0.2", "10.0.0.1", "10.0.0.3"));
}

TEST(HostTable, RemovesWhoIsOlderThanTheAgeAndNobodyElse) {
    HostTable table("desktop");
    table.Heard("10.0.0.1", "older", 1, kStart);
    table.Heard("10.0.0.2", "at the limit", 1, kStart + 1s);
    table.Heard("10.0.0.3", "older too", 1, kStart);
    table.Heard("10.0.0.4", "recent", 1, kStart + 9s);
    CaptureStdout();
    table.RemoveSilent(kStart + 11s, 10s);
    EXPECT_EQ(GetCapturedStdout(), "Discover - Removing desktop host: older\n"
                                   "Discover - Removing desktop host: older too\n");
    EXPECT_THAT(Hosts(table), ElementsAre("10.0.0.2", "10.0.0.4"));
}

TEST(HostTable, AClockThatWasSetBackKeepsNobodyForLong) {
    HostTable table("device");
    table.Heard("10.0.0.1", "x", 1, kStart + 1h);
    table.RemoveSilent(kStart, 10s);
    EXPECT_EQ(table.GetRecords().size(), 1U);
    table.RemoveSilent(kStart + 11s, 10s);
    EXPECT_TRUE(table.GetRecords().empty());
}

TEST(HostTable, ForgedHostsDoNotFillTheLog) {
    HostTable table("device");
    CaptureStdout();
    for (int i = 0; i < 10'000; ++i) {
        table.Heard("host " + std::to_string(i), "x", 1, kStart + std::chrono::seconds(i));
    }
    const std::string log = GetCapturedStdout();
    EXPECT_GE(std::ranges::count(log, '\n'), 100);
    EXPECT_LT(std::ranges::count(log, '\n'), 5'000);
}

TEST(HostTable, LogsNewHostsOnce) {
    HostTable table("device");
    CaptureStdout();
    table.Heard("10.0.0.1", "Phone", 1, kStart);
    table.Heard("10.0.0.1", "Phone", 1, kStart);
    EXPECT_EQ(GetCapturedStdout(), "New device host: 10.0.0.1\n");
}

TEST(HostTable, LogLinesStayOneLineWhateverTheName) {
    HostTable table("device");
    table.Heard("10.0.0.1", "evil\n\x1b[31mname", 1, kStart);
    CaptureStdout();
    table.RemoveSilent(kStart + 1min, 10s);
    EXPECT_EQ(GetCapturedStdout(), "Discover - Removing device host: evil??[31mname\n");
}

TEST(HostTable, IsBoundedAndTheLongestSilentGoesFirst) {
    HostTable table("device");
    for (std::size_t i = 0; i < HostTable::kMostHosts; ++i) {
        table.Heard("host " + std::to_string(i), "x", 1, kStart + std::chrono::seconds(i));
    }
    table.Heard("host 0", "x", 1, kStart + 1h); // no longer the longest silent
    table.Heard("one more", "x", 1, kStart + 1h);
    const std::vector<std::string> hosts = Hosts(table);
    EXPECT_EQ(hosts.size(), HostTable::kMostHosts);
    EXPECT_EQ(hosts.front(), "host 0");
    EXPECT_EQ(hosts.at(1), "host 2");
    EXPECT_EQ(hosts.back(), "one more");
}

TEST(LogLimit, AdmitsSoManyLinesInASecond) {
    LogLimit limit(3);
    int admitted = 0;
    for (int i = 0; i < 1000; ++i) {
        admitted += limit.Admits() ? 1 : 0;
    }
    // A second more or less may have passed meanwhile.
    EXPECT_GE(admitted, 3);
    EXPECT_LE(admitted, 9);
}

} // namespace
