// Base64: both directions as tables, and what each refusal leaves behind.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>

#include "Product/Technic/Base64.h"

namespace {

constexpr std::uint8_t Untouched = 0xEE;

struct Encoded {
    int m_nResult;
    std::uint32_t m_nSize;
    std::array<std::uint8_t, 64> m_arrDest;
};

Encoded encode(const std::string& strPlain, std::uint32_t nRoom) {
    Encoded objOut{0, nRoom, {}};
    objOut.m_arrDest.fill(Untouched);
    objOut.m_nResult = base64Encode(reinterpret_cast<const std::uint8_t*>(strPlain.data()),
                                    static_cast<std::int32_t>(strPlain.size()),
                                    objOut.m_arrDest.data(), objOut.m_nSize);
    return objOut;
}

struct Decoded {
    int m_nResult;
    std::int32_t m_nSize;
    std::array<std::uint8_t, 64> m_arrDest;
    std::string text() const { return {m_arrDest.begin(), m_arrDest.begin() + m_nSize}; }
};

Decoded decode(const std::string& strText, std::int32_t nRoom = 64) {
    Decoded objOut{0, nRoom, {}};
    objOut.m_arrDest.fill(Untouched);
    objOut.m_nResult = base64Decode(reinterpret_cast<const std::uint8_t*>(strText.data()),
                                    static_cast<std::int32_t>(strText.size()),
                                    objOut.m_arrDest.data(), objOut.m_nSize);
    return objOut;
}

}  // namespace

TEST(Base64, EncodesAndDecodes) {
    const struct {
        std::string m_strPlain;
        std::string m_strText;
    } arrCases[] = {
        {"f", "Zg=="},
        {"fo", "Zm8="},
        {"foo", "Zm9v"},
        {"foobar", "Zm9vYmFy"},
        {std::string("\0\0\0", 3), "AAAA"},
        {"\xFB\xEF\xBE\xFF", "++++/w=="},
    };
    for (const auto& objCase : arrCases) {
        const auto nLength = static_cast<std::uint32_t>(objCase.m_strText.size());
        const Encoded objEncoded = encode(objCase.m_strPlain, nLength + 1);
        EXPECT_EQ(objEncoded.m_nResult, 0);
        EXPECT_EQ(objEncoded.m_nSize, nLength);
        EXPECT_STREQ(reinterpret_cast<const char*>(objEncoded.m_arrDest.data()),
                     objCase.m_strText.c_str());
        EXPECT_EQ(objEncoded.m_arrDest[nLength + 1], Untouched);

        const Decoded objDecoded = decode(objCase.m_strText);
        EXPECT_EQ(objDecoded.m_nResult, 0);
        EXPECT_EQ(objDecoded.text(), objCase.m_strPlain);
    }
}

TEST(Base64, EncodingTellsTheRoomItNeeds) {
    const Encoded objShort = encode("foo", 4);
    EXPECT_EQ(objShort.m_nResult, -16);
    EXPECT_EQ(objShort.m_nSize, 5u);
    EXPECT_EQ(objShort.m_arrDest[0], Untouched);
    const Encoded objEmpty = encode("", 9);
    EXPECT_EQ(objEmpty.m_nResult, 0);
    EXPECT_EQ(objEmpty.m_nSize, 9u);
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
    const struct {
        std::string m_strText;
        std::int32_t m_nRoom;
        int m_nResult;
        std::int32_t m_nSize;
    } arrCases[] = {
        {"Zm8=\r\n", 64, 0, 2},
        {"Zm9v\nYm\r\nFy", 64, 0, 6},
        {"Zm9vY", 64, 0, 3},  // a last group that is not whole
        {"Zm9vYmE", 64, 0, 3},
        {"==", 64, 0, 0},
        {"", 64, 0, 64},  // nothing to decode leaves the size
        {"\n\r\n", 64, 0, 64},
        {"Zm8=", 2, -16, 3},  // the room is that of whole groups
        {"Zm9v", 2, -16, 3},
        {"Zm9v", 3, 0, 3},
        {"Zm9v", -1, -16, 3},
        {"Z===", 64, -18, 64},
        {"Zg==A", 64, -18, 64},
        {"Zm9v\r", 64, -18, 64},  // a carriage return without its line feed
        {"Zm\rv", 64, -18, 64},
        {"Zm 9v", 64, -18, 64},
        {"Zm9\x80", 64, -18, 64},
        {std::string("Zm9\0", 4), 64, -18, 64},
    };
    for (const auto& objCase : arrCases) {
        const Decoded objOut = decode(objCase.m_strText, objCase.m_nRoom);
        EXPECT_EQ(objOut.m_nResult, objCase.m_nResult) << objCase.m_strText;
        EXPECT_EQ(objOut.m_nSize, objCase.m_nSize) << objCase.m_strText;
    }
}
