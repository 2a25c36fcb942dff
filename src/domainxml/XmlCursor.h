// XmlCursor: a light view of one XML element, and XmlDocument, which owns a parsed text.
//
// A cursor owns nothing and copies nothing; it is valid as long as the tree that it points into. A
// default cursor points nowhere: it has no attributes and no children, and may not be written to.
// XmlCursor.cpp and DomainXmlNode.cpp are the only files that know the XML library.
#pragma once

#include <climits>
#include <memory>
#include <string>
#include <vector>

class TiXmlElement;
class TiXmlDocument;

class XmlCursor {
public:
    XmlCursor() noexcept = default;
    explicit XmlCursor(TiXmlElement* pElement) noexcept : m_pElement(pElement) {}
    explicit operator bool() const noexcept { return m_pElement != nullptr; }

    // The element's tag; an empty text for a cursor that points nowhere.
    const char* name() const noexcept;
    const char* parentName() const noexcept;

    // The text of an attribute, null if there is none.
    const char* attribute(const char* szName) const noexcept;
    // Replaces the attribute of that name, or appends one.
    void setAttribute(const char* szName, const std::string& strValue) const;

    XmlCursor firstChild() const noexcept;
    XmlCursor firstChild(const char* szName) const noexcept;
    XmlCursor next() const noexcept;
    XmlCursor next(const char* szName) const noexcept;
    // All child elements, or those with one tag, in the order of the document.
    std::vector<XmlCursor> children() const;
    std::vector<XmlCursor> children(const char* szName) const;
    // Appends an empty child element and points to it.
    XmlCursor appendChild(const char* szName) const;
    // Takes the last child away again.
    void removeLastChild() const;

    // A deep copy of the element, null for a cursor that points nowhere.
    std::unique_ptr<TiXmlElement> cloneElement() const;

    // The element and all that hangs under it: a tab a level, and a line end behind each element.
    std::string text() const;

private:
    TiXmlElement* m_pElement = nullptr;
};

// A text as it is written in an attribute, between quotes of either kind.
std::string escapedXml(const std::string& strText);

class XmlDocument {
public:
    // A document that holds one empty element.
    explicit XmlDocument(const char* szRootName);
    // A parsed text; without a root when the text is not a document, or goes beyond the bounds of
    // `isWithinXmlBounds`. The time taken is linear in its length.
    //
    // A text that is not UTF-8 throughout is read byte by byte, whatever it declares: devices put
    // names in another encoding under a declaration of UTF-8. Bytes above 127 stay as they are, and
    // a reference to a character becomes one byte, its lowest.
    static XmlDocument parse(const char* szText, int nMostBelowRoot = INT_MAX);

    XmlDocument(XmlDocument&&) noexcept;
    ~XmlDocument();

    XmlCursor root() const noexcept;

private:
    XmlDocument();

    std::unique_ptr<TiXmlDocument> m_pDocument;
};
