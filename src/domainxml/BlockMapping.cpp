// A block of bytes in one attribute.
#include "domainxml/BlockMapping.h"

#include <algorithm>
#include <cstring>

#include "Product/Technic/Base64.h"

using namespace fleetkit;

namespace BlockMapping {

namespace {

// How far a block may exceed the length that the record tells.
constexpr std::int64_t BlockReserve = 1024;

// What a base64 text decodes to; false for a text that is not base64, or exceeds the capacity.
bool decodeBlock(const char* szText, std::int64_t nCapacity, std::vector<std::uint8_t>& vecBytes) {
    const std::size_t nTextLength = std::strlen(szText);
    const auto nMost = static_cast<std::int64_t>((nTextLength * 6 + 7) / 8);
    // What the text can hold bounds the memory, whatever length the record tells.
    auto nSize = static_cast<std::int32_t>(std::clamp<std::int64_t>(nCapacity, 0, nMost));
    vecBytes.resize(static_cast<std::size_t>(nSize) + 1);
    if (base64Decode(reinterpret_cast<const std::uint8_t*>(szText),
                     static_cast<std::int32_t>(nTextLength), vecBytes.data(), nSize) != 0) {
        return false;
    }
    const bool bOnlyLineEnds = std::strspn(szText, "\r\n") == nTextLength;
    vecBytes.resize(bOnlyLineEnds ? 0 : static_cast<std::size_t>(nSize));
    return true;
}

}  // namespace

bool write(const FieldDescriptor& field, const void* pRecord, XmlCursor element) {
    const auto& optBlock = memberOf<OptionalBlock>(pRecord, field.nOffset);
    if (!optBlock) {
        return true;
    }
    const int nTold = std::max(memberOf<int>(pRecord, field.nOtherOffset), 0);
    const std::size_t nLength = std::min(static_cast<std::size_t>(nTold), optBlock->size());
    std::string strText(2 * nLength + 6, '\0');
    auto nSize = static_cast<std::uint32_t>(strText.size());
    if (nLength == 0) {
        nSize = 0;
    } else if (base64Encode(optBlock->data(), static_cast<std::int32_t>(nLength),
                            reinterpret_cast<std::uint8_t*>(strText.data()), nSize) != 0) {
        return false;
    }
    strText.resize(nSize);
    element.setAttribute(field.szTag, strText);
    return true;
}

bool read(const FieldDescriptor& field, XmlCursor element, void* pRecord) {
    const char* szText = element.attribute(field.szTag);
    if (szText == nullptr || *szText == '\0') {
        return true;
    }
    const int nTold = memberOf<int>(pRecord, field.nOtherOffset);
    std::vector<std::uint8_t> vecBytes;
    if (nTold != 0 && !decodeBlock(szText, nTold + BlockReserve, vecBytes)) {
        return false;
    }
    memberOf<OptionalBlock>(pRecord, field.nOffset) = std::move(vecBytes);
    return true;
}

}  // namespace BlockMapping
