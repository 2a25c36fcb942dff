// Bytes of a binary body, one field at a time.
#include "protocol/BinaryBody.h"

#include <algorithm>
#include <cstring>

#include "domain/EtResult.h"
#include "protocol/NetworkOrder.h"

const std::uint8_t* BodyReader::take(std::uint32_t nCount) noexcept {
    if (nCount > m_nLeft) {
        return nullptr;
    }
    const std::uint8_t* pTaken = m_pNext;
    m_pNext += nCount;
    m_nLeft -= nCount;
    return pTaken;
}

bool BodyReader::readU8(std::uint8_t& nValue) noexcept {
    const std::uint8_t* pByte = take(1);
    if (!pByte) {
        return false;
    }
    nValue = *pByte;
    return true;
}

bool BodyReader::readRawU32(std::uint32_t& nValue) noexcept {
    const std::uint8_t* pBytes = take(sizeof nValue);
    if (!pBytes) {
        return false;
    }
    std::memcpy(&nValue, pBytes, sizeof nValue);
    return true;
}

bool BodyReader::readU32(std::uint32_t& nValue) noexcept {
    if (!readRawU32(nValue)) {
        return false;
    }
    nValue = toNetworkOrder(nValue);
    return true;
}

bool BodyReader::readText(std::uint32_t nCount, std::string& strText) {
    const std::uint8_t* pText = take(nCount);
    if (!pText) {
        return false;
    }
    strText.assign(pText, std::find(pText, pText + nCount, std::uint8_t{0}));
    return true;
}

bool BodyReader::readData(std::uint32_t nCount, DataBuffer& data) {
    // A count that is no positive int32 cannot have arrived: blocks are never that large.
    const std::uint8_t* pBytes = take(nCount);
    return data.setData(pBytes, static_cast<std::int32_t>(nCount));
}

bool appendU32(std::uint32_t nValue, CommandBuffer& out) {
    return out.append(toNetworkOrder(nValue));
}

bool appendText(const std::string& strText, CommandBuffer& out) {
    return out.append(reinterpret_cast<const std::uint8_t*>(strText.data()), lengthOf(strText));
}

bool appendData(const DataBuffer& data, CommandBuffer& out) {
    return data.getSize() == 0 || out.append(data.getData(), lengthOf(data));
}

std::uint32_t lengthOf(const std::string& strText) noexcept {
    return static_cast<std::uint32_t>(strText.size());
}

std::uint32_t lengthOf(const DataBuffer& data) noexcept {
    return static_cast<std::uint32_t>(data.getSize());
}

void appendBodyRecord(std::unique_ptr<BaseDomain> pRecord, DomainList& domains) {
    domains.push_back(wrapSafe<BaseDomain>(std::move(pRecord)));
}

void appendBodyResult(std::uint32_t nCode, DomainList& domains) {
    auto pResult = std::make_unique<EtResult>();
    pResult->setCode(static_cast<int>(nCode));
    appendBodyRecord(std::move(pResult), domains);
}
