// EtFileDataPack: a piece of a file. Travels in a binary body only, so it has no element of its own
// and stands in no table of records.
#pragma once

#include <cstdint>

#include "domain/BaseDomain.h"
#include "domain/DataBuffer.h"

class EtFileDataPack : public BaseDomain {
public:
    static constexpr std::uint32_t DomainId = 1125;

    EtFileDataPack() noexcept : BaseDomain(DomainId) {}
    EtFileDataPack(const EtFileDataPack& other) : EtFileDataPack() { *this = other; }
    EtFileDataPack& operator=(const EtFileDataPack& other) = default;

    const DataBuffer& getDataBuffer() const noexcept { return m_dataBuffer; }
    void setDataBuffer(const DataBuffer& data) { m_dataBuffer = data; }
    std::uint8_t getPackFlag() const noexcept { return m_nPackFlag; }  // carried as it stands
    void setPackFlag(std::uint8_t nPackFlag) noexcept { m_nPackFlag = nPackFlag; }

private:
    DataBuffer m_dataBuffer;
    std::uint8_t m_nPackFlag = 0;
};
