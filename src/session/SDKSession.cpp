// The two halves of an exchange, and how a reply is told from everything else.
#include "session/SDKSession.h"

#include <memory>
#include <utility>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/MemoryGuard.h"
#include "domain/EtResult.h"
#include "protocol/CommandBuffer.h"
#include "protocol/CommandParserFactory.h"
#include "session/SequenceNumber.h"
#include "session/TransferConnector.h"

using namespace fleetkit;

namespace {

constexpr int SendTimeoutMs = 3000;

bool answers(const SDKCommandHeadInfo& reply, const SDKCommandHeadInfo& request) {
    return reply.getSessionId() == request.getSessionId() &&
           reply.getSequence() == request.getSequence();
}

}  // namespace

SDKSession::~SDKSession() noexcept = default;

void SDKSession::setTransfer(const SafePointer<ITransfer>& transfer) {
    const KXMutexGuard guard(m_mutex);
    m_pTransfer = transfer;
}

void SDKSession::close() {
    const KXMutexGuard guard(m_mutex);
    if (!m_pTransfer.isNull()) {
        m_pTransfer->close();
    }
}

std::int32_t SDKSession::sendRecv(std::uint32_t nCommandId, const DomainList& request,
                                  DomainList& reply) {
    const KXMutexGuard guard(m_mutex);
    if (m_pTransfer.isNull()) {
        return ErrorCode::NoTransport;
    }
    SDKCommandHeadInfo head;
    head.setProtocolType(m_nProtocolType);
    head.setCommandID(nCommandId);
    head.setSessionId(m_nSessionId);
    head.setSequence(nextSequence());
    const std::int32_t nResult = sendCommand(head, request);
    return nResult == ErrorCode::Success ? recvCommand(head, reply) : nResult;
}

std::int32_t SDKSession::sendCommand(const SDKCommandHeadInfo& head, const DomainList& request) {
    auto pParam = std::make_unique<SDKCommandParam>();
    pParam->setHead(head);
    pParam->setDomains(request);
    CommandBuffer buffer;
    const bool bEncoded = guardMemory([&] {
        return createCommandProtocolParser(ProtocolType::SDK)
            ->createCommand(wrapSafe<CommandParam>(std::move(pParam)), buffer);
    });
    if (!bEncoded) {
        return ErrorCode::EncodeFailed;
    }
    return m_pTransfer->sendCommand(buffer, getDialAddr(m_deviceInfo), SendTimeoutMs);
}

std::int32_t SDKSession::recvCommand(const SDKCommandHeadInfo& head, DomainList& reply) {
    for (std::int32_t nMismatches = 0; nMismatches <= m_nMaxMismatch; ++nMismatches) {
        SafePointer<CommandParam> message;
        const std::int32_t nResult = recvMessage(message);
        if (nResult != ErrorCode::Success) {
            return nResult;
        }
        const auto& answer = static_cast<const SDKCommandParam&>(*message);
        m_nProtocolType = answer.getHead().getProtocolType();
        const CommandDescriptor* pCommand = findCommand(head.getCommandID());
        if (pCommand == nullptr) {
            return ErrorCode::UnknownCommand;
        }
        if (answers(answer.getHead(), head)) {
            return takeReply(answer, *pCommand, reply);
        }
    }
    return ErrorCode::BadReply;
}

std::int32_t SDKSession::recvMessage(SafePointer<CommandParam>& message) {
    CommandBuffer buffer;
    InetAddr from;
    const std::int32_t nResult = m_pTransfer->recvCommand(buffer, m_nReplyTimeout, from);
    if (nResult != ErrorCode::Success) {
        return nResult;
    }
    return createCommandProtocolParser(ProtocolType::SDK)->parseCommand(buffer, message)
               ? ErrorCode::Success
               : ErrorCode::DecodeFailed;
}

std::int32_t SDKSession::takeReply(const SDKCommandParam& answer, const CommandDescriptor& command,
                                   DomainList& reply) {
    if (answer.getHead().getCommandID() != command.nResponseId) {
        return ErrorCode::BadReply;
    }
    std::int32_t nResult = ErrorCode::BadReply;
    for (const auto& record : answer.getDomains()) {
        reply.push_back(record);
        if (record->getDomainId() == EtResult::DomainId) {
            nResult = static_cast<const EtResult&>(*record).getCode();
        }
    }
    return nResult;
}
