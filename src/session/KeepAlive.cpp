// What a keep-alive carries, and what its end does to the session.
#include "session/KeepAlive.h"

#include <exception>
#include <memory>

#include "Product/Technic/ErrorCode.h"
#include "domain/EtSessionId.h"
#include "protocol/CommandIds.h"
#include "session/SessionCommands.h"

using namespace fleetkit;

namespace {

EtSessionId sessionIdOf(const SDKSession& session) {
    EtSessionId sessionId;
    sessionId.setSessionId(static_cast<int>(session.getSessionId()));
    return sessionId;
}

}  // namespace

std::int32_t sendHeartBeat(const SafePointer<SDKSession>& session) {
    if (session.isNull()) {
        return ErrorCode::NoTransport;
    }
    return sendSet(session, CommandId::keepAlive, sessionIdOf(*session));
}

KeepAlive::KeepAlive(const SafePointer<SDKSession>& session) : m_session(session) {}

// The turn is held from one call to the next, which the compiler's analysis cannot follow.
KeepAlive::~KeepAlive() KX_NO_THREAD_SAFETY_ANALYSIS {
    if (m_bHeld) {
        m_session->turn().give();
    }
}

bool KeepAlive::begin() KX_NO_THREAD_SAFETY_ANALYSIS {
    m_bHeld = m_session->turn().tryTake();
    if (!m_bHeld) {
        return false;
    }
    take([this]() KX_NO_THREAD_SAFETY_ANALYSIS {
        return m_session->begin(m_exchange, CommandId::keepAlive, {copyOf(sessionIdOf(*m_session))},
                                m_reply);
    });
    return true;
}

void KeepAlive::proceed(bool bReady) {
    take([&]() KX_NO_THREAD_SAFETY_ANALYSIS { return m_session->proceed(*m_exchange, bReady); });
}

// An exception is one more failure of this session; it must not end the heartbeat of all.
template <class Step>
void KeepAlive::take(const Step& step) {
    try {
        const Exchange::Result result = step();
        if (result) {
            end(*result == ErrorCode::Success);
        }
    } catch (const std::exception&) {
        end(false);
    }
}

void KeepAlive::end(bool bSucceeded) KX_NO_THREAD_SAFETY_ANALYSIS {
    m_session->setHeartbeatFailures(bSucceeded ? 0 : m_session->getHeartbeatFailures() + 1);
    m_session->turn().give();
    m_bHeld = false;
}
