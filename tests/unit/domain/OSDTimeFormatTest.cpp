// The time formats stand in a fixed order, and no number leads outside of it.
#include <gtest/gtest.h>

#include "domain/OSDTimeFormat.h"

TEST(OSDTimeFormat, NumbersTheTextsInTheirOrder) {
    EXPECT_STREQ(osdTimeFormatText(0), "ErrorFormat");
    EXPECT_STREQ(osdTimeFormatText(1), "YYYY-MM-DD hh:mm:ss");
    EXPECT_STREQ(osdTimeFormatText(2), "hh:mm:ss YYYY-MM-DD");
    EXPECT_STREQ(osdTimeFormatText(3), "MM/DD/YYYY hh:mm:ss");
    EXPECT_STREQ(osdTimeFormatText(4), "hh:mm:ss MM/DD/YYYY");
    EXPECT_STREQ(osdTimeFormatText(5), "weekday MM/DD/YYYY hh:mm:ss");
    EXPECT_STREQ(osdTimeFormatText(-1), "ErrorFormat");
    EXPECT_STREQ(osdTimeFormatText(6), "ErrorFormat");
}
