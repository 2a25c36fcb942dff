// One XML element: its properties, its children, and its text.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "Product/Technic/KXRuntimeError.h"
#include "domainxml/XmlText.h"
#include "unit/domainxml/NodeText.h"

namespace {

TEST(DomainXmlNode, PrintsEachTypeInItsFormAndFractionsWithSixDecimals) {
    using Double = std::numeric_limits<double>;
    const Node node = newNode("T");
    EXPECT_TRUE(node->setProperty("i", 7));
    EXPECT_TRUE(node->setProperty("b", true));
    EXPECT_TRUE(node->setProperty("s", std::string("x")));
    EXPECT_TRUE(node->setProperty("c", "literal"));
    EXPECT_TRUE(node->setProperty("f", 0.1F));
    EXPECT_TRUE(node->setProperty("g", std::numeric_limits<float>::infinity()));
    EXPECT_TRUE(node->setProperty("d", 1e-7));
    EXPECT_TRUE(node->setProperty("e", -Double::infinity()));
    EXPECT_TRUE(node->setProperty("n", Double::quiet_NaN()));
    EXPECT_TRUE(node->setProperty("i", std::numeric_limits<int>::min()));
    EXPECT_EQ(textOf(node),
              "<T i=\"-2147483648\" b=\"true\" s=\"x\" c=\"literal\" f=\"0.100000\" g=\"inf\" "
              "d=\"0.000000\" e=\"-inf\" n=\"nan\" />\n");
    EXPECT_EQ(XmlText::ofDouble(Double::max()).size(), 316U);
}

// What an absent property leaves of a value.
template <class Value>
Value missed(const Node& node, Value value) {
    EXPECT_FALSE(node->getProperty("i", value));
    return value;
}

TEST(DomainXmlNode, AnAbsentPropertyZeroesAnIntAndNothingElse) {
    for (const Node& node :
         {parsed("<T I=\"5\"/>"), Node(wrapSafe(std::make_unique<DomainXmlNode>()))}) {
        EXPECT_EQ(missed(node, 1), 0);
        EXPECT_EQ(missed(node, true), true);
        EXPECT_EQ(missed(node, std::string("kept")), "kept");
        EXPECT_EQ(missed(node, 1.0F), 1);
        EXPECT_EQ(missed(node, 1.0), 1);
    }
}

// What a property with this text gives to a variable that held something.
template <class Value>
Value read(const std::string& strText, Value value) {
    const Node node = newNode("T");
    node->setProperty("v", strText);
    EXPECT_TRUE(node->getProperty("v", value));
    return value;
}

template <class Value>
void expectRead(const std::map<Value, std::vector<std::string>>& mapTexts, Value before) {
    for (const auto& [expected, vecTexts] : mapTexts) {
        for (const std::string& strText : vecTexts) {
            EXPECT_EQ(read(strText, before), expected) << strText;
        }
    }
}

TEST(DomainXmlNode, ReadsFlagsAndNumbersAsFarAsTheyGo) {
    const std::vector<std::string> vecNoFlags = {"1", "", "truex", " true"};
    expectRead<bool>({{true, {"TRUE"}}, {false, vecNoFlags}}, false);
    expectRead<bool>({{false, {"False"}}, {true, vecNoFlags}}, true);
    expectRead<int>({{-12, {" \t-12x"}},
                     {-1, {"4294967295", "99999999999999999999"}},
                     {0, {"x", "", "0x10", "-99999999999999999999"}},
                     {1, {"1e3"}},
                     {2, {"4294967298"}},
                     {3, {"+3"}},
                     {2147483647, {"2147483647", "-2147483649"}}},
                    7);
    constexpr float Endless = std::numeric_limits<float>::infinity();
    constexpr float Before = 7;  // what stays where there is no number
    const std::string strTiny = "0." + std::string(400, '0') + "1";
    const std::string strHuge = "1" + std::string(400, '0');
    expectRead<float>(
        {{Before, {"", "x", "--5"}},
         {-1.5F, {" -1.5kg"}},
         {0.5F, {".5"}},
         {1, {"1,5"}},
         {2, {"+2"}},
         {5, {"5."}},
         {100, {"1e2"}},
         {0, {"0x1p3", "1e-99", strTiny, strTiny + "e5", "1e-99999999999999999999"}},
         {Endless, {"inf", "1e99", strHuge, strHuge + "e-5", "1e99999999999999999999"}},
         {-Endless, {"-INF", "-1e99"}}},
        Before);
    expectRead<double>({{1e99, {"1e99"}}}, 7);
    EXPECT_TRUE(std::isnan(read("nan", 7.0)));
}

TEST(DomainXmlNode, ChildrenAreCopies) {
    const Node parent = parsed("<P><!-- c --><A n=\"1\"/>text<B/><A n=\"2\"/></P>");
    Node child;
    ASSERT_TRUE(parent->getConfigNode("A", child));
    child->setProperty("n", 9);
    EXPECT_FALSE(parent->getConfigNode("C", child));
    EXPECT_FALSE(parent->getConfigNode("a", child));
    EXPECT_EQ(textOf(child), "<A n=\"9\" />\n");

    std::vector<Node> vecNodes = {child};
    EXPECT_FALSE(child->getChildNodes(vecNodes));
    EXPECT_TRUE(parent->getChildNodes("A", vecNodes));
    EXPECT_FALSE(parent->getChildNodes("C", vecNodes));
    EXPECT_TRUE(parent->getChildNodes(vecNodes));
    std::string strTexts;
    for (const Node& node : vecNodes) {
        strTexts += textOf(node);
    }
    EXPECT_EQ(strTexts,
              "<A n=\"9\" />\n<A n=\"1\" />\n<A n=\"2\" />\n<A n=\"1\" />\n<B />\n<A n=\"2\" />\n");
}

TEST(DomainXmlNode, AnAddedChildIsACopyToo) {
    const Node parent = newNode("P");
    const Node child = newNode("C");
    EXPECT_TRUE(parent->addChild(child));
    child->setProperty("late", 1);
    EXPECT_TRUE(parent->addChild(parent));
    EXPECT_TRUE(parent->addChild(child));
    EXPECT_EQ(textOf(parent), "<P>\n\t<C />\n\t<P>\n\t\t<C />\n\t</P>\n\t<C late=\"1\" />\n</P>\n");
}

TEST(DomainXmlNode, WithoutAnElementEverythingFails) {
    const Node empty = wrapSafe(std::make_unique<DomainXmlNode>());
    const Node full = newNode("T");
    std::string strValue = "kept";
    Node child = full;
    std::vector<Node> vecNodes;
    EXPECT_FALSE(empty->setProperty("n", 1));
    EXPECT_FALSE(empty->getName(strValue));
    EXPECT_FALSE(empty->getConfigNode("n", child));
    EXPECT_FALSE(empty->getChildNodes(vecNodes));
    EXPECT_FALSE(empty->getChildNodes("n", vecNodes));
    EXPECT_FALSE(empty->addChild(full));
    EXPECT_FALSE(full->addChild(empty));
    EXPECT_FALSE(toXmlString(empty, strValue));
    EXPECT_EQ(strValue, "kept");
    EXPECT_THROW(full->addChild(Node()), KXRuntimeError);
    EXPECT_THROW(toXmlString(Node(), strValue), KXRuntimeError);
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

}  // namespace
