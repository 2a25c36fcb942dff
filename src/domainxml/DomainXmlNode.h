// DomainXmlNode: one XML element with typed properties and child elements.
//
// Every node owns a private tree: a node taken from a parent is a deep copy, and a child is copied
// when it is added, so a child is to be filled completely first. A property is always an attribute.
// A node belongs to one thread. Operations on a default-constructed node fail by returning false.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Product/Technic/SafePointer.h"
#include "domainxml/XmlCursor.h"

class TiXmlElement;

class DomainXmlNode {
public:
    DomainXmlNode() noexcept;
    explicit DomainXmlNode(const std::string& strName);
    // A deep copy of the element that the cursor points to.
    explicit DomainXmlNode(XmlCursor source);
    DomainXmlNode(const DomainXmlNode& other);
    DomainXmlNode& operator=(const DomainXmlNode& other);
    ~DomainXmlNode();

    bool setProperty(const std::string& strName, int nValue);
    bool setProperty(const std::string& strName, bool bValue);
    bool setProperty(const std::string& strName, const std::string& strValue);
    bool setProperty(const std::string& strName, const char* szValue);
    bool setProperty(const std::string& strName, float fValue);
    bool setProperty(const std::string& strName, double dValue);

    // False for an absent attribute: an int is then 0, every other target unchanged. A text that is
    // no value of the type still gives true; see XmlText for what the target then holds.
    bool getProperty(const std::string& strName, int& nValue) const;
    bool getProperty(const std::string& strName, bool& bValue) const;
    bool getProperty(const std::string& strName, std::string& strValue) const;
    bool getProperty(const std::string& strName, float& fValue) const;
    bool getProperty(const std::string& strName, double& dValue) const;

    bool getName(std::string& strName) const;

    // A copy of the first child element with this tag; false, with node unchanged, if there is
    // none.
    bool getConfigNode(const std::string& strName, SafePointer<DomainXmlNode>& node) const;
    // Appends a copy of each child element, of one tag or of any; false if there is none.
    bool getChildNodes(const std::string& strName,
                       std::vector<SafePointer<DomainXmlNode>>& vecNodes) const;
    bool getChildNodes(std::vector<SafePointer<DomainXmlNode>>& vecNodes) const;
    // Appends a copy of the child's element as the last child. An empty pointer raises the error of
    // the safe pointer.
    bool addChild(const SafePointer<DomainXmlNode>& child);

    // A view of the node's own element, for the engine and the body parser.
    XmlCursor cursor() const noexcept;

private:
    std::unique_ptr<TiXmlElement> m_pElement;
};

// The text of a node, without a declaration. An empty pointer raises the error of the safe pointer.
bool toXmlString(const SafePointer<DomainXmlNode>& node, std::string& strText);

// The first element of a text as a node; false for a text that does not parse, has no element, or
// exceeds the bounds of XmlDocument.
bool fromXmlString(const std::string& strText, SafePointer<DomainXmlNode>& node);
