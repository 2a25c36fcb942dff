// DataBuffer: raw bytes as a record, for the command bodies that are not XML.
#pragma once

#include <memory>

#include "domain/BaseDomain.h"

class DataBuffer : public BaseDomain {
public:
    static constexpr std::uint32_t DomainId = 416;

    DataBuffer() noexcept : BaseDomain(DomainId) {}
    DataBuffer(const DataBuffer& other);
    DataBuffer& operator=(const DataBuffer& other);

    // Copies nSize bytes in. False, with the old content kept, for a null source or a size that is
    // not positive. A block held that is large enough is used again.
    bool setData(const std::uint8_t* pData, std::int32_t nSize);

    // Null, with size 0, until the first setData.
    const std::uint8_t* getData() const noexcept { return m_pData.get(); }
    std::int32_t getSize() const noexcept { return m_nSize; }

private:
    std::int32_t m_nSize = 0;  // bytes held, which doubles as the capacity
    std::unique_ptr<std::uint8_t[]> m_pData;
};
