// The tables of the vocabulary: by name, by list name, by id.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "Product/Technic/LogFilter.h"
#include "domain/DomainFactory.h"
#include "domain/RecordDescriptor.h"
#include "support/CapturedOutput.h"
#include "support/RecordFiller.h"

namespace {

std::vector<const RecordDescriptor*> records() {
    std::vector<const RecordDescriptor*> vecRecords = recordDescriptors();
    std::erase_if(vecRecords, [](const RecordDescriptor* p) { return p->isElement; });
    return vecRecords;
}

std::vector<const RecordDescriptor*> rows() {
    std::vector<const RecordDescriptor*> vecRows = records();
    std::erase_if(vecRows, [](const RecordDescriptor* p) { return p->szName == nullptr; });
    return vecRows;
}

// What a name leads to, for the names that two types share.
const std::map<std::string, std::uint32_t> Doubled = {
    {"ImageFormat", 143},  {"RecordState", 282},  {"DeviceSummaryInfo", 409},
    {"HostNetwork", 410},  {"RecordPolicy", 411}, {"RecordTimeSegment", 413},
    {"ScheduleTime", 414}, {"AlarmOutId", 1106}};

std::uint32_t winner(const RecordDescriptor& row) {
    const auto found = Doubled.find(row.szName);
    return found == Doubled.end() ? row.nDomainId : found->second;
}

std::uint32_t elementId(const BaseDomain* pRecord) {
    return pRecord != nullptr && pRecord->getDomainId() == ContainerDomainId
               ? effectiveDomainId(*pRecord)
               : 0xFFFFFFFF;
}

TEST(DomainFactory, EveryRowIsFoundByIdAndByName) {
    std::set<std::string> setNames;
    int nRows = 0;
    for (const RecordDescriptor* pRow : rows()) {
        SCOPED_TRACE(pRow->szClass);
        std::string strName;
        EXPECT_TRUE(getDomainName(pRow->nDomainId, strName));
        EXPECT_EQ(strName, pRow->szName);
        setNames.insert(strName);
        const auto pRecord = createSingleDomain(strName);
        ASSERT_NE(pRecord, nullptr);
        EXPECT_EQ(pRecord->getDomainId(), winner(*pRow));
        EXPECT_TRUE(getDomainNameOfRecord(*pRecord, strName));
        EXPECT_EQ(strName, pRow->szName);
        const auto pList = pRow->access.makeContainer();
        EXPECT_EQ(elementId(pList.get()), pRow->nDomainId);
        EXPECT_TRUE(getDomainNameOfRecord(*pList, strName));
        EXPECT_EQ(strName, pRow->szName + std::string("List"));
        // The name is that of the class, but for the prefix and the odd ones.
        const std::string strClass = pRow->szClass;
        const bool bPlain = strName == strClass + "List" || "Et" + strName == strClass + "List";
        const bool bOdd = strClass == "BlindAreaInfo" || strClass == "ScanAbilityParam" ||
                          strClass == "AbnormalSpeedAbility";
        EXPECT_NE(bPlain, bOdd);
        ++nRows;
    }
    EXPECT_EQ(nRows, 649);
    EXPECT_EQ(setNames.size(), 641U);
}

TEST(DomainFactory, ListNamesAreTheNamesWithListButForTheOddOnes) {
    const std::map<std::string, std::string> Odd = {{"PTZNorth", "PTZNorthV2List"},
                                                    {"PTZSpeedParam", "PTZSpeedParamV2List"},
                                                    {"PTZTraceCmdItem", "PTZTraceCmdItemV1List"},
                                                    {"ScanAbilityParamV2", "ScanAbilityParamList"},
                                                    {"AppTokenList", "AppTokenList"}};
    std::set<std::string> setNames;
    int nLists = 0;
    int nWithout = 0;
    for (const RecordDescriptor* pRow : rows()) {
        SCOPED_TRACE(pRow->szClass);
        const auto odd = Odd.find(pRow->szName);
        const std::string strList =
            odd == Odd.end() ? pRow->szName + std::string("List") : odd->second;
        const auto pList = createListDomain(strList);
        if (pRow->szList == nullptr) {
            EXPECT_EQ(pList, nullptr);
            ++nWithout;
            continue;
        }
        EXPECT_EQ(elementId(pList.get()), winner(*pRow));
        setNames.insert(strList);
        ++nLists;
    }
    EXPECT_EQ(nLists, 575);
    EXPECT_EQ(setNames.size(), 567U);
    EXPECT_EQ(nWithout, 74);
    for (const char* szWithout : {"TripWireParam", "DDNSParam", "CLBRParam", "EtPTZUserConfig",
                                  "UpdateSoftware", "AbnormalSpeedAblity", "VideoRect"}) {
        EXPECT_EQ(createListDomain(szWithout + std::string("List")), nullptr) << szWithout;
    }
}

TEST(DomainFactory, WhatOccursOnlyNestedHasNoName) {
    int nNested = 0;
    for (const RecordDescriptor* pRecord : records()) {
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
    EXPECT_EQ(records().size(), 649U + 66U + 1U);
    EXPECT_EQ(findRecordDescriptor("IntelligentEvent")->nDomainId, 0U);
    EXPECT_STREQ(findRecordDescriptor(0U)->szClass, "BaseDomain");
    EXPECT_EQ(findRecordDescriptor("Nobody"), nullptr);
}

TEST(DomainFactory, FirstRowsOfTheVocabulary) {
    const std::pair<std::uint32_t, const char*> Rows[] = {{0, "BaseDomain"},
                                                          {52, "BlindAreaInfoV2"},
                                                          {302, "ScanAbilityParamV2"},
                                                          {801, "Result"},
                                                          {1107, "ImageFormat"},
                                                          {1106, "AlarmOutId"},
                                                          {5079, "AlarmOutId"},
                                                          {2001, "AbnormalSpeedAblity"},
                                                          {6407, "EtThermalOperation"},
                                                          {4600, "EtPTZLastStateConfig"},
                                                          {4601, "EtPTZUserConfig"},
                                                          {1929, "PackFormat"}};
    for (const auto& [nId, szName] : Rows) {
        std::string strName;
        EXPECT_TRUE(getDomainName(nId, strName));
        EXPECT_EQ(strName, szName);
    }
}

TEST(DomainFactory, ANameWithListIsAListFirst) {
    EXPECT_EQ(elementId(createDomain("NTPParamList").get()), 206U);
    EXPECT_EQ(createDomain("NTPParam")->getDomainId(), 206U);
    EXPECT_EQ(elementId(createDomain("HostNetworkList").get()), 410U);
    EXPECT_EQ(elementId(createDomain("AlarmOutIdList").get()), 1106U);
    EXPECT_EQ(elementId(createDomain("AppTokenList").get()), 1921U);
    EXPECT_EQ(elementId(createDomain("BaseDomainList").get()), 0U);
    EXPECT_EQ(createDomain("HoldTypeList")->getDomainId(), 1079U);
    EXPECT_EQ(createDomain("StringList")->getDomainId(), 1029U);
}

class DomainFactoryLog : public testing::Test {
protected:
    void SetUp() override { setLogFilter(LogLevel::Trace); }
    void TearDown() override { setLogFilter(0); }
};

TEST_F(DomainFactoryLog, EachMissIsOneLine) {
    const auto lines = [](const std::string& strName) {
        return captureOutput([&] { createDomain(strName); });
    };
    const auto missed = [](const std::string& strName) {
        return "DomainFactory not have Domain(" + strName + ")!! \n";
    };
    EXPECT_EQ(lines("NTPParam"), "");
    EXPECT_EQ(lines("NTPParamList"), "");
    EXPECT_EQ(lines("HoldTypeList"), missed("HoldTypeList"));
    for (const char* szTwice : {"TripWireParamList", "EtHoldTypeList", "ListOfNothing"}) {
        EXPECT_EQ(lines(szTwice), missed(szTwice) + missed(szTwice));
        EXPECT_EQ(createDomain(szTwice), nullptr);
    }
    for (const char* szOnce : {"ntpparam", "", "NTPParam ", "EtResult", "%s%n"}) {
        EXPECT_EQ(lines(szOnce), missed(szOnce));
        EXPECT_EQ(createDomain(szOnce), nullptr);
    }
}

TEST_F(DomainFactoryLog, AnUnknownIdIsOneLine) {
    for (const std::uint32_t nId : {99999U, 7U, 1801U, 4294967295U}) {
        std::string strName = "kept";
        const std::string strPrinted =
            captureOutput([&] { EXPECT_FALSE(getDomainName(nId, strName)); });
        EXPECT_EQ(strPrinted.find("[DomainFactory getDomainName "), 0U) << strPrinted;
        EXPECT_NE(strPrinted.find("] DomainFactory not have Domain(" +
                                  std::to_string(static_cast<int>(nId)) + ") !! Failed\n"),
                  std::string::npos)
            << strPrinted;
        EXPECT_EQ(strName, "kept");
    }
}

// ---- reflection

TEST(RecordDescriptor, EqualMeansEveryField) {
    int nRecords = 0;
    for (const RecordDescriptor* pRecord : records()) {
        SCOPED_TRACE(pRecord->szClass);
        const auto pLeft = pRecord->access.make();
        const auto pRight = pRecord->access.make();
        EXPECT_EQ(pLeft->getDomainId(), pRecord->nDomainId);
        EXPECT_TRUE(equalRecords(*pRecord, pLeft.get(), pRight.get()));
        RecordFiller().fill(*pRecord, pLeft.get());
        const bool bHasFields = pRecord->nFieldCount > 0 || pRecord->base != nullptr;
        EXPECT_NE(equalRecords(*pRecord, pLeft.get(), pRight.get()), bHasFields);
        // Each field by itself.
        for (std::size_t i = 0; i < pRecord->nFieldCount; ++i) {
            RecordDescriptor one = *pRecord;
            one.base = nullptr;
            one.pFields += i;
            one.nFieldCount = 1;
            EXPECT_FALSE(equalRecords(one, pLeft.get(), pRight.get())) << one.pFields->szTag;
        }
        RecordFiller().fill(*pRecord, pRight.get());
        EXPECT_TRUE(equalRecords(*pRecord, pLeft.get(), pRight.get()));
        ++nRecords;
    }
    EXPECT_EQ(nRecords, 716);
}

}  // namespace
