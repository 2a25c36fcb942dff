// Finds the address, logs in and out.
#include "DeviceSession.h"

#include <fleetkit/FleetKit.h>
#include <fleetkit/Login.h>
#include <fleetkit/domain/DeviceInfoEx.h>
#include <netdb.h>
#include <sys/socket.h>

#include <array>
#include <charconv>
#include <limits>
#include <memory>

#include "UsageError.h"

using namespace fleetkit;

namespace {

constexpr int IPv4 = 1;
constexpr int IPv6 = 2;

unsigned short parsePort(const std::string& strText, const std::string& strWhole) {
    unsigned nPort = 0;
    const auto [pEnd, nError] =
        std::from_chars(strText.data(), strText.data() + strText.size(), nPort);
    if (nError != std::errc() || pEnd != strText.data() + strText.size() || nPort == 0 ||
        nPort > std::numeric_limits<unsigned short>::max()) {
        throw UsageError("'" + strWhole + "' has to end in a port from 1 to 65535");
    }
    return static_cast<unsigned short>(nPort);
}

// The first address of the host, of either version: what the library looks up by itself finds IPv4
// addresses only.
void resolve(const std::string& strHost, InetAddr& address) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* pFirst = nullptr;
    if (getaddrinfo(strHost.c_str(), nullptr, &hints, &pFirst) != 0) {
        return;
    }
    const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owner(pFirst, freeaddrinfo);
    std::array<char, NI_MAXHOST> arrText{};
    if (getnameinfo(pFirst->ai_addr, pFirst->ai_addrlen, arrText.data(),
                    static_cast<socklen_t>(arrText.size()), nullptr, 0, NI_NUMERICHOST) == 0) {
        address.setIP(arrText.data());
        address.setIPProtoVer(pFirst->ai_family == AF_INET6 ? IPv6 : IPv4);
    }
}

DeviceInfoEx loginData(const InetAddr& address, const std::string& strUser,
                       const std::string& strPassword) {
    DeviceInfoEx info;
    info.setDeviceAddr(address);
    info.setUserID(strUser);
    info.setPassword(strPassword);
    return info;
}

}  // namespace

InetAddr parseDeviceAddress(const std::string& strText) {
    const std::size_t nColon = strText.rfind(':');
    if (nColon == std::string::npos || nColon == 0) {
        throw UsageError("'" + strText + "' is not of the form HOST:PORT");
    }
    std::string strHost = strText.substr(0, nColon);
    if (strHost.size() > 2 && strHost.front() == '[' && strHost.back() == ']') {
        strHost = strHost.substr(1, strHost.size() - 2);
    } else if (strHost.find_first_of(":[]") != std::string::npos) {
        throw UsageError("'" + strText + "': an IPv6 address stands in brackets, [::1]:30001");
    }
    InetAddr address;
    address.setPORT(parsePort(strText.substr(nColon + 1), strText));
    resolve(strHost, address);
    return address;
}

DeviceSession::DeviceSession(const InetAddr& address, const std::string& strUser,
                             const std::string& strPassword, int nTimeoutMs)
    : m_nCode(login(loginData(address, strUser, strPassword), m_nHandle, nTimeoutMs)) {}

DeviceSession::~DeviceSession() {
    if (m_nCode == ErrorCode::Success) {
        FleetKit::Logout(m_nHandle);
    }
}
