// What a virtual device is made to be.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "virtual-device/Misbehaviour.h"

enum class DeviceKind { IPC, NVR };

struct DeviceOptions {
    std::string strBindAddress = "127.0.0.1";
    std::uint16_t nPort = 0;  // 0 takes a free one
    std::string strUser = "admin";
    std::string strPassword = "admin";
    DeviceKind nKind = DeviceKind::IPC;
    int nChannels = 1;  // numbered from 1
    int nStreams = 2;   // of each channel, numbered from 1
    std::string strDeviceId = "virtual-device";
    bool bMulticast = false;  // listens for the setting of its network without a session
    bool bVerbose = false;    // tells on standard error who logged in and what was asked
    std::size_t nMaxConnections = 64;
    std::chrono::milliseconds loginTime{10 * 1000};  // for a connection that is not logged in
    std::chrono::milliseconds idleTime{300 * 1000};  // for one that is, between its requests
    std::vector<Misbehaviour> vecMisbehaviours = {};
};
