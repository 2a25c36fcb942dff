// Threads and workers: start and stop, every way a worker ends, and what is written about it.
#include <gmock/gmock.h>
#include <sched.h>
#include <sys/mount.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <regex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Product/Technic/GThread.h"
#include "Product/Technic/KXThread.h"
#include "Product/Technic/LogFilter.h"
#include "Product/Technic/SystemRunning.h"
#include "support/CapturedOutput.h"
#include "support/ChildProcess.h"
#include "support/ManualClock.h"

using namespace fleetkit;

namespace {

template <class Condition>
void waitUntil(const Condition& condition) {
    while (!condition()) {
        std::this_thread::yield();
    }
}

using Function = KX_FUNCTION::function<int>;
using Step = std::function<int()>;

Step answer(int nResult) {
    return [nResult] {
        std::this_thread::yield();
        return nResult;
    };
}

int fail() {
    throw std::runtime_error("broken");
}

struct Steps {
    Step m_setup = answer(0);
    Step m_body = answer(0);
    Step m_teardown = answer(0);
};

// A worker that counts how often its steps are called.
class Worker : public GThread {
public:
    explicit Worker(const Steps& steps = {})
        : GThread(counting(m_nRounds, steps.m_body), "Worker", counting(m_nSetups, steps.m_setup),
                  counting(m_nTeardowns, steps.m_teardown)) {}
    ~Worker() noexcept override { stop(); }

    void waitForEnd() {
        waitUntil([&] { return !isRunning(); });
    }

    using GThread::m_info;
    using GThread::m_nRoundsLeft;
    using GThread::m_nSkipCount;
    std::atomic<int> m_nSetups{0}, m_nRounds{0}, m_nTeardowns{0};

private:
    static Function counting(std::atomic<int>& nCalls, const Step& step) {
        return Function([&nCalls, step] {
            ++nCalls;
            return step();
        });
    }
};

class WorkerTest : public testing::Test {
protected:
    ManualClock m_clock;
    ScopedClock m_scope{m_clock};
};

// A log of this directory, with "#" for dates and for the name and number of a worker.
std::string logged(const std::string& strLog) {
    return std::regex_replace(readFile("mnt/mtd/log/" + strLog),
                              std::regex("[-0-9]{10} [:0-9]{8}|Worker,[0-9]+"), "#");
}

// Makes the directory of the logs here, and /mnt the one that it is in; false where this machine
// permits no mount namespace.
bool makeLogs() {
    std::filesystem::create_directories("mnt/mtd/log");
    return (unshare(CLONE_NEWNS) == 0 || unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0) &&
           mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("mnt", "/mnt", nullptr, MS_BIND, nullptr) == 0;
}

std::vector<std::string> g_vecTraces;

}  // namespace

TEST_F(WorkerTest, StopPollsForFiveSecondsAndThenWaitsForTheEnd) {
    std::atomic<bool> bGo{false};
    Worker worker({.m_body = [&] {
        waitUntil([&] { return bGo.load(); });
        return 0;
    }});
    KXThread& thread = worker;
    EXPECT_EQ(thread.stop(), -4);
    ASSERT_TRUE(worker.start());
    EXPECT_EQ(thread.start(), -5);
    EXPECT_TRUE(worker.start()) << "running already";
    waitUntil([&] { return worker.m_nRounds == 1; });
    const std::jthread releaser([&] {
        waitUntil([&] { return m_clock.monotonicMs() >= 5000; });
        std::this_thread::sleep_for(std::chrono::milliseconds(20));  // let the wait begin
        bGo = true;
    });
    EXPECT_TRUE(worker.stop());
    EXPECT_EQ(m_clock.monotonicMs(), 5000u);
    EXPECT_FALSE(worker.isRunning());
    EXPECT_EQ(thread.join(), -4);
    EXPECT_TRUE(worker.stop());
    EXPECT_EQ(worker.m_nSetups, 1);
    EXPECT_EQ(worker.m_nTeardowns, 1);
}

TEST_F(WorkerTest, EndsWhenItsBodyFailsAndTearsDownAtStop) {
    Worker worker({.m_body = answer(-3)});
    g_vecTraces.clear();
    setTraceSink([](const std::string& strText) {
        g_vecTraces.push_back(std::regex_replace(strText, std::regex("Id=[0-9]+"), "Id=ID"));
    });
    EXPECT_TRUE(worker.start());
    worker.waitForEnd();
    setTraceSink(nullptr);
    EXPECT_EQ(g_vecTraces,
              (std::vector<std::string>{
                  "start thread(Worker),threadId=ID in:KXThread line:446\n",
                  "______________________thread(Worker)failed,ready to stop,m_Result = -3 "
                  "in:GThread line:281\n",
                  "stop thread(Worker),threadId=ID in:KXThread line:448\n",
              }));
    EXPECT_EQ(worker.m_nRounds, 1);
    EXPECT_EQ(worker.m_info->getState(), GThreadInfo::Stopped);
    EXPECT_EQ(worker.m_nTeardowns, 0);
    EXPECT_TRUE(worker.stop());
    EXPECT_EQ(worker.m_nTeardowns, 1);
    EXPECT_TRUE(isSystemRunning());
}

TEST_F(WorkerTest, HonoursRoundLimitAndSkipCount) {
    Worker worker;
    worker.m_nRoundsLeft = 5;
    worker.m_nSkipCount = 1;
    ASSERT_TRUE(worker.start());
    worker.waitForEnd();
    EXPECT_EQ(worker.m_nRounds, 3);           // rounds 0, 2 and 4
    EXPECT_EQ(m_clock.monotonicMs(), 2000u);  // rounds 1 and 3
    EXPECT_TRUE(worker.start());
    EXPECT_EQ(worker.m_nSetups, 2);
}

TEST_F(WorkerTest, FailedStepsAreWrittenAndExceptionsEndEveryWorker) {
    const struct {
        Steps m_steps;
        bool m_bStarts;
        bool m_bStops;
        std::string m_strLogged;
        std::string m_strException;  // what ends the system; empty when it goes on
    } arrCases[] = {
        {{.m_setup = answer(9)}, false, true, "setup failed. result=9", ""},
        {{.m_teardown = answer(-4)}, true, false, "teardown failed,result=-4", ""},
        {{.m_setup = fail}, false, true, "setup exception,massage[broken]", "setup"},
        {{.m_body = fail}, true, true, "running exception,message[broken]", "running"},
        {{.m_teardown = fail}, true, false, "teardown exception,massage[broken]", "teardown"},
    };
    for (const auto& testCase : arrCases) {
        SCOPED_TRACE(testCase.m_strLogged);
        const bool bEndsSystem = !testCase.m_strException.empty();
        const std::string strReason = "GThread " + testCase.m_strException + " exception.";
        const std::string strOutput = outputOfChild([&] {
            const bool bOwnMnt = makeLogs();
            Worker bystander;
            Worker worker(testCase.m_steps);
            worker.m_nRoundsLeft = 1;
            ASSERT_TRUE(bystander.start());
            EXPECT_EQ(worker.start(), testCase.m_bStarts);
            worker.waitForEnd();
            EXPECT_EQ(worker.stop(), testCase.m_bStops);
            EXPECT_EQ(worker.m_nRounds, testCase.m_bStarts ? 1 : 0);
            EXPECT_EQ(worker.m_nTeardowns, 1);
            EXPECT_EQ(logged("ThreadException.log"),
                      "#,[ThreadException] thread(#) " + testCase.m_strLogged + "\n");
            if (bOwnMnt) {
                EXPECT_EQ(logged("Reboot.log"),
                          bEndsSystem ? "#,[SystemStop] " + strReason + "\n" : "");
            }
            EXPECT_EQ(isSystemRunning(), !bEndsSystem);
            EXPECT_EQ(m_clock.monotonicMs(), bEndsSystem ? 1000u : 0u);
            if (bEndsSystem) {
                bystander.waitForEnd();
            }
        });
        EXPECT_EQ(strOutput, bEndsSystem
                                 ? "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~setSystemRunningFlag"
                                   "~~~~~~~~~~~~~~~~~~~~~~~~~~~ Flag=0 Reason=" +
                                       strReason + "\n"
                                 : "");
    }
}

TEST_F(WorkerTest, DestroyedWhileRunningIsStoppedAndTold) {
    const std::string strOutput = outputOfChild([] {
        makeLogs();
        setLogFilter(3);
        {
            GThread worker(answer(0), "Worker", answer(0), answer(0));
            ASSERT_TRUE(worker.start());
        }
        EXPECT_EQ(logged("ThreadException.log"), "#,[ThreadException] force stop thread(#)\n");
    });
    EXPECT_THAT(strOutput, testing::MatchesRegex("force stop thread\\(Worker,[0-9]+\\)\n"));
}
