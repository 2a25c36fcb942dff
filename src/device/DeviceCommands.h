// The commands of the device operations.
#pragma once

#include <cstdint>

#include "domain/AudioExAbility.h"
#include "domain/BlindAbility.h"
#include "domain/DevicePort.h"
#include "domain/DeviceSummaryInfo.h"
#include "domain/DeviceTime.h"
#include "domain/DiskAbility.h"
#include "domain/ExternUARTAbility.h"
#include "domain/HardwareCapability.h"
#include "domain/LanguageAbility.h"
#include "domain/MotionDetectionAbility.h"
#include "domain/NTPParam.h"
#include "domain/NetworkAbility.h"
#include "domain/OSDAbility.h"
#include "domain/PTZAbilityParam.h"
#include "domain/ProtocolSecurityParam.h"
#include "domain/SensorAbility.h"
#include "domain/SoftwareCapability.h"
#include "domain/TimeZoneParam.h"
#include "domain/VideoAbility.h"

namespace DeviceCommand {

constexpr std::uint32_t None = 0;

// The command that reads a record of this type, where its channel is all that the request tells.
template <class Record>
inline constexpr std::uint32_t Read = None;
template <>
inline constexpr std::uint32_t Read<HardwareCapability> = 30003;
template <>
inline constexpr std::uint32_t Read<SoftwareCapability> = 30005;
template <>
inline constexpr std::uint32_t Read<LanguageAbility> = 30007;
template <>
inline constexpr std::uint32_t Read<VideoAbility> = 30009;
template <>
inline constexpr std::uint32_t Read<OSDAbility> = 30011;
template <>
inline constexpr std::uint32_t Read<AudioExAbility> = 30013;
template <>
inline constexpr std::uint32_t Read<PTZAbilityParam> = 30015;
template <>
inline constexpr std::uint32_t Read<NetworkAbility> = 30017;
template <>
inline constexpr std::uint32_t Read<MotionDetectionAbility> = 30021;
template <>
inline constexpr std::uint32_t Read<BlindAbility> = 30025;
template <>
inline constexpr std::uint32_t Read<SensorAbility> = 30031;
template <>
inline constexpr std::uint32_t Read<DeviceTime> = 30507;
template <>
inline constexpr std::uint32_t Read<TimeZoneParam> = 30515;
template <>
inline constexpr std::uint32_t Read<DevicePort> = 30523;
template <>
inline constexpr std::uint32_t Read<DeviceSummaryInfo> = 30541;
template <>
inline constexpr std::uint32_t Read<ProtocolSecurityParam> = 32021;
template <>
inline constexpr std::uint32_t Read<NTPParam> = 32712;
template <>
inline constexpr std::uint32_t Read<DiskAbility> = 41275;
template <>
inline constexpr std::uint32_t Read<ExternUARTAbility> = 41278;

// The command that writes one.
template <class Record>
inline constexpr std::uint32_t Write = None;
template <>
inline constexpr std::uint32_t Write<DeviceTime> = 30509;
template <>
inline constexpr std::uint32_t Write<TimeZoneParam> = 30517;
template <>
inline constexpr std::uint32_t Write<DevicePort> = 30525;
template <>
inline constexpr std::uint32_t Write<ProtocolSecurityParam> = 32023;
template <>
inline constexpr std::uint32_t Write<NTPParam> = 32714;

// The commands with more, or less, in their requests.
constexpr std::uint32_t Reset = 18001;
constexpr std::uint32_t Restart = 18002;
constexpr std::uint32_t ReadTimeZoneAbility = 30033;
constexpr std::uint32_t Execute = 30547;
constexpr std::uint32_t HostNetworkWritten = 32505;  // the answer over multicast
constexpr std::uint32_t WriteHostNetwork = 32506;
constexpr std::uint32_t ChangePassword = 33509;
constexpr std::uint32_t ReadAVStreams = 35008;
constexpr std::uint32_t WriteAVStreams = 35010;
constexpr std::uint32_t WriteOSDUserParam = 35021;
constexpr std::uint32_t ReadOSDUserParams = 35022;
constexpr std::uint32_t ReadChannels = 41259;

}  // namespace DeviceCommand
