// What is no command of records, and what is written about those that are.
#include <gtest/gtest.h>

#include <functional>
#include <typeinfo>

#include "Product/Technic/LogFilter.h"
#include "protocol/SDKCommandParser.h"
#include "protocol/SDKNormalXmlBodyParser.h"
#include "support/ChildProcess.h"
#include "support/WireCommands.h"

using namespace fleetkit;

namespace {

const SDKCommandParser Parser;

// A command whose head announces `nLength` bytes.
std::string message(SDKCommandHeadInfo head, std::size_t nLength, const std::string& strPayload) {
    head.setProtocolType(1);
    head.setPayloadLength(static_cast<std::uint32_t>(nLength));
    CommandBuffer buffer;
    encodeCommandHead(head, buffer);
    return bytesOf(buffer) + strPayload;
}

std::string message(const std::string& strPayload, std::uint32_t nCommandID = 10000) {
    return message(headOf(nCommandID, 11, 0xCAFE), strPayload.size(), strPayload);
}

bool decodes(const CommandBuffer& buffer) {
    SafePointer<CommandParam> param;
    const bool bDecoded = Parser.parseCommand(buffer, param);
    EXPECT_EQ(bDecoded, !param.isNull());
    return bDecoded;
}

bool encodes(std::uint32_t nCommandID) {
    CommandBuffer buffer;
    return Parser.createCommand(sdkCommand(headOf(nCommandID), {}), buffer);
}

TEST(SDKCommandParserTest, AMessageThatIsNoCommandLeavesTheOldOne) {
    SafePointer<CommandParam> param = sdkCommand(headOf(1), {});
    const auto* pBefore = param.get();
    const std::string strBadHead = '\0' + message("<P/>").substr(1);
    for (const std::string& strBytes : {std::string("short"), strBadHead, message(""),
                                        message("<P>"), message(std::string(8, '\0'), 31026)}) {
        EXPECT_FALSE(Parser.parseCommand(bufferOf(strBytes), param));
    }
    EXPECT_EQ(param.get(), pBefore);
}

TEST(SDKCommandParserTest, AHeadMayNotAnnounceMoreThanTheBlockHolds) {
    for (const std::uint32_t nLength :
         {5U, 0x7FFFFFFEU, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFE8U, 0xFFFFFFFFU}) {
        EXPECT_FALSE(decodes(bufferOf(message(headOf(10000), nLength, "<P/>")))) << nLength;
    }
    EXPECT_TRUE(decodes(bufferOf(message(headOf(10000), 9, "<P/>"), 5))) << "zeros end the text";
    EXPECT_FALSE(decodes(bufferOf(message(headOf(10000), 10, "<P/>"), 5)));
    EXPECT_TRUE(decodes(bufferOf(message(headOf(10000), 4, "<P/><Behind")))) << "is not read";
}

TEST(SDKCommandParserTest, TracesWhatItDoesAtLevelThreeAndFailuresAtLevelOne) {
    const auto succeed = [] {
        EXPECT_TRUE(decodes(bufferOf(message("<P/>"))));
        EXPECT_TRUE(encodes(1));
    };
    const auto fail = [] {
        EXPECT_FALSE(encodes(33026));
        EXPECT_FALSE(decodes(bufferOf(message("<P>"))));
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
