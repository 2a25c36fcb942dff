// How to log in to a virtual device.
#pragma once

#include <cstdint>
#include <string>

#include "domain/DeviceInfoEx.h"

inline DeviceInfoEx loginData(std::uint16_t nPort, const std::string& strIP = "127.0.0.1") {
    InetAddr address;
    address.setIP(strIP);
    address.setPORT(nPort);
    address.setIPProtoVer(1);
    DeviceInfoEx info;
    info.setDeviceAddr(address);
    info.setUserID("admin");
    info.setPassword("admin");
    return info;
}
