#pragma once

#include <optional>
#include <string>
#include <vector>

/// One address of this machine.
struct LocalInterface {
    std::string name;    ///< of the interface
    std::string address; ///< numeric
    bool loopback = false;
};

/// The Internet addresses of this machine's interfaces; an interface has one entry for each of its
/// addresses and none without one. Nothing when the list cannot be read.
std::optional<std::vector<LocalInterface>> ReadLocalInterfaces();
