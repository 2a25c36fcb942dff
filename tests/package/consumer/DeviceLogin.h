// A login for the length of a scope.
#pragma once

#include <fleetkit/FleetKit.h>
#include <fleetkit/Product/Technic/InetAddr.h>
#include <fleetkit/domain/DeviceInfoEx.h>

#include <cstdlib>

struct DeviceLogin {
    DeviceLogin(const char* szPort, const char* szPassword) {
        InetAddr address;
        address.setIP("127.0.0.1");
        address.setPORT(static_cast<unsigned short>(std::strtoul(szPort, nullptr, 10)));
        address.setIPProtoVer(1);
        DeviceInfoEx device;
        device.setDeviceAddr(address);
        device.setUserID("admin");
        device.setPassword(szPassword);
        m_nCode = FleetKit::Login(device, m_nHandle);
    }
    DeviceLogin(const DeviceLogin&) = delete;
    ~DeviceLogin() {
        if (m_nCode == fleetkit::ErrorCode::Success) {
            FleetKit::Logout(m_nHandle);
        }
    }

    long m_nHandle = 0;
    int m_nCode = fleetkit::ErrorCode::Failed;
};
