// The operations whose requests hold more, or less, than a channel and one record.
#include "device/DeviceControllerImpl.h"

#include "domain/EtChangePasswordReq.h"
#include "domain/EtHoldTypeList.h"
#include "domain/EtSystemReq.h"
#include "domain/EtSystemResp.h"
#include "domain/KXBool.h"
#include "domain/KXInterger.h"
#include "domain/LanguageId.h"
#include "domain/StreamId.h"
#include "protocol/CommandIds.h"
#include "protocol/CredentialCipher.h"

using namespace fleetkit;

namespace {

constexpr int AllStreams = -1;

template <class Element>
int takeFirst(int nCode, const std::vector<Element>& vecElements, int nEmptyCode,
              Element& element) {
    if (nCode != ErrorCode::Success) {
        return nCode;
    }
    if (vecElements.empty()) {
        return nEmptyCode;
    }
    element = vecElements.front();
    return ErrorCode::Success;
}

}  // namespace

int DeviceControllerImpl::act(int nChannelId, std::uint32_t nCommandId) {
    return sendSet(m_pSession, nCommandId, withId<ChannelId>(nChannelId));
}

int DeviceControllerImpl::reset(int nChannelId, const std::vector<int>& vecHoldTypes) {
    EtHoldTypeList holdTypes;
    holdTypes.setType(vecHoldTypes);
    return sendSet(m_pSession, CommandId::setDeviceReset, withId<ChannelId>(nChannelId), holdTypes);
}

int DeviceControllerImpl::setPassword(int nChannelId, const std::string& strOld,
                                      const std::string& strNew) {
    std::string strOldCipher;
    std::string strNewCipher;
    if (!encryptText(strOld, strOldCipher) || !encryptText(strNew, strNewCipher)) {
        return ErrorCode::CipherFailed;
    }
    EtChangePasswordReq request;
    request.setOldPassword(strOldCipher);
    request.setNewPassword(strNewCipher);
    return sendSet(m_pSession, CommandId::setDevicePasswd, withId<ChannelId>(nChannelId), request,
                   KXBool());
}

int DeviceControllerImpl::setHostNetwork(int nChannelId, const HostNetwork& network) {
    return sendSet(m_pSession, CommandId::setDeviceHostNetwork, withId<ChannelId>(nChannelId),
                   std::vector{network});
}

int DeviceControllerImpl::execute(int nChannelId, const std::string& strCommand) {
    EtSystemReq request;
    request.setSystemCommand(strCommand);
    return sendSet(m_pSession, CommandId::exeCommand, withId<ChannelId>(nChannelId), request,
                   EtSystemResp());
}

int DeviceControllerImpl::getTimeZoneAbility(int nChannelId, int nLanguageId,
                                             TimeZoneAbility& ability) {
    return sendGet(m_pSession, CommandId::getTimeZoneAbility, ability,
                   withId<ChannelId>(nChannelId), withId<LanguageId>(nLanguageId));
}

int DeviceControllerImpl::getTimeZoneDefault(int nChannelId, int nTimeZoneId,
                                             TimeZoneParam& timeZone) {
    KXInterger number;
    number.setValue(nTimeZoneId);
    return sendGet(m_pSession, CommandId::getTimeZoneDefaultParam, timeZone, number,
                   withId<ChannelId>(nChannelId));
}

int DeviceControllerImpl::getAllAVStreams(int nChannelId, std::vector<AVStreamParam>& vecStreams) {
    return sendGet(m_pSession, CommandId::getAVStreamParam, vecStreams,
                   withId<ChannelId>(nChannelId), withId<StreamId>(AllStreams));
}

int DeviceControllerImpl::getAVStream(int nChannelId, int nStreamId, AVStreamParam& stream) {
    std::vector<AVStreamParam> vecStreams;
    const int nCode = sendGet(m_pSession, CommandId::getAVStreamParam, vecStreams,
                              withId<ChannelId>(nChannelId), withId<StreamId>(nStreamId));
    return takeFirst(nCode, vecStreams, ErrorCode::EmptyStreamList, stream);
}

int DeviceControllerImpl::setAllAVStreams(int nChannelId,
                                          const std::vector<AVStreamParam>& vecStreams) {
    return sendSet(m_pSession, CommandId::setAVStreamParam, withId<ChannelId>(nChannelId),
                   withId<StreamId>(AllStreams), vecStreams);
}

int DeviceControllerImpl::setAVStream(int nChannelId, const AVStreamParam& stream) {
    return sendSet(m_pSession, CommandId::setAVStreamParam, withId<ChannelId>(nChannelId),
                   withId<StreamId>(nChannelId), std::vector{stream});
}

int DeviceControllerImpl::setOSDUserParam(int nChannelId, const OSDUserParam& param) {
    return sendSet(m_pSession, CommandId::setOSDUserParam, withId<ChannelId>(nChannelId), param);
}

int DeviceControllerImpl::setAllOSDUserParams(int nChannelId,
                                              const std::vector<OSDUserParam>& vecParams) {
    return sendSet(m_pSession, CommandId::setOSDUserParam, withId<ChannelId>(nChannelId),
                   vecParams);
}

int DeviceControllerImpl::getAllOSDUserParams(int nChannelId,
                                              std::vector<OSDUserParam>& vecParams) {
    return sendGet(m_pSession, CommandId::getAllOSDUserParam, vecParams,
                   withId<ChannelId>(nChannelId));
}

int DeviceControllerImpl::getAllChannels(int nChannelId, std::vector<ChannelInfo>& vecChannels) {
    return sendGet(m_pSession, CommandId::getAllChannelInfo, vecChannels,
                   withId<ChannelId>(nChannelId));
}

int DeviceControllerImpl::getChannel(int nChannelId, ChannelInfo& channel) {
    std::vector<ChannelInfo> vecChannels;
    const int nCode = getAllChannels(nChannelId, vecChannels);
    return takeFirst(nCode, vecChannels, ErrorCode::EmptyChannelList, channel);
}
