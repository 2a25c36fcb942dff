// Whole commands with a body of records.
#include <gtest/gtest.h>

#include "Product/Technic/LogFilter.h"
#include "domain/ChannelId.h"
#include "domain/EtResult.h"
#include "protocol/SDKCommandParam.h"
#include "protocol/SDKCommandParser.h"
#include "protocol/SDKNormalXmlBodyParser.h"
#include "support/ChildProcess.h"
#include "support/WireBytes.h"

namespace {

SDKCommandHeadInfo headOf(std::uint32_t nCommandID) {
    SDKCommandHeadInfo head;
    head.setCommandID(nCommandID);
    head.setSequence(11);
    head.setSessionId(0xCAFE);
    head.setFlagA(true);
    return head;
}

SafePointer<CommandParam> commandOf(const SDKCommandHeadInfo& head, Records records) {
    auto pobjParam = std::make_unique<SDKCommandParam>();
    pobjParam->setHead(head);
    pobjParam->setDomains(std::move(records));
    return wrapSafe<CommandParam>(std::move(pobjParam));
}

// A head that announces `nLength` bytes, and these bytes.
std::string message(std::uint32_t nCommandID, std::uint32_t nLength,
                    const std::string& strPayload) {
    SDKCommandHeadInfo head = headOf(nCommandID);
    head.setProtocolType(1);
    head.setPayloadLength(nLength);
    CommandBuffer buffer;
    encodeCommandHead(head, buffer);
    return bytesOf(buffer) + strPayload;
}

std::string message(std::uint32_t nCommandID, const std::string& strPayload) {
    return message(nCommandID, static_cast<std::uint32_t>(strPayload.size()), strPayload);
}

bool decodes(const CommandBuffer& buffer) {
    SafePointer<CommandParam> param;
    const bool bDecoded = SDKCommandParser().parseCommand(buffer, param);
    EXPECT_EQ(bDecoded, !param.isNull());
    return bDecoded;
}

const SDKCommandParam& sdkParam(const SafePointer<CommandParam>& param) {
    return static_cast<const SDKCommandParam&>(*param);
}

TEST(SDKCommandParserTest, ACommandComesBackWithHeadAndRecords) {
    SDKCommandHeadInfo head = headOf(30507);
    head.setProtocolType(3);
    head.setPayloadLength(12345);
    EtResult result;
    result.setCode(42);
    CommandBuffer buffer;
    ASSERT_TRUE(SDKCommandParser().createCommand(commandOf(head, recordsOf(result)), buffer));
    EXPECT_EQ(buffer.getCapacity(), buffer.getLength()) << "one block, sized exactly";

    SafePointer<CommandParam> param;
    ASSERT_TRUE(SDKCommandParser().parseCommand(buffer, param));
    ASSERT_EQ(param->getProtocolType(), 1U);
    const SDKCommandHeadInfo& read = sdkParam(param).getHead();
    EXPECT_EQ(read.getProtocolType(), 1) << "whatever the caller had set";
    EXPECT_EQ(read.getPayloadLength(), buffer.getLength() - 24);
    EXPECT_EQ(read.getCommandID(), 30507U);
    EXPECT_EQ(read.getSequence(), 11);
    EXPECT_EQ(read.getSessionId(), 0xCAFEU);
    EXPECT_TRUE(read.isFlagA());
    ASSERT_EQ(sdkParam(param).getDomains().size(), 1U);
    EXPECT_EQ(recordAt<EtResult>(sdkParam(param).getDomains(), 0), result);
}

TEST(SDKCommandParserTest, RecordsOutliveTheirCommand) {
    SafePointer<BaseDomain> kept;
    {
        SafePointer<CommandParam> param;
        ASSERT_TRUE(SDKCommandParser().parseCommand(
            bufferOf(message(10000, "<P><Result Code=\"6\"/></P>")), param));
        kept = sdkParam(param).getDomains().at(0);
    }
    EXPECT_EQ(static_cast<const EtResult&>(*kept).getCode(), 6);
}

TEST(SDKCommandParserTest, AMessageThatIsNoCommandLeavesTheOldOne) {
    SafePointer<CommandParam> param = commandOf(headOf(1), {});
    const auto* pBefore = param.get();
    std::string strBadHead = message(10000, "<P/>");
    strBadHead[22] = static_cast<char>(strBadHead[22] ^ 1);
    for (const std::string& strBytes :
         {std::string("short"), strBadHead, message(10000, ""), message(10000, "<P>"),
          message(31026, std::string(8, '\0'))}) {
        EXPECT_FALSE(SDKCommandParser().parseCommand(bufferOf(strBytes), param));
    }
    EXPECT_EQ(param.get(), pBefore);
}

TEST(SDKCommandParserTest, AHeadMayNotAnnounceMoreThanTheBlockHolds) {
    for (const std::uint32_t nLength :
         {5U, 0x7FFFFFFEU, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFE8U, 0xFFFFFFFFU}) {
        EXPECT_FALSE(decodes(bufferOf(message(10000, nLength, "<P/>")))) << nLength;
    }
    EXPECT_TRUE(decodes(bufferOf(message(10000, 4, "<P/>"))));
    EXPECT_TRUE(decodes(bufferOf(message(10000, 9, "<P/>"), 5))) << "the block's zeros end it";
    EXPECT_FALSE(decodes(bufferOf(message(10000, 10, "<P/>"), 5)));
}

TEST(SDKCommandParserTest, WhatStandsBehindThePayloadIsNotRead) {
    EXPECT_TRUE(decodes(bufferOf(message(10000, 4, "<P/><Broken"))));
}

TEST(SDKCommandParserTest, RecordsThatABinaryFormLacksRefuseTheCommand) {
    CommandBuffer buffer = bufferOf("untouched");
    EXPECT_FALSE(SDKCommandParser().createCommand(commandOf(headOf(33026), {}), buffer));
    EXPECT_EQ(bytesOf(buffer), "untouched");
}

TEST(SDKCommandParserLogTest, ReceivedCommandsAreTracedAtLevelThree) {
    const std::string strOutput = outputOfChild([] {
        setLogFilter(LogLevel::Trace);
        EXPECT_TRUE(decodes(bufferOf(message(10000, "<P/>"))));
    });
    EXPECT_EQ(strOutput, std::string("recv:nPayloadLength =4\n\nrecv:nCommandID =10000\n <P/>\n"
                                     "SDKCommandParser::parseCommand  CommandBodyParser name is ") +
                             typeid(SDKNormalXmlBodyParser).name() + "\n");
}

TEST(SDKCommandParserLogTest, SentBodiesAreTracedAtLevelThree) {
    const std::string strOutput = outputOfChild([] {
        setLogFilter(LogLevel::Trace);
        CommandBuffer buffer;
        EXPECT_TRUE(SDKCommandParser().createCommand(commandOf(headOf(1), {}), buffer));
    });
    EXPECT_EQ(strOutput, "<Parameters Version=\"1\" />\n \n");
}

TEST(SDKCommandParserLogTest, FailuresAreToldAtLevelOne) {
    const std::string strOutput = outputOfChild([] {
        setLogFilter(LogLevel::Failure);
        CommandBuffer buffer;
        EXPECT_FALSE(SDKCommandParser().createCommand(commandOf(headOf(33026), {}), buffer));
        EXPECT_FALSE(decodes(bufferOf(message(10000, "<P>"))));
    });
    EXPECT_EQ(strOutput,
              "SDKCommandParser::createCommand  nCommandId = 33026 createCommandBody failed \n"
              "SDKCommandParser::parseCommand  nCommandId = 10000 parseCommandBody failed \n");
}

TEST(SDKCommandParserLogTest, NothingIsPrintedAtFirst) {
    EXPECT_EQ(outputOfChild([] { EXPECT_FALSE(decodes(bufferOf(message(10000, "<P>")))); }), "");
}

}  // namespace
