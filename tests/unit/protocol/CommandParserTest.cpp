// Whole commands, of records and of raw bytes: as they stand on the wire, written down by hand from
// the protocol; what is refused; and what is logged.
#include <gtest/gtest.h>

#include <functional>
#include <typeinfo>

#include "Product/Technic/LogFilter.h"
#include "domain/NTPParam.h"
#include "domain/UserParam.h"
#include "protocol/BinCommandParser.h"
#include "protocol/CommandParserFactory.h"
#include "protocol/SDKCommandParser.h"
#include "protocol/SDKNormalXmlBodyParser.h"
#include "support/ChildProcess.h"
#include "support/WireCommands.h"

using namespace fleetkit;

namespace {

const std::string Declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n";

const std::string LoginRequest =
    fromHex("AF AF 00 01 00 01 00 00 00 00 2A F9 00 00 00 00 00 00 00 92 00 00 41 23") +
    Declaration +
    "<Parameters Version=\"1\">\n"
    "\t<UserParam UserName=\"BfSTn3M=\" Password=\"F/WdhHiNQCs=\" Desc=\"\" />\n"
    "</Parameters>\n";

const std::string NtpSetRequest =
    fromHex("AF AF 00 01 00 02 00 00 00 00 7F CA 00 01 23 45 00 00 00 C7 00 00 16 23") +
    Declaration +
    "<Parameters Version=\"1\">\n"
    "\t<ChannelId Id=\"-1\" />\n"
    "\t<NTPParam NTPEnableFlag=\"true\" NTPIp=\"10.0.0.5\" NTPPort=\"123\" NTPRunTime=\"60\" "
    "IPProtoVer=\"0\" />\n"
    "</Parameters>\n";

const std::string Acknowledgement =
    fromHex("AF AF 00 01 00 02 00 00 00 00 27 10 00 01 23 45 00 00 00 64 00 00 37 23") +
    Declaration +
    "<Parameters Version=\"1\">\n"
    "\t<Result Code=\"0\" />\n"
    "</Parameters>\n";

const std::string BinHead =
    fromHex("AF AF 00 03 00 09 00 00 00 00 00 07 00 01 23 45 00 00 00 07 00 00 6D 23");
const std::string BinRequest = BinHead + fromHex("00 00 01 02 61 62 63");

const SDKCommandParser SDKParser;
const BinCommandParser BinParser;

UserParam admin() {
    return with(&UserParam::setUserName, enciphered("admin"), &UserParam::setPassword,
                enciphered("secret#1"));
}

NTPParam ntp() {
    return with(&NTPParam::setNTPPort, 123, &NTPParam::setNTPIp, "10.0.0.5",
                &NTPParam::setNTPEnableFlag, true, &NTPParam::setNTPRunTime, 60);
}

// A head whose type and length are of no command.
SDKCommandHeadInfo staleHead(std::uint32_t nCommandID, std::uint16_t nSequence,
                             std::uint32_t nSessionId = 0x12345) {
    SDKCommandHeadInfo head = headOf(nCommandID, nSequence, nSessionId);
    head.setProtocolType(2);
    head.setPayloadLength(12345);
    return head;
}

TEST(CommandParser, RecordsAndNumbersMakeTheBytesOfTheProtocolWhichMakeThemAgain) {
    const struct {
        const ICommandProtocolParser& parser;
        SafePointer<CommandParam> param;
        std::string strBytes;
    } cases[] = {
        {SDKParser, sdkCommand(staleHead(11001, 1, 0), recordsOf(admin())), LoginRequest},
        {SDKParser, sdkCommand(staleHead(32714, 2), onChannel(-1, ntp())), NtpSetRequest},
        {SDKParser, sdkCommand(staleHead(10000, 2), recordsOf(EtResult())), Acknowledgement},
        {BinParser, binCommand(staleHead(7, 9), 0x102, "abc"), BinRequest},
    };
    for (const auto& [parser, param, strBytes] : cases) {
        EXPECT_EQ(encoded(parser, param), strBytes);
        EXPECT_EQ(encoded(parser, decoded(parser, bufferOf(strBytes))), strBytes);
    }
}

std::string dataOf(const BinCommandParam& param) {
    return {reinterpret_cast<const char*>(param.getData()), param.getDataLength()};
}

TEST(CommandParser, RawBytesMayBeManyOrNoneAndComeFromTheirOwnBlock) {
    for (const std::size_t nSize : {0U, 1U, 1024U, 1025U, 2000U}) {
        const auto sized = binCommand(headOf(7), -1, std::string(nSize, 'x'));
        const auto read = decoded(BinParser, bufferOf(encoded(BinParser, sized)));
        EXPECT_EQ(dataOf(static_cast<const BinCommandParam&>(*read)), std::string(nSize, 'x'));
    }
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

TEST(CommandParser, WhatIsNoCommandIsRefusedAndLeavesTheOldOne) {
    const auto expectRefused = [](const ICommandProtocolParser& parser,
                                  const CommandBuffer& buffer) {
        SafePointer<CommandParam> param = sdkCommand(headOf(1), {});
        const auto* pBefore = param.get();
        EXPECT_FALSE(parser.parseCommand(buffer, param)) << bytesOf(buffer);
        EXPECT_EQ(param.get(), pBefore);
    };
    for (const std::string& strBytes :
         {std::string("short"), '\0' + Acknowledgement.substr(1), announcing(0, ""),
          announcing(3, "<P>"), announcing(8, std::string(8, '\0'), 31026)}) {
        expectRefused(SDKParser, bufferOf(strBytes));
    }
    for (const std::string& strBytes : {'\0' + BinRequest.substr(1), announcing(3, "abc", 7, 3),
                                        BinHead, BinRequest.substr(0, 30)}) {
        expectRefused(BinParser, bufferOf(strBytes));
    }
    expectRefused(BinParser, CommandBuffer());

    for (const std::uint32_t nLength :
         {5U, 0x7FFFFFFEU, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFE8U, 0xFFFFFFFFU}) {
        expectRefused(SDKParser, bufferOf(announcing(nLength, "<P/>")));
    }
    decoded(SDKParser, bufferOf(announcing(9, "<P/>"), 5));  // zeros end the text
    expectRefused(SDKParser, bufferOf(announcing(10, "<P/>"), 5));
    decoded(SDKParser, bufferOf(announcing(4, "<P/><Behind")));  // which is not read
}

bool writes(const ICommandProtocolParser& parser, const SafePointer<CommandParam>& param) {
    CommandBuffer buffer = bufferOf("untouched");
    const bool bWritten = parser.createCommand(param, buffer);
    EXPECT_NE(bWritten, bytesOf(buffer) == "untouched");
    return bWritten;
}

TEST(CommandParser, IsThereForEachKindOfCommandAndWritesNoOther) {
    EXPECT_NE(dynamic_cast<SDKCommandParser*>(createCommandProtocolParser(1).get()), nullptr);
    EXPECT_NE(dynamic_cast<BinCommandParser*>(createCommandProtocolParser(3).get()), nullptr);
    for (const int nType : {0, 2, 4, -1}) {
        EXPECT_EQ(createCommandProtocolParser(nType), nullptr) << nType;
    }
    EXPECT_FALSE(writes(BinParser, sdkCommand(headOf(7), {})) || writes(BinParser, {}));
    EXPECT_FALSE(writes(SDKParser, binCommand(headOf(7), 1, "a")) || writes(SDKParser, {}));
}

TEST(CommandParser, TracesWhatItDoesAtLevelThreeAndFailuresAtLevelOne) {
    const auto succeed = [] {
        decoded(SDKParser, bufferOf(announcing(4, "<P/>")));
        EXPECT_TRUE(writes(SDKParser, sdkCommand(headOf(1), {})));
    };
    const auto fail = [] {
        SafePointer<CommandParam> param;
        EXPECT_FALSE(writes(SDKParser, sdkCommand(headOf(33026), {})));
        EXPECT_FALSE(SDKParser.parseCommand(bufferOf(announcing(3, "<P>")), param));
    };
    const auto atLevel = [](auto nLevel, const std::function<void()>& action) {
        return outputOfChild([&] {
            setLogFilter(nLevel);
            action();
        });
    };
    EXPECT_EQ(atLevel(LogLevel::Trace, succeed),
              std::string("recv:nPayloadLength =4\n\nrecv:nCommandID =10000\n <P/>\n"
                          "SDKCommandParser::parseCommand  CommandBodyParser name is ") +
                  typeid(SDKNormalXmlBodyParser).name() + "\n<Parameters Version=\"1\" />\n \n");
    EXPECT_EQ(atLevel(LogLevel::Failure, succeed), "");
    EXPECT_EQ(atLevel(LogLevel::Failure, fail),
              "SDKCommandParser::createCommand  nCommandId = 33026 createCommandBody failed \n"
              "SDKCommandParser::parseCommand  nCommandId = 10000 parseCommandBody failed \n");
    EXPECT_EQ(outputOfChild(fail), "") << "nothing is printed at first";
}

}  // namespace
