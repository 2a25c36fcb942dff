// The network interfaces, as Linux lists them.
#include "Product/Technic/platform/InterfaceList.h"

#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string>

#include "Product/Technic/platform/NameResolution.h"

namespace {

struct ListDeleter {
    void operator()(ifaddrs* pList) const noexcept { ::freeifaddrs(pList); }
};

// The list has an interface once for itself and once for each of its addresses, there under the
// label of the address if it has one: the name, a colon, and more.
NetworkAdapter& adapterOf(const char* pszLabel, std::vector<NetworkAdapter>& vecAdapters) {
    const std::string strName(pszLabel, std::strcspn(pszLabel, ":"));
    const auto it =
        std::find_if(vecAdapters.begin(), vecAdapters.end(),
                     [&](const NetworkAdapter& adapter) { return adapter.strName == strName; });
    return it != vecAdapters.end() ? *it : vecAdapters.emplace_back(NetworkAdapter{strName, {}});
}

void appendAddress(const sockaddr& raw, std::vector<InetAddr>& vecAddresses) {
    const bool bIPv6 = raw.sa_family == AF_INET6;
    if (!bIPv6 && raw.sa_family != AF_INET) {
        return;
    }
    SocketApi::Address address;
    address.nLength = bIPv6 ? sizeof(sockaddr_in6) : sizeof(sockaddr_in);
    std::memcpy(address.arrBytes.data(), &raw, address.nLength);
    std::array<char, 128> arrText{};
    std::uint16_t nPort = 0;
    if (SocketApi::describe(address, arrText.data(), arrText.size(), nPort) < 0) {
        return;
    }
    InetAddr described;
    described.setIP(arrText.data());
    described.setIPProtoVer(bIPv6 ? 2 : 1);
    vecAddresses.push_back(described);
}

}  // namespace

bool listSystemAdapters(std::vector<NetworkAdapter>& vecAdapters) {
    ifaddrs* pFirst = nullptr;
    if (::getifaddrs(&pFirst) < 0) {
        return false;
    }
    const std::unique_ptr<ifaddrs, ListDeleter> list(pFirst);
    for (const ifaddrs* pEntry = pFirst; pEntry != nullptr; pEntry = pEntry->ifa_next) {
        if ((pEntry->ifa_flags & IFF_UP) == 0 || (pEntry->ifa_flags & IFF_LOOPBACK) != 0) {
            continue;
        }
        NetworkAdapter& adapter = adapterOf(pEntry->ifa_name, vecAdapters);
        if (pEntry->ifa_addr != nullptr) {
            appendAddress(*pEntry->ifa_addr, adapter.vecAddresses);
        }
    }
    return true;
}
