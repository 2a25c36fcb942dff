// The table of sessions by their handles, and the heartbeat that keeps them alive.
#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <stop_token>

#include "Product/Technic/GThread.h"
#include "Product/Technic/KXMutex.h"
#include "Product/Technic/SafePointer.h"
#include "Product/Technic/ThreadAnnotations.h"
#include "session/KeepAlive.h"
#include "session/SDKSession.h"

// Sends every session a keep-alive when more than 60 seconds have passed since the last one. A
// session whose keep-alives failed three times in a row, for whatever reason, is closed and taken
// out of the table by the next scan; one good keep-alive makes up for all failures before it. A
// session in an exchange is left alone until the next scan.
//
// One thread serves all sessions: nothing that it does waits for a single one of them.
//
// Callable from any thread, except for `heartBeat`, which belongs to one. Nobody waits for an
// exchange while holding the table's lock.
class DeviceSessionManager {
public:
    // The one of the process, made at first use and never destroyed: at the end of the process
    // other threads may still be in it. Sessions still open then end without logging out.
    static DeviceSessionManager& instance();

    DeviceSessionManager();
    ~DeviceSessionManager() noexcept;
    DeviceSessionManager(const DeviceSessionManager&) = delete;
    DeviceSessionManager& operator=(const DeviceSessionManager&) = delete;

    // Starts the heartbeat if it is not running. A handle that is already there keeps its session.
    void addSession(long nHandle, const SafePointer<SDKSession>& session);

    bool findSession(long nHandle, SafePointer<SDKSession>& out);

    // Nothing happens to an unknown handle. The session lives on while somebody holds it.
    void removeSession(long nHandle);

    // Appends the sessions that are due for a keep-alive at `nNow`, in seconds, to `pending`, and
    // drops the dead ones.
    void scanSessions(std::uint32_t nNow, std::list<SafePointer<SDKSession>>& pending);

    // One round of the heartbeat: waits until the next scan, which is due every 3 seconds, or until
    // a keep-alive under way can go on, and does what there is to do then. Always 0.
    int heartBeat();

private:
    void waitAndProceed();
    void scanIfDue();

    KXMutex m_mutex;
    std::map<long, SafePointer<SDKSession>> m_sessions KX_GUARDED_BY(m_mutex);
    std::stop_source m_ending;
    SafePointer<GThread> m_pThread;
    std::uint64_t m_nNextScanMs = 0;  // 0 before the first round
    std::list<KeepAlive> m_pending;   // under way
};
