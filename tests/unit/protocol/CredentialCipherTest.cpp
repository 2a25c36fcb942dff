// Enciphered credentials. The expected texts were computed apart from this library.
#include <gtest/gtest.h>

#include <array>

#include "protocol/CredentialCipher.h"

using namespace std::string_literals;

namespace {

std::string encrypted(const std::string& strPlain) {
    std::string strOut;
    EXPECT_TRUE(encryptText(strPlain, strOut));
    return strOut;
}

const std::uint8_t* bytes(const std::string& strText) {
    return reinterpret_cast<const std::uint8_t*>(strText.data());
}

TEST(CredentialCipherTest, TextsBecomeTheOnesThatDevicesExpect) {
    // With the key's 36 characters alone the first would be "Cw==".
    const std::pair<std::string, std::string> cases[] = {
        {"a", "BQ=="},        {"ab", "BfI="},        {"abc", "BfKd"},
        {"abcd", "BfKdkg=="}, {"admin", "BfSTn3M="}, {"secret#1", "F/WdhHiNQCs="},
        {"a\0b"s, "BZCc"},
    };
    for (const auto& [strPlain, strExpected] : cases) {
        EXPECT_EQ(encrypted(strPlain), strExpected);
        EXPECT_EQ(encrypted(strPlain), strExpected) << "every text starts the stream anew";
    }
}

TEST(CredentialCipherTest, TheStreamGoesOnBehindTheKeysEnd) {
    const std::string strText = encrypted(std::string(300, 'a'));
    ASSERT_EQ(strText.size(), 400U);
    EXPECT_EQ(strText.substr(384), "kXI5rTiL1q3dS82Q");
}

TEST(CredentialCipherTest, AnEmptyTextIsLeftAlone) {
    std::string strOut = "before";
    EXPECT_TRUE(encryptText("", strOut));
    EXPECT_EQ(strOut, "before");
}

TEST(CredentialCipherTest, BytesNeedRoomForTheirTextAndItsZero) {
    std::array<std::uint8_t, 9> dest{};
    std::uint32_t nWritten = 77;
    const std::string strPlain = "admin";
    EXPECT_FALSE(encryptBytes(nWritten, bytes(strPlain), 5, dest.data(), 8));
    EXPECT_EQ(nWritten, 77U);
    ASSERT_TRUE(encryptBytes(nWritten, bytes(strPlain), 5, dest.data(), 9));
    EXPECT_EQ(nWritten, 8U);
    EXPECT_STREQ(reinterpret_cast<const char*>(dest.data()), "BfSTn3M=");
}

TEST(CredentialCipherTest, BytesWithoutSourceOrTargetAreRefused) {
    std::uint8_t nDest = 0;
    std::uint32_t nWritten = 77;
    EXPECT_FALSE(encryptBytes(nWritten, nullptr, 0, &nDest, 1));
    EXPECT_FALSE(encryptBytes(nWritten, bytes("a"), 1, nullptr, 9));
    EXPECT_EQ(nWritten, 77U);
    EXPECT_TRUE(encryptBytes(nWritten, bytes("a"), 0, &nDest, 0));
    EXPECT_EQ(nWritten, 0U);
}

TEST(CredentialCipherTest, TheStreamCipherIsItsOwnInverse) {
    std::string strText = "a longer text, deciphered where it stands \0 as a device does"s;
    const std::string strPlain = strText;
    auto* pText = reinterpret_cast<std::uint8_t*>(strText.data());
    const auto nLength = static_cast<std::uint32_t>(strText.size());
    applyStreamCipher(pText, nLength, pText);
    EXPECT_NE(strText, strPlain);
    applyStreamCipher(pText, nLength, pText);
    EXPECT_EQ(strText, strPlain);
}

}  // namespace
