// Enciphered credentials. The expected texts were computed apart from this library.
#include <gtest/gtest.h>

#include <array>

#include "protocol/CredentialCipher.h"
#include "support/WireCommands.h"

using namespace std::string_literals;

namespace {

TEST(CredentialCipherTest, TextsBecomeTheOnesThatDevicesExpect) {
    // With the key's 36 characters alone the first would be "Cw==".
    const std::pair<std::string, std::string> cases[] = {
        {"a", "BQ=="},        {"ab", "BfI="},        {"abc", "BfKd"},
        {"abcd", "BfKdkg=="}, {"admin", "BfSTn3M="}, {"secret#1", "F/WdhHiNQCs="},
        {"a\0b"s, "BZCc"},
    };
    for (const auto& [strPlain, strExpected] : cases) {
        EXPECT_EQ(enciphered(strPlain), strExpected);
    }
    std::string strBefore = "before";
    EXPECT_TRUE(encryptText("", strBefore));
    EXPECT_EQ(strBefore, "before");
    const std::string strText = enciphered(std::string(300, 'a'));
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

}  // namespace
