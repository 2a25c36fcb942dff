// A record of any type, with its text.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "domainxml/XmlMapping.h"
#include "support/CapturedOutput.h"
#include "support/RecordFiller.h"
#include "support/RecordLists.h"

class MappedRecord {
public:
    explicit MappedRecord(const fleetkit::RecordDescriptor& descriptor)
        : m_pDescriptor(&descriptor), m_pRecord(descriptor.access.make()) {}

    static MappedRecord filled(const fleetkit::RecordDescriptor& descriptor, int nFirst = 1001,
                               bool bFlag = true) {
        MappedRecord record(descriptor);
        RecordFiller(nFirst, bFlag).fill(descriptor, record.get());
        return record;
    }

    void* get() const { return m_pRecord.get(); }
    BaseDomain& domain() const { return *m_pRecord; }

    // The element of the record, tagged with the class name. What a mapper prints is dropped.
    std::string text() const { return text(m_pDescriptor->szClass); }
    std::string text(const char* szTag) const {
        const XmlDocument document(szTag);
        captureOutput(
            [&] { EXPECT_TRUE(XmlMapping::writeRecord(*m_pDescriptor, get(), document.root())); });
        return document.root().text();
    }

    // Reads an element; gives what was printed.
    std::string read(XmlCursor element, bool bExpected = true) {
        return captureOutput(
            [&] { EXPECT_EQ(XmlMapping::readRecord(*m_pDescriptor, element, get()), bExpected); });
    }
    std::string read(const std::string& strText, bool bExpected = true) {
        const XmlDocument document = XmlDocument::parse(strText.c_str());
        EXPECT_TRUE(document.root()) << strText;
        return read(document.root(), bExpected);
    }

    bool equals(const MappedRecord& other) const {
        return fleetkit::equalRecords(*m_pDescriptor, get(), other.get());
    }

private:
    const fleetkit::RecordDescriptor* m_pDescriptor;
    std::unique_ptr<BaseDomain> m_pRecord;
};
