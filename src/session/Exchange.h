// One exchange with a device, in steps that never wait.
#pragma once

#include <cstdint>
#include <optional>

#include "Product/Technic/platform/SocketApi.h"
#include "domain/DomainList.h"
#include "protocol/CommandBuffer.h"
#include "protocol/SDKCommandHeadInfo.h"
#include "protocol/SDKCommandParam.h"
#include "session/ITransfer.h"

// How long an exchange may take, in milliseconds.
struct ExchangeLimits {
    int nRead = 5000;    // from one piece of the reply to the next
    int nWhole = 10000;  // from the request to the end of the reply
};

// A request on its way out, then the reply on its way in. Whoever makes it waits between the steps:
// a caller for this exchange alone, the heartbeat for those of many sessions at once. Belongs to
// one thread; transport and reply have to outlive it.
//
// The codes are those of `SDKSession::sendRecv`, and nothing while the exchange is under way.
class Exchange {
public:
    using Result = std::optional<std::int32_t>;

    Exchange(ITransfer& transfer, const ExchangeLimits& limits, DomainList& reply);

    // Encodes the request and sends what the socket takes of it. `to` is for datagrams.
    Result begin(const SDKCommandHeadInfo& head, const DomainList& request, const InetAddr& to);

    // What to wait for, and how long at most.
    SocketApi::Wait waitsFor() const;
    std::uint32_t waitMs() const;

    // The next step, after a wait that found the socket ready, or did not.
    Result proceed(bool bReady);

    // What the device's last message had in its head; that of the request at first.
    std::uint16_t getProtocolType() const noexcept { return m_nProtocolType; }

private:
    Result sendRest();
    Result receive();
    Result takeMessage();
    std::int32_t takeReply(const SDKCommandParam& answer, std::uint32_t nResponseId);
    bool isSent() const { return m_nSent == m_request.getLength(); }

    ITransfer& m_transfer;
    const ExchangeLimits m_limits;
    DomainList& m_reply;
    SDKCommandHeadInfo m_head;
    InetAddr m_to;
    bool m_bCarriesFile = false;
    CommandBuffer m_request;
    std::uint32_t m_nSent = 0;
    CommandBuffer m_message;       // as far as it has arrived
    std::uint32_t m_nPaidFor = 0;  // bytes of it that have given the exchange more time
    int m_nMismatches = 0;
    std::uint64_t m_nStepUntil = 0;   // when the sending, or the read under way, is over
    std::uint64_t m_nWholeUntil = 0;  // when all of it is
    std::uint16_t m_nProtocolType = 0;
};
