// The text of one record of each shape, written down by hand.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "domain/AlarmOutAction.h"
#include "domain/CLBRParam.h"
#include "domain/CameraTamperAbility.h"
#include "domain/ConverseAbility.h"
#include "domain/DetectionAreaV2.h"
#include "domain/DeviceResetCommandInfo.h"
#include "domain/DomainVectorContainer.h"
#include "domain/EtHoldTypeList.h"
#include "domain/EtPTZOperation.h"
#include "domain/EtRecordPolicy.h"
#include "domain/EtResult.h"
#include "domain/EtStreamURIReq.h"
#include "domain/EtThermalOperation.h"
#include "domain/IntelligenceLibInfo.h"
#include "domain/IntelligentEvent.h"
#include "domain/KXAttributeList.h"
#include "domain/MultiTripWireRegionParam.h"
#include "domain/NTPParam.h"
#include "domain/PTZPointParam.h"
#include "domain/PolygonArea.h"
#include "domain/TemperatureMeasureArea.h"
#include "domain/ThermalOperateResultCode.h"
#include "domain/UpdateSoftware.h"
#include "domain/VideoEncoderParam.h"
#include "domainxml/DomainXmlFactory.h"
#include "domainxml/TypedXml.h"
#include "support/CapturedOutput.h"

namespace {

template <class Record>
std::string textOf(const Record& record, const char* szTag = "R") {
    const XmlDocument document(szTag);
    EXPECT_TRUE(XmlMapping::writeRecord(Record::descriptor(), &record, document.root()));
    return document.root().text();
}

template <class Record>
Record readFrom(const char* szText, Record record = {}, bool bExpected = true) {
    const XmlDocument document = XmlDocument::parse(szText);
    EXPECT_EQ(XmlMapping::readRecord(Record::descriptor(), document.root(), &record), bExpected);
    return record;
}

template <class Record>
void expectGolden(const Record& record, const char* szText) {
    EXPECT_EQ(textOf(record), szText);
    EXPECT_TRUE(readFrom<Record>(szText) == record) << szText;
}

template <class Record, class Fill>
Record made(const Fill& fill) {
    Record record;
    fill(record);
    return record;
}

AbilityRange range(bool bEnable, int nMin, int nMax, const char* szUnit) {
    return made<AbilityRange>([&](AbilityRange& ability) {
        ability.setEnable(bEnable);
        ability.setMin(nMin);
        ability.setMax(nMax);
        ability.setUnit(szUnit);
    });
}

TEST(GoldenText, Scalars) {
    NTPParam record;
    record.setNTPEnableFlag(true);
    record.setNTPIp("10.0.0.5");
    record.setNTPPort(123);
    record.setNTPRunTime(60);
    expectGolden(record,
                 "<R NTPEnableFlag=\"true\" NTPIp=\"10.0.0.5\" NTPPort=\"123\" NTPRunTime=\"60\" "
                 "IPProtoVer=\"0\" />\n");
}

TEST(GoldenText, AListOfRecordsUnderTheTypesOwnEntryTags) {
    DomainVectorContainer<EtResult> list;
    list.append(made<EtResult>([](EtResult& result) { result.setCode(7); }));
    list.append(EtResult());
    const XmlDocument document("ResultList");
    EXPECT_TRUE(XmlMapping::writeDomain(EtResult::descriptor(), list, document.root()));
    EXPECT_EQ(
        document.root().text(),
        "<ResultList>\n\t<EtResult Code=\"7\" />\n\t<EtResult Code=\"0\" />\n</ResultList>\n");
}

TEST(GoldenText, AListInARecord) {
    EtRecordPolicy record;
    record.setScheduleReocrdType(2);
    record.setSaveDays(-1);
    record.setScheduleTimeList({made<EtScheduleTime>([](EtScheduleTime& time) {
        time.setWeekDay(3);
        time.setEndTime(86399);
    })});
    expectGolden(record,
                 "<R ScheduleRecordOpenFlag=\"false\" ScheduleReocrdType=\"2\" ChannelId=\"0\" "
                 "StreamId=\"0\" SaveDays=\"-1\" AudioOpenFlag=\"false\" CycleWriteFlag=\"false\" "
                 "DiskGroupId=\"0\">\n\t<ScheduleTimeList>\n"
                 "\t\t<EtScheduleTime WeekDay=\"3\" StartTime=\"0\" EndTime=\"86399\" />\n"
                 "\t</ScheduleTimeList>\n</R>\n");
}

TEST(GoldenText, ABasePartAsAChild) {
    EtStreamURIReq record;
    record.setUserName("a\"b");
    record.setInetAddr(made<InetAddr>([](InetAddr& addr) {
        addr.setIP("::1");
        addr.setPORT(554);
        addr.setIPProtoVer(2);
    }));
    expectGolden(record,
                 "<R UserName='a&quot;b' Password=\"\" CameraID=\"0\" StreamID=\"0\" "
                 "RtspTransferProtocol=\"0\">\n"
                 "\t<InetAddr IP=\"::1\" PORT=\"554\" IPProtoVer=\"2\" />\n</R>\n");
}

TEST(GoldenText, BaseFieldsOnTheSameElement) {
    AlarmOutAction record;
    record.setActionType(1);
    record.setAlarmOutId(5);
    const std::string strText = textOf(record);
    EXPECT_EQ(strText.find("<R ActionType=\"1\""), 0U) << strText;
    EXPECT_LT(strText.find("ActionID="), strText.find("AlarmOutId=\"5\"")) << strText;
    EXPECT_TRUE(readFrom<AlarmOutAction>(strText.c_str()) == record);
}

TEST(GoldenText, BareValuesInAList) {
    DeviceResetCommandInfo record;
    record.setHoldTypeList({3, -4});
    expectGolden(record,
                 "<R>\n\t<HoldTypeList>\n\t\t<HoldType HoldType=\"3\" />\n"
                 "\t\t<HoldType HoldType=\"-4\" />\n\t</HoldTypeList>\n</R>\n");
}

TEST(GoldenText, BareValuesWithoutAList) {
    EtHoldTypeList record;
    EXPECT_EQ(textOf(record, "HoldTypeList"), "<HoldTypeList />\n");
    record.setType({3, 4});
    expectGolden(record, "<R>\n\t<Type Type=\"3\" />\n\t<Type Type=\"4\" />\n</R>\n");
    const std::vector<int> vecOne = {9};
    EXPECT_EQ(readFrom<EtHoldTypeList>("<R Type=\"9\"/>", record).getType(), vecOne);
}

TEST(GoldenText, InlineElements) {
    CLBRParam record;
    record.setArea(0.5);
    KXPoint point;
    point.setYval(0.25F);
    record.setPos(point);
    expectGolden(record,
                 "<R Area=\"0.500000\" Ratio=\"0.000000\" Width=\"0.000000\" Height=\"0.000000\">"
                 "\n\t<Pos Xval=\"0.000000\" Yval=\"0.250000\" />\n</R>\n");
    PolygonArea area;
    area.setKXPoint({point, KXPoint()});
    expectGolden(area,
                 "<R>\n\t<KXPoint Xval=\"0.000000\" Yval=\"0.250000\" />\n"
                 "\t<KXPoint Xval=\"0.000000\" Yval=\"0.000000\" />\n</R>\n");
}

TEST(GoldenText, InlineElementsUnderAnother) {
    KXAttributeList record;
    expectGolden(record, "<R AttributeSequenceName=\"\">\n\t<AttributeSequence />\n</R>\n");
    record.setAttribute({made<KXAttribute>([](KXAttribute& attribute) {
        attribute.setAttributeName("a");
        attribute.setAttributeValue("<&>");
    })});
    expectGolden(record,
                 "<R AttributeSequenceName=\"\">\n\t<AttributeSequence>\n"
                 "\t\t<Attribute AttributeName=\"a\" AttributeValue=\"&lt;&amp;&gt;\" />\n"
                 "\t</AttributeSequence>\n</R>\n");
}

TEST(GoldenText, RepeatedElementsThatHoldElements) {
    IntelligenceLibInfo record;
    record.setVersion(2);
    record.setLIB({LibCommonAbility()});
    EXPECT_EQ(
        textOf(record),
        "<R Version=\"2\" StreamID=\"1\">\n\t<LIB ID=\"0\" enable=\"false\">\n"
        "\t\t<Resolution videoWidth=\"0\" videoHeight=\"0\" />\n"
        "\t\t<Common totalAnalyseRegionNum=\"0\" MaxEnableFunsNum=\"0\" />\n\t</LIB>\n</R>\n");
    std::string strPrinted = captureOutput([&] {
        record = readFrom<IntelligenceLibInfo>(
            "<R Version='1' StreamID='2'><LIB ID='4'/>"
            "<Other/><LIB enable='TRUE' ID='5'/></R>");
    });
    ASSERT_EQ(record.getLIB().size(), 2U);
    EXPECT_EQ(record.getLIB()[0].getResolution().getVideoWidth(), 320);
    EXPECT_EQ(record.getLIB()[1].getResolution().getVideoHeight(), 240);
    EXPECT_TRUE(record.getLIB()[1].getEnable());
    EXPECT_EQ(strPrinted.find("LibCommon get Enable Failed! Set Default Value false \n"
                              "LibCommon get VideoWidth Failed! Set Default Value 320 \n"
                              "LibCommon get VideoHeight Failed! Set Default Value 240 \n"
                              "LibCommon get TotalAnalyseRegionNum Failed! Set Default Value 0 \n"
                              "LibCommon get MaxEnableFunsNum Failed! Set Default Value 0 \n"),
              0U)
        << strPrinted;
}

TEST(GoldenText, AbilityConstraints) {
    CameraTamperAbility record;
    record.setEnable(true);
    record.setLibId(3);
    record.setMinTime(range(true, 1, 60, ""));
    expectGolden(record,
                 "<R enable=\"true\" LibId=\"3\">\n"
                 "\t<MinTime enable=\"true\" min=\"1\" max=\"60\" />\n</R>\n");
    record.setMinTime(range(true, 1, 60, "s"));
    expectGolden(record,
                 "<R enable=\"true\" LibId=\"3\">\n"
                 "\t<MinTime enable=\"true\" min=\"1\" max=\"60\" unit=\"s\" />\n</R>\n");
    // A word that is neither true nor false is none.
    EXPECT_FALSE(
        readFrom<CameraTamperAbility>(
            "<R enable='true' LibId='1'><MinTime enable='yes' min='1' max='2'/></R>", record)
            .getMinTime()
            .getEnable());
}

TEST(GoldenText, AConstraintOfFloatsAndAnOneSidedUnit) {
    ConverseAbility record;
    record.setLibId(1);
    record.setDetailGet(made<AbilityFlag>([](AbilityFlag& flag) {
        flag.setEnable(true);
        flag.setUnit("x");
    }));
    record.setConverseAngle(made<AbilityFloatRange>([](AbilityFloatRange& angle) {
        angle.setMax(359.5F);
        angle.setUnit("deg");
    }));
    const std::string strZero = " enable=\"false\" min=\"0\" max=\"0\" />\n";
    const std::string strText =
        "<R LibId=\"1\" enable=\"false\">\n"
        "\t<Region enable=\"false\" edgeNum=\"0\" maxRegionNum=\"0\" />\n"
        "\t<DetailGet enable=\"true\" unit=\"x\" />\n"
        "\t<TargetTypeConstrain" +
        strZero + "\t<TargetType" + strZero + "\t<TargetSizeConstrain" + strZero +
        "\t<MinTargetSize" + strZero + "\t<MaxTargetSize" + strZero +
        "\t<ConverseAngle enable=\"false\" min=\"0.000000\" max=\"359.500000\" unit=\"deg\" />\n"
        "</R>\n";
    EXPECT_EQ(textOf(record), strText);
    const auto read = readFrom<ConverseAbility>(strText.c_str());
    EXPECT_TRUE(read.getDetailGet().getEnable());
    EXPECT_EQ(read.getDetailGet().getUnit(), "");
    EXPECT_EQ(read.getConverseAngle().getUnit(), "deg");
}

TEST(GoldenText, JoinedLists) {
    ThermalOperateResultCode record;
    record.setOperateItemId(made<OperateItemId>([](OperateItemId& item) {
        item.setOperateItemIdList({1, -2});
    }));
    expectGolden(record,
                 "<R OperateReturnCode=\"0\">\n"
                 "\t<OperateItemId OperateItemIdList=\"(OperateId:1);(OperateId:-2)\" />\n"
                 "\t<ParamErrorCode ParamErrorCodeList=\"\" />\n</R>\n");
    VideoEncoderParam levels;
    levels.setEncodeLevelList({1, 2, 3});
    expectGolden(levels,
                 "<R VideoEncoderType=\"0\" EncodeTypeName=\"\" EncodeLevelList=\"1,2,3\">\n"
                 "\t<VideoEncoderParamItem />\n</R>\n");
    const char* szPieces = "<R EncodeLevelList='7,x,,4294967298'><VideoEncoderParamItem/></R>";
    const std::vector<int> vecPieces = {7, 0, 0, 2};
    EXPECT_EQ(readFrom<VideoEncoderParam>(szPieces).getEncodeLevelList(), vecPieces);
}

TEST(GoldenText, JoinedPoints) {
    TemperatureMeasureArea area;
    area.setPointCoordinateList({made<KXPointCoordinate>([](KXPointCoordinate& point) {
        point.setPointX(4);
        point.setPointY(-5);
    })});
    EXPECT_EQ(
        textOf(area),
        "<R AreaEnableFlag=\"false\" AreaShapeType=\"0\" PointCoordinateList=\"(4, -5)\" />\n");
    const auto read = [](const char* szList) {
        const std::string strText = "<R PointCoordinateList='" + std::string(szList) + "'/>";
        return readFrom<TemperatureMeasureArea>(strText.c_str()).getPointCoordinateList().size();
    };
    EXPECT_EQ(read(""), 0U);
    EXPECT_EQ(read("(1, 2)"), 1U);
    EXPECT_EQ(read("(1,2);(3,   4)"), 2U);
    EXPECT_EQ(read("(1, 2);(3);nonsense;;(5, 6)"), 2U);
}

TEST(GoldenText, ABlockAndItsLength) {
    DetectionAreaV2 record;
    const std::string strNone =
        "<R WidthCellNumber=\"0\" HighCellNumber=\"0\" DataLength=\"3\" />\n";
    record.setDataLength(3);
    expectGolden(record, strNone.c_str());
    record.setData(std::vector<std::uint8_t>{0, 255, 16});
    expectGolden(
        record,
        "<R WidthCellNumber=\"0\" HighCellNumber=\"0\" DataLength=\"3\" Data=\"AP8Q\" />\n");

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
        SCOPED_TRACE(one.szAttributes);
        DetectionAreaV2 held;
        held.setData(std::vector<std::uint8_t>{1});
        const std::string strText = "<R " + std::string(one.szAttributes) + "/>";
        const auto read = readFrom(strText.c_str(), held, one.bRead);
        EXPECT_EQ(read.getData()->size(), one.nBytes);
    }

    // What is written is bounded by both, the length told and the bytes held.
    for (const auto& [nTold, strData] :
         {std::pair<int, std::string>{0, ""}, {-5, ""}, {2, "AP8="}, {2147483647, "AP8Q"}}) {
        record.setDataLength(nTold);
        EXPECT_NE(textOf(record).find("Data=\"" + strData + "\""), std::string::npos);
    }
}

TEST(GoldenText, AFieldThatIsReadIntoAnother) {
    const auto record = readFrom<PTZPointParam>("<R NightFocusValue='5' PTZID='2'/>");
    EXPECT_EQ(record.getNightFocusValue(), 2);
    EXPECT_EQ(record.getPTZID(), 0);
    EXPECT_EQ(readFrom<PTZPointParam>("<R NightFocusValue='5'/>").getNightFocusValue(), 0);
    PTZPointParam written;
    written.setPTZID(7);
    EXPECT_EQ(textOf(written),
              "<R PanPosion=\"0\" TiltPosion=\"0\" ZoomValue=\"0\" DZoomValue=\"0\" "
              "DayFocusValue=\"0\" NightFocusValue=\"0\" PTZID=\"7\" />\n");
}

TEST(GoldenText, AFieldThatIsOnlyWritten) {
    EtThermalOperation record;
    record.setThermalOperation("go");
    const char* szText =
        "<R ThermalMainOperationId=\"0\" ThermalSubOperationId=\"0\" ThermalOperation=\"go\" />\n";
    EXPECT_EQ(textOf(record), szText);
    EXPECT_EQ(readFrom<EtThermalOperation>(szText).getThermalOperation(), "");
}

TEST(GoldenText, WholeNumbersThatComeAsFractions) {
    const auto record = [](const char* szNumber) {
        const std::string strText =
            "<R TargetTypeConstrain='true' TargetType='1' TargetSizeConstrain='true' "
            "MinTargetSize='1' MaxTargetSize='1' TimeInterval='1' TriggerDirection1='" +
            std::string(szNumber) + "'/>";
        MultiTripWireRegionParam before;
        before.setTriggerDirection1(77);
        before.setTriggerDirection2(88);
        return readFrom(strText.c_str(), before);
    };
    EXPECT_EQ(record("2.7").getTriggerDirection1(), 2);
    EXPECT_EQ(record("-2.7").getTriggerDirection1(), -2);
    EXPECT_EQ(record("nothing").getTriggerDirection1(), 77);
    EXPECT_EQ(record("1e30").getTriggerDirection1(), -2147483647 - 1);
    EXPECT_EQ(record("nan").getTriggerDirection1(), -2147483647 - 1);
    EXPECT_EQ(record("1").getTriggerDirection2(), 88);
}

TEST(GoldenText, PTZOperationTracesWhatItDoes) {
    EtPTZOperation record;
    record.setPTZId(4);
    std::string strText;
    EXPECT_EQ(captureOutput([&] { strText = textOf(record); }),
              "setProperty get nCameraID =1  \nsetProperty get nPTZId =4  \n");
    EXPECT_EQ(strText, "<R CameraId=\"1\" PTZId=\"4\" PTZOperation=\"\" Name=\"\" />\n");

    const std::string strPrinted = captureOutput(
        [&] { record = readFrom<EtPTZOperation>("<R PTZId='9' PTZOperation='Up'/>"); });
    const char* szTrace =
        "EtPTZOperationOddXml\\.cpp[0-9]+ ###########   EtPTZOperationXml    ########### \n";
    EXPECT_THAT(strPrinted, testing::MatchesRegex(std::string(szTrace) + szTrace +
                                                  "getProperty get CameraId failed \n"
                                                  "getProperty get Name failed \n"
                                                  "getProperty get nCameraID =1  \n"
                                                  "getProperty get nPTZId =9  \n"));
    EXPECT_EQ(record.getPTZOperation(), "Up");
}

TEST(GoldenText, IntelligentEventMapsNothingThroughTheInterface) {
    TypedXml<IntelligentEvent> mapper;
    IntelligentEvent event;
    const auto node = wrapSafe(std::make_unique<DomainXmlNode>(std::string("R")));
    EXPECT_FALSE(mapper.createDomainXmlNode(event, node));
    EXPECT_FALSE(mapper.parseDomainXmlNode(node, event));
    EXPECT_FALSE(mapper.createDomainXmlNode(BaseDomain(), node));
    EXPECT_TRUE(TypedXml<IntelligentEvent>::createSingle(event, node));
    EXPECT_TRUE(TypedXml<IntelligentEvent>::parseSingle(node, event));
}

TEST(GoldenText, TheDirectFormsAskForANode) {
    const SafePointer<DomainXmlNode> none;
    const auto empty = wrapSafe(std::make_unique<DomainXmlNode>());
    NTPParam record;
    std::vector<NTPParam> vecRecords = {record};
    for (const SafePointer<DomainXmlNode>* pNode : {&none, &empty}) {
        EXPECT_FALSE(TypedXml<NTPParam>::createSingle(record, *pNode));
        EXPECT_FALSE(TypedXml<NTPParam>::parseSingle(*pNode, record));
        EXPECT_FALSE(TypedXml<NTPParam>::createList(vecRecords, *pNode));
        EXPECT_FALSE(TypedXml<NTPParam>::parseList(*pNode, vecRecords));
        EXPECT_FALSE(createDomainXml(206)->createDomainXmlNode(record, *pNode));
        EXPECT_FALSE(createDomainXml(206)->parseDomainXmlNode(*pNode, record));
    }
    EXPECT_EQ(vecRecords.size(), 1U);
}

TEST(GoldenText, AnyRecordThroughTheFreeFunctions) {
    SafePointer<DomainXmlNode> node;
    std::string strTag;
    const SafePointer<BaseDomain> none;
    EXPECT_FALSE(createDomainXmlNode("T", none, node));
    const auto buffer = wrapSafe<BaseDomain>(std::make_unique<UpdateSoftware>());
    ASSERT_TRUE(createDomainXmlNode("T", buffer, node));
    EXPECT_TRUE(parseDomainXmlNode(node, strTag, buffer));
    EXPECT_EQ(strTag, "T");
    EXPECT_FALSE(parseDomainXmlNode(node, strTag, none));
    // A type without a row has no mapper.
    const auto nested = wrapSafe<BaseDomain>(std::make_unique<PolygonArea>());
    EXPECT_FALSE(createDomainXmlNode("T", nested, node));
    EXPECT_FALSE(parseDomainXmlNode(node, strTag, nested));
}

}  // namespace
