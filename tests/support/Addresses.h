// Network addresses as a test writes them down.
#pragma once

#include <cstdint>
#include <string>

#include "Product/Technic/InetAddr.h"

constexpr const char* Loopback = "127.0.0.1";

inline InetAddr addressOf(const std::string& strIP, std::uint16_t nPort = 0, int nIPProtoVer = 1) {
    InetAddr address;
    address.setIP(strIP);
    address.setPORT(nPort);
    address.setIPProtoVer(nIPProtoVer);
    return address;
}
