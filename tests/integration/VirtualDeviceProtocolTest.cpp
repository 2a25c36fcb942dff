// The virtual device as a peer sees it that knows only heads and bodies.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <set>
#include <string>

#include "Product/Technic/Socket.h"
#include "domain/DataBuffer.h"
#include "domain/DeviceId.h"
#include "domain/DeviceTime.h"
#include "domain/DomainFactory.h"
#include "domain/EtAdapterType.h"
#include "domain/EtCOMWriteData.h"
#include "domain/EtChangePasswordReq.h"
#include "domain/EtFileDataPack.h"
#include "domain/EtHoldTypeList.h"
#include "domain/EtIPProtoVer.h"
#include "domain/EtPTZOperation.h"
#include "domain/EtResult.h"
#include "domain/EtSessionId.h"
#include "domain/EtSystemReq.h"
#include "domain/KXBool.h"
#include "domain/KXInterger.h"
#include "domain/LanguageId.h"
#include "domain/RecordDescriptor.h"
#include "domain/StreamId.h"
#include "domain/User.h"
#include "domain/UserParam.h"
#include "protocol/CommandCatalogue.h"
#include "protocol/CredentialCipher.h"
#include "protocol/SDKCommandParam.h"
#include "protocol/SDKCommandParser.h"
#include "support/CapturedOutput.h"
#include "support/LoopbackNamespace.h"
#include "support/ManualClock.h"
#include "support/TempDir.h"
#include "virtual-device/CommandHandlers.h"
#include "virtual-device/DeviceResult.h"
#include "virtual-device/VirtualDevice.h"

namespace {

constexpr int TimeoutMs = 5000;
constexpr int SilenceMs = 200;  // how long a silence is listened to

std::string enciphered(const std::string& strPlain) {
    std::string strCipher;
    EXPECT_TRUE(encryptText(strPlain, strCipher));
    return strCipher;
}

template <class... Record>
Records records(const Record&... record) {
    Records vecRecords;
    (appendRecord(vecRecords, record), ...);
    return vecRecords;
}

// Records that lead with a channel, as nearly all requests do.
template <class... Record>
Records onChannel(int nChannel, const Record&... record) {
    ChannelId objChannel;
    objChannel.setId(nChannel);
    return records(objChannel, record...);
}

template <class T>
DomainVectorContainer<T> listOf(std::vector<T> vecElements) {
    return DomainVectorContainer<T>(std::move(vecElements));
}

Records credentials(const std::string& strUser, const std::string& strPassword) {
    UserParam objUser;
    objUser.setUserName(enciphered(strUser));
    objUser.setPassword(enciphered(strPassword));
    return records(objUser);
}

Records passwordChange(const std::string& strOld, const std::string& strNew) {
    EtChangePasswordReq objChange;
    objChange.setOldPassword(enciphered(strOld));
    objChange.setNewPassword(enciphered(strNew));
    return onChannel(-1, objChange, KXBool());
}

CommandBuffer encode(const SDKCommandHeadInfo& head, const Records& vecRecords) {
    auto pobjParam = std::make_unique<SDKCommandParam>();
    pobjParam->setHead(head);
    pobjParam->setDomains(vecRecords);
    CommandBuffer objBuffer;
    EXPECT_TRUE(
        SDKCommandParser().createCommand(wrapSafe<CommandParam>(std::move(pobjParam)), objBuffer));
    return objBuffer;
}

struct Reply {
    bool bArrived = false;  // a sound head and all that it announces
    bool bDecoded = false;
    SDKCommandHeadInfo objHead;
    Records vecRecords;

    int code() const {
        const auto* pResult = findRecord<EtResult>(vecRecords);
        return pResult ? pResult->getCode() : -1;
    }
};

class RawClient {
public:
    explicit RawClient(const VirtualDevice& device) : m_objSocket(1, Socket::Stream) {
        EXPECT_TRUE(m_objSocket.open());
        EXPECT_TRUE(m_objSocket.connect("127.0.0.1", device.getPort(), TimeoutMs));
    }

    void send(const CommandBuffer& buffer) {
        EXPECT_EQ(m_objSocket.sendAll(buffer.data(), static_cast<int>(buffer.getLength())),
                  static_cast<int>(buffer.getLength()));
    }

    void send(std::uint32_t nCommandId, const Records& vecRecords) {
        SDKCommandHeadInfo objHead;
        objHead.setCommandID(nCommandId);
        objHead.setSessionId(m_nSession);
        objHead.setSequence(++m_nSequence);
        send(encode(objHead, vecRecords));
    }

    // The next message, whatever its head says.
    Reply receive(int nTimeoutMs = TimeoutMs) {
        Reply objReply;
        std::vector<std::uint8_t> vecHead(SDKCommandHeadInfo::WireLength);
        if (!read(vecHead.data(), vecHead.size(), nTimeoutMs) ||
            !decodeCommandHead(vecHead.data(), SDKCommandHeadInfo::WireLength, objReply.objHead) ||
            objReply.objHead.getPayloadLength() > (16U << 20)) {
            return objReply;
        }
        CommandBuffer objBuffer;
        const std::uint32_t nPayload = objReply.objHead.getPayloadLength();
        EXPECT_TRUE(objBuffer.allocate(vecHead.size() + nPayload));
        EXPECT_TRUE(objBuffer.append(vecHead.data(), SDKCommandHeadInfo::WireLength));
        if (!read(objBuffer.data() + vecHead.size(), nPayload, nTimeoutMs)) {
            return objReply;
        }
        objBuffer.setLength(objBuffer.getCapacity());
        objReply.bArrived = true;
        SafePointer<CommandParam> objParam;
        objReply.bDecoded = SDKCommandParser().parseCommand(objBuffer, objParam);
        if (objReply.bDecoded) {
            objReply.vecRecords = static_cast<const SDKCommandParam&>(*objParam).getDomains();
        }
        return objReply;
    }

    // One exchange, with a reply that belongs to its request.
    Reply ask(std::uint32_t nCommandId, const Records& vecRecords = onChannel(-1)) {
        send(nCommandId, vecRecords);
        Reply objReply = receive();
        EXPECT_TRUE(objReply.bDecoded) << nCommandId;
        EXPECT_EQ(objReply.objHead.getSequence(), m_nSequence) << nCommandId;
        EXPECT_EQ(objReply.objHead.getSessionId(), m_nSession) << nCommandId;
        const CommandDescriptor* pCommand = findCommand(nCommandId);
        EXPECT_EQ(objReply.objHead.getCommandID(), pCommand ? pCommand->nResponseId : 10000U)
            << nCommandId;
        return objReply;
    }

    int login(const std::string& strUser = "admin", const std::string& strPassword = "admin") {
        const Reply objReply = ask(11001, credentials(strUser, strPassword));
        if (const auto* pSession = findRecord<EtSessionId>(objReply.vecRecords)) {
            m_nSession = static_cast<std::uint32_t>(pSession->getSessionId());
        }
        return objReply.code();
    }

    // Neither a byte nor silence, but the end.
    bool isClosed() {
        std::uint8_t nByte = 0;
        return m_objSocket.recv(&nByte, 1, TimeoutMs, false) == -1;
    }

    std::uint32_t m_nSession = 0;
    std::uint16_t m_nSequence = 0;

private:
    bool read(std::uint8_t* pBytes, std::size_t nCount, int nTimeoutMs) {
        for (std::size_t nRead = 0; nRead < nCount;) {
            const int nResult = m_objSocket.recv(pBytes + nRead, static_cast<int>(nCount - nRead),
                                                 nTimeoutMs, false);
            if (nResult <= 0) {
                return false;
            }
            nRead += static_cast<std::size_t>(nResult);
        }
        return true;
    }

    Socket m_objSocket;
};

template <class T>
T answered(RawClient& client, std::uint32_t nCommandId, const Records& vecRequest = onChannel(-1)) {
    const Reply objReply = client.ask(nCommandId, vecRequest);
    EXPECT_EQ(objReply.code(), DeviceResult::Success) << nCommandId;
    const T* pRecord = findRecord<T>(objReply.vecRecords);
    EXPECT_NE(pRecord, nullptr) << nCommandId;
    return pRecord ? *pRecord : T();
}

template <class T>
std::vector<T> answeredList(RawClient& client, std::uint32_t nCommandId,
                            const Records& vecRequest = onChannel(-1)) {
    const Reply objReply = client.ask(nCommandId, vecRequest);
    EXPECT_EQ(objReply.code(), DeviceResult::Success) << nCommandId;
    const auto* pList = findList<T>(objReply.vecRecords);
    EXPECT_NE(pList, nullptr) << nCommandId;
    return pList ? *pList : std::vector<T>();
}

DeviceOptions recorder(int nChannels, int nStreams) {
    DeviceOptions objOptions;
    objOptions.nKind = DeviceKind::NVR;
    objOptions.nChannels = nChannels;
    objOptions.nStreams = nStreams;
    return objOptions;
}

class VirtualDeviceTest : public testing::Test {
protected:
    VirtualDevice m_objDevice;
    RawClient m_objClient{m_objDevice};
};

class LoggedInTest : public VirtualDeviceTest {
protected:
    void SetUp() override { ASSERT_EQ(m_objClient.login(), DeviceResult::Success); }

    template <class T>
    void expectSetIsGot(std::uint32_t nSet, std::uint32_t nGet, const T& value) {
        EXPECT_FALSE(answered<T>(m_objClient, nGet) == value) << nSet;
        EXPECT_EQ(m_objClient.ask(nSet, onChannel(-1, value)).code(), DeviceResult::Success);
        EXPECT_TRUE(answered<T>(m_objClient, nGet) == value) << nSet;
        RawClient objOther(m_objDevice);
        objOther.login();
        EXPECT_TRUE(answered<T>(objOther, nGet) == value) << nSet;
    }
};

// --- Login.

TEST_F(VirtualDeviceTest, RefusesWrongCredentialsAndTakesTheRightOnesAfterwards) {
    EXPECT_EQ(m_objClient.login("admin", "wrong"), DeviceResult::WrongCredentials);
    EXPECT_EQ(m_objClient.login("nobody", "admin"), DeviceResult::WrongCredentials);
    EXPECT_EQ(m_objClient.login("admin", ""), DeviceResult::WrongCredentials);
    UserParam objClear;
    objClear.setUserName("admin");
    objClear.setPassword("not base64 !");
    EXPECT_EQ(m_objClient.ask(11001, records(objClear)).code(), DeviceResult::WrongCredentials);
    EXPECT_EQ(m_objClient.ask(11001, {}).code(), DeviceResult::MissingRecord);
    EXPECT_EQ(m_objDevice.sessionCount(), 0U);
    EXPECT_EQ(m_objClient.login(), DeviceResult::Success);
    EXPECT_NE(m_objClient.m_nSession, 0U);
    EXPECT_EQ(m_objDevice.sessionCount(), 1U);
}

TEST_F(LoggedInTest, AChangedPasswordIsWhatTheNextLoginNeeds) {
    EXPECT_EQ(m_objClient.ask(33509, passwordChange("wrong", "new")).code(),
              DeviceResult::WrongCredentials);
    EXPECT_EQ(m_objClient.ask(33509, passwordChange("admin", "new")).code(), DeviceResult::Success);
    EXPECT_EQ(m_objClient.ask(30507).code(), DeviceResult::Success);  // the session goes on
    RawClient objOther(m_objDevice);
    EXPECT_EQ(objOther.login("admin", "admin"), DeviceResult::WrongCredentials);
    EXPECT_EQ(objOther.login("admin", "new"), DeviceResult::Success);
}

TEST_F(LoggedInTest, ASessionBelongsToItsConnectionAndEndsWithLogout) {
    RawClient objOther(m_objDevice);
    EXPECT_EQ(objOther.ask(30507).code(), DeviceResult::NoSession);
    objOther.m_nSession = m_objClient.m_nSession;
    EXPECT_EQ(objOther.ask(30507).code(), DeviceResult::NoSession);
    objOther.m_nSession = 0;
    ASSERT_EQ(objOther.login(), DeviceResult::Success);
    EXPECT_NE(objOther.m_nSession, m_objClient.m_nSession);
    EXPECT_EQ(m_objDevice.sessionCount(), 2U);
    EXPECT_EQ(objOther.ask(11003, credentials("admin", "admin")).code(), DeviceResult::Success);
    EXPECT_EQ(objOther.ask(30507).code(), DeviceResult::NoSession);
    EXPECT_EQ(m_objClient.ask(30507).code(), DeviceResult::Success);
    m_objDevice.dropSessions();
    EXPECT_EQ(m_objClient.ask(30507).code(), DeviceResult::NoSession);
}

TEST_F(LoggedInTest, AnswersAKeepAliveThatNamesItsSession) {
    EtSessionId objSession;
    objSession.setSessionId(static_cast<int>(m_objClient.m_nSession));
    EXPECT_EQ(m_objClient.ask(11007, records(objSession)).code(), DeviceResult::Success);
    objSession.setSessionId(1);
    EXPECT_EQ(m_objClient.ask(11007, records(objSession)).code(), DeviceResult::NoSession);
}

// --- State behind every set.

TEST_F(LoggedInTest, WhatIsSetIsWhatIsGot) {
    NTPParam objNTP;
    objNTP.setNTPIp("10.0.0.5 <&\"é");
    objNTP.setNTPPort(65535);
    expectSetIsGot(32714, 32712, objNTP);
    TimeZoneParam objZone;
    objZone.setTimeZone(-7);
    objZone.setEndTime(86399);
    expectSetIsGot(30517, 30515, objZone);
    DevicePort objPorts;
    objPorts.setControlPort(40000);
    objPorts.setReservePort4(1);
    expectSetIsGot(30525, 30523, objPorts);
    ProtocolSecurityParam objSecurity;
    objSecurity.setSecurityVerificationType(2);
    expectSetIsGot(32023, 32021, objSecurity);
    EXPECT_EQ(m_objClient.ask(32714, onChannel(-1)).code(), DeviceResult::MissingRecord);
}

TEST_F(LoggedInTest, TheHostNetworkOfACardThatIsThereCanBeSet) {
    HostNetwork objNetwork;
    objNetwork.setLocalIp("10.1.2.3");
    objNetwork.setDHCP(true);
    EXPECT_EQ(m_objClient.ask(32506, onChannel(-1, listOf<HostNetwork>({objNetwork}))).code(),
              DeviceResult::Success);
    const auto vecNetworks = answeredList<HostNetwork>(m_objClient, 32504);
    ASSERT_EQ(vecNetworks.size(), 1U);
    EXPECT_EQ(vecNetworks[0].getLocalIp(), "10.1.2.3");
    EXPECT_EQ(answered<DeviceSummaryInfo>(m_objClient, 30541).getDeviceIP(), "10.1.2.3");
    objNetwork.setNetId(9);
    EXPECT_EQ(m_objClient.ask(32506, onChannel(-1, listOf<HostNetwork>({objNetwork}))).code(),
              DeviceResult::BadParameter);
}

TEST(VirtualDeviceClock, RunsOnFromWhatWasSet) {
    ManualClock objClock(1000, 1700000000);
    const ScopedClock objScope(objClock);
    const VirtualDevice objDevice;
    RawClient objClient(objDevice);
    objClient.login();
    EXPECT_EQ(answered<DeviceTime>(objClient, 30507).getYear(), 2023);
    DeviceTime objTime;
    objTime.setYear(2028);
    objTime.setMonth(2);
    objTime.setDay(28);
    objTime.setHour(23);
    objTime.setMinute(59);
    objTime.setSecond(30);
    EXPECT_EQ(objClient.ask(30509, onChannel(-1, objTime)).code(), DeviceResult::Success);
    EXPECT_TRUE(answered<DeviceTime>(objClient, 30507) == objTime);
    objClock.advanceMs(60000);
    const auto objLater = answered<DeviceTime>(objClient, 30507);
    EXPECT_EQ(objLater.getDay(), 29);
    EXPECT_EQ(objLater.getSecond(), 30);
    EXPECT_EQ(answered<DeviceSummaryInfo>(objClient, 30541).getDeviceTime(), "2028-02-29 00:00:30");
    objTime.setMonth(4);
    objTime.setDay(31);
    EXPECT_EQ(objClient.ask(30509, onChannel(-1, objTime)).code(), DeviceResult::BadParameter);
}

TEST_F(LoggedInTest, ATimeZoneHasADefaultAndANameInEachLanguage) {
    KXInterger objZone;
    objZone.setValue(2);
    Records vecRequest = records(objZone, ChannelId());
    EXPECT_EQ(answered<TimeZoneParam>(m_objClient, 30515, vecRequest).getTimeZone(), 2);
    objZone.setValue(77);
    vecRequest = records(objZone, ChannelId());
    EXPECT_EQ(m_objClient.ask(30515, vecRequest).code(), DeviceResult::BadParameter);
    std::set<std::string> setNames;
    const auto objLanguages = answered<LanguageAbility>(m_objClient, 30007);
    for (const LanguageType& language : objLanguages.getLanguageTypeList()) {
        LanguageId objLanguage;
        objLanguage.setId(language.getLanguageID());
        const auto objNames =
            answered<TimeZoneAbility>(m_objClient, 30033, onChannel(-1, objLanguage));
        ASSERT_FALSE(objNames.getTimeZoneTypeList().empty());
        setNames.insert(objNames.getTimeZoneTypeList().front().getTimeZoneName());
    }
    EXPECT_EQ(setNames.size(), objLanguages.getLanguageTypeList().size());
    EXPECT_GT(setNames.size(), 1U);
}

TEST(VirtualRecorder, StreamsAreSetAllTogetherOrNotAtAll) {
    const VirtualDevice objDevice(recorder(3, 2));
    RawClient objClient(objDevice);
    objClient.login();
    const auto streams = [&](int nChannel, int nStream) {
        StreamId objStream;
        objStream.setId(nStream);
        return answeredList<AVStreamParam>(objClient, 35008, onChannel(nChannel, objStream));
    };
    EXPECT_EQ(streams(-1, -1).size(), 6U);
    EXPECT_EQ(streams(2, -1).size(), 2U);
    EXPECT_EQ(streams(9, -1).size(), 0U);
    auto vecStreams = streams(2, 1);
    ASSERT_EQ(vecStreams.size(), 1U);
    vecStreams[0].setBitRate(7777);
    StreamId objChannelAgain;  // as a client sends it that repeats the channel
    objChannelAgain.setId(2);
    EXPECT_EQ(objClient.ask(35010, onChannel(2, objChannelAgain, listOf(vecStreams))).code(),
              DeviceResult::Success);
    EXPECT_EQ(streams(2, 1).at(0).getBitRate(), 7777);
    EXPECT_NE(streams(2, 2).at(0).getBitRate(), 7777);
    vecStreams = streams(-1, -1);
    for (AVStreamParam& stream : vecStreams) {
        stream.setQuality(1);
    }
    vecStreams.back().setStreamId(5);
    EXPECT_EQ(objClient.ask(35010, onChannel(-1, listOf(vecStreams))).code(),
              DeviceResult::NoSuchStream);
    EXPECT_NE(streams(1, 1).at(0).getQuality(), 1);
}

TEST(VirtualRecorder, TextAndChannelsAreKeptByChannel) {
    const VirtualDevice objDevice(recorder(3, 1));
    RawClient objClient(objDevice);
    objClient.login();
    auto vecOSD = answeredList<OSDUserParam>(objClient, 35022);
    ASSERT_EQ(vecOSD.size(), 3U);
    OSDUserParam objOSD = vecOSD[1];
    objOSD.setCanvasProperList({});
    EXPECT_EQ(objClient.ask(35021, onChannel(2, objOSD)).code(), DeviceResult::Success);
    vecOSD = answeredList<OSDUserParam>(objClient, 35022);
    EXPECT_TRUE(vecOSD[1] == objOSD);
    EXPECT_FALSE(vecOSD[0].getCanvasProperList().empty());
    vecOSD[2].setCanvasProperList({});
    EXPECT_EQ(objClient.ask(35021, onChannel(-1, listOf(vecOSD))).code(), DeviceResult::Success);
    EXPECT_TRUE(answeredList<OSDUserParam>(objClient, 35022) == vecOSD);
    EXPECT_EQ(objClient.ask(35021, onChannel(1, objOSD)).code(), DeviceResult::NoSuchChannel);

    EXPECT_EQ(answeredList<ChannelInfo>(objClient, 41259).size(), 3U);
    EXPECT_EQ(answeredList<ChannelInfo>(objClient, 41259, onChannel(3)).at(0).getLocalChannelID(),
              3);
    EXPECT_TRUE(answeredList<ChannelInfo>(objClient, 41259, onChannel(4)).empty());
    EXPECT_EQ(
        answered<VideoAbility>(objClient, 30009, onChannel(2)).getVideoAbilityParamList().size(),
        1U);
    for (const std::uint32_t nAbility : {30009U, 30011U, 30013U, 30015U, 30021U, 30025U}) {
        EXPECT_EQ(objClient.ask(nAbility, onChannel(4)).code(), DeviceResult::NoSuchChannel);
    }
    EXPECT_EQ(objClient.ask(30031).code(), DeviceResult::NotSupported);
}

TEST_F(LoggedInTest, AResetBringsTheFactoryStateBackButForWhatItIsToHold) {
    const auto objFactoryNTP = answered<NTPParam>(m_objClient, 32712);
    const auto objFactoryPorts = answered<DevicePort>(m_objClient, 30523);
    DevicePort objPorts;
    objPorts.setRTSPPort(8554);
    m_objClient.ask(32714, onChannel(-1, NTPParam()));
    m_objClient.ask(30525, onChannel(-1, objPorts));
    EtHoldTypeList objHold;
    objHold.setType({1});
    EXPECT_EQ(m_objClient.ask(18001, onChannel(-1, objHold)).code(), DeviceResult::Success);
    EXPECT_TRUE(answered<NTPParam>(m_objClient, 32712) == objFactoryNTP);
    EXPECT_TRUE(answered<DevicePort>(m_objClient, 30523) == objPorts);
    m_objClient.ask(18001, onChannel(-1, EtHoldTypeList()));
    EXPECT_TRUE(answered<DevicePort>(m_objClient, 30523) == objFactoryPorts);
}

TEST_F(LoggedInTest, ARestartIsAnsweredAndThenEndsAllConnections) {
    RawClient objOther(m_objDevice);
    objOther.login();
    EXPECT_EQ(m_objClient.ask(18002).code(), DeviceResult::Success);
    EXPECT_TRUE(m_objClient.isClosed());
    EXPECT_TRUE(objOther.isClosed());
    EXPECT_EQ(RawClient(m_objDevice).login(), DeviceResult::Success);
}

TEST_F(LoggedInTest, ASystemCommandIsNotedAndNeverRun) {
    const TempDir objDir;
    EtSystemReq objCommand;
    objCommand.setSystemCommand("touch " + objDir.file("made"));
    EXPECT_EQ(m_objClient.ask(30547, onChannel(-1, objCommand)).code(), DeviceResult::Success);
    EXPECT_EQ(m_objDevice.getState().strLastSystemCommand, objCommand.getSystemCommand());
    EXPECT_FALSE(std::filesystem::exists(objDir.file("made")));
    const ReceivedCommand objReceived = m_objDevice.getReceived().back();
    EXPECT_EQ(objReceived.nCommandId, 30547U);
    EXPECT_EQ(objReceived.vecRecords, (std::vector<std::string>{"ChannelId", "SystemReq"}));
}

// --- What every command gets.

// Names of the fields that are zero, false or empty anywhere in a record, nested ones included.
void collectZeros(const RecordDescriptor& descriptor, const void* pRecord,
                  std::set<std::string>& setZeros) {
    for (const FieldDescriptor& field : descriptor) {
        const std::uint32_t nOffset = field.nOffset;
        bool bIsZero = false;
        switch (field.nKind) {
            case FieldKind::Bool:
                bIsZero = !memberOf<bool>(pRecord, nOffset);
                break;
            case FieldKind::Int:
                bIsZero = memberOf<int>(pRecord, nOffset) == 0;
                break;
            case FieldKind::UnsignedShort:
                bIsZero = memberOf<unsigned short>(pRecord, nOffset) == 0;
                break;
            case FieldKind::String:
                bIsZero = memberOf<std::string>(pRecord, nOffset).empty();
                break;
            case FieldKind::IntList:
            case FieldKind::JoinedInts:
                bIsZero = memberOf<std::vector<int>>(pRecord, nOffset).empty();
                break;
            case FieldKind::StringList:
                bIsZero = memberOf<std::vector<std::string>>(pRecord, nOffset).empty();
                break;
            case FieldKind::Record:
                collectZeros(field.nested(), &memberOf<char>(pRecord, nOffset), setZeros);
                break;
            case FieldKind::RecordList: {
                const void* pList = &memberOf<char>(pRecord, nOffset);
                const TypeAccess& access = field.nested().access;
                bIsZero = access.listSize(pList) == 0;
                for (std::size_t n = 0; n < access.listSize(pList); ++n) {
                    collectZeros(field.nested(), access.listAt(pList, n), setZeros);
                }
                break;
            }
            default:
                ADD_FAILURE() << "a kind of field that no ability has: " << field.szTag;
        }
        if (bIsZero) {
            setZeros.insert(std::string(descriptor.szClass) + "." + field.szTag);
        }
    }
}

TEST_F(LoggedInTest, NoFieldOfACameraIsZeroWithoutReason) {
    const std::map<std::uint32_t, std::uint32_t> mapGets{{30003, HardwareCapability::DomainId},
                                                         {30005, SoftwareCapability::DomainId},
                                                         {30007, LanguageAbility::DomainId},
                                                         {30009, VideoAbility::DomainId},
                                                         {30011, OSDAbility::DomainId},
                                                         {30013, AudioExAbility::DomainId},
                                                         {30015, PTZAbilityParam::DomainId},
                                                         {30017, NetworkAbility::DomainId},
                                                         {30021, MotionDetectionAbility::DomainId},
                                                         {30025, BlindAbility::DomainId},
                                                         {30031, SensorAbility::DomainId},
                                                         {30033, TimeZoneAbility::DomainId},
                                                         {30515, TimeZoneParam::DomainId},
                                                         {30523, DevicePort::DomainId},
                                                         {30541, DeviceSummaryInfo::DomainId},
                                                         {32021, ProtocolSecurityParam::DomainId},
                                                         {32504, HostNetwork::DomainId},
                                                         {32712, NTPParam::DomainId},
                                                         {35008, AVStreamParam::DomainId},
                                                         {35022, OSDUserParam::DomainId},
                                                         {41259, ChannelInfo::DomainId},
                                                         {41275, DiskAbility::DomainId},
                                                         {41278, ExternUARTAbility::DomainId}};
    std::set<std::string> setZeros;
    for (const auto& [nCommandId, nDomainId] : mapGets) {
        const Reply objReply = m_objClient.ask(nCommandId, onChannel(-1, LanguageId()));
        ASSERT_EQ(objReply.vecRecords.size(), 2U) << nCommandId;
        BaseDomain& record = *objReply.vecRecords[1];
        ASSERT_EQ(effectiveDomainId(record), nDomainId);
        const RecordDescriptor& descriptor = *findRecordDescriptor(nDomainId);
        bool bIsList = false;
        checkDomainId(record, nDomainId, bIsList);
        if (!bIsList) {
            collectZeros(descriptor, &record, setZeros);
            continue;
        }
        const void* pList = descriptor.access.containerList(static_cast<DomainContainer&>(record));
        EXPECT_GT(descriptor.access.listSize(pList), 0U) << nCommandId;
        for (std::size_t n = 0; n < descriptor.access.listSize(pList); ++n) {
            collectZeros(descriptor, descriptor.access.listAt(pList, n), setZeros);
        }
    }
    EXPECT_EQ(setZeros, (std::set<std::string>{"HostNetwork.DHCP", "RGBColor.R", "RGBColor.G",
                                               "RGBColor.B"}));
}

TEST_F(LoggedInTest, EveryOtherCommandOfTheCatalogueIsRefusedInItsOwnForm) {
    EtCOMWriteData objWrite;
    DataBuffer objData;
    const std::uint8_t nByte = 1;
    ASSERT_TRUE(objData.setData(&nByte, 1));
    objWrite.setComData(objData);
    const Records vecAny =
        records(objWrite, objData, EtFileDataPack(), EtPTZOperation(), EtResult());
    int nRefused = 0;
    for (const CommandDescriptor& command : commandCatalogue()) {
        if (findCommandHandler(command.nRequestId)) {
            continue;
        }
        const Reply objReply = m_objClient.ask(command.nRequestId, vecAny);
        ++nRefused;
        // One of the binary forms reads its code byte-swapped.
        const int nExpected = command.nResponseId == 15020 ? DeviceResult::NotSupported << 24
                                                           : DeviceResult::NotSupported;
        EXPECT_EQ(objReply.code(), nExpected) << command.nRequestId;
    }
    EXPECT_EQ(nRefused, 509 - 39);
    EXPECT_EQ(m_objClient.ask(99).code(), DeviceResult::UnknownCommand);
}

// --- Bad requests.

TEST_F(LoggedInTest, ABodyThatDoesNotDecodeIsRefusedAndTheConnectionGoesOn) {
    SDKCommandHeadInfo objHead;
    objHead.setProtocolType(1);
    objHead.setCommandID(32714);
    objHead.setSessionId(m_objClient.m_nSession);
    for (const std::string& strBody : {std::string(), std::string("<<<"), std::string("\0\0", 2)}) {
        objHead.setPayloadLength(static_cast<std::uint32_t>(strBody.size()));
        CommandBuffer objBuffer;
        ASSERT_TRUE(encodeCommandHead(objHead, objBuffer));
        ASSERT_TRUE(objBuffer.grow(objBuffer.getLength() + strBody.size() + 1));
        objBuffer.append(reinterpret_cast<const std::uint8_t*>(strBody.data()),
                         static_cast<std::uint32_t>(strBody.size()));
        m_objClient.send(objBuffer);
        EXPECT_EQ(m_objClient.receive().code(), DeviceResult::MalformedRequest);
    }
    EXPECT_EQ(m_objClient.ask(30507).code(), DeviceResult::Success);
}

TEST_F(LoggedInTest, AHeadThatIsNoneOrAnnouncesTooMuchEndsItsConnectionOnly) {
    SDKCommandHeadInfo objHead;
    objHead.setPayloadLength(0xFFFFFFFF);
    CommandBuffer objBuffer;
    ASSERT_TRUE(encodeCommandHead(objHead, objBuffer));
    RawClient objGreedy(m_objDevice);
    objGreedy.send(objBuffer);
    EXPECT_TRUE(objGreedy.isClosed());
    objBuffer.data()[0] = 0;
    RawClient objStranger(m_objDevice);
    objStranger.send(objBuffer);
    EXPECT_TRUE(objStranger.isClosed());
    {
        objBuffer.setLength(10);
        RawClient objQuitter(m_objDevice);
        objQuitter.send(objBuffer);
    }
    EXPECT_EQ(m_objClient.ask(30507).code(), DeviceResult::Success);
}

// --- Misbehaviour.

TEST_F(LoggedInTest, MisbehavesAsToldAndBehavesAfterwards) {
    struct Case {
        const char* szText;
        bool (*holds)(const Reply& reply, std::uint16_t nSequence);
    };
    const Case arrCases[] = {
        {"strays=3", [](const Reply& r, std::uint16_t n) { return r.objHead.getSequence() != n; }},
        {"wrong-session", [](const Reply& r, auto) { return r.objHead.getSessionId() == 1002; }},
        {"wrong-sequence",
         [](const Reply& r, std::uint16_t n) { return r.objHead.getSequence() == n + 1; }},
        {"wrong-command", [](const Reply& r, auto) { return r.objHead.getCommandID() == 30509; }},
        {"protocol-type", [](const Reply& r, auto) { return r.objHead.getProtocolType() == 3; }},
        {"bad-magic", [](const Reply& r, auto) { return !r.bArrived; }},
        {"bad-checksum", [](const Reply& r, auto) { return !r.bArrived; }},
        {"bad-terminator", [](const Reply& r, auto) { return !r.bArrived; }},
        {"close", [](const Reply& r, auto) { return !r.bArrived; }},
        {"truncated", [](const Reply& r, auto) { return !r.bArrived; }},
        {"huge-length",
         [](const Reply& r, auto) { return r.objHead.getPayloadLength() == 0x7FFFFFF0; }},
        {"empty-body", [](const Reply& r, auto) { return r.bArrived && !r.bDecoded; }},
        {"not-xml", [](const Reply& r, auto) { return r.bArrived && !r.bDecoded; }},
        {"deep-nesting", [](const Reply& r, auto) { return r.bArrived && !r.bDecoded; }},
        {"many-attributes", [](const Reply& r, auto) { return r.bArrived && !r.bDecoded; }},
        {"many-records", [](const Reply& r, auto) { return r.bArrived && !r.bDecoded; }},
        {"invalid-utf8", [](const Reply& r, auto) { return r.bArrived; }},
        {"doctype", [](const Reply& r, auto) { return r.bArrived; }},
        {"no-result", [](const Reply& r, auto) { return r.bDecoded && r.vecRecords.size() == 1; }},
        {"no-record",
         [](const Reply& r, auto) { return r.code() == 0 && r.vecRecords.size() == 1; }},
        {"code=-7",
         [](const Reply& r, auto) { return r.code() == -7 && r.vecRecords.size() == 2; }},
        {"trickle", [](const Reply& r, auto) { return r.code() == 0; }},
        {"twice", [](const Reply& r, auto) { return r.code() == 0; }},
        {"delay=1", [](const Reply& r, auto) { return r.code() == 0; }},
    };
    std::set<std::string> setTried{"drop", "stalled", "empty-list"};
    for (const Case& one : arrCases) {
        SCOPED_TRACE(one.szText);
        VirtualDevice objDevice;
        RawClient objClient(objDevice);
        ASSERT_EQ(objClient.login(), DeviceResult::Success);
        objDevice.misbehave(one.szText + std::string(":30507"));
        EXPECT_EQ(objClient.ask(32712).code(), DeviceResult::Success);
        objClient.send(30507, onChannel(-1));
        EXPECT_TRUE(one.holds(objClient.receive(), objClient.m_nSequence));
        objDevice.behave();
        RawClient objAfter(objDevice);
        EXPECT_EQ(objAfter.login(), DeviceResult::Success);
        EXPECT_EQ(objAfter.ask(30507).code(), DeviceResult::Success);
        setTried.insert(parseMisbehaviour(one.szText)->strName);
    }
    EXPECT_EQ(setTried.size(), misbehaviourKinds().size());
}

TEST_F(LoggedInTest, SilencesForAsManyAnswersAsTold) {
    m_objDevice.misbehave("drop:30507", 2);
    m_objClient.send(30507, onChannel(-1));
    m_objClient.send(30507, onChannel(-1));
    EXPECT_FALSE(m_objClient.receive(SilenceMs).bArrived);
    EXPECT_EQ(m_objClient.ask(30507).code(), DeviceResult::Success);
    m_objDevice.misbehave("empty-list:35008");
    EXPECT_TRUE(answeredList<AVStreamParam>(m_objClient, 35008).empty());
    m_objDevice.misbehave("stalled:30507");
    m_objClient.send(30507, onChannel(-1));
    const Reply objReply = m_objClient.receive(SilenceMs);
    EXPECT_EQ(objReply.objHead.getCommandID(), 30508U);
    EXPECT_FALSE(objReply.bArrived);
    EXPECT_THROW(m_objDevice.misbehave("sulk"), std::invalid_argument);
    EXPECT_THROW(m_objDevice.misbehave("delay=x"), std::invalid_argument);
    EXPECT_THROW(m_objDevice.misbehave("delay:"), std::invalid_argument);
}

// --- Multicast.

Reply exchangeMulticast(const std::string& strDeviceId, const std::string& strPassword) {
    User objUser;
    objUser.setUserName(enciphered("admin"));
    objUser.setPassword(enciphered(strPassword));
    DeviceId objDeviceId;
    objDeviceId.setId(strDeviceId);
    HostNetwork objNetwork;
    objNetwork.setLocalIp("10.9.8.7");
    SDKCommandHeadInfo objHead;
    objHead.setCommandID(32506);
    objHead.setSequence(77);
    const CommandBuffer objRequest =
        encode(objHead, records(objUser, objDeviceId, EtAdapterType(), EtIPProtoVer(), objNetwork));
    Socket objSocket(1, Socket::Datagram);
    EXPECT_TRUE(objSocket.open());
    EXPECT_TRUE(objSocket.bind("127.0.0.1", 31002));
    objSocket.sendTo(objRequest.data(), static_cast<int>(objRequest.getLength()), "234.5.6.7",
                     31001);
    Reply objReply;
    CommandBuffer objBuffer;
    EXPECT_TRUE(objBuffer.allocate(65536));
    InetAddr objFrom;
    const int nLength = objSocket.waitRead(strDeviceId == "other" ? SilenceMs : TimeoutMs) == 0
                            ? objSocket.recvFrom(objBuffer.data(), 65536, objFrom)
                            : 0;
    objBuffer.setLength(static_cast<std::uint32_t>(std::max(nLength, 0)));
    SafePointer<CommandParam> objParam;
    if (nLength > 0 && SDKCommandParser().parseCommand(objBuffer, objParam)) {
        const auto& objCommand = static_cast<const SDKCommandParam&>(*objParam);
        objReply = {true, true, objCommand.getHead(), objCommand.getDomains()};
    }
    return objReply;
}

TEST(VirtualDeviceMulticast, IsSetByItsIdAndItsCredentials) {
    const bool bRan = runInLoopbackNamespace([] {
        DeviceOptions objOptions;
        objOptions.bMulticast = true;
        objOptions.strDeviceId = "mine";
        const VirtualDevice objDevice(objOptions);
        const auto ip = [&] { return objDevice.getState().vecHostNetworks.front().getLocalIp(); };
        EXPECT_FALSE(exchangeMulticast("other", "admin").bArrived);
        EXPECT_EQ(exchangeMulticast("mine", "wrong").code(), DeviceResult::WrongCredentials);
        EXPECT_EQ(ip(), "127.0.0.1");
        const Reply objReply = exchangeMulticast("mine", "admin");
        EXPECT_EQ(objReply.code(), DeviceResult::Success);
        EXPECT_EQ(objReply.objHead.getCommandID(), 32505U);
        EXPECT_EQ(objReply.objHead.getSequence(), 77U);
        EXPECT_EQ(objReply.objHead.getSessionId(), 0U);
        EXPECT_EQ(ip(), "10.9.8.7");
    });
    if (!bRan) {
        GTEST_SKIP() << "this machine permits no network namespace";
    }
}

// --- The program.

struct ShellRun {
    int nStatus;
    std::string strOutput;
};

ShellRun runShell(const std::string& strScript) {
    const TempDir objDir;
    const std::string strCommand = "cd '" + objDir.getPath().string() + "' && device='" +
                                   VIRTUAL_DEVICE_PROGRAM + "' && { " + strScript +
                                   "; } > output 2> errors";
    const int nStatus = std::system(strCommand.c_str());
    return {WEXITSTATUS(nStatus), readFile(objDir.file("output"))};
}

TEST(VirtualDeviceProgram, PrintsAPortADeviceAndEndsByItself) {
    const ShellRun objRun = runShell("\"$device\" --count 3 --seconds 1");
    EXPECT_EQ(objRun.nStatus, 0);
    EXPECT_THAT(objRun.strOutput,
                testing::MatchesRegex("(listening on 127\\.0\\.0\\.1:[0-9]+\n){3}"));
}

TEST(VirtualDeviceProgram, EndsWellOnASignal) {
    for (const std::string strSignal : {"INT", "TERM"}) {
        const ShellRun objRun = runShell(
            "\"$device\" --seconds 30 > port & pid=$!; "
            "for i in $(seq 500); do grep -q listening port && break; sleep 0.02; done; kill -" +
            strSignal + " $pid; wait $pid");
        EXPECT_EQ(objRun.nStatus, 0) << strSignal;
    }
}

TEST(VirtualDeviceProgram, RefusesWhatItDoesNotUnderstand) {
    for (const char* szOptions : {"--port 70000", "--kind toaster", "--misbehave sulk",
                                  "--channels 0", "--bind nowhere", "--what"}) {
        EXPECT_EQ(runShell(std::string("\"$device\" --seconds 1 ") + szOptions).nStatus, 2)
            << szOptions;
    }
    EXPECT_EQ(runShell("\"$device\" --seconds 1 --bind 192.0.2.1").nStatus, 1);
    EXPECT_THAT(runShell("\"$device\" --list-misbehaviours").strOutput,
                testing::HasSubstr("deep-nesting"));
}

}  // namespace
