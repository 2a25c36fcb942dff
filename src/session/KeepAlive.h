// The keep-alive of one session, in steps that never wait.
#pragma once

#include <cstdint>
#include <optional>

#include "Product/Technic/SafePointer.h"
#include "Product/Technic/platform/SocketApi.h"
#include "domain/DomainList.h"
#include "session/Exchange.h"
#include "session/SDKSession.h"

// The command, for a caller who waits for its answer.
std::int32_t sendHeartBeat(const SafePointer<SDKSession>& session);

// Holds the session's turn while it is under way. Its end shows in the session's count of failures,
// whatever failed, an exception included.
class KeepAlive {
public:
    explicit KeepAlive(const SafePointer<SDKSession>& session);
    ~KeepAlive();
    KeepAlive(const KeepAlive&) = delete;
    KeepAlive& operator=(const KeepAlive&) = delete;

    // False, and nothing happens, while another exchange of the session is under way.
    bool begin();

    bool isUnderWay() const noexcept { return m_bHeld; }
    SocketApi::Wait waitsFor() const { return m_exchange->waitsFor(); }
    std::uint32_t waitMs() const { return m_exchange->waitMs(); }
    void proceed(bool bReady);

private:
    template <class Step>
    void take(const Step& step);
    void end(bool bSucceeded);

    SafePointer<SDKSession> m_session;
    DomainList m_reply;
    std::optional<Exchange> m_exchange;
    bool m_bHeld = false;  // the session's turn
};
