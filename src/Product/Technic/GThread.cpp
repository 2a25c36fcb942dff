// The worker's loop and the record of its failures.
#include "Product/Technic/GThread.h"

#include <algorithm>
#include <exception>
#include <memory>

#include "Product/Technic/KXLogger.h"
#include "Product/Technic/LogFilter.h"
#include "Product/Technic/SystemRunning.h"
#include "Product/Technic/platform/Clock.h"

using namespace fleetkit;

namespace {

// Places in the source that failure texts and traces name.
constexpr const char* PlaceName = "GThread";
constexpr int StartLine = 121;
constexpr int StopLine = 164;
constexpr int FailedBodyLine = 281;

constexpr std::int32_t Tuning = 210;
constexpr std::uint32_t OneSecondMs = 1000;

constexpr const char* ExceptionLogPath = "./mnt/mtd/log/ThreadException.log";
constexpr const char* ExceptionLogTag = "ThreadException";
constexpr std::uint32_t ExceptionLogSizeLimit = 10240;
constexpr std::uint32_t ExceptionLogFileCount = 1;

std::string threadText(const std::string& strName, std::uint32_t nThreadId) {
    return "thread(" + strName + "," + std::to_string(static_cast<int>(nThreadId)) + ")";
}

void logFailure(const std::string& strText) {
    logToFile(ExceptionLogPath, ExceptionLogTag, strText, ExceptionLogSizeLimit,
              ExceptionLogFileCount);
}

// One worker's exception stops all of them.
void stopSystem(const std::string& strText, const char* pReason) {
    logFailure(strText);
    currentClock().sleepMs(OneSecondMs);
    setSystemRunningFlag(false, pReason);
}

std::uint64_t secondsNow() {
    return currentClock().monotonicMs() / OneSecondMs;
}

}  // namespace

GThread::GThread(const Function& body, const std::string& strName, const Function& setup,
                 const Function& teardown)
    : KXThread(strName),
      m_info(wrapSafe(std::make_unique<GThreadInfo>(strName))),
      m_setup(setup),
      m_teardown(teardown),
      m_body(body) {
    m_nTuning = Tuning;
    m_info->setTuning(Tuning);
}

GThread::~GThread() noexcept {
    if (isRunning()) {
        const std::string strText = "force stop " + threadText(m_strName, m_info->getThreadId());
        logMessage(LogLevel::Trace, PlaceName, "%s\n", strText.c_str());
        logFailure(strText);
    }
    stop();
}

bool GThread::start() {
    const KXMutexGuard guard(m_mutex, PlaceName, StartLine);
    if (isRunning()) {
        return true;
    }
    m_nBodyCallCount = 0;
    m_nRoundCounter = 0;
    m_bSetupDone = true;
    try {
        return setUp();
    } catch (const std::exception& error) {
        stopSystem(threadText(m_strName, currentThreadId()) + " setup exception,massage[" +
                       error.what() + "]",
                   "GThread setup exception.");
        return false;
    }
}

bool GThread::setUp() {
    const int nResult = m_setup();
    if (nResult != 0) {
        logFailure(threadText(m_strName, currentThreadId()) +
                   " setup failed. result=" + std::to_string(nResult));
        return false;
    }
    m_info->setState(GThreadInfo::Running);
    if (KXThread::start() >= Done) {
        return true;
    }
    m_info->setState(GThreadInfo::Stopped);
    return false;
}

bool GThread::stop() {
    const KXMutexGuard guard(m_mutex, PlaceName, StopLine);
    m_info->setState(GThreadInfo::Stopped);
    KXThread::stop();
    m_nRoundsLeft = 0;
    m_nRoundCounter = 0;
    if (!m_bSetupDone) {
        return true;
    }
    m_bSetupDone = false;
    try {
        return tearDown();
    } catch (const std::exception& error) {
        stopSystem(threadText(m_strName, m_info->getThreadId()) + " teardown exception,massage[" +
                       error.what() + "]",
                   "GThread teardown exception.");
        return false;
    }
}

bool GThread::tearDown() {
    const int nResult = m_teardown();
    if (nResult != 0) {
        logFailure(threadText(m_strName, m_info->getThreadId()) +
                   " teardown failed,result=" + std::to_string(nResult));
    }
    return nResult == 0;
}

int GThread::run() {
    openStarted();
    m_info->setThreadId(currentThreadId());
    std::uint64_t nRoundEnd = secondsNow();
    while (m_info->getState() == GThreadInfo::Running && isSystemRunning() && runRound()) {
        const std::uint64_t nNow = secondsNow();
        m_nLongestRound = std::max(m_nLongestRound, nNow - nRoundEnd);
        nRoundEnd = nNow;
        if (m_nRoundsLeft != 0 && --m_nRoundsLeft == 0) {
            break;
        }
    }
    m_info->setState(GThreadInfo::Stopped);
    m_nRoundsLeft = 0;
    return 0;
}

// False when the loop has to end.
bool GThread::runRound() {
    try {
        if (m_nRoundCounter % (m_nSkipCount + 1) == 0) {
            m_Result = m_body();
            ++m_nBodyCallCount;
        } else {
            currentClock().sleepMs(OneSecondMs);
        }
        ++m_nRoundCounter;
    } catch (const std::exception& error) {
        stopSystem(threadText(m_strName, m_info->getThreadId()) + " running exception,message[" +
                       error.what() + "]",
                   "GThread running exception.");
        return false;
    }
    if (m_Result != 0) {
        traceMessage("______________________thread(" + m_strName +
                         ")failed,ready to stop,m_Result = " + std::to_string(m_Result),
                     PlaceName, FailedBodyLine);
    }
    return m_Result == 0;
}
