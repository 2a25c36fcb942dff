// One connection to one device: a request, its reply, strictly in turn.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>

#include "Product/Technic/SafePointer.h"
#include "Product/Technic/ThreadAnnotations.h"
#include "domain/DeviceInfoEx.h"
#include "domain/DomainList.h"
#include "protocol/ProtocolType.h"
#include "session/Exchange.h"
#include "session/ExchangeTurn.h"
#include "session/ITransfer.h"

// Shares its transport, and never reconnects: after `close`, or when the other end is gone, every
// exchange fails. No failure closes it; that is for its owner and the heartbeat to do.
//
// Callable from any thread, except for `setDeviceInfo` and `setDialAddr`, which come before the
// session is shared.
// `sendRecv` and `close` wait for an exchange under way on another thread.
class SDKSession {
public:
    SDKSession() = default;
    ~SDKSession() noexcept;
    SDKSession(const SDKSession&) = delete;
    SDKSession& operator=(const SDKSession&) = delete;

    void setDeviceInfo(const DeviceInfoEx& info) { m_deviceInfo = info; }
    const DeviceInfoEx& getDeviceInfo() const noexcept { return m_deviceInfo; }

    // The device's address, looked up once for the session's life.
    void setDialAddr(const InetAddr& address) { m_dialAddr = address; }

    // An empty pointer raises the error of an assigned empty pointer.
    void setTransfer(const SafePointer<ITransfer>& transfer);

    // Closes the transport, if there is one. Harmless when repeated.
    void close();
    bool closeIfIdle();  // false, and nothing closed, while an exchange is under way

    // For the exchanges that begin from now on.
    void setLimits(const ExchangeLimits& limits) noexcept;
    // The limit of a single read alone, in milliseconds.
    void setReplyTimeout(std::int32_t nTimeoutMs) noexcept { m_nReplyTimeout = nTimeoutMs; }

    // The number that the device gave at login: 0 before, and after logout.
    void setSessionId(std::uint32_t nSessionId) noexcept { m_nSessionId = nSessionId; }
    std::uint32_t getSessionId() const noexcept { return m_nSessionId; }

    // State of the heartbeat: failures in a row, and the tick time of the last attempt, in seconds.
    void setHeartbeatFailures(std::int32_t nCount) noexcept { m_nHeartbeatFailures = nCount; }
    std::int32_t getHeartbeatFailures() const noexcept { return m_nHeartbeatFailures; }
    void setLastHeartbeat(std::uint32_t nSeconds) noexcept { m_nLastHeartbeat = nSeconds; }
    std::uint32_t getLastHeartbeat() const noexcept { return m_nLastHeartbeat; }

    // What the device's last message had in its head, 1 at first.
    std::uint16_t getProtocolType() const noexcept { return m_nProtocolType; }

    // One exchange. Appends the records of the reply to `reply`, `EtResult` among them, and returns
    // the code of `EtResult`: the device's own number, 0 for success. Messages that answer
    // something else, late answers above all, are thrown away, three at most.
    //
    // Else: NoTransport, EncodeFailed (also without memory for the command), what sending and
    // receiving can return, DecodeFailed, UnknownCommand (found out only when something was
    // answered), or BadReply for the wrong kind of reply, one without `EtResult`, and one message
    // too many that was not for this exchange. An empty pointer in `request` raises the error of an
    // empty pointer.
    std::int32_t sendRecv(std::uint32_t nCommandId, const DomainList& request, DomainList& reply);

    // The same in steps, for those who wait for several sessions at once: the turn is theirs, from
    // before `begin` to the end of the exchange, whose results these give.
    ExchangeTurn& turn() KX_RETURNS_LOCK(m_turn) { return m_turn; }
    Exchange::Result begin(std::optional<Exchange>& exchange, std::uint32_t nCommandId,
                           const DomainList& request, DomainList& reply) KX_REQUIRES(m_turn);
    Exchange::Result proceed(Exchange& exchange, bool bReady) KX_REQUIRES(m_turn);

private:
    void closeTransfer() KX_REQUIRES(m_turn);

    SafePointer<ITransfer> m_pTransfer KX_GUARDED_BY(m_turn);
    DeviceInfoEx m_deviceInfo;
    InetAddr m_dialAddr;
    std::atomic<std::int32_t> m_nReplyTimeout{ExchangeLimits().nRead};
    std::atomic<std::int32_t> m_nWholeTimeout{ExchangeLimits().nWhole};
    std::atomic<std::uint32_t> m_nSessionId{0};
    ExchangeTurn m_turn;
    std::atomic<std::int32_t> m_nHeartbeatFailures{0};
    std::atomic<std::uint32_t> m_nLastHeartbeat{0};
    std::atomic<std::uint16_t> m_nProtocolType{ProtocolType::SDK};
};
