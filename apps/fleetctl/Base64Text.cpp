// base64 by the standard alphabet.
#include "Base64Text.h"

#include <string_view>

namespace {

constexpr std::string_view Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char Padding = '=';

}  // namespace

std::string toBase64(const std::vector<std::uint8_t>& vecBytes) {
    std::string strText;
    std::uint32_t nBits = 0;
    int nBitCount = 0;
    for (const std::uint8_t nByte : vecBytes) {
        nBits = (nBits << 8) | nByte;
        for (nBitCount += 8; nBitCount >= 6; nBitCount -= 6) {
            strText += Alphabet[(nBits >> (nBitCount - 6)) & 0x3F];
        }
    }
    if (nBitCount > 0) {
        strText += Alphabet[(nBits << (6 - nBitCount)) & 0x3F];
    }
    strText.resize((strText.size() + 3) / 4 * 4, Padding);
    return strText;
}

std::optional<std::vector<std::uint8_t>> fromBase64(const std::string& strText) {
    const std::size_t nLast = strText.find_last_not_of(Padding);
    const std::size_t nUsed = nLast == std::string::npos ? 0 : nLast + 1;
    if (strText.size() % 4 != 0 || strText.size() - nUsed > 2) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> vecBytes;
    std::uint32_t nBits = 0;
    int nBitCount = 0;
    for (const char cDigit : std::string_view(strText).substr(0, nUsed)) {
        const std::size_t nDigit = Alphabet.find(cDigit);
        if (nDigit == std::string_view::npos) {
            return std::nullopt;
        }
        nBits = (nBits << 6) | static_cast<std::uint32_t>(nDigit);
        nBitCount += 6;
        if (nBitCount >= 8) {
            nBitCount -= 8;
            vecBytes.push_back(static_cast<std::uint8_t>(nBits >> nBitCount));
        }
    }
    return vecBytes;
}
