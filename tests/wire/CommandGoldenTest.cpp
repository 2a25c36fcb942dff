// Whole commands as they stand on the wire, written down by hand from the protocol.
#include <gtest/gtest.h>

#include "domain/ChannelId.h"
#include "domain/EtResult.h"
#include "domain/NTPParam.h"
#include "domain/UserParam.h"
#include "protocol/CredentialCipher.h"
#include "protocol/SDKCommandParam.h"
#include "protocol/SDKCommandParser.h"
#include "support/WireBytes.h"

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

SDKCommandHeadInfo headOf(std::uint32_t nCommandID, std::uint16_t nSequence,
                          std::uint32_t nSessionId) {
    SDKCommandHeadInfo head;
    head.setCommandID(nCommandID);
    head.setSequence(nSequence);
    head.setSessionId(nSessionId);
    return head;
}

std::string encoded(const SDKCommandHeadInfo& head, Records records) {
    auto pobjParam = std::make_unique<SDKCommandParam>();
    pobjParam->setHead(head);
    pobjParam->setDomains(std::move(records));
    CommandBuffer buffer;
    EXPECT_TRUE(
        SDKCommandParser().createCommand(wrapSafe<CommandParam>(std::move(pobjParam)), buffer));
    return bytesOf(buffer);
}

SafePointer<CommandParam> decoded(const std::string& strBytes) {
    SafePointer<CommandParam> param;
    EXPECT_TRUE(SDKCommandParser().parseCommand(bufferOf(strBytes), param));
    return param;
}

const Records& recordsIn(const SafePointer<CommandParam>& param) {
    return static_cast<const SDKCommandParam&>(*param).getDomains();
}

std::string encrypted(const std::string& strPlain) {
    std::string strOut;
    EXPECT_TRUE(encryptText(strPlain, strOut));
    return strOut;
}

NTPParam ntpParam() {
    NTPParam param;
    param.setNTPEnableFlag(true);
    param.setNTPIp("10.0.0.5");
    param.setNTPPort(123);
    param.setNTPRunTime(60);
    return param;
}

TEST(CommandGoldenTest, TheLoginRequest) {
    UserParam user;
    user.setUserName(encrypted("admin"));
    user.setPassword(encrypted("secret#1"));
    EXPECT_EQ(encoded(headOf(11001, 1, 0), recordsOf(user)), LoginRequest);
    EXPECT_EQ(LoginRequest.find("admin"), std::string::npos);
    EXPECT_EQ(LoginRequest.find("secret"), std::string::npos);

    const auto param = decoded(LoginRequest);
    ASSERT_EQ(recordsIn(param).size(), 1U);
    EXPECT_EQ(recordAt<UserParam>(recordsIn(param), 0), user);
}

TEST(CommandGoldenTest, TheCommandThatSetsNTP) {
    ChannelId channel;
    channel.setId(-1);
    EXPECT_EQ(encoded(headOf(32714, 2, 0x12345), recordsOf(channel, ntpParam())), NtpSetRequest);

    const auto param = decoded(NtpSetRequest);
    ASSERT_EQ(recordsIn(param).size(), 2U);
    EXPECT_EQ(recordAt<ChannelId>(recordsIn(param), 0).getId(), -1);
    EXPECT_EQ(recordAt<NTPParam>(recordsIn(param), 1), ntpParam());
}

TEST(CommandGoldenTest, ThePlainAcknowledgement) {
    EXPECT_EQ(encoded(headOf(10000, 2, 0x12345), recordsOf(EtResult())), Acknowledgement);

    const auto param = decoded(Acknowledgement);
    ASSERT_EQ(recordsIn(param).size(), 1U);
    EXPECT_EQ(recordAt<EtResult>(recordsIn(param), 0).getCode(), 0);
}

}  // namespace
