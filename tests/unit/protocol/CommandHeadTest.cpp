// The 24 bytes in front of every command.
#include <gtest/gtest.h>

#include "Product/Technic/KXRuntimeError.h"
#include "protocol/CommandParserFactory.h"
#include "protocol/SDKCommandHeadParser.h"
#include "support/WireCommands.h"

namespace {

const std::string WorkedHead =
    fromHex("AF AF 00 01 00 07 00 00 00 00 46 52 00 01 23 45 00 00 00 72 00 00 07 23");

bool decode(const std::string& strBytes, SDKCommandHeadInfo& head) {
    return decodeCommandHead(bytesIn(strBytes), static_cast<std::uint32_t>(strBytes.size()), head);
}

// The bytes of a head, written over what the buffer held.
std::string encode(const SDKCommandHeadInfo& head, const std::string& strBefore = "before") {
    CommandBuffer buffer = bufferOf(strBefore);
    EXPECT_TRUE(encodeCommandHead(head, buffer));
    EXPECT_EQ(buffer.getCapacity(), 24U);
    return bytesOf(buffer);
}

// The worked head with one byte replaced and the checksum made right again.
std::string withByte(std::size_t nOffset, int nValue) {
    std::string strBytes = WorkedHead;
    strBytes[22] = static_cast<char>(strBytes[22] ^ strBytes[nOffset] ^ nValue);
    strBytes[nOffset] = static_cast<char>(nValue);
    return strBytes;
}

TEST(CommandHeadTest, IsWrittenAndReadByteByByte) {
    SDKCommandHeadInfo head = headOf(0xF1E2D3C4, 0xBA98, 0xA5B6C7D8);
    head.setProtocolType(0xFEDC);
    head.setFlagB(true);
    head.setPayloadLength(0xFFFFFFFE);
    const std::string strBytes =
        fromHex("AF AF FE DC BA 98 00 80 F1 E2 D3 C4 A5 B6 C7 D8 FF FF FF FE 00 00 89 23");
    EXPECT_EQ(encode(head), strBytes);
    EXPECT_EQ(encode(head, std::string(24, 'x')), strBytes);

    SDKCommandHeadInfo read;
    ASSERT_TRUE(decode(strBytes, read));
    EXPECT_EQ(encode(read), strBytes);
}

TEST(CommandHeadTest, AnySingleBitChangedIsRefusedAndWritesNothing) {
    for (std::size_t nBit = 0; nBit < WorkedHead.size() * 8; ++nBit) {
        std::string strBytes = WorkedHead;
        strBytes[nBit / 8] = static_cast<char>(strBytes[nBit / 8] ^ (1 << (nBit % 8)));
        SDKCommandHeadInfo head;
        EXPECT_FALSE(decode(strBytes, head)) << "bit " << nBit;
        EXPECT_EQ(head.getCommandID(), 0U) << "bit " << nBit;
    }
}

TEST(CommandHeadTest, OnlyReservedBytesLowBitsOfFlagsAndWhatFollowsDoNotCount) {
    SDKCommandHeadInfo head;
    EXPECT_FALSE(decodeCommandHead(nullptr, 24, head));
    EXPECT_FALSE(decode(WorkedHead.substr(0, 23), head));
    EXPECT_FALSE(decode(withByte(0, 0xAE), head) || decode(withByte(1, 0x00), head));
    ASSERT_TRUE(decode(withByte(21, 0x55) + "whatever follows", head));
    EXPECT_EQ(encode(head), WorkedHead);
    for (const std::size_t nOffset : {6U, 7U}) {
        for (const auto& [nByte, nWritten] : {std::pair{0x7F, 0}, {0x80, 0x80}, {0xFF, 0x80}}) {
            ASSERT_TRUE(decode(withByte(nOffset, nByte), head));
            EXPECT_EQ(encode(head), withByte(nOffset, nWritten));
            EXPECT_EQ(head.isFlagA(), nOffset == 6 && nWritten != 0);
        }
    }
}

TEST(CommandHeadParserTest, WritesHeadsOfOneKindAndLeavesTheOldOneWhenItRefuses) {
    for (const int nType : {-1, 0, 1, 2, 3}) {
        EXPECT_EQ(createCommandHeadParser(nType).isNull(), nType != 1) << nType;
    }
    const SDKCommandHeadParser parser;
    EXPECT_EQ(parser.getCommandHeadLength(), 24U);
    SafePointer<CommandHeadInfo> head;
    ASSERT_TRUE(parser.parseCommandHead(bufferOf(WorkedHead), head));
    auto& sdkHead = static_cast<SDKCommandHeadInfo&>(*head);
    EXPECT_FALSE(parser.parseCommandHead(bufferOf("no head, but long enough for one"), head));
    EXPECT_FALSE(parser.parseCommandHead(CommandBuffer(), head));
    EXPECT_EQ(head.get(), &sdkHead);

    CommandBuffer buffer;
    for (const std::uint32_t nKind : {0U, 1U, 2U}) {
        sdkHead.setHeadKind(nKind);
        EXPECT_EQ(parser.createCommandHead(head, buffer), nKind == 1) << nKind;
    }
    EXPECT_EQ(bytesOf(buffer), WorkedHead);
    EXPECT_THROW(parser.createCommandHead(SafePointer<CommandHeadInfo>(), buffer), KXRuntimeError);
}

}  // namespace
