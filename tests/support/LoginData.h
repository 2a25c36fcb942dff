// How to log in to a device on the loopback.
#pragma once

#include <string>

#include "domain/DeviceInfoEx.h"
#include "support/Addresses.h"

inline DeviceInfoEx loginData(std::uint16_t nPort, const std::string& strPassword = "admin") {
    DeviceInfoEx info;
    info.setDeviceAddr(addressOf(Loopback, nPort));
    info.setUserID("admin");
    info.setPassword(strPassword);
    return info;
}
