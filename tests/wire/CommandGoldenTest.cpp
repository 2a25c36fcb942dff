// Whole commands as they stand on the wire, written down by hand from the protocol.
#include <gtest/gtest.h>

#include "domain/NTPParam.h"
#include "domain/UserParam.h"
#include "protocol/SDKCommandParser.h"
#include "support/WireCommands.h"

namespace {

const std::string LoginRequest =
    fromHex("AF AF 00 01 00 01 00 00 00 00 2A F9 00 00 00 00 00 00 00 92 00 00 41 23") +
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
    "<Parameters Version=\"1\">\n"
    "\t<UserParam UserName=\"BfSTn3M=\" Password=\"F/WdhHiNQCs=\" Desc=\"\" />\n"
    "</Parameters>\n";

const std::string NtpSetRequest =
    fromHex("AF AF 00 01 00 02 00 00 00 00 7F CA 00 01 23 45 00 00 00 C7 00 00 16 23") +
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
    "<Parameters Version=\"1\">\n"
    "\t<ChannelId Id=\"-1\" />\n"
    "\t<NTPParam NTPEnableFlag=\"true\" NTPIp=\"10.0.0.5\" NTPPort=\"123\" NTPRunTime=\"60\" "
    "IPProtoVer=\"0\" />\n"
    "</Parameters>\n";

const std::string Acknowledgement =
    fromHex("AF AF 00 01 00 02 00 00 00 00 27 10 00 01 23 45 00 00 00 64 00 00 37 23") +
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
    "<Parameters Version=\"1\">\n"
    "\t<Result Code=\"0\" />\n"
    "</Parameters>\n";

const SDKCommandParser Parser;

// The records make these bytes, whatever type and length their head tells, and these bytes make the
// records again.
void expectBothWays(SDKCommandHeadInfo head, const Records& records, const std::string& strBytes) {
    head.setProtocolType(3);
    head.setPayloadLength(12345);
    EXPECT_EQ(encoded(Parser, sdkCommand(head, records)), strBytes);
    const auto param = decoded(Parser, bufferOf(strBytes));
    const auto& decodedHead = static_cast<const SDKCommandParam&>(*param).getHead();
    EXPECT_EQ(param->getProtocolType(), 1U);
    EXPECT_EQ(decodedHead.getProtocolType(), 1);
    EXPECT_EQ(decodedHead.getPayloadLength(), strBytes.size() - SDKCommandHeadInfo::WireLength);
    EXPECT_EQ(idsOf(recordsIn(param)), idsOf(records));
    EXPECT_EQ(encoded(Parser, param), strBytes);
}

TEST(CommandGoldenTest, TheLoginRequest) {
    UserParam user;
    user.setUserName(enciphered("admin"));
    user.setPassword(enciphered("secret#1"));
    expectBothWays(headOf(11001, 1, 0), recordsOf(user), LoginRequest);
}

TEST(CommandGoldenTest, TheCommandThatSetsNTP) {
    NTPParam param;
    param.setNTPEnableFlag(true);
    param.setNTPIp("10.0.0.5");
    param.setNTPPort(123);
    param.setNTPRunTime(60);
    expectBothWays(headOf(32714, 2, 0x12345), onChannel(-1, param), NtpSetRequest);
}

TEST(CommandGoldenTest, ThePlainAcknowledgement) {
    expectBothWays(headOf(10000, 2, 0x12345), recordsOf(EtResult()), Acknowledgement);
}

}  // namespace
