// The data block of a binary command.
#include "protocol/BinCommandParam.h"

#include <cstring>
#include <new>
#include <utility>

#include "protocol/ProtocolType.h"

BinCommandParam::BinCommandParam()
    : CommandParam(ProtocolType::Binary), m_pData(std::make_unique<std::uint8_t[]>(SmallBlock)) {}

void BinCommandParam::setData(const std::uint8_t* data, std::int32_t size) {
    if (size < 0 || (!data && size > 0)) {
        return;
    }
    const auto nSize = static_cast<std::uint32_t>(size);
    std::unique_ptr<std::uint8_t[]> pOld;  // kept to the end: its bytes may be the source
    if (size > SmallBlock) {
        pOld = std::move(m_pData);
        m_pData.reset(new (std::nothrow) std::uint8_t[nSize]);
    }
    if (!m_pData) {
        return;
    }
    if (nSize > 0) {
        std::memmove(m_pData.get(), data, nSize);
    }
    m_nDataLength = nSize;
}
