// The XML form of a body.
#include <gtest/gtest.h>

#include "Product/Technic/KXRuntimeError.h"
#include "domain/ChannelId.h"
#include "domain/DomainVectorContainer.h"
#include "domain/EtResult.h"
#include "domain/NTPParam.h"
#include "protocol/SDKNormalXmlBodyParser.h"
#include "support/WireBytes.h"

using namespace std::string_literals;

namespace {

const std::string Declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n";

NTPParam ntpParam() {
    NTPParam param;
    param.setNTPEnableFlag(true);
    param.setNTPIp("10.0.0.5");
    param.setNTPPort(123);
    param.setNTPRunTime(60);
    return param;
}

const std::string NtpElement =
    "<NTPParam NTPEnableFlag=\"true\" NTPIp=\"10.0.0.5\" NTPPort=\"123\" NTPRunTime=\"60\" "
    "IPProtoVer=\"0\" />";

EtResult resultOf(int nCode) {
    EtResult result;
    result.setCode(nCode);
    return result;
}

std::string written(const Records& records) {
    CommandBuffer buffer;
    EXPECT_TRUE(SDKNormalXmlBodyParser().createCommandBody(records, buffer));
    EXPECT_EQ(buffer.getCapacity(), buffer.getLength() + 1);
    return bytesOf(buffer);
}

bool parse(const std::string& strBody, Records& records) {
    return SDKNormalXmlBodyParser().parseCommandBody(payloadOf(strBody), records);
}

// The ids of the records in a body that decodes.
std::vector<std::uint32_t> idsIn(const std::string& strBody) {
    Records records;
    EXPECT_TRUE(parse(strBody, records)) << strBody;
    std::vector<std::uint32_t> vecIds;
    for (const auto& record : records) {
        vecIds.push_back(record->getDomainId());
    }
    return vecIds;
}

using Ids = std::vector<std::uint32_t>;

std::string repeated(const std::string& strText, std::size_t nTimes) {
    std::string strAll;
    for (std::size_t i = 0; i < nTimes; ++i) {
        strAll += strText;
    }
    return strAll;
}

TEST(XmlBodyTest, ACommandWithoutRecordsIsAnElementWithoutChildren) {
    EXPECT_EQ(written({}), Declaration + "<Parameters Version=\"1\" />\n");
}

TEST(XmlBodyTest, RecordsAreWrittenInTheirOrder) {
    EXPECT_EQ(written(recordsOf(resultOf(0), ntpParam())),
              Declaration + "<Parameters Version=\"1\">\n\t<Result Code=\"0\" />\n\t" + NtpElement +
                  "\n</Parameters>\n");
}

TEST(XmlBodyTest, AListIsAnElementOneLevelDeeper) {
    DomainVectorContainer<NTPParam> list;
    list.append(ntpParam());
    list.append(ntpParam());
    const std::string strBody = Declaration + "<Parameters Version=\"1\">\n\t<NTPParamList>\n\t\t" +
                                NtpElement + "\n\t\t" + NtpElement +
                                "\n\t</NTPParamList>\n</Parameters>\n";
    EXPECT_EQ(written(recordsOf(list)), strBody);

    Records records;
    ASSERT_TRUE(parse(strBody, records));
    ASSERT_EQ(records.size(), 1U);
    ASSERT_EQ(records[0]->getDomainId(), 99999U);
    const auto& read = recordAt<DomainVectorContainer<NTPParam>>(records, 0);
    ASSERT_EQ(read.getDomainElementId(), 206U);
    EXPECT_EQ(read.getElements(), list.getElements());
}

TEST(XmlBodyTest, RecordsWithoutANameAreLeftOut) {
    struct Nameless : BaseDomain {
        Nameless() : BaseDomain(7) {}
    };
    Records records = recordsOf(resultOf(3));
    records.push_back(wrapSafe<BaseDomain>(std::make_unique<Nameless>()));
    EXPECT_EQ(written(records), written(recordsOf(resultOf(3))));
}

TEST(XmlBodyTest, AnEmptyPointerAmongTheRecordsIsTheCallersError) {
    Records records(1);
    CommandBuffer buffer;
    EXPECT_THROW(SDKNormalXmlBodyParser().createCommandBody(records, buffer), KXRuntimeError);
}

TEST(XmlBodyTest, RecordsAreReadInTheirOrder) {
    Records records;
    ASSERT_TRUE(parse(written(recordsOf(resultOf(-7), ntpParam())), records));
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(recordAt<EtResult>(records, 0).getCode(), -7);
    EXPECT_EQ(recordAt<NTPParam>(records, 1), ntpParam());
}

TEST(XmlBodyTest, TheFirstElementMayHaveAnyNameAndNoDeclaration) {
    EXPECT_EQ(idsIn("<Anything><Result Code=\"1\"/></Anything>"), Ids{801});
    EXPECT_EQ(idsIn("\xEF\xBB\xBF<!-- note --><P Version=\"9\"><Result/></P>"), Ids{801});
    EXPECT_EQ(idsIn("<Parameters/>"), Ids{});
}

TEST(XmlBodyTest, UnknownRecordsArePassedOver) {
    EXPECT_EQ(idsIn("<P><Unknown A=\"1\"/><result/><Result/><UnknownList/>text<NTPParam/></P>"),
              (Ids{801, 206}));
}

TEST(XmlBodyTest, AZeroByteEndsTheBody) {
    EXPECT_EQ(idsIn("<P><Result/></P>\0<Broken"s), Ids{801});
    Records records;
    EXPECT_FALSE(parse("<P><Result/>\0</P>"s, records));
}

TEST(XmlBodyTest, WhatIsNotADocumentWithAnElementIsRefused) {
    const std::string cases[] = {
        "",
        " ",
        "no xml at all",
        Declaration,
        "<!-- only a comment -->",
        "<P><Result></P>",
        "<P><Result/>",
        "<P><Result Code=\"1/></P>",
        "<!DOCTYPE P [<!ELEMENT P ANY>]><P><Result/></P>",
        repeated("<P>", 1001) + repeated("</P>", 1001),
        repeated("<P>", 100000),
        "<P><Result" + repeated(" a=\"1\"", 513) + "/></P>",
    };
    for (const std::string& strBody : cases) {
        Records records;
        EXPECT_FALSE(parse(strBody, records)) << strBody.substr(0, 60);
        EXPECT_TRUE(records.empty()) << strBody.substr(0, 60);
    }
}

TEST(XmlBodyTest, EveryCutOfABodyIsRefused) {
    const std::string strBody = written(recordsOf(resultOf(0), ntpParam()));
    const std::size_t nLastBracket = strBody.rfind('>');
    for (std::size_t nSize = 0; nSize <= nLastBracket; ++nSize) {
        Records records;
        EXPECT_FALSE(parse(strBody.substr(0, nSize), records)) << nSize << " bytes";
    }
}

TEST(XmlBodyTest, APayloadThatNoZeroByteEndsIsRefused) {
    Records records;
    EXPECT_FALSE(SDKNormalXmlBodyParser().parseCommandBody(bufferOf("<P><Result/></P>"), records));
    EXPECT_FALSE(SDKNormalXmlBodyParser().parseCommandBody(CommandBuffer(), records));
}

TEST(XmlBodyTest, ARecordThatItsMapperRefusesFailsTheWholeBody) {
    Records records;
    EXPECT_FALSE(parse("<P><Result/><OperateLayoutVDRect StreamId=\"1\"/><Result/></P>", records));
}

TEST(XmlBodyTest, MoreRecordsThanPointersFailTheBodyAndAreFreed) {
    Records records;
    EXPECT_FALSE(parse("<P>" + repeated("<Result/>", 20100) + "</P>", records));
    records.clear();
    EXPECT_TRUE(parse("<P>" + repeated("<Result/>", 20000) + "</P>", records));
    EXPECT_EQ(records.size(), 20000U);
}

// Knows one record of its own, and is asked for every child.
class SpecialBodyParser : public SDKNormalXmlBodyParser {
public:
    bool createSpecialDomain(const std::string& tag, SafePointer<BaseDomain>& out) const override {
        m_vecAsked.push_back(tag);
        if (tag != "Special") {
            return false;
        }
        out = wrapSafe<BaseDomain>(std::make_unique<ChannelId>());
        return true;
    }
    mutable std::vector<std::string> m_vecAsked;
};

TEST(XmlBodyTest, ADerivedParserMakesRecordsOfItsOwn) {
    const SpecialBodyParser parser;
    Records records;
    ASSERT_TRUE(parser.parseCommandBody(
        payloadOf("<P><Result Code=\"4\"/><Special Id=\"8\"/><None/></P>"), records));
    EXPECT_EQ(parser.m_vecAsked, (std::vector<std::string>{"Result", "Special", "None"}));
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(recordAt<EtResult>(records, 0).getCode(), 4);
    EXPECT_EQ(recordAt<ChannelId>(records, 1).getId(), 8);
}

}  // namespace
