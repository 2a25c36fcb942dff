// The file log: line form, rotation, silence on failure, and the time texts in it.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "Product/Technic/KXLogger.h"
#include "Product/Technic/LogFilter.h"
#include "support/CapturedOutput.h"
#include "support/ManualClock.h"
#include "support/TempDir.h"

namespace {

// 2024-02-09 03:04:05 UTC, in a time zone two hours and a half ahead of it.
constexpr std::time_t Moment = 1707447845;
constexpr const char* MomentText = "2024-02-09 05:34:05";

class KXLoggerTest : public testing::Test {
protected:
    KXLoggerTest() { setenv("TZ", "TEST-2:30", 1); }
    ~KXLoggerTest() override { unsetenv("TZ"); }

    static std::string line(const std::string& strMessage) {
        return std::string(MomentText) + ",[Tag] " + strMessage + "\n";
    }
    static void write(const std::string& strPath, std::size_t nBytes, char cFill) {
        std::ofstream(strPath, std::ios::binary) << std::string(nBytes, cFill);
    }

    ManualClock m_objClock{0, Moment};
    ScopedClock m_objScope{m_objClock};
    TempDir m_objDir;
    std::string m_strPath = m_objDir.file("log");
};

}  // namespace

TEST_F(KXLoggerTest, TimeStringHasTwoForms) {
    EXPECT_EQ(timeString(1), "02/09/2024 05:34:05");
    EXPECT_EQ(timeString(2), MomentText);
    EXPECT_EQ(timeString(0), MomentText);
    EXPECT_EQ(timeString(-7), MomentText);
}

TEST_F(KXLoggerTest, AppendsDatedLines) {
    KXLogger objLogger;
    objLogger.init(m_strPath, 10240, 1);
    objLogger.log("Tag", "first");
    objLogger.log("Tag", "100%s");
    EXPECT_EQ(readFile(m_strPath), line("first") + line("100%s"));
}

TEST_F(KXLoggerTest, RotatesAtTheLimitAndNotBelow) {
    write(m_strPath, 10239, 'a');
    logToFile(m_strPath, "Tag", "over", 10240, 2);
    EXPECT_EQ(readFile(m_strPath), std::string(10239, 'a') + line("over"));
    EXPECT_FALSE(std::filesystem::exists(m_strPath + ".1"));

    write(m_strPath, 10240, 'b');
    logToFile(m_strPath, "Tag", "new", 10240, 2);
    EXPECT_EQ(readFile(m_strPath), line("new"));
    EXPECT_EQ(readFile(m_strPath + ".1"), std::string(10240, 'b'));

    write(m_strPath, 10241, 'c');
    logToFile(m_strPath, "Tag", "newer", 10240, 2);
    EXPECT_EQ(readFile(m_strPath + ".1"), std::string(10241, 'c'));
    EXPECT_FALSE(std::filesystem::exists(m_strPath + ".2"));
}

TEST_F(KXLoggerTest, BackupsOfOneLoggerGoRoundByTheFileCount) {
    KXLogger objLogger;
    objLogger.init(m_strPath, 1, 2);  // every line is a file of its own
    for (const char* pMessage : {"1", "2", "3", "4"}) {
        objLogger.log("Tag", pMessage);
    }
    EXPECT_EQ(readFile(m_strPath), line("4"));
    EXPECT_EQ(readFile(m_strPath + ".1"), line("3"));
    EXPECT_EQ(readFile(m_strPath + ".2"), line("2"));
    EXPECT_FALSE(std::filesystem::exists(m_strPath + ".3"));
}

TEST_F(KXLoggerTest, FileCountOfZeroKeepsOneBackup) {
    KXLogger objLogger;
    objLogger.init(m_strPath, 1, 0);
    for (const char* pMessage : {"1", "2", "3"}) {
        objLogger.log("Tag", pMessage);
    }
    EXPECT_EQ(readFile(m_strPath + ".1"), line("2"));
    EXPECT_FALSE(std::filesystem::exists(m_strPath + ".2"));
}

TEST_F(KXLoggerTest, MissingDirectoryLosesTheLineQuietly) {
    const std::string strPath = m_objDir.file("missing/log");
    EXPECT_EQ(captureOutput([&] { logToFile(strPath, "Tag", "lost", 10240, 1); }), "");
    EXPECT_FALSE(std::filesystem::exists(m_objDir.file("missing")));
}

TEST_F(KXLoggerTest, WithoutInitTheLineGoesToTheConsoleLog) {
    KXLogger objLogger;
    EXPECT_EQ(captureOutput([&] { objLogger.log("Tag", "text"); }), "");
    setLogFilter(3, {"KXLogger"});
    EXPECT_EQ(captureOutput([&] { objLogger.log("Tag", "text"); }),
              "Logger is not inition," + line("text"));
    setLogFilter(0);
}

TEST_F(KXLoggerTest, LinesOfManyThreadsStayWhole) {
    KXLogger objLogger;
    objLogger.init(m_strPath, 1u << 20, 1);
    std::vector<std::thread> vecThreads;
    for (int nThread = 0; nThread < 4; ++nThread) {
        vecThreads.emplace_back([&] {
            for (int nLine = 0; nLine < 50; ++nLine) {
                objLogger.log("Tag", "same");
            }
        });
    }
    for (std::thread& objThread : vecThreads) {
        objThread.join();
    }
    std::string strExpected;
    for (int nLine = 0; nLine < 200; ++nLine) {
        strExpected += line("same");
    }
    EXPECT_EQ(readFile(m_strPath), strExpected);
}

TEST_F(KXLoggerTest, ModeWordsOpenAsToldOrAreRefused) {
    const struct {
        unsigned m_nMode;
        bool m_bOpens;            // a file that exists and holds "old"
        const char* m_pContents;  // after writing "new"
    } arrCases[] = {
        {0x01, true, "old"},  {0x02, true, "oldnew"}, {0x22, true, "oldnew"}, {0x42, true, "new"},
        {0x04, true, "new"},  {0x24, true, "oldnew"}, {0x64, true, "new"},    {0x03, false, "old"},
        {0x05, false, "old"}, {0x06, false, "old"},   {0x07, false, "old"},   {0x20, false, "old"},
    };
    for (const auto& objCase : arrCases) {
        std::ofstream(m_strPath) << "old";
        LogFile objFile;
        EXPECT_EQ(objFile.open(m_strPath, objCase.m_nMode), objCase.m_bOpens) << objCase.m_nMode;
        EXPECT_EQ(objFile.getLength() >= 0, objCase.m_bOpens) << objCase.m_nMode;
        objFile.close();
        if (objFile.open(m_strPath, objCase.m_nMode)) {
            objFile.write("new");
        }
        objFile.close();
        EXPECT_EQ(readFile(m_strPath), objCase.m_pContents) << objCase.m_nMode;
    }
    LogFile objAbsent;
    EXPECT_FALSE(objAbsent.open(m_objDir.file("absent"), LogFile::Read));
    EXPECT_FALSE(objAbsent.open(m_objDir.file("absent"), LogFile::Update));
    EXPECT_EQ(objAbsent.write("text"), 0u);
}
