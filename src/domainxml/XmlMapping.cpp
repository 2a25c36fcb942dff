// The one engine that maps any record to XML and back, by its descriptor.
#include "domainxml/XmlMapping.h"

#include <algorithm>
#include <cstring>

#include "domainxml/BlockMapping.h"
#include "domainxml/FieldText.h"
#include "domainxml/MappingWords.h"
#include "domainxml/OddMapper.h"
#include "domainxml/XmlText.h"

using namespace fleetkit;

namespace XmlMapping {

namespace {

using Strings = std::vector<std::string>;
using Ints = std::vector<int>;

// ---- attributes

// What an absent attribute does to the record; false when the parse is to stop.
bool missValue(const RecordDescriptor& owner, const FieldDescriptor& field, XmlCursor element,
               void* pMember) {
    switch (field.nPresence) {
        case Presence::Zeroed:
            FieldText::clear(field, pMember);
            return true;
        case Presence::Kept:
            return true;
        case Presence::Fallback:
            FieldText::read(field, field.szFallback, pMember);
            break;
        case Presence::Logged:
        case Presence::Required:
            break;
    }
    MappingWords::printMissing(owner, field, element, FieldText::of(field, pMember));
    return field.nPresence != Presence::Required;
}

bool readAttribute(const RecordDescriptor& owner, const FieldDescriptor& field, XmlCursor element,
                   void* pRecord) {
    const bool bElsewhere = field.szReadInto != nullptr;
    void* pMember = &memberOf<char>(pRecord, bElsewhere ? field.nOtherOffset : field.nOffset);
    const char* szText = element.attribute(field.szTag);
    if (szText == nullptr) {
        return missValue(owner, field, element, pMember);
    }
    // A text that is no value leaves what the field starts from.
    if (field.nPresence != Presence::Kept && field.nPresence != Presence::Logged) {
        FieldText::clear(field, pMember);
    }
    FieldText::read(field, szText, pMember);
    return true;
}

void writeAttribute(const FieldDescriptor& field, const void* pMember, XmlCursor element) {
    const std::string strText = FieldText::of(field, pMember);
    if (!field.has(OmitEmpty) || !strText.empty()) {
        element.setAttribute(field.szTag, strText);
    }
}

// ---- lists of bare values

void writeValues(const FieldDescriptor& field, const void* pMember, XmlCursor element) {
    const XmlCursor list = field.has(BareValues) ? element : element.appendChild(field.szTag);
    if (field.nKind == FieldKind::IntList) {
        for (const int nValue : *static_cast<const Ints*>(pMember)) {
            list.appendChild(field.szItem).setAttribute(field.szItem, XmlText::ofInt(nValue));
        }
        return;
    }
    for (const std::string& strValue : *static_cast<const Strings*>(pMember)) {
        list.appendChild(field.szItem).setAttribute(field.szItem, strValue);
    }
}

void appendValue(const FieldDescriptor& field, const char* szText, void* pMember) {
    const char* szValue = szText == nullptr ? "" : szText;
    if (field.nKind == FieldKind::IntList) {
        static_cast<Ints*>(pMember)->push_back(XmlText::toInt(szValue));
    } else {
        static_cast<Strings*>(pMember)->emplace_back(szValue);
    }
}

void readValues(const RecordDescriptor& owner, const FieldDescriptor& field, XmlCursor element,
                void* pMember) {
    if (field.nKind == FieldKind::IntList) {
        static_cast<Ints*>(pMember)->clear();
    } else {
        static_cast<Strings*>(pMember)->clear();
    }
    const bool bBare = field.has(BareValues);
    const XmlCursor list = bBare ? element : element.firstChild(field.szTag);
    if (!list) {
        MappingWords::printMissingList(owner, field);
        MappingWords::printBadList(owner, field);
        return;
    }
    for (XmlCursor child = list.firstChild(); child; child = child.next()) {
        appendValue(field, child.attribute(field.szItem), pMember);
    }
    // Older devices put a single value on the element itself.
    if (bBare && element.attribute(field.szItem) != nullptr) {
        appendValue(field, element.attribute(field.szItem), pMember);
    }
}

// ---- records and elements inside a record

bool readFields(const RecordDescriptor& descriptor, XmlCursor element, void* pRecord,
                const char* szUnread);

bool writeNested(const RecordDescriptor& owner, const FieldDescriptor& field, const void* pMember,
                 XmlCursor element) {
    if (!writeRecord(field.nested(), pMember, element.appendChild(field.szTag))) {
        element.removeLastChild();
        MappingWords::printUnwritten(owner, field);
    }
    return true;
}

// A record that is there takes its place only if it is read to its end.
bool readNested(const RecordDescriptor& owner, const FieldDescriptor& field, XmlCursor element,
                void* pMember) {
    const XmlCursor child = element.firstChild(field.szTag);
    if (!child) {
        if (field.szAbsent != nullptr) {
            MappingWords::printMissingElement(owner, field, field.szAbsent, element);
        }
        return field.nPresence != Presence::Required;
    }
    const RecordDescriptor& nested = field.nested();
    const auto pFresh = nested.access.make();
    if (readRecord(nested, child, pFresh.get())) {
        nested.access.moveInto(pMember, *pFresh);
    }
    return true;
}

void writeRecordList(const RecordDescriptor& owner, const FieldDescriptor& field,
                     const void* pMember, XmlCursor element) {
    if (!writeList(field.nested(), pMember, element.appendChild(field.szTag))) {
        element.removeLastChild();
        MappingWords::printUnwritten(owner, field);
    }
}

void readRecordList(const RecordDescriptor& owner, const FieldDescriptor& field, XmlCursor element,
                    void* pMember) {
    const RecordDescriptor& nested = field.nested();
    const XmlCursor list = element.firstChild(field.szTag);
    if (!list) {
        nested.access.listReset(pMember, 0);
        MappingWords::printMissingList(owner, field);
        MappingWords::printBadList(owner, field);
    } else if (!readList(nested, list, pMember)) {
        MappingWords::printBadList(owner, field);
    }
}

// An element that is missed in words of its own: its fields take their fallbacks without a line.
void fillDefaults(const RecordDescriptor& descriptor, const char* szUnread, void* pElement) {
    for (const FieldDescriptor& field : descriptor) {
        void* pMember = &memberOf<char>(pElement, field.nOffset);
        if (szUnread != nullptr && std::strcmp(field.szTag, szUnread) == 0) {
            continue;
        }
        if (field.nKind == FieldKind::Element) {
            fillDefaults(field.nested(), field.szUnread, pMember);
            continue;
        }
        if (field.nPresence == Presence::Kept || field.nPresence == Presence::Logged) {
            continue;
        }
        FieldText::clear(field, pMember);
        if (field.szFallback != nullptr) {
            FieldText::read(field, field.szFallback, pMember);
        }
    }
}

void readElement(const RecordDescriptor& owner, const FieldDescriptor& field, XmlCursor element,
                 void* pMember) {
    const RecordDescriptor& nested = field.nested();
    const XmlCursor child = element.firstChild(field.szTag);
    const char* szWords = field.szAbsent != nullptr ? field.szAbsent : nested.szAbsent;
    if (!child && szWords != nullptr) {
        MappingWords::printMissingElement(owner, field, szWords, element);
        fillDefaults(nested, field.szUnread, pMember);
        return;
    }
    readFields(nested, child, pMember, field.szUnread);
}

void writeElementList(const FieldDescriptor& field, const void* pMember, XmlCursor element) {
    const RecordDescriptor& nested = field.nested();
    const XmlCursor parent = field.szItem == nullptr ? element : element.appendChild(field.szItem);
    for (std::size_t i = 0; i < nested.access.listSize(pMember); ++i) {
        writeRecord(nested, nested.access.listAt(pMember, i), parent.appendChild(field.szTag));
    }
}

void readElementList(const RecordDescriptor& owner, const FieldDescriptor& field, XmlCursor element,
                     void* pMember) {
    const RecordDescriptor& nested = field.nested();
    const XmlCursor parent = field.szItem == nullptr ? element : element.firstChild(field.szItem);
    const std::vector<XmlCursor> vecChildren = parent.children(field.szTag);
    if (vecChildren.empty() && field.szAbsent != nullptr) {
        MappingWords::printMissingElement(owner, field, field.szAbsent, element);
    }
    nested.access.listReset(pMember, vecChildren.size());
    for (std::size_t i = 0; i < vecChildren.size(); ++i) {
        readFields(nested, vecChildren[i], nested.access.listElement(pMember, i), nullptr);
    }
}

// ---- fields

bool writeField(const RecordDescriptor& owner, const FieldDescriptor& field, const void* pRecord,
                XmlCursor element) {
    const void* pMember = &memberOf<char>(pRecord, field.nOffset);
    switch (field.nKind) {
        case FieldKind::Record:
        case FieldKind::Element:
            return writeNested(owner, field, pMember, element);
        case FieldKind::RecordList:
            writeRecordList(owner, field, pMember, element);
            return true;
        case FieldKind::ElementList:
            writeElementList(field, pMember, element);
            return true;
        case FieldKind::IntList:
        case FieldKind::StringList:
            writeValues(field, pMember, element);
            return true;
        case FieldKind::Block:
            return BlockMapping::write(field, pRecord, element);
        default:
            writeAttribute(field, pMember, element);
            return true;
    }
}

bool readField(const RecordDescriptor& owner, const FieldDescriptor& field, XmlCursor element,
               void* pRecord) {
    void* pMember = &memberOf<char>(pRecord, field.nOffset);
    switch (field.nKind) {
        case FieldKind::Record:
            return readNested(owner, field, element, pMember);
        case FieldKind::Element:
            readElement(owner, field, element, pMember);
            return true;
        case FieldKind::RecordList:
            readRecordList(owner, field, element, pMember);
            return true;
        case FieldKind::ElementList:
            readElementList(owner, field, element, pMember);
            return true;
        case FieldKind::IntList:
        case FieldKind::StringList:
            readValues(owner, field, element, pMember);
            return true;
        case FieldKind::Block:
            return BlockMapping::read(field, element, pRecord);
        default:
            return readAttribute(owner, field, element, pRecord);
    }
}

bool readFields(const RecordDescriptor& descriptor, XmlCursor element, void* pRecord,
                const char* szUnread) {
    return std::all_of(descriptor.begin(), descriptor.end(), [&](const FieldDescriptor& field) {
        const bool bLeft = szUnread != nullptr && std::strcmp(field.szTag, szUnread) == 0;
        return bLeft || field.has(WriteOnly) || readField(descriptor, field, element, pRecord);
    });
}

}  // namespace

bool writeRecord(const RecordDescriptor& descriptor, const void* pRecord, XmlCursor element) {
    if (const OddMapper* pOdd = findOddMapper(descriptor.nDomainId)) {
        return pOdd->create(*static_cast<const BaseDomain*>(pRecord), element);
    }
    return writeFields(descriptor, pRecord, element);
}

bool readRecord(const RecordDescriptor& descriptor, XmlCursor element, void* pRecord) {
    if (const OddMapper* pOdd = findOddMapper(descriptor.nDomainId)) {
        return pOdd->parse(element, *static_cast<BaseDomain*>(pRecord));
    }
    return readFields(descriptor, element, pRecord);
}

bool writeFields(const RecordDescriptor& descriptor, const void* pRecord, XmlCursor element) {
    if (descriptor.base != nullptr && !writeFields(descriptor.base(), pRecord, element)) {
        return false;
    }
    return std::all_of(descriptor.begin(), descriptor.end(), [&](const FieldDescriptor& field) {
        return field.has(ReadOnly) || writeField(descriptor, field, pRecord, element);
    });
}

bool readFields(const RecordDescriptor& descriptor, XmlCursor element, void* pRecord) {
    if (descriptor.base != nullptr && !readFields(descriptor.base(), element, pRecord)) {
        return false;
    }
    return readFields(descriptor, element, pRecord, nullptr);
}

bool writeList(const RecordDescriptor& descriptor, const void* pList, XmlCursor element) {
    const std::size_t nSize = descriptor.access.listSize(pList);
    for (std::size_t i = 0; i < nSize; ++i) {
        if (!writeRecord(descriptor, descriptor.access.listAt(pList, i),
                         element.appendChild(descriptor.szEntry))) {
            return false;
        }
    }
    return true;
}

bool readList(const RecordDescriptor& descriptor, XmlCursor element, void* pList) {
    const std::vector<XmlCursor> vecChildren = element.children();
    descriptor.access.listReset(pList, vecChildren.size());
    for (std::size_t i = 0; i < vecChildren.size(); ++i) {
        if (!readRecord(descriptor, vecChildren[i], descriptor.access.listElement(pList, i))) {
            descriptor.access.listReset(pList, 0);
            return false;
        }
    }
    return true;
}

bool writeDomain(const RecordDescriptor& descriptor, const BaseDomain& record, XmlCursor element) {
    if (record.getDomainId() != ContainerDomainId) {
        return writeRecord(descriptor, &record, element);
    }
    // The list inside of a container is reached through the container's own type.
    auto& container = const_cast<DomainContainer&>(static_cast<const DomainContainer&>(record));
    return writeList(descriptor, descriptor.access.containerList(container), element);
}

bool readDomain(const RecordDescriptor& descriptor, XmlCursor element, BaseDomain& record) {
    if (record.getDomainId() != ContainerDomainId) {
        return readRecord(descriptor, element, &record);
    }
    const auto pFresh = descriptor.access.makeContainer();
    void* pList = descriptor.access.containerList(*pFresh);
    if (!readList(descriptor, element, pList)) {
        return false;
    }
    auto& container = static_cast<DomainContainer&>(record);
    descriptor.access.listSwap(descriptor.access.containerList(container), pList);
    return true;
}

}  // namespace XmlMapping
