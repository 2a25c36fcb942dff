// The calls that ask for more than a session and a record.
#include "Calls.h"

#include <fleetkit/FleetKit.h>
#include <fleetkit/StructConversions.h>
#include <fleetkit/TextFunctions.h>
#include <fleetkit/domain/User.h>

#include <algorithm>

#include "FieldAssignment.h"
#include "StructLimits.h"
#include "UsageError.h"

using namespace fleetkit;
using namespace NS_TARN_STRUCT;

namespace {

constexpr std::size_t AnyNumber = std::numeric_limits<std::size_t>::max();

int typeOr(const Call& call, int nDefault) {
    return call.selection.type.value_or(nDefault);
}

HostNetwork networkOf(const CommandLine& line) {
    HostNetwork network;
    const Shape shape{false, &HostNetwork::descriptor(), FieldKind::Record};
    Json json = toJson(shape, &network);
    std::vector<FieldAssignment> vecAssignments;
    for (std::size_t i = 1; i < line.vecArguments.size(); ++i) {
        vecAssignments.push_back(parseAssignment(line.vecArguments[i], shape, line.strName));
        assign(vecAssignments.back(), shape, line.strName, json);
    }
    requireEveryField(vecAssignments, HostNetwork::descriptor(), line.strName);
    fromJson(json, shape, &network);
    return network;
}

}  // namespace

int Calls::getChannel(const Call& call, ChannelInfo& channel) {
    return FleetKit::getChannelInfo(call.nHandle, typeOr(call, RecorderType),
                                    call.selection.channel.value(), channel);
}

int Calls::getChannels(const Call& call, std::vector<ChannelInfo>& vecChannels) {
    const auto pChannels = std::make_unique<tagAllChannelInfo>();
    const int nCode =
        FleetKit::getAllChannelInfo(call.nHandle, typeOr(call, RecorderType), *pChannels);
    toRecords(pChannels.get(), &vecChannels);
    return nCode;
}

int Calls::setNetwork(const Call& call, const HostNetwork& network) {
    return FleetKit::setDeviceHostNetwork(call.nHandle, 0, network);
}

int Calls::getOsd(const Call& call, std::vector<OSDUserParam>& vecParams) {
    const auto pParams = std::make_unique<tagOSDUserParamList>();
    const int nCode = FleetKit::getAllOSDUserParam(call.nHandle, *pParams);
    toRecords(pParams.get(), &vecParams);
    return nCode;
}

int Calls::setOsd(const Call& call, const std::vector<OSDUserParam>& vecParams) {
    requireFit(vecParams);
    const auto pParams = std::make_unique<tagOSDUserParamList>();
    toStructure(&vecParams, pParams.get());
    return FleetKit::setAllOSDUserParam(call.nHandle, *pParams);
}

// The library reads all of them or none.
int Calls::getOsdChannel(const Call& call, OSDUserParam& param) {
    std::vector<OSDUserParam> vecAll;
    const int nCode = getOsd(call, vecAll);
    if (nCode != ErrorCode::Success) {
        return nCode;
    }
    const auto pFound = std::find_if(vecAll.begin(), vecAll.end(), [&](const OSDUserParam& one) {
        return one.getCameraId() == call.selection.channel.value();
    });
    if (pFound == vecAll.end()) {
        return ErrorCode::BadReply;
    }
    param = *pFound;
    return nCode;
}

int Calls::setOsdChannel(const Call& call, const OSDUserParam& param) {
    return FleetKit::setOSDUserParam(call.nHandle, call.selection.channel.value(), param);
}

int Calls::getStream(const Call& call, AVStreamParam& stream) {
    return FleetKit::getAVStreamParam(call.nHandle, call.selection.channel.value(),
                                      call.selection.stream.value(), stream);
}

int Calls::setStream(const Call& call, const AVStreamParam& stream) {
    return FleetKit::setAVStreamParam(call.nHandle, call.selection.channel.value(),
                                      call.selection.stream.value(), stream);
}

int Calls::getStreams(const Call& call, std::vector<AVStreamParam>& vecStreams) {
    const auto pStreams = std::make_unique<tagAllAVStreamParam>();
    const int nCode =
        call.selection.channel
            ? FleetKit::getAVStreamParam(call.nHandle, *call.selection.channel, *pStreams)
            : FleetKit::getAllAVStreamParam(call.nHandle, *pStreams);
    toRecords(pStreams.get(), &vecStreams);
    return nCode;
}

int Calls::setStreams(const Call& call, const std::vector<AVStreamParam>& vecStreams) {
    requireFit(vecStreams);
    const auto pStreams = std::make_unique<tagAllAVStreamParam>();
    toStructure(&vecStreams, pStreams.get());
    return call.selection.channel
               ? FleetKit::setAVStreamParam(call.nHandle, *call.selection.channel, *pStreams)
               : FleetKit::setAllAVStreamParam(call.nHandle, *pStreams);
}

int Calls::getTimezoneAbility(const Call& call, TimeZoneAbility& ability) {
    return FleetKit::getTimeZoneAbility(call.nHandle, call.selection.language.value_or(0), ability);
}

int Calls::getTimezoneDefault(const Call& call, TimeZoneParam& timeZone) {
    return FleetKit::getTimeZoneDefaultParam(call.nHandle, call.selection.timeZone.value_or(0),
                                             timeZone);
}

const ActionForm Calls::doExec{"COMMAND", 1, 1, true, false, [](const ActionInput& input) {
                                   std::string strUnused;
                                   return FleetKit::exeCommand(
                                       input.nHandle, input.line.vecArguments.front(), strUnused);
                               }};

const ActionForm Calls::doNetworkByMulticast{
    "DEVICE-ID FIELD=VALUE...", 1, AnyNumber, false, false, [](const ActionInput& input) {
        HostNetwork network = networkOf(input.line);
        User user;
        user.setUserName(input.line.strUser);
        user.setPassword(input.strPassword);
        const auto& strDeviceId = input.line.vecArguments.front();
        return fleetkit::setDeviceHostNetwork(strDeviceId, network, user);
    }};

const ActionForm Calls::doPasswd{
    "[--new-password-file FILE]", 0, 0, true, true, [](const ActionInput& input) {
        return fleetkit::setDevicePasswd(input.nHandle, input.strPassword, input.strNewPassword);
    }};

const ActionForm Calls::doReset{"[--hold N,...]", 0, 0, true, false, [](const ActionInput& input) {
                                    return FleetKit::setDeviceReset(input.nHandle,
                                                                    input.line.vecHold);
                                }};
