// The 24 bytes in front of every command.
#include <gtest/gtest.h>

#include "Product/Technic/KXRuntimeError.h"
#include "protocol/SDKCommandHeadInfo.h"
#include "protocol/SDKCommandHeadParser.h"
#include "support/WireBytes.h"

namespace {

const std::string WorkedHead =
    fromHex("AF AF 00 01 00 07 00 00 00 00 46 52 00 01 23 45 00 00 00 72 00 00 07 23");

SDKCommandHeadInfo workedHead() {
    SDKCommandHeadInfo head;
    head.setProtocolType(1);
    head.setSequence(7);
    head.setCommandID(18002);
    head.setSessionId(0x00012345);
    head.setPayloadLength(0x72);
    return head;
}

bool decode(const std::string& strBytes, SDKCommandHeadInfo& head) {
    return decodeCommandHead(reinterpret_cast<const std::uint8_t*>(strBytes.data()),
                             static_cast<std::uint32_t>(strBytes.size()), head);
}

std::string encode(const SDKCommandHeadInfo& head) {
    CommandBuffer buffer;
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

// A safe pointer to a head of this kind.
SafePointer<CommandHeadInfo> headOfKind(std::uint32_t nKind) {
    auto pobjHead = std::make_unique<SDKCommandHeadInfo>(workedHead());
    pobjHead->setHeadKind(nKind);
    return wrapSafe<CommandHeadInfo>(std::move(pobjHead));
}

TEST(CommandHeadTest, TheWorkedHeadIsWrittenAndRead) {
    EXPECT_EQ(encode(workedHead()), WorkedHead);

    SDKCommandHeadInfo head;
    ASSERT_TRUE(decode(WorkedHead, head));
    EXPECT_EQ(head.getProtocolType(), 1);
    EXPECT_EQ(head.getSequence(), 7);
    EXPECT_FALSE(head.isFlagA());
    EXPECT_FALSE(head.isFlagB());
    EXPECT_EQ(head.getCommandID(), 18002U);
    EXPECT_EQ(head.getSessionId(), 0x00012345U);
    EXPECT_EQ(head.getPayloadLength(), 0x72U);
}

TEST(CommandHeadTest, EveryFieldOnTheWireComesBack) {
    SDKCommandHeadInfo head;
    head.setHeadKind(1);
    head.setProtocolType(0xFEDC);
    head.setSequence(0xBA98);
    head.setFlagB(true);
    head.setCommandID(0xF1E2D3C4);
    head.setSessionId(0xA5B6C7D8);
    head.setPayloadLength(0xFFFFFFFF);
    SDKCommandHeadInfo read;
    read.setHeadKind(9);
    ASSERT_TRUE(decode(encode(head), read));
    EXPECT_EQ(read.getHeadKind(), 9U) << "not on the wire";
    EXPECT_EQ(encode(read), encode(head));
    EXPECT_EQ(read.getProtocolType(), 0xFEDC);
    EXPECT_EQ(read.getSequence(), 0xBA98);
    EXPECT_FALSE(read.isFlagA());
    EXPECT_TRUE(read.isFlagB());
    EXPECT_EQ(read.getCommandID(), 0xF1E2D3C4U);
    EXPECT_EQ(read.getSessionId(), 0xA5B6C7D8U);
    EXPECT_EQ(read.getPayloadLength(), 0xFFFFFFFFU);
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

TEST(CommandHeadTest, MagicAndTerminatorCountAlsoUnderARightChecksum) {
    SDKCommandHeadInfo head;
    EXPECT_FALSE(decode(withByte(0, 0xAE), head));
    EXPECT_FALSE(decode(withByte(1, 0x00), head));
    EXPECT_TRUE(decode(withByte(2, 0x77), head));
}

TEST(CommandHeadTest, OnlyTheFirst24BytesAreLookedAt) {
    SDKCommandHeadInfo head;
    EXPECT_FALSE(decode(WorkedHead.substr(0, 23), head));
    EXPECT_FALSE(decodeCommandHead(nullptr, 24, head));
    EXPECT_TRUE(decode(WorkedHead + "whatever follows", head));
}

TEST(CommandHeadTest, OnlyTheHighBitOfAFlagByteCounts) {
    for (const std::size_t nOffset : {6U, 7U}) {
        for (const auto& [nByte, bFlag] : {std::pair{0x7F, false}, {0x80, true}, {0xFF, true}}) {
            SDKCommandHeadInfo head;
            ASSERT_TRUE(decode(withByte(nOffset, nByte), head));
            EXPECT_EQ(nOffset == 6 ? head.isFlagA() : head.isFlagB(), bFlag);
            EXPECT_FALSE(nOffset == 6 ? head.isFlagB() : head.isFlagA());
            EXPECT_EQ(encode(head), withByte(nOffset, bFlag ? 0x80 : 0));
        }
    }
}

TEST(CommandHeadTest, ReservedBytesAreReadAndLost) {
    SDKCommandHeadInfo head;
    ASSERT_TRUE(decode(withByte(21, 0x55), head));
    EXPECT_EQ(encode(head), WorkedHead);
}

TEST(CommandHeadTest, EncodingReplacesWhatTheBufferHeld) {
    for (const std::string& strBefore : {std::string("short"), std::string(24, 'x')}) {
        CommandBuffer buffer = bufferOf(strBefore);
        ASSERT_TRUE(encodeCommandHead(workedHead(), buffer));
        EXPECT_EQ(bytesOf(buffer), WorkedHead);
    }
}

TEST(CommandHeadParserTest, OnlyHeadsOfKindOneAreWritten) {
    const SDKCommandHeadParser parser;
    CommandBuffer buffer;
    EXPECT_EQ(parser.getCommandHeadLength(), 24U);
    EXPECT_FALSE(parser.createCommandHead(headOfKind(0), buffer));
    EXPECT_FALSE(parser.createCommandHead(headOfKind(2), buffer));
    EXPECT_TRUE(parser.createCommandHead(headOfKind(1), buffer));
    EXPECT_EQ(bytesOf(buffer), WorkedHead);
    EXPECT_THROW(parser.createCommandHead(SafePointer<CommandHeadInfo>(), buffer), KXRuntimeError);
}

TEST(CommandHeadParserTest, ARefusedHeadLeavesTheOldOne) {
    const SDKCommandHeadParser parser;
    SafePointer<CommandHeadInfo> head;
    ASSERT_TRUE(parser.parseCommandHead(bufferOf(WorkedHead), head));
    const auto* pBefore = head.get();
    EXPECT_EQ(static_cast<const SDKCommandHeadInfo*>(pBefore)->getSequence(), 7);

    std::string strBad = WorkedHead;
    strBad[22] = 0;
    EXPECT_FALSE(parser.parseCommandHead(bufferOf(strBad), head));
    EXPECT_FALSE(parser.parseCommandHead(CommandBuffer(), head));
    EXPECT_EQ(head.get(), pBefore);
}

TEST(CommandHeadParserTest, OnlySDKCommandsHaveAHeadParser) {
    EXPECT_FALSE(createCommandHeadParser(1).isNull());
    for (const int nType : {0, 2, 3, -1}) {
        EXPECT_TRUE(createCommandHeadParser(nType).isNull()) << nType;
    }
}

}  // namespace
