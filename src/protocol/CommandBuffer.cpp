// A block of bytes with a write position.
#include "protocol/CommandBuffer.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace {

// Lengths travel as signed numbers elsewhere in the system.
constexpr std::uint64_t MaxSize = std::numeric_limits<std::int32_t>::max();

std::unique_ptr<std::uint8_t[]> makeZeroedBlock(std::uint64_t nSize) {
    return std::unique_ptr<std::uint8_t[]>(new (std::nothrow) std::uint8_t[nSize]());
}

}  // namespace

CommandBuffer::CommandBuffer(CommandBuffer&& other) noexcept
    : m_pBase(std::move(other.m_pBase)),
      m_nCapacity(std::exchange(other.m_nCapacity, 0)),
      m_nLength(std::exchange(other.m_nLength, 0)) {}

CommandBuffer& CommandBuffer::operator=(CommandBuffer&& other) noexcept {
    CommandBuffer taken(std::move(other));
    std::swap(m_pBase, taken.m_pBase);
    std::swap(m_nCapacity, taken.m_nCapacity);
    std::swap(m_nLength, taken.m_nLength);
    return *this;
}

bool CommandBuffer::allocate(std::uint64_t nSize) {
    if (nSize < 1 || nSize > MaxSize) {
        return false;
    }
    if (m_pBase && m_nCapacity == nSize) {
        std::memset(m_pBase.get(), 0, m_nCapacity);
        m_nLength = 0;
        return true;
    }
    release();
    m_pBase = makeZeroedBlock(nSize);
    if (!m_pBase) {
        return false;
    }
    m_nCapacity = static_cast<std::uint32_t>(nSize);
    return true;
}

bool CommandBuffer::grow(std::uint64_t nCapacity) {
    if (!m_pBase) {
        return allocate(nCapacity);
    }
    if (nCapacity <= m_nCapacity) {
        return nCapacity > 0;
    }
    if (nCapacity > MaxSize) {
        return false;
    }
    auto pGrown = makeZeroedBlock(nCapacity);
    if (!pGrown) {
        return false;
    }
    std::memcpy(pGrown.get(), m_pBase.get(), m_nCapacity);
    m_pBase = std::move(pGrown);
    m_nCapacity = static_cast<std::uint32_t>(nCapacity);
    return true;
}

bool CommandBuffer::append(const std::uint8_t* pSource, std::uint32_t nCount) {
    if (!pSource || !m_pBase || nCount > m_nCapacity - m_nLength) {
        return false;
    }
    std::memmove(m_pBase.get() + m_nLength, pSource, nCount);
    m_nLength += nCount;
    return true;
}

bool CommandBuffer::append(std::uint32_t nValue) {
    return append(reinterpret_cast<const std::uint8_t*>(&nValue), sizeof nValue);
}

bool CommandBuffer::append(std::uint16_t nValue) {
    return append(reinterpret_cast<const std::uint8_t*>(&nValue), sizeof nValue);
}

bool CommandBuffer::append(const CommandBuffer& other) {
    return append(other.data(), other.getLength());
}

void CommandBuffer::release() noexcept {
    m_pBase.reset();
    m_nCapacity = 0;
    m_nLength = 0;
}

void CommandBuffer::setLength(std::uint32_t nLength) noexcept {
    m_nLength = std::min(nLength, m_nCapacity);
}
