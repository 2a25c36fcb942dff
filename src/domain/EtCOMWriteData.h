// EtCOMWriteData: bytes for a serial port of the device. Travels in a binary body only, so it has
// no element of its own and stands in no table of records.
#pragma once

#include <cstdint>

#include "domain/BaseDomain.h"
#include "domain/DataBuffer.h"

class EtCOMWriteData : public BaseDomain {
public:
    static constexpr std::uint32_t DomainId = 1067;

    EtCOMWriteData() noexcept : BaseDomain(DomainId) {}
    EtCOMWriteData(const EtCOMWriteData& other) : EtCOMWriteData() { *this = other; }
    EtCOMWriteData& operator=(const EtCOMWriteData& other) = default;

    std::uint32_t getComId() const noexcept { return m_nComId; }
    void setComId(std::uint32_t nComId) noexcept { m_nComId = nComId; }
    std::uint32_t getComType() const noexcept { return m_nComType; }
    void setComType(std::uint32_t nComType) noexcept { m_nComType = nComType; }
    const DataBuffer& getComData() const noexcept { return m_comData; }
    void setComData(const DataBuffer& data) { m_comData = data; }

private:
    std::uint32_t m_nComId = 0;
    std::uint32_t m_nComType = 0;
    DataBuffer m_comData;
};
