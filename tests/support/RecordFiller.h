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
    void fillField(const FieldDescriptor& field, void* pRecord) {
        void* pMember = &memberOf<char>(pRecord, field.nOffset);
        switch (field.nKind) {
            case FieldKind::Bool:
                *static_cast<bool*>(pMember) = m_bFlag;
                break;
            case FieldKind::Int:
                *static_cast<int*>(pMember) = m_nNext++;
                break;
            case FieldKind::UnsignedShort:
                *static_cast<unsigned short*>(pMember) = static_cast<unsigned short>(m_nNext++);
                break;
            case FieldKind::Float:
                *static_cast<float*>(pMember) = static_cast<float>(m_nNext++) + 0.5F;
                break;
            case FieldKind::Double:
                *static_cast<double*>(pMember) = m_nNext++ + 0.25;
                break;
            case FieldKind::String:
                *static_cast<std::string*>(pMember) = text();
                break;
            case FieldKind::Record:
            case FieldKind::Element:
                fill(field.nested(), pMember);
                break;
            case FieldKind::RecordList:
            case FieldKind::ElementList:
            case FieldKind::JoinedRecords:
                fillList(field.nested(), pMember);
                break;
            case FieldKind::IntList:
            case FieldKind::JoinedInts:
                *static_cast<std::vector<int>*>(pMember) = {m_nNext, -m_nNext};
                ++m_nNext;
                break;
            case FieldKind::StringList:
                *static_cast<std::vector<std::string>*>(pMember) = {text(), ""};
                break;
            case FieldKind::Block:
                *static_cast<OptionalBlock*>(pMember) =
                    std::vector<std::uint8_t>{0, 255, static_cast<std::uint8_t>(m_nNext++)};
                memberOf<int>(pRecord, field.nOtherOffset) = 3;
                break;
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
