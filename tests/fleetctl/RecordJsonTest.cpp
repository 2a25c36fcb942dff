// Records as JSON and back, for every record there is, and the texts of the output.
#include <fleetkit/domain/NTPParam.h>
#include <gtest/gtest.h>

#include <map>

#include "Output.h"
#include "RecordJson.h"
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
    static const std::map<FieldKind, Json> Samples = {
        {FieldKind::Bool, true},           {FieldKind::UnsignedShort, 65535},
        {FieldKind::Int, -2147483647 - 1}, {FieldKind::Float, 0.1},
        {FieldKind::Double, 1.0 / 3},      {FieldKind::String, "text \xff"},
        {FieldKind::Block, "AP/+AQ=="},
    };
    return Samples.at(shape.nScalar);
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
