// The texts of records against cases written down by hand, and what no text can show.
#include <gmock/gmock.h>

#include <array>
#include <fstream>
#include <map>
#include <regex>
#include <string>
#include <vector>

#include "Product/Technic/LogFilter.h"
#include "domain/ConverseAbility.h"
#include "domain/EtMotionDetectionStreamReq.h"
#include "domain/EtPTZOperation.h"
#include "domain/EtResult.h"
#include "domain/EtThermalOperation.h"
#include "domain/IntelligentEvent.h"
#include "domain/PTZPointParam.h"
#include "domain/PolygonArea.h"
#include "domainxml/DomainXmlFactory.h"
#include "domainxml/TypedXml.h"
#include "support/SampleRecords.h"
#include "unit/domainxml/MappedRecord.h"
#include "unit/domainxml/NodeText.h"

using namespace fleetkit;

namespace {

// ---- the cases of texts/README.txt

constexpr std::array Parts = {"held", "read", "refused", "both", "prints", "writes"};

struct TextCase {
    std::string strPlace;
    std::string strClass;
    std::map<std::string, std::string> mapParts;
};

std::vector<TextCase> casesOf(const std::string& strName) {
    std::ifstream file(FLEETKIT_SOURCE_DIR "/tests/unit/domainxml/texts/" + strName);
    std::vector<TextCase> vecCases;
    std::string* pPart = nullptr;
    for (std::string strLine; std::getline(file, strLine);) {
        if (strLine.empty() || strLine[0] == '#') {
            continue;
        }
        if (strLine.starts_with("== ")) {
            const std::string strClass = strLine.substr(3, strLine.find(':') - 3);
            vecCases.push_back({strName + ": " + strLine, strClass, {}});
        } else if (std::ranges::count(Parts, strLine) == 1) {
            pPart = &vecCases.back().mapParts[strLine];
        } else if (strLine[0] == ' ') {
            pPart->back() = ' ';
            *pPart += strLine.substr(strLine.find_first_not_of(' ')) + "\n";
        } else {
            *pPart += strLine + "\n";
        }
    }
    return vecCases;
}

std::string printedLines(const std::string& strPart) {
    const std::string strJoined = std::regex_replace(strPart, std::regex("\n"), "");
    return std::regex_replace(strJoined, std::regex(R"(\\n)"), "\n");
}

// What was printed, with marks for places in the source.
std::string withMarks(const std::string& strPrinted) {
    const std::string strLines =
        std::regex_replace(strPrinted, std::regex(R"((Xml parseDomainXmlNode )\d+)"), "$1{line}");
    return std::regex_replace(
        strLines, std::regex(R"((EtPTZOperationOddXml|MappingWords)\.cpp\d+)"), "{place}");
}

void expectCase(const TextCase& one) {
    SCOPED_TRACE(one.strPlace);
    auto mapParts = one.mapParts;  // an absent one is empty
    MappedRecord record(*findRecordDescriptor(one.strClass));
    if (!mapParts["held"].empty()) {
        record.read(mapParts["held"]);
    }
    const std::string strTaken = mapParts["both"] + mapParts["read"];
    EXPECT_EQ(withMarks(record.read(strTaken + mapParts["refused"], !strTaken.empty())),
              printedLines(mapParts["prints"]));
    const std::string strWritten = mapParts["both"] + mapParts["writes"];
    EXPECT_TRUE(strWritten.empty() || record.text() == strWritten) << record.text();
}

class RecordText : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override { setLogFilter(LogLevel::Failure); }
    void TearDown() override { setLogFilter(0); }
};

TEST_P(RecordText, IsReadAndWrittenAsTheCasesSay) {
    const std::vector<TextCase> vecCases = casesOf(GetParam());
    EXPECT_GT(vecCases.size(), 10U);
    for (const TextCase& one : vecCases) {
        expectCase(one);
    }
}

INSTANTIATE_TEST_SUITE_P(Files, RecordText,
                         testing::Values("shapes.txt", "odd-values.txt", "absent.txt"));

// ---- what is written and not read

template <class Record>
std::string written(const Record& record) {
    const XmlDocument document(Record::descriptor().szClass);
    EXPECT_TRUE(XmlMapping::writeRecord(Record::descriptor(), &record, document.root()));
    return document.root().text();
}

TEST(WrittenText, HasWhatIsNotRead) {
    EXPECT_EQ(written(with(&EtThermalOperation::setThermalOperation, "go")),
              "<EtThermalOperation ThermalMainOperationId=\"0\" ThermalSubOperationId=\"0\" "
              "ThermalOperation=\"go\" />\n");
    EXPECT_EQ(written(with(&PTZPointParam::setPTZID, 7)),
              "<PTZPointParam PanPosion=\"0\" TiltPosion=\"0\" ZoomValue=\"0\" DZoomValue=\"0\" "
              "DayFocusValue=\"0\" NightFocusValue=\"0\" PTZID=\"7\" />\n");
    const auto flag = with(&AbilityFlag::setUnit, "x");
    EXPECT_THAT(written(with(&ConverseAbility::setDetailGet, flag)),
                testing::HasSubstr("<DetailGet enable=\"false\" unit=\"x\" />"));
}

TEST(WrittenText, OfAPTZOperationIsTraced) {
    EXPECT_EQ(captureOutput([] { written(with(&EtPTZOperation::setPTZId, 4)); }),
              "setProperty get nCameraID =1  \nsetProperty get nPTZId =4  \n");
}

// ---- the ways to a mapper

TEST(TypedXml, AsksForANode) {
    EtResult record;
    std::vector<EtResult> vecRecords = {record};
    for (const Node& node : {Node(), wrapSafe(std::make_unique<DomainXmlNode>())}) {
        EXPECT_FALSE(TypedXml<EtResult>::createSingle(record, node));
        EXPECT_FALSE(TypedXml<EtResult>::parseSingle(node, record));
        EXPECT_FALSE(TypedXml<EtResult>::createList(vecRecords, node));
        EXPECT_FALSE(TypedXml<EtResult>::parseList(node, vecRecords));
        EXPECT_FALSE(TypedXml<EtResult>().createDomainXmlNode(record, node));
        EXPECT_FALSE(TypedXml<EtResult>().parseDomainXmlNode(node, record));
    }
    EXPECT_EQ(vecRecords.size(), 1U);
}

TEST(TypedXml, MapsByItsDirectFormsAloneARecordWithoutAnId) {
    const Node node = newNode("T");
    std::vector<IntelligentEvent> vecEvents(2);
    EXPECT_TRUE(TypedXml<IntelligentEvent>::createList({IntelligentEvent()}, node));
    EXPECT_TRUE(TypedXml<IntelligentEvent>::parseList(node, vecEvents));
    ASSERT_EQ(vecEvents.size(), 1U);
    EXPECT_TRUE(TypedXml<IntelligentEvent>::createSingle(vecEvents[0], node));
    EXPECT_TRUE(TypedXml<IntelligentEvent>::parseSingle(node, vecEvents[0]));
    EXPECT_FALSE(TypedXml<IntelligentEvent>().createDomainXmlNode(vecEvents[0], node));
    EXPECT_FALSE(TypedXml<IntelligentEvent>().parseDomainXmlNode(node, vecEvents[0]));
}

TEST(TypedXml, OneBadEntryLeavesAListAsItWas) {
    using Mapper = TypedXml<EtMotionDetectionStreamReq>;
    const Node node = parsed("<L><A CameraId='1' ConsumerId='2'/><A CameraId='1'/></L>");
    DomainVectorContainer<EtMotionDetectionStreamReq> list;
    list.setElements(std::vector<EtMotionDetectionStreamReq>(3));
    captureOutput([&] { EXPECT_FALSE(Mapper().parseDomainXmlNode(node, list)); });
    EXPECT_EQ(list.getElements().size(), 3U);
}

TEST(MapperFactory, MapsAnyRecordThatHasAMapper) {
    Node node;
    std::string strTag;
    const Records records = recordsOf(EtResult(), PolygonArea());
    ASSERT_TRUE(createDomainXmlNode("T", records[0], node));
    EXPECT_TRUE(parseDomainXmlNode(node, strTag, records[0]));
    EXPECT_EQ(strTag, "T");
    for (const SafePointer<BaseDomain>& unmapped : {SafePointer<BaseDomain>(), records[1]}) {
        EXPECT_FALSE(createDomainXmlNode("T", unmapped, node));
        EXPECT_FALSE(parseDomainXmlNode(node, strTag, unmapped));
    }
}

}  // namespace
