// Look-ups in the tables of the vocabulary: what is found, and what is told of a miss.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "Product/Technic/LogFilter.h"
#include "domain/DomainFactory.h"
#include "domain/RecordDescriptor.h"
#include "support/CapturedOutput.h"

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
        int nMisses;
        bool bList;
        std::uint32_t nId;  // of the record, or of the list's elements
        std::vector<std::string> vecNames;
    };
    for (const Case& one :
         {Case{0, true, 206, {"NTPParamList"}}, Case{0, true, 410, {"HostNetworkList"}},
          Case{0, true, 1106, {"AlarmOutIdList"}}, Case{0, true, 1921, {"AppTokenList"}},
          Case{0, true, 0, {"BaseDomainList"}}, Case{0, false, 206, {"NTPParam"}},
          Case{0, false, 143, {"ImageFormat"}}, Case{0, false, 409, {"DeviceSummaryInfo"}},
          Case{0, false, 414, {"ScheduleTime"}}, Case{1, false, 1079, {"HoldTypeList"}},
          Case{1, false, 1029, {"StringList"}},
          Case{1, false, None, {"ntpparam", "", "NTPParam ", "EtResult", "%s%n"}},
          Case{2,
               false,
               None,
               {"TripWireParamList", "EtHoldTypeList", "DDNSParamList", "VideoRectList",
                "UpdateSoftwareList", "ListOfNothing"}}}) {
        for (const std::string& strName : one.vecNames) {
            SCOPED_TRACE(strName);
            std::string strLines;
            for (int i = 0; i < one.nMisses; ++i) {
                strLines += "DomainFactory not have Domain(" + strName + ")!! \n";
            }
            std::unique_ptr<BaseDomain> pRecord;
            EXPECT_EQ(captureOutput([&] { pRecord = createDomain(strName); }), strLines);
            EXPECT_EQ(pRecord != nullptr ? effectiveDomainId(*pRecord) : None, one.nId);
            EXPECT_EQ(pRecord != nullptr && pRecord->getDomainId() == ContainerDomainId, one.bList);
        }
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

}  // namespace
