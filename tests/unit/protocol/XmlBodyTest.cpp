// The XML form of a body.
#include <gtest/gtest.h>

#include <optional>

#include "Product/Technic/KXRuntimeError.h"
#include "Product/Technic/LogThreshold.h"
#include "domain/User.h"
#include "domain/UserParam.h"
#include "protocol/SDKCommandParser.h"
#include "protocol/SDKNormalXmlBodyParser.h"
#include "protocol/SecretMask.h"
#include "support/CapturedOutput.h"
#include "support/RecordLists.h"
#include "support/WireCommands.h"

using namespace fleetkit;
using namespace std::string_literals;

namespace {

using Ids = std::vector<std::uint32_t>;

const std::string Declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n";

std::string written(const Records& records) {
    CommandBuffer buffer;
    EXPECT_TRUE(SDKNormalXmlBodyParser().createCommandBody(records, buffer));
    EXPECT_EQ(buffer.getCapacity(), buffer.getLength() + 1);
    return bytesOf(buffer);
}

bool parse(const std::string& strBody, Records& records) {
    return SDKNormalXmlBodyParser().parseCommandBody(payloadOf(strBody), records);
}

TEST(XmlBodyTest, RecordsAreChildrenInTheirOrderAndListsOneLevelDeeper) {
    EXPECT_EQ(written({}), Declaration + "<Parameters Version=\"1\" />\n");
    const auto list = listOf<ChannelId>({ChannelId(), with(&ChannelId::setId, 4)});
    const std::string strBody = Declaration +
                                "<Parameters Version=\"1\">\n"
                                "\t<Result Code=\"-7\" />\n"
                                "\t<ChannelIdList>\n"
                                "\t\t<ChannelId Id=\"0\" />\n"
                                "\t\t<ChannelId Id=\"4\" />\n"
                                "\t</ChannelIdList>\n"
                                "</Parameters>\n";
    EXPECT_EQ(written(recordsOf(resultOf(-7), list)), strBody);

    Records records;
    ASSERT_TRUE(parse(strBody, records));
    EXPECT_EQ(written(records), strBody);
}

TEST(XmlBodyTest, RecordsWithoutANameAreLeftOutAndAnEmptyPointerIsTheCallersError) {
    struct Nameless : BaseDomain {
        Nameless() : BaseDomain(7) {}
    };
    EXPECT_EQ(written({wrapSafe<BaseDomain>(std::make_unique<Nameless>())}), written({}));
    CommandBuffer buffer;
    EXPECT_THROW(SDKNormalXmlBodyParser().createCommandBody(Records(1), buffer), KXRuntimeError);
}

TEST(XmlBodyTest, IsReadAsFarAsItsElementsAreKnownAndRefusedAsAWhole) {
    const std::pair<std::string, std::optional<Ids>> cases[] = {
        {"<Anything><Result Code=\"1\"/></Anything>", Ids{801}},
        {"\xEF\xBB\xBF<!-- note --><P Version=\"9\"><Result/></P>", Ids{801}},
        {"<Parameters/>", Ids{}},
        {"<P><Unknown A=\"1\"/><result/><Result/><UnknownList/>text<NTPParam/></P>", Ids{801, 206}},
        {"<P><Result/></P>\0<Broken"s, Ids{801}},  // a zero byte ends the body
        {"<P><Result/>\0</P>"s, std::nullopt},
        {"", std::nullopt},
        {"<P><Result/><OperateLayoutVDRect StreamId=\"1\"/></P>", std::nullopt},  // by its mapper
        {"<P>" + repeated("<Result/>", 1024) + "</P>", Ids(1024, 801)},
        {"<P>" + repeated("<Unknown/>", 1025) + "</P>", std::nullopt},
    };
    for (const auto& [strBody, vecIds] : cases) {
        SCOPED_TRACE(strBody.substr(0, 60));
        Records records;
        EXPECT_EQ(parse(strBody, records), vecIds.has_value());
        EXPECT_EQ(idsOf(records), vecIds.value_or(idsOf(records)));
    }
    Records records;
    EXPECT_FALSE(SDKNormalXmlBodyParser().parseCommandBody(CommandBuffer(), records));
    EXPECT_FALSE(SDKNormalXmlBodyParser().parseCommandBody(bufferOf("<P/>"), records))
        << "no zero byte ends it";
}

TEST(XmlBodyTest, ShowsTheLogNoCredentials) {
    setLogFilter(LogLevel::Trace);
    const std::string strLogged = captureOutput([] {
        const auto request = sdkCommand(headOf(11001), recordsOf(sample<UserParam>(), User()));
        decoded(SDKCommandParser(), bufferOf(encoded(SDKCommandParser(), request)));
    });
    setLogFilter(0);
    EXPECT_NE(strLogged.find("<UserParam UserName='***' Password='***' Desc=' v"),
              std::string::npos)
        << strLogged;
    const std::pair<std::string, std::string> cases[] = {
        {"<User IP=\"1\" Password='x' /><ChangePasswordReq NewPassword=\"y\"",
         "<User IP=\"1\" Password='***' /><ChangePasswordReq NewPassword=\"***\""},
        {"<User Password=\"secret", "<User Password=\"***"},
        {"<User Password=", "<User Password="},
        {"<UserX Password=\"kept\"/><User >Password=\"kept\"", ""},
    };
    for (const auto& [strBody, strShown] : cases) {
        EXPECT_EQ(withoutSecrets(strBody), strShown.empty() ? strBody : strShown);
    }
}

// A list of empty entries, of the type that such an entry makes most of.
std::string listWith(std::size_t nEntries, std::size_t (*weigh)(const RecordDescriptor&)) {
    std::vector<const RecordDescriptor*> vecLists = namedRecords();
    std::erase_if(vecLists, [](const auto* pType) { return pType->szList == nullptr; });
    const auto* pHeaviest = *std::ranges::max_element(
        vecLists, {}, [weigh](const RecordDescriptor* pType) { return weigh(*pType); });
    const std::string strList = pHeaviest->szList;
    return "<P><" + strList + ">" + repeated("<A/>", nEntries) + "</" + strList + "></P>";
}

TEST(XmlBodyTest, TakesMemoryForItsRecordsInProportionToItsLength) {
    const auto sizeOf = [](const RecordDescriptor& type) { return type.access.nSize; };
    for (const std::size_t nEntries : {10000U, 260000U}) {
        Records records;
        captureOutput(
            [&] { EXPECT_EQ(parse(listWith(nEntries, sizeOf), records), nEntries == 10000U); });
    }
}

TEST(XmlBodyTest, PrintsAThousandLinesAtMost) {
    const auto linesOf = [](const RecordDescriptor& type) {
        return type.usesLog ? 0
                            : static_cast<std::size_t>(
                                  std::ranges::count_if(type, [](const FieldDescriptor& field) {
                                      return field.nPresence == Presence::Logged;
                                  }));
    };
    const std::string strPrinted = captureOutput([&] {
        Records records;
        EXPECT_TRUE(parse(listWith(5000, linesOf), records));
    });
    EXPECT_EQ(std::ranges::count(strPrinted, '\n'), 1001);
    EXPECT_NE(strPrinted.find(" more lines about this message are left out\n"), std::string::npos);
}

// Has a meaning of its own for one name.
class SpecialBodyParser : public SDKNormalXmlBodyParser {
public:
    bool createSpecialDomain(const std::string& tag, SafePointer<BaseDomain>& out) const override {
        if (tag == "Result") {
            out = wrapSafe<BaseDomain>(std::make_unique<ChannelId>());
        }
        return tag == "Result";
    }
};

TEST(XmlBodyTest, ADerivedParserMakesRecordsOfItsOwn) {
    Records records;
    ASSERT_TRUE(SpecialBodyParser().parseCommandBody(
        payloadOf("<P><NTPParam/><Result Id=\"8\"/><None/></P>"), records));
    ASSERT_EQ(idsOf(records), (Ids{206, ChannelId::DomainId}));
    EXPECT_EQ(findRecord<ChannelId>(records)->getId(), 8);
}

}  // namespace
