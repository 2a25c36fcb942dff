// The XML form of a body, which nearly every command has.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "protocol/ICommandBodyParser.h"

// A declaration, then a `Parameters` element with one child a record, in their order. Reading takes
// the children of the first element, whatever its name. Records that this library does not know are
// passed over in both directions; one that its mapper refuses fails the body.
class SDKNormalXmlBodyParser : public ICommandBodyParser {
public:
    SDKNormalXmlBodyParser();

    bool createCommandBody(const DomainList& domains, CommandBuffer& out) const override;
    bool parseCommandBody(const CommandBuffer& in, DomainList& domains) const override;

    // Makes the record of a tag that the factory does not know; asked for every child. Here always
    // false: a derived class has records of its own.
    virtual bool createSpecialDomain(const std::string& tag, SafePointer<BaseDomain>& out) const;

private:
    // A tag that stands before the name of the record's type.
    struct TagMapEntry {
        std::uint32_t nDomainId;
        std::uint32_t nDomainElementId;  // 0 for a single record
        std::string strTag;
    };

    bool findTag(const BaseDomain& record, std::string& strTag) const;
    bool makeRecord(const std::string& strTag, SafePointer<BaseDomain>& out) const;
    bool parseDocument(const char* szText, DomainList& domains) const;

    std::vector<TagMapEntry> m_vecTagMap;
};
