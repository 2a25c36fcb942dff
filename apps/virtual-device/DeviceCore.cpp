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
#include "protocol/BodyParserFactory.h"
#include "protocol/CommandCatalogue.h"
#include "protocol/CommandIds.h"
#include "protocol/ProtocolType.h"
#include "virtual-device/CommandHandlers.h"
#include "virtual-device/DeviceResult.h"

using namespace fleetkit;

namespace {

constexpr std::size_t MaxReceived = 1000;
constexpr std::size_t MaxTags = 32;  // of each

std::uint32_t responseTo(std::uint32_t nCommandId) {
    const CommandDescriptor* pCommand = findCommand(nCommandId);
    return pCommand ? pCommand->nResponseId : CommandId::Acknowledgement;
}

Answer answerTo(const SDKCommandHeadInfo& request, std::uint32_t nResponseId) {
    Answer answer;
    answer.head.setProtocolType(ProtocolType::SDK);
    answer.head.setSequence(request.getSequence());
    answer.head.setSessionId(request.getSessionId());
    answer.head.setCommandID(nResponseId);
    return answer;
}

void putResult(Answer& answer, int nCode) {
    EtResult result;
    result.setCode(nCode);
    answer.vecRecords.insert(answer.vecRecords.begin(),
                             wrapSafe<BaseDomain>(std::make_unique<EtResult>(result)));
}

// Answers with a binary form cannot do without their data: one byte of it beside a refusal.
void putBinaryData(Answer& answer) {
    const std::uint8_t nByte = 0;
    DataBuffer data;
    data.setData(&nByte, 1);
    appendRecord(answer.vecRecords, data);
    appendRecord(answer.vecRecords, EtFileDataPack());
    appendRecord(answer.vecRecords, EtPTZOperation());
}

std::string describe(std::uint32_t nCommandId, int nCode) {
    const FunctionDescriptor* pFunction = findFunction(nCommandId);
    return std::to_string(nCommandId) + (pFunction ? std::string(" ") + pFunction->szName : "") +
           " -> " + std::to_string(nCode);
}

}  // namespace

DeviceCore::DeviceCore(DeviceOptions options)
    : m_options(std::move(options)),
      m_state(factoryState(m_options)),
      m_vecMisbehaviours(m_options.vecMisbehaviours) {}

Answer DeviceCore::answer(const Request& request, std::uint32_t& nSession,
                          const std::string& strPeer) {
    remember(request);
    const std::uint32_t nCommandId = request.head.getCommandID();
    Answer answer = answerTo(request.head, responseTo(nCommandId));
    const std::uint32_t nSessionBefore = nSession;
    const int nCode = handle(request, nSession, answer);
    putResult(answer, nCode);
    if (hasBinaryForm(answer.head.getCommandID())) {
        putBinaryData(answer);
    }
    const bool bLoggedIn = nSession != nSessionBefore && nSession != 0;
    log(strPeer,
        describe(nCommandId, nCode) +
            (bLoggedIn ? ", " + m_options.strUser + " has session " + std::to_string(nSession)
                       : ""));
    spoil(nCommandId, answer);
    return answer;
}

Answer DeviceCore::refuse(const SDKCommandHeadInfo& head, int nCode, const std::string& strPeer) {
    Answer answer = answerTo(head, responseTo(head.getCommandID()));
    putResult(answer, nCode);
    log(strPeer, describe(head.getCommandID(), nCode));
    if (hasBinaryForm(answer.head.getCommandID())) {
        putBinaryData(answer);
    }
    return answer;
}

std::optional<Answer> DeviceCore::answerMulticast(const Request& request,
                                                  const std::string& strPeer) {
    const auto* pUser = findRecord<User>(request.vecRecords);
    const auto* pDeviceId = findRecord<DeviceId>(request.vecRecords);
    const auto* pNetwork = findRecord<HostNetwork>(request.vecRecords);
    if (request.head.getCommandID() != CommandId::setDeviceHostNetwork || !pUser || !pDeviceId ||
        !pNetwork || pDeviceId->getId() != m_options.strDeviceId) {
        return std::nullopt;
    }
    remember(request);
    const bool bKnown =
        areCredentials(m_options, m_state, pUser->getUserName(), pUser->getPassword());
    const int nCode = bKnown ? setHostNetworks(m_state, {*pNetwork})
                             : static_cast<int>(DeviceResult::WrongCredentials);
    log(strPeer, "multicast " + describe(CommandId::setDeviceHostNetwork, nCode));
    Answer answer = answerTo(request.head, CommandId::getHostNetworkReply);
    putResult(answer, nCode);
    appendRecord(answer.vecRecords, *pDeviceId);
    spoil(CommandId::setDeviceHostNetwork, answer);
    return answer;
}

void DeviceCore::log(const std::string& strPeer, const std::string& strText) const {
    if (m_options.bVerbose) {
        std::fprintf(stderr, "%s %s %s\n", m_options.strDeviceId.c_str(), strPeer.c_str(),
                     strText.c_str());
    }
}

void DeviceCore::remember(const Request& request) {
    ReceivedCommand received;
    received.nCommandId = request.head.getCommandID();
    received.nSessionId = request.head.getSessionId();
    received.nSequence = request.head.getSequence();
    const std::size_t nTags = std::min(request.vecRecords.size(), MaxTags);
    for (std::size_t nTag = 0; nTag < nTags; ++nTag) {
        getDomainNameOfRecord(*request.vecRecords[nTag], received.vecRecords.emplace_back());
    }
    m_vecReceived.push_back(std::move(received));
    if (m_vecReceived.size() > MaxReceived) {
        m_vecReceived.pop_front();
    }
}

int DeviceCore::handle(const Request& request, std::uint32_t& nSession, Answer& answer) {
    const std::uint32_t nCommandId = request.head.getCommandID();
    const bool bHasSession = nSession != 0 && request.head.getSessionId() == nSession;
    if (!bHasSession && nCommandId != CommandId::Login) {
        return DeviceResult::NoSession;
    }
    CommandCall call{request, m_options, m_state, nSession, m_nLastSession + 1, {}};
    const int nCode = handleCommand(call);
    if (nCode != DeviceResult::Success) {
        return nCode;
    }
    if (nSession == call.nFreeSession) {
        m_nLastSession = nSession;
    }
    answer.vecRecords = call.vecReply;
    answer.bRestarts = call.bRestarts;
    return nCode;
}

void DeviceCore::spoil(std::uint32_t nCommandId, Answer& answer) {
    for (Misbehaviour& misbehaviour : m_vecMisbehaviours) {
        const MisbehaviourKind* pKind = findMisbehaviourKind(misbehaviour.strName);
        if (!pKind || (misbehaviour.nCommandId != 0 && misbehaviour.nCommandId != nCommandId)) {
            continue;
        }
        pKind->apply(answer, misbehaviour.nValue.value_or(pKind->value.nDefault));
        misbehaviour.nTimes = misbehaviour.nTimes == 1 ? -1 : std::max(misbehaviour.nTimes - 1, 0);
    }
    std::erase_if(m_vecMisbehaviours, [](const auto& one) { return one.nTimes < 0; });
}
