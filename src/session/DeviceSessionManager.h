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
#include "session/SDKSession.h"

// Sends every session a keep-alive when more than 60 seconds have passed since the last one. A
// session whose keep-alives failed three times in a row, for whatever reason, is closed and taken
// out of the table by the next scan; one good keep-alive makes up for all failures before it.
//
// Callable from any thread, except for `heartBeat`, which belongs to one. The table's lock is taken
// before that of a session: a scan that closes a dead session waits for the exchange under way on
// it, and everybody who wants the table waits with it.
class DeviceSessionManager {
public:
    // The one of the process, made at first use and destroyed at exit. Sessions still open then are
    // closed without logging out.
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

    // One round of the heartbeat: a keep-alive if the last scan left one to send, else a pause of
    // 3 seconds and a scan. Always 0.
    int heartBeat();

private:
    KXMutex m_mutex;
    std::map<long, SafePointer<SDKSession>> m_sessions KX_GUARDED_BY(m_mutex);
    std::stop_source m_ending;
    SafePointer<GThread> m_pThread;
    std::uint32_t m_nNow;                          // of the last scan, in seconds
    std::list<SafePointer<SDKSession>> m_pending;  // due for a keep-alive since then
};

// The keep-alive command of a session that is logged in.
std::int32_t sendHeartBeat(const SafePointer<SDKSession>& session);
