// Reads UTF-8 character by character.
#include "VisibleText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace {

struct Character {
    std::uint32_t nCode;  // of a byte that begins no character, the byte
    std::size_t nLength;  // in bytes; 0 for such a byte
};

Character firstCharacter(std::string_view text) {
    const auto nLead = static_cast<unsigned char>(text.front());
    if (nLead < 0x80) {
        return {nLead, 1};
    }
    const std::size_t nLength = nLead >= 0xF0 ? 4 : nLead >= 0xE0 ? 3 : 2;
    if (nLead < 0xC2 || nLead > 0xF4 || text.size() < nLength) {
        return {nLead, 0};
    }
    std::uint32_t nCode = nLead & (0x7FU >> nLength);
    for (const char cNext : text.substr(1, nLength - 1)) {
        if ((cNext & 0xC0) != 0x80) {
            return {nLead, 0};
        }
        nCode = (nCode << 6) | (static_cast<unsigned char>(cNext) & 0x3FU);
    }
    constexpr std::uint32_t Least[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool bSurrogate = nCode >= 0xD800 && nCode <= 0xDFFF;
    if (nCode < Least[nLength] || nCode > 0x10FFFF || bSurrogate) {
        return {nLead, 0};
    }
    return {nCode, nLength};
}

// Controls of terminals, ends of lines, and what turns the direction of a text.
bool steers(std::uint32_t nCode) {
    struct Range {
        std::uint32_t nFirst;
        std::uint32_t nLast;
    };
    constexpr Range Ranges[] = {{0x00, 0x1F},     {0x7F, 0x9F},     {0x61C, 0x61C},
                                {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}};
    return std::ranges::any_of(
        Ranges, [&](const Range& range) { return nCode >= range.nFirst && nCode <= range.nLast; });
}

// With escapes where they are asked for.
std::string escaped(std::string_view text, bool bBytes, bool bControls) {
    std::string strResult;
    while (!text.empty()) {
        const auto [nCode, nLength] = firstCharacter(text);
        if (nLength == 0 && bBytes) {
            strResult += fmt::format("\\x{:02X}", nCode);
        } else if (nLength != 0 && bControls && steers(nCode)) {
            strResult += fmt::format("\\u{:04X}", nCode);
        } else {
            strResult += text.substr(0, std::max<std::size_t>(nLength, 1));
        }
        text.remove_prefix(std::max<std::size_t>(nLength, 1));
    }
    return strResult;
}

void makeBytesVisible(Json& json) {
    if (json.is_string()) {
        json = escaped(json.get_ref<const std::string&>(), true, false);
    } else if (json.is_structured()) {
        std::ranges::for_each(json, makeBytesVisible);
    }
}

}  // namespace

std::string visibleText(const std::string& strText) {
    return escaped(strText, true, true);
}

std::string jsonText(Json json) {
    makeBytesVisible(json);
    return escaped(json.dump(), false, true);
}
