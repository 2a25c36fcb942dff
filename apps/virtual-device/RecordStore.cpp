// Copies records by their descriptors.
#include "virtual-device/RecordStore.h"

#include "domain/RecordDescriptor.h"

void RecordStore::put(const BaseDomain& record) {
    const std::uint32_t nId = record.getDomainId();
    m_mapRecords[nId] = fleetkit::findRecordDescriptor(nId)->access.makeCopy(record);
}

const BaseDomain* RecordStore::find(std::uint32_t nDomainId) const noexcept {
    const auto itRecord = m_mapRecords.find(nDomainId);
    return itRecord == m_mapRecords.end() ? nullptr : itRecord->second.get();
}
