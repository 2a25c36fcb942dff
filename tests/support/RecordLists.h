// The records of the vocabulary, for tests that go through all of them.
#pragma once

#include <algorithm>
#include <vector>

#include "domain/RecordDescriptor.h"

// The records, without the inline elements.
inline std::vector<const fleetkit::RecordDescriptor*> allRecords() {
    std::vector<const fleetkit::RecordDescriptor*> vecRecords = fleetkit::recordDescriptors();
    std::erase_if(vecRecords, [](const fleetkit::RecordDescriptor* p) { return p->isElement; });
    return vecRecords;
}

// The records that have a name.
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

// Whether reading a record and writing it gives the same text: not where a field is written and not
// read, or read into another one.
inline bool isTwoWay(const fleetkit::RecordDescriptor& descriptor) {
    return (descriptor.base == nullptr || isTwoWay(descriptor.base())) &&
           std::ranges::all_of(descriptor, [](const fleetkit::FieldDescriptor& field) {
               return !field.has(fleetkit::WriteOnly) && field.szReadInto == nullptr &&
                      field.szUnread == nullptr &&
                      (field.nested == nullptr || isTwoWay(field.nested()));
           });
}
