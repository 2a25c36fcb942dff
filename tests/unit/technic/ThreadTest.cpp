// Threads and workers: start and stop, every way a worker ends, and what is written about it.
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <memory>
#include <regex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Product/Technic/GThread.h"
#include "Product/Technic/KXRuntimeError.h"
#include "Product/Technic/KXThread.h"
#include "Product/Technic/LogFilter.h"
#include "Product/Technic/SystemRunning.h"
#include "support/CapturedOutput.h"
#include "support/ChildProcess.h"
#include "support/ManualClock.h"

namespace {

class WaitingThread : public KXThread {
public:
    WaitingThread() : KXThread("waiting") {}
    ~WaitingThread() override {
        m_bGo = true;
        stop();
    }
    std::atomic<bool> m_bGo{false};
    std::atomic<int> m_nRuns{0};

protected:
    int run() override {
        openStarted();
        ++m_nRuns;
        while (!m_bGo) {
            std::this_thread::yield();
        }
        return 7;
    }
};

// A worker with counted calls and results, or exceptions, that a test sets.
struct Script {
    int setup() {
        ++m_nSetups;
        return m_nSetupResult;
    }
    int body() {
        ++m_nRounds;
        std::this_thread::yield();
        if (m_bBodyThrows) {
            throw KXRuntimeError("broken body");
        }
        return m_nBodyResult;
    }
    int teardown() {
        ++m_nTeardowns;
        return m_nTeardownResult;
    }
    GThread::Function bind(int (Script::*pMember)()) {
        return KX_FUNCTION::bind_funcobj0<int, Script>(pMember, this);
    }

    std::atomic<int> m_nSetups{0}, m_nRounds{0}, m_nTeardowns{0};
    std::atomic<int> m_nSetupResult{0}, m_nBodyResult{0}, m_nTeardownResult{0};
    std::atomic<bool> m_bBodyThrows{false};
};

class Worker : public Script, public GThread {
public:
    Worker()
        : GThread(bind(&Script::body), "Worker", bind(&Script::setup), bind(&Script::teardown)) {}
    ~Worker() noexcept override { stop(); }

    void limitRounds(std::uint32_t nRounds) { m_nRoundsLeft = nRounds; }
    void skipRounds(std::uint32_t nSkipped) { m_nSkipCount = nSkipped; }
    GThreadInfo::State getState() { return m_objInfo->getState(); }
    void waitForRounds(int nRounds) {
        while (m_nRounds < nRounds) {
            std::this_thread::yield();
        }
    }
    void waitForEnd() {
        while (isRunning()) {
            std::this_thread::yield();
        }
    }
};

class WorkerTest : public testing::Test {
protected:
    ManualClock m_objClock;
    ScopedClock m_objScope{m_objClock};
};

constexpr const char* ExceptionLog = "mnt/mtd/log/ThreadException.log";

// The one line of the thread exception log, without its date and with thread ids as "ID".
std::string exceptionLine() {
    std::string strLine = readFile(ExceptionLog);
    strLine = std::regex_replace(strLine, std::regex("^[-0-9]{10} [:0-9]{8}"), "DATE");
    return std::regex_replace(strLine, std::regex("Worker,[0-9]+"), "Worker,ID");
}

std::string expectedLine(const std::string& strText) {
    return "DATE,[ThreadException] thread(Worker,ID) " + strText + "\n";
}

std::string stopText(const std::string& strReason) {
    return "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~setSystemRunningFlag~~~~~~~~~~~~~~~~~~~~~~~~~~~"
           " Flag=0 Reason=" +
           strReason + "\n";
}

// Gives this process a mount namespace, by a user namespace if need be, and an empty /mnt in it.
bool mountOwnMnt() {
    if (unshare(CLONE_NEWNS) != 0) {
        const auto strUser = "0 " + std::to_string(geteuid()) + " 1";
        const auto strGroup = "0 " + std::to_string(getegid()) + " 1";
        if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
            return false;
        }
        std::ofstream("/proc/self/setgroups") << "deny";
        std::ofstream("/proc/self/uid_map") << strUser;
        std::ofstream("/proc/self/gid_map") << strGroup;
    }
    return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("none", "/mnt", "tmpfs", 0, nullptr) == 0;
}

int throwRuntimeError() {
    throw std::runtime_error("broken step");
}

int succeed() {
    return 0;
}

std::vector<std::string> g_vecTraces;

}  // namespace

TEST(KXThread, RunsUntilItsWorkReturns) {
    WaitingThread objThread;
    EXPECT_FALSE(objThread.isRunning());
    EXPECT_EQ(objThread.stop(), -4);
    EXPECT_EQ(objThread.start(), 0);
    EXPECT_TRUE(objThread.isRunning());
    EXPECT_EQ(objThread.start(), -5);
    objThread.m_bGo = true;
    objThread.stop();
    EXPECT_FALSE(objThread.isRunning());
    EXPECT_EQ(objThread.join(), -4);
    EXPECT_EQ(objThread.m_nRuns, 1);
    EXPECT_EQ(objThread.start(), 0);
    objThread.stop();
    EXPECT_EQ(objThread.m_nRuns, 2);
}

TEST(KXThread, StopThatOutlivesItsPollingWaitsForTheEnd) {
    ManualClock objClock;
    const ScopedClock objScope(objClock);
    WaitingThread objThread;
    ASSERT_EQ(objThread.start(), 0);
    std::thread objReleaser([&] {
        while (objClock.getSleptMs() < 5000) {
            std::this_thread::yield();
        }
        objThread.m_bGo = true;
    });
    objThread.stop();
    objReleaser.join();
    EXPECT_EQ(objClock.getSleptMs(), 5000u);
    EXPECT_FALSE(objThread.isRunning());
}

TEST(KXThread, StartAfterItEndedByItselfRunsAgain) {
    WaitingThread objThread;
    objThread.m_bGo = true;
    ASSERT_EQ(objThread.start(), 0);
    while (objThread.isRunning()) {
        std::this_thread::yield();
    }
    EXPECT_EQ(objThread.start(), 0);
    objThread.stop();
    EXPECT_EQ(objThread.m_nRuns, 2);
}

TEST(KXThread, TracesItsStartAndEnd) {
    g_vecTraces.clear();
    setTraceSink([](const std::string& strText) { g_vecTraces.push_back(strText); });
    {
        WaitingThread objThread;
        objThread.start();
    }
    setTraceSink(nullptr);
    ASSERT_EQ(g_vecTraces.size(), 2u);
    EXPECT_TRUE(std::regex_match(
        g_vecTraces[0],
        std::regex("start thread\\(waiting\\),threadId=[0-9]+ in:KXThread line:446\n")));
    EXPECT_TRUE(std::regex_match(
        g_vecTraces[1],
        std::regex("stop thread\\(waiting\\),threadId=[0-9]+ in:KXThread line:448\n")));
}

TEST_F(WorkerTest, RunsRoundAfterRoundBetweenSetupAndTeardown) {
    Worker objWorker;
    EXPECT_EQ(objWorker.getState(), GThreadInfo::Stopped);
    ASSERT_TRUE(objWorker.start());
    EXPECT_EQ(objWorker.getState(), GThreadInfo::Running);
    objWorker.waitForRounds(3);
    EXPECT_TRUE(objWorker.start());  // running already
    EXPECT_EQ(objWorker.m_nSetups, 1);
    EXPECT_EQ(objWorker.m_nTeardowns, 0);
    EXPECT_TRUE(objWorker.stop());
    EXPECT_FALSE(objWorker.isRunning());
    EXPECT_EQ(objWorker.getState(), GThreadInfo::Stopped);
    EXPECT_TRUE(objWorker.stop());
    EXPECT_EQ(objWorker.m_nTeardowns, 1);

    EXPECT_TRUE(objWorker.start());
    EXPECT_EQ(objWorker.m_nSetups, 2);
}

TEST_F(WorkerTest, EndsWhenItsBodyFailsAndTearsDownAtStop) {
    g_vecTraces.clear();
    setTraceSink([](const std::string& strText) { g_vecTraces.push_back(strText); });
    Worker objWorker;
    objWorker.m_nBodyResult = -3;
    EXPECT_TRUE(objWorker.start());
    objWorker.waitForEnd();
    setTraceSink(nullptr);
    EXPECT_EQ(objWorker.m_nRounds, 1);
    EXPECT_EQ(objWorker.getState(), GThreadInfo::Stopped);
    EXPECT_EQ(objWorker.m_nTeardowns, 0);
    EXPECT_TRUE(objWorker.stop());
    EXPECT_EQ(objWorker.m_nTeardowns, 1);
    EXPECT_TRUE(isSystemRunning());
    ASSERT_EQ(g_vecTraces.size(), 3u);
    EXPECT_EQ(g_vecTraces[1],
              "______________________thread(Worker)failed,ready to stop,m_Result = -3 in:GThread "
              "line:281\n");
}

TEST_F(WorkerTest, HonoursRoundLimitAndSkipCount) {
    Worker objWorker;
    objWorker.limitRounds(5);
    objWorker.skipRounds(1);
    ASSERT_TRUE(objWorker.start());
    objWorker.waitForEnd();
    EXPECT_EQ(objWorker.m_nRounds, 3);          // rounds 0, 2 and 4
    EXPECT_EQ(m_objClock.getSleptMs(), 2000u);  // rounds 1 and 3
}

TEST_F(WorkerTest, FailedSetupStartsNothingButIsTornDown) {
    outputOfChild([] {
        std::filesystem::create_directories("mnt/mtd/log");
        Worker objWorker;
        objWorker.m_nSetupResult = 9;
        EXPECT_FALSE(objWorker.start());
        EXPECT_FALSE(objWorker.isRunning());
        EXPECT_EQ(exceptionLine(), expectedLine("setup failed. result=9"));
        EXPECT_TRUE(objWorker.stop());
        EXPECT_EQ(objWorker.m_nTeardowns, 1);
        EXPECT_EQ(objWorker.m_nRounds, 0);
        EXPECT_TRUE(isSystemRunning());
    });
}

TEST_F(WorkerTest, FailedTeardownIsWrittenAndReturned) {
    outputOfChild([] {
        std::filesystem::create_directories("mnt/mtd/log");
        Worker objWorker;
        objWorker.m_nTeardownResult = -4;
        EXPECT_TRUE(objWorker.start());
        objWorker.waitForRounds(1);
        EXPECT_FALSE(objWorker.stop());
        EXPECT_EQ(exceptionLine(), expectedLine("teardown failed,result=-4"));
        EXPECT_TRUE(isSystemRunning());
    });
}

TEST_F(WorkerTest, ExceptionOfABodyEndsEveryWorker) {
    const std::string strOutput = outputOfChild([&] {
        std::filesystem::create_directories("mnt/mtd/log");
        Worker objOther;
        ASSERT_TRUE(objOther.start());
        Worker objWorker;
        objWorker.m_bBodyThrows = true;
        ASSERT_TRUE(objWorker.start());
        objWorker.waitForEnd();
        objOther.waitForEnd();
        EXPECT_FALSE(isSystemRunning());
        EXPECT_EQ(m_objClock.getSleptMs(), 1000u);
        EXPECT_EQ(exceptionLine(), expectedLine("running exception,message[broken body]"));
    });
    EXPECT_EQ(strOutput, stopText("GThread running exception."));
}

TEST_F(WorkerTest, ExceptionOfSetupOrTeardownClearsTheRunningFlag) {
    const std::string strSetupOutput = outputOfChild([] {
        std::filesystem::create_directories("mnt/mtd/log");
        GThread objWorker(&succeed, "Worker", &throwRuntimeError, &succeed);
        EXPECT_FALSE(objWorker.start());
        EXPECT_FALSE(objWorker.isRunning());
        EXPECT_FALSE(isSystemRunning());
        EXPECT_EQ(exceptionLine(), expectedLine("setup exception,massage[broken step]"));
    });
    EXPECT_EQ(strSetupOutput, stopText("GThread setup exception."));

    const std::string strTeardownOutput = outputOfChild([] {
        std::filesystem::create_directories("mnt/mtd/log");
        GThread objWorker(&succeed, "Worker", &succeed, &throwRuntimeError);
        EXPECT_TRUE(objWorker.start());
        EXPECT_FALSE(objWorker.stop());
        EXPECT_FALSE(isSystemRunning());
        EXPECT_EQ(exceptionLine(), expectedLine("teardown exception,massage[broken step]"));
    });
    EXPECT_EQ(strTeardownOutput, stopText("GThread teardown exception."));
}

TEST_F(WorkerTest, DestroyedWhileRunningIsStoppedAndTold) {
    const std::string strOutput = outputOfChild([] {
        std::filesystem::create_directories("mnt/mtd/log");
        setLogFilter(3);
        {
            GThread objWorker(&succeed, "Worker", &succeed, &succeed);
            ASSERT_TRUE(objWorker.start());
        }
        EXPECT_EQ(std::regex_replace(exceptionLine(), std::regex("Worker,0"), "Worker,ID"),
                  "DATE,[ThreadException] force stop thread(Worker,ID)\n");
    });
    EXPECT_TRUE(std::regex_match(strOutput, std::regex("force stop thread\\(Worker,[0-9]+\\)\n")))
        << strOutput;
}

TEST(SystemRunning, SettingTheFlagPrintsAndChangesNothing) {
    EXPECT_EQ(captureOutput([] { setSystemRunningFlag(true, "all well"); }),
              "\n~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~setSystemRunningFlag"
              "~~~~~~~~~~~~~~~~~~~~~~~~~~~ Flag=1 Reason=all well\n");
    EXPECT_TRUE(isSystemRunning());
}

TEST(SystemRunning, ClearingTheFlagWritesTheReason) {
    const ChildResult objResult = runInChild([] {
        if (!mountOwnMnt()) {
            fflush(stdout);
            _exit(77);
        }
        std::filesystem::create_directories("/mnt/mtd/log");
        setSystemRunningFlag(false, "because");
        EXPECT_FALSE(isSystemRunning());
        EXPECT_TRUE(
            std::regex_match(readFile("/mnt/mtd/log/Reboot.log"),
                             std::regex("[-0-9]{10} [:0-9]{8},\\[SystemStop\\] because\n")));
    });
    if (objResult.m_nExitCode == 77) {
        GTEST_SKIP() << "no mount namespace of its own to be had";
    }
    EXPECT_EQ(objResult.m_nExitCode, 0) << objResult.m_strOutput;
    EXPECT_EQ(objResult.m_strOutput, stopText("because"));
}
