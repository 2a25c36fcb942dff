// How to log in to a virtual device.
#pragma once

#include "domain/DeviceInfoEx.h"
#include "support/Addresses.h"

inline DeviceInfoEx loginData(std::uint16_t nPort) {
    DeviceInfoEx info;
    info.setDeviceAddr(addressOf(Loopback, nPort));
    info.setUserID("admin");
    info.setPassword("admin");
    return info;
}
