// One XML element with typed properties and child elements.
#include "domainxml/DomainXmlNode.h"

#include <tinyxml.h>

#include "domainxml/XmlText.h"

namespace {

SafePointer<DomainXmlNode> nodeOf(XmlCursor source) {
    return wrapSafe<DomainXmlNode>(std::make_unique<DomainXmlNode>(source));
}

}  // namespace

DomainXmlNode::DomainXmlNode() noexcept = default;

DomainXmlNode::DomainXmlNode(const std::string& strName)
    : m_pElement(std::make_unique<TiXmlElement>(strName.c_str())) {}

DomainXmlNode::DomainXmlNode(XmlCursor source) : m_pElement(source.cloneElement()) {}

DomainXmlNode::DomainXmlNode(const DomainXmlNode& other) : DomainXmlNode(other.cursor()) {}

DomainXmlNode& DomainXmlNode::operator=(const DomainXmlNode& other) {
    if (this != &other) {
        m_pElement = other.cursor().cloneElement();
    }
    return *this;
}

DomainXmlNode::~DomainXmlNode() = default;

bool DomainXmlNode::setProperty(const std::string& strName, const char* szValue) {
    if (m_pElement == nullptr) {
        return false;
    }
    m_pElement->SetAttribute(strName.c_str(), szValue);
    return true;
}

bool DomainXmlNode::setProperty(const std::string& strName, const std::string& strValue) {
    return setProperty(strName, strValue.c_str());
}

bool DomainXmlNode::setProperty(const std::string& strName, int nValue) {
    return setProperty(strName, XmlText::ofInt(nValue));
}

bool DomainXmlNode::setProperty(const std::string& strName, bool bValue) {
    return setProperty(strName, XmlText::ofBool(bValue));
}

bool DomainXmlNode::setProperty(const std::string& strName, float fValue) {
    return setProperty(strName, XmlText::ofFloat(fValue));
}

bool DomainXmlNode::setProperty(const std::string& strName, double dValue) {
    return setProperty(strName, XmlText::ofDouble(dValue));
}

bool DomainXmlNode::getProperty(const std::string& strName, int& nValue) const {
    const char* szText = cursor().attribute(strName.c_str());
    nValue = szText == nullptr ? 0 : XmlText::toInt(szText);
    return szText != nullptr;
}

bool DomainXmlNode::getProperty(const std::string& strName, bool& bValue) const {
    const char* szText = cursor().attribute(strName.c_str());
    if (szText != nullptr) {
        XmlText::toBool(szText, bValue);
    }
    return szText != nullptr;
}

bool DomainXmlNode::getProperty(const std::string& strName, std::string& strValue) const {
    const char* szText = cursor().attribute(strName.c_str());
    if (szText != nullptr) {
        strValue = szText;
    }
    return szText != nullptr;
}

bool DomainXmlNode::getProperty(const std::string& strName, float& fValue) const {
    const char* szText = cursor().attribute(strName.c_str());
    if (szText != nullptr) {
        XmlText::toFloat(szText, fValue);
    }
    return szText != nullptr;
}

bool DomainXmlNode::getProperty(const std::string& strName, double& dValue) const {
    const char* szText = cursor().attribute(strName.c_str());
    if (szText != nullptr) {
        XmlText::toDouble(szText, dValue);
    }
    return szText != nullptr;
}

bool DomainXmlNode::getName(std::string& strName) const {
    if (m_pElement == nullptr) {
        return false;
    }
    strName = m_pElement->Value();
    return true;
}

bool DomainXmlNode::getConfigNode(const std::string& strName,
                                  SafePointer<DomainXmlNode>& node) const {
    const XmlCursor child = cursor().firstChild(strName.c_str());
    if (!child) {
        return false;
    }
    node = nodeOf(child);
    return true;
}

bool DomainXmlNode::getChildNodes(const std::string& strName,
                                  std::vector<SafePointer<DomainXmlNode>>& vecNodes) const {
    const std::size_t nBefore = vecNodes.size();
    const char* szName = strName.c_str();
    for (XmlCursor child = cursor().firstChild(szName); child; child = child.next(szName)) {
        vecNodes.push_back(nodeOf(child));
    }
    return vecNodes.size() > nBefore;
}

bool DomainXmlNode::getChildNodes(std::vector<SafePointer<DomainXmlNode>>& vecNodes) const {
    const std::size_t nBefore = vecNodes.size();
    for (XmlCursor child = cursor().firstChild(); child; child = child.next()) {
        vecNodes.push_back(nodeOf(child));
    }
    return vecNodes.size() > nBefore;
}

bool DomainXmlNode::addChild(const SafePointer<DomainXmlNode>& child) {
    auto pCopy = child->cursor().cloneElement();
    if (m_pElement == nullptr || pCopy == nullptr) {
        return false;
    }
    return m_pElement->LinkEndChild(pCopy.release()) != nullptr;
}

XmlCursor DomainXmlNode::cursor() const noexcept {
    return XmlCursor(m_pElement.get());
}

bool toXmlString(const SafePointer<DomainXmlNode>& node, std::string& strText) {
    const XmlCursor element = node->cursor();
    if (!element) {
        return false;
    }
    strText = element.text();
    return true;
}

bool fromXmlString(const std::string& strText, SafePointer<DomainXmlNode>& node) {
    const XmlDocument document = XmlDocument::parse(strText.c_str());
    if (!document.root()) {
        return false;
    }
    node = nodeOf(document.root());
    return true;
}
