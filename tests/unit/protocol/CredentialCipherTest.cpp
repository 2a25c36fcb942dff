// Enciphered credentials. The expected texts were computed apart from this library.
#include <gtest/gtest.h>

#include <array>

#include "protocol/CredentialCipher.h"
#include "support/WireCommands.h"

using namespace std::string_literals;

namespace {

std::string encrypted(const std::string& strPlain) {
    std::string strOut = "before";
    EXPECT_TRUE(encryptText(strPlain, strOut));
    return strOut;
}

TEST(CredentialCipherTest, TextsBecomeTheOnesThatDevicesExpect) {
    // With the key's 36 characters alone the first would be "Cw==".
    const std::pair<std::string, std::string> cases[] = {
        {"a", "BQ=="},        {"ab", "BfI="},        {"abc", "BfKd"},
        {"abcd", "BfKdkg=="}, {"admin", "BfSTn3M="}, {"secret#1", "F/WdhHiNQCs="},
        {"a\0b"s, "BZCc"},    {"", "before"},
    };
    for (const auto& [strPlain, strExpected] : cases) {
        EXPECT_EQ(encrypted(strPlain), strExpected);
    }
    const std::string strText = encrypted(std::string(300, 'a'));
    ASSERT_EQ(strText.size(), 400U);
    EXPECT_EQ(strText.substr(384), "kXI5rTiL1q3dS82Q") << "the stream goes on behind the key's end";
}

TEST(CredentialCipherTest, BytesNeedASourceATargetAndRoomForTheirTextAndItsZero) {
    std::array<std::uint8_t, 9> dest{};
    std::uint32_t nWritten = 77;
    EXPECT_FALSE(encryptBytes(nWritten, nullptr, 0, dest.data(), 9));
    EXPECT_FALSE(encryptBytes(nWritten, bytesIn("a"), 1, nullptr, 9));
    EXPECT_FALSE(encryptBytes(nWritten, bytesIn("admin"), 5, dest.data(), 8));
    EXPECT_EQ(nWritten, 77U);
    ASSERT_TRUE(encryptBytes(nWritten, bytesIn("admin"), 5, dest.data(), 9));
    EXPECT_EQ(nWritten, 8U);
    EXPECT_STREQ(reinterpret_cast<const char*>(dest.data()), "BfSTn3M=");
    EXPECT_TRUE(encryptBytes(nWritten, bytesIn("a"), 0, dest.data(), 0));
    EXPECT_EQ(nWritten, 0U);
}

TEST(CredentialCipherTest, DevicesDecipherWithTheSameStreamInPlace) {
    std::string strText = fromHex("05 F4 93 9F 73");
    auto* pText = reinterpret_cast<std::uint8_t*>(strText.data());
    applyStreamCipher(pText, 5, pText);
    EXPECT_EQ(strText, "admin");
}

}  // namespace
