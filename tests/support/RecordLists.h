// The records of the vocabulary, for tests that go through all of them.
#pragma once

#include <vector>

#include "domain/RecordDescriptor.h"

// The 716 records, without the inline elements.
inline std::vector<const fleetkit::RecordDescriptor*> allRecords() {
    std::vector<const fleetkit::RecordDescriptor*> vecRecords = fleetkit::recordDescriptors();
    std::erase_if(vecRecords, [](const fleetkit::RecordDescriptor* p) { return p->isElement; });
    return vecRecords;
}

// The 649 records that have a name.
inline std::vector<const fleetkit::RecordDescriptor*> namedRecords() {
    std::vector<const fleetkit::RecordDescriptor*> vecRecords = allRecords();
    std::erase_if(vecRecords,
                  [](const fleetkit::RecordDescriptor* p) { return p->szName == nullptr; });
    return vecRecords;
}

// Whether two objects hold the same in one field.
inline bool equalFields(const fleetkit::FieldDescriptor& field, const void* pLeft,
                        const void* pRight) {
    fleetkit::RecordDescriptor one;
    one.pFields = &field;
    one.nFieldCount = 1;
    return fleetkit::equalRecords(one, pLeft, pRight);
}
