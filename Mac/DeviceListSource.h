#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

/// One host that announces itself on the network.
struct HostRecord {
    std::string hostValue; ///< address as text; identifies the host within its list
    std::string nameValue; ///< name of its latest announcement
    std::int32_t portValue = 0;
    std::chrono::system_clock::time_point dateValue; ///< when the latest announcement was processed
};

/// What the device selection needs from discovery.
class DeviceListSource {
public:
    virtual ~DeviceListSource() = default;

    /// The live list of devices; it changes with every pass of the event loop, so it is read, not kept.
    virtual const std::vector<HostRecord>& GetDeviceList() const = 0;

    /// Starts to listen for devices unless that has been done already; false while it cannot be done.
    virtual bool EnsureListening() = 0;
};
