// The time formats stand in a fixed order, and no number leads outside of it.
#include <gtest/gtest.h>

#include "domain/OSDTimeFormat.h"

TEST(OSDTimeFormat, NumbersTheTextsInTheirOrder) {
    int nNumber = -1;
    for (const char* szText : {"ErrorFormat", "ErrorFormat", "YYYY-MM-DD hh:mm:ss",
                               "hh:mm:ss YYYY-MM-DD", "MM/DD/YYYY hh:mm:ss", "hh:mm:ss MM/DD/YYYY",
                               "weekday MM/DD/YYYY hh:mm:ss", "ErrorFormat"}) {
        EXPECT_STREQ(osdTimeFormatText(nNumber), szText) << nNumber;
        ++nNumber;
    }
    EXPECT_EQ(nNumber, 7);
}
