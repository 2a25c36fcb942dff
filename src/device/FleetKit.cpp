// The exported functions that ask for more, or less, than one record; the others are generated.
#include "device/FleetKit.h"

#include "device/FacadeCalls.h"
#include "device/StructConversions.h"

using namespace fleetkit;
using namespace NS_TARN_STRUCT;
using namespace FacadeCalls;

namespace {

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

int FleetKit::setDeviceReset(const long& handle, const std::vector<int>& holdTypes) {
    return perform(handle, &Operations::reset, holdTypes);
}

int FleetKit::setDeviceHostNetwork(const long& handle, const int&, const HostNetwork& network) {
    return perform(handle, &Operations::setHostNetwork, network);
}

int FleetKit::exeCommand(const long& handle, const std::string& command, std::string&) {
    return perform(handle, &Operations::execute, command);
}

int FleetKit::getTimeZoneAbility(const long& handle, int languageId, TimeZoneAbility& ability) {
    return perform(handle, &Operations::getTimeZoneAbility, languageId, ability);
}

int FleetKit::getTimeZoneDefaultParam(const long& handle, int timeZoneId, TimeZoneParam& timeZone) {
    return perform(handle, &Operations::getTimeZoneDefault, timeZoneId, timeZone);
}

int FleetKit::setAllAVStreamParam(const long& handle, const tagAllAVStreamParam& streams) {
    return perform(handle, &Operations::setAllAVStreams, recordsOf<AVStreamParam>(streams));
}

int FleetKit::getAllAVStreamParam(const long& handle, tagAllAVStreamParam& streams) {
    auto vecStreams = recordsOf<AVStreamParam>(streams);
    const int nCode = perform(handle, &Operations::getAllAVStreams, vecStreams);
    return fillStructure(nCode, vecStreams, streams);
}

int FleetKit::setAVStreamParam(const long& handle, const int& channel,
                               const tagAllAVStreamParam& streams) {
    return performOn(handle, channel, &Operations::setAllAVStreams,
                     recordsOf<AVStreamParam>(streams));
}

int FleetKit::setAVStreamParam(const long& handle, const int& channel, const int&,
                               const AVStreamParam& param) {
    return performOn(handle, channel, &Operations::setAVStream, param);
}

int FleetKit::getAVStreamParam(const long& handle, const int& channel,
                               tagAllAVStreamParam& streams) {
    std::vector<AVStreamParam> vecStreams;
    const int nCode = performOn(handle, channel, &Operations::getAllAVStreams, vecStreams);
    return fillStructure(nCode, vecStreams, streams);
}

int FleetKit::getAVStreamParam(const long& handle, const int& channel, const int& stream,
                               AVStreamParam& param) {
    return performOn(handle, channel, &Operations::getAVStream, stream, param);
}

int FleetKit::getOSDUserParam(const long& handle, int channel, OSDUserParam& param) {
    return setOSDUserParam(handle, channel, param);
}

int FleetKit::setOSDUserParam(const long& handle, int channel, const OSDUserParam& param) {
    return performOn(handle, channel, &Operations::setOSDUserParam, param);
}

int FleetKit::setAllOSDUserParam(const long& handle, const tagOSDUserParamList& params) {
    return perform(handle, &Operations::setAllOSDUserParams, recordsOf<OSDUserParam>(params));
}

int FleetKit::getAllOSDUserParam(const long& handle, tagOSDUserParamList& params) {
    std::vector<OSDUserParam> vecParams;
    const int nCode = perform(handle, &Operations::getAllOSDUserParams, vecParams);
    return fillStructure(nCode, vecParams, params);
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
