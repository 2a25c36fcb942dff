// Look-ups in the tables of the vocabulary: what is found, and what is told of a miss.
#include <gmock/gmock.h>

#include <map>
#include <string>

#include "Product/Technic/LogFilter.h"
#include "domain/DomainFactory.h"
#include "domain/OSDTimeFormat.h"
#include "domain/RecordDescriptor.h"
#include "support/CapturedOutput.h"
#include "support/WireBytes.h"

using namespace fleetkit;

namespace {

constexpr std::uint32_t None = 0xFFFFFFFF;

class DomainFactoryLog : public testing::Test {
protected:
    void SetUp() override { setLogFilter(LogLevel::Trace); }
    void TearDown() override { setLogFilter(0); }
};

TEST_F(DomainFactoryLog, ANameWithListIsAListFirstAndEachMissIsOneLine) {
    struct Case {
        const char* szName;
        std::size_t nMisses;
        bool bList;
        std::uint32_t nId;  // of the record, or of the list's elements
    };
    for (const Case& one :
         {Case{"NTPParamList", 0, true, 206}, Case{"AlarmOutIdList", 0, true, 1106},
          Case{"AppTokenList", 0, true, 1921}, Case{"BaseDomainList", 0, true, 0},
          Case{"ImageFormat", 0, false, 143}, Case{"HoldTypeList", 1, false, 1079},
          Case{"StringList", 1, false, 1029}, Case{"ntpparam", 1, false, None},
          Case{"", 1, false, None}, Case{"NTPParam ", 1, false, None},
          Case{"EtResult", 1, false, None}, Case{"%s%n", 1, false, None},
          Case{"TripWireParamList", 2, false, None}, Case{"ListOfNothing", 2, false, None}}) {
        SCOPED_TRACE(one.szName);
        const std::string strMiss =
            "DomainFactory not have Domain(" + std::string(one.szName) + ")!! \n";
        std::unique_ptr<BaseDomain> pRecord;
        EXPECT_EQ(captureOutput([&] { pRecord = createDomain(one.szName); }),
                  repeated(strMiss, one.nMisses));
        EXPECT_EQ(pRecord != nullptr ? effectiveDomainId(*pRecord) : None, one.nId);
        EXPECT_EQ(pRecord != nullptr && pRecord->getDomainId() == ContainerDomainId, one.bList);
    }
}

TEST_F(DomainFactoryLog, AnUnknownIdIsOneLineAndAnUnknownClassNone) {
    for (const auto& [nId, strShown] : std::map<std::uint32_t, std::string>{
             {7, "7"}, {1801, "1801"}, {99999, "99999"}, {4294967295, "-1"}}) {
        std::string strName = "kept";
        EXPECT_THAT(captureOutput([&, nId = nId] { EXPECT_FALSE(getDomainName(nId, strName)); }),
                    testing::MatchesRegex("\\[DomainFactory getDomainName [0-9]+\\] DomainFactory "
                                          "not have Domain\\(" +
                                          strShown + "\\) !! Failed\n"));
        EXPECT_EQ(strName, "kept");
    }
    EXPECT_EQ(findRecordDescriptor("Nobody"), nullptr);
}

TEST(OSDTimeFormat, NumbersTheTextsInTheirOrderAndNoNumberLeadsOutside) {
    int nNumber = -1;
    for (const char* szText : {"ErrorFormat", "ErrorFormat", "YYYY-MM-DD hh:mm:ss",
                               "hh:mm:ss YYYY-MM-DD", "MM/DD/YYYY hh:mm:ss", "hh:mm:ss MM/DD/YYYY",
                               "weekday MM/DD/YYYY hh:mm:ss", "ErrorFormat"}) {
        EXPECT_STREQ(osdTimeFormatText(nNumber), szText) << nNumber;
        ++nNumber;
    }
}

}  // namespace
