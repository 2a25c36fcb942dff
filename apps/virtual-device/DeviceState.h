// Everything that a virtual device remembers about itself, connections and sessions apart.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "domain/AVStreamParam.h"
#include "domain/AudioExAbility.h"
#include "domain/BlindAbility.h"
#include "domain/ChannelInfo.h"
#include "domain/DevicePort.h"
#include "domain/DeviceSummaryInfo.h"
#include "domain/DiskAbility.h"
#include "domain/ExternUARTAbility.h"
#include "domain/HardwareCapability.h"
#include "domain/HostNetwork.h"
#include "domain/LanguageAbility.h"
#include "domain/MotionDetectionAbility.h"
#include "domain/NTPParam.h"
#include "domain/NetworkAbility.h"
#include "domain/OSDAbility.h"
#include "domain/OSDUserParam.h"
#include "domain/PTZAbilityParam.h"
#include "domain/ProtocolSecurityParam.h"
#include "domain/SensorAbility.h"
#include "domain/SoftwareCapability.h"
#include "domain/TimeZoneAbility.h"
#include "domain/TimeZoneParam.h"
#include "domain/VideoAbility.h"
#include "virtual-device/DeviceOptions.h"

struct DeviceState {
    std::string strPassword;

    // What the device is and can do.
    HardwareCapability hardware;
    SoftwareCapability software;
    LanguageAbility languages;
    VideoAbility video;  // one entry a channel
    OSDAbility osdAbility;
    AudioExAbility audio;
    PTZAbilityParam ptz;
    NetworkAbility networkCards;
    MotionDetectionAbility motion;
    BlindAbility blind;
    SensorAbility sensor;
    DiskAbility disks;
    ExternUARTAbility uart;
    DeviceSummaryInfo summary;
    std::vector<ChannelInfo> vecChannels;
    std::vector<TimeZoneAbility> vecTimeZones;       // one a language, in the languages' order
    std::vector<TimeZoneParam> vecTimeZoneDefaults;  // one a time zone

    // What can be set.
    std::vector<HostNetwork> vecHostNetworks;
    DevicePort ports;
    TimeZoneParam timeZone;
    NTPParam ntp;
    ProtocolSecurityParam security;
    std::vector<AVStreamParam> vecStreams;  // all streams of all channels
    std::vector<OSDUserParam> vecOSD;       // one a channel
    std::int64_t nClockOffset = 0;          // seconds that the device's clock is ahead of UTC
    std::string strLastSystemCommand;       // taken note of, never run
};

// The state of a device that was never set. Of the options, the port is the one that it listens on.
// Throws std::logic_error when a text of factory/ is not what it should be.
DeviceState factoryState(const DeviceOptions& options);
