// The one engine that maps any record to XML and back, by its descriptor.
#include "domainxml/XmlMapping.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "Product/Technic/Base64.h"
#include "domainxml/JoinedText.h"
#include "domainxml/MappingWords.h"
#include "domainxml/OddMapper.h"
#include "domainxml/XmlText.h"

namespace XmlMapping {

namespace {

using Strings = std::vector<std::string>;
using Ints = std::vector<int>;

// ---- scalars

std::string scalarText(FieldKind nKind, const void* pMember) {
    switch (nKind) {
        case FieldKind::Bool:
            return XmlText::ofBool(*static_cast<const bool*>(pMember));
        case FieldKind::Int:
            return XmlText::ofInt(*static_cast<const int*>(pMember));
        case FieldKind::UnsignedShort:
            return XmlText::ofInt(*static_cast<const unsigned short*>(pMember));
        case FieldKind::Float:
            return XmlText::ofFloat(*static_cast<const float*>(pMember));
        case FieldKind::Double:
            return XmlText::ofDouble(*static_cast<const double*>(pMember));
        case FieldKind::String:
            return *static_cast<const std::string*>(pMember);
        default:
            return {};
    }
}

void clearScalar(FieldKind nKind, void* pMember) {
    switch (nKind) {
        case FieldKind::Bool:
            *static_cast<bool*>(pMember) = false;
            break;
        case FieldKind::Int:
            *static_cast<int*>(pMember) = 0;
            break;
        case FieldKind::UnsignedShort:
            *static_cast<unsigned short*>(pMember) = 0;
            break;
        case FieldKind::Float:
            *static_cast<float*>(pMember) = 0;
            break;
        case FieldKind::Double:
            *static_cast<double*>(pMember) = 0;
            break;
        case FieldKind::String:
            static_cast<std::string*>(pMember)->clear();
            break;
        default:
            break;
    }
}

// The whole part of a number; what an int cannot hold becomes its lowest value.
int truncated(float fValue) noexcept {
    constexpr float fLimit = 2147483648.0F;
    return fValue >= -fLimit && fValue < fLimit ? static_cast<int>(fValue)
                                                : std::numeric_limits<int>::min();
}

void readScalar(const FieldDescriptor& field, const char* szText, void* pMember) {
    switch (field.nKind) {
        case FieldKind::Bool:
            XmlText::toBool(szText, *static_cast<bool*>(pMember));
            break;
        case FieldKind::Int:
            if (field.has(ReadAsFloat)) {
                auto fValue = static_cast<float>(*static_cast<int*>(pMember));
                XmlText::toFloat(szText, fValue);
                *static_cast<int*>(pMember) = truncated(fValue);
            } else {
                *static_cast<int*>(pMember) = XmlText::toInt(szText);
            }
            break;
        case FieldKind::UnsignedShort:
            *static_cast<unsigned short*>(pMember) =
                static_cast<unsigned short>(XmlText::toInt(szText));
            break;
        case FieldKind::Float:
            XmlText::toFloat(szText, *static_cast<float*>(pMember));
            break;
        case FieldKind::Double:
            XmlText::toDouble(szText, *static_cast<double*>(pMember));
            break;
        case FieldKind::String:
            *static_cast<std::string*>(pMember) = szText;
            break;
        default:
            break;
    }
}

// ---- joined lists

Ints numbersOf(const RecordDescriptor& piece, const void* pPiece) {
    Ints vecNumbers;
    for (const FieldDescriptor& field : piece) {
        vecNumbers.push_back(memberOf<int>(pPiece, field.nOffset));
    }
    return vecNumbers;
}

std::string joinedText(const FieldDescriptor& field, const void* pMember) {
    Strings vecPieces;
    if (field.nKind == FieldKind::JoinedInts) {
        for (const int nNumber : *static_cast<const Ints*>(pMember)) {
            vecPieces.push_back(JoinedText::format(field.szItem, {nNumber}));
        }
    } else {
        const RecordDescriptor& piece = field.nested();
        for (std::size_t i = 0; i < piece.access.listSize(pMember); ++i) {
            vecPieces.push_back(JoinedText::format(
                field.szItem, numbersOf(piece, piece.access.listAt(pMember, i))));
        }
    }
    return JoinedText::join(vecPieces, field.szSeparator);
}

void readJoinedInts(const FieldDescriptor& field, const Strings& vecPieces, void* pMember) {
    Ints vecNumbers;
    for (const std::string& strPiece : vecPieces) {
        const Ints vecScanned = JoinedText::scan(field.szItem, strPiece);
        vecNumbers.push_back(vecScanned.empty() ? XmlText::toInt(strPiece.c_str())
                                                : vecScanned.front());
    }
    *static_cast<Ints*>(pMember) = std::move(vecNumbers);
}

void readJoinedRecords(const FieldDescriptor& field, const Strings& vecPieces, void* pMember) {
    const RecordDescriptor& piece = field.nested();
    std::vector<Ints> vecWhole;
    for (const std::string& strPiece : vecPieces) {
        Ints vecScanned = JoinedText::scan(field.szItem, strPiece);
        if (vecScanned.size() == piece.nFieldCount) {
            vecWhole.push_back(std::move(vecScanned));
        }
    }
    piece.access.listReset(pMember, vecWhole.size());
    for (std::size_t i = 0; i < vecWhole.size(); ++i) {
        void* pPiece = piece.access.listElement(pMember, i);
        for (std::size_t n = 0; n < piece.nFieldCount; ++n) {
            memberOf<int>(pPiece, piece.pFields[n].nOffset) = vecWhole[i][n];
        }
    }
}

void readJoined(const FieldDescriptor& field, const char* szText, void* pMember) {
    const Strings vecPieces = JoinedText::split(szText, field.szSeparator);
    if (field.nKind == FieldKind::JoinedInts) {
        readJoinedInts(field, vecPieces, pMember);
    } else {
        readJoinedRecords(field, vecPieces, pMember);
    }
}

bool isJoined(const FieldDescriptor& field) noexcept {
    return field.nKind == FieldKind::JoinedInts || field.nKind == FieldKind::JoinedRecords;
}

// ---- blocks in base64

// Where the base64 text of a block grows to, against the length that the record tells.
constexpr std::int64_t BlockReserve = 1024;

bool writeBlock(const FieldDescriptor& field, const void* pRecord, XmlCursor element) {
    const auto& optBlock = memberOf<OptionalBlock>(pRecord, field.nOffset);
    if (!optBlock) {
        return true;
    }
    const int nTold = std::max(memberOf<int>(pRecord, field.nOtherOffset), 0);
    const std::size_t nLength = std::min(static_cast<std::size_t>(nTold), optBlock->size());
    std::string strText(2 * nLength + 6, '\0');
    auto nSize = static_cast<std::uint32_t>(strText.size());
    if (nLength == 0) {
        nSize = 0;
    } else if (base64Encode(optBlock->data(), static_cast<std::int32_t>(nLength),
                            reinterpret_cast<std::uint8_t*>(strText.data()), nSize) != 0) {
        return false;
    }
    strText.resize(nSize);
    element.setAttribute(field.szTag, strText);
    return true;
}

// What a base64 text decodes to; false for a text that is none, or that exceeds the capacity.
bool decodeBlock(const char* szText, std::int64_t nCapacity, std::vector<std::uint8_t>& vecBytes) {
    const std::size_t nTextLength = std::strlen(szText);
    const auto nMost = static_cast<std::int64_t>((nTextLength * 6 + 7) / 8);
    // What the text can hold bounds the memory, whatever length the record tells.
    auto nSize = static_cast<std::int32_t>(std::clamp<std::int64_t>(nCapacity, 0, nMost));
    vecBytes.resize(static_cast<std::size_t>(nSize) + 1);
    if (base64Decode(reinterpret_cast<const std::uint8_t*>(szText),
                     static_cast<std::int32_t>(nTextLength), vecBytes.data(), nSize) != 0) {
        return false;
    }
    const bool bOnlyLineEnds = std::strspn(szText, "\r\n") == nTextLength;
    vecBytes.resize(bOnlyLineEnds ? 0 : static_cast<std::size_t>(nSize));
    return true;
}

bool readBlock(const FieldDescriptor& field, XmlCursor element, void* pRecord) {
    const char* szText = element.attribute(field.szTag);
    if (szText == nullptr || *szText == '\0') {
        return true;
    }
    const int nTold = memberOf<int>(pRecord, field.nOtherOffset);
    std::vector<std::uint8_t> vecBytes;
    if (nTold != 0 && !decodeBlock(szText, nTold + BlockReserve, vecBytes)) {
        return false;
    }
    memberOf<OptionalBlock>(pRecord, field.nOffset) = std::move(vecBytes);
    return true;
}

// ---- attributes

void clearValue(const FieldDescriptor& field, void* pMember) {
    if (field.nKind == FieldKind::JoinedInts) {
        static_cast<Ints*>(pMember)->clear();
    } else if (field.nKind == FieldKind::JoinedRecords) {
        field.nested().access.listReset(pMember, 0);
    } else {
        clearScalar(field.nKind, pMember);
    }
}

void readValue(const FieldDescriptor& field, const char* szText, void* pMember) {
    if (isJoined(field)) {
        readJoined(field, szText, pMember);
    } else {
        readScalar(field, szText, pMember);
    }
}

// What an absent attribute does to the record; false when the parse is to stop.
bool missValue(const RecordDescriptor& owner, const FieldDescriptor& field, XmlCursor element,
               void* pMember) {
    switch (field.nPresence) {
        case Presence::Zeroed:
            clearValue(field, pMember);
            return true;
        case Presence::Kept:
            return true;
        case Presence::Fallback:
            readValue(field, field.szFallback, pMember);
            break;
        case Presence::Logged:
        case Presence::Required:
            break;
    }
    MappingWords::printMissing(owner, field, element, scalarText(field.nKind, pMember));
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
        clearValue(field, pMember);
    }
    readValue(field, szText, pMember);
    return true;
}

void writeAttribute(const FieldDescriptor& field, const void* pMember, XmlCursor element) {
    const std::string strText =
        isJoined(field) ? joinedText(field, pMember) : scalarText(field.nKind, pMember);
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
        clearValue(field, pMember);
        if (field.szFallback != nullptr) {
            readValue(field, field.szFallback, pMember);
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
            return writeBlock(field, pRecord, element);
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
            return readBlock(field, element, pRecord);
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
