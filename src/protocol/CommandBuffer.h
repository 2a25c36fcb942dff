// The byte block that encoders write into and transports read into and send from.
#pragma once

#include <cstdint>
#include <memory>

// One owned block of bytes: `getCapacity()` bytes are allocated, the first `getLength()` of them
// are content, and everything behind the content is zero unless somebody wrote there through
// `data()`.
//
// Movable, not copyable; a moved-from buffer holds no block. No operation throws: a size that is
// refused and memory that is not there both give false. Belongs to one thread at a time.
//
//     CommandBuffer buffer;
//     if (buffer.allocate(6) && buffer.append(toNetworkOrder(nNumber))) ...
class CommandBuffer {
public:
    CommandBuffer() = default;
    CommandBuffer(CommandBuffer&& other) noexcept;
    CommandBuffer& operator=(CommandBuffer&& other) noexcept;
    CommandBuffer(const CommandBuffer&) = delete;
    CommandBuffer& operator=(const CommandBuffer&) = delete;
    ~CommandBuffer() = default;

    // Makes a zeroed block of exactly `nSize` bytes without content. A block of that size is
    // reused, any other one is given up first. False for 0, for more than 2147483647, and without
    // memory; no block is held after the last of these.
    bool allocate(std::uint64_t nSize);

    // Enlarges the block to at least `nCapacity` bytes, keeping all bytes and the length; the new
    // ones are zero. False, with everything as it was, for a size that `allocate` refuses.
    bool grow(std::uint64_t nCapacity);

    // Each appends behind the content. False, with nothing written, without a source, without a
    // block, or when the bytes do not fit. Numbers are written as they stand in memory: the caller
    // brings them into network order.
    bool append(const std::uint8_t* pSource, std::uint32_t nCount);
    bool append(std::uint32_t nValue);
    bool append(std::uint16_t nValue);
    bool append(const CommandBuffer& other);

    void release() noexcept;

    std::uint8_t* data() noexcept { return m_pBase.get(); }  // null without a block
    const std::uint8_t* data() const noexcept { return m_pBase.get(); }
    std::uint32_t getLength() const noexcept { return m_nLength; }
    std::uint32_t getCapacity() const noexcept { return m_nCapacity; }
    void setLength(std::uint32_t nLength) noexcept;  // at most the capacity

private:
    std::unique_ptr<std::uint8_t[]> m_pBase;
    std::uint32_t m_nCapacity = 0;
    std::uint32_t m_nLength = 0;
};
