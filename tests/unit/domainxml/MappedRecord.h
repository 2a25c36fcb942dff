// A record of any type, with its text.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "domainxml/XmlMapping.h"
#include "support/CapturedOutput.h"
#include "support/RecordFiller.h"

class MappedRecord {
public:
    explicit MappedRecord(const RecordDescriptor& descriptor)
        : m_descriptor(descriptor), m_pRecord(descriptor.access.make()) {}

    static MappedRecord filled(const RecordDescriptor& descriptor, int nFirst = 1001,
                               bool bFlag = true) {
        MappedRecord record(descriptor);
        RecordFiller(nFirst, bFlag).fill(descriptor, record.get());
        return record;
    }

    void* get() const { return m_pRecord.get(); }
    BaseDomain& domain() const { return *m_pRecord; }

    // The element of the record, tagged with the class name. What a mapper prints is dropped.
    std::string text() const {
        const XmlDocument document(m_descriptor.szClass);
        captureOutput(
            [&] { EXPECT_TRUE(XmlMapping::writeRecord(m_descriptor, get(), document.root())); });
        return document.root().text();
    }

    // Reads an element; gives what was printed.
    std::string read(XmlCursor element, bool bExpected = true) {
        return captureOutput(
            [&] { EXPECT_EQ(XmlMapping::readRecord(m_descriptor, element, get()), bExpected); });
    }
    std::string read(const std::string& strText) {
        const XmlDocument document = XmlDocument::parse(strText.c_str());
        EXPECT_TRUE(document.root()) << strText;
        return read(document.root());
    }

    bool equals(const MappedRecord& other) const {
        return equalRecords(m_descriptor, get(), other.get());
    }

private:
    const RecordDescriptor& m_descriptor;
    std::unique_ptr<BaseDomain> m_pRecord;
};

// The 716 records, without the inline elements.
inline std::vector<const RecordDescriptor*> allRecords() {
    std::vector<const RecordDescriptor*> vecRecords;
    for (const RecordDescriptor* pDescriptor : recordDescriptors()) {
        if (!pDescriptor->isElement) {
            vecRecords.push_back(pDescriptor);
        }
    }
    return vecRecords;
}

// The 649 records that have a name.
inline std::vector<const RecordDescriptor*> namedRecords() {
    std::vector<const RecordDescriptor*> vecRecords = allRecords();
    std::erase_if(vecRecords, [](const RecordDescriptor* p) { return p->szName == nullptr; });
    return vecRecords;
}
