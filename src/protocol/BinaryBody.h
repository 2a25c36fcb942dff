// What the binary forms of a body share: reading with every length checked, and writing records
// that are found by their type. Numbers are unsigned, 32 bits, most significant byte first.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "domain/DataBuffer.h"
#include "domain/DomainList.h"
#include "protocol/CommandBuffer.h"

// Walks over a payload. A read that would pass the end gives false and takes nothing.
class BodyReader {
public:
    explicit BodyReader(const CommandBuffer& in) noexcept
        : m_pNext(in.data()), m_nLeft(in.getLength()) {}

    bool atEnd() const noexcept { return m_nLeft == 0; }

    bool readU8(std::uint8_t& nValue) noexcept;
    bool readU32(std::uint32_t& nValue) noexcept;
    bool readRawU32(std::uint32_t& nValue) noexcept;  // the four bytes as they stand
    // `nCount` bytes, ended earlier by a zero byte among them.
    bool readText(std::uint32_t nCount, std::string& strText);
    // False as well for what a DataBuffer refuses, no bytes at all among it.
    bool readData(std::uint32_t nCount, DataBuffer& data);

private:
    const std::uint8_t* take(std::uint32_t nCount) noexcept;

    const std::uint8_t* m_pNext;
    std::uint32_t m_nLeft;
};

// Each gives false when the bytes do not fit into the block.
bool appendU32(std::uint32_t nValue, CommandBuffer& out);
bool appendText(const std::string& strText, CommandBuffer& out);
bool appendData(const DataBuffer& data, CommandBuffer& out);

// Lengths as they stand on the wire. A text too long for that fits no block, and fails there.
std::uint32_t lengthOf(const std::string& strText) noexcept;
std::uint32_t lengthOf(const DataBuffer& data) noexcept;

// Appends one record.
void appendBodyRecord(std::unique_ptr<BaseDomain> pRecord, DomainList& domains);
// Appends an EtResult with this code.
void appendBodyResult(std::uint32_t nCode, DomainList& domains);
