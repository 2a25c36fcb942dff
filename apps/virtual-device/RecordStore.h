// The records that a device keeps, one of each type.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <stdexcept>

#include "domain/BaseDomain.h"

// Copies share the records, which never change: a record is replaced whole.
class RecordStore {
public:
    // Keeps a copy in place of the record of the same type. A record without an id is not kept.
    void put(const BaseDomain& record);

    // The record of this type, or null.
    const BaseDomain* find(std::uint32_t nDomainId) const noexcept;

    // Throws std::logic_error when there is none.
    template <class Record>
    const Record& get() const {
        const BaseDomain* pRecord = find(Record::DomainId);
        if (!pRecord) {
            throw std::logic_error("the virtual device lacks a record");
        }
        return static_cast<const Record&>(*pRecord);
    }

private:
    std::map<std::uint32_t, std::shared_ptr<const BaseDomain>> m_mapRecords;
};
