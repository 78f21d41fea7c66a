#include "PrivateNetwork.h"

#include <arpa/inet.h>
#include <net/if.h>
#include <net/route.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <string>

namespace {

void MapToRoot(unsigned user, unsigned group) {
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
    std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
}

sockaddr Internet(const char* address) {
    sockaddr_in internet{};
    internet.sin_family = AF_INET;
    ::inet_pton(AF_INET, address, &internet.sin_addr);
    sockaddr any{};
    std::memcpy(&any, &internet, sizeof any);
    return any;
}

bool SwitchLoopbackOn(int control) {
    ifreq request{};
    std::strcpy(request.ifr_name, "lo");
    request.ifr_flags = IFF_UP | IFF_RUNNING | IFF_LOOPBACK | IFF_MULTICAST;
    return ::ioctl(control, SIOCSIFFLAGS, &request) == 0;
}

bool RouteMulticastToLoopback(int control) {
    std::string device = "lo";
    rtentry route{};
    route.rt_dst = Internet("224.0.0.0");
    route.rt_genmask = Internet("240.0.0.0");
    route.rt_flags = RTF_UP;
    route.rt_dev = device.data();
    return ::ioctl(control, SIOCADDRT, &route) == 0;
}

} // namespace

bool EnterPrivateNetwork() {
    const unsigned user = ::geteuid();
    const unsigned group = ::getegid();
    if (::unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) {
        return false;
    }
    MapToRoot(user, group);
    const int control = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const bool ready = SwitchLoopbackOn(control) && RouteMulticastToLoopback(control);
    ::close(control);
    return ready;
}
