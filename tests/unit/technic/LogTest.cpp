// The console log and the file log: what passes, the form of a line, rotation, silence on failure.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "Product/Technic/KXLogger.h"
#include "Product/Technic/LogFilter.h"
#include "support/CapturedOutput.h"
#include "support/ManualClock.h"
#include "support/TempDir.h"

using namespace fleetkit;

namespace {

// 2024-02-09 03:04:05 UTC, in a time zone two hours and a half ahead of it.
constexpr std::time_t Moment = 1707447845;
constexpr const char* MomentText = "2024-02-09 05:34:05";

std::string line(const std::string& strMessage) {
    return std::string(MomentText) + ",[Tag] " + strMessage + "\n";
}

using Printed = std::pair<std::string, int>;

// What a message prints, and the number that it returns.
Printed print(int nLevel, const char* pFileName, const std::string& strText) {
    Printed out;
    out.first =
        captureOutput([&] { out.second = logMessage(nLevel, pFileName, "%s", strText.c_str()); });
    return out;
}

std::string g_strTraced;

// Puts the process-wide filter back as it was at the start.
class LogTest : public testing::Test {
protected:
    LogTest() { setenv("TZ", "TEST-2:30", 1); }
    ~LogTest() override {
        unsetenv("TZ");
        setLogFilter(0);
        LogFilter::instance().setEnabled(true);
        setTraceSink(nullptr);
    }

    ManualClock m_clock{0, Moment};
    ScopedClock m_scope{m_clock};
    TempDir m_dir;
    std::string m_strPath = m_dir.file("log");
    KXLogger m_logger;
};

}  // namespace

TEST_F(LogTest, PassesLevelsUpToTheThreshold) {
    EXPECT_EQ(print(0, "A", "text"), Printed("text", 4));
    EXPECT_EQ(print(1, "A", "text"), Printed("", 0));
    setLogFilter(1);
    EXPECT_EQ(print(1, "A", "text"), Printed("text", 4));
    EXPECT_EQ(print(2, "A", "text"), Printed("", 0));
    LogFilter::instance().setEnabled(false);
    EXPECT_EQ(print(1, "A", "text"), Printed("", 0));
}

TEST_F(LogTest, PrintsOnceForOneOfAtMostFiftyListedFiles) {
    EXPECT_TRUE(setLogFilter(3, std::vector<std::string>(50, "Listed")));
    EXPECT_FALSE(setLogFilter(0, std::vector<std::string>(51, "Other")));
    EXPECT_EQ(print(3, "Listed", "yes"), Printed("yes", 3));
    EXPECT_EQ(print(3, "listed", "no"), Printed("", 2));
    EXPECT_EQ(print(3, nullptr, "no"), Printed("", 2));
}

TEST_F(LogTest, CutsLongTextsMakesOneOfTwoPercentSignsAndTellsTheFullLength) {
    const std::pair<std::string, std::string> arrCases[] = {
        {std::string(5000, 'x'), std::string(2047, 'x')},
        {"50%% done", "50% done"},
        {"%s%n%d", "%s%n%d"},
        {"%%%", "%%"},
        {"%%%%", "%%"},
        {"end %", "end %"},
    };
    for (const auto& [strText, strPrinted] : arrCases) {
        EXPECT_EQ(print(0, "A", strText), Printed(strPrinted, strText.size()));
    }
}

TEST_F(LogTest, TraceGoesToItsSinkWithThePlaceAndPrintsNothing) {
    g_strTraced.clear();
    EXPECT_EQ(captureOutput([] {
                  traceMessage("lost", "File", 1);
                  setTraceSink([](const std::string& strText) { g_strTraced += strText; });
                  traceMessage("text", "File", -12);
              }),
              "");
    EXPECT_EQ(g_strTraced, "text in:File line:-12\n");
}

TEST_F(LogTest, LinesOfManyThreadsStayWhole) {
    m_logger.init(m_strPath, 1u << 20, 1);
    std::vector<std::jthread> vecThreads;
    for (int nThread = 0; nThread < 4; ++nThread) {
        vecThreads.emplace_back([&] {
            for (int nLine = 0; nLine < 50; ++nLine) {
                m_logger.log("Tag", "100%s");
            }
        });
    }
    vecThreads.clear();
    std::string strExpected;
    for (int nLine = 0; nLine < 200; ++nLine) {
        strExpected += line("100%s");
    }
    EXPECT_EQ(readFile(m_strPath), strExpected);
}

TEST_F(LogTest, RotatesAtTheLimitThroughAsManyBackupsAsThereMayBe) {
    using Files = std::vector<std::string>;  // the log and its backups
    const std::size_t nLine = line("1").size();
    const std::tuple<std::size_t, std::uint32_t, Files> arrCases[] = {
        {nLine, 2, {line("4"), line("3"), line("2"), ""}},
        {nLine, 0, {line("4"), line("3"), "", ""}},
        {nLine + 1, 2, {line("3") + line("4"), line("1") + line("2"), "", ""}},
    };
    for (const auto& [nSizeLimit, nFileCount, vecExpected] : arrCases) {
        const TempDir dir;
        KXLogger logger;
        logger.init(dir.file("log"), static_cast<std::uint32_t>(nSizeLimit), nFileCount);
        for (const char* pMessage : {"1", "2", "3", "4"}) {
            logger.log("Tag", pMessage);
        }
        Files vecFiles;
        for (const char* pName : {"log", "log.1", "log.2", "log.3"}) {
            vecFiles.push_back(readFile(dir.file(pName)));
        }
        EXPECT_EQ(vecFiles, vecExpected);
    }
}

TEST_F(LogTest, MissingDirectoryLosesTheLineQuietly) {
    m_logger.init(m_dir.file("missing/log"), 10240, 1);
    EXPECT_EQ(captureOutput([&] { m_logger.log("Tag", "lost"); }), "");
    EXPECT_FALSE(std::filesystem::exists(m_dir.file("missing")));
}

TEST_F(LogTest, WithoutInitTheLineGoesToTheConsole) {
    setLogFilter(3, {"KXLogger"});
    EXPECT_EQ(captureOutput([&] { m_logger.log("Tag", "text"); }),
              "Logger is not inition," + line("text"));
    EXPECT_EQ(timeString(TimeFormat::MonthFirst), "02/09/2024 05:34:05");
}
