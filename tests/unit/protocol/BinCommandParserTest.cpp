// Commands of a number and raw bytes, both ways, and the choice of the parser.
#include <gtest/gtest.h>

#include "protocol/BinCommandParser.h"
#include "protocol/CommandParserFactory.h"
#include "protocol/SDKCommandParser.h"
#include "support/WireCommands.h"

namespace {

const std::string GoldenHead =
    fromHex("AF AF 00 03 00 09 00 00 00 00 00 07 00 01 23 45 00 00 00 07 00 00 6D 23");
const std::string GoldenCommand = GoldenHead + fromHex("00 00 01 02 61 62 63");

const BinCommandParser Parser;

const BinCommandParam& binParam(const SafePointer<CommandParam>& param) {
    return static_cast<const BinCommandParam&>(*param);
}

std::string dataOf(const BinCommandParam& param) {
    return {reinterpret_cast<const char*>(param.getData()), param.getDataLength()};
}

TEST(BinCommandParserTest, WritesAndReadsHeadNumberAndData) {
    SDKCommandHeadInfo staleHead = headOf(7, 9, 0x12345);
    staleHead.setProtocolType(1);
    staleHead.setPayloadLength(999);
    EXPECT_EQ(encoded(Parser, binCommand(staleHead, 0x102, "abc")), GoldenCommand);
    const auto param = decoded(Parser, bufferOf(GoldenCommand));
    EXPECT_EQ(param->getProtocolType(), 3U);
    EXPECT_EQ(encoded(Parser, param), GoldenCommand);
    EXPECT_EQ(binParam(param).getHead().getPayloadLength(), 7U);

    for (const std::size_t nSize : {0U, 1U, 1024U, 1025U, 2000U}) {
        const auto sized = binCommand(headOf(7), -1, std::string(nSize, 'x'));
        const auto read = decoded(Parser, bufferOf(encoded(Parser, sized)));
        EXPECT_EQ(dataOf(binParam(read)), std::string(nSize, 'x'));
        EXPECT_EQ(binParam(read).getBinCommandId(), -1);
    }
    const CommandBuffer notAllArrived = bufferOf(GoldenCommand.substr(0, 29), 2);
    EXPECT_EQ(dataOf(binParam(decoded(Parser, notAllArrived))), std::string("a\0\0", 3));
}

TEST(BinCommandParserTest, DataMayComeFromItsOwnBlockAndMisuseLeavesIt) {
    const std::string strLarge(2000, 'x');
    BinCommandParam param;
    param.setData(bytesIn(strLarge), 2000);
    param.setData(param.getData(), 1500);
    param.setData(nullptr, 3);
    param.setData(param.getData(), -1);
    EXPECT_EQ(dataOf(param), strLarge.substr(0, 1500));
    param.setData(nullptr, 0);
    EXPECT_EQ(dataOf(param), "");
}

TEST(BinCommandParserTest, RefusedBytesLeaveTheCommandAsItWas) {
    SafePointer<CommandParam> param = binCommand(headOf(7), 1, "old");
    const auto* pBefore = param.get();
    std::string strBadChecksum = GoldenCommand;
    strBadChecksum[22] = 0;
    const std::string strThreeBytes =
        fromHex("AF AF 00 03 00 09 00 00 00 00 00 07 00 01 23 45 00 00 00 03 00 00 69 23") + "abc";
    for (const std::string& strBytes :
         {strBadChecksum, strThreeBytes, GoldenHead, GoldenCommand.substr(0, 30)}) {
        EXPECT_FALSE(Parser.parseCommand(bufferOf(strBytes), param));
    }
    EXPECT_FALSE(Parser.parseCommand(CommandBuffer(), param));
    EXPECT_EQ(param.get(), pBefore);
}

TEST(CommandProtocolParserTest, EachKindOfCommandHasItsParserAndNoParserWritesAnother) {
    EXPECT_NE(dynamic_cast<SDKCommandParser*>(createCommandProtocolParser(1).get()), nullptr);
    EXPECT_NE(dynamic_cast<BinCommandParser*>(createCommandProtocolParser(3).get()), nullptr);
    for (const int nType : {0, 2, 4, -1}) {
        EXPECT_EQ(createCommandProtocolParser(nType), nullptr) << nType;
    }
    const SDKCommandParser sdkParser;
    const SafePointer<CommandParam> none;
    const auto sdk = sdkCommand(headOf(7), {});
    const auto withoutItsData = sdkCommand(headOf(33026), {});
    CommandBuffer buffer = bufferOf("untouched");
    EXPECT_FALSE(Parser.createCommand(sdk, buffer) || Parser.createCommand(none, buffer));
    EXPECT_FALSE(sdkParser.createCommand(binCommand(headOf(7), 1, "a"), buffer));
    EXPECT_FALSE(sdkParser.createCommand(none, buffer));
    EXPECT_FALSE(sdkParser.createCommand(withoutItsData, buffer));
    EXPECT_EQ(bytesOf(buffer), "untouched");
}

}  // namespace
