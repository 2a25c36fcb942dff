// Fills any record by its descriptor with values that differ from each other.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "domain/RecordDescriptor.h"

class RecordFiller {
public:
    // All numbers and texts count on from nFirst, above the defaults of any record; every flag gets
    // bFlag.
    explicit RecordFiller(int nFirst = 1001, bool bFlag = true) : m_nNext(nFirst), m_bFlag(bFlag) {}

    // Lists get two entries, blocks a few bytes and the length that belongs to them.
    void fill(const fleetkit::RecordDescriptor& descriptor, void* pRecord) {
        if (descriptor.base != nullptr) {
            fill(descriptor.base(), pRecord);
        }
        for (const fleetkit::FieldDescriptor& field : descriptor) {
            fillField(field, pRecord);
        }
    }

private:
    template <class T>
    static void put(void* pMember, T value) {
        *static_cast<T*>(pMember) = std::move(value);
    }

    void fillField(const fleetkit::FieldDescriptor& field, void* pRecord) {
        void* pMember = &fleetkit::memberOf<char>(pRecord, field.nOffset);
        switch (field.nKind) {
            case fleetkit::FieldKind::Bool:
                return put(pMember, m_bFlag);
            case fleetkit::FieldKind::Int:
                return put(pMember, m_nNext++);
            case fleetkit::FieldKind::UnsignedShort:
                return put(pMember, static_cast<unsigned short>(m_nNext++));
            case fleetkit::FieldKind::Float:
                return put(pMember, static_cast<float>(m_nNext++) + 0.5F);
            case fleetkit::FieldKind::Double:
                return put(pMember, m_nNext++ + 0.25);
            case fleetkit::FieldKind::String:
                return put(pMember, text());
            case fleetkit::FieldKind::Record:
            case fleetkit::FieldKind::Element:
                return fill(field.nested(), pMember);
            case fleetkit::FieldKind::RecordList:
            case fleetkit::FieldKind::ElementList:
            case fleetkit::FieldKind::JoinedRecords:
                return fillList(field.nested(), pMember);
            case fleetkit::FieldKind::IntList:
            case fleetkit::FieldKind::JoinedInts:
                put(pMember, std::vector<int>{m_nNext, -m_nNext});
                ++m_nNext;
                return;
            case fleetkit::FieldKind::StringList:
                return put(pMember, std::vector<std::string>{text(), ""});
            case fleetkit::FieldKind::Block:
                fleetkit::memberOf<int>(pRecord, field.nOtherOffset) = 3;
                return put(pMember,
                           fleetkit::OptionalBlock({0, 255, static_cast<std::uint8_t>(m_nNext++)}));
        }
    }

    void fillList(const fleetkit::RecordDescriptor& element, void* pList) {
        element.access.listReset(pList, 2);
        fill(element, element.access.listElement(pList, 0));
        fill(element, element.access.listElement(pList, 1));
    }

    // Markup, blanks at both ends, a line end, and characters of two and of three bytes.
    std::string text() {
        return " v" + std::to_string(m_nNext++) + "<&>\"'&#x41;\n\xC3\xA4\xE2\x82\xAC ";
    }

    int m_nNext;
    const bool m_bFlag;
};
