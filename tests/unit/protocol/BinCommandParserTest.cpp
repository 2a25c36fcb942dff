// Commands of a number and raw bytes, both ways.
#include <gtest/gtest.h>

#include "protocol/BinCommandParam.h"
#include "protocol/BinCommandParser.h"
#include "protocol/SDKCommandParam.h"
#include "protocol/SDKCommandParser.h"
#include "support/WireBytes.h"

namespace {

const std::string GoldenHead =
    fromHex("AF AF 00 03 00 09 00 00 00 00 00 07 00 01 23 45 00 00 00 07 00 00 6D 23");
const std::string GoldenPayload = fromHex("00 00 01 02 61 62 63");

SDKCommandHeadInfo headWithStaleFields() {
    SDKCommandHeadInfo head;
    head.setProtocolType(1);
    head.setPayloadLength(999);
    head.setSequence(9);
    head.setCommandID(7);
    head.setSessionId(0x12345);
    return head;
}

SafePointer<CommandParam> commandWith(std::int32_t nNumber, const std::string& strData) {
    auto pobjParam = std::make_unique<BinCommandParam>();
    pobjParam->setHead(headWithStaleFields());
    pobjParam->setBinCommandId(nNumber);
    pobjParam->setData(reinterpret_cast<const std::uint8_t*>(strData.data()),
                       static_cast<std::int32_t>(strData.size()));
    return wrapSafe<CommandParam>(std::move(pobjParam));
}

std::string dataOf(const BinCommandParam& param) {
    return {reinterpret_cast<const char*>(param.getData()), param.getDataLength()};
}

// Writes and reads a command.
SafePointer<CommandParam> passed(const SafePointer<CommandParam>& param) {
    CommandBuffer buffer;
    SafePointer<CommandParam> read;
    EXPECT_TRUE(BinCommandParser().createCommand(param, buffer));
    EXPECT_TRUE(BinCommandParser().parseCommand(buffer, read));
    return read;
}

TEST(BinCommandParserTest, WritesHeadNumberAndData) {
    CommandBuffer buffer;
    ASSERT_TRUE(BinCommandParser().createCommand(commandWith(0x102, "abc"), buffer));
    EXPECT_EQ(bytesOf(buffer), GoldenHead + GoldenPayload);
    EXPECT_EQ(buffer.getCapacity(), buffer.getLength());
}

TEST(BinCommandParserTest, ReadsHeadNumberAndData) {
    SafePointer<CommandParam> param;
    ASSERT_TRUE(BinCommandParser().parseCommand(bufferOf(GoldenHead + GoldenPayload), param));
    ASSERT_EQ(param->getProtocolType(), 3U);
    const auto& objParam = static_cast<const BinCommandParam&>(*param);
    EXPECT_EQ(objParam.getBinCommandId(), 0x102);
    EXPECT_EQ(dataOf(objParam), "abc");
    EXPECT_EQ(objParam.getHead().getSequence(), 9);
    EXPECT_EQ(objParam.getHead().getPayloadLength(), 7U);
}

TEST(BinCommandParserTest, DataOfAnySizeComesBack) {
    for (const std::size_t nSize : {1U, 1024U, 1025U, 2000U}) {
        const std::string strData(nSize, 'x');
        const auto param = passed(commandWith(-1, strData));
        EXPECT_EQ(dataOf(static_cast<const BinCommandParam&>(*param)), strData);
        EXPECT_EQ(static_cast<const BinCommandParam&>(*param).getBinCommandId(), -1);
    }
}

TEST(BinCommandParserTest, ANumberAloneLeavesTheDataUntouched) {
    const auto param = passed(commandWith(5, ""));
    const auto& objParam = static_cast<const BinCommandParam&>(*param);
    EXPECT_EQ(objParam.getDataLength(), 0U);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(objParam.getData()), 1024),
              std::string(1024, '\0'));
}

TEST(BinCommandParserTest, SmallDataReusesTheBlockOfLargeData) {
    BinCommandParam param;
    const std::string strLarge(2000, 'x');
    param.setData(reinterpret_cast<const std::uint8_t*>(strLarge.data()), 2000);
    param.setData(param.getData(), 1500);
    EXPECT_EQ(dataOf(param), strLarge.substr(0, 1500));
    const auto* pLarge = param.getData();
    param.setData(reinterpret_cast<const std::uint8_t*>("small"), 5);
    EXPECT_EQ(param.getData(), pLarge);
    EXPECT_EQ(dataOf(param), "small");
    param.setData(nullptr, 3);
    param.setData(pLarge, -1);
    EXPECT_EQ(dataOf(param), "small");
}

TEST(BinCommandParserTest, RefusedBytesLeaveTheCommandAsItWas) {
    SafePointer<CommandParam> param = commandWith(1, "old");
    const auto* pBefore = param.get();
    std::string strBadChecksum = GoldenHead + GoldenPayload;
    strBadChecksum[22] = 0;
    const std::string strThreeBytes =
        fromHex("AF AF 00 03 00 09 00 00 00 00 00 07 00 01 23 45 00 00 00 03 00 00 69 23") + "abc";
    for (const std::string& strBytes :
         {strBadChecksum, strThreeBytes, GoldenHead, (GoldenHead + GoldenPayload).substr(0, 30)}) {
        EXPECT_FALSE(BinCommandParser().parseCommand(bufferOf(strBytes), param));
    }
    EXPECT_FALSE(BinCommandParser().parseCommand(CommandBuffer(), param));
    EXPECT_EQ(param.get(), pBefore);
}

TEST(BinCommandParserTest, WhatDidNotArriveButHasRoomReadsAsZero) {
    SafePointer<CommandParam> param;
    const CommandBuffer buffer = bufferOf(GoldenHead + GoldenPayload.substr(0, 5), 100);
    ASSERT_TRUE(BinCommandParser().parseCommand(buffer, param));
    EXPECT_EQ(dataOf(static_cast<const BinCommandParam&>(*param)), std::string("a\0\0", 3));
}

TEST(CommandProtocolParserTest, EachKindOfCommandHasItsParser) {
    EXPECT_NE(dynamic_cast<SDKCommandParser*>(createCommandProtocolParser(1).get()), nullptr);
    EXPECT_NE(dynamic_cast<BinCommandParser*>(createCommandProtocolParser(3).get()), nullptr);
    for (const int nType : {0, 2, 4, -1}) {
        EXPECT_EQ(createCommandProtocolParser(nType), nullptr) << nType;
    }
}

TEST(CommandProtocolParserTest, AParserRefusesTheOtherKindAndNoCommandAtAll) {
    const auto sdkCommand = wrapSafe<CommandParam>(std::make_unique<SDKCommandParam>());
    CommandBuffer buffer = bufferOf("untouched");
    EXPECT_FALSE(BinCommandParser().createCommand(sdkCommand, buffer));
    EXPECT_FALSE(SDKCommandParser().createCommand(commandWith(1, "a"), buffer));
    EXPECT_FALSE(BinCommandParser().createCommand(SafePointer<CommandParam>(), buffer));
    EXPECT_FALSE(SDKCommandParser().createCommand(SafePointer<CommandParam>(), buffer));
    EXPECT_EQ(bytesOf(buffer), "untouched");
}

}  // namespace
