// Records as JSON and back, for every record there is, and the texts of the output.
#include <fleetkit/domain/NTPParam.h>
#include <gtest/gtest.h>

#include "Output.h"
#include "RecordJson.h"
#include "VisibleText.h"
#include "support/RecordFiller.h"
#include "support/RecordLists.h"

using namespace fleetkit;

TEST(RecordJson, EveryRecordComesBackAsItWas) {
    for (const RecordDescriptor* pDescriptor : allRecords()) {
        SCOPED_TRACE(pDescriptor->szClass);
        const Shape shape{false, pDescriptor, FieldKind::Record};
        const auto pFirst = pDescriptor->access.make();
        const auto pSecond = pDescriptor->access.make();
        RecordFiller().fill(*pDescriptor, pFirst.get());
        const Json json = toJson(shape, pFirst.get());
        ASSERT_NO_THROW(checkJson(json, shape, "record"));
        fromJson(json, shape, pSecond.get());
        EXPECT_TRUE(equalRecords(*pDescriptor, pFirst.get(), pSecond.get())) << json;
        EXPECT_EQ(toJson(shape, pSecond.get()), json);
    }
    const float fTenth = 0.1F;
    const OptionalBlock block{{0, 255, 128, 1}};
    EXPECT_EQ(toJson({false, nullptr, FieldKind::Float}, &fTenth), 0.1);
    EXPECT_EQ(toJson({false, nullptr, FieldKind::Block}, &block), "AP+AAQ==");
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
