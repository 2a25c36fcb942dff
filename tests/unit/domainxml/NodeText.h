// Nodes from texts, and texts from nodes.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "domainxml/DomainXmlNode.h"

using Node = SafePointer<DomainXmlNode>;

inline Node newNode(const std::string& strName) {
    return wrapSafe(std::make_unique<DomainXmlNode>(strName));
}

inline Node parsed(const std::string& strText) {
    Node node = newNode("untouched");
    EXPECT_TRUE(fromXmlString(strText, node)) << strText;
    return node;
}

inline std::string textOf(const Node& node) {
    std::string strText;
    EXPECT_TRUE(toXmlString(node, strText));
    return strText;
}
