// One XML element: its properties, its children, and its text.
#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <string>

#include "Product/Technic/KXRuntimeError.h"
#include "domainxml/DomainXmlNode.h"
#include "domainxml/XmlText.h"

namespace {

using Node = SafePointer<DomainXmlNode>;

Node newNode(const std::string& strName) {
    return wrapSafe(std::make_unique<DomainXmlNode>(strName));
}

Node parsed(const std::string& strText) {
    Node node = newNode("untouched");
    EXPECT_TRUE(fromXmlString(strText, node)) << strText;
    return node;
}

std::string textOf(const Node& node) {
    std::string strText;
    EXPECT_TRUE(toXmlString(node, strText));
    return strText;
}

TEST(DomainXmlNode, PrintsEachTypeInItsForm) {
    const Node node = newNode("T");
    EXPECT_TRUE(node->setProperty("i", std::numeric_limits<int>::min()));
    EXPECT_TRUE(node->setProperty("b", true));
    EXPECT_TRUE(node->setProperty("s", std::string("x")));
    EXPECT_TRUE(node->setProperty("c", "literal"));
    EXPECT_TRUE(node->setProperty("f", 0.1F));
    EXPECT_TRUE(node->setProperty("d", -2.5));
    EXPECT_TRUE(node->setProperty("i", 7));
    EXPECT_EQ(textOf(node),
              "<T i=\"7\" b=\"true\" s=\"x\" c=\"literal\" f=\"0.100000\" d=\"-2.500000\" />\n");
}

TEST(DomainXmlNode, AnAbsentPropertyZeroesAnIntAndNothingElse) {
    const Node node = parsed("<T I=\"5\"/>");
    int nValue = 1;
    bool bValue = true;
    std::string strValue = "kept";
    float fValue = 1;
    double dValue = 1;
    EXPECT_FALSE(node->getProperty("i", nValue));
    EXPECT_FALSE(node->getProperty("i", bValue));
    EXPECT_FALSE(node->getProperty("i", strValue));
    EXPECT_FALSE(node->getProperty("i", fValue));
    EXPECT_FALSE(node->getProperty("i", dValue));
    EXPECT_EQ(nValue, 0);
    EXPECT_TRUE(bValue);
    EXPECT_EQ(strValue, "kept");
    EXPECT_EQ(fValue, 1);
    EXPECT_EQ(dValue, 1);
}

TEST(DomainXmlNode, AWordThatIsNoFlagLeavesTheTargetAndIsTrue) {
    struct Case {
        const char* szText;
        bool bFromFalse, bFromTrue;
    };
    for (const Case& one :
         {Case{"TRUE", true, true}, Case{"False", false, false}, Case{"1", false, true},
          Case{"", false, true}, Case{"truex", false, true}, Case{" true", false, true}}) {
        const Node node = newNode("T");
        node->setProperty("b", one.szText);
        bool bFromFalse = false;
        bool bFromTrue = true;
        EXPECT_TRUE(node->getProperty("b", bFromFalse));
        EXPECT_TRUE(node->getProperty("b", bFromTrue));
        EXPECT_EQ(bFromFalse, one.bFromFalse) << one.szText;
        EXPECT_EQ(bFromTrue, one.bFromTrue) << one.szText;
    }
}

TEST(DomainXmlNode, ReadsIntegersAsFarAsTheyGo) {
    const std::pair<const char*, int> Cases[] = {{"12", 12},
                                                 {" \t-12x", -12},
                                                 {"+3", 3},
                                                 {"x", 0},
                                                 {"", 0},
                                                 {"0x10", 0},
                                                 {"1e3", 1},
                                                 {"2147483647", 2147483647},
                                                 {"4294967295", -1},
                                                 {"4294967298", 2},
                                                 {"-2147483649", 2147483647},
                                                 {"99999999999999999999", -1},
                                                 {"-99999999999999999999", 0}};
    for (const auto& [szText, nExpected] : Cases) {
        EXPECT_EQ(XmlText::toInt(szText), nExpected) << szText;
    }
}

TEST(DomainXmlNode, ReadsFractionsAsFarAsTheyGo) {
    constexpr float Endless = std::numeric_limits<float>::infinity();
    const std::string strTiny = "0." + std::string(400, '0') + "1";
    const std::string strHuge = "1" + std::string(400, '0');
    const std::pair<std::string, float> Cases[] = {{"1.5", 1.5F},
                                                   {" -1.5kg", -1.5F},
                                                   {"+2", 2},
                                                   {".5", 0.5F},
                                                   {"5.", 5},
                                                   {"1,5", 1},
                                                   {"", 7},
                                                   {"x", 7},
                                                   {"--5", 7},
                                                   {"1e2", 100},
                                                   {"inf", Endless},
                                                   {"-INF", -Endless},
                                                   {"1e99", Endless},
                                                   {"-1e99", -Endless},
                                                   {"1e-99", 0},
                                                   {strTiny, 0},
                                                   {strHuge, Endless},
                                                   {strHuge + "e-5", Endless},
                                                   {strTiny + "e5", 0},
                                                   {"1e99999999999999999999", Endless},
                                                   {"1e-99999999999999999999", 0}};
    for (const auto& [strText, fExpected] : Cases) {
        float fValue = 7;
        XmlText::toFloat(strText.c_str(), fValue);
        EXPECT_EQ(fValue, fExpected) << strText;
    }
    double dValue = 7;
    XmlText::toDouble("nan", dValue);
    EXPECT_TRUE(std::isnan(dValue));
    XmlText::toDouble("1e99", dValue);
    EXPECT_EQ(dValue, 1e99);
}

TEST(DomainXmlNode, PrintsFractionsWithSixDecimals) {
    EXPECT_EQ(XmlText::ofDouble(1e-7), "0.000000");
    EXPECT_EQ(XmlText::ofFloat(std::numeric_limits<float>::infinity()), "inf");
    EXPECT_EQ(XmlText::ofDouble(-std::numeric_limits<double>::infinity()), "-inf");
    EXPECT_EQ(XmlText::ofDouble(std::numeric_limits<double>::quiet_NaN()), "nan");
    EXPECT_EQ(XmlText::ofDouble(std::numeric_limits<double>::max()).size(), 316U);
}

TEST(DomainXmlNode, NumbersDoNotDependOnTheLocale) {
    const char* szGerman = std::setlocale(LC_ALL, "de_DE.UTF-8");
    if (szGerman == nullptr) {
        GTEST_SKIP() << "this machine has no locale with a decimal comma";
    }
    double dValue = 0;
    XmlText::toDouble("1.5", dValue);
    const std::string strText = XmlText::ofDouble(2.5);
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(dValue, 1.5);
    EXPECT_EQ(strText, "2.500000");
}

TEST(DomainXmlNode, ChildrenAreCopies) {
    const Node parent = parsed("<P><!-- c --><A n=\"1\"/>text<B/><A n=\"2\"/></P>");
    Node child = newNode("unset");
    ASSERT_TRUE(parent->getConfigNode("A", child));
    EXPECT_EQ(textOf(child), "<A n=\"1\" />\n");
    child->setProperty("n", 9);
    Node again = newNode("unset");
    parent->getConfigNode("A", again);
    EXPECT_EQ(textOf(again), "<A n=\"1\" />\n");

    EXPECT_FALSE(parent->getConfigNode("C", child));
    EXPECT_EQ(textOf(child), "<A n=\"9\" />\n");
    EXPECT_FALSE(parent->getConfigNode("a", child));

    std::vector<Node> vecNodes = {child};
    EXPECT_TRUE(parent->getChildNodes("A", vecNodes));
    ASSERT_EQ(vecNodes.size(), 3U);
    EXPECT_EQ(textOf(vecNodes[2]), "<A n=\"2\" />\n");
    EXPECT_FALSE(parent->getChildNodes("C", vecNodes));
    EXPECT_TRUE(parent->getChildNodes(vecNodes));
    ASSERT_EQ(vecNodes.size(), 6U);
    EXPECT_EQ(textOf(vecNodes[4]), "<B />\n");
    EXPECT_FALSE(again->getChildNodes(vecNodes));
}

TEST(DomainXmlNode, AnAddedChildIsACopyToo) {
    const Node parent = newNode("P");
    const Node child = newNode("C");
    EXPECT_TRUE(parent->addChild(child));
    child->setProperty("late", 1);
    EXPECT_TRUE(parent->addChild(child));
    EXPECT_EQ(textOf(parent), "<P>\n\t<C />\n\t<C late=\"1\" />\n</P>\n");
    EXPECT_TRUE(parent->addChild(parent));
    EXPECT_EQ(textOf(parent),
              "<P>\n\t<C />\n\t<C late=\"1\" />\n\t<P>\n\t\t<C />\n\t\t<C late=\"1\" />\n\t</P>\n"
              "</P>\n");
}

TEST(DomainXmlNode, WithoutAnElementEverythingFails) {
    const Node empty = wrapSafe(std::make_unique<DomainXmlNode>());
    const Node full = newNode("T");
    std::string strValue = "kept";
    int nValue = 5;
    Node child = full;
    std::vector<Node> vecNodes;
    EXPECT_FALSE(empty->setProperty("n", 1));
    EXPECT_FALSE(empty->getProperty("n", nValue));
    EXPECT_FALSE(empty->getProperty("n", strValue));
    EXPECT_FALSE(empty->getName(strValue));
    EXPECT_FALSE(empty->getConfigNode("n", child));
    EXPECT_FALSE(empty->getChildNodes(vecNodes));
    EXPECT_FALSE(empty->getChildNodes("n", vecNodes));
    EXPECT_FALSE(empty->addChild(full));
    EXPECT_FALSE(full->addChild(empty));
    EXPECT_FALSE(toXmlString(empty, strValue));
    EXPECT_EQ(strValue, "kept");
    EXPECT_EQ(nValue, 0);
}

TEST(DomainXmlNode, AnEmptyPointerRaisesTheErrorOfThePointer) {
    const Node none;
    std::string strText;
    EXPECT_THROW(newNode("T")->addChild(none), KXRuntimeError);
    EXPECT_THROW(toXmlString(none, strText), KXRuntimeError);
}

TEST(DomainXmlNode, EscapesMarkupAndKeepsEverythingElse) {
    const Node node = newNode("T");
    const std::string strValue = "<&>\"'\x01\n\t &#x41; \xC3\xA4\xFF";
    node->setProperty("v", strValue);
    EXPECT_EQ(textOf(node),
              "<T v='&lt;&amp;&gt;&quot;&apos;&#x01;&#x0A;&#x09; &amp;#x41; \xC3\xA4\xFF' />\n");
    std::string strRead;
    EXPECT_TRUE(parsed(textOf(node))->getProperty("v", strRead));
    EXPECT_EQ(strRead, strValue);
}

TEST(DomainXmlNode, TheTextHasTabsWhateverTheInputHad) {
    EXPECT_EQ(textOf(parsed("<?xml version=\"1.0\" ?>  <!-- c -->\n<A  x = 'y' ><B ></B>\r\n</A>")),
              "<A x=\"y\">\n\t<B />\n</A>\n");
    std::string strName;
    EXPECT_TRUE(parsed("\xEF\xBB\xBF<A/>")->getName(strName));
    EXPECT_EQ(strName, "A");
}

}  // namespace
