// Bytes as a test writes them down, and as buffers hold them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "domain/DomainList.h"
#include "protocol/CommandBuffer.h"

// "AF AF 00" as three bytes.
inline std::string fromHex(std::string_view strHex) {
    const auto digitOf = [](char c) { return c <= '9' ? c - '0' : c - 'A' + 10; };
    std::string strBytes;
    for (std::size_t i = 0; i + 1 < strHex.size(); i += 3) {
        strBytes.push_back(static_cast<char>(digitOf(strHex[i]) * 16 + digitOf(strHex[i + 1])));
    }
    return strBytes;
}

inline std::string repeated(const std::string& strText, std::size_t nTimes) {
    std::string strAll;
    for (std::size_t i = 0; i < nTimes; ++i) {
        strAll += strText;
    }
    return strAll;
}

inline std::string bytesOf(const CommandBuffer& buffer) {
    return {reinterpret_cast<const char*>(buffer.data()), buffer.getLength()};
}

// A block with this content and `nFree` zero bytes behind it.
inline CommandBuffer bufferOf(std::string_view strBytes, std::uint32_t nFree = 0) {
    CommandBuffer buffer;
    buffer.allocate(strBytes.size() + nFree);
    buffer.append(reinterpret_cast<const std::uint8_t*>(strBytes.data()),
                  static_cast<std::uint32_t>(strBytes.size()));
    return buffer;
}

// A payload as body parsers get it.
inline CommandBuffer payloadOf(std::string_view strBytes) {
    return bufferOf(strBytes, 1);
}

using Records = DomainList;

template <class... Record>
Records recordsOf(Record... record) {
    return {wrapSafe<BaseDomain>(std::make_unique<Record>(std::move(record)))...};
}
