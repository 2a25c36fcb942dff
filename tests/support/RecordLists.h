// The records of the vocabulary, for tests that go through all of them.
#pragma once

#include <vector>

#include "domain/RecordDescriptor.h"

// The 716 records, without the inline elements.
inline std::vector<const RecordDescriptor*> allRecords() {
    std::vector<const RecordDescriptor*> vecRecords = recordDescriptors();
    std::erase_if(vecRecords, [](const RecordDescriptor* p) { return p->isElement; });
    return vecRecords;
}

// The 649 records that have a name.
inline std::vector<const RecordDescriptor*> namedRecords() {
    std::vector<const RecordDescriptor*> vecRecords = allRecords();
    std::erase_if(vecRecords, [](const RecordDescriptor* p) { return p->szName == nullptr; });
    return vecRecords;
}

// Whether two objects hold the same in one field.
inline bool equalFields(const FieldDescriptor& field, const void* pLeft, const void* pRight) {
    RecordDescriptor one;
    one.pFields = &field;
    one.nFieldCount = 1;
    return equalRecords(one, pLeft, pRight);
}
