// What the virtual device does for each command that it serves.
#pragma once

#include <cstdint>

#include "virtual-device/DeviceOptions.h"
#include "virtual-device/DeviceState.h"
#include "virtual-device/Request.h"

// One command on its way through a handler.
struct CommandCall {
    const Request& request;
    const DeviceOptions& options;
    DeviceState& state;
    std::uint32_t& nSession;     // of the connection; 0 without one
    std::uint32_t nFreeSession;  // the number that a login takes
    DomainList vecReply;         // records of the answer, its result apart; sent on success only
    bool bRestarts = false;
};

// Does what the request asks for; gives a DeviceResult.
int handleCommand(CommandCall& call);

// Whether enciphered credentials, as they came in a request, are those of the device.
bool areCredentials(const DeviceOptions& options, const DeviceState& state,
                    const std::string& strUser, const std::string& strPassword);

// Replaces networks by their number, where 0 stands for the first one. A `DeviceResult`.
int setHostNetworks(DeviceState& state, const std::vector<HostNetwork>& vecNetworks);
