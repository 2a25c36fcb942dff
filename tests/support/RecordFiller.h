// Fills any record by its descriptor with values that differ from each other.
#pragma once

#include <string>
#include <vector>

#include "domain/MemberVisitor.h"

class RecordFiller {
public:
    // All numbers and texts count on from nFirst, above the defaults of any record; every flag gets
    // bFlag.
    explicit RecordFiller(int nFirst = 1001, bool bFlag = true) : m_nNext(nFirst), m_bFlag(bFlag) {}

    // Lists get two entries, blocks three bytes and their length.
    void fill(const fleetkit::RecordDescriptor& descriptor, void* pRecord) {
        if (descriptor.base != nullptr) {
            fill(descriptor.base(), pRecord);
        }
        for (const fleetkit::FieldDescriptor& field : descriptor) {
            if (field.nKind == fleetkit::FieldKind::Block) {
                fleetkit::memberOf<int>(pRecord, field.nOtherOffset) = 3;
            }
            visitMember(field, &fleetkit::memberOf<char>(pRecord, field.nOffset),
                        [&](auto&& member, auto) { set(member); });
        }
    }

private:
    void set(bool& bFlag) { bFlag = m_bFlag; }
    void set(int& nNumber) { nNumber = m_nNext++; }
    void set(unsigned short& nNumber) { nNumber = static_cast<unsigned short>(m_nNext++); }
    void set(float& fNumber) { fNumber = static_cast<float>(m_nNext++) + 0.5F; }
    void set(double& dNumber) { dNumber = m_nNext++ + 0.25; }
    // Markup, blanks at both ends, a line end, and characters of two and of three bytes.
    void set(std::string& strText) {
        strText = " v" + std::to_string(m_nNext++) + "<&>\"'&#x41;\n\xC3\xA4\xE2\x82\xAC ";
    }
    void set(std::vector<int>& vecNumbers) {
        vecNumbers = {m_nNext, -m_nNext};
        ++m_nNext;
    }
    void set(std::vector<std::string>& vecTexts) {
        vecTexts = {"", ""};
        set(vecTexts.front());
    }
    void set(fleetkit::OptionalBlock& block) {
        block = {{0, 255, static_cast<std::uint8_t>(m_nNext++)}};
    }
    void set(fleetkit::NestedMember<void> member) { fill(member.type, member.pObject); }
    void set(fleetkit::NestedListMember<void> list) {
        list.type.access.listReset(list.pList, 2);
        fill(list.type, list.type.access.listElement(list.pList, 0));
        fill(list.type, list.type.access.listElement(list.pList, 1));
    }

    int m_nNext;
    const bool m_bFlag;
};
