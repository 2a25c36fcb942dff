// Walks over the descriptor tables.
#include "domain/RecordDescriptor.h"

#include <algorithm>
#include <cstring>

#include "domain/DomainTables.h"

namespace fleetkit {

namespace {

template <class T>
bool sameMember(const void* pLeft, const void* pRight, std::uint32_t nOffset) {
    return memberOf<T>(pLeft, nOffset) == memberOf<T>(pRight, nOffset);
}

bool sameList(const RecordDescriptor& element, const void* pLeft, const void* pRight) {
    const std::size_t nSize = element.access.listSize(pLeft);
    if (nSize != element.access.listSize(pRight)) {
        return false;
    }
    for (std::size_t i = 0; i < nSize; ++i) {
        if (!equalRecords(element, element.access.listAt(pLeft, i),
                          element.access.listAt(pRight, i))) {
            return false;
        }
    }
    return true;
}

bool sameField(const FieldDescriptor& field, const void* pLeft, const void* pRight) {
    const std::uint32_t nOffset = field.nOffset;
    switch (field.nKind) {
        case FieldKind::Bool:
            return sameMember<bool>(pLeft, pRight, nOffset);
        case FieldKind::Int:
            return sameMember<int>(pLeft, pRight, nOffset);
        case FieldKind::UnsignedShort:
            return sameMember<unsigned short>(pLeft, pRight, nOffset);
        case FieldKind::Float:
            return sameMember<float>(pLeft, pRight, nOffset);
        case FieldKind::Double:
            return sameMember<double>(pLeft, pRight, nOffset);
        case FieldKind::String:
            return sameMember<std::string>(pLeft, pRight, nOffset);
        case FieldKind::IntList:
        case FieldKind::JoinedInts:
            return sameMember<std::vector<int>>(pLeft, pRight, nOffset);
        case FieldKind::StringList:
            return sameMember<std::vector<std::string>>(pLeft, pRight, nOffset);
        case FieldKind::Block:
            return sameMember<OptionalBlock>(pLeft, pRight, nOffset);
        case FieldKind::Record:
        case FieldKind::Element:
            return equalRecords(field.nested(), &memberOf<char>(pLeft, nOffset),
                                &memberOf<char>(pRight, nOffset));
        case FieldKind::RecordList:
        case FieldKind::ElementList:
        case FieldKind::JoinedRecords:
            return sameList(field.nested(), &memberOf<char>(pLeft, nOffset),
                            &memberOf<char>(pRight, nOffset));
    }
    return false;
}

}  // namespace

bool equalRecords(const RecordDescriptor& descriptor, const void* pLeft, const void* pRight) {
    if (descriptor.base != nullptr && !equalRecords(descriptor.base(), pLeft, pRight)) {
        return false;
    }
    return std::all_of(descriptor.begin(), descriptor.end(), [&](const FieldDescriptor& field) {
        return sameField(field, pLeft, pRight);
    });
}

const std::vector<const RecordDescriptor*>& recordDescriptors() {
    static const std::vector<const RecordDescriptor*> vecDescriptors = [] {
        std::vector<const RecordDescriptor*> vecAll;
        for (const auto& describe : DomainTables::descriptors()) {
            vecAll.push_back(&describe());
        }
        return vecAll;
    }();
    return vecDescriptors;
}

const RecordDescriptor* findRecordDescriptor(std::uint32_t nDomainId) noexcept {
    return DomainTables::findById(nDomainId);
}

const RecordDescriptor* findRecordDescriptor(const std::string& strClass) {
    for (const RecordDescriptor* pDescriptor : recordDescriptors()) {
        if (strClass == pDescriptor->szClass) {
            return pDescriptor;
        }
    }
    return nullptr;
}

}  // namespace fleetkit
