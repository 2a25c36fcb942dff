// Numbers as they stand on the wire: most significant byte first.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

constexpr std::uint16_t toNetworkOrder(std::uint16_t nValue) noexcept {
    if constexpr (std::endian::native == std::endian::big) {
        return nValue;
    }
    return static_cast<std::uint16_t>((nValue << 8) | (nValue >> 8));
}

constexpr std::uint32_t toNetworkOrder(std::uint32_t nValue) noexcept {
    if constexpr (std::endian::native == std::endian::big) {
        return nValue;
    }
    return (nValue << 24) | ((nValue & 0xFF00U) << 8) | ((nValue >> 8) & 0xFF00U) | (nValue >> 24);
}

// Reads need no alignment; the caller has checked that the bytes are there.
inline std::uint16_t readNetworkU16(const std::uint8_t* pBytes) noexcept {
    return static_cast<std::uint16_t>((pBytes[0] << 8) | pBytes[1]);
}

inline std::uint32_t readNetworkU32(const std::uint8_t* pBytes) noexcept {
    std::uint32_t nValue = 0;
    std::memcpy(&nValue, pBytes, sizeof nValue);
    return toNetworkOrder(nValue);
}
