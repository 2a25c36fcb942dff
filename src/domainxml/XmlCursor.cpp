// Views of an XML tree, and the parsed text that owns one.
#include "domainxml/XmlCursor.h"

#include <tinyxml.h>

#include <string_view>

#include "domainxml/XmlBounds.h"

namespace {

constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

}  // namespace

const char* XmlCursor::name() const noexcept {
    return m_pElement == nullptr ? "" : m_pElement->Value();
}

const char* XmlCursor::parentName() const noexcept {
    const TiXmlNode* pParent = m_pElement == nullptr ? nullptr : m_pElement->Parent();
    return pParent == nullptr || pParent->ToElement() == nullptr ? "" : pParent->Value();
}

const char* XmlCursor::attribute(const char* szName) const noexcept {
    return m_pElement == nullptr ? nullptr : m_pElement->Attribute(szName);
}

void XmlCursor::setAttribute(const char* szName, const std::string& strValue) const {
    m_pElement->SetAttribute(szName, strValue.c_str());
}

XmlCursor XmlCursor::firstChild() const noexcept {
    return XmlCursor(m_pElement == nullptr ? nullptr : m_pElement->FirstChildElement());
}

XmlCursor XmlCursor::firstChild(const char* szName) const noexcept {
    return XmlCursor(m_pElement == nullptr ? nullptr : m_pElement->FirstChildElement(szName));
}

XmlCursor XmlCursor::next() const noexcept {
    return XmlCursor(m_pElement->NextSiblingElement());
}

XmlCursor XmlCursor::next(const char* szName) const noexcept {
    return XmlCursor(m_pElement->NextSiblingElement(szName));
}

std::vector<XmlCursor> XmlCursor::children() const {
    std::vector<XmlCursor> vecChildren;
    for (XmlCursor child = firstChild(); child; child = child.next()) {
        vecChildren.push_back(child);
    }
    return vecChildren;
}

std::vector<XmlCursor> XmlCursor::children(const char* szName) const {
    std::vector<XmlCursor> vecChildren;
    for (XmlCursor child = firstChild(szName); child; child = child.next(szName)) {
        vecChildren.push_back(child);
    }
    return vecChildren;
}

XmlCursor XmlCursor::appendChild(const char* szName) const {
    auto pChild = std::make_unique<TiXmlElement>(szName);
    // Linking takes ownership, also when it fails.
    TiXmlNode* pLinked = m_pElement->LinkEndChild(pChild.release());
    return XmlCursor(pLinked->ToElement());
}

void XmlCursor::removeLastChild() const {
    m_pElement->RemoveChild(m_pElement->LastChild());
}

std::unique_ptr<TiXmlElement> XmlCursor::cloneElement() const {
    return m_pElement == nullptr ? nullptr : std::make_unique<TiXmlElement>(*m_pElement);
}

std::string XmlCursor::text() const {
    TiXmlPrinter printer;
    printer.SetIndent("\t");
    printer.SetLineBreak("\n");
    m_pElement->Accept(&printer);
    return printer.Str();
}

std::string escapedXml(const std::string& strText) {
    TIXML_STRING strEscaped;
    TiXmlBase::EncodeString(TIXML_STRING(strText.c_str()), &strEscaped);
    return std::string(strEscaped.c_str());
}

XmlDocument::XmlDocument() : m_pDocument(std::make_unique<TiXmlDocument>()) {}

XmlDocument::XmlDocument(const char* szRootName) : XmlDocument() {
    m_pDocument->LinkEndChild(std::make_unique<TiXmlElement>(szRootName).release());
}

XmlDocument::XmlDocument(XmlDocument&&) noexcept = default;

XmlDocument::~XmlDocument() = default;

XmlDocument XmlDocument::parse(const char* szText, int nMostBelowRoot) {
    XmlDocument document;
    if (!isWithinXmlBounds(szText, nMostBelowRoot)) {
        return document;
    }
    const bool bUtf8 = isUtf8(szText);
    // The parser knows the mark in UTF-8 only.
    if (!bUtf8 && std::string_view(szText).starts_with(ByteOrderMark)) {
        szText += ByteOrderMark.size();
    }
    TiXmlDocument& tree = *document.m_pDocument;
    tree.Parse(szText, nullptr, bUtf8 ? TIXML_ENCODING_UNKNOWN : TIXML_ENCODING_LEGACY);
    if (tree.Error()) {
        tree.Clear();
    }
    return document;
}

XmlCursor XmlDocument::root() const noexcept {
    return XmlCursor(m_pDocument->RootElement());
}
