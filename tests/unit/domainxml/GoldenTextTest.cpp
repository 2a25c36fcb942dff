// The text of one record of each shape, written down by hand.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "domain/ConverseAbility.h"
#include "domain/DetectionAreaV2.h"
#include "domain/EtPTZOperation.h"
#include "domain/EtResult.h"
#include "domain/EtThermalOperation.h"
#include "domain/IntelligentEvent.h"
#include "domain/PTZPointParam.h"
#include "domain/PolygonArea.h"
#include "domain/UpdateSoftware.h"
#include "domainxml/DomainXmlFactory.h"
#include "domainxml/TypedXml.h"
#include "unit/domainxml/MappedRecord.h"
#include "unit/domainxml/NodeText.h"

using namespace fleetkit;

namespace {

using testing::HasSubstr;

template <class Record>
std::string written(const Record& record) {
    const XmlDocument document(Record::descriptor().szClass);
    EXPECT_TRUE(XmlMapping::writeRecord(Record::descriptor(), &record, document.root()));
    return document.root().text();
}

struct Shape {
    const char* szName;
    const char* szClass;
    const char* szText;
};

const Shape Shapes[] = {
    {"scalars", "NTPParam",
     "<NTPParam NTPEnableFlag=\"true\" NTPIp=\"10.0.0.5\" NTPPort=\"123\" NTPRunTime=\"-60\" "
     "IPProtoVer=\"0\" />\n"},
    {"a list of records", "EtRecordPolicy",
     "<EtRecordPolicy ScheduleRecordOpenFlag=\"false\" ScheduleReocrdType=\"2\" ChannelId=\"0\" "
     "StreamId=\"0\" SaveDays=\"-1\" AudioOpenFlag=\"false\" CycleWriteFlag=\"false\" "
     "DiskGroupId=\"0\">\n\t<ScheduleTimeList>\n"
     "\t\t<EtScheduleTime WeekDay=\"3\" StartTime=\"0\" EndTime=\"86399\" />\n"
     "\t</ScheduleTimeList>\n</EtRecordPolicy>\n"},
    {"a base part as a child", "EtStreamURIReq",
     "<EtStreamURIReq UserName='a&quot;b' Password=\"\" CameraID=\"0\" StreamID=\"0\" "
     "RtspTransferProtocol=\"0\">\n"
     "\t<InetAddr IP=\"::1\" PORT=\"65535\" IPProtoVer=\"2\" />\n</EtStreamURIReq>\n"},
    {"base fields on the same element", "AlarmOutAction",
     "<AlarmOutAction ActionType=\"1\" ActionID=\"2\" ActionName=\"n\" DeviceId=\"d\" "
     "AlarmOutId=\"5\" AlarmOutFlag=\"0\" EventTypeId=\"0\" AlarmTime=\"0\" />\n"},
    {"bare values in a list", "DeviceResetCommandInfo",
     "<DeviceResetCommandInfo>\n\t<HoldTypeList>\n\t\t<HoldType HoldType=\"3\" />\n"
     "\t\t<HoldType HoldType=\"-4\" />\n\t</HoldTypeList>\n</DeviceResetCommandInfo>\n"},
    {"bare values without a list", "EtHoldTypeList",
     "<EtHoldTypeList>\n\t<Type Type=\"3\" />\n\t<Type Type=\"4\" />\n</EtHoldTypeList>\n"},
    {"no bare values", "EtHoldTypeList", "<EtHoldTypeList />\n"},
    {"an inline element", "CLBRParam",
     "<CLBRParam Area=\"0.500000\" Ratio=\"0.000000\" Width=\"0.000000\" Height=\"0.000000\">"
     "\n\t<Pos Xval=\"0.000000\" Yval=\"0.250000\" />\n</CLBRParam>\n"},
    {"repeated inline elements", "PolygonArea",
     "<PolygonArea>\n\t<KXPoint Xval=\"0.000000\" Yval=\"0.250000\" />\n"
     "\t<KXPoint Xval=\"0.000000\" Yval=\"0.000000\" />\n</PolygonArea>\n"},
    {"repeated inline elements under another", "KXAttributeList",
     "<KXAttributeList AttributeSequenceName=\"\">\n\t<AttributeSequence>\n"
     "\t\t<Attribute AttributeName=\"a\" AttributeValue=\"&lt;&amp;&gt;\" />\n"
     "\t</AttributeSequence>\n</KXAttributeList>\n"},
    {"none of them under another", "KXAttributeList",
     "<KXAttributeList AttributeSequenceName=\"\">\n\t<AttributeSequence />\n"
     "</KXAttributeList>\n"},
    {"repeated elements that hold elements", "IntelligenceLibInfo",
     "<IntelligenceLibInfo Version=\"2\" StreamID=\"1\">\n\t<LIB ID=\"0\" enable=\"false\">\n"
     "\t\t<Resolution videoWidth=\"0\" videoHeight=\"0\" />\n"
     "\t\t<Common totalAnalyseRegionNum=\"0\" MaxEnableFunsNum=\"0\" />\n\t</LIB>\n"
     "</IntelligenceLibInfo>\n"},
    {"an ability without a unit", "CameraTamperAbility",
     "<CameraTamperAbility enable=\"true\" LibId=\"3\">\n"
     "\t<MinTime enable=\"true\" min=\"1\" max=\"60\" />\n</CameraTamperAbility>\n"},
    {"an ability with a unit", "CameraTamperAbility",
     "<CameraTamperAbility enable=\"true\" LibId=\"3\">\n"
     "\t<MinTime enable=\"true\" min=\"1\" max=\"60\" unit=\"s\" />\n</CameraTamperAbility>\n"},
    {"a region, a flag and a range of floats", "ConverseAbility",
     "<ConverseAbility LibId=\"1\" enable=\"false\">\n"
     "\t<Region enable=\"false\" edgeNum=\"0\" maxRegionNum=\"4\" />\n"
     "\t<DetailGet enable=\"true\" />\n"
     "\t<TargetTypeConstrain enable=\"false\" min=\"0\" max=\"0\" />\n"
     "\t<TargetType enable=\"false\" min=\"0\" max=\"0\" />\n"
     "\t<TargetSizeConstrain enable=\"false\" min=\"0\" max=\"0\" />\n"
     "\t<MinTargetSize enable=\"false\" min=\"0\" max=\"0\" />\n"
     "\t<MaxTargetSize enable=\"false\" min=\"0\" max=\"0\" />\n"
     "\t<ConverseAngle enable=\"false\" min=\"0.000000\" max=\"359.500000\" unit=\"deg\" />\n"
     "</ConverseAbility>\n"},
    {"joined numbers with words, and none", "ThermalOperateResultCode",
     "<ThermalOperateResultCode OperateReturnCode=\"0\">\n"
     "\t<OperateItemId OperateItemIdList=\"(OperateId:1);(OperateId:-2)\" />\n"
     "\t<ParamErrorCode ParamErrorCodeList=\"\" />\n</ThermalOperateResultCode>\n"},
    {"joined numbers", "VideoEncoderParam",
     "<VideoEncoderParam VideoEncoderType=\"0\" EncodeTypeName=\"\" EncodeLevelList=\"1,2,3\">\n"
     "\t<VideoEncoderParamItem />\n</VideoEncoderParam>\n"},
    {"a block", "DetectionAreaV2",
     "<DetectionAreaV2 WidthCellNumber=\"0\" HighCellNumber=\"0\" DataLength=\"3\" "
     "Data=\"AP8Q\" />\n"},
    {"no block", "DetectionAreaV2",
     "<DetectionAreaV2 WidthCellNumber=\"0\" HighCellNumber=\"0\" DataLength=\"3\" />\n"},
};

TEST(GoldenText, EachShapeIsWrittenAsItIsRead) {
    for (const Shape& shape : Shapes) {
        MappedRecord record(*findRecordDescriptor(shape.szClass));
        EXPECT_EQ(record.read(shape.szText), "") << shape.szName;
        EXPECT_EQ(record.text(), shape.szText) << shape.szName;
    }
}

TEST(GoldenText, WhatIsOnlyWritten) {
    EtThermalOperation operation;
    operation.setThermalOperation("go");
    EXPECT_EQ(written(operation),
              "<EtThermalOperation ThermalMainOperationId=\"0\" ThermalSubOperationId=\"0\" "
              "ThermalOperation=\"go\" />\n");
    PTZPointParam point;
    point.setPTZID(7);
    EXPECT_EQ(written(point),
              "<PTZPointParam PanPosion=\"0\" TiltPosion=\"0\" ZoomValue=\"0\" DZoomValue=\"0\" "
              "DayFocusValue=\"0\" NightFocusValue=\"0\" PTZID=\"7\" />\n");
    AbilityFlag flag;
    flag.setUnit("x");
    ConverseAbility ability;
    ability.setDetailGet(flag);
    EXPECT_THAT(written(ability), HasSubstr("<DetailGet enable=\"false\" unit=\"x\" />"));
}

TEST(GoldenText, WhatIsReadIntoAFilledRecordAndWhatIsWrittenThen) {
    const Shape Cases[] = {
        {"EtHoldTypeList", "<R Type='9'/>", "<Type Type=\"9\" />"},
        {"CameraTamperAbility", "<R enable='1' LibId='1'><MinTime enable='yes' min='1'/></R>",
         "<MinTime enable=\"false\" min=\"1\" max=\"0\" />"},
        {"VideoEncoderParam", "<R EncodeLevelList='7,x,,4294967298'/>", "List=\"7,0,0,2\""},
        {"TemperatureAreaAndAlarmParam",
         "<R><TemperatureMeasureArea PointCoordinateList='(4, -5)'/></R>", "List=\"(4, -5)\""},
        {"TemperatureAreaAndAlarmParam",
         "<R><TemperatureMeasureArea PointCoordinateList='(1,2);(3,   4)'/></R>",
         "List=\"(1, 2);(3, 4)\""},
        {"TemperatureAreaAndAlarmParam",
         "<R><TemperatureMeasureArea PointCoordinateList='(1, 2);(3);nonsense;;(5, 6)'/></R>",
         "List=\"(1, 2);(5, 6)\""},
        {"NTPParam", "<R NTPEnableFlag='maybe'/>", "NTPEnableFlag=\"false\""},
        {"NTPParam", "<R NTPPort='65537'/>", "NTPPort=\"1\""},
        {"NTPParam", "<R NTPPort='-1'/>", "NTPPort=\"65535\""},
        {"CpuStatistic", "<R CpuPercent='x'/>", "CpuPercent=\"0.000000\""},
        {"LoginSession", "<R Time='x'/>", "Time=\"0.000000\""},
        {"ConverseAbility", "<R LibId='1' enable='1'><ConverseAngle min='x' max='.5'/></R>",
         "<ConverseAngle enable=\"false\" min=\"0.000000\" max=\"0.500000\""},
        {"Privilege", "<R HasDeviceFlag='maybe'/>", "HasDeviceFlag=\"true\""},
        {"RecordPlaybackParam",
         "<R CommandType='1' DisplayId='1' WindowId='1' ChannelId='1' AudioFlag='x' Rate='x'/>",
         "AudioFlag=\"true\" BeginTime=\"1006\" EndTime=\"1007\" locateTime=\"1008\" "
         "Rate=\"1009.500000\""}};
    for (const auto& [szClass, szRead, szWritten] : Cases) {
        MappedRecord record = MappedRecord::filled(*findRecordDescriptor(szClass));
        record.read(szRead);
        EXPECT_THAT(record.text(), HasSubstr(szWritten)) << szRead;
    }
}

TEST(GoldenText, ABlockAndItsLength) {
    struct Case {
        const char* szAttributes;
        bool bRead;
        std::size_t nBytes;
    };
    for (const Case& one :
         {Case{"DataLength='0' Data='AP8Q'", true, 0}, Case{"DataLength='1' Data='AP8Q'", true, 3},
          Case{"DataLength='2147483647' Data='AP8Q'", true, 3},
          Case{"DataLength='-1000' Data='AP8Q'", true, 3},
          Case{"DataLength='-2147483648' Data='AP8Q'", false, 1},
          Case{"DataLength='3' Data='A!8Q'", false, 1}, Case{"DataLength='3' Data=''", true, 1},
          Case{"DataLength='3'", true, 1}}) {
        MappedRecord held(DetectionAreaV2::descriptor());
        auto& area = static_cast<DetectionAreaV2&>(held.domain());
        area.setData(std::vector<std::uint8_t>{1});
        held.read("<R " + std::string(one.szAttributes) + "/>", one.bRead);
        EXPECT_EQ(area.getData()->size(), one.nBytes) << one.szAttributes;
    }
    // What is written is bounded by both, the length told and the bytes held.
    DetectionAreaV2 area;
    area.setData(std::vector<std::uint8_t>{0, 255, 16});
    for (const auto& [nTold, strData] :
         {std::pair<int, std::string>{0, ""}, {-5, ""}, {2, "AP8="}, {2147483647, "AP8Q"}}) {
        area.setDataLength(nTold);
        EXPECT_THAT(written(area), HasSubstr("Data=\"" + strData + "\""));
    }
}

TEST(GoldenText, WholeNumbersThatComeAsFractions) {
    const std::string strStart =
        "<R TargetTypeConstrain='true' TargetType='1' TargetSizeConstrain='true' "
        "MinTargetSize='1' MaxTargetSize='1' TimeInterval='1' TriggerDirection1=";
    for (const auto& [strNumber, strRead] : {std::pair<std::string, std::string>{"2.7", "2"},
                                             {"-2.7", "-2"},
                                             {"nothing", "77"},
                                             {"1e30", "-2147483648"},
                                             {"nan", "-2147483648"}}) {
        MappedRecord record(*findRecordDescriptor("MultiTripWireRegionParam"));
        record.read(strStart + "'77' TriggerDirection2='88'/>");
        record.read(strStart + "'" + strNumber + "'/>");
        EXPECT_THAT(record.text(),
                    HasSubstr("TriggerDirection1=\"" + strRead + "\" TriggerDirection2=\"88\""));
    }
}

TEST(GoldenText, PTZOperationTracesWhatItDoes) {
    EtPTZOperation record;
    record.setPTZId(4);
    std::string strText;
    EXPECT_EQ(captureOutput([&] { strText = written(record); }),
              "setProperty get nCameraID =1  \nsetProperty get nPTZId =4  \n");
    EXPECT_EQ(strText,
              "<EtPTZOperation CameraId=\"1\" PTZId=\"4\" PTZOperation=\"\" Name=\"\" />\n");
    const std::string strTrace =
        "EtPTZOperationOddXml\\.cpp[0-9]+ ###########   EtPTZOperationXml    ########### \n";
    EXPECT_THAT(MappedRecord(EtPTZOperation::descriptor()).read("<R PTZId='9' PTZOperation='Up'/>"),
                testing::MatchesRegex(strTrace + strTrace +
                                      "getProperty get CameraId failed \n"
                                      "getProperty get Name failed \n"
                                      "getProperty get nCameraID =1  \n"
                                      "getProperty get nPTZId =9  \n"));
}

// ---- the ways to a mapper

TEST(TypedXml, MapsListsUnderTheTypesOwnEntryTags) {
    const Node node = newNode("ResultList");
    EXPECT_TRUE(TypedXml<EtResult>::createList({EtResult(), EtResult()}, node));
    EXPECT_EQ(
        textOf(node),
        "<ResultList>\n\t<EtResult Code=\"0\" />\n\t<EtResult Code=\"0\" />\n</ResultList>\n");
    std::vector<EtResult> vecRead;
    EXPECT_TRUE(TypedXml<EtResult>::parseList(node, vecRead));
    EXPECT_EQ(vecRead.size(), 2U);
}

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

TEST(TypedXml, MapsIntelligentEventByTheDirectFormsOnly) {
    TypedXml<IntelligentEvent> mapper;
    IntelligentEvent event;
    const Node node = newNode("R");
    EXPECT_FALSE(mapper.createDomainXmlNode(event, node));
    EXPECT_FALSE(mapper.parseDomainXmlNode(node, event));
    EXPECT_FALSE(mapper.createDomainXmlNode(BaseDomain(), node));
    EXPECT_TRUE(TypedXml<IntelligentEvent>::createSingle(event, node));
    EXPECT_TRUE(TypedXml<IntelligentEvent>::parseSingle(node, event));
}

TEST(MapperFactory, MapsAnyRecordThatHasAMapper) {
    Node node;
    std::string strTag;
    const auto record = wrapSafe<BaseDomain>(std::make_unique<UpdateSoftware>());
    ASSERT_TRUE(createDomainXmlNode("T", record, node));
    EXPECT_TRUE(parseDomainXmlNode(node, strTag, record));
    EXPECT_EQ(strTag, "T");
    const auto nested = wrapSafe<BaseDomain>(std::make_unique<PolygonArea>());
    for (const SafePointer<BaseDomain>& unmapped : {SafePointer<BaseDomain>(), nested}) {
        EXPECT_FALSE(createDomainXmlNode("T", unmapped, node));
        EXPECT_FALSE(parseDomainXmlNode(node, strTag, unmapped));
    }
}

}  // namespace
