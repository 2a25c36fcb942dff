// The commands over the state: the plain ones by the catalogue, the others in a few lines each.
#include "virtual-device/CommandHandlers.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iterator>

#include "Product/Technic/Base64.h"
#include "Product/Technic/platform/Clock.h"
#include "domain/DevicePort.h"
#include "domain/DeviceSummaryInfo.h"
#include "domain/DeviceTime.h"
#include "domain/EtChangePasswordReq.h"
#include "domain/EtHoldTypeList.h"
#include "domain/EtSessionId.h"
#include "domain/EtSystemReq.h"
#include "domain/EtSystemResp.h"
#include "domain/KXInterger.h"
#include "domain/LanguageAbility.h"
#include "domain/LanguageId.h"
#include "domain/RecordDescriptor.h"
#include "domain/StreamId.h"
#include "domain/UserParam.h"
#include "domain/VideoAbility.h"
#include "protocol/CommandCatalogue.h"
#include "protocol/CommandIds.h"
#include "protocol/CredentialCipher.h"
#include "virtual-device/DeviceResult.h"

using namespace fleetkit;

namespace {

using namespace std::chrono;

// What a reset can be asked to keep.
constexpr int HoldNetwork = 1;  // host networks and ports

constexpr int FirstYear = 1970;
constexpr int LastYear = 9999;

bool decipher(const std::string& strCipher, std::string& strPlain) {
    std::vector<std::uint8_t> vecBytes(strCipher.size() + 1);
    auto nSize = static_cast<std::int32_t>(vecBytes.size());
    if (strCipher.empty()) {
        strPlain.clear();
        return true;
    }
    if (base64Decode(reinterpret_cast<const std::uint8_t*>(strCipher.data()),
                     static_cast<std::int32_t>(strCipher.size()), vecBytes.data(),
                     nSize) != Base64Result::Done) {
        return false;
    }
    vecBytes.resize(static_cast<std::size_t>(nSize));
    applyStreamCipher(vecBytes.data(), static_cast<std::uint32_t>(nSize), vecBytes.data());
    strPlain.assign(vecBytes.begin(), vecBytes.end());
    return true;
}

bool hasChannel(const CommandCall& call) {
    const int nChannel = call.request.channel();
    return nChannel == Request::All || (nChannel >= 1 && nChannel <= call.options.nChannels);
}

// --- Commands that only hand out, or only take over, records that the device keeps.

int give(CommandCall& call, const Rows<CarriedRecord>& asked) {
    for (const CarriedRecord& carried : asked) {
        const RecordDescriptor& descriptor = carried.descriptor();
        const BaseDomain* pRecord = call.state.records.find(descriptor.nDomainId);
        if (!pRecord || carried.isList) {
            return DeviceResult::NotSupported;
        }
        call.vecReply.push_back(wrapSafe<BaseDomain>(descriptor.access.makeCopy(*pRecord)));
    }
    return DeviceResult::Success;
}

// The channel of the request comes first, then the one record that is set.
int take(CommandCall& call, const CarriedRecord& carried) {
    const std::uint32_t nId = carried.descriptor().nDomainId;
    if (carried.isList || !call.state.records.find(nId)) {
        return DeviceResult::NotSupported;
    }
    SafePointer<BaseDomain> record;
    if (!findDomain(nId, 0, call.request.vecRecords, record)) {
        return DeviceResult::MissingRecord;
    }
    call.state.records.put(*record);
    return DeviceResult::Success;
}

// Whether the device is of a type that the command's function serves.
bool isServed(const CommandCall& call, const CommandDescriptor& command) {
    const FunctionDescriptor* pFunction = findFunction(command.nRequestId);
    const auto nOwnType = call.options.nKind == DeviceKind::IPC ? OfCamera : OfRecorder;
    return !pFunction || pFunction->nServes == 0 || (pFunction->nServes & nOwnType) != 0;
}

int handlePlainly(CommandCall& call, const CommandDescriptor& command) {
    if (!isServed(call, command)) {
        return DeviceResult::NotSupported;
    }
    if (!hasChannel(call)) {
        return DeviceResult::NoSuchChannel;
    }
    if (!command.answer.empty()) {
        return give(call, command.answer);
    }
    return command.request.size() == 2 ? take(call, command.request[1])
                                       : static_cast<int>(DeviceResult::NotSupported);
}

// --- Sessions and users.

int login(CommandCall& call) {
    const auto* pUser = findRecord<UserParam>(call.request.vecRecords);
    if (!pUser) {
        return DeviceResult::MissingRecord;
    }
    if (!areCredentials(call.options, call.state, pUser->getUserName(), pUser->getPassword())) {
        return DeviceResult::WrongCredentials;
    }
    call.nSession = call.nFreeSession;
    EtSessionId session;
    session.setSessionId(static_cast<int>(call.nSession));
    appendRecord(call.vecReply, session);
    return DeviceResult::Success;
}

int logout(CommandCall& call) {
    call.nSession = 0;
    return DeviceResult::Success;
}

int keepAlive(CommandCall& call) {
    const auto* pSession = findRecord<EtSessionId>(call.request.vecRecords);
    if (!pSession) {
        return DeviceResult::MissingRecord;
    }
    const bool bIsOwn = static_cast<std::uint32_t>(pSession->getSessionId()) == call.nSession;
    return bIsOwn ? DeviceResult::Success : DeviceResult::NoSession;
}

int changePassword(CommandCall& call) {
    const auto* pChange = findRecord<EtChangePasswordReq>(call.request.vecRecords);
    if (!pChange) {
        return DeviceResult::MissingRecord;
    }
    std::string strOld;
    std::string strNew;
    if (!decipher(pChange->getOldPassword(), strOld) || strOld != call.state.strPassword) {
        return DeviceResult::WrongCredentials;
    }
    if (!decipher(pChange->getNewPassword(), strNew)) {
        return DeviceResult::BadParameter;
    }
    call.state.strPassword = strNew;
    return DeviceResult::Success;
}

// --- The device as a whole.

int restart(CommandCall& call) {
    call.bRestarts = true;
    return DeviceResult::Success;
}

int reset(CommandCall& call) {
    const auto* pHold = findRecord<EtHoldTypeList>(call.request.vecRecords);
    if (!pHold) {
        return DeviceResult::MissingRecord;
    }
    DeviceState state = factoryState(call.options);
    const auto& vecHeld = pHold->getType();
    if (std::find(vecHeld.begin(), vecHeld.end(), HoldNetwork) != vecHeld.end()) {
        state.vecHostNetworks = call.state.vecHostNetworks;
        state.records.put(call.state.records.get<DevicePort>());
    }
    call.state = state;
    return DeviceResult::Success;
}

int systemCommand(CommandCall& call) {
    const auto* pCommand = findRecord<EtSystemReq>(call.request.vecRecords);
    if (!pCommand) {
        return DeviceResult::MissingRecord;
    }
    call.state.strLastSystemCommand = pCommand->getSystemCommand();
    EtSystemResp response;
    response.setResponse("noted, not run: " + pCommand->getSystemCommand());
    appendRecord(call.vecReply, response);
    return DeviceResult::Success;
}

int takeHostNetworks(CommandCall& call) {
    const auto* pNetworks = findList<HostNetwork>(call.request.vecRecords);
    return pNetworks ? setHostNetworks(call.state, *pNetworks)
                     : static_cast<int>(DeviceResult::MissingRecord);
}

int giveHostNetworks(CommandCall& call) {
    appendList(call.vecReply, call.state.vecHostNetworks);
    return DeviceResult::Success;
}

// --- Time.

DeviceTime timeOf(const DeviceState& state) {
    const sys_seconds now{seconds(currentClock().calendarTime() + state.nClockOffset)};
    const auto day = floor<days>(now);
    const year_month_day date(day);
    const hh_mm_ss clock(now - day);
    DeviceTime time;
    time.setYear(static_cast<int>(date.year()));
    time.setMonth(static_cast<int>(static_cast<unsigned>(date.month())));
    time.setDay(static_cast<int>(static_cast<unsigned>(date.day())));
    time.setHour(static_cast<int>(clock.hours().count()));
    time.setMinute(static_cast<int>(clock.minutes().count()));
    time.setSecond(static_cast<int>(clock.seconds().count()));
    return time;
}

int giveTime(CommandCall& call) {
    appendRecord(call.vecReply, timeOf(call.state));
    return DeviceResult::Success;
}

// The summary repeats what other commands set.
int giveSummary(CommandCall& call) {
    const DeviceTime time = timeOf(call.state);
    char szTime[80];
    std::snprintf(szTime, sizeof szTime, "%04d-%02d-%02d %02d:%02d:%02d", time.getYear(),
                  time.getMonth(), time.getDay(), time.getHour(), time.getMinute(),
                  time.getSecond());
    const auto& ports = call.state.records.get<DevicePort>();
    auto summary = call.state.records.get<DeviceSummaryInfo>();
    summary.setDeviceTime(szTime);
    summary.setDeviceIP(call.state.vecHostNetworks.front().getLocalIp());
    summary.setDevicePort(ports.getControlPort());
    summary.setHttpPort(std::to_string(ports.getHttpPort()));
    appendRecord(call.vecReply, summary);
    return DeviceResult::Success;
}

bool isBetween(int nValue, int nLow, int nHigh) {
    return nValue >= nLow && nValue <= nHigh;
}

int takeTime(CommandCall& call) {
    const auto* pTime = findRecord<DeviceTime>(call.request.vecRecords);
    if (!pTime) {
        return DeviceResult::MissingRecord;
    }
    if (!isBetween(pTime->getYear(), FirstYear, LastYear) || !isBetween(pTime->getMonth(), 1, 12) ||
        !isBetween(pTime->getDay(), 1, 31) || !isBetween(pTime->getHour(), 0, 23) ||
        !isBetween(pTime->getMinute(), 0, 59) || !isBetween(pTime->getSecond(), 0, 59)) {
        return DeviceResult::BadParameter;
    }
    const year_month_day date(year(pTime->getYear()),
                              month(static_cast<unsigned>(pTime->getMonth())),
                              day(static_cast<unsigned>(pTime->getDay())));
    if (!date.ok()) {
        return DeviceResult::BadParameter;
    }
    const sys_seconds time = sys_days(date) + hours(pTime->getHour()) +
                             minutes(pTime->getMinute()) + seconds(pTime->getSecond());
    call.state.nClockOffset = time.time_since_epoch().count() - currentClock().calendarTime();
    return DeviceResult::Success;
}

// The number of a zone in front of the channel asks for what that zone has by default; 0 stands for
// the zone of the factory state.
int giveTimeZone(CommandCall& call) {
    const DomainList& vecRecords = call.request.vecRecords;
    if (vecRecords.empty() || vecRecords.front()->getDomainId() != KXInterger::DomainId) {
        appendRecord(call.vecReply, call.state.records.get<TimeZoneParam>());
        return DeviceResult::Success;
    }
    const int nAsked = findRecord<KXInterger>(vecRecords)->getValue();
    const int nZone = nAsked == 0 ? call.state.vecTimeZoneDefaults.front().getTimeZone() : nAsked;
    for (const TimeZoneParam& zone : call.state.vecTimeZoneDefaults) {
        if (zone.getTimeZone() == nZone) {
            appendRecord(call.vecReply, zone);
            return DeviceResult::Success;
        }
    }
    return DeviceResult::BadParameter;
}

// The names of the zones in a language of the device; 0 and -1 stand for its first one.
int giveTimeZoneAbility(CommandCall& call) {
    const auto* pLanguage = findRecord<LanguageId>(call.request.vecRecords);
    if (!pLanguage) {
        return DeviceResult::MissingRecord;
    }
    const auto& vecLanguages = call.state.records.get<LanguageAbility>().getLanguageTypeList();
    for (std::size_t n = 0; n < vecLanguages.size(); ++n) {
        if (pLanguage->getId() <= 0 || vecLanguages[n].getLanguageID() == pLanguage->getId()) {
            appendRecord(call.vecReply, call.state.vecTimeZones.at(n));
            return DeviceResult::Success;
        }
    }
    return DeviceResult::BadParameter;
}

// --- Channels, streams, text on the picture.

bool isAsked(int nAsked, int nActual) {
    return nAsked == Request::All || nAsked == nActual;
}

template <class Record>
std::vector<Record> ofAskedChannel(const CommandCall& call, std::vector<Record> vecRecords,
                                   int (Record::*getChannel)() const) {
    std::erase_if(vecRecords, [&](const Record& record) {
        return !isAsked(call.request.channel(), (record.*getChannel)());
    });
    return vecRecords;
}

int giveVideoAbility(CommandCall& call) {
    if (!hasChannel(call)) {
        return DeviceResult::NoSuchChannel;
    }
    VideoAbility video;
    video.setVideoAbilityParamList(
        ofAskedChannel(call, call.state.records.get<VideoAbility>().getVideoAbilityParamList(),
                       &VideoAbilityParam::getChannelId));
    appendRecord(call.vecReply, video);
    return DeviceResult::Success;
}

// A list answers what there is: a channel or stream that the device lacks is an empty list.
int giveChannels(CommandCall& call) {
    appendList(call.vecReply,
               ofAskedChannel(call, call.state.vecChannels, &ChannelInfo::getLocalChannelID));
    return DeviceResult::Success;
}

int giveStreams(CommandCall& call) {
    const auto* pStreamId = findRecord<StreamId>(call.request.vecRecords);
    const int nStream = pStreamId ? pStreamId->getId() : Request::All;
    auto vecAsked = ofAskedChannel(call, call.state.vecStreams, &AVStreamParam::getChannelId);
    std::erase_if(vecAsked, [&](const AVStreamParam& stream) {
        return !isAsked(nStream, stream.getStreamId());
    });
    appendList(call.vecReply, vecAsked);
    return DeviceResult::Success;
}

// The records' own numbers tell what is set, not the `StreamId` of the request, in which a client
// may repeat the channel. All of them are set or none.
int takeStreams(CommandCall& call) {
    const auto* pStreams = findList<AVStreamParam>(call.request.vecRecords);
    if (!pStreams) {
        return DeviceResult::MissingRecord;
    }
    std::vector<AVStreamParam> vecStreams = call.state.vecStreams;
    for (const AVStreamParam& stream : *pStreams) {
        const auto itStream =
            std::find_if(vecStreams.begin(), vecStreams.end(), [&](const AVStreamParam& own) {
                return own.getChannelId() == stream.getChannelId() &&
                       own.getStreamId() == stream.getStreamId();
            });
        if (itStream == vecStreams.end() ||
            !isAsked(call.request.channel(), stream.getChannelId())) {
            return DeviceResult::NoSuchStream;
        }
        *itStream = stream;
    }
    call.state.vecStreams = vecStreams;
    return DeviceResult::Success;
}

int giveOSD(CommandCall& call) {
    appendList(call.vecReply, ofAskedChannel(call, call.state.vecOSD, &OSDUserParam::getCameraId));
    return DeviceResult::Success;
}

// One record, whose channel may be left to the request (0), or a list of them.
int takeOSD(CommandCall& call) {
    const auto* pSingle = findRecord<OSDUserParam>(call.request.vecRecords);
    const auto* pList = findList<OSDUserParam>(call.request.vecRecords);
    if (!pSingle && !pList) {
        return DeviceResult::MissingRecord;
    }
    std::vector<OSDUserParam> vecNew = pList ? *pList : std::vector<OSDUserParam>{*pSingle};
    if (pSingle && !pList && pSingle->getCameraId() == 0) {
        vecNew.front().setCameraId(call.request.channel());
    }
    std::vector<OSDUserParam> vecOSD = call.state.vecOSD;
    for (const OSDUserParam& osd : vecNew) {
        const auto itOSD = std::find_if(vecOSD.begin(), vecOSD.end(), [&](const auto& own) {
            return own.getCameraId() == osd.getCameraId();
        });
        if (itOSD == vecOSD.end() || !isAsked(call.request.channel(), osd.getCameraId())) {
            return DeviceResult::NoSuchChannel;
        }
        *itOSD = osd;
    }
    call.state.vecOSD = vecOSD;
    return DeviceResult::Success;
}

// The commands that are not plain.
struct Handler {
    std::uint32_t nCommandId;
    int (*handle)(CommandCall& call);
};

constexpr Handler Handlers[] = {
    {CommandId::Login, login},
    {CommandId::Logout, logout},
    {CommandId::keepAlive, keepAlive},
    {CommandId::setDevicePasswd, changePassword},
    {CommandId::setDeviceRestart, restart},
    {CommandId::setDeviceReset, reset},
    {CommandId::exeCommand, systemCommand},
    {CommandId::getHostNetwork, giveHostNetworks},
    {CommandId::setDeviceHostNetwork, takeHostNetworks},
    {CommandId::getDeviceTime, giveTime},
    {CommandId::setDeviceReSetTime, takeTime},
    {CommandId::getDeviceSummaryInfo, giveSummary},
    {CommandId::getTimeZoneParam, giveTimeZone},
    {CommandId::getTimeZoneAbility, giveTimeZoneAbility},
    {CommandId::getVideoAbility, giveVideoAbility},
    {CommandId::getAllChannelInfo, giveChannels},
    {CommandId::getAVStreamParam, giveStreams},
    {CommandId::setAVStreamParam, takeStreams},
    {CommandId::getAllOSDUserParam, giveOSD},
    {CommandId::setOSDUserParam, takeOSD},
};

}  // namespace

int handleCommand(CommandCall& call) {
    const std::uint32_t nCommandId = call.request.head.getCommandID();
    const auto* pHandler = std::ranges::find(Handlers, nCommandId, &Handler::nCommandId);
    if (pHandler != std::end(Handlers)) {
        return pHandler->handle(call);
    }
    const CommandDescriptor* pCommand = findCommand(nCommandId);
    return pCommand ? handlePlainly(call, *pCommand)
                    : static_cast<int>(DeviceResult::UnknownCommand);
}

bool areCredentials(const DeviceOptions& options, const DeviceState& state,
                    const std::string& strUser, const std::string& strPassword) {
    std::string strPlainUser;
    std::string strPlainPassword;
    return decipher(strUser, strPlainUser) && decipher(strPassword, strPlainPassword) &&
           strPlainUser == options.strUser && strPlainPassword == state.strPassword;
}

int setHostNetworks(DeviceState& state, const std::vector<HostNetwork>& vecNetworks) {
    std::vector<HostNetwork> vecNew = state.vecHostNetworks;
    for (HostNetwork network : vecNetworks) {
        if (network.getNetId() == 0) {
            network.setNetId(vecNew.front().getNetId());
        }
        const auto itOld = std::find_if(vecNew.begin(), vecNew.end(), [&](const HostNetwork& own) {
            return own.getNetId() == network.getNetId();
        });
        if (itOld == vecNew.end()) {
            return DeviceResult::BadParameter;
        }
        *itOld = network;
    }
    state.vecHostNetworks = vecNew;
    return DeviceResult::Success;
}
