// Everything that a virtual device remembers about itself, connections and sessions apart.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "domain/AVStreamParam.h"
#include "domain/ChannelInfo.h"
#include "domain/HostNetwork.h"
#include "domain/OSDUserParam.h"
#include "domain/TimeZoneAbility.h"
#include "domain/TimeZoneParam.h"
#include "virtual-device/DeviceOptions.h"
#include "virtual-device/RecordStore.h"

struct DeviceState {
    std::string strPassword;
    RecordStore records;  // what there is once: all that plain commands read and write

    std::vector<ChannelInfo> vecChannels;
    std::vector<AVStreamParam> vecStreams;  // all streams of all channels
    std::vector<OSDUserParam> vecOSD;       // one a channel
    std::vector<HostNetwork> vecHostNetworks;
    std::vector<TimeZoneAbility> vecTimeZones;       // one a language, in the languages' order
    std::vector<TimeZoneParam> vecTimeZoneDefaults;  // one a time zone
    std::int64_t nClockOffset = 0;     // seconds that the device's clock is ahead of UTC
    std::string strLastSystemCommand;  // taken note of, never run
};

// The state of a device that was never set. Of the options, the port is the one that it listens on.
// Throws std::logic_error when a text of factory/ is not what it should be.
DeviceState factoryState(const DeviceOptions& options);
