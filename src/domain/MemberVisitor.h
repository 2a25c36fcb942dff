// Which type and which form a kind of field has: the one place that tells, for everybody who walks
// over records by their descriptors.
#pragma once

#include <string>
#include <type_traits>
#include <vector>

#include "domain/RecordDescriptor.h"

namespace fleetkit {

// How a field stands on its record's element.
namespace FieldForm {
struct Attribute {};  // one value in one attribute
struct Joined {};     // a list in one attribute
struct Encoded {};    // a block in one attribute
struct Values {};     // a child element, with one element a value
struct Child {};      // a child element by a mapper of its own, or one around a list of those
struct Inline {};     // a child element that the record's own mapper writes, or a row of those
}  // namespace FieldForm

// A member that is a record or an inline element. `Void` is void, or const void.
template <class Void>
struct NestedMember {
    const RecordDescriptor& type;
    Void* pObject;
};

// A member that is a std::vector of them.
template <class Void>
struct NestedListMember {
    const RecordDescriptor& type;
    Void* pList;

    std::size_t size() const { return type.access.listSize(pList); }
    const void* at(std::size_t nIndex) const { return type.access.listAt(pList, nIndex); }
};

// Stands for a type of member where there is no member.
template <class T>
struct MemberType {
    using Type = T;
};

// Calls the visitor with the MemberType and the FieldForm of a kind of field; the types of what is
// nested are NestedMember<void> and NestedListMember<void>. A visitor that does not take one of the
// types or forms does not compile, and neither does this function with a kind left out.
template <class Visitor>
decltype(auto) visitKind(FieldKind nKind, Visitor&& visitor) {
    using namespace FieldForm;
    switch (nKind) {
        case FieldKind::Bool:
            return visitor(MemberType<bool>(), Attribute());
        case FieldKind::Int:
            return visitor(MemberType<int>(), Attribute());
        case FieldKind::UnsignedShort:
            return visitor(MemberType<unsigned short>(), Attribute());
        case FieldKind::Float:
            return visitor(MemberType<float>(), Attribute());
        case FieldKind::Double:
            return visitor(MemberType<double>(), Attribute());
        case FieldKind::String:
            return visitor(MemberType<std::string>(), Attribute());
        case FieldKind::Record:
            return visitor(MemberType<NestedMember<void>>(), Child());
        case FieldKind::RecordList:
            return visitor(MemberType<NestedListMember<void>>(), Child());
        case FieldKind::IntList:
            return visitor(MemberType<std::vector<int>>(), Values());
        case FieldKind::StringList:
            return visitor(MemberType<std::vector<std::string>>(), Values());
        case FieldKind::Element:
            return visitor(MemberType<NestedMember<void>>(), Inline());
        case FieldKind::ElementList:
            return visitor(MemberType<NestedListMember<void>>(), Inline());
        case FieldKind::JoinedInts:
            return visitor(MemberType<std::vector<int>>(), Joined());
        case FieldKind::JoinedRecords:
            return visitor(MemberType<NestedListMember<void>>(), Joined());
        case FieldKind::Block:
            return visitor(MemberType<OptionalBlock>(), Encoded());
    }
    __builtin_unreachable();
}

namespace detail {

template <class T, class Void>
decltype(auto) memberAs(MemberType<T>, const FieldDescriptor& field, Void* pMember) {
    static_cast<void>(field);
    if constexpr (std::is_same_v<T, NestedMember<void>>) {
        return NestedMember<Void>{field.nested(), pMember};
    } else if constexpr (std::is_same_v<T, NestedListMember<void>>) {
        return NestedListMember<Void>{field.nested(), pMember};
    } else if constexpr (std::is_const_v<Void>) {
        return *static_cast<const T*>(pMember);
    } else {
        return *static_cast<T*>(pMember);
    }
}

}  // namespace detail

// Calls the visitor with a member and its FieldForm: the member by reference, a NestedMember or a
// NestedListMember. pMember points to a member of the field's kind.
template <class Visitor>
decltype(auto) visitMember(const FieldDescriptor& field, void* pMember, Visitor&& visitor) {
    return visitKind(field.nKind, [&](auto type, auto form) -> decltype(auto) {
        return visitor(detail::memberAs(type, field, pMember), form);
    });
}
template <class Visitor>
decltype(auto) visitMember(const FieldDescriptor& field, const void* pMember, Visitor&& visitor) {
    return visitKind(field.nKind, [&](auto type, auto form) -> decltype(auto) {
        return visitor(detail::memberAs(type, field, pMember), form);
    });
}

}  // namespace fleetkit
