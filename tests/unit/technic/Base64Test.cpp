// Base64: both directions as tables, with all that a call leaves behind.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <tuple>
#include <utility>

#include "Product/Technic/Base64.h"

namespace {

// The result, the size afterwards, and what was written.
using Outcome = std::tuple<int, std::int64_t, std::string>;

template <class Size>
using Call = int (*)(const std::uint8_t*, std::int32_t, std::uint8_t*, Size&);

template <class Size>
Outcome outcomeOf(Call<Size> pCall, const std::string& strSource, Size nRoom) {
    constexpr char Untouched = '#';
    std::string strDest(64, Untouched);
    const int nResult = pCall(reinterpret_cast<const std::uint8_t*>(strSource.data()),
                              static_cast<std::int32_t>(strSource.size()),
                              reinterpret_cast<std::uint8_t*>(strDest.data()), nRoom);
    strDest.erase(strDest.find_last_not_of(Untouched) + 1);
    return {nResult, nRoom, strDest};
}

}  // namespace

TEST(Base64, EncodesAndDecodes) {
    const std::pair<std::string, std::string> arrCases[] = {
        {"f", "Zg=="},
        {"fo", "Zm8="},
        {"foobar", "Zm9vYmFy"},
        {std::string("\0\0\0", 3), "AAAA"},
        {"\xFB\xEF\xBE\xFF", "++++/w=="},
    };
    for (const auto& [strPlain, strText] : arrCases) {
        const auto nLength = static_cast<std::uint32_t>(strText.size());
        EXPECT_EQ(outcomeOf(base64Encode, strPlain, nLength + 1),
                  Outcome(0, nLength, strText + '\0'));
        EXPECT_EQ(outcomeOf(base64Encode, strPlain, nLength), Outcome(-16, nLength + 1, ""));
        EXPECT_EQ(outcomeOf(base64Decode, strText, 64), Outcome(0, strPlain.size(), strPlain));
    }
    EXPECT_EQ(outcomeOf(base64Encode, "", 9u), Outcome(0, 9, ""));
}

TEST(Base64, NullIsRefusedWhateverTheLength) {
    std::uint8_t nByte = 0;
    std::uint32_t nUnsignedSize = 1;
    std::int32_t nSize = 1;
    EXPECT_EQ(base64Encode(nullptr, 0, &nByte, nUnsignedSize), -4);
    EXPECT_EQ(base64Encode(&nByte, 1, nullptr, nUnsignedSize), -4);
    EXPECT_EQ(base64Decode(nullptr, 0, &nByte, nSize), -4);
    EXPECT_EQ(base64Decode(&nByte, 1, nullptr, nSize), -4);
}

TEST(Base64, DecodesPartsAndLineEndsAsTold) {
    const std::tuple<std::string, std::int32_t, Outcome> arrCases[] = {
        {"Zm8=\r\n", 64, {0, 2, "fo"}},
        {"Zm9v\nYm\r\nFy", 64, {0, 6, "foobar"}},
        {"Zm9vYmE", 64, {0, 3, "foo"}},  // a last group that is not whole
        {"==", 64, {0, 0, ""}},
        {"", 64, {0, 64, ""}},  // nothing to decode leaves the size
        {"\n\r\n", 64, {0, 64, ""}},
        {"Zm8=", 2, {-16, 3, ""}},  // the room is that of whole groups
        {"Zm9v", 3, {0, 3, "foo"}},
        {"Zm9v", -1, {-16, 3, ""}},
        {"Z===", 64, {-18, 64, ""}},
        {"Zg==A", 64, {-18, 64, ""}},
        {"Zm9v\r", 64, {-18, 64, ""}},  // a carriage return without its line feed
        {"Zm\rv", 64, {-18, 64, ""}},
        {"Zm 9v", 64, {-18, 64, ""}},
        {"Zm9\x80", 64, {-18, 64, ""}},
    };
    for (const auto& [strText, nRoom, outcome] : arrCases) {
        EXPECT_EQ(outcomeOf(base64Decode, strText, nRoom), outcome) << strText;
    }
}
