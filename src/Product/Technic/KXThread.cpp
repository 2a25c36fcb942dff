// The handshake between a thread and those who start and stop it.
#include "Product/Technic/KXThread.h"

#include "Product/Technic/LogFilter.h"
#include "Product/Technic/platform/Clock.h"

namespace {

constexpr const char* TracePlace = "KXThread";
constexpr int TraceStartLine = 446;
constexpr int TraceStopLine = 448;

constexpr int StopPolls = 500;
constexpr std::uint32_t StopPollMs = 10;

}  // namespace

KXThread::KXThread(const std::string& strName) : m_strName(strName) {}

KXThread::~KXThread() {
    join();
}

int KXThread::start() {
    {
        const KXMutexGuard guard(m_stateMutex);
        if (m_bRunning) {
            return AlreadyRunning;
        }
        m_bRunning = true;
    }
    m_handle.join();  // of a thread that ended by itself and was not stopped
    {
        const KXMutexGuard guard(m_creationMutex);
        if (!m_handle.start(&KXThread::enter, this)) {
            setRunning(false);
            return NotCreated;
        }
        m_nCreationId = m_handle.getId();
    }
    const KXMutexGuard guard(m_startedMutex);
    return Done;
}

int KXThread::stop() {
    for (int nPoll = 0; nPoll < StopPolls && isRunning(); ++nPoll) {
        currentClock().sleepMs(StopPollMs);
    }
    return join();
}

int KXThread::join() {
    const bool bWasRunning = isRunning();
    // A thread that has cleared its flag has nothing left to do, so this wait is short then.
    m_handle.join();
    if (!bWasRunning) {
        return AlreadyEnded;
    }
    setRunning(false);
    return Done;
}

bool KXThread::isRunning() const {
    const KXMutexGuard guard(m_stateMutex);
    return m_bRunning;
}

void KXThread::setRunning(bool bRunning) {
    const KXMutexGuard guard(m_stateMutex);
    m_bRunning = bRunning;
}

void KXThread::openStarted() KX_NO_THREAD_SAFETY_ANALYSIS {
    m_startedMutex.unlock();
}

void* KXThread::enter(void* pThis) {
    static_cast<KXThread*>(pThis)->runOnThread();
    return nullptr;
}

void KXThread::runOnThread() KX_NO_THREAD_SAFETY_ANALYSIS {
    m_startedMutex.lock();
    setRunning(true);
    // Waits until the starter has stored the handle.
    m_creationMutex.lock();
    m_creationMutex.unlock();

    m_nThreadId = currentThreadId();
    const std::string strWho =
        " thread(" + m_strName + "),threadId=" + std::to_string(static_cast<int>(m_nThreadId));
    traceMessage("start" + strWho, TracePlace, TraceStartLine);
    const int nResult = run();
    traceMessage("stop" + strWho, TracePlace, TraceStopLine);

    const KXMutexGuard guard(m_stateMutex);
    m_nResult = nResult;
    m_bRunning = false;
}
