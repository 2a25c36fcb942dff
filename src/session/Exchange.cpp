// The steps of an exchange, and how a reply is told from everything else.
#include "session/Exchange.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/MemoryGuard.h"
#include "Product/Technic/platform/Clock.h"
#include "domain/EtResult.h"
#include "protocol/BodyParserFactory.h"
#include "protocol/CommandCatalogue.h"
#include "protocol/CommandParserFactory.h"
#include "protocol/ProtocolType.h"

using namespace fleetkit;

namespace {

constexpr int SendLimitMs = 3000;
constexpr int MostMismatches = 3;  // messages that one exchange may throw away
constexpr std::uint32_t FileProgress = 64U << 10;

std::uint64_t momentIn(int nMs) {
    return currentClock().monotonicMs() + static_cast<std::uint64_t>(nMs);
}

bool answers(const SDKCommandHeadInfo& reply, const SDKCommandHeadInfo& request) {
    return reply.getSessionId() == request.getSessionId() &&
           reply.getSequence() == request.getSequence();
}

bool carriesFile(std::uint32_t nCommandId) {
    const CommandDescriptor* pCommand = findCommand(nCommandId);
    return hasBinaryForm(nCommandId) || (pCommand && hasBinaryForm(pCommand->nResponseId));
}

}  // namespace

Exchange::Exchange(ITransfer& transfer, const ExchangeLimits& limits, DomainList& reply)
    : m_transfer(transfer), m_limits(limits), m_reply(reply) {}

Exchange::Result Exchange::begin(const SDKCommandHeadInfo& head, const DomainList& request,
                                 const InetAddr& to) {
    m_head = head;
    m_to = to;
    m_nProtocolType = head.getProtocolType();
    m_bCarriesFile = carriesFile(head.getCommandID());
    auto pParam = std::make_unique<SDKCommandParam>();
    pParam->setHead(head);
    pParam->setDomains(request);
    const bool bEncoded = guardMemory([&] {
        return createCommandProtocolParser(ProtocolType::SDK)
            ->createCommand(wrapSafe<CommandParam>(std::move(pParam)), m_request);
    });
    if (!bEncoded) {
        return ErrorCode::EncodeFailed;
    }
    m_nStepUntil = momentIn(SendLimitMs);
    return sendRest();
}

SocketApi::Wait Exchange::waitsFor() const {
    Socket* pSocket = m_transfer.getSocket();
    return {pSocket ? pSocket->getHandle() : -1,
            isSent() ? SocketApi::Direction::Read : SocketApi::Direction::Write};
}

std::uint32_t Exchange::waitMs() const {
    const std::uint64_t nUntil = isSent() ? std::min(m_nStepUntil, m_nWholeUntil) : m_nStepUntil;
    const std::uint64_t nNow = currentClock().monotonicMs();
    return static_cast<std::uint32_t>(
        std::min<std::uint64_t>(nUntil - std::min(nUntil, nNow), INT32_MAX));
}

Exchange::Result Exchange::proceed(bool bReady) {
    if (waitMs() == 0) {
        return isSent() ? ErrorCode::ReceiveTimedOut : ErrorCode::SendFailed;
    }
    if (!bReady) {
        return std::nullopt;
    }
    return isSent() ? receive() : sendRest();
}

Exchange::Result Exchange::sendRest() {
    const int nResult = m_transfer.sendSome(m_request, m_to, m_nSent);
    if (nResult != ErrorCode::Success) {
        return nResult;
    }
    if (isSent()) {
        m_nStepUntil = momentIn(m_limits.nRead);
        m_nWholeUntil = momentIn(m_limits.nWhole);
    }
    return std::nullopt;
}

Exchange::Result Exchange::receive() {
    InetAddr from;
    const int nResult = m_transfer.recvSome(m_message, from);
    if (nResult == ErrorCode::Success) {
        return takeMessage();
    }
    if (nResult != ErrorCode::NothingToRead) {
        return nResult;
    }
    m_nStepUntil = momentIn(m_limits.nRead);
    if (m_bCarriesFile && m_message.getLength() - m_nPaidFor >= FileProgress) {
        m_nPaidFor = m_message.getLength();
        m_nWholeUntil = momentIn(m_limits.nWhole);
    }
    return std::nullopt;
}

Exchange::Result Exchange::takeMessage() {
    SafePointer<CommandParam> message;
    if (!createCommandProtocolParser(ProtocolType::SDK)->parseCommand(m_message, message)) {
        return ErrorCode::DecodeFailed;
    }
    const auto& answer = static_cast<const SDKCommandParam&>(*message);
    m_nProtocolType = answer.getHead().getProtocolType();
    const CommandDescriptor* pCommand = findCommand(m_head.getCommandID());
    if (pCommand == nullptr) {
        return ErrorCode::UnknownCommand;
    }
    if (answers(answer.getHead(), m_head)) {
        return takeReply(answer, pCommand->nResponseId);
    }
    if (++m_nMismatches > MostMismatches) {
        return ErrorCode::BadReply;
    }
    m_message.setLength(0);
    m_nPaidFor = 0;
    m_nStepUntil = momentIn(m_limits.nRead);
    return receive();
}

std::int32_t Exchange::takeReply(const SDKCommandParam& answer, std::uint32_t nResponseId) {
    if (answer.getHead().getCommandID() != nResponseId) {
        return ErrorCode::BadReply;
    }
    std::int32_t nResult = ErrorCode::BadReply;
    for (const auto& record : answer.getDomains()) {
        m_reply.push_back(record);
        if (record->getDomainId() == EtResult::DomainId) {
            nResult = static_cast<const EtResult&>(*record).getCode();
        }
    }
    return nResult;
}
