#pragma once

#include "DeviceListSource.h"
#include "LogLimit.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// The hosts of one kind that have been heard of lately, in the order in which they appeared. Hosts are told
/// apart by their address. Hosts that come and go are logged, within bounds.
class HostTable {
public:
    using TimePoint = std::chrono::system_clock::time_point;

    /// Whoever can forge sender addresses must not fill the memory: beyond this the longest silent goes.
    static constexpr std::size_t kMostHosts = 256;

    /// zKind is what the log lines call such a host.
    explicit HostTable(std::string zKind) : mKind(std::move(zKind)) {}

    /// An announcement of a host has come; its name and port are the ones of the latest.
    void Heard(const std::string& zHost, const std::string& zName, std::int32_t zPort, TimePoint zNow);

    /// Removes the hosts that have been silent for longer than zAge, also when the clock was set back since.
    void RemoveSilent(TimePoint zNow, std::chrono::duration<double> zAge);

    const std::vector<HostRecord>& GetRecords() const { return mRecords; }

private:
    using Iterator = std::vector<HostRecord>::iterator;

    Iterator Remove(Iterator zRecord);
    void Log(const std::string& zLine);

    std::string mKind;
    LogLimit mLogLimit{100}; // a network has fewer hosts, whoever forges their addresses has more
    std::vector<HostRecord> mRecords;
};
