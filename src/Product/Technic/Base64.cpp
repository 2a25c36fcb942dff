// Base64: checked in one pass, written in a second.
#include "Product/Technic/Base64.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace {

constexpr std::string_view Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t Padding = 64;
constexpr std::uint8_t NotOfAlphabet = 127;

constexpr std::array<std::uint8_t, 128> makeReverseTable() {
    std::array<std::uint8_t, 128> arrTable{};
    arrTable.fill(NotOfAlphabet);
    for (std::size_t nValue = 0; nValue < Alphabet.size(); ++nValue) {
        arrTable[static_cast<unsigned char>(Alphabet[nValue])] = static_cast<std::uint8_t>(nValue);
    }
    arrTable['='] = Padding;
    return arrTable;
}

constexpr std::array<std::uint8_t, 128> ReverseTable = makeReverseTable();

std::uint8_t characterFor(std::uint32_t nGroup, unsigned nShift) noexcept {
    return static_cast<std::uint8_t>(Alphabet[(nGroup >> nShift) & 0x3F]);
}

bool isLineEnd(std::uint8_t nCharacter) noexcept {
    return nCharacter == '\r' || nCharacter == '\n';
}

// The number of characters that count, or nothing when the text is not base64.
std::optional<std::int32_t> countCharacters(const std::uint8_t* pSource, std::int32_t nLength) {
    std::int32_t nCount = 0;
    int nPaddings = 0;
    for (std::int32_t nAt = 0; nAt < nLength; ++nAt) {
        const std::uint8_t nCharacter = pSource[nAt];
        const bool bBeforeLineFeed = nAt + 1 < nLength && pSource[nAt + 1] == '\n';
        if (nCharacter == '\n' || (nCharacter == '\r' && bBeforeLineFeed)) {
            continue;
        }
        if (nCharacter >= ReverseTable.size() || ReverseTable[nCharacter] == NotOfAlphabet) {
            return std::nullopt;
        }
        if (ReverseTable[nCharacter] == Padding) {
            ++nPaddings;
        } else if (nPaddings > 0) {
            return std::nullopt;
        }
        if (nPaddings > 2) {
            return std::nullopt;
        }
        ++nCount;
    }
    return nCount;
}

std::int32_t decodeGroups(const std::uint8_t* pSource, std::int32_t nLength, std::uint8_t* pDest) {
    std::int32_t nWritten = 0;
    std::uint32_t nGroup = 0;
    int nInGroup = 0;
    int nBytes = 3;
    for (std::int32_t nAt = 0; nAt < nLength; ++nAt) {
        if (isLineEnd(pSource[nAt])) {
            continue;
        }
        const std::uint8_t nValue = ReverseTable[pSource[nAt]];
        nBytes -= nValue == Padding ? 1 : 0;
        nGroup = (nGroup << 6) | (nValue & 0x3Fu);
        if (++nInGroup < 4) {
            continue;
        }
        for (int nByte = 0; nByte < nBytes; ++nByte) {
            pDest[nWritten++] = static_cast<std::uint8_t>(nGroup >> (16 - 8 * nByte));
        }
        nGroup = 0;
        nInGroup = 0;
        nBytes = 3;
    }
    return nWritten;
}

}  // namespace

int base64Encode(const std::uint8_t* pSource, std::int32_t nLength, std::uint8_t* pDest,
                 std::uint32_t& nDestSize) {
    if (pSource == nullptr || pDest == nullptr) {
        return Base64Result::NullPointer;
    }
    if (nLength < 1) {
        return Base64Result::Done;
    }
    const std::uint32_t nBytes = static_cast<std::uint32_t>(nLength);
    const std::uint32_t nNeeded = (nBytes + 2) / 3 * 4 + 1;
    if (nDestSize < nNeeded) {
        nDestSize = nNeeded;
        return Base64Result::TooSmall;
    }
    std::uint8_t* pOut = pDest;
    for (std::uint32_t nAt = 0; nAt < nBytes; nAt += 3) {
        const std::uint32_t nLeft = nBytes - nAt;
        const std::uint32_t nGroup =
            static_cast<std::uint32_t>(pSource[nAt] << 16) |
            (nLeft > 1 ? static_cast<std::uint32_t>(pSource[nAt + 1] << 8) : 0u) |
            (nLeft > 2 ? pSource[nAt + 2] : 0u);
        *pOut++ = characterFor(nGroup, 18);
        *pOut++ = characterFor(nGroup, 12);
        *pOut++ = nLeft > 1 ? characterFor(nGroup, 6) : std::uint8_t{'='};
        *pOut++ = nLeft > 2 ? characterFor(nGroup, 0) : std::uint8_t{'='};
    }
    *pOut = 0;
    nDestSize = nNeeded - 1;
    return Base64Result::Done;
}

int base64Decode(const std::uint8_t* pSource, std::int32_t nLength, std::uint8_t* pDest,
                 std::int32_t& nDestSize) {
    if (pSource == nullptr || pDest == nullptr) {
        return Base64Result::NullPointer;
    }
    const std::optional<std::int32_t> nCount = countCharacters(pSource, nLength);
    if (!nCount) {
        return Base64Result::BadCharacter;
    }
    if (*nCount == 0) {
        return Base64Result::Done;
    }
    const auto nNeeded = static_cast<std::int32_t>((std::int64_t{*nCount} * 6 + 7) / 8);
    if (nDestSize < nNeeded) {
        nDestSize = nNeeded;
        return Base64Result::TooSmall;
    }
    nDestSize = decodeGroups(pSource, nLength, pDest);
    return Base64Result::Done;
}
