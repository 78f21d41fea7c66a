#include "HostResolver.h"

#include "WaitFor.h"

#include <gtest/gtest.h>

#include <netdb.h>
#include <sys/un.h>

#include <semaphore>

namespace {

struct NumericCase {
    const char* host;
    const char* expected;
};

void PrintTo(const NumericCase& c, std::ostream* stream) {
    *stream << c.host;
}

class NumericHostTest : public ::testing::TestWithParam<NumericCase> {};

TEST_P(NumericHostTest, NeedsNoResolver) {
    const std::optional<ResolvedHost> host = ResolveNumericHost(GetParam().host, 10240);
    ASSERT_TRUE(host);
    EXPECT_EQ(host->code, 0);
    ASSERT_EQ(host->addresses.size(), 1U);
    EXPECT_TRUE(host->addresses[0].IsInternet());
    EXPECT_EQ(host->addresses[0].GetHost(), GetParam().expected);
    EXPECT_EQ(host->addresses[0].GetPort(), 10240);
}

INSTANTIATE_TEST_SUITE_P(Addresses, NumericHostTest,
                         ::testing::Values(NumericCase{"127.0.0.1", "127.0.0.1"},
                                           NumericCase{"192.0.2.255", "192.0.2.255"},
                                           NumericCase{"127.1", "127.0.0.1"}, NumericCase{"::1", "::1"},
                                           NumericCase{"2001:DB8:0::7", "2001:db8::7"}));

TEST(HostResolverTest, NamesAreNotNumeric) {
    EXPECT_FALSE(ResolveNumericHost("localhost", 1));
    EXPECT_FALSE(ResolveNumericHost("192.0.2.256", 1));
    EXPECT_FALSE(ResolveNumericHost("device.local", 1));
}

TEST(HostResolverTest, WhatCannotBeANameIsRefusedWithoutAResolver) {
    for (const std::string& text : {std::string(), std::string("127.0.0.1\0.example", 18)}) {
        const std::optional<ResolvedHost> host = ResolveNumericHost(text, 1);
        ASSERT_TRUE(host);
        EXPECT_EQ(host->code, EAI_NONAME);
        EXPECT_TRUE(host->addresses.empty());
    }
}

TEST(HostResolverTest, LooksUpTheNameOfThisComputer) {
    const ResolvedHost host = LookUpHost("localhost", 4321);
    EXPECT_EQ(host.code, 0);
    ASSERT_FALSE(host.addresses.empty());
    EXPECT_EQ(host.addresses[0].GetPort(), 4321);
}

TEST(HostResolverTest, AnAddressOfAnotherFamilyHasNoHostAndPort) {
    SocketAddress address;
    address.storage.ss_family = AF_UNIX;
    address.length = sizeof(sockaddr_un);
    EXPECT_FALSE(address.IsInternet());
    EXPECT_EQ(address.GetHost(), "");
    EXPECT_EQ(address.GetPort(), 0);
    EXPECT_EQ(SocketAddress().GetHost(), "");
}

ResolvedHost LookUpByLength(const std::string& zName, std::uint16_t zPort) {
    return *ResolveNumericHost("192.0.2." + std::to_string(zName.size()), zPort);
}

TEST(HostResolverTest, HandsTheResultToTheEventLoop) {
    std::vector<std::string> results;
    const HostResolver resolver("seven77", 99, LookUpByLength, [&results](const ResolvedHost& host) {
        results.push_back(host.addresses.at(0).GetHost() + ":" + std::to_string(host.addresses[0].GetPort()));
    });
    EXPECT_TRUE(results.empty());
    EXPECT_TRUE(WaitFor([&] { return !results.empty(); }));
    RunLoopPasses(5);
    EXPECT_EQ(results, std::vector<std::string>{"192.0.2.7:99"});
}

TEST(HostResolverTest, HandsOverTheCodeOfAFailedLookup) {
    int code = 0;
    const HostResolver resolver(
        "name", 1,
        [](const std::string&, std::uint16_t) {
            return ResolvedHost{EAI_AGAIN, {}};
        },
        [&code](const ResolvedHost& host) { code = host.code; });
    EXPECT_TRUE(WaitFor([&] { return code == EAI_AGAIN; }));
}

TEST(HostResolverTest, MayBeDestroyedByItsHandler) {
    std::unique_ptr<HostResolver> pResolver;
    bool handled = false;
    pResolver = std::make_unique<HostResolver>("name", 1, LookUpByLength, [&](const ResolvedHost&) {
        pResolver.reset();
        handled = true;
    });
    EXPECT_TRUE(WaitFor([&] { return handled; }));
    EXPECT_EQ(pResolver, nullptr);
}

TEST(HostResolverTest, MayBeDestroyedWhileTheLookupRuns) {
    struct Gate {
        std::binary_semaphore open{0};
        std::atomic<bool> passed = false;
    };

    const auto pGate = std::make_shared<Gate>();
    bool handled = false;
    {
        const HostResolver resolver(
            "name", 1,
            [pGate](const std::string& name, std::uint16_t port) {
                pGate->open.acquire();
                pGate->passed = true;
                return LookUpByLength(name, port);
            },
            [&handled](const ResolvedHost&) { handled = true; });
        RunLoopPasses(3);
    }
    pGate->open.release();
    EXPECT_TRUE(WaitFor([&] { return pGate->passed.load(); }));
    // The worker is the last to hold the gate besides this test.
    EXPECT_TRUE(WaitFor([&] { return pGate.use_count() == 1; }));
    RunLoopPasses(3);
    EXPECT_FALSE(handled);
}

} // namespace
