// Sessions, refusals and misbehaviour; what a command does stands in the table of handlers.
#include "virtual-device/DeviceCore.h"

#include <algorithm>
#include <cstdio>

#include "domain/DataBuffer.h"
#include "domain/DeviceId.h"
#include "domain/DomainFactory.h"
#include "domain/EtFileDataPack.h"
#include "domain/EtPTZOperation.h"
#include "domain/EtResult.h"
#include "domain/HostNetwork.h"
#include "domain/User.h"
#include "protocol/CommandCatalogue.h"
#include "protocol/ProtocolType.h"
#include "virtual-device/CommandHandlers.h"
#include "virtual-device/DeviceResult.h"

namespace {

constexpr std::uint32_t Acknowledgement = 10000;
constexpr std::uint32_t SetHostNetwork = 32506;
constexpr std::uint32_t SetHostNetworkReply = 32505;  // over multicast
constexpr std::size_t MaxReceived = 1000;

std::uint32_t responseTo(std::uint32_t nCommandId) {
    const CommandDescriptor* pCommand = findCommand(nCommandId);
    return pCommand ? pCommand->nResponseId : Acknowledgement;
}

Answer answerTo(const SDKCommandHeadInfo& request, std::uint32_t nResponseId) {
    Answer objAnswer;
    objAnswer.objHead.setProtocolType(ProtocolType::SDK);
    objAnswer.objHead.setSequence(request.getSequence());
    objAnswer.objHead.setSessionId(request.getSessionId());
    objAnswer.objHead.setCommandID(nResponseId);
    return objAnswer;
}

void putResult(Answer& answer, int nCode) {
    EtResult objResult;
    objResult.setCode(nCode);
    answer.vecRecords.insert(answer.vecRecords.begin(),
                             wrapSafe<BaseDomain>(std::make_unique<EtResult>(objResult)));
}

// Answers with a binary form cannot do without their data: one byte of it beside a refusal.
void putBinaryData(Answer& answer) {
    const std::uint8_t nByte = 0;
    DataBuffer objData;
    objData.setData(&nByte, 1);
    appendRecord(answer.vecRecords, objData);
    appendRecord(answer.vecRecords, EtFileDataPack());
    appendRecord(answer.vecRecords, EtPTZOperation());
}

bool hasBinaryForm(std::uint32_t nResponseId) {
    constexpr std::uint32_t Ids[] = {14006, 15020, 31026, 32743, 32821, 33028};
    return std::find(std::begin(Ids), std::end(Ids), nResponseId) != std::end(Ids);
}

std::string describe(std::uint32_t nCommandId, int nCode) {
    const CommandHandler* pHandler = findCommandHandler(nCommandId);
    return std::to_string(nCommandId) + (pHandler ? std::string(" ") + pHandler->szName : "") +
           " -> " + std::to_string(nCode);
}

}  // namespace

DeviceCore::DeviceCore(DeviceOptions options)
    : m_objOptions(std::move(options)),
      m_objState(factoryState(m_objOptions)),
      m_vecMisbehaviours(m_objOptions.vecMisbehaviours) {}

Answer DeviceCore::answer(const Request& request, std::uint32_t& nSession,
                          const std::string& strPeer) {
    remember(request);
    const std::uint32_t nCommandId = request.objHead.getCommandID();
    Answer objAnswer = answerTo(request.objHead, responseTo(nCommandId));
    const std::uint32_t nSessionBefore = nSession;
    const int nCode = handle(request, nSession, objAnswer);
    putResult(objAnswer, nCode);
    if (hasBinaryForm(objAnswer.objHead.getCommandID())) {
        putBinaryData(objAnswer);
    }
    const bool bLoggedIn = nSession != nSessionBefore && nSession != 0;
    log(strPeer,
        describe(nCommandId, nCode) +
            (bLoggedIn ? ", " + m_objOptions.strUser + " has session " + std::to_string(nSession)
                       : ""));
    spoil(nCommandId, objAnswer);
    return objAnswer;
}

Answer DeviceCore::refuse(const SDKCommandHeadInfo& head, const std::string& strPeer) {
    Answer objAnswer = answerTo(head, responseTo(head.getCommandID()));
    putResult(objAnswer, DeviceResult::MalformedRequest);
    log(strPeer, describe(head.getCommandID(), DeviceResult::MalformedRequest));
    if (hasBinaryForm(objAnswer.objHead.getCommandID())) {
        putBinaryData(objAnswer);
    }
    return objAnswer;
}

std::optional<Answer> DeviceCore::answerMulticast(const Request& request,
                                                  const std::string& strPeer) {
    const auto* pUser = findRecord<User>(request.vecRecords);
    const auto* pDeviceId = findRecord<DeviceId>(request.vecRecords);
    const auto* pNetwork = findRecord<HostNetwork>(request.vecRecords);
    if (request.objHead.getCommandID() != SetHostNetwork || !pUser || !pDeviceId || !pNetwork ||
        pDeviceId->getId() != m_objOptions.strDeviceId) {
        return std::nullopt;
    }
    remember(request);
    const bool bKnown =
        areCredentials(m_objOptions, m_objState, pUser->getUserName(), pUser->getPassword());
    const int nCode = bKnown ? setHostNetworks(m_objState, {*pNetwork})
                             : static_cast<int>(DeviceResult::WrongCredentials);
    log(strPeer, "multicast " + describe(SetHostNetwork, nCode));
    Answer objAnswer = answerTo(request.objHead, SetHostNetworkReply);
    putResult(objAnswer, nCode);
    appendRecord(objAnswer.vecRecords, *pDeviceId);
    spoil(SetHostNetwork, objAnswer);
    return objAnswer;
}

void DeviceCore::log(const std::string& strPeer, const std::string& strText) const {
    if (m_objOptions.bVerbose) {
        std::fprintf(stderr, "%s %s %s\n", m_objOptions.strDeviceId.c_str(), strPeer.c_str(),
                     strText.c_str());
    }
}

void DeviceCore::remember(const Request& request) {
    ReceivedCommand objReceived;
    objReceived.nCommandId = request.objHead.getCommandID();
    objReceived.nSessionId = request.objHead.getSessionId();
    objReceived.nSequence = request.objHead.getSequence();
    for (const auto& record : request.vecRecords) {
        getDomainNameOfRecord(*record, objReceived.vecRecords.emplace_back());
    }
    m_vecReceived.push_back(std::move(objReceived));
    if (m_vecReceived.size() > MaxReceived) {
        m_vecReceived.pop_front();
    }
}

int DeviceCore::handle(const Request& request, std::uint32_t& nSession, Answer& answer) {
    const std::uint32_t nCommandId = request.objHead.getCommandID();
    const CommandHandler* pHandler = findCommandHandler(nCommandId);
    const bool bHasSession = nSession != 0 && request.objHead.getSessionId() == nSession;
    if (!bHasSession && nCommandId != LoginCommand) {
        return DeviceResult::NoSession;
    }
    if (!pHandler) {
        return findCommand(nCommandId) ? DeviceResult::NotSupported : DeviceResult::UnknownCommand;
    }
    CommandCall objCall{request, m_objOptions, m_objState, nSession, m_nLastSession + 1, {}};
    const int nCode = pHandler->handle(objCall);
    if (nCode != DeviceResult::Success) {
        return nCode;
    }
    if (nSession == objCall.nFreeSession) {
        m_nLastSession = nSession;
    }
    answer.vecRecords = objCall.vecReply;
    answer.bRestarts = objCall.bRestarts;
    return nCode;
}

void DeviceCore::spoil(std::uint32_t nCommandId, Answer& answer) {
    for (Misbehaviour& misbehaviour : m_vecMisbehaviours) {
        const MisbehaviourKind* pKind = findMisbehaviourKind(misbehaviour.strName);
        if (!pKind || (misbehaviour.nCommandId != 0 && misbehaviour.nCommandId != nCommandId)) {
            continue;
        }
        pKind->apply(answer, misbehaviour.nValue.value_or(pKind->nDefault));
        misbehaviour.nTimes = misbehaviour.nTimes == 1 ? -1 : std::max(misbehaviour.nTimes - 1, 0);
    }
    std::erase_if(m_vecMisbehaviours, [](const auto& one) { return one.nTimes < 0; });
}
