// The console log: what passes, how it is cut, and what happens to percent signs.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Product/Technic/LogFilter.h"
#include "support/CapturedOutput.h"

namespace {

// Puts the process-wide filter back as it was at the start.
class LogFilterTest : public testing::Test {
protected:
    ~LogFilterTest() override {
        setLogFilter(0);
        LogFilter::instance().setEnabled(true);
        setTraceSink(nullptr);
    }
};

std::string g_strTraced;

}  // namespace

TEST_F(LogFilterTest, PrintsNothingAtTheInitialThreshold) {
    EXPECT_EQ(captureOutput([] {
                  EXPECT_EQ(logMessage(1, "A", "text"), 0);
                  EXPECT_EQ(logMessage(3, "A", "text"), 0);
              }),
              "");
    EXPECT_EQ(captureOutput([] { EXPECT_EQ(logMessage(0, "A", "%s-%d", "zero", 7), 6); }),
              "zero-7");
}

TEST_F(LogFilterTest, PassesLevelsUpToTheThreshold) {
    setLogFilter(1);
    EXPECT_EQ(captureOutput([] {
                  logMessage(1, "A", "one\n");
                  logMessage(2, "A", "two\n");
              }),
              "one\n");
    LogFilter::instance().setEnabled(false);
    EXPECT_EQ(captureOutput([] { EXPECT_EQ(logMessage(1, "A", "one"), 0); }), "");
}

TEST_F(LogFilterTest, PrintsOnceForAListedFileOnly) {
    ASSERT_TRUE(setLogFilter(3, {"First", "Second", "Second"}));
    EXPECT_EQ(captureOutput([] {
                  EXPECT_EQ(logMessage(3, "Second", "yes"), 3);
                  EXPECT_EQ(logMessage(3, "second", "no"), 2);
                  EXPECT_EQ(logMessage(3, nullptr, "no"), 2);
              }),
              "yes");
}

TEST_F(LogFilterTest, RefusesMoreThanFiftyFilesAndKeepsWhatWasSet) {
    ASSERT_TRUE(setLogFilter(3, std::vector<std::string>(50, "A")));
    EXPECT_FALSE(setLogFilter(0, std::vector<std::string>(51, "B")));
    EXPECT_EQ(captureOutput([] { logMessage(3, "A", "still"); }), "still");
}

TEST_F(LogFilterTest, CutsLongTextAndReturnsItsFullLength) {
    setLogFilter(3);
    const std::string strLong(5000, 'x');
    EXPECT_EQ(captureOutput([&] { EXPECT_EQ(logMessage(3, "A", "%s", strLong.c_str()), 5000); }),
              std::string(2047, 'x'));
    EXPECT_EQ(captureOutput([] { EXPECT_EQ(logMessage(3, "A", "%s", ""), 0); }), "");
}

TEST_F(LogFilterTest, DoublePercentInTheTextBecomesOneAndOthersStand) {
    setLogFilter(3);
    const struct {
        const char* m_pText;
        const char* m_pPrinted;
    } arrCases[] = {
        {"50%% done", "50% done"}, {"%s%n%d", "%s%n%d"}, {"%%%", "%%"}, {"%%%%", "%%"},
        {"end %", "end %"},
    };
    for (const auto& objCase : arrCases) {
        EXPECT_EQ(captureOutput([&] { logMessage(3, "A", "%s", objCase.m_pText); }),
                  objCase.m_pPrinted);
    }
}

TEST_F(LogFilterTest, TraceGoesToItsSinkWithThePlaceAndPrintsNothing) {
    g_strTraced.clear();
    EXPECT_EQ(captureOutput([] { traceMessage("lost", "File", 1); }), "");
    EXPECT_EQ(setTraceSink([](const std::string& strText) { g_strTraced += strText; }), nullptr);
    EXPECT_EQ(captureOutput([] { traceMessage("text", "File", -12); }), "");
    EXPECT_EQ(g_strTraced, "text in:File line:-12\n");
}
