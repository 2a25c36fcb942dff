// When a session gets its keep-alive, and when it is given up.
#include "session/DeviceSessionManager.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "Product/Technic/KXFunction.h"
#include "Product/Technic/MemoryGuard.h"
#include "Product/Technic/platform/Clock.h"

namespace {

constexpr std::uint32_t KeepAliveSeconds = 60;
constexpr std::int32_t MostFailures = 3;

constexpr std::uint32_t ScanPauseMs = 3000;

int doNothing() {
    return 0;
}

}  // namespace

DeviceSessionManager& DeviceSessionManager::instance() {
    static auto* const pManager = std::make_unique<DeviceSessionManager>().release();
    return *pManager;
}

DeviceSessionManager::DeviceSessionManager()
    : m_pThread(
          wrapSafe(std::make_unique<GThread>(KX_FUNCTION::bind_funcobj0<int, DeviceSessionManager>(
                                                 &DeviceSessionManager::heartBeat, this),
                                             "SessionHeartBeatThread", doNothing, doNothing))) {}

DeviceSessionManager::~DeviceSessionManager() noexcept {
    m_ending.request_stop();
    if (m_pThread->isRunning()) {
        m_pThread->stop();
    }
    m_sessions.clear();
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
        if (session->getHeartbeatFailures() >= MostFailures && session->closeIfIdle()) {
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
    // Without memory the rest is found by the next scan.
    const bool bMemory = guardMemory([this] {
        waitAndProceed();
        scanIfDue();
        return true;
    });
    if (!bMemory) {
        currentClock().sleepMs(ScanPauseMs, m_ending.get_token());
    }
    if (m_ending.stop_requested()) {
        m_pending.clear();
    }
    return 0;
}

void DeviceSessionManager::waitAndProceed() {
    const std::uint64_t nNow = currentClock().monotonicMs();
    if (m_nNextScanMs == 0) {
        m_nNextScanMs = nNow + ScanPauseMs;
    }
    auto nWaitMs = static_cast<std::uint32_t>(m_nNextScanMs - std::min(m_nNextScanMs, nNow));
    std::vector<SocketApi::Wait> vecWaits;
    for (const KeepAlive& keepAlive : m_pending) {
        vecWaits.push_back(keepAlive.waitsFor());
        nWaitMs = std::min(nWaitMs, keepAlive.waitMs());
    }
    currentClock().wait(nWaitMs, vecWaits, m_ending.get_token());
    auto wait = vecWaits.begin();
    for (KeepAlive& keepAlive : m_pending) {
        keepAlive.proceed((wait++)->bReady);
    }
    m_pending.remove_if([](const KeepAlive& keepAlive) { return !keepAlive.isUnderWay(); });
}

void DeviceSessionManager::scanIfDue() {
    const std::uint64_t nNow = currentClock().monotonicMs();
    if (nNow < m_nNextScanMs || m_ending.stop_requested()) {
        return;
    }
    m_nNextScanMs = nNow + ScanPauseMs;
    // As the 32-bit tick of the machine counts.
    const std::uint32_t nSeconds = static_cast<std::uint32_t>(nNow) / 1000;
    std::list<SafePointer<SDKSession>> listDue;
    scanSessions(nSeconds, listDue);
    for (const SafePointer<SDKSession>& session : listDue) {
        KeepAlive& keepAlive = m_pending.emplace_back(session);
        if (keepAlive.begin()) {
            session->setLastHeartbeat(nSeconds);
        }
        if (!keepAlive.isUnderWay()) {
            m_pending.pop_back();
        }
    }
}
