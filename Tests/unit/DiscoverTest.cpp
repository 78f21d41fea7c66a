#include "DiscoverFixture.h"

#include <gmock/gmock.h>

#include <sys/resource.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;

class DiscoverTest : public DiscoverFixture {};

// --- Starting ---

TEST_F(DiscoverTest, KnowsTwoTypes) {
    EXPECT_EQ(Discover::initWithType(0, 1), nullptr);
    EXPECT_NE(Discover::initWithType(1, 1), nullptr);
    EXPECT_NE(Discover::initWithType(2, 1), nullptr);
    EXPECT_EQ(Discover::initWithType(3, 1), nullptr);
}

TEST_F(DiscoverTest, NeedsTheListOfInterfaces) {
    mInterfaces = std::nullopt;
    EXPECT_EQ(Discover::initWithType(1, 1, System()), nullptr);
}

TEST_F(DiscoverTest, StartsWithEmptyLists) {
    CaptureStdout();
    Start();
    EXPECT_EQ(GetCapturedStdout(), "Discover: Socket created\n");
    EXPECT_THAT(Devices(), IsEmpty());
    EXPECT_THAT(Desktops(), IsEmpty());
}

TEST_F(DiscoverTest, AnnouncesItselfAtOnceAndEveryFourSeconds) {
    DatagramPeer listener("0.0.0.0", kTestDiscoveryPort);
    listener.Join("225.1.1.1");
    const auto start = std::chrono::steady_clock::now();
    Start();
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(WaitFor([&] { return listener.HasDatagram(); }));
        EXPECT_EQ(listener.Receive(), "mac:StreamPlayer:10241;");
    }
    EXPECT_GT(std::chrono::steady_clock::now() - start, 3s);
}

TEST_F(DiscoverTest, TheOtherTypeAnnouncesAFileServer) {
    DatagramPeer listener("0.0.0.0", kTestDiscoveryPort);
    listener.Join("225.1.1.1");
    mpDiscover = Discover::initWithType(2, 10240, System());
    ASSERT_TRUE(mpDiscover->connectSocket());
    ASSERT_TRUE(WaitFor([&] { return listener.HasDatagram(); }));
    EXPECT_EQ(listener.Receive(), "mac:FileServer:10240;");
}

TEST_F(DiscoverTest, TwoProgramsHearTheGroupSideBySide) {
    Start();
    const auto pOther = Discover::initWithType(1, 10241, System());
    ASSERT_TRUE(pOther->connectSocket());
    DatagramPeer device("127.0.0.5");
    ASSERT_TRUE(device.Send("Phone:FileServer:10240;", kTestDiscoveryPort, "225.1.1.1"));
    EXPECT_TRUE(WaitForDevices({"127.0.0.5 Phone"}));
    EXPECT_TRUE(WaitForShown([&] { return Shown(pOther->GetDeviceList()); }, {"127.0.0.5 Phone"}));
}

/// Keeps any descriptor from being opened while it lives.
class NoDescriptors {
public:
    NoDescriptors() {
        ::getrlimit(RLIMIT_NOFILE, &mBefore);
        const rlimit none{0, mBefore.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &none);
    }

    ~NoDescriptors() { ::setrlimit(RLIMIT_NOFILE, &mBefore); }

    NoDescriptors(const NoDescriptors&) = delete;
    NoDescriptors& operator=(const NoDescriptors&) = delete;

private:
    rlimit mBefore{};
};

TEST_F(DiscoverTest, SaysThatThereIsNoSocketAndStartsLater) {
    mpDiscover = Discover::initWithType(1, 10241, System());
    // A sanitizer needs descriptors of its own for types that it has not met yet.
    EXPECT_THROW(AsyncUdpSocket(nullptr, 0, false, false), std::system_error);
    ASSERT_TRUE(mpDiscover->EnsureListening());
    mpDiscover->disconnectSocket();
    CaptureStdout();
    {
        const NoDescriptors none;
        EXPECT_FALSE(mpDiscover->EnsureListening());
    }
    EXPECT_EQ(GetCapturedStdout(), "Discover: Can't create socket\n");
    EXPECT_TRUE(mpDiscover->EnsureListening());
}

TEST_F(DiscoverTest, SaysThatThePortIsTakenAndStartsLater) {
    mpDiscover = Discover::initWithType(1, 10241, System());
    CaptureStdout();
    {
        // Who does not share the port keeps everybody else from it.
        const int greedy = ::socket(AF_INET, SOCK_DGRAM, 0);
        sockaddr_in local{};
        local.sin_family = AF_INET;
        local.sin_port = htons(kTestDiscoveryPort);
        ASSERT_EQ(::bind(greedy, reinterpret_cast<const sockaddr*>(&local), sizeof local), 0);
        EXPECT_FALSE(mpDiscover->EnsureListening());
        ::close(greedy);
    }
    EXPECT_EQ(GetCapturedStdout(), "Discover: Can't bind socket, General CFSocket error\n");
    EXPECT_TRUE(mpDiscover->EnsureListening());
}

TEST_F(DiscoverTest, SaysThatThereIsNoNetworkAndStartsLater) {
    mpDiscover = Discover::initWithType(1, 10241, System());
    ASSERT_EQ(std::system("ip route del 224.0.0.0/4"), 0);
    CaptureStdout();
    EXPECT_FALSE(mpDiscover->connectSocket());
    EXPECT_EQ(GetCapturedStdout(), "Discover: Can't join group, Unable to join IPv4 multicast group\n");
    mpDiscover->sendString(); // a tick without a socket harms nothing
    ASSERT_EQ(std::system("ip route add 224.0.0.0/4 dev lo"), 0);
    EXPECT_TRUE(mpDiscover->EnsureListening());
    Send("127.0.0.5", "Phone:FileServer:1;");
    EXPECT_TRUE(WaitForDevices({"127.0.0.5 Phone"}));
}

TEST_F(DiscoverTest, IsStartedOnceWhereDevicesAreHeard) {
    Start();
    Send("127.0.0.5", "Phone:FileServer:1;");
    ASSERT_TRUE(WaitForDevices({"127.0.0.5 Phone"}));
    CaptureStdout();
    EXPECT_TRUE(mpDiscover->EnsureListening());
    EXPECT_EQ(GetCapturedStdout(), "");
}

TEST_F(DiscoverTest, JoinsAnewWhereNobodyIsHeard) {
    Start();
    CaptureStdout();
    EXPECT_TRUE(mpDiscover->EnsureListening());
    EXPECT_EQ(GetCapturedStdout(), "Discover: Socket created\n");
    Send("127.0.0.5", "Phone:FileServer:1;");
    EXPECT_TRUE(WaitForDevices({"127.0.0.5 Phone"}));
}

// --- Listening ---

TEST_F(DiscoverTest, ListsADevice) {
    Start();
    CaptureStdout();
    Send("127.0.0.5", "Phone:FileServer:10240;");
    const bool listed = WaitForDevices({"127.0.0.5 Phone"});
    EXPECT_THAT(GetCapturedStdout(), HasSubstr("New device host: 127.0.0.5\n"));
    ASSERT_TRUE(listed);
    EXPECT_EQ(mpDiscover->GetDeviceList().front().dateValue, mNow);
    EXPECT_THAT(Desktops(), IsEmpty());
}

TEST_F(DiscoverTest, ASecondAnnouncementRenamesAndRefreshes) {
    Start();
    Send("127.0.0.5", "Phone:FileServer:10240;");
    ASSERT_TRUE(WaitForDevices({"127.0.0.5 Phone"}));
    mNow += 3s;
    CaptureStdout();
    Send("127.0.0.5", "Phone2:FileServer:10240;");
    const bool renamed = WaitForDevices({"127.0.0.5 Phone2"});
    EXPECT_THAT(GetCapturedStdout(), Not(HasSubstr("New device")));
    ASSERT_TRUE(renamed);
    EXPECT_EQ(mpDiscover->GetDeviceList().front().dateValue, mNow);
}

TEST_F(DiscoverTest, OneDatagramCanAnnounceBothKinds) {
    Start();
    Send("127.0.0.5", "a:StreamPlayer:1;b:FileServer:2;");
    EXPECT_TRUE(WaitForDevices({"127.0.0.5 b"}));
    EXPECT_THAT(Desktops(), ElementsAre("127.0.0.5 a"));
}

TEST_F(DiscoverTest, TheLastOfOneKindCounts) {
    Start();
    Send("127.0.0.5", "a:FileServer:1;b:FileServer:2;");
    EXPECT_TRUE(WaitForDevices({"127.0.0.5 b"}));
}

TEST_F(DiscoverTest, OnlyADesktopsPortIsKept) {
    Start();
    Send("127.0.0.5", "a:StreamPlayer:77;b:FileServer:88;");
    ASSERT_TRUE(WaitForDevices({"127.0.0.5 b"}));
    const std::vector<HostRecord>& desktops = mpDiscover->GetDesktopList();
    EXPECT_EQ(std::ranges::find(desktops, "127.0.0.5", &HostRecord::hostValue)->portValue, 77);
    EXPECT_NE(mpDiscover->GetDeviceList().front().portValue, 88);
}

TEST_F(DiscoverTest, AnotherServiceIsLoggedAndChangesNothing) {
    Start();
    CaptureStdout();
    Send("127.0.0.5", "x:Printer:5;Phone:FileServer:1;");
    const bool listed = WaitForDevices({"127.0.0.5 Phone"}); // it goes on with the next
    EXPECT_THAT(GetCapturedStdout(), HasSubstr("Unknown option name received: Printer\n"));
    EXPECT_TRUE(listed);
    EXPECT_THAT(Desktops(), IsEmpty());
}

TEST_F(DiscoverTest, OwnAnnouncementsAreDropped) {
    Start();
    Send(kTestOwnAddress, "me:FileServer:1;");
    Send(kTestOwnAddress, "me:StreamPlayer:1;");
    Send("127.0.0.5", "Phone:FileServer:1;");
    ASSERT_TRUE(WaitForDevices({"127.0.0.5 Phone"})); // the receive went on
    EXPECT_THAT(Desktops(), IsEmpty());
}

TEST_F(DiscoverTest, ADeviceOnThisMachineIsAccepted) {
    Start();
    Send("127.0.0.1", "Here:FileServer:1;");
    EXPECT_TRUE(WaitForDevices({"127.0.0.1 Here"}));
}

TEST_F(DiscoverTest, ANewOwnAddressIsNoticedAtTheNextTick) {
    Start();
    mInterfaces->push_back({"wlan0", "127.0.0.98", false});
    mpDiscover->sendString();
    Send("127.0.0.98", "me:FileServer:1;");
    mInterfaces = std::nullopt; // what cannot be read changes nothing
    mpDiscover->sendString();
    Send("127.0.0.98", "me:FileServer:1;");
    WaitUntilHeard();
    EXPECT_THAT(Devices(), IsEmpty());
}

TEST_F(DiscoverTest, TheUnfinishedIsPassedOver) {
    Start();
    CaptureStdout();
    Send("127.0.0.5", "1:2");
    Send("127.0.0.5", "");
    WaitUntilHeard();
    EXPECT_THAT(GetCapturedStdout(), Not(HasSubstr("Malformed")));
    EXPECT_THAT(Devices(), IsEmpty());
}

TEST_F(DiscoverTest, AReceiveErrorDoesNotEndTheListening) {
    Start();
    AsyncUdpSocket socket(mpDiscover.get());
    std::optional<SocketError> error;
    ASSERT_TRUE(socket.bindToPort(0, error));
    DatagramPeer peer("127.0.0.5");
    ASSERT_TRUE(peer.Send("Phone:FileServer:1;", socket.localPort()));
    RunLoopPasses(5);
    ASSERT_THAT(Devices(), IsEmpty()); // nobody has asked this socket for a datagram yet
    mpDiscover->onUdpSocketDidNotReceiveDataWithTag(socket, 0, MakeErrnoError(ENOMEM));
    EXPECT_TRUE(WaitForDevices({"127.0.0.5 Phone"}));
}

// --- Expiry ---

TEST_F(DiscoverTest, ASilentDeviceGoesAtATickOnly) {
    Start();
    Send("127.0.0.5", "Phone:FileServer:1;");
    ASSERT_TRUE(WaitForDevices({"127.0.0.5 Phone"}));
    mNow += 11s;
    RunLoopPasses(5);
    EXPECT_THAT(Devices(), ElementsAre("127.0.0.5 Phone"));
    CaptureStdout();
    mpDiscover->sendString();
    EXPECT_THAT(GetCapturedStdout(), HasSubstr("Discover - Removing device host: Phone\n"));
    EXPECT_THAT(Devices(), IsEmpty());
}

TEST_F(DiscoverTest, TenSecondsAreNotTooLong) {
    Start();
    Send("127.0.0.5", "Phone:FileServer:1;");
    ASSERT_TRUE(WaitForDevices({"127.0.0.5 Phone"}));
    mNow += 10s;
    mpDiscover->sendString();
    EXPECT_THAT(Devices(), ElementsAre("127.0.0.5 Phone"));
    mNow += 1ms;
    mpDiscover->sendString();
    EXPECT_THAT(Devices(), IsEmpty());
}

TEST_F(DiscoverTest, DesktopsGoBeforeDevices) {
    Start();
    Send("127.0.0.5", "a:StreamPlayer:1;b:FileServer:2;");
    ASSERT_TRUE(WaitForDevices({"127.0.0.5 b"}));
    mNow += 11s;
    CaptureStdout();
    mpDiscover->sendString();
    EXPECT_THAT(GetCapturedStdout(), HasSubstr("Discover - Removing desktop host: a\n"
                                               "Discover - Removing device host: b\n"));
}

// --- Ending ---

TEST_F(DiscoverTest, EndsAnnouncingAndCanBeStartedAgain) {
    Start();
    mpDiscover->disconnectSocket();
    CaptureStdout();
    EXPECT_TRUE(mpDiscover->EnsureListening());
    EXPECT_EQ(GetCapturedStdout(), "Discover: Socket created\n");
    Send("127.0.0.5", "Phone:FileServer:1;");
    EXPECT_TRUE(WaitForDevices({"127.0.0.5 Phone"}));
}

TEST_F(DiscoverTest, CanBeDestroyedWhileListening) {
    Start();
    Send("127.0.0.5", "Phone:FileServer:1;");
    mpDiscover.reset();
    RunLoopPasses(5);
}

} // namespace
