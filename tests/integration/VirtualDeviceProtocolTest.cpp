// The virtual device as a peer sees it that knows only heads and bodies.
#include <gmock/gmock.h>

#include <regex>
#include <set>
#include <string>

#include "Product/Technic/ErrorCode.h"
#include "domain/DeviceSummaryInfo.h"
#include "domain/DeviceTime.h"
#include "domain/EtCOMWriteData.h"
#include "domain/EtChangePasswordReq.h"
#include "domain/EtFileDataPack.h"
#include "domain/EtPTZOperation.h"
#include "domain/EtSessionId.h"
#include "domain/KXInterger.h"
#include "domain/LanguageId.h"
#include "domain/UserParam.h"
#include "protocol/CommandCatalogue.h"
#include "protocol/CommandIds.h"
#include "protocol/CommandParserFactory.h"
#include "protocol/SDKCommandParser.h"
#include "session/TCPTransfer.h"
#include "support/ManualClock.h"
#include "support/ScriptedPeer.h"
#include "support/WireCommands.h"
#include "virtual-device/DeviceResult.h"
#include "virtual-device/VirtualDevice.h"

using namespace fleetkit;

namespace {

constexpr int TimeoutMs = 5000;
constexpr std::uint32_t GetTime = CommandId::getDeviceTime;
constexpr std::uint32_t Reads = 2;  // as an operation of the catalogue

Records credentials(const std::string& strUser, const std::string& strPassword) {
    return recordsOf(with(&UserParam::setUserName, strUser, &UserParam::setPassword, strPassword));
}

DeviceTime time(int nYear, int nMonth, int nDay, int nHour) {
    return with(&DeviceTime::setYear, nYear, &DeviceTime::setMonth, nMonth, &DeviceTime::setDay,
                nDay, &DeviceTime::setHour, nHour);
}

class RawClient {
public:
    explicit RawClient(const VirtualDevice& device) {
        const InetAddr address = loginData(device.getPort()).getDeviceAddr();
        EXPECT_EQ(m_transfer.create(), ErrorCode::Success);
        EXPECT_EQ(m_transfer.connect(address, TimeoutMs), ErrorCode::Success);
        m_transfer.setCommandHeadParser(createCommandHeadParser(1));
    }

    void send(const std::string& strBytes) {
        EXPECT_EQ(m_transfer.sendCommand(bufferOf(strBytes), {}, TimeoutMs), ErrorCode::Success);
    }

    void send(std::uint32_t nCommandId, const Records& vecRecords) {
        const auto head = headOf(nCommandId, ++m_nSequence, m_nSession);
        send(encoded(SDKCommandParser(), sdkCommand(head, vecRecords)));
    }

    // Takes the next message, whatever its head says, and gives its code.
    int receive() {
        CommandBuffer buffer;
        EXPECT_EQ(receive(buffer), ErrorCode::Success);
        const auto param = decoded(SDKCommandParser(), buffer);
        m_head = static_cast<const SDKCommandParam&>(*param).getHead();
        m_vecReply = recordsIn(param);
        const auto* pResult = findRecord<EtResult>(m_vecReply);
        return pResult ? pResult->getCode() : -1;
    }

    int receive(CommandBuffer& buffer) {
        InetAddr from;
        return m_transfer.recvCommand(buffer, TimeoutMs, from);
    }

    // One exchange, with a reply that belongs to its request.
    int ask(std::uint32_t nCommandId, const Records& vecRecords = onChannel(-1)) {
        send(nCommandId, vecRecords);
        const int nCode = receive();
        const CommandDescriptor* pCommand = findCommand(nCommandId);
        EXPECT_EQ(m_head.getSequence(), m_nSequence) << nCommandId;
        EXPECT_EQ(m_head.getSessionId(), m_nSession) << nCommandId;
        EXPECT_EQ(m_head.getCommandID(), pCommand ? pCommand->nResponseId : 10000U) << nCommandId;
        return nCode;
    }

    // The record that answers a request.
    template <class Record>
    Record get(std::uint32_t nCommandId, const Records& vecRequest = onChannel(-1)) {
        ask(nCommandId, vecRequest);
        const auto* pRecord = findRecord<Record>(m_vecReply);
        EXPECT_NE(pRecord, nullptr) << nCommandId;
        return pRecord ? *pRecord : Record();
    }

    int login() {
        const int nCode = ask(11001, credentials(enciphered("admin"), enciphered("admin")));
        if (const auto* pSession = findRecord<EtSessionId>(m_vecReply)) {
            m_nSession = static_cast<std::uint32_t>(pSession->getSessionId());
        }
        return nCode;
    }

    std::uint32_t m_nSession = 0;
    std::uint16_t m_nSequence = 0;
    SDKCommandHeadInfo m_head;  // of the last message, as the records
    Records m_vecReply;

private:
    TCPTransfer m_transfer{1};
};

class VirtualDeviceTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(m_client.login(), DeviceResult::Success); }

    VirtualDevice m_device;
    RawClient m_client{m_device};
};

TEST_F(VirtualDeviceTest, RefusesWrongCredentials) {
    RawClient other(m_device);
    const std::string strRight = enciphered("admin");
    for (const auto& vecWrong :
         {credentials(strRight, enciphered("wrong")), credentials(enciphered("nobody"), strRight),
          credentials(strRight, ""), credentials("admin", "not base64 !")}) {
        EXPECT_EQ(other.ask(11001, vecWrong), DeviceResult::WrongCredentials);
    }
    EXPECT_EQ(other.ask(11001, {}), DeviceResult::MissingRecord);
    EXPECT_EQ(m_device.sessionCount(), 1U);
    EXPECT_EQ(other.login(), DeviceResult::Success);
    EXPECT_EQ(m_device.sessionCount(), 2U);
}

TEST_F(VirtualDeviceTest, ASessionBelongsToItsConnectionAndEndsWithLogout) {
    RawClient other(m_device);
    EXPECT_EQ(other.ask(GetTime), DeviceResult::NoSession);
    ASSERT_EQ(other.login(), DeviceResult::Success);
    EXPECT_THAT(other.m_nSession,
                testing::AllOf(testing::Ne(0U), testing::Ne(m_client.m_nSession)));
    std::swap(other.m_nSession, m_client.m_nSession);
    EXPECT_EQ(other.ask(GetTime), DeviceResult::NoSession);
    std::swap(other.m_nSession, m_client.m_nSession);
    EXPECT_EQ(other.ask(11003), DeviceResult::Success);
    EXPECT_EQ(other.ask(GetTime), DeviceResult::NoSession);
    EXPECT_EQ(m_client.ask(GetTime), DeviceResult::Success);
    for (const bool bOther : {false, true}) {
        const auto nNamed = static_cast<int>(m_client.m_nSession + bOther);
        const auto named = with(&EtSessionId::setSessionId, nNamed);
        EXPECT_EQ(m_client.ask(11007, recordsOf(named)),
                  bOther ? DeviceResult::NoSession : DeviceResult::Success);
    }
    m_device.dropSessions();
    EXPECT_EQ(m_client.ask(GetTime), DeviceResult::NoSession);
}

TEST_F(VirtualDeviceTest, WhatCannotBeIsRefusedAndChangesNothing) {
    const DeviceState before = m_device.getState();
    auto vecStreams = before.vecStreams;
    vecStreams.front().setQuality(-7);
    const auto otherText = with(&OSDUserParam::setCameraId, 2);
    vecStreams.back().setStreamId(9);
    const auto passwords = with(&EtChangePasswordReq::setOldPassword, enciphered("wrong"),
                                &EtChangePasswordReq::setNewPassword, enciphered("new"));
    const struct {
        std::uint32_t nCommandId;
        Records vecRequest;
        int nCode;
    } Cases[]{
        {30033, onChannel(-1, with(&LanguageId::setId, 77)), DeviceResult::BadParameter},
        {30509, onChannel(-1, time(2027, 2, 29, 0)), DeviceResult::BadParameter},
        {30509, onChannel(-1, time(2028, 2, 29, 24)), DeviceResult::BadParameter},
        {30515, recordsOf(with(&KXInterger::setValue, 77)), DeviceResult::BadParameter},
        {32506, onChannel(-1, listOf(std::vector{with(&HostNetwork::setNetId, 9)})),
         DeviceResult::BadParameter},
        {33509, onChannel(-1, passwords), DeviceResult::WrongCredentials},
        {35010, onChannel(-1, listOf(vecStreams)), DeviceResult::NoSuchStream},
        {35010, onChannel(2, listOf(before.vecStreams)), DeviceResult::NoSuchStream},
        {35021, onChannel(-1, otherText), DeviceResult::NoSuchChannel},
        {35021, onChannel(2, listOf(before.vecOSD)), DeviceResult::NoSuchChannel},
    };
    for (const std::uint32_t nCommandId : {11007U, 18001U, 30033U, 30509U, 30517U, 30525U, 30547U,
                                           32023U, 32506U, 32714U, 33509U, 35010U, 35021U}) {
        EXPECT_EQ(m_client.ask(nCommandId), DeviceResult::MissingRecord) << nCommandId;
    }
    for (const std::uint32_t nCommandId : {30009U, 30011U, 30013U, 30015U, 30021U, 30025U}) {
        EXPECT_EQ(m_client.ask(nCommandId, onChannel(2)), DeviceResult::NoSuchChannel);
    }
    for (const auto& one : Cases) {
        EXPECT_EQ(m_client.ask(one.nCommandId, one.vecRequest), one.nCode) << one.nCommandId;
    }
    const DeviceState after = m_device.getState();
    EXPECT_TRUE(after.vecStreams == before.vecStreams);
    EXPECT_TRUE(after.vecHostNetworks == before.vecHostNetworks);
    EXPECT_EQ(after.strPassword, before.strPassword);
}

TEST(VirtualDeviceClock, RunsOnFromWhatWasSet) {
    ManualClock clock(1000, 1700000000);
    const ScopedClock scope(clock);
    const VirtualDevice device;
    RawClient client(device);
    client.login();
    const auto now = [&] { return client.get<DeviceTime>(GetTime); };
    EXPECT_EQ(now().getYear(), 2023);
    const DeviceTime set = time(2028, 2, 28, 23);
    EXPECT_EQ(client.ask(30509, onChannel(-1, set)), DeviceResult::Success);
    EXPECT_TRUE(now() == set);
    clock.advanceMs(3630 * 1000);
    EXPECT_EQ(now().getDay(), 29);
    EXPECT_EQ(client.get<DeviceSummaryInfo>(30541).getDeviceTime(), "2028-02-29 00:00:30");
}

// A name that is misspelt in the factory state shows as a field that is zero, false or empty.
TEST_F(VirtualDeviceTest, NoFieldOfACameraIsZeroWithoutReason) {
    std::string strBody;
    for (const CommandDescriptor& command : commandCatalogue()) {
        if (command.nOperation == Reads && findFunction(command.nRequestId)) {
            m_client.ask(command.nRequestId, onChannel(-1, with(&LanguageId::setId, -1)));
            strBody += bodyOf(m_client.m_vecReply);
        }
    }
    // The clock may well stand at 0.
    const std::regex zero("\\b(?!Hour|Minute|Second)\\w+=\"(0|false|)\"|<\\w+List( /|></\\w+)>");
    std::set<std::string> setZeros;
    for (std::sregex_iterator it(strBody.begin(), strBody.end(), zero), end; it != end; ++it) {
        setZeros.insert(it->str());
    }
    EXPECT_THAT(setZeros, testing::ElementsAre("B=\"0\"", "Code=\"0\"", "DHCP=\"false\"", "G=\"0\"",
                                               "R=\"0\""));
}

TEST_F(VirtualDeviceTest, ACommandWithoutAFunctionIsRefusedInItsOwnForm) {
    const DataBuffer data = dataOf("x");
    const Records vecAny = recordsOf(with(&EtCOMWriteData::setComData, data), data,
                                     EtFileDataPack(), EtPTZOperation(), EtResult());
    int nRefused = 0;
    for (const CommandDescriptor& command : commandCatalogue()) {
        if (findFunction(command.nRequestId) && command.nRequestId != CommandId::operatePTZ) {
            continue;
        }
        ++nRefused;
        // One of the binary forms reads its code byte-swapped.
        EXPECT_EQ(m_client.ask(command.nRequestId, vecAny), command.nResponseId == 15020
                                                                ? DeviceResult::NotSupported << 24
                                                                : DeviceResult::NotSupported)
            << command.nRequestId;
    }
    EXPECT_GT(nRefused, 400);
    EXPECT_EQ(m_client.ask(99), DeviceResult::UnknownCommand);
}

TEST_F(VirtualDeviceTest, ABrokenBodyIsRefusedAndABrokenHeadEndsItsConnectionOnly) {
    for (const std::string& strBody : {std::string(), std::string("<<<"), std::string(2, '\0')}) {
        m_client.send(peerMessage(headOf(32714), strBody));
        EXPECT_EQ(m_client.receive(), DeviceResult::MalformedRequest);
    }
    const std::string strGreedy = announcing(0xFFFFFFFF);
    const std::string strStrange = '\0' + strGreedy.substr(1);
    for (const std::string& strHead : {strGreedy, strStrange}) {
        RawClient client(m_device);
        CommandBuffer buffer;
        client.send(strHead);
        EXPECT_EQ(client.receive(buffer), ErrorCode::ReceiveFailed);
    }
    RawClient(m_device).send(strGreedy.substr(0, 10));
    EXPECT_EQ(m_client.ask(GetTime), DeviceResult::Success);
}

TEST(VirtualDeviceLimits, IdleConnectionsEndAndKeepNobodyOut) {
    CommandBuffer nothing;
    const VirtualDevice hasty({.loginTime = std::chrono::milliseconds(50)});
    EXPECT_EQ(RawClient(hasty).receive(nothing), ErrorCode::ReceiveFailed) << "took too long";
    const VirtualDevice device({.nMaxConnections = 2});
    RawClient first(device);
    ASSERT_EQ(first.login(), DeviceResult::Success);
    RawClient idle(device);
    RawClient second(device);
    ASSERT_EQ(second.login(), DeviceResult::Success);
    EXPECT_EQ(idle.receive(nothing), ErrorCode::ReceiveFailed) << "gave way";
    RawClient third(device);
    EXPECT_EQ(third.login(), DeviceResult::TooManyConnections);
    EXPECT_EQ(third.receive(nothing), ErrorCode::ReceiveFailed);
    EXPECT_EQ(first.ask(GetTime), DeviceResult::Success);
    EXPECT_EQ(second.ask(11003), DeviceResult::Success);
    EXPECT_EQ(RawClient(device).login(), DeviceResult::Success);
}

TEST_F(VirtualDeviceTest, ARequestIsLimitedBeforeLoginAndRememberedInPart) {
    const std::string strLong = peerBody(std::string(70000, ' '));
    RawClient stranger(m_device);
    CommandBuffer nothing;
    stranger.send(peerMessage(headOf(GetTime), strLong));
    EXPECT_EQ(stranger.receive(nothing), ErrorCode::ReceiveFailed);
    m_client.send(peerMessage(headOf(GetTime, 0, m_client.m_nSession), strLong));
    EXPECT_EQ(m_client.receive(), DeviceResult::Success);
    EXPECT_EQ(m_client.ask(GetTime, Records(1000, recordsOf(ChannelId()).front())),
              DeviceResult::Success);
    EXPECT_EQ(m_device.getReceived().back().vecRecords.size(), 32U);
}

// What the library gets along with; the rest shows by its codes.
TEST_F(VirtualDeviceTest, MisbehavesInWaysThatDoNoHarm) {
    m_device.misbehave("protocol-type:30507", 1);
    m_client.ask(GetTime);
    EXPECT_EQ(m_client.m_head.getProtocolType(), 3);
    m_device.misbehave("twice:30507", 1);
    m_client.ask(GetTime);
    m_client.receive();
    EXPECT_EQ(m_client.m_head.getSequence(), m_client.m_nSequence);
    m_device.misbehave("strays=2:30507", 1);
    m_client.send(GetTime, onChannel(-1));
    for (const int nBehind : {1, 2, 0}) {
        m_client.receive();
        EXPECT_EQ(m_client.m_head.getSequence(), m_client.m_nSequence - nBehind);
    }
    m_device.misbehave("code=5:getDeviceTime", 2);
    EXPECT_EQ(m_client.ask(32712), DeviceResult::Success) << "another command";
    for (const int nCode : {5, 5, 0}) {
        EXPECT_EQ(m_client.ask(GetTime), nCode);
    }
    m_device.misbehave("code");
    EXPECT_EQ(m_client.ask(32712), 99);
    m_device.behave();
    EXPECT_EQ(m_client.ask(32712), DeviceResult::Success);
}

}  // namespace
