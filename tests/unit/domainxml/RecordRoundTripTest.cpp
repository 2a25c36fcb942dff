// Every record of the vocabulary to text and back, by its descriptor.
#include <gtest/gtest.h>
#include <tinyxml.h>

#include <map>
#include <regex>
#include <set>
#include <string>
#include <utility>

#include "domainxml/DomainXmlFactory.h"
#include "unit/domainxml/MappedRecord.h"
#include "unit/domainxml/NodeText.h"

using namespace fleetkit;

namespace {

constexpr std::uint32_t AlwaysPrints = 1009;

// What a text becomes that is read into a new record and written again.
std::string afterReading(std::string strText) {
    static const std::pair<std::regex, const char*> Losses[] = {
        // units of abilities that are written and not read
        {std::regex("(<(?:DetailGet|TriggerDirection|Bidirection|ForbiddenType|Sensitivity|"
                    "SegmentLayType|Segment|MaxHCNT|CameraShake|HighNoise|LowContrast|"
                    "PeriodMotion) [^>]*) unit='[^']*'"),
         "$1"},
        // texts that are written and not read
        {std::regex("(<EtStringList String=|<EtThermalOperation .* ThermalOperation=)'[^']*'"),
         "$1\"\""},
        // what comes as PTZID goes into the field before it
        {std::regex("NightFocusValue=\"\\d+\" PTZID=(\"\\d+\")"),
         "NightFocusValue=$1 PTZID=\"0\""}};
    for (const auto& [pattern, szReplacement] : Losses) {
        strText = std::regex_replace(strText, pattern, szReplacement);
    }
    return strText;
}

TEST(RecordRoundTrip, ADefaultRecordComesBackAsItWas) {
    int nRecords = 0;
    for (const RecordDescriptor* pDescriptor : allRecords()) {
        SCOPED_TRACE(pDescriptor->szClass);
        const MappedRecord before(*pDescriptor);
        MappedRecord after(*pDescriptor);
        const std::string strPrinted = after.read(before.text());
        EXPECT_TRUE(after.equals(before));
        EXPECT_EQ(after.text(), before.text());
        if (pDescriptor->nDomainId == 145) {  // has no library yet, and must have one
            EXPECT_NE(strPrinted.find("get LibCommonAbilityList Failed!"), std::string::npos);
        } else if (pDescriptor->nDomainId != AlwaysPrints) {
            EXPECT_EQ(strPrinted, "");
        }
        ++nRecords;
    }
    EXPECT_EQ(nRecords, 716);
}

TEST(RecordRoundTrip, AFilledRecordComesBackButForWhatIsOneSided) {
    int nRecords = 0;
    std::set<std::string> setOneSided;
    for (const RecordDescriptor* pDescriptor : allRecords()) {
        SCOPED_TRACE(pDescriptor->szClass);
        const MappedRecord before = MappedRecord::filled(*pDescriptor);
        const std::string strText = before.text();
        MappedRecord after(*pDescriptor);
        const std::string strPrinted = after.read(strText);
        EXPECT_EQ(strPrinted.empty(), pDescriptor->nDomainId != AlwaysPrints) << strPrinted;
        EXPECT_EQ(after.text(), afterReading(strText));
        ++nRecords;
        if (after.equals(before)) {
            // Nothing is left of what another record held.
            MappedRecord used = MappedRecord::filled(*pDescriptor, 5000, false);
            used.read(strText);
            EXPECT_TRUE(used.equals(before)) << used.text();
        } else {
            setOneSided.insert(pDescriptor->szClass);
        }
    }
    EXPECT_EQ(nRecords, 716);
    const std::set<std::string> setExpected = {
        // units of abilities
        "AbnormalSpeedAbility", "AdvancedAbility", "ConverseAbility", "HCNTAbility",
        "LoiterAbility", "MultiLoiterAbility", "MultiTripWireAbility", "NoParkingAbility",
        "ObjLeftAbility", "ObjMovedAbility", "PerimeterAbility", "SignalBadAbility",
        "TripWireAbility",
        // fields that are not read
        "EtStringList", "EtThermalOperation",
        // PTZPointParam and whatever it stands in
        "PTZPointParam", "BlindAreaInfo", "EtPTZLastStateConfig", "EtPTZUserConfig",
        "PTZOperationInfo", "PTZPreset", "PTZScan"};
    EXPECT_EQ(setOneSided, setExpected);
}

TEST(RecordRoundTrip, OrderAndStrangersDoNotMatter) {
    EXPECT_EQ(allRecords().size(), 716U);
    for (const RecordDescriptor* pDescriptor : allRecords()) {
        SCOPED_TRACE(pDescriptor->szClass);
        TiXmlDocument plain;
        plain.Parse(MappedRecord::filled(*pDescriptor).text().c_str());
        MappedRecord fromPlain(*pDescriptor);
        fromPlain.read(XmlCursor(plain.RootElement()));

        // The attributes the other way round, and the children behind a stranger.
        TiXmlElement shuffled("R");
        shuffled.SetAttribute("Unknown", 1);
        for (const TiXmlAttribute* pAttribute = plain.RootElement()->LastAttribute();
             pAttribute != nullptr; pAttribute = pAttribute->Previous()) {
            shuffled.SetAttribute(pAttribute->Name(), pAttribute->Value());
        }
        shuffled.InsertEndChild(TiXmlElement("Unknown"))->ToElement()->SetAttribute("Id", 7);
        for (const TiXmlNode* pChild = plain.RootElement()->FirstChild(); pChild != nullptr;
             pChild = pChild->NextSibling()) {
            shuffled.InsertEndChild(*pChild);
        }
        MappedRecord fromShuffled(*pDescriptor);
        fromShuffled.read(XmlCursor(&shuffled));
        const bool bBareValues = pDescriptor->nDomainId == 1079;  // collects every child
        EXPECT_EQ(fromShuffled.equals(fromPlain), !bBareValues) << fromShuffled.text();
    }
}

// ---- through the factory

// Tag of a list entry.
std::string entryTag(const RecordDescriptor& descriptor) {
    static const std::map<std::string, std::string> Odd = {
        {"EtPTZLastStateConfig", "PTZLastStateConfig"},
        {"EtPTZUserConfig", "PTZUserConfig"},
        {"NVRIntelligenceAlarm", "SessionParam"},
        {"NVRIntelligenceAlarmEvent", "SessionParam"},
        {"VideoLostAlarmParam", "SessionParam"},
        {"VideoLostAlarmEvent", "SessionParam"},
        {"UserParamEvent", "CloseVideo"},
        {"SNMPParam", "SNMParam"}};
    const auto found = Odd.find(descriptor.szClass);
    return found != Odd.end() ? found->second : descriptor.szClass;
}

// A list with two filled records.
std::unique_ptr<DomainContainer> filledList(const RecordDescriptor& descriptor) {
    auto pList = descriptor.access.makeContainer();
    void* pElements = descriptor.access.containerList(*pList);
    descriptor.access.listReset(pElements, 2);
    RecordFiller filler;
    filler.fill(descriptor, descriptor.access.listElement(pElements, 0));
    filler.fill(descriptor, descriptor.access.listElement(pElements, 1));
    return pList;
}

std::size_t sizeOf(const RecordDescriptor& descriptor, DomainContainer& list) {
    return descriptor.access.listSize(descriptor.access.containerList(list));
}

TEST(MapperFactory, EveryRowMapsItsRecordsAndLists) {
    int nRows = 0;
    for (const RecordDescriptor* pDescriptor : namedRecords()) {
        SCOPED_TRACE(pDescriptor->szClass);
        const auto pMapper = createDomainXml(pDescriptor->nDomainId);
        ASSERT_NE(pMapper, nullptr);
        const MappedRecord single = MappedRecord::filled(*pDescriptor);
        const Node node = newNode(pDescriptor->szClass);
        const Node list = newNode("List");
        const auto pList = filledList(*pDescriptor);
        captureOutput([&] {
            EXPECT_TRUE(pMapper->createDomainXmlNode(single.domain(), node));
            EXPECT_TRUE(pMapper->createDomainXmlNode(*pList, list));
        });
        EXPECT_EQ(textOf(node), single.text());
        std::vector<Node> vecEntries;
        list->getChildNodes(entryTag(*pDescriptor), vecEntries);
        EXPECT_EQ(vecEntries.size(), 2U) << textOf(list);

        // An empty list is an element without children.
        const Node empty = newNode("List");
        EXPECT_TRUE(pMapper->parseDomainXmlNode(empty, *pList));
        EXPECT_EQ(sizeOf(*pDescriptor, *pList), 0U);
        EXPECT_TRUE(pMapper->createDomainXmlNode(*pList, empty));
        EXPECT_EQ(textOf(empty), "<List />\n");
        ++nRows;
    }
    EXPECT_EQ(nRows, 649);
}

TEST(MapperFactory, EntriesAreReadWhateverTheirTag) {
    int nRows = 0;
    for (const RecordDescriptor* pDescriptor : namedRecords()) {
        SCOPED_TRACE(pDescriptor->szClass);
        const std::string strText = MappedRecord::filled(*pDescriptor).text();
        const std::string strWrong = std::regex_replace(
            strText, std::regex("(^|\n)(</?)" + std::string(pDescriptor->szClass)), "$1$2Wrong");
        MappedRecord expected(*pDescriptor);
        expected.read(strText);
        const auto pList = pDescriptor->access.makeContainer();
        captureOutput([&] {
            EXPECT_TRUE(createDomainXml(pDescriptor->nDomainId)
                            ->parseDomainXmlNode(parsed("<L>" + strWrong + "</L>"), *pList));
        });
        ASSERT_EQ(sizeOf(*pDescriptor, *pList), 1U);
        const void* pRead =
            pDescriptor->access.listAt(pDescriptor->access.containerList(*pList), 0);
        EXPECT_TRUE(equalRecords(*pDescriptor, pRead, expected.get()));
        ++nRows;
    }
    EXPECT_EQ(nRows, 649);
}

TEST(MapperFactory, ARecordOfAnotherTypeIsRefusedAndUntouched) {
    const auto vecRecords = namedRecords();
    EXPECT_EQ(vecRecords.size(), 649U);
    for (std::size_t i = 0; i < vecRecords.size(); ++i) {
        SCOPED_TRACE(vecRecords[i]->szClass);
        const RecordDescriptor& other = *vecRecords[(i + 1) % vecRecords.size()];
        const auto pMapper = createDomainXml(vecRecords[i]->nDomainId);
        const Node node = newNode("T");
        const MappedRecord before = MappedRecord::filled(other);
        const MappedRecord after = MappedRecord::filled(other);
        const auto pList = filledList(other);
        EXPECT_FALSE(pMapper->createDomainXmlNode(before.domain(), node));
        EXPECT_FALSE(pMapper->createDomainXmlNode(*pList, node));
        EXPECT_EQ(textOf(node), "<T />\n");
        EXPECT_FALSE(pMapper->parseDomainXmlNode(node, after.domain()));
        EXPECT_FALSE(pMapper->parseDomainXmlNode(node, *pList));
        EXPECT_TRUE(after.equals(before));
        EXPECT_EQ(sizeOf(other, *pList), 2U);
    }
}

TEST(MapperFactory, NestedOnlyTypesHaveNoMapper) {
    int nMappers = 0;
    for (const RecordDescriptor* pDescriptor : allRecords()) {
        const bool bMapper = createDomainXml(pDescriptor->nDomainId) != nullptr;
        EXPECT_EQ(bMapper, pDescriptor->szName != nullptr || pDescriptor->nDomainId == 0);
        nMappers += bMapper ? 1 : 0;
    }
    EXPECT_EQ(nMappers, 649 + 1);  // one nested-only type has the id of the base
}

}  // namespace
