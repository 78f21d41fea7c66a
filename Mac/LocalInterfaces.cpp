#include "LocalInterfaces.h"

#include "HostResolver.h"

#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>

#include <cstring>
#include <memory>

namespace {

SocketAddress CopyAddress(const sockaddr* zpAddress) {
    SocketAddress address;
    if (zpAddress != nullptr) {
        address.length = zpAddress->sa_family == AF_INET    ? sizeof(sockaddr_in)
                         : zpAddress->sa_family == AF_INET6 ? sizeof(sockaddr_in6)
                                                            : 0;
        std::memcpy(&address.storage, zpAddress, address.length);
    }
    return address;
}

} // namespace

std::optional<std::vector<LocalInterface>> ReadLocalInterfaces() {
    ifaddrs* pList = nullptr;
    if (::getifaddrs(&pList) != 0) {
        return std::nullopt;
    }
    const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> owner(pList, &::freeifaddrs);
    std::vector<LocalInterface> interfaces;
    for (const ifaddrs* pEntry = pList; pEntry != nullptr; pEntry = pEntry->ifa_next) {
        const SocketAddress address = CopyAddress(pEntry->ifa_addr);
        if (address.IsInternet()) {
            interfaces.push_back(
                {pEntry->ifa_name, address.GetHost(), (pEntry->ifa_flags & IFF_LOOPBACK) != 0});
        }
    }
    return interfaces;
}
