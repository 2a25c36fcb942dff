// Raw bytes as a record.
#include "domain/DataBuffer.h"

#include <cstring>

DataBuffer::DataBuffer(const DataBuffer& other) : DataBuffer() {
    *this = other;
}

DataBuffer& DataBuffer::operator=(const DataBuffer& other) {
    if (this != &other) {
        setData(other.getData(), other.getSize());
    }
    return *this;
}

bool DataBuffer::setData(const std::uint8_t* pData, std::int32_t nSize) {
    if (pData == nullptr || nSize <= 0) {
        return false;
    }
    const auto nBytes = static_cast<std::size_t>(nSize);
    if (m_pData == nullptr || m_nSize < nSize) {
        m_pData = std::make_unique<std::uint8_t[]>(nBytes);
    }
    std::memmove(m_pData.get(), pData, nBytes);
    m_nSize = nSize;
    return true;
}
