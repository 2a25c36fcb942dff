// The tables of the vocabulary: by name, by list name, by id.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "Product/Technic/LogFilter.h"
#include "domain/DomainFactory.h"
#include "support/CapturedOutput.h"
#include "support/RecordFiller.h"
#include "support/RecordLists.h"

using namespace fleetkit;

namespace {

std::string listName(const std::string& strName) {
    static const std::map<std::string, std::string> Odd = {
        {"PTZNorth", "PTZNorthV2List"},
        {"PTZSpeedParam", "PTZSpeedParamV2List"},
        {"PTZTraceCmdItem", "PTZTraceCmdItemV1List"},
        {"ScanAbilityParamV2", "ScanAbilityParamList"},
        {"AppTokenList", "AppTokenList"}};
    const auto found = Odd.find(strName);
    return found == Odd.end() ? strName + "List" : found->second;
}

constexpr std::uint32_t None = 0xFFFFFFFF;

// The id of a list's elements, None for what is no list.
std::uint32_t elementId(const std::unique_ptr<BaseDomain>& pRecord) {
    return pRecord != nullptr && pRecord->getDomainId() == ContainerDomainId
               ? effectiveDomainId(*pRecord)
               : None;
}

TEST(DomainFactory, EveryRowIsFoundByIdByNameAndByListName) {
    std::map<std::string, std::uint32_t> mapFirst;  // of the types that share a name
    std::set<std::string> setLists;
    int nRows = 0;
    int nLists = 0;
    int nOddNames = 0;
    for (const RecordDescriptor* pRow : namedRecords()) {
        SCOPED_TRACE(pRow->szClass);
        const std::string strRow = pRow->szName;
        std::string strName;
        EXPECT_TRUE(getDomainName(pRow->nDomainId, strName));
        EXPECT_EQ(strName, strRow);
        EXPECT_TRUE(getDomainNameOfRecord(*pRow->access.make(), strName));
        EXPECT_EQ(strName, strRow);
        EXPECT_TRUE(getDomainNameOfRecord(*pRow->access.makeContainer(), strName));
        EXPECT_EQ(strName, strRow + "List");
        nOddNames += strRow == pRow->szClass || "Et" + strRow == pRow->szClass ? 0 : 1;

        const std::uint32_t nFirst = mapFirst.emplace(strRow, pRow->nDomainId).first->second;
        const auto pRecord = createSingleDomain(strRow);
        ASSERT_NE(pRecord, nullptr);
        EXPECT_EQ(pRecord->getDomainId(), nFirst);
        const std::uint32_t nListed = elementId(createListDomain(listName(strRow)));
        EXPECT_EQ(nListed, pRow->szList != nullptr ? nFirst : None);
        if (nListed != None) {
            setLists.insert(listName(strRow));
            ++nLists;
        }
        ++nRows;
    }
    EXPECT_EQ(nRows, 649);
    EXPECT_EQ(mapFirst.size(), 641U);
    EXPECT_EQ(nOddNames, 3);
    EXPECT_EQ(nLists, 575);
    EXPECT_EQ(setLists.size(), 567U);
}

TEST(DomainFactory, WhatOccursOnlyNestedHasNoName) {
    int nNested = 0;
    for (const RecordDescriptor* pRecord : allRecords()) {
        std::string strName = "kept";
        if (pRecord->szName == nullptr && pRecord->nDomainId != 0) {
            EXPECT_FALSE(getDomainName(pRecord->nDomainId, strName)) << pRecord->szClass;
            EXPECT_EQ(createSingleDomain(pRecord->szClass), nullptr);
            EXPECT_EQ(strName, "kept");
            EXPECT_EQ(findRecordDescriptor(pRecord->nDomainId), pRecord);
            ++nNested;
        }
    }
    EXPECT_EQ(nNested, 66);
    EXPECT_EQ(allRecords().size(), 649U + 66U + 1U);
    EXPECT_EQ(findRecordDescriptor("IntelligentEvent")->nDomainId, 0U);
    EXPECT_STREQ(findRecordDescriptor(0U)->szClass, "BaseDomain");
    EXPECT_EQ(findRecordDescriptor("Nobody"), nullptr);
}

TEST(DomainFactory, FirstRowsOfTheVocabulary) {
    struct Row {
        std::uint32_t nId;
        const char* szName;
    };
    for (const Row& row :
         {Row{0, "BaseDomain"}, Row{52, "BlindAreaInfoV2"}, Row{302, "ScanAbilityParamV2"},
          Row{801, "Result"}, Row{1107, "ImageFormat"}, Row{1106, "AlarmOutId"},
          Row{5079, "AlarmOutId"}, Row{2001, "AbnormalSpeedAblity"}, Row{1929, "PackFormat"},
          Row{6407, "EtThermalOperation"}, Row{4600, "EtPTZLastStateConfig"},
          Row{4601, "EtPTZUserConfig"}}) {
        EXPECT_STREQ(findRecordDescriptor(row.nId)->szName, row.szName);
    }
}

class DomainFactoryLog : public testing::Test {
protected:
    void SetUp() override { setLogFilter(LogLevel::Trace); }
    void TearDown() override { setLogFilter(0); }
};

TEST_F(DomainFactoryLog, ANameWithListIsAListFirstAndEachMissIsOneLine) {
    struct Case {
        const char* szName;
        std::uint32_t nId, nElementId;
        int nMisses;
    };
    for (const Case& one : {Case{"NTPParamList", ContainerDomainId, 206, 0},
                            Case{"HostNetworkList", ContainerDomainId, 410, 0},
                            Case{"AlarmOutIdList", ContainerDomainId, 1106, 0},
                            Case{"AppTokenList", ContainerDomainId, 1921, 0},
                            Case{"BaseDomainList", ContainerDomainId, 0, 0},
                            Case{"NTPParam", 206, None, 0},
                            Case{"HoldTypeList", 1079, None, 1},
                            Case{"StringList", 1029, None, 1},
                            Case{"TripWireParamList", None, None, 2},
                            Case{"EtHoldTypeList", None, None, 2},
                            Case{"DDNSParamList", None, None, 2},
                            Case{"VideoRectList", None, None, 2},
                            Case{"UpdateSoftwareList", None, None, 2},
                            Case{"ImageFormat", 143, None, 0},
                            Case{"DeviceSummaryInfo", 409, None, 0},
                            Case{"ScheduleTime", 414, None, 0},
                            Case{"ListOfNothing", None, None, 2},
                            Case{"ntpparam", None, None, 1},
                            Case{"", None, None, 1},
                            Case{"NTPParam ", None, None, 1},
                            Case{"EtResult", None, None, 1},
                            Case{"%s%n", None, None, 1}}) {
        SCOPED_TRACE(one.szName);
        std::string strLines;
        for (int i = 0; i < one.nMisses; ++i) {
            strLines += std::string("DomainFactory not have Domain(") + one.szName + ")!! \n";
        }
        std::unique_ptr<BaseDomain> pRecord;
        EXPECT_EQ(captureOutput([&] { pRecord = createDomain(one.szName); }), strLines);
        EXPECT_EQ(pRecord != nullptr ? pRecord->getDomainId() : None, one.nId);
        EXPECT_EQ(elementId(pRecord), one.nElementId);
    }
}

TEST_F(DomainFactoryLog, AnUnknownIdIsOneLine) {
    struct Case {
        std::uint32_t nId;
        const char* szShown;
    };
    for (const Case& one :
         {Case{99999, "99999"}, Case{7, "7"}, Case{1801, "1801"}, Case{4294967295, "-1"}}) {
        std::string strName = "kept";
        EXPECT_THAT(captureOutput([&] { EXPECT_FALSE(getDomainName(one.nId, strName)); }),
                    testing::MatchesRegex("\\[DomainFactory getDomainName [0-9]+\\] DomainFactory "
                                          "not have Domain\\(" +
                                          std::string(one.szShown) + "\\) !! Failed\n"));
        EXPECT_EQ(strName, "kept");
    }
}

TEST(RecordDescriptor, EqualMeansEveryField) {
    int nRecords = 0;
    for (const RecordDescriptor* pRecord : allRecords()) {
        SCOPED_TRACE(pRecord->szClass);
        const auto pLeft = pRecord->access.make();
        const auto pRight = pRecord->access.make();
        EXPECT_EQ(pLeft->getDomainId(), pRecord->nDomainId);
        EXPECT_TRUE(equalRecords(*pRecord, pLeft.get(), pRight.get()));
        RecordFiller().fill(*pRecord, pLeft.get());
        const bool bHasFields = pRecord->nFieldCount > 0 || pRecord->base != nullptr;
        EXPECT_NE(equalRecords(*pRecord, pLeft.get(), pRight.get()), bHasFields);
        for (const FieldDescriptor& field : *pRecord) {
            EXPECT_FALSE(equalFields(field, pLeft.get(), pRight.get())) << field.szTag;
        }
        RecordFiller().fill(*pRecord, pRight.get());
        EXPECT_TRUE(equalRecords(*pRecord, pLeft.get(), pRight.get()));
        ++nRecords;
    }
    EXPECT_EQ(nRecords, 716);
}

}  // namespace
