// Reflection over the records: what each of them holds, in wire order, as a table.
//
// One RecordDescriptor stands for each record class and for each inline element that a record's own
// form writes. Whatever must know all records reads these tables: the XML engine, JSON in and out,
// comparison. The tables are constant, and callable from any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "domain/BaseDomain.h"
#include "domain/DomainVectorContainer.h"

namespace fleetkit {

// How a field is held in the record, and which form it has on the wire.
enum class FieldKind : std::uint8_t {
    Bool,           // bool, an attribute "true" or "false"
    Int,            // int, an attribute in decimal
    UnsignedShort,  // unsigned short, an attribute in decimal
    Float,          // float, an attribute with six decimals
    Double,         // double, likewise
    String,         // std::string, an attribute
    Record,         // a record, a child element with the field's tag
    RecordList,     // std::vector of records, a child element with one element an entry
    IntList,        // std::vector<int>, a child element with one element a value
    StringList,     // std::vector<std::string>, likewise
    Element,        // an inline element, a child element with the field's tag
    ElementList,    // std::vector of inline elements, repeated child elements with the field's tag
    JoinedInts,     // std::vector<int>, one attribute by a pattern
    JoinedRecords,  // std::vector of records of ints, one attribute by a pattern
    Block,          // std::optional<std::vector<std::uint8_t>>, an attribute in base64
};

// What happens to a field that is absent on reading.
enum class Presence : std::uint8_t {
    Zeroed,    // set to zero, false or empty, whatever the constructor gave
    Kept,      // keeps the value it had
    Logged,    // a line is printed, and the field keeps the value it had
    Fallback,  // a line is printed, and the field takes the fallback
    Required,  // a line is printed, and the parse stops with false
};

// Ways in which a field differs from the plain form.
enum FieldFlag : std::uint8_t {
    WriteOnly = 1,    // never read
    ReadOnly = 2,     // never written: read once more into a field that stands elsewhere
    OmitEmpty = 4,    // a text that is not written while empty
    ReadAsFloat = 8,  // a number that is read with a fraction, which is cut off
    BareValues = 16,  // a list of values without the element around it
    Secret = 32,      // a text that no log shows, and that its record overwrites at its end
};

struct RecordDescriptor;

// The operations that need a record's type. Pointers to void point to the record, or to a
// std::vector of it.
struct TypeAccess {
    std::size_t nSize = 0;  // of one object, in bytes
    std::size_t (*listSize)(const void* pList) = nullptr;
    const void* (*listAt)(const void* pList, std::size_t nIndex) = nullptr;
    // Drops what the list holds; it then has nSize default objects.
    void (*listReset)(void* pList, std::size_t nSize) = nullptr;
    void (*listSwap)(void* pList, void* pOther) = nullptr;
    // Records only: a new default record, a copy of one, and what takes over the content of one.
    BaseDomain* (*create)() = nullptr;
    BaseDomain* (*copy)(const BaseDomain& source) = nullptr;
    void (*moveInto)(void* pTarget, BaseDomain& source) = nullptr;
    // Records only: a new list container of the type, and the vector inside of one.
    DomainContainer* (*createContainer)() = nullptr;
    void* (*containerList)(DomainContainer& container) = nullptr;

    // For records. The tables give plain pointers, which their caller owns, because a smart pointer
    // for each type would double the time that they take to compile.
    std::unique_ptr<BaseDomain> make() const { return std::unique_ptr<BaseDomain>(create()); }
    std::unique_ptr<BaseDomain> makeCopy(const BaseDomain& source) const {
        return std::unique_ptr<BaseDomain>(copy(source));
    }
    std::unique_ptr<DomainContainer> makeContainer() const {
        return std::unique_ptr<DomainContainer>(createContainer());
    }
    void* listElement(void* pList, std::size_t nIndex) const {
        return const_cast<void*>(listAt(pList, nIndex));
    }
};

struct FieldDescriptor {
    const char* szTag = nullptr;  // attribute or child element, exactly as on the wire
    FieldKind nKind = FieldKind::Int;
    Presence nPresence = Presence::Zeroed;
    std::uint8_t nFlags = 0;           // of FieldFlag
    std::uint32_t nOffset = 0;         // of the member
    std::uint32_t nOtherOffset = 0;    // of the member read into, or of a block's length
    const char* szReadInto = nullptr;  // the field that a value read goes to, if another
    const RecordDescriptor& (*nested)() noexcept =
        nullptr;                        // of a record, an element, a list of them
    const char* szItem = nullptr;       // tag of each value, element around repeated elements,
                                        // pattern of a joined list
    const char* szSeparator = nullptr;  // between the pieces of a joined list
    const char* szUnread = nullptr;     // field of an inline element that is not read
    const char* szDefault = nullptr;    // what the constructor gives, if not zero, false or empty
    const char* szFallback = nullptr;   // for Presence::Fallback
    const char* szAbsent = nullptr;     // words when it is absent, if any are printed
    const char* szBad = nullptr;        // of a list: words when it is absent or bad
    const char* szUnwritten = nullptr;  // words instead of the standard line when writing failed

    bool has(FieldFlag nFlag) const noexcept { return (nFlags & nFlag) != 0; }
};

struct RecordDescriptor {
    const char* szClass = nullptr;   // class name
    const char* szFamily = nullptr;  // family of records, the name of its schema file
    const char* szName = nullptr;  // domain name: the tag at the top of a body; null if never there
    const char* szList = nullptr;  // tag by which a list is recognised; null if it never is
    const char* szEntry = nullptr;  // tag of a list entry
    std::uint32_t nDomainId = 0;
    bool isElement = false;  // an inline element: no BaseDomain, no id
    bool usesLog = false;    // its lines go through the log function
    const RecordDescriptor& (*base)() noexcept =
        nullptr;  // whose fields stand first, on the same element
    const FieldDescriptor* pFields = nullptr;
    std::size_t nFieldCount = 0;
    const char* szAbsent = nullptr;  // elements: words when the element is absent
    TypeAccess access;

    const FieldDescriptor* begin() const noexcept { return pFields; }
    const FieldDescriptor* end() const noexcept { return pFields + nFieldCount; }
};

// The member that a field describes. pObject is the record (or inline element) that the descriptor
// belongs to, or one that derives from it.
template <class T>
const T& memberOf(const void* pObject, std::uint32_t nOffset) noexcept {
    return *reinterpret_cast<const T*>(static_cast<const char*>(pObject) + nOffset);
}
template <class T>
T& memberOf(void* pObject, std::uint32_t nOffset) noexcept {
    return *reinterpret_cast<T*>(static_cast<char*>(pObject) + nOffset);
}

using OptionalBlock = std::optional<std::vector<std::uint8_t>>;

// All descriptors, records before inline elements, in the order of their ids.
FLEETKIT_EXPORT const std::vector<const RecordDescriptor*>& recordDescriptors();
// The descriptor of a domain id, or null. Every record but the one that has none is found.
FLEETKIT_EXPORT const RecordDescriptor* findRecordDescriptor(std::uint32_t nDomainId) noexcept;
// The descriptor of a class name, or null.
FLEETKIT_EXPORT const RecordDescriptor* findRecordDescriptor(const std::string& strClass);

// Whether two objects that the descriptor tells of hold the same in every field.
FLEETKIT_EXPORT bool equalRecords(const RecordDescriptor& descriptor, const void* pLeft,
                                  const void* pRight);

// The operations of one type, for the generated tables.
template <class T>
struct AccessTo {
    using List = std::vector<T>;
    using Container = DomainVectorContainer<T>;

    static List& listOf(void* pList) noexcept { return *static_cast<List*>(pList); }

    static std::size_t listSize(const void* pList) {
        return static_cast<const List*>(pList)->size();
    }
    static const void* listAt(const void* pList, std::size_t nIndex) {
        return &(*static_cast<const List*>(pList))[nIndex];
    }
    static void listReset(void* pList, std::size_t nSize) { List(nSize).swap(listOf(pList)); }
    static void listSwap(void* pList, void* pOther) { listOf(pList).swap(listOf(pOther)); }
    static BaseDomain* create() { return new T; }
    static BaseDomain* copy(const BaseDomain& source) {
        return new T(static_cast<const T&>(source));
    }
    static void moveInto(void* pTarget, BaseDomain& source) {
        *static_cast<T*>(pTarget) = std::move(static_cast<T&>(source));
    }
    static DomainContainer* createContainer() { return new Container; }
    static void* containerList(DomainContainer& container) {
        return &static_cast<Container&>(container).getElements();
    }
};

template <class T>
constexpr TypeAccess elementAccess() {
    TypeAccess access;
    access.nSize = sizeof(T);
    access.listSize = AccessTo<T>::listSize;
    access.listAt = AccessTo<T>::listAt;
    access.listReset = AccessTo<T>::listReset;
    access.listSwap = AccessTo<T>::listSwap;
    return access;
}

template <class T>
constexpr TypeAccess recordAccess() {
    TypeAccess access = elementAccess<T>();
    access.create = AccessTo<T>::create;
    access.copy = AccessTo<T>::copy;
    access.moveInto = AccessTo<T>::moveInto;
    access.createContainer = AccessTo<T>::createContainer;
    access.containerList = AccessTo<T>::containerList;
    return access;
}

}  // namespace fleetkit
