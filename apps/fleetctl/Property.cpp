// The table of names, with the library function behind each of them.
#include "Property.h"

#include <fleetkit/FleetKit.h>
#include <fleetkit/StructConversions.h>
#include <fleetkit/domain/AudioExAbility.h>
#include <fleetkit/domain/BlindAbility.h>
#include <fleetkit/domain/DevicePort.h>
#include <fleetkit/domain/DeviceSummaryInfo.h>
#include <fleetkit/domain/DeviceTime.h>
#include <fleetkit/domain/DiskAbility.h>
#include <fleetkit/domain/ExternUARTAbility.h>
#include <fleetkit/domain/HardwareCapability.h>
#include <fleetkit/domain/HostNetwork.h>
#include <fleetkit/domain/LanguageAbility.h>
#include <fleetkit/domain/MotionDetectionAbility.h>
#include <fleetkit/domain/NTPParam.h>
#include <fleetkit/domain/NetworkAbility.h>
#include <fleetkit/domain/OSDAbility.h>
#include <fleetkit/domain/PTZAbilityParam.h>
#include <fleetkit/domain/ProtocolSecurityParam.h>
#include <fleetkit/domain/SensorAbility.h>
#include <fleetkit/domain/SoftwareCapability.h>
#include <fleetkit/domain/TimeZoneAbility.h>
#include <fleetkit/domain/TimeZoneParam.h>
#include <fleetkit/domain/VideoAbility.h>

#include <algorithm>

#include "StructRoom.h"
#include "UsageError.h"

using namespace fleetkit;
using namespace NS_TARN_STRUCT;

namespace {

constexpr int CameraType = 1;
constexpr int RecorderType = 5;
constexpr int AllChannels = -1;

template <class T>
Value makeRecord() {
    return {{false, &T::descriptor(), FieldKind::Record}, std::make_shared<T>()};
}

template <class T>
Value makeList() {
    return {{true, &T::descriptor(), FieldKind::RecordList}, std::make_shared<std::vector<T>>()};
}

template <class T, int (*Get)(const long&, T&)>
int plainGet(const Call& call, void* pObject) {
    return Get(call.nHandle, *static_cast<T*>(pObject));
}

template <class T, int (*Set)(const long&, const T&)>
int plainSet(const Call& call, const void* pObject) {
    return Set(call.nHandle, *static_cast<const T*>(pObject));
}

// For the functions with an argument that the library ignores.
template <class T, int (*Set)(const long&, const int&, const T&)>
int setWithIgnored(const Call& call, const void* pObject) {
    return Set(call.nHandle, 0, *static_cast<const T*>(pObject));
}

template <class T, int (*Get)(const long&, const int&, const int&, T&)>
int getAbility(const Call& call, void* pObject) {
    return Get(call.nHandle, call.selection.type.value_or(CameraType),
               call.selection.channel.value_or(AllChannels), *static_cast<T*>(pObject));
}

int getTimeZoneAbility(const Call& call, void* pObject) {
    return FleetKit::getTimeZoneAbility(call.nHandle, call.selection.language.value_or(0),
                                        *static_cast<TimeZoneAbility*>(pObject));
}

int getTimeZoneDefault(const Call& call, void* pObject) {
    return FleetKit::getTimeZoneDefaultParam(call.nHandle, call.selection.timeZone.value_or(0),
                                             *static_cast<TimeZoneParam*>(pObject));
}

int getStreams(const Call& call, void* pObject) {
    const auto pStreams = std::make_unique<tagAllAVStreamParam>();
    const int nCode =
        call.selection.channel
            ? FleetKit::getAVStreamParam(call.nHandle, *call.selection.channel, *pStreams)
            : FleetKit::getAllAVStreamParam(call.nHandle, *pStreams);
    toRecords(pStreams.get(), static_cast<std::vector<AVStreamParam>*>(pObject));
    return nCode;
}

int setStreams(const Call& call, const void* pObject) {
    const auto* pRecords = static_cast<const std::vector<AVStreamParam>*>(pObject);
    requireRoom(*pRecords);
    const auto pStreams = std::make_unique<tagAllAVStreamParam>();
    toStructure(pRecords, pStreams.get());
    return call.selection.channel
               ? FleetKit::setAVStreamParam(call.nHandle, *call.selection.channel, *pStreams)
               : FleetKit::setAllAVStreamParam(call.nHandle, *pStreams);
}

int getStream(const Call& call, void* pObject) {
    return FleetKit::getAVStreamParam(call.nHandle, call.selection.channel.value(),
                                      call.selection.stream.value(),
                                      *static_cast<AVStreamParam*>(pObject));
}

int setStream(const Call& call, const void* pObject) {
    return FleetKit::setAVStreamParam(call.nHandle, call.selection.channel.value(),
                                      call.selection.stream.value(),
                                      *static_cast<const AVStreamParam*>(pObject));
}

int getOSD(const Call& call, void* pObject) {
    const auto pParams = std::make_unique<tagOSDUserParamList>();
    const int nCode = FleetKit::getAllOSDUserParam(call.nHandle, *pParams);
    toRecords(pParams.get(), static_cast<std::vector<OSDUserParam>*>(pObject));
    return nCode;
}

int setOSD(const Call& call, const void* pObject) {
    const auto* pRecords = static_cast<const std::vector<OSDUserParam>*>(pObject);
    requireRoom(*pRecords);
    const auto pParams = std::make_unique<tagOSDUserParamList>();
    toStructure(pRecords, pParams.get());
    return FleetKit::setAllOSDUserParam(call.nHandle, *pParams);
}

// The library reads all of them or none.
int getOSDOfChannel(const Call& call, void* pObject) {
    std::vector<OSDUserParam> vecAll;
    const int nCode = getOSD(call, &vecAll);
    if (nCode != ErrorCode::Success) {
        return nCode;
    }
    const auto pFound = std::find_if(vecAll.begin(), vecAll.end(), [&](const OSDUserParam& param) {
        return param.getCameraId() == call.selection.channel.value();
    });
    if (pFound == vecAll.end()) {
        return ErrorCode::BadReply;
    }
    *static_cast<OSDUserParam*>(pObject) = *pFound;
    return nCode;
}

int setOSDOfChannel(const Call& call, const void* pObject) {
    return FleetKit::setOSDUserParam(call.nHandle, call.selection.channel.value(),
                                     *static_cast<const OSDUserParam*>(pObject));
}

int getChannels(const Call& call, void* pObject) {
    const auto pChannels = std::make_unique<tagAllChannelInfo>();
    const int nCode = FleetKit::getAllChannelInfo(
        call.nHandle, call.selection.type.value_or(RecorderType), *pChannels);
    toRecords(pChannels.get(), static_cast<std::vector<ChannelInfo>*>(pObject));
    return nCode;
}

int getChannel(const Call& call, void* pObject) {
    return FleetKit::getChannelInfo(call.nHandle, call.selection.type.value_or(RecorderType),
                                    call.selection.channel.value(),
                                    *static_cast<ChannelInfo*>(pObject));
}

template <class T, int (*Get)(const long&, const int&, const int&, T&)>
Property abilityRow(const char* szName, const char* szSummary) {
    return {szName,         szSummary,
            &makeRecord<T>, &getAbility<T, Get>,
            nullptr,        SelectorBit::Type | SelectorBit::Channel};
}

template <class T, int (*Get)(const long&, T&)>
Property readOnlyRow(const char* szName, const char* szSummary) {
    return {szName, szSummary, &makeRecord<T>, &plainGet<T, Get>, nullptr};
}

template <class T, int (*Get)(const long&, T&), int (*Set)(const long&, const T&)>
Property plainRow(const char* szName, const char* szSummary) {
    return {szName, szSummary, &makeRecord<T>, &plainGet<T, Get>, &plainSet<T, Set>};
}

std::string joinedNames() {
    std::string strNames;
    for (const Property& property : properties()) {
        strNames += std::string(" ") + property.szName;
    }
    return strNames;
}

}  // namespace

const std::vector<Selector>& selectors() {
    static const std::vector<Selector> vecSelectors = {
        {"--type", "Kind of device by its number, or ipc (1) or nvr (5)", SelectorBit::Type,
         &Selection::type},
        {"--channel", "Channel, by the device's number", SelectorBit::Channel, &Selection::channel},
        {"--stream", "Stream of the channel", SelectorBit::Stream, &Selection::stream},
        {"--language", "Language of the texts, by its number in `get language`",
         SelectorBit::Language, &Selection::language},
        {"--timezone", "Time zone, by its number in `get timezone-ability`", SelectorBit::TimeZone,
         &Selection::timeZone},
    };
    return vecSelectors;
}

const std::vector<Property>& properties() {
    using namespace SelectorBit;
    static const std::vector<Property> vecProperties = {
        {"time", "Date and time of the device's clock", &makeRecord<DeviceTime>,
         &plainGet<DeviceTime, &FleetKit::getDeviceTime>,
         &setWithIgnored<DeviceTime, &FleetKit::setDeviceReSetTime>},
        plainRow<TimeZoneParam, &FleetKit::getTimeZoneParam, &FleetKit::setTimeZoneParam>(
            "timezone", "Time zone and daylight saving time"),
        {"timezone-default", "Default of a time zone", &makeRecord<TimeZoneParam>,
         &getTimeZoneDefault, nullptr, TimeZone},
        plainRow<NTPParam, &FleetKit::getNTPParam, &FleetKit::setNTPParam>("ntp", "Time server"),
        plainRow<DevicePort, &FleetKit::getDevicePort, &FleetKit::setDevicePort>(
            "ports", "Ports that the device listens on"),
        plainRow<ProtocolSecurityParam, &FleetKit::getProtocolSecurityParam,
                 &FleetKit::setProtocolSecurityParam>("protocol-security",
                                                      "How the device's protocols are secured"),
        {"network", "Address of the device (every field has to be given)", &makeRecord<HostNetwork>,
         nullptr, &setWithIgnored<HostNetwork, &FleetKit::setDeviceHostNetwork>},
        readOnlyRow<HardwareCapability, &FleetKit::getHardwareCapability>("hardware",
                                                                          "What the hardware has"),
        readOnlyRow<SoftwareCapability, &FleetKit::getSoftwareCapability>(
            "software", "What the firmware can do"),
        readOnlyRow<LanguageAbility, &FleetKit::getLanguageAbility>("language",
                                                                    "Languages of the device"),
        readOnlyRow<NetworkAbility, &FleetKit::getNetworkAbility>("network-ability",
                                                                  "What the network cards can do"),
        {"timezone-ability", "Time zones that the device knows", &makeRecord<TimeZoneAbility>,
         &getTimeZoneAbility, nullptr, Language},
        readOnlyRow<DeviceSummaryInfo, &FleetKit::getDeviceSummaryInfo>(
            "summary", "Maker, model, versions and state"),
        readOnlyRow<DiskAbility, &FleetKit::getDiskAbility>("disks", "Disks and what they can do"),
        readOnlyRow<ExternUARTAbility, &FleetKit::getExternUARTAbility>("uart", "Serial ports"),
        abilityRow<VideoAbility, &FleetKit::getVideoAbility>("video",
                                                             "What the video encoders can do"),
        abilityRow<AudioExAbility, &FleetKit::getAudioAbility>("audio",
                                                               "What the audio encoders can do"),
        abilityRow<OSDAbility, &FleetKit::getOSDAbility>("osd-ability",
                                                         "What on-screen texts can show"),
        abilityRow<PTZAbilityParam, &FleetKit::getPTZAbility>(
            "ptz", "What the pan, tilt and zoom drive can do"),
        abilityRow<MotionDetectionAbility, &FleetKit::getMotionDetectionAbility>(
            "motion", "What motion detection can do"),
        abilityRow<BlindAbility, &FleetKit::getBlindAbility>("blind", "What privacy masks can do"),
        abilityRow<SensorAbility, &FleetKit::getSensorAbility>(
            "sensor", "What the image sensor can do (cameras only)"),
        {"streams", "All streams, or those of one channel", &makeList<AVStreamParam>, &getStreams,
         &setStreams, Channel},
        {"stream", "One stream of a channel", &makeRecord<AVStreamParam>, &getStream, &setStream,
         Channel | Stream, Channel | Stream},
        {"osd", "On-screen texts of all channels", &makeList<OSDUserParam>, &getOSD, &setOSD},
        {"osd-channel", "On-screen texts of one channel", &makeRecord<OSDUserParam>,
         &getOSDOfChannel, &setOSDOfChannel, Channel, Channel},
        {"channels", "All channels of a recorder", &makeList<ChannelInfo>, &getChannels, nullptr,
         Type},
        {"channel", "One channel of a recorder", &makeRecord<ChannelInfo>, &getChannel, nullptr,
         Type | Channel, Channel},
    };
    return vecProperties;
}

const Property& findProperty(const std::string& strName) {
    for (const Property& property : properties()) {
        if (strName == property.szName) {
            return property;
        }
    }
    throw UsageError("unknown name '" + strName + "'; the names are:" + joinedNames());
}

void requireSelectors(const Property& property, const Selection& selection) {
    for (const Selector& selector : selectors()) {
        if ((property.nNeeds & selector.nBit) != 0 && !(selection.*selector.pMember)) {
            throw UsageError(std::string(property.szName) + " needs " + selector.szOption);
        }
    }
}

void refuseOtherSelectors(const std::vector<const Property*>& vecProperties,
                          const Selection& selection) {
    unsigned nUses = 0;
    for (const Property* pProperty : vecProperties) {
        nUses |= pProperty->nUses;
    }
    for (const Selector& selector : selectors()) {
        if (selection.*selector.pMember && (nUses & selector.nBit) == 0) {
            throw UsageError(std::string(selector.szOption) + " has no meaning for " +
                             vecProperties.front()->szName);
        }
    }
}
