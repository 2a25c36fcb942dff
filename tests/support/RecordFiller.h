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
    void fill(const RecordDescriptor& descriptor, void* pRecord) {
        if (descriptor.base != nullptr) {
            fill(descriptor.base(), pRecord);
        }
        for (const FieldDescriptor& field : descriptor) {
            fillField(field, pRecord);
        }
    }

private:
    template <class T>
    static void put(void* pMember, T value) {
        *static_cast<T*>(pMember) = std::move(value);
    }

    void fillField(const FieldDescriptor& field, void* pRecord) {
        void* pMember = &memberOf<char>(pRecord, field.nOffset);
        switch (field.nKind) {
            case FieldKind::Bool:
                return put(pMember, m_bFlag);
            case FieldKind::Int:
                return put(pMember, m_nNext++);
            case FieldKind::UnsignedShort:
                return put(pMember, static_cast<unsigned short>(m_nNext++));
            case FieldKind::Float:
                return put(pMember, static_cast<float>(m_nNext++) + 0.5F);
            case FieldKind::Double:
                return put(pMember, m_nNext++ + 0.25);
            case FieldKind::String:
                return put(pMember, text());
            case FieldKind::Record:
            case FieldKind::Element:
                return fill(field.nested(), pMember);
            case FieldKind::RecordList:
            case FieldKind::ElementList:
            case FieldKind::JoinedRecords:
                return fillList(field.nested(), pMember);
            case FieldKind::IntList:
            case FieldKind::JoinedInts:
                put(pMember, std::vector<int>{m_nNext, -m_nNext});
                ++m_nNext;
                return;
            case FieldKind::StringList:
                return put(pMember, std::vector<std::string>{text(), ""});
            case FieldKind::Block:
                memberOf<int>(pRecord, field.nOtherOffset) = 3;
                return put(pMember, OptionalBlock({0, 255, static_cast<std::uint8_t>(m_nNext++)}));
        }
    }

    void fillList(const RecordDescriptor& element, void* pList) {
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
