// Walks over the descriptor tables.
#include "domain/RecordDescriptor.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "domain/DomainTables.h"
#include "domain/MemberVisitor.h"

namespace fleetkit {

namespace {

// Compares a member with the one at the same place of another record.
struct Comparison {
    const void* pOther;

    template <class T, class Form>
    bool operator()(const T& value, Form) const {
        return value == *static_cast<const T*>(pOther);
    }

    template <class Form>
    bool operator()(const NestedMember<const void>& member, Form) const {
        return equalRecords(member.type, member.pObject, pOther);
    }

    template <class Form>
    bool operator()(const NestedListMember<const void>& list, Form) const {
        const NestedListMember<const void> other{list.type, pOther};
        bool bSame = list.size() == other.size();
        for (std::size_t i = 0; bSame && i < list.size(); ++i) {
            bSame = equalRecords(list.type, list.at(i), other.at(i));
        }
        return bSame;
    }
};

}  // namespace

bool equalRecords(const RecordDescriptor& descriptor, const void* pLeft, const void* pRight) {
    if (descriptor.base != nullptr && !equalRecords(descriptor.base(), pLeft, pRight)) {
        return false;
    }
    return std::all_of(descriptor.begin(), descriptor.end(), [&](const FieldDescriptor& field) {
        return visitMember(field, &memberOf<char>(pLeft, field.nOffset),
                           Comparison{&memberOf<char>(pRight, field.nOffset)});
    });
}

const std::vector<const RecordDescriptor*>& recordDescriptors() {
    static const auto* const pDescriptors = [] {
        auto pAll = std::make_unique<std::vector<const RecordDescriptor*>>();
        for (const auto& describe : DomainTables::descriptors()) {
            pAll->push_back(&describe());
        }
        return pAll.release();
    }();
    return *pDescriptors;
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
