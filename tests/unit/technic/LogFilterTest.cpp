// The console log: what passes, how it is cut, and what happens to percent signs.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "Product/Technic/LogFilter.h"
#include "support/CapturedOutput.h"

using namespace fleetkit;

namespace {

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
class LogFilterTest : public testing::Test {
protected:
    ~LogFilterTest() override {
        setLogFilter(0);
        LogFilter::instance().setEnabled(true);
        setTraceSink(nullptr);
    }
};

}  // namespace

TEST_F(LogFilterTest, PassesLevelsUpToTheThreshold) {
    EXPECT_EQ(print(0, "A", "text"), Printed("text", 4));
    EXPECT_EQ(print(1, "A", "text"), Printed("", 0));
    setLogFilter(1);
    EXPECT_EQ(print(1, "A", "text"), Printed("text", 4));
    EXPECT_EQ(print(2, "A", "text"), Printed("", 0));
    LogFilter::instance().setEnabled(false);
    EXPECT_EQ(print(1, "A", "text"), Printed("", 0));
}

TEST_F(LogFilterTest, PrintsOnceForOneOfAtMostFiftyListedFiles) {
    EXPECT_TRUE(setLogFilter(3, std::vector<std::string>(50, "Listed")));
    EXPECT_FALSE(setLogFilter(0, std::vector<std::string>(51, "Other")));
    EXPECT_EQ(print(3, "Listed", "yes"), Printed("yes", 3));
    EXPECT_EQ(print(3, "listed", "no"), Printed("", 2));
    EXPECT_EQ(print(3, nullptr, "no"), Printed("", 2));
}

TEST_F(LogFilterTest, CutsLongTextAndReturnsItsFullLength) {
    EXPECT_EQ(print(0, "A", std::string(5000, 'x')), Printed(std::string(2047, 'x'), 5000));
}

TEST_F(LogFilterTest, DoublePercentInTheTextBecomesOneAndOthersStand) {
    EXPECT_EQ(print(0, "A", "50%% done").first, "50% done");
    EXPECT_EQ(print(0, "A", "%s%n%d").first, "%s%n%d");
    EXPECT_EQ(print(0, "A", "%%%").first, "%%");
    EXPECT_EQ(print(0, "A", "%%%%").first, "%%");
    EXPECT_EQ(print(0, "A", "end %").first, "end %");
}

TEST_F(LogFilterTest, TraceGoesToItsSinkWithThePlaceAndPrintsNothing) {
    g_strTraced.clear();
    EXPECT_EQ(captureOutput([] {
                  traceMessage("lost", "File", 1);
                  setTraceSink([](const std::string& strText) { g_strTraced += strText; });
                  traceMessage("text", "File", -12);
              }),
              "");
    EXPECT_EQ(g_strTraced, "text in:File line:-12\n");
}
