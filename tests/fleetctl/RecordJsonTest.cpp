// Records as JSON and back, for every record there is, and what is refused on the way.
#include <fleetkit/domain/NTPParam.h>
#include <fleetkit/domain/OSDUserParam.h>
#include <gtest/gtest.h>

#include "FieldAssignment.h"
#include "Output.h"
#include "RecordJson.h"
#include "UsageError.h"
#include "VisibleText.h"

using namespace fleetkit;

namespace {

// JSON of a shape with nothing at its default.
Json sampleOf(const Shape& shape) {
    if (shape.isList) {
        return Json::array({sampleOf(shape.element()), sampleOf(shape.element())});
    }
    if (shape.pRecord != nullptr) {
        Json json = Json::object();
        forEachField(*shape.pRecord, [&](const FieldDescriptor& field) {
            json[field.szTag] = sampleOf(shapeOf(field));
        });
        return json;
    }
    switch (shape.nScalar) {
        case FieldKind::Bool:
            return true;
        case FieldKind::UnsignedShort:
            return 65535;
        case FieldKind::Float:
            return 0.1;
        case FieldKind::Double:
            return 1.0 / 3;
        case FieldKind::String:
            return "text \xff";
        case FieldKind::Block:
            return "AP/+AQ==";
        case FieldKind::Int:
            return -2147483647 - 1;
        case FieldKind::Record:
        case FieldKind::RecordList:
        case FieldKind::IntList:
        case FieldKind::StringList:
        case FieldKind::Element:
        case FieldKind::ElementList:
        case FieldKind::JoinedInts:
        case FieldKind::JoinedRecords:
            break;
    }
    ADD_FAILURE() << "a scalar of no scalar kind";
    return nullptr;
}

Shape shapeOfOSD() {
    return {false, &OSDUserParam::descriptor(), FieldKind::Record};
}

// The JSON of a fresh record after these assignments.
Json assigned(const std::vector<std::string>& vecTexts) {
    OSDUserParam osd;
    Json json = toJson(shapeOfOSD(), &osd);
    for (const std::string& strText : vecTexts) {
        assign(parseAssignment(strText, shapeOfOSD(), "osd"), shapeOfOSD(), "osd", json);
    }
    fromJson(json, shapeOfOSD(), &osd);
    return toJson(shapeOfOSD(), &osd);
}

std::string refusalOf(const std::string& strText) {
    try {
        assigned({strText});
    } catch (const UsageError& error) {
        return error.what();
    }
    return "";
}

}  // namespace

TEST(RecordJson, EveryRecordComesBackAsItWas) {
    std::size_t nRecords = 0;
    for (const RecordDescriptor* pDescriptor : recordDescriptors()) {
        if (pDescriptor->isElement) {
            continue;  // made inside of records only
        }
        SCOPED_TRACE(pDescriptor->szClass);
        ++nRecords;
        const Shape shape{false, pDescriptor, FieldKind::Record};
        const Json json = sampleOf(shape);
        const auto pFirst = pDescriptor->access.make();
        const auto pSecond = pDescriptor->access.make();
        ASSERT_NO_THROW(checkJson(json, shape, "record"));
        fromJson(json, shape, pFirst.get());
        EXPECT_EQ(toJson(shape, pFirst.get()), json);
        EXPECT_EQ(equalRecords(*pDescriptor, pFirst.get(), pSecond.get()), json.empty());
        fromJson(toJson(shape, pFirst.get()), shape, pSecond.get());
        EXPECT_TRUE(equalRecords(*pDescriptor, pFirst.get(), pSecond.get()));
    }
    EXPECT_GT(nRecords, 0U);
}

TEST(RecordJson, AbsentFieldsKeepTheirValue) {
    NTPParam ntp;
    ntp.setNTPIp("192.0.2.1");
    fromJson({{"NTPPort", 123}}, {false, &NTPParam::descriptor(), FieldKind::Record}, &ntp);
    EXPECT_EQ(ntp.getNTPIp(), "192.0.2.1");
    EXPECT_EQ(ntp.getNTPPort(), 123);
}

TEST(FieldAssignment, ReachesNestedFieldsAndAppendsToLists) {
    const Json json = assigned(
        {"CameraId=3", "OSDGlobalParam.InverseFlag=true", "CanvasProperList.0.AlignMode=1",
         R"(CanvasProperList.0={"AreaID":2})", "CanvasProperList.0.OSDInfoList.0.Info=a=b.c",
         R"(CanvasProperList.1.AreaParam={"TopX":9})"});
    EXPECT_EQ(json["CameraId"], 3);
    EXPECT_EQ(json["OSDGlobalParam"]["InverseFlag"], true);
    EXPECT_EQ(json["CanvasProperList"].size(), 2U);
    EXPECT_EQ(json["CanvasProperList"][0]["AlignMode"], 1);
    EXPECT_EQ(json["CanvasProperList"][0]["AreaID"], 2);
    EXPECT_EQ(json["CanvasProperList"][0]["OSDInfoList"][0]["Info"], "a=b.c");
    EXPECT_EQ(json["CanvasProperList"][1]["AreaParam"]["TopX"], 9);
    EXPECT_EQ(assigned({"CanvasProperList.0.AreaID=1", "CanvasProperList=[]"}), assigned({}));
}

TEST(FieldAssignment, RefusesWhatCannotBeMeant) {
    const std::pair<const char*, const char*> refusals[] = {
        {"CameraId", "not of the form FIELD=VALUE"},
        {"CameraId=", "a whole number"},
        {"CameraId=1.5", "a whole number"},
        {"CameraId=2147483648", "a whole number"},
        {"CameraId=-2147483649", "a whole number"},
        {"CameraId=99999999999999999999", "a whole number"},
        {"CameraId=one", "a whole number"},
        {"CameraId.x=1", "has no fields"},
        {"cameraId=1", "osd has no field 'cameraId'; did you mean 'CameraId'?"},
        {"Kamera=1", "the fields are: CameraId OSDGlobalParam CanvasProperList"},
        {"OSDGlobalParam.InverseFlag=1", "true or false"},
        {"OSDGlobalParam=1", "an object in JSON"},
        {R"(OSDGlobalParam={"Inverse":true})", "osd.OSDGlobalParam has no field 'Inverse'"},
        {R"(OSDGlobalParam={"InverseFlag":"x"})", "osd.OSDGlobalParam.InverseFlag takes true"},
        {"CanvasProperList={}", "a list in JSON"},
        {R"(CanvasProperList=[{"AreaID":null}])", "osd.CanvasProperList.0.AreaID takes"},
        {R"(CanvasProperList=[{"OSDInfoList":[{"Info":"a\u0000b"}]}])",
         "osd.CanvasProperList.0.OSDInfoList.0.Info cannot hold the character U+0000"},
        {"CanvasProperList.x.AreaID=1", "number of an element"},
        {"CanvasProperList.1.AreaID=1", "it has 0"},
        {"CanvasProperList.99999999999999999999.AreaID=1", "it has 0"},
    };
    for (const auto& [szText, szReason] : refusals) {
        EXPECT_NE(refusalOf(szText).find(szReason), std::string::npos)
            << szText << " gave: " << refusalOf(szText);
    }
    EXPECT_NE(refusalOf("=" + std::string(60000, '[')).find("at most 64 levels"),
              std::string::npos);
}

TEST(VisibleText, ShowsWhatIsNoCharacterAndWhatSteersTheTerminal) {
    const struct {
        std::string strText;
        std::string strShown;
        std::string strJson;
    } Cases[] = {
        {"Gr\u00FC\u00DFe \u65E5 \U0001F600 \\", "Gr\u00FC\u00DFe \u65E5 \U0001F600 \\",
         "\"Gr\u00FC\u00DFe \u65E5 \U0001F600 \\\\\""},
        {"caf\xE9 bar", R"(caf\xE9 bar)", R"("caf\\xE9 bar")"},
        {"\xC0\xAF\xED\xA0\x80\xF4\x90\x80\x80\xE2\x82",
         R"(\xC0\xAF\xED\xA0\x80\xF4\x90\x80\x80\xE2\x82)",
         R"("\\xC0\\xAF\\xED\\xA0\\x80\\xF4\\x90\\x80\\x80\\xE2\\x82")"},
        {"\x1B\x7F\u009B\u202E\u2066", R"(\u001B\u007F\u009B\u202E\u2066)",
         R"("\u001b\u007F\u009B\u202E\u2066")"},
    };
    for (const auto& one : Cases) {
        EXPECT_EQ(visibleText(one.strText), one.strShown);
        EXPECT_EQ(jsonText(one.strText), one.strJson);
    }
    EXPECT_EQ(Json::parse(jsonText({{"list", {"\u009B", "\xE9"}}})),
              (Json{{"list", {"\u009B", "\\xE9"}}}));
}

TEST(Output, KeepsTablesToTheirWidth) {
    EXPECT_EQ(formatTable({{"a", "one two three four five six"}, {"bcd", "x"}}, 2, 28),
              "  a    one two three four\n       five six\n  bcd  x\n");
    EXPECT_EQ(formatTable({{"a", "0123456789012345678901\u00FC"}}, 0, 23),
              "a  01234567890123456789\n   01\u00FC\n");
    const TableRows vecFields = {
        {"FIELD", "TYPE", "NOTE"}, {"Name", "text", ""}, {"Id", "int", "n"}};
    EXPECT_EQ(formatHeadedTable(vecFields, 0, 17),
              "FIELD  TYPE  NOTE\nName   text\nId     int   n\n");
    EXPECT_EQ(formatHeadedTable(vecFields, 0, 16),
              "FIELD  Name\nTYPE   text\n\nFIELD  Id\nTYPE   int\nNOTE   n\n");
}

TEST(FieldAssignment, NamesTheFieldsThatAreMissing) {
    const Shape shape{false, &NTPParam::descriptor(), FieldKind::Record};
    const std::vector<FieldAssignment> vecSome = {
        parseAssignment("NTPPort=1", shape, "ntp"),
        parseAssignment(R"(={"NTPIp":"a","NTPEnableFlag":true})", shape, "ntp")};
    try {
        requireEveryField(vecSome, NTPParam::descriptor(), "ntp");
        FAIL() << "accepted";
    } catch (const UsageError& error) {
        EXPECT_STREQ(error.what(),
                     "ntp cannot be read, so every field has to be given; missing: NTPRunTime "
                     "IPProtoVer");
    }
}
