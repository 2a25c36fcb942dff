// Every exported function against a device that shows what it was asked and answers as told. Logins
// start the heartbeat, so each test has a process of its own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QString>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "Product/Technic/AdapterList.h"
#include "device/DeviceControllerImpl.h"
#include "device/FleetKit.h"
#include "device/FleetKitImpl.h"
#include "device/SDK_DeviceController.h"
#include "device/TarnStruct.h"
#include "domain/DeviceInfoEx.h"
#include "domain/User.h"
#include "protocol/CredentialCipher.h"
#include "session/DeviceSessionManager.h"
#include "support/ChildProcess.h"
#include "support/DeclaredFunctions.h"
#include "unit/device/LoggedInDevice.h"

using namespace NS_TARN_STRUCT;

namespace {

constexpr int DeviceCode = 7;
constexpr int Camera = 1;
constexpr int Recorder = 5;
constexpr long UnknownHandle = 1000;

// A record in which no plain field has the value that it starts with.
template <class Record>
Record sample() {
    Record record;
    int nNumber = 3;
    for (const FieldDescriptor& field : Record::descriptor()) {
        ++nNumber;
        if (field.nFlags != 0) {
            continue;
        }
        switch (field.nKind) {
            case FieldKind::Int:
                memberOf<int>(&record, field.nOffset) = nNumber;
                break;
            case FieldKind::UnsignedShort:
                memberOf<unsigned short>(&record, field.nOffset) =
                    static_cast<unsigned short>(nNumber);
                break;
            case FieldKind::Bool:
                memberOf<bool>(&record, field.nOffset) = true;
                break;
            case FieldKind::String:
                memberOf<std::string>(&record, field.nOffset) = "text " + std::to_string(nNumber);
                break;
            case FieldKind::RecordList:
                field.nested().access.listReset(reinterpret_cast<char*>(&record) + field.nOffset,
                                                1);
                break;
            default:
                break;
        }
    }
    return record;
}

// One function: what it asks for, and what it makes of the answer.
struct Operation {
    std::string strFunction;  // as the header has it, the second of two overloads with "#2"
    std::uint32_t nCommand = 0;
    std::string strRequest;  // see `describeBody`
    std::function<int(long)> call;
    Records answer = {};  // a set has none
    std::function<bool()> isUntouched = [] { return true; };
    std::function<bool()> isFilled = [] { return true; };
    int nEmptyListCode = ErrorCode::Success;
    Records emptyAnswer = {};
};

Operation setting(std::string strFunction, std::uint32_t nCommand, std::string strRequest,
                  std::function<int(long)> call) {
    return {strFunction, nCommand, strRequest, std::move(call)};
}

template <class Record>
Operation getting(std::string strFunction, std::uint32_t nCommand, std::string strRequest,
                  std::function<int(long, Record&)> call) {
    auto pRecord = std::make_shared<Record>();
    EXPECT_FALSE(sample<Record>() == Record()) << strFunction;
    Operation operation{strFunction, nCommand, strRequest,
                        [=](long handle) { return call(handle, *pRecord); }};
    operation.answer = recordsOf(sample<Record>());
    operation.isUntouched = [=] { return *pRecord == Record(); };
    operation.isFilled = [=] { return *pRecord == sample<Record>(); };
    return operation;
}

// The first of the two elements that the device answers with.
template <class Record>
Operation gettingFirst(std::string strFunction, std::uint32_t nCommand, std::string strRequest,
                       int nEmptyListCode, std::function<int(long, Record&)> call) {
    Operation operation = getting<Record>(strFunction, nCommand, strRequest, std::move(call));
    operation.answer =
        recordsOf(DomainVectorContainer<Record>(std::vector{sample<Record>(), Record()}));
    operation.emptyAnswer = recordsOf(DomainVectorContainer<Record>());
    operation.nEmptyListCode = nEmptyListCode;
    return operation;
}

template <class Record, class Structure>
Operation gettingStructure(std::string strFunction, std::uint32_t nCommand, std::string strRequest,
                           std::function<int(long, Structure&)> call) {
    auto pStructure = std::make_shared<Structure>();
    pStructure->Count = -1;
    Operation operation{strFunction, nCommand, strRequest,
                        [=](long handle) { return call(handle, *pStructure); }};
    operation.answer =
        recordsOf(DomainVectorContainer<Record>(std::vector{sample<Record>(), Record()}));
    operation.isUntouched = [=] { return pStructure->Count == -1; };
    operation.isFilled = [=] { return pStructure->Count == 2; };
    return operation;
}

template <class Ability>
void addAbility(std::vector<Operation>& vecOperations, const char* szFunction,
                std::uint32_t nCommand,
                int (*call)(const long&, const int&, const int&, Ability&)) {
    vecOperations.push_back(getting<Ability>(
        szFunction, nCommand, "ChannelId=-1",
        [=](long handle, Ability& ability) { return call(handle, Camera, 6, ability); }));
    vecOperations.push_back(getting<Ability>(
        szFunction, nCommand, "ChannelId=6",
        [=](long handle, Ability& ability) { return call(handle, Recorder, 6, ability); }));
}

std::shared_ptr<tagAllAVStreamParam> twoStreams() {
    auto pStreams = std::make_shared<tagAllAVStreamParam>();
    pStreams->Count = 2;
    return pStreams;
}

std::shared_ptr<tagOSDUserParamList> twoTexts() {
    auto pParams = std::make_shared<tagOSDUserParamList>();
    pParams->Count = 2;
    return pParams;
}

// Every function that works on a session.
std::vector<Operation> operations() {
    std::vector<Operation> rows{
        setting("setDevicePasswd", 33509, "ChannelId=-1 ChangePasswordReq KXBool=false",
                [](long handle) { return FleetKit::setDevicePasswd(handle, "old", "new"); }),
        setting("setDeviceRestart", 18002, "ChannelId=-1",
                [](long handle) { return FleetKit::setDeviceRestart(handle); }),
        setting("setDeviceReset", 18001, "ChannelId=-1 HoldTypeList[2]",
                [](long handle) {
                    return FleetKit::setDeviceReset(handle, {1, 3});
                }),
        setting("setDeviceReset", 18001, "ChannelId=-1 HoldTypeList[0]",
                [](long handle) { return FleetKit::setDeviceReset(handle, {}); }),
        setting("setDeviceReSetTime", 30509, "ChannelId=-1 DeviceTime",
                [](long handle) { return FleetKit::setDeviceReSetTime(handle, 9, DeviceTime()); }),
        setting("setTimeZoneParam", 30517, "ChannelId=-1 TimeZoneParam",
                [](long handle) { return FleetKit::setTimeZoneParam(handle, TimeZoneParam()); }),
        setting(
            "setDeviceHostNetwork", 32506, "ChannelId=-1 HostNetworkList[1]",
            [](long handle) { return FleetKit::setDeviceHostNetwork(handle, 9, HostNetwork()); }),
        setting("setNTPParam", 32714, "ChannelId=-1 NTPParam",
                [](long handle) { return FleetKit::setNTPParam(handle, NTPParam()); }),
        setting("setDevicePort", 30525, "ChannelId=-1 DevicePort",
                [](long handle) { return FleetKit::setDevicePort(handle, DevicePort()); }),
        setting("setProtocolSecurityParam", 32023, "ChannelId=-1 ProtocolSecurityParam",
                [](long handle) {
                    return FleetKit::setProtocolSecurityParam(handle, ProtocolSecurityParam());
                }),
        setting("setAllAVStreamParam", 35010, "ChannelId=-1 StreamId=-1 AVStreamParamList[2]",
                [](long handle) { return FleetKit::setAllAVStreamParam(handle, *twoStreams()); }),
        setting("setAVStreamParam", 35010, "ChannelId=2 StreamId=-1 AVStreamParamList[2]",
                [](long handle) { return FleetKit::setAVStreamParam(handle, 2, *twoStreams()); }),
        setting(
            "setAVStreamParam#2", 35010, "ChannelId=2 StreamId=2 AVStreamParamList[1]",
            [](long handle) { return FleetKit::setAVStreamParam(handle, 2, 1, AVStreamParam()); }),
        setting("setOSDUserParam", 35021, "ChannelId=2 OSDUserParam",
                [](long handle) { return FleetKit::setOSDUserParam(handle, 2, OSDUserParam()); }),
        setting("setAllOSDUserParam", 35021, "ChannelId=-1 OSDUserParamList[2]",
                [](long handle) { return FleetKit::setAllOSDUserParam(handle, *twoTexts()); }),

        getting<HardwareCapability>("getHardwareCapability", 30003, "ChannelId=-1",
                                    FleetKit::getHardwareCapability),
        getting<SoftwareCapability>("getSoftwareCapability", 30005, "ChannelId=-1",
                                    FleetKit::getSoftwareCapability),
        getting<LanguageAbility>("getLanguageAbility", 30007, "ChannelId=-1",
                                 FleetKit::getLanguageAbility),
        getting<NetworkAbility>("getNetworkAbility", 30017, "ChannelId=-1",
                                FleetKit::getNetworkAbility),
        getting<TimeZoneAbility>("getTimeZoneAbility", 30033, "ChannelId=-1 LanguageId=4",
                                 [](long handle, TimeZoneAbility& ability) {
                                     return FleetKit::getTimeZoneAbility(handle, 4, ability);
                                 }),
        getting<DeviceSummaryInfo>("getDeviceSummaryInfo", 30541, "ChannelId=-1",
                                   FleetKit::getDeviceSummaryInfo),
        getting<DiskAbility>("getDiskAbility", 41275, "ChannelId=-1", FleetKit::getDiskAbility),
        getting<ExternUARTAbility>("getExternUARTAbility", 41278, "ChannelId=-1",
                                   FleetKit::getExternUARTAbility),
        getting<DevicePort>("getDevicePort", 30523, "ChannelId=-1", FleetKit::getDevicePort),
        getting<DeviceTime>("getDeviceTime", 30507, "ChannelId=-1", FleetKit::getDeviceTime),
        getting<TimeZoneParam>("getTimeZoneParam", 30515, "ChannelId=-1",
                               FleetKit::getTimeZoneParam),
        getting<TimeZoneParam>("getTimeZoneDefaultParam", 30515, "KXInterger=8 ChannelId=-1",
                               [](long handle, TimeZoneParam& timeZone) {
                                   return FleetKit::getTimeZoneDefaultParam(handle, 8, timeZone);
                               }),
        getting<NTPParam>("getNTPParam", 32712, "ChannelId=-1", FleetKit::getNTPParam),
        getting<ProtocolSecurityParam>("getProtocolSecurityParam", 32021, "ChannelId=-1",
                                       FleetKit::getProtocolSecurityParam),
        getting<SensorAbility>("getSensorAbility", 30031, "ChannelId=-1",
                               [](long handle, SensorAbility& ability) {
                                   return FleetKit::getSensorAbility(handle, Camera, 6, ability);
                               }),

        gettingStructure<AVStreamParam, tagAllAVStreamParam>("getAllAVStreamParam", 35008,
                                                             "ChannelId=-1 StreamId=-1",
                                                             FleetKit::getAllAVStreamParam),
        gettingStructure<AVStreamParam, tagAllAVStreamParam>(
            "getAVStreamParam", 35008, "ChannelId=2 StreamId=-1",
            [](long handle, tagAllAVStreamParam& streams) {
                return FleetKit::getAVStreamParam(handle, 2, streams);
            }),
        gettingFirst<AVStreamParam>("getAVStreamParam#2", 35008, "ChannelId=2 StreamId=1",
                                    ErrorCode::EmptyStreamList,
                                    [](long handle, AVStreamParam& stream) {
                                        return FleetKit::getAVStreamParam(handle, 2, 1, stream);
                                    }),
        gettingStructure<OSDUserParam, tagOSDUserParamList>(
            "getAllOSDUserParam", 35022, "ChannelId=-1", FleetKit::getAllOSDUserParam),
        gettingStructure<ChannelInfo, tagAllChannelInfo>(
            "getAllChannelInfo", 41259, "ChannelId=-1",
            [](long handle, tagAllChannelInfo& channels) {
                return FleetKit::getAllChannelInfo(handle, Recorder, channels);
            }),
        gettingFirst<ChannelInfo>("getChannelInfo", 41259, "ChannelId=2",
                                  ErrorCode::EmptyChannelList,
                                  [](long handle, ChannelInfo& info) {
                                      return FleetKit::getChannelInfo(handle, Recorder, 2, info);
                                  }),
    };
    addAbility(rows, "getVideoAbility", 30009, FleetKit::getVideoAbility);
    addAbility(rows, "getOSDAbility", 30011, FleetKit::getOSDAbility);
    addAbility(rows, "getAudioAbility", 30013, FleetKit::getAudioAbility);
    addAbility(rows, "getPTZAbility", 30015, FleetKit::getPTZAbility);
    addAbility(rows, "getMotionDetectionAbility", 30021, FleetKit::getMotionDetectionAbility);
    addAbility(rows, "getBlindAbility", 30025, FleetKit::getBlindAbility);

    // These two hand over an object that no answer ever changes.
    auto pText = std::make_shared<OSDUserParam>(sample<OSDUserParam>());
    rows.push_back(setting("getOSDUserParam", 35021, "ChannelId=2 OSDUserParam", [=](long handle) {
        return FleetKit::getOSDUserParam(handle, 2, *pText);
    }));
    rows.back().answer = recordsOf(OSDUserParam());
    rows.back().isUntouched =
        rows.back().isFilled = [=] { return *pText == sample<OSDUserParam>(); };
    auto pResult = std::make_shared<std::string>("as it was");
    rows.push_back(
        setting("exeCommand", 30547, "ChannelId=-1 SystemReq SystemResp",
                [=](long handle) { return FleetKit::exeCommand(handle, "ls", *pResult); }));
    rows.back().isUntouched = rows.back().isFilled = [=] { return *pResult == "as it was"; };
    return rows;
}

// Those without a session, each as far as it gets where there is no device, network or library.
std::map<std::string, std::function<void()>> sessionlessOperations() {
    return {
        {"Init", [] { EXPECT_EQ(FleetKit::Init(), ErrorCode::Success); }},
        {"UnInit", [] { EXPECT_EQ(FleetKit::UnInit(), ErrorCode::Success); }},
        {"stopPlay", [] { EXPECT_EQ(FleetKit::stopPlay(), ErrorCode::Success); }},
        {"startPlay",
         [] {
             const int nOpaque = 0;
             EXPECT_EQ(
                 FleetKit::startPlay(1, 1, 1, reinterpret_cast<const tagDeviceInfoEx&>(nOpaque)),
                 ErrorCode::PreviewFailed);
         }},
        {"Login",
         [] {
             long handle = 0;
             EXPECT_EQ(FleetKit::Login(DeviceInfoEx(), handle), ErrorCode::Failed);
             EXPECT_EQ(handle, 0);
         }},
        {"Logout", [] { EXPECT_EQ(FleetKit::Logout(UnknownHandle), ErrorCode::UnknownHandle); }},
        {"setDeviceHostNetwork#2",
         [] {
             setAdapterLister([](std::vector<NetworkAdapter>&) { return true; });
             HostNetwork network;
             User user;
             EXPECT_EQ(FleetKit::setDeviceHostNetwork(QString("id"), network, user),
                       ErrorCode::Failed);
         }},
    };
}

void expectOneRequest(LoggedInDevice& device, const Operation& operation) {
    const std::vector<PeerRequest> vecRequests = device.takeRequests();
    ASSERT_EQ(vecRequests.size(), 1U);
    EXPECT_EQ(vecRequests[0].m_objHead.getCommandID(), operation.nCommand);
    EXPECT_EQ(vecRequests[0].m_objHead.getSessionId(), 77U);
    EXPECT_EQ(describeBody(vecRequests[0].m_strBody), operation.strRequest);
}

void expectFailures(LoggedInDevice& device, const Operation& operation) {
    EXPECT_EQ(operation.call(UnknownHandle), ErrorCode::Failed);
    EXPECT_TRUE(device.takeRequests().empty());

    device.answerWith(bodyOf(DeviceCode, operation.answer));
    EXPECT_EQ(operation.call(device.handle()), DeviceCode);
    expectOneRequest(device, operation);

    device.answerWith(peerBody(""));
    EXPECT_EQ(operation.call(device.handle()), ErrorCode::BadReply);

    device.answerWith("no body");
    EXPECT_EQ(operation.call(device.handle()), ErrorCode::DecodeFailed);

    device.answerWith(bodyOf(0, {}));
    const bool bSet = operation.answer.empty() || operation.strFunction == "getOSDUserParam";
    EXPECT_EQ(operation.call(device.handle()), bSet ? ErrorCode::Success : ErrorCode::BadReply);

    if (!operation.emptyAnswer.empty()) {
        device.answerWith(bodyOf(0, operation.emptyAnswer));
        EXPECT_EQ(operation.call(device.handle()), operation.nEmptyListCode);
    }
    EXPECT_TRUE(operation.isUntouched());
    device.takeRequests();
}

}  // namespace

TEST(FleetKit, SendsTheRecordsOfEachOperationAndTakesItsAnswer) {
    outputOfChild([] {
        LoggedInDevice device;
        for (const Operation& operation : operations()) {
            SCOPED_TRACE(operation.strFunction + " " + operation.strRequest);
            expectFailures(device, operation);
            device.answerWith(bodyOf(0, operation.answer));
            EXPECT_EQ(operation.call(device.handle()), ErrorCode::Success);
            expectOneRequest(device, operation);
            EXPECT_TRUE(operation.isFilled());
        }
    });
}

TEST(FleetKit, GivesACodeWhenTheDeviceHangsUp) {
    outputOfChild([] {
        LoggedInDevice device;
        device.hangUp();
        for (const Operation& operation : operations()) {
            SCOPED_TRACE(operation.strFunction);
            EXPECT_THAT(operation.call(device.handle()),
                        testing::AnyOf(ErrorCode::ReceiveFailed, ErrorCode::SendFailed));
            EXPECT_TRUE(operation.isUntouched());
        }
    });
}

TEST(FleetKit, GivesNoTransportOnceTheSessionIsClosed) {
    outputOfChild([] {
        LoggedInDevice device;
        SafePointer<SDKSession> session;
        ASSERT_TRUE(DeviceSessionManager::instance().findSession(device.handle(), session));
        session->close();
        for (const Operation& operation : operations()) {
            SCOPED_TRACE(operation.strFunction);
            EXPECT_EQ(operation.call(device.handle()), ErrorCode::NoTransport);
            EXPECT_TRUE(operation.isUntouched());
        }
    });
}

TEST(FleetKit, HasNoFunctionThatTheseTestsDoNotCall) {
    std::set<std::string> setCalled;
    for (const Operation& operation : operations()) {
        setCalled.insert(operation.strFunction);
    }
    for (const auto& [strFunction, call] : sessionlessOperations()) {
        setCalled.insert(strFunction);
    }
    EXPECT_EQ(setCalled, declaredFunctions());
    EXPECT_EQ(setCalled.size(), 50U);
}

TEST(FleetKit, NeedsNoSessionForSomeFunctions) {
    outputOfChild([] {
        for (const auto& [strFunction, call] : sessionlessOperations()) {
            SCOPED_TRACE(strFunction);
            call();
        }
    });
}

TEST(FleetKit, DecidesByTheDeviceTypeBeforeAnythingIsSent) {
    outputOfChild([] {
        LoggedInDevice device;
        const std::set<int> setCameras{1, 4, 8, 9, 13, 14, 15};
        const std::set<int> setRecorders{5, 10, 103};
        device.answerWith(
            bodyOf(0, recordsOf(VideoAbility(), SensorAbility(),
                                DomainVectorContainer<ChannelInfo>(std::vector<ChannelInfo>(1)))));
        for (int nType = -1; nType <= 110; ++nType) {
            SCOPED_TRACE(nType);
            const bool bCamera = setCameras.count(nType) > 0;
            const bool bRecorder = setRecorders.count(nType) > 0;
            const auto codeOf = [](bool bServed) {
                return bServed ? ErrorCode::Success : ErrorCode::Failed;
            };
            VideoAbility video;
            SensorAbility sensor;
            ChannelInfo channel;
            const long& handle = device.handle();
            EXPECT_EQ(FleetKit::getVideoAbility(handle, nType, 1, video),
                      codeOf(bCamera || bRecorder));
            EXPECT_EQ(FleetKit::getSensorAbility(handle, nType, 1, sensor), codeOf(bCamera));
            EXPECT_EQ(FleetKit::getChannelInfo(handle, nType, 1, channel), codeOf(bRecorder));
            EXPECT_EQ(device.takeRequests().size(), bCamera || bRecorder ? 2U : 0U);
        }
    });
}

TEST(FleetKit, EnciphersBothPasswords) {
    outputOfChild([] {
        LoggedInDevice device;
        ASSERT_EQ(FleetKit::setDevicePasswd(device.handle(), "", "gr\u00fcn"), ErrorCode::Success);
        const std::string strBody = device.takeRequests().at(0).m_strBody;
        const XmlDocument document = XmlDocument::parse(strBody.c_str());
        const XmlCursor request = document.root().firstChild("ChangePasswordReq");
        std::string strCipher;
        ASSERT_TRUE(encryptText("gr\u00fcn", strCipher));
        EXPECT_STREQ(request.attribute("OldPassword"), "");
        EXPECT_EQ(request.attribute("NewPassword"), strCipher);
    });
}

TEST(FleetKit, KeepsAStaleHandleWhenALoginFails) {
    outputOfChild([] {
        ScriptedPeer peer(answerAll(11002, DeviceCode));
        long handle = 7;
        EXPECT_EQ(FleetKit::Login(peer.getDeviceInfo(), handle), ErrorCode::Success);
        EXPECT_EQ(handle, 7);
        for (const long stale : {0L, -7L}) {
            handle = stale;
            EXPECT_EQ(FleetKit::Login(peer.getDeviceInfo(), handle), ErrorCode::Failed);
            EXPECT_EQ(handle, stale);
        }
    });
}

TEST(FleetKit, ForgetsAHandleAfterLogout) {
    outputOfChild([] {
        LoggedInDevice device;
        const long handle = device.handle();
        EXPECT_EQ(handle, 1);
        EXPECT_EQ(FleetKit::Logout(handle), ErrorCode::Success);
        EXPECT_EQ(FleetKit::setDeviceRestart(handle), ErrorCode::Failed);
        EXPECT_EQ(FleetKit::Logout(handle), ErrorCode::UnknownHandle);
        EXPECT_TRUE(device.takeRequests().empty());
        long next = 0;
        EXPECT_EQ(FleetKit::Login(device.peer().getDeviceInfo(), next), ErrorCode::Success);
        EXPECT_EQ(next, 2);
    });
}

TEST(FleetKit, WritesNoMoreElementsThanAStructureHolds) {
    outputOfChild([] {
        LoggedInDevice device;
        device.answerWith(bodyOf(
            0, recordsOf(DomainVectorContainer<ChannelInfo>(std::vector<ChannelInfo>(300)))));
        struct {
            tagAllChannelInfo Channels;
            char Guard[100];
        } room{};
        EXPECT_EQ(FleetKit::getAllChannelInfo(device.handle(), Recorder, room.Channels),
                  ErrorCode::Success);
        EXPECT_EQ(room.Channels.Count, MaxChannels);
        EXPECT_THAT(room.Guard, testing::Each('\0'));
    });
}

TEST(FleetKitImpl, RefusesLoginsAfterUnload) {
    FleetKitImpl impl;
    impl.unload();
    long handle = 5;
    EXPECT_EQ(impl.login(DeviceInfoEx(), handle), ErrorCode::Failed);
    EXPECT_EQ(handle, 5);
    EXPECT_EQ(impl.logout(5), ErrorCode::Failed);
}

TEST(SDK_DeviceController, GivesNoTransportWithoutSessionOrImplementation) {
    SDK_DeviceController unbound;
    EXPECT_EQ(unbound.perform(&DeviceControllerImpl::restart), ErrorCode::NoTransport);
    SDK_DeviceController empty(nullptr);
    EXPECT_FALSE(empty.attachSession(1));
    EXPECT_EQ(empty.perform(&DeviceControllerImpl::restart), ErrorCode::NoTransport);
}
