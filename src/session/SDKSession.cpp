// Whose turn it is on the connection, and the waiting of callers.
#include "session/SDKSession.h"

#include <array>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/platform/Clock.h"
#include "session/SequenceNumber.h"

using namespace fleetkit;

SDKSession::~SDKSession() noexcept = default;

void SDKSession::setTransfer(const SafePointer<ITransfer>& transfer) {
    const TurnGuard guard(m_turn);
    m_pTransfer = transfer;
    m_pTransfer->setNonBlocking(true);
}

void SDKSession::close() {
    const TurnGuard guard(m_turn);
    closeTransfer();
}

bool SDKSession::closeIfIdle() {
    if (!m_turn.tryTake()) {
        return false;
    }
    closeTransfer();
    m_turn.give();
    return true;
}

void SDKSession::closeTransfer() {
    if (!m_pTransfer.isNull()) {
        m_pTransfer->close();
    }
}

void SDKSession::setLimits(const ExchangeLimits& limits) noexcept {
    m_nReplyTimeout = limits.nRead;
    m_nWholeTimeout = limits.nWhole;
}

std::int32_t SDKSession::sendRecv(std::uint32_t nCommandId, const DomainList& request,
                                  DomainList& reply) {
    const TurnGuard guard(m_turn);
    std::optional<Exchange> exchange;
    Exchange::Result result = begin(exchange, nCommandId, request, reply);
    while (!result) {
        std::array arrWaits{exchange->waitsFor()};
        currentClock().wait(exchange->waitMs(), arrWaits, {});
        result = proceed(*exchange, arrWaits[0].bReady);
    }
    return *result;
}

Exchange::Result SDKSession::begin(std::optional<Exchange>& exchange, std::uint32_t nCommandId,
                                   const DomainList& request, DomainList& reply) {
    if (m_pTransfer.isNull()) {
        return ErrorCode::NoTransport;
    }
    SDKCommandHeadInfo head;
    head.setProtocolType(m_nProtocolType);
    head.setCommandID(nCommandId);
    head.setSessionId(m_nSessionId);
    head.setSequence(nextSequence());
    const ExchangeLimits limits{m_nReplyTimeout, m_nWholeTimeout};
    return exchange.emplace(*m_pTransfer, limits, reply).begin(head, request, m_dialAddr);
}

Exchange::Result SDKSession::proceed(Exchange& exchange, bool bReady) {
    const Exchange::Result result = exchange.proceed(bReady);
    m_nProtocolType = exchange.getProtocolType();
    return result;
}
