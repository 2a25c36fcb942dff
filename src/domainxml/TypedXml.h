// TypedXml<Record>: the mapper class of one record type, with its four direct forms.
//
// The forms map without a look at the domain id; they are what the mappers of enclosing records
// use. Each record's own mapper class is an alias of this template: NTPParamXml is
// TypedXml<NTPParam>.
#pragma once

#include <utility>
#include <vector>

#include "domainxml/RecordXml.h"
#include "domainxml/XmlMapping.h"

template <class Record>
class TypedXml : public RecordXml {
public:
    TypedXml() noexcept : RecordXml(Record::descriptor()) {}

    using RecordXml::createDomainXmlNode;
    using RecordXml::parseDomainXmlNode;

    // One record: all its fields into the node, and out of it.
    static bool createSingle(const Record& record, const SafePointer<DomainXmlNode>& node) {
        return isUsable(node) &&
               XmlMapping::writeRecord(Record::descriptor(), &record, node->cursor());
    }
    static bool parseSingle(const SafePointer<DomainXmlNode>& node, Record& record) {
        return isUsable(node) &&
               XmlMapping::readRecord(Record::descriptor(), node->cursor(), &record);
    }

    // A list: one child of the node an entry. A bad entry fails the list, and leaves the target as
    // it was.
    static bool createList(const std::vector<Record>& vecRecords,
                           const SafePointer<DomainXmlNode>& node) {
        return isUsable(node) &&
               XmlMapping::writeList(Record::descriptor(), &vecRecords, node->cursor());
    }
    static bool parseList(const SafePointer<DomainXmlNode>& node, std::vector<Record>& vecRecords) {
        std::vector<Record> vecRead;
        if (!isUsable(node) ||
            !XmlMapping::readList(Record::descriptor(), node->cursor(), &vecRead)) {
            return false;
        }
        vecRecords = std::move(vecRead);
        return true;
    }

private:
    static bool isUsable(const SafePointer<DomainXmlNode>& node) noexcept {
        return !node.isNull() && node->cursor();
    }
};
