#include "LocalInterfaces.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

/// The network of this process has the loopback interface and perhaps unused tunnels, which have no address.
TEST(LocalInterfaces, AreTheOnesWithAnAddress) {
    const auto interfaces = ReadLocalInterfaces();
    ASSERT_TRUE(interfaces);
    std::vector<std::string> addresses;
    for (const LocalInterface& entry : *interfaces) {
        EXPECT_EQ(entry.name, "lo");
        EXPECT_TRUE(entry.loopback);
        addresses.push_back(entry.address);
    }
    std::ranges::sort(addresses);
    EXPECT_EQ(addresses, (std::vector<std::string>{"127.0.0.1", "::1"}));
}

} // namespace
