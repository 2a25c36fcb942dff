// When a session gets its keep-alive, and when it is given up.
#include "session/DeviceSessionManager.h"

#include <exception>
#include <memory>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/KXFunction.h"
#include "Product/Technic/MemoryGuard.h"
#include "Product/Technic/platform/Clock.h"
#include "domain/EtSessionId.h"
#include "protocol/CommandIds.h"
#include "session/SessionCommands.h"

using namespace fleetkit;

namespace {

constexpr std::uint32_t KeepAliveSeconds = 60;
constexpr std::int32_t MostFailures = 3;

constexpr std::uint32_t ScanPauseMs = 3000;

// Seconds since the start of the machine, from its 32-bit tick.
std::uint32_t secondsNow() {
    return static_cast<std::uint32_t>(currentClock().monotonicMs()) / 1000;
}

int doNothing() {
    return 0;
}

// An exception in a keep-alive is one more failure of that session; it must not end the heartbeat
// of all.
bool keepAlive(const SafePointer<SDKSession>& session) {
    try {
        return sendHeartBeat(session) == ErrorCode::Success;
    } catch (const std::exception&) {
        return false;
    }
}

}  // namespace

DeviceSessionManager& DeviceSessionManager::instance() {
    static DeviceSessionManager manager;
    return manager;
}

// Reading the time makes the clock older than the process's manager, whose worker uses the clock
// until the manager is destroyed.
DeviceSessionManager::DeviceSessionManager()
    : m_pThread(
          wrapSafe(std::make_unique<GThread>(KX_FUNCTION::bind_funcobj0<int, DeviceSessionManager>(
                                                 &DeviceSessionManager::heartBeat, this),
                                             "SessionHeartBeatThread", doNothing, doNothing))),
      m_nNow(secondsNow()) {}

DeviceSessionManager::~DeviceSessionManager() noexcept {
    m_ending.request_stop();
    if (m_pThread->isRunning()) {
        m_pThread->stop();
    }
    m_sessions.clear();
    m_pending.clear();
}

void DeviceSessionManager::addSession(long nHandle, const SafePointer<SDKSession>& session) {
    const KXMutexGuard guard(m_mutex);
    if (!m_pThread->isRunning()) {
        m_pThread->start();
    }
    m_sessions.emplace(nHandle, session);
}

bool DeviceSessionManager::findSession(long nHandle, SafePointer<SDKSession>& out) {
    const KXMutexGuard guard(m_mutex);
    const auto it = m_sessions.find(nHandle);
    if (it == m_sessions.end()) {
        return false;
    }
    out = it->second;
    return true;
}

void DeviceSessionManager::removeSession(long nHandle) {
    const KXMutexGuard guard(m_mutex);
    m_sessions.erase(nHandle);
}

void DeviceSessionManager::scanSessions(std::uint32_t nNow,
                                        std::list<SafePointer<SDKSession>>& pending) {
    const KXMutexGuard guard(m_mutex);
    for (auto it = m_sessions.begin(); it != m_sessions.end();) {
        const SafePointer<SDKSession>& session = it->second;
        if (session->getHeartbeatFailures() >= MostFailures) {
            session->close();
            it = m_sessions.erase(it);
            continue;
        }
        if (nNow - session->getLastHeartbeat() > KeepAliveSeconds) {
            pending.push_back(session);
        }
        ++it;
    }
}

int DeviceSessionManager::heartBeat() {
    if (m_pending.empty()) {
        currentClock().sleepMs(ScanPauseMs, m_ending.get_token());
        if (!m_ending.stop_requested()) {
            m_nNow = secondsNow();
            // Without memory the rest is found by the next scan.
            guardMemory([this] {
                scanSessions(m_nNow, m_pending);
                return true;
            });
        }
        return 0;
    }
    const SafePointer<SDKSession>& session = m_pending.front();
    session->setHeartbeatFailures(keepAlive(session) ? 0 : session->getHeartbeatFailures() + 1);
    session->setLastHeartbeat(m_nNow);
    m_pending.pop_front();
    return 0;
}

std::int32_t sendHeartBeat(const SafePointer<SDKSession>& session) {
    if (session.isNull()) {
        return ErrorCode::NoTransport;
    }
    EtSessionId sessionId;
    sessionId.setSessionId(static_cast<int>(session->getSessionId()));
    return sendSet(session, CommandId::keepAlive, sessionId);
}
