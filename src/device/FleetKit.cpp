// The frame of every exported function: find the instance, bind a controller to the session, have
// it perform one operation.
#include "device/FleetKit.h"

#include <QByteArray>
#include <QString>

#include "device/DeviceSearchChannel.h"
#include "device/FleetKitImpl.h"
#include "device/SDK_IPCDeviceController.h"
#include "device/SDK_NVRDeviceController.h"
#include "device/StructConversions.h"

using namespace fleetkit;
using namespace NS_TARN_STRUCT;

namespace {

using Impl = DeviceControllerImpl;

// `operation` takes the controller.
template <class Controller, class Operation>
int withController(const long& handle, const Operation& operation) {
    if (FleetKitImpl::instance() == nullptr) {
        return ErrorCode::Failed;
    }
    Controller controller;
    return controller.attachSession(handle) ? operation(controller) : ErrorCode::Failed;
}

// An operation for the whole device, and one for a channel.
template <class Operation, class... Args>
int perform(const long& handle, Operation pOperation, Args&&... args) {
    return withController<SDK_DeviceController>(
        handle, [&](auto& device) { return device.perform(pOperation, args...); });
}

template <class Operation, class... Args>
int performOn(const long& handle, int nChannel, Operation pOperation, Args&&... args) {
    return withController<SDK_DeviceController>(
        handle, [&](auto& device) { return device.performOn(nChannel, pOperation, args...); });
}

template <class Record>
int get(const long& handle, Record& record) {
    return perform(handle, &Impl::get<Record>, record);
}

template <class Record>
int set(const long& handle, const Record& record) {
    return perform(handle, &Impl::set<Record>, record);
}

template <class Operation>
int withCamera(const long& handle, int nDeviceType, const Operation& operation) {
    return SDK_IPCDeviceController::serves(nDeviceType)
               ? withController<SDK_IPCDeviceController>(handle, operation)
               : ErrorCode::Failed;
}

template <class Operation>
int withRecorder(const long& handle, int nDeviceType, const Operation& operation) {
    return SDK_NVRDeviceController::serves(nDeviceType)
               ? withController<SDK_NVRDeviceController>(handle, operation)
               : ErrorCode::Failed;
}

template <class Ability>
int getAbility(const long& handle, int nDeviceType, int nChannel, Ability& ability) {
    if (SDK_IPCDeviceController::serves(nDeviceType)) {
        return withController<SDK_IPCDeviceController>(
            handle, [&](auto& camera) { return camera.getAbility(ability); });
    }
    return withRecorder(handle, nDeviceType,
                        [&](auto& recorder) { return recorder.getAbility(nChannel, ability); });
}

template <class Record, class Structure>
std::vector<Record> recordsOf(const Structure& structure) {
    std::vector<Record> vecRecords;
    toRecords(&structure, &vecRecords);
    return vecRecords;
}

// Only a get that succeeded fills the caller's structure.
template <class Record, class Structure>
int fillStructure(int nCode, const std::vector<Record>& vecRecords, Structure& structure) {
    if (nCode == ErrorCode::Success) {
        toStructure(&vecRecords, &structure);
    }
    return nCode;
}

}  // namespace

int FleetKit::Init() {
    return ErrorCode::Success;
}

int FleetKit::UnInit() {
    return ErrorCode::Success;
}

int FleetKit::Login(const DeviceInfoEx& info, long& handle) {
    FleetKitImpl* pImpl = FleetKitImpl::instance();
    return pImpl ? pImpl->login(info, handle) : ErrorCode::Failed;
}

int FleetKit::Logout(const long& handle) {
    FleetKitImpl* pImpl = FleetKitImpl::instance();
    return pImpl ? pImpl->logout(handle) : ErrorCode::Failed;
}

int FleetKit::setDevicePasswd(const long& handle, const QString& oldPassword,
                              const QString& newPassword) {
    return perform(handle, &Impl::setPassword, oldPassword.toStdString(),
                   newPassword.toStdString());
}

int FleetKit::setDeviceRestart(const long& handle) {
    return perform(handle, &Impl::restart);
}

int FleetKit::setDeviceReset(const long& handle, const std::vector<int>& holdTypes) {
    return perform(handle, &Impl::reset, holdTypes);
}

int FleetKit::setDeviceReSetTime(const long& handle, const int&, const DeviceTime& time) {
    return set(handle, time);
}

int FleetKit::setTimeZoneParam(const long& handle, const TimeZoneParam& timeZone) {
    return set(handle, timeZone);
}

int FleetKit::setDeviceHostNetwork(const long& handle, const int&, const HostNetwork& network) {
    return perform(handle, &Impl::setHostNetwork, network);
}

int FleetKit::setDeviceHostNetwork(const QString& deviceId, HostNetwork& network, User& user) {
    return FleetKitImpl::instance()
               ? setHostNetworkByMulticast(deviceId.toLocal8Bit().toStdString(), network, user)
               : ErrorCode::Failed;
}

int FleetKit::setNTPParam(const long& handle, const NTPParam& ntp) {
    return set(handle, ntp);
}

int FleetKit::exeCommand(const long& handle, const std::string& command, std::string&) {
    return perform(handle, &Impl::execute, command);
}

int FleetKit::getHardwareCapability(const long& handle, HardwareCapability& capability) {
    return get(handle, capability);
}

int FleetKit::getSoftwareCapability(const long& handle, SoftwareCapability& capability) {
    return get(handle, capability);
}

int FleetKit::getLanguageAbility(const long& handle, LanguageAbility& ability) {
    return get(handle, ability);
}

int FleetKit::getNetworkAbility(const long& handle, NetworkAbility& ability) {
    return get(handle, ability);
}

int FleetKit::getTimeZoneAbility(const long& handle, int languageId, TimeZoneAbility& ability) {
    return perform(handle, &Impl::getTimeZoneAbility, languageId, ability);
}

int FleetKit::getDeviceSummaryInfo(const long& handle, DeviceSummaryInfo& info) {
    return get(handle, info);
}

int FleetKit::getDiskAbility(const long& handle, DiskAbility& ability) {
    return get(handle, ability);
}

int FleetKit::getExternUARTAbility(const long& handle, ExternUARTAbility& ability) {
    return get(handle, ability);
}

int FleetKit::setDevicePort(const long& handle, const DevicePort& port) {
    return set(handle, port);
}

int FleetKit::getDevicePort(const long& handle, DevicePort& port) {
    return get(handle, port);
}

int FleetKit::getDeviceTime(const long& handle, DeviceTime& time) {
    return get(handle, time);
}

int FleetKit::getTimeZoneParam(const long& handle, TimeZoneParam& timeZone) {
    return get(handle, timeZone);
}

int FleetKit::getTimeZoneDefaultParam(const long& handle, int timeZoneId, TimeZoneParam& timeZone) {
    return perform(handle, &Impl::getTimeZoneDefault, timeZoneId, timeZone);
}

int FleetKit::getNTPParam(const long& handle, NTPParam& ntp) {
    return get(handle, ntp);
}

int FleetKit::setProtocolSecurityParam(const long& handle, const ProtocolSecurityParam& security) {
    return set(handle, security);
}

int FleetKit::getProtocolSecurityParam(const long& handle, ProtocolSecurityParam& security) {
    return get(handle, security);
}

int FleetKit::setAllAVStreamParam(const long& handle, const tagAllAVStreamParam& streams) {
    return perform(handle, &Impl::setAllAVStreams, recordsOf<AVStreamParam>(streams));
}

int FleetKit::getAllAVStreamParam(const long& handle, tagAllAVStreamParam& streams) {
    auto vecStreams = recordsOf<AVStreamParam>(streams);
    const int nCode = perform(handle, &Impl::getAllAVStreams, vecStreams);
    return fillStructure(nCode, vecStreams, streams);
}

int FleetKit::setAVStreamParam(const long& handle, const int& channel,
                               const tagAllAVStreamParam& streams) {
    return performOn(handle, channel, &Impl::setAllAVStreams, recordsOf<AVStreamParam>(streams));
}

int FleetKit::setAVStreamParam(const long& handle, const int& channel, const int&,
                               const AVStreamParam& param) {
    return performOn(handle, channel, &Impl::setAVStream, param);
}

int FleetKit::getAVStreamParam(const long& handle, const int& channel,
                               tagAllAVStreamParam& streams) {
    std::vector<AVStreamParam> vecStreams;
    const int nCode = performOn(handle, channel, &Impl::getAllAVStreams, vecStreams);
    return fillStructure(nCode, vecStreams, streams);
}

int FleetKit::getAVStreamParam(const long& handle, const int& channel, const int& stream,
                               AVStreamParam& param) {
    return performOn(handle, channel, &Impl::getAVStream, stream, param);
}

int FleetKit::getOSDUserParam(const long& handle, int channel, OSDUserParam& param) {
    return setOSDUserParam(handle, channel, param);
}

int FleetKit::setOSDUserParam(const long& handle, int channel, const OSDUserParam& param) {
    return performOn(handle, channel, &Impl::setOSDUserParam, param);
}

int FleetKit::setAllOSDUserParam(const long& handle, const tagOSDUserParamList& params) {
    return perform(handle, &Impl::setAllOSDUserParams, recordsOf<OSDUserParam>(params));
}

int FleetKit::getAllOSDUserParam(const long& handle, tagOSDUserParamList& params) {
    std::vector<OSDUserParam> vecParams;
    const int nCode = perform(handle, &Impl::getAllOSDUserParams, vecParams);
    return fillStructure(nCode, vecParams, params);
}

int FleetKit::getVideoAbility(const long& handle, const int& deviceType, const int& channel,
                              VideoAbility& ability) {
    return getAbility(handle, deviceType, channel, ability);
}

int FleetKit::getAudioAbility(const long& handle, const int& deviceType, const int& channel,
                              AudioExAbility& ability) {
    return getAbility(handle, deviceType, channel, ability);
}

int FleetKit::getBlindAbility(const long& handle, const int& deviceType, const int& channel,
                              BlindAbility& ability) {
    return getAbility(handle, deviceType, channel, ability);
}

int FleetKit::getOSDAbility(const long& handle, const int& deviceType, const int& channel,
                            OSDAbility& ability) {
    return getAbility(handle, deviceType, channel, ability);
}

int FleetKit::getMotionDetectionAbility(const long& handle, const int& deviceType,
                                        const int& channel, MotionDetectionAbility& ability) {
    return getAbility(handle, deviceType, channel, ability);
}

int FleetKit::getPTZAbility(const long& handle, const int& deviceType, const int& channel,
                            PTZAbilityParam& ability) {
    return getAbility(handle, deviceType, channel, ability);
}

int FleetKit::getSensorAbility(const long& handle, const int& deviceType, const int&,
                               SensorAbility& ability) {
    return withCamera(handle, deviceType,
                      [&](auto& camera) { return camera.getSensorAbility(ability); });
}

int FleetKit::getAllChannelInfo(const long& handle, const int& deviceType,
                                tagAllChannelInfo& channels) {
    std::vector<ChannelInfo> vecChannels;
    const int nCode = withRecorder(
        handle, deviceType, [&](auto& recorder) { return recorder.getAllChannels(vecChannels); });
    return fillStructure(nCode, vecChannels, channels);
}

int FleetKit::getChannelInfo(const long& handle, const int& deviceType, int channel,
                             ChannelInfo& info) {
    return withRecorder(handle, deviceType,
                        [&](auto& recorder) { return recorder.getChannel(channel, info); });
}

int FleetKit::startPlay(const long& window, const int&, const int&, const tagDeviceInfoEx& device) {
    FleetKitImpl* pImpl = FleetKitImpl::instance();
    return pImpl ? pImpl->startPlay(window, device) : ErrorCode::Failed;
}

int FleetKit::stopPlay() {
    return FleetKitImpl::instance() ? ErrorCode::Success : ErrorCode::Failed;
}
