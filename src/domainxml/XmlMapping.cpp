// The one engine that maps any record to XML and back, by its descriptor.
#include "domainxml/XmlMapping.h"

#include <algorithm>
#include <cstring>

#include "domain/MemberVisitor.h"
#include "domainxml/BlockMapping.h"
#include "domainxml/DecodingBudget.h"
#include "domainxml/FieldText.h"
#include "domainxml/MappingWords.h"
#include "domainxml/OddMapper.h"

using namespace fleetkit;

namespace XmlMapping {

namespace {

using Record = NestedMember<void>;
using ConstRecord = NestedMember<const void>;
using List = NestedListMember<void>;
using ConstList = NestedListMember<const void>;

// An entry of a few bytes can make a record of a thousand.
void resetList(const TypeAccess& access, void* pList, std::size_t nSize) {
    DecodingBudget::takeMemory(nSize * access.nSize);
    access.listReset(pList, nSize);
}

// ---- attributes

// What an absent attribute does to the record; false when the parse is to stop.
template <class Member>
bool missValue(const RecordDescriptor& owner, const FieldDescriptor& field, XmlCursor element,
               Member& member) {
    switch (field.nPresence) {
        case Presence::Zeroed:
            FieldText::clear(member);
            return true;
        case Presence::Kept:
            return true;
        case Presence::Fallback:
            FieldText::read(field, field.szFallback, member);
            break;
        case Presence::Logged:
        case Presence::Required:
            break;
    }
    MappingWords::printMissing(owner, field, element, FieldText::of(field, member));
    return field.nPresence != Presence::Required;
}

template <class Member>
bool readAttribute(const RecordDescriptor& owner, const FieldDescriptor& field, XmlCursor element,
                   Member& member) {
    const char* szText = element.attribute(field.szTag);
    if (szText == nullptr) {
        return missValue(owner, field, element, member);
    }
    // A text that is no value leaves what the field starts from.
    if (field.nPresence != Presence::Kept && field.nPresence != Presence::Logged) {
        FieldText::clear(member);
    }
    FieldText::read(field, szText, member);
    return true;
}

template <class Member>
void writeAttribute(const FieldDescriptor& field, const Member& member, XmlCursor element) {
    const std::string& strText = FieldText::of(field, member);
    if (!field.has(OmitEmpty) || !strText.empty()) {
        element.setAttribute(field.szTag, strText);
    }
}

// ---- lists of bare values

template <class Value>
void writeValues(const FieldDescriptor& field, const std::vector<Value>& vecValues,
                 XmlCursor element) {
    const XmlCursor list = field.has(BareValues) ? element : element.appendChild(field.szTag);
    for (const Value& value : vecValues) {
        list.appendChild(field.szItem).setAttribute(field.szItem, FieldText::of(field, value));
    }
}

template <class Value>
void appendValue(const FieldDescriptor& field, const char* szText, std::vector<Value>& vecValues) {
    FieldText::read(field, szText == nullptr ? "" : szText, vecValues.emplace_back());
}

template <class Value>
void readValues(const RecordDescriptor& owner, const FieldDescriptor& field, XmlCursor element,
                std::vector<Value>& vecValues) {
    vecValues.clear();
    const bool bBare = field.has(BareValues);
    const XmlCursor list = bBare ? element : element.firstChild(field.szTag);
    if (!list) {
        MappingWords::printMissingList(owner, field);
        MappingWords::printBadList(owner, field);
        return;
    }
    for (XmlCursor child = list.firstChild(); child; child = child.next()) {
        appendValue(field, child.attribute(field.szItem), vecValues);
    }
    // Older devices put a single value on the element itself.
    if (bBare && element.attribute(field.szItem) != nullptr) {
        appendValue(field, element.attribute(field.szItem), vecValues);
    }
}

// ---- records and elements inside a record

bool readFields(const RecordDescriptor& descriptor, XmlCursor element, void* pRecord,
                const char* szUnread);

void writeNested(const RecordDescriptor& owner, const FieldDescriptor& field,
                 const ConstRecord& record, XmlCursor element) {
    if (!writeRecord(record.type, record.pObject, element.appendChild(field.szTag))) {
        element.removeLastChild();
        MappingWords::printUnwritten(owner, field);
    }
}

// A nested record replaces the one before only once all of it has been read.
bool readNested(const RecordDescriptor& owner, const FieldDescriptor& field, XmlCursor element,
                const Record& record) {
    const XmlCursor child = element.firstChild(field.szTag);
    if (!child) {
        if (field.szAbsent != nullptr) {
            MappingWords::printMissingElement(owner, field, field.szAbsent, element);
        }
        return field.nPresence != Presence::Required;
    }
    const auto pFresh = record.type.access.make();
    if (readRecord(record.type, child, pFresh.get())) {
        record.type.access.moveInto(record.pObject, *pFresh);
    }
    return true;
}

void writeRecordList(const RecordDescriptor& owner, const FieldDescriptor& field,
                     const ConstList& records, XmlCursor element) {
    if (!writeList(records.type, records.pList, element.appendChild(field.szTag))) {
        element.removeLastChild();
        MappingWords::printUnwritten(owner, field);
    }
}

void readRecordList(const RecordDescriptor& owner, const FieldDescriptor& field, XmlCursor element,
                    const List& records) {
    const XmlCursor list = element.firstChild(field.szTag);
    if (!list) {
        records.type.access.listReset(records.pList, 0);
        MappingWords::printMissingList(owner, field);
        MappingWords::printBadList(owner, field);
    } else if (!readList(records.type, list, records.pList)) {
        MappingWords::printBadList(owner, field);
    }
}

// An absent element that has words of its own: its fields take their fallbacks without a line.
void fillDefaults(const Record& element, const char* szUnread);

class DefaultFiller {
public:
    explicit DefaultFiller(const FieldDescriptor& field) noexcept : m_field(field) {}

    template <class Member>
    void operator()(Member&& member, FieldForm::Attribute) const {
        fill(member);
    }
    template <class Member>
    void operator()(Member&& member, FieldForm::Joined) const {
        fill(member);
    }
    void operator()(const Record& element, FieldForm::Inline) const {
        fillDefaults(element, m_field.szUnread);
    }
    // Whatever else an element holds has no fallback, and keeps what it has.
    void operator()(const List&, FieldForm::Inline) const {}
    template <class Member>
    void operator()(Member&&, FieldForm::Child) const {}
    template <class Member>
    void operator()(Member&&, FieldForm::Values) const {}
    template <class Member>
    void operator()(Member&&, FieldForm::Encoded) const {}

private:
    template <class Member>
    void fill(Member& member) const {
        if (m_field.nPresence == Presence::Kept || m_field.nPresence == Presence::Logged) {
            return;
        }
        FieldText::clear(member);
        if (m_field.szFallback != nullptr) {
            FieldText::read(m_field, m_field.szFallback, member);
        }
    }

    const FieldDescriptor& m_field;
};

void fillDefaults(const Record& element, const char* szUnread) {
    for (const FieldDescriptor& field : element.type) {
        if (szUnread == nullptr || std::strcmp(field.szTag, szUnread) != 0) {
            visitMember(field, &memberOf<char>(element.pObject, field.nOffset),
                        DefaultFiller(field));
        }
    }
}

void readElement(const RecordDescriptor& owner, const FieldDescriptor& field, XmlCursor element,
                 const Record& record) {
    const XmlCursor child = element.firstChild(field.szTag);
    const char* szWords = field.szAbsent != nullptr ? field.szAbsent : record.type.szAbsent;
    if (!child && szWords != nullptr) {
        MappingWords::printMissingElement(owner, field, szWords, element);
        fillDefaults(record, field.szUnread);
        return;
    }
    readFields(record.type, child, record.pObject, field.szUnread);
}

void writeElementList(const FieldDescriptor& field, const ConstList& elements, XmlCursor element) {
    const XmlCursor parent = field.szItem == nullptr ? element : element.appendChild(field.szItem);
    for (std::size_t i = 0; i < elements.size(); ++i) {
        writeRecord(elements.type, elements.at(i), parent.appendChild(field.szTag));
    }
}

void readElementList(const RecordDescriptor& owner, const FieldDescriptor& field, XmlCursor element,
                     const List& elements) {
    const XmlCursor parent = field.szItem == nullptr ? element : element.firstChild(field.szItem);
    const std::vector<XmlCursor> vecChildren = parent.children(field.szTag);
    if (vecChildren.empty() && field.szAbsent != nullptr) {
        MappingWords::printMissingElement(owner, field, field.szAbsent, element);
    }
    const TypeAccess& access = elements.type.access;
    resetList(access, elements.pList, vecChildren.size());
    for (std::size_t i = 0; i < vecChildren.size(); ++i) {
        readFields(elements.type, vecChildren[i], access.listElement(elements.pList, i), nullptr);
    }
}

// ---- fields

class FieldWriter {
public:
    FieldWriter(const RecordDescriptor& owner, const FieldDescriptor& field, const void* pRecord,
                XmlCursor element) noexcept
        : m_owner(owner), m_field(field), m_pRecord(pRecord), m_element(element) {}

    template <class Member>
    bool operator()(const Member& member, FieldForm::Attribute) const {
        writeAttribute(m_field, member, m_element);
        return true;
    }
    template <class Member>
    bool operator()(const Member& member, FieldForm::Joined) const {
        writeAttribute(m_field, member, m_element);
        return true;
    }
    template <class Value>
    bool operator()(const std::vector<Value>& vecValues, FieldForm::Values) const {
        writeValues(m_field, vecValues, m_element);
        return true;
    }
    bool operator()(const ConstRecord& record, FieldForm::Child) const {
        writeNested(m_owner, m_field, record, m_element);
        return true;
    }
    bool operator()(const ConstRecord& record, FieldForm::Inline) const {
        writeNested(m_owner, m_field, record, m_element);
        return true;
    }
    bool operator()(const ConstList& records, FieldForm::Child) const {
        writeRecordList(m_owner, m_field, records, m_element);
        return true;
    }
    bool operator()(const ConstList& elements, FieldForm::Inline) const {
        writeElementList(m_field, elements, m_element);
        return true;
    }
    bool operator()(const OptionalBlock&, FieldForm::Encoded) const {
        return BlockMapping::write(m_field, m_pRecord, m_element);
    }

private:
    const RecordDescriptor& m_owner;
    const FieldDescriptor& m_field;
    const void* m_pRecord;
    XmlCursor m_element;
};

bool writeField(const RecordDescriptor& owner, const FieldDescriptor& field, const void* pRecord,
                XmlCursor element) {
    return visitMember(field, &memberOf<char>(pRecord, field.nOffset),
                       FieldWriter(owner, field, pRecord, element));
}

class FieldReader {
public:
    FieldReader(const RecordDescriptor& owner, const FieldDescriptor& field, XmlCursor element,
                void* pRecord) noexcept
        : m_owner(owner), m_field(field), m_element(element), m_pRecord(pRecord) {}

    template <class Member>
    bool operator()(Member&& member, FieldForm::Attribute) const {
        return readAttribute(m_owner, m_field, m_element, member);
    }
    template <class Member>
    bool operator()(Member&& member, FieldForm::Joined) const {
        return readAttribute(m_owner, m_field, m_element, member);
    }
    template <class Value>
    bool operator()(std::vector<Value>& vecValues, FieldForm::Values) const {
        readValues(m_owner, m_field, m_element, vecValues);
        return true;
    }
    bool operator()(const Record& record, FieldForm::Child) const {
        return readNested(m_owner, m_field, m_element, record);
    }
    bool operator()(const Record& record, FieldForm::Inline) const {
        readElement(m_owner, m_field, m_element, record);
        return true;
    }
    bool operator()(const List& records, FieldForm::Child) const {
        readRecordList(m_owner, m_field, m_element, records);
        return true;
    }
    bool operator()(const List& elements, FieldForm::Inline) const {
        readElementList(m_owner, m_field, m_element, elements);
        return true;
    }
    bool operator()(OptionalBlock&, FieldForm::Encoded) const {
        return BlockMapping::read(m_field, m_element, m_pRecord);
    }

private:
    const RecordDescriptor& m_owner;
    const FieldDescriptor& m_field;
    XmlCursor m_element;
    void* m_pRecord;
};

bool readField(const RecordDescriptor& owner, const FieldDescriptor& field, XmlCursor element,
               void* pRecord) {
    const bool bElsewhere = field.szReadInto != nullptr;
    void* pMember = &memberOf<char>(pRecord, bElsewhere ? field.nOtherOffset : field.nOffset);
    return visitMember(field, pMember, FieldReader(owner, field, element, pRecord));
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
    resetList(descriptor.access, pList, vecChildren.size());
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
