// Texts from outside: whatever comes, the answer is a tree or a clean refusal.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "domain/RecordDescriptor.h"
#include "domainxml/DomainXmlNode.h"
#include "support/WireBytes.h"

using namespace fleetkit;

namespace {

constexpr const char* Declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";

bool parses(const std::string& strText) {
    return static_cast<bool>(XmlDocument::parse(strText.c_str()).root());
}

std::string nested(std::size_t nLevels, const std::string& strInside = "") {
    return repeated("<x>", nLevels) + strInside + repeated("</x>", nLevels);
}

std::string attributes(int nCount) {
    std::string strText;
    for (int i = 0; i < nCount; ++i) {
        strText += " a" + std::to_string(i) + "='=<>'";
    }
    return strText;
}

// How many levels of elements a record takes in a text.
int levelsOf(const RecordDescriptor& descriptor) {
    int nLevels = 1;
    for (const FieldDescriptor& field : descriptor) {
        const int nItems = field.nKind == FieldKind::Block ? 0 : 2;
        nLevels = std::max(nLevels, nItems + (field.nested ? levelsOf(field.nested()) : 0));
    }
    return nLevels;
}

// Each text that the parser always took, beside one of its kind that is no document.
TEST(XmlDocument, TakesDocumentsAndRefusesTheRest) {
    const std::pair<const char*, const char*> Texts[] = {
        {"<a/>", "< a/>"},
        {" \n<a/>", " "},
        {"<a/>trailing", "text"},
        {"<a/></b>", "<a></b>"},
        {"<a/><b/>", "<a><b></a>"},
        {"</x><a/>", "</a>"},
        {"<a b=c/>", "<a b=>"},
        {"<a b=c=d />", "<a b=c'd'/>"},
        {"<a b='>'/>", "<a b>"},
        {"<a b=\"/>\"/>", "<a b=\"x'/>"},
        {"<a b='\"'/>", "<a b='1' b='2'/>"},
        {"<a\tb\n=\r'c'/>", "<a 1='2'/>"},
        {"<_a.b-c:d/>", "<1/>"},
        {"<\xC3\xA4/>", "\xEF\xBB\xBF"},
        {"<a><!-- <b> --></a>", "<!-- only -->"},
        {"<a><![CDATA[<b>]]></a>", "<![CDATA[<a/>]]>"},
        {"<a>text &amp; &unknown; &#65;</a>", "<a>&#1</a>"},
        {"<a b=\"&#x41;\"/>", "<a b=\"&#x\"/>"},
        {"<a b=\"&#65;\"/>", "<a b=\"&#;\"/>"},
        {"<a b=\"&#xfF;\"/>", "<a b=\"&#xg;\"/>"},
        {"<a><?pi?></a>", "<?xml version=\"1.0\"?>"},
        {"<?xml foo=\"1\"?><a/>", "<?xml version><a/>"},
        {"<?XML version='1.0'?><a/>", "<?xml version='1.0?><a/>"},
        {"<!DOCTYPE a><a/>", "<!DOCTYPE a>"},
        {"<!DOCTYPE a SYSTEM \"b\"><a/>", "<!DOCTYPE a [ <!ENTITY b \"c\"> ]><a/>"}};
    for (const auto& [szGood, szBad] : Texts) {
        EXPECT_TRUE(parses(szGood)) << szGood;
        EXPECT_FALSE(parses(szBad)) << szBad;
    }
}

TEST(XmlDocument, ATextCutAnywhereIsRefusedOrAsFarAsItGoesRight) {
    const std::string strText = std::string(Declaration) +
                                "<!-- c --><P>\n\t<A b=\"&lt;&#x41;\xE2\x82\xAC\" c='d'/>"
                                "<![CDATA[ ]]>\xC3\xA4 &amp;&#65; </P>";
    for (std::size_t i = 0; i < strText.size(); ++i) {
        EXPECT_FALSE(parses(strText.substr(0, i))) << i;
    }
    EXPECT_TRUE(parses(strText));
}

TEST(XmlDocument, ANulEndsTheText) {
    SafePointer<DomainXmlNode> node;
    EXPECT_FALSE(fromXmlString(std::string("<a b=\"x\0y\"/>", 13), node));
    EXPECT_FALSE(fromXmlString(std::string("\0<a/>", 5), node));
    EXPECT_TRUE(node.isNull());
    EXPECT_TRUE(fromXmlString(std::string("<a/>\0<", 6), node));
}

TEST(XmlDocument, BoundsNestingAttributesAndNodes) {
    const auto inA = [](const std::string& strNode, std::size_t nTimes) {
        return "<a>" + repeated(strNode, nTimes) + "</a>";
    };
    const std::string strMany = "<b" + attributes(511) + "/>";
    std::vector<std::pair<std::string, std::string>> vecTexts = {
        {nested(64), nested(65)},
        {nested(63, "<x/>"), nested(64, "<x/>")},
        {"<a" + attributes(512) + "/>", "<a" + attributes(513) + "/>"},
        {"<a" + attributes(512) + "><b" + attributes(512) + "/></a>",
         "<a" + attributes(513) + "></a>"},
        {inA(strMany, 511), inA(strMany, 512)}};
    for (const std::string strNode : {"<x/>", "<x></x>", "<!---->", "<?>", "<![CDATA[]]>"}) {
        vecTexts.emplace_back(inA(strNode, 262143), inA(strNode, 262144));
    }
    for (const auto& [strGood, strBad] : vecTexts) {
        EXPECT_TRUE(parses(strGood)) << strGood.substr(0, 60);
        EXPECT_FALSE(parses(strBad)) << strBad.substr(0, 60);
    }
    for (const RecordDescriptor* pDescriptor : recordDescriptors()) {
        EXPECT_LT(levelsOf(*pDescriptor), 32) << pDescriptor->szClass;
    }
}

// Texts that would hide their depth from whoever reads quotes, comments, references and characters
// in another way than the parser.
TEST(XmlDocument, DepthCannotBeHidden) {
    const std::string strDeep = repeated("<x>", 200000);
    const std::string strHead = Declaration;
    for (const std::string& strText :
         {"<?xml version='>\" <!-- '?><a>" + strDeep,
          "<?xml encoding=\"><![CDATA[\"?><a>" + strDeep,
          repeated("</x>", 200000) + "<a>" + strDeep,
          "<a/>" + repeated("</x>", 9) + "<a>" + strDeep, strHead + "<a b=\"\xC3\" c=\">" + strDeep,
          strHead + "<a b=\"\xE2\">" + strDeep + "\"/>", strHead + "<a>\xE2<!-- >" + strDeep,
          strHead + "<a b=\xEF\xBB\xBF\"> <!-- \">" + strDeep, "<a b=\"&#x\" c='x;\">" + strDeep,
          "<a b=\"&#\" c='#;\">" + strDeep, "<a>&#x<!--x;" + strDeep,
          "<a>&#x41;<!-- --><!----><b c='<!--'>" + strDeep, "<a b=c><!x '><!--' >" + strDeep}) {
        EXPECT_FALSE(parses(strText + repeated("</x>", 200000) + "</a>")) << strText.substr(0, 60);
        EXPECT_FALSE(parses(strText)) << strText.substr(0, 60);
    }
    // What is a blank to the parser in UTF-8, and part of a word elsewhere.
    for (const std::string strMark : {"\xEF\xBB\xBF", "\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
        EXPECT_FALSE(parses("<?xml " + strMark + "version='><a>" + strDeep + "'?><b/>"));
    }
}

TEST(XmlDocument, ReadsWhatIsNotUtf8ByteByByteWhateverItDeclares) {
    for (const std::string strBytes :
         {"\x80", "\xC3", "\xC3(", "\xC0\x80", "\xE2\x82", "\xE2\x82(", "\xE0\x80\x80",
          "\xED\xA0\x80", "\xF0\x9F\x98", "\xF4\x90\x80\x80", "\xF0\x80\x80\x80", "\xFF",
          "\xEF\xBB\xBF\xE2", "\xC2\x80", "\xE2\x82\xAC", "\xED\x9F\xBF", "\xF4\x8F\xBF\xBF"}) {
        const std::string strElement = "<a b=\"" + strBytes + "\" c='" + strBytes + "' />\n";
        for (const std::string strHead : {Declaration, "<?xml version=\"1.0\"?>", "\xEF\xBB\xBF",
                                          "<?xml version=\"1.0\" encoding=\"GBK\"?>", ""}) {
            SCOPED_TRACE(strHead + strElement);
            const XmlDocument document = XmlDocument::parse((strHead + strElement).c_str());
            ASSERT_TRUE(document.root());
            EXPECT_EQ(document.root().attribute("b"), strBytes);
            EXPECT_EQ(document.root().attribute("c"), strBytes);
            EXPECT_TRUE(parses(strHead + document.root().text()));
        }
    }
    // What one byte before a quote, and one before the end, must not swallow.
    for (const std::string strByte : {"\xC3", "\xE2", "\xF0"}) {
        const std::string strText = Declaration + ("<a b=\"" + strByte + "\" c='\">&#xE9;'/>");
        const XmlDocument document = XmlDocument::parse(strText.c_str());
        ASSERT_TRUE(document.root());
        EXPECT_STREQ(document.root().attribute("c"), "\">\xE9");
        EXPECT_FALSE(parses(Declaration + ("<a b=\"" + strByte)));
    }
}

// A megabyte of one thing each: minutes, if any step looked twice at what is behind it. As many
// nodes and attributes as there may be are among the texts at the bounds.
TEST(XmlDocument, BigTextsTakeLinearTime) {
    constexpr int Million = 1000000;
    const auto inside = [](const std::string& strContent) {
        return Declaration + ("<a>" + strContent) + "</a>";
    };
    for (const std::string& strText :
         {inside(std::string(Million, 't')), inside(std::string(Million, '\n')),
          inside(repeated("&#x41;", Million / 6)),
          inside("<b c=\"" + std::string(Million, '\'') + "\"/>"),
          inside("<b c='" + std::string(Million, '&') + "'/>"),
          "<" + std::string(Million, 'n') + "/>"}) {
        EXPECT_TRUE(parses(strText)) << strText.substr(0, 60);
    }
    for (const std::string& strText :
         {inside(repeated("<!--", Million / 4)), inside(repeated("<![CDATA[", Million / 9)),
          inside(repeated("&#x", Million / 3) + ";"), inside(repeated("<", Million)),
          inside("<b" + repeated(" c=\"", Million / 4)), inside("<b " + std::string(Million, '=')),
          repeated("<?xml ", Million / 6), repeated("</x>", Million / 4),
          repeated("<x ", Million / 3)}) {
        EXPECT_FALSE(parses(strText)) << strText.substr(0, 60);
    }
}

}  // namespace
