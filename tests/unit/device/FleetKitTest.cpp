// Every exported function against a device that shows what it was asked and answers as told. Logins
// start the heartbeat, so each test has a process of its own.
#include <gtest/gtest.h>

#include <QString>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Product/Technic/AdapterList.h"
#include "Product/Technic/LogThreshold.h"
#include "device/DeviceType.h"
#include "device/FleetKitImpl.h"
#include "device/Login.h"
#include "device/SDK_DeviceController.h"
#include "device/StructConversions.h"
#include "domain/EtChangePasswordReq.h"
#include "domain/EtHoldTypeList.h"
#include "domain/EtResult.h"
#include "domain/EtSystemReq.h"
#include "domain/EtSystemResp.h"
#include "domain/KXBool.h"
#include "domain/KXInterger.h"
#include "domain/LanguageId.h"
#include "domain/StreamId.h"
#include "domain/User.h"
#include "protocol/CommandCatalogue.h"
#include "protocol/CommandIds.h"
#include "session/DeviceSessionManager.h"
#include "support/ChildProcess.h"
#include "support/SampleRecords.h"
#include "support/ScriptedPeer.h"
#include "tests/PlainFunctions.h"

using namespace fleetkit;
using namespace NS_TARN_STRUCT;

namespace {

using Handle = const long&;

constexpr int DeviceCode = 7;
constexpr int All = -1;  // as a channel or a stream
constexpr long UnknownHandle = 1000;

// A body with this result code and these records behind it.
std::string bodyOf(int nCode, Records records) {
    records.insert(records.begin(), recordsOf(with(&EtResult::setCode, nCode)).front());
    return bodyOf(records);
}

// Answers every request with the body of the moment, under the id that the catalogue expects.
// Logins and keep-alives are let through and not written down.
class LoggedInDevice {
public:
    LoggedInDevice() {
        EXPECT_EQ(FleetKit::Login(m_peer.getDeviceInfo(), m_hSession), ErrorCode::Success);
    }

    const long& handle() const { return m_hSession; }

    void answerWith(const std::string& strBody) {
        const std::lock_guard guard(m_mutex);
        m_strBody = strBody;
    }

    std::vector<PeerRequest> takeRequests() {
        const std::lock_guard guard(m_mutex);
        return std::exchange(m_vecRequests, {});
    }

private:
    std::string answerTo(const PeerRequest& request) {
        const std::uint32_t nCommand = request.m_head.getCommandID();
        std::string strBody = peerResult(0, "<SessionId SessionId=\"77\" />");
        if (nCommand != CommandId::Login && nCommand != CommandId::keepAlive) {
            const std::lock_guard guard(m_mutex);
            m_vecRequests.push_back(request);
            strBody = m_strBody;
        }
        return peerAnswer(request, findCommand(nCommand)->nResponseId, strBody);
    }

    std::mutex m_mutex;
    std::string m_strBody = peerResult(0);
    std::vector<PeerRequest> m_vecRequests;
    ScriptedPeer m_peer{answerEach([this](const auto& request) { return answerTo(request); })};
    long m_hSession = 0;
};

// How much of an answer the caller has.
constexpr int Untouched = -1;
constexpr int Everything = 2;

// One function: what it asks for, and what it makes of the answer.
struct Operation {
    std::string strFunction;
    std::uint32_t nCommand;
    Records vecRequest;
    std::function<int(Handle)> call;
    Records vecAnswer = {};  // a set has none
    std::function<int()> received = [] { return Untouched; };
    std::function<int(Handle, int nType)> callOfType = nullptr;  // on channel 2
};

template <class Ability>
using TypedGet = int (*)(Handle, const int&, const int&, Ability&);

template <class Record>
DomainVectorContainer<Record> twoOf() {
    return listOf(std::vector{sample<Record>(), Record()});
}

// Of the lists, which have two elements, a structure tells only the number.
template <class Target>
int receivedIn(const Target& target) {
    if constexpr (requires { target.Count; }) {
        return target.Count;
    } else if (target == sample<Target>()) {
        return Everything;
    } else {
        return target == Target() ? Untouched : 0;
    }
}

// `args` stand between the session and the target.
template <class Target, class Get, class Answer, class... Args>
Operation getting(const char* szFunction, std::uint32_t nCommand, Records vecRequest,
                  const Answer& answer, Get get, Args... args) {
    const auto pTarget = std::make_shared<Target>();
    if constexpr (requires { pTarget->Count; }) {
        pTarget->Count = Untouched;
    }
    const auto call = [=](Handle handle) { return get(handle, args..., *pTarget); };
    const auto received = [=] { return receivedIn(*pTarget); };
    return {szFunction, nCommand, vecRequest, call, recordsOf(answer), received};
}

bool isServed(std::uint32_t nCommand, DeviceTypeBit nType) {
    return (findFunction(nCommand)->nServes & nType) != 0;
}

// The same of one channel, where the caller tells the type of the device.
template <class Target, class Get, class Answer>
Operation gettingByType(const char* szFunction, std::uint32_t nCommand, const Answer& answer,
                        Get get) {
    const bool bOfRecorder = isServed(nCommand, OfRecorder);
    Operation operation = getting<Target>(szFunction, nCommand, onChannel(bOfRecorder ? 6 : All),
                                          answer, get, bOfRecorder ? RecorderType : CameraType, 6);
    operation.callOfType = [=, target = Target()](Handle handle, int nType) mutable {
        return get(handle, nType, 2, target);
    };
    return operation;
}

// To those made by hand, the functions that the table of commands makes.
struct PlainOperations {
    std::vector<Operation> vecOperations;

    template <class Record>
    void get(const char* szFunction, std::uint32_t nCommand, int (*function)(Handle, Record&)) {
        vecOperations.push_back(
            getting<Record>(szFunction, nCommand, onChannel(All), sample<Record>(), function));
    }
    template <class Ability>
    void ability(const char* szFunction, std::uint32_t nCommand, TypedGet<Ability> function) {
        vecOperations.push_back(
            gettingByType<Ability>(szFunction, nCommand, sample<Ability>(), function));
    }
    void cameraAbility(const char* szFunction, std::uint32_t nCommand, auto function) {
        ability(szFunction, nCommand, function);
    }
    template <class Record>
    void set(const char* szFunction, std::uint32_t nCommand,
             int (*function)(Handle, const Record&)) {
        vecOperations.push_back(
            {szFunction, nCommand, onChannel(All, sample<Record>()),
             [=](Handle handle) { return function(handle, sample<Record>()); }});
    }
    template <class Record>
    void setIgnoringInt(const char* szFunction, std::uint32_t nCommand,
                        int (*function)(Handle, const int&, const Record&)) {
        vecOperations.push_back(
            {szFunction, nCommand, onChannel(All, sample<Record>()),
             [=](Handle handle) { return function(handle, 9, sample<Record>()); }});
    }
    void act(const char* szFunction, std::uint32_t nCommand, int (*function)(Handle)) {
        vecOperations.push_back({szFunction, nCommand, onChannel(All), function});
    }
};

// Every function that works on a session.
std::vector<Operation> operations() {
    auto passwords = with(&EtChangePasswordReq::setOldPassword, enciphered(""));
    passwords.setNewPassword(enciphered("gr\u00fcn"));
    const auto network = sample<HostNetwork>();
    const auto stream = sample<AVStreamParam>();
    const auto text = sample<OSDUserParam>();
    const auto streams = twoOf<AVStreamParam>();
    const auto texts = twoOf<OSDUserParam>();
    const auto channels = twoOf<ChannelInfo>();
    const auto pStreams = std::make_shared<tagAllAVStreamParam>();
    const auto pTexts = std::make_shared<tagOSDUserParamList>();
    toStructure(&streams.getElements(), pStreams.get());
    toStructure(&texts.getElements(), pTexts.get());
    const auto allStreams = with(&StreamId::setId, All);
    const auto getAVStreams = [](auto&... args) { return FleetKit::getAVStreamParam(args...); };
    PlainOperations all{{
        {"setDevicePasswd", 33509, onChannel(All, passwords, KXBool()),
         [](Handle handle) { return FleetKit::setDevicePasswd(handle, "", "gr\u00fcn"); }},
        {"setDeviceReset", 18001, onChannel(All, with(&EtHoldTypeList::setType, {1, 3})),
         [](Handle handle) {
             return FleetKit::setDeviceReset(handle, {1, 3});
         }},
        {"setDeviceHostNetwork", 32506, onChannel(All, listOf(std::vector{network})),
         [=](Handle handle) { return FleetKit::setDeviceHostNetwork(handle, 9, network); }},
        {"exeCommand", 30547,
         onChannel(All, with(&EtSystemReq::setSystemCommand, "ls <&>"), EtSystemResp()),
         [result = std::string()](Handle handle) mutable {
             return FleetKit::exeCommand(handle, "ls <&>", result);
         }},
        {"setAllAVStreamParam", 35010, onChannel(All, allStreams, streams),
         [=](Handle handle) { return FleetKit::setAllAVStreamParam(handle, *pStreams); }},
        {"setAVStreamParam", 35010, onChannel(2, allStreams, streams),
         [=](Handle handle) { return FleetKit::setAVStreamParam(handle, 2, *pStreams); }},
        // The channel stands once more where the stream is expected.
        {"setAVStreamParam", 35010,
         onChannel(2, with(&StreamId::setId, 2), listOf(std::vector{stream})),
         [=](Handle handle) { return FleetKit::setAVStreamParam(handle, 2, 1, stream); }},
        {"setOSDUserParam", 35021, onChannel(2, text),
         [=](Handle handle) { return FleetKit::setOSDUserParam(handle, 2, text); }},
        {"getOSDUserParam", 35021, onChannel(2, text),
         [sent = text](Handle handle) mutable {
             return FleetKit::getOSDUserParam(handle, 2, sent);
         }},
        {"setAllOSDUserParam", 35021, onChannel(All, texts),
         [=](Handle handle) { return FleetKit::setAllOSDUserParam(handle, *pTexts); }},

        getting<TimeZoneParam>(
            "getTimeZoneDefaultParam", 30515,
            recordsOf(with(&KXInterger::setValue, 8), with(&ChannelId::setId, All)),
            sample<TimeZoneParam>(), FleetKit::getTimeZoneDefaultParam, 8),
        getting<TimeZoneAbility>("getTimeZoneAbility", 30033,
                                 onChannel(All, with(&LanguageId::setId, 4)),
                                 sample<TimeZoneAbility>(), FleetKit::getTimeZoneAbility, 4),

        getting<tagAllAVStreamParam>("getAllAVStreamParam", 35008, onChannel(All, allStreams),
                                     streams, FleetKit::getAllAVStreamParam),
        getting<tagAllAVStreamParam>("getAVStreamParam", 35008, onChannel(2, allStreams), streams,
                                     getAVStreams, 2),
        getting<AVStreamParam>("getAVStreamParam", 35008, onChannel(2, with(&StreamId::setId, 1)),
                               streams, getAVStreams, 2, 1),
        getting<tagOSDUserParamList>("getAllOSDUserParam", 35022, onChannel(All), texts,
                                     FleetKit::getAllOSDUserParam),
        getting<tagAllChannelInfo>("getAllChannelInfo", 41259, onChannel(All), channels,
                                   FleetKit::getAllChannelInfo, RecorderType),
        gettingByType<ChannelInfo>("getChannelInfo", 41259, channels, FleetKit::getChannelInfo),
    }};
    visitPlainFunctions(all);
    return all.vecOperations;
}

void expectTold(const Rows<CarriedRecord>& told, const Records& records) {
    ASSERT_EQ(told.size(), records.size());
    for (std::size_t i = 0; i < told.size(); ++i) {
        EXPECT_EQ(told[i].descriptor().nDomainId, effectiveDomainId(*records[i]));
        EXPECT_EQ(told[i].isList, records[i]->getDomainId() == ContainerDomainId);
    }
}

void expectCodes(LoggedInDevice& device, const Operation& operation) {
    const bool bGets = !operation.vecAnswer.empty();
    const struct {
        std::string strAnswer;
        int nCode;
        int nReceived = Untouched;
    } Steps[]{
        {bodyOf(DeviceCode, operation.vecAnswer), DeviceCode},
        {peerBody(""), ErrorCode::BadReply},
        {"no body", ErrorCode::DecodeFailed},
        {bodyOf(0, {}), bGets ? ErrorCode::BadReply : ErrorCode::Success},
        {bodyOf(0, operation.vecAnswer), ErrorCode::Success, bGets ? Everything : Untouched},
    };
    EXPECT_EQ(operation.call(UnknownHandle), ErrorCode::Failed);
    EXPECT_TRUE(device.takeRequests().empty());
    for (const auto& step : Steps) {
        device.answerWith(step.strAnswer);
        EXPECT_EQ(operation.call(device.handle()), step.nCode) << step.strAnswer;
        EXPECT_EQ(operation.received(), step.nReceived) << step.strAnswer;
        const auto vecRequests = device.takeRequests();
        ASSERT_EQ(vecRequests.size(), 1U);
        EXPECT_EQ(vecRequests[0].m_head.getCommandID(), operation.nCommand);
        EXPECT_EQ(vecRequests[0].m_head.getSessionId(), 77U);
        EXPECT_EQ(vecRequests[0].m_strBody, bodyOf(operation.vecRequest));
    }
}

// What a function gives for any number that stands for a type of device, or for none.
void expectDecision(LoggedInDevice& device, const Operation& operation) {
    const std::set<int> setCameras{1, 4, 8, 9, 13, 14, 15};
    const std::set<int> setRecorders{5, 10, 103};
    device.answerWith(bodyOf(0, operation.vecAnswer));
    for (int nType = -1; nType <= 110; ++nType) {
        const bool bCamera = setCameras.count(nType) > 0;
        const bool bRecorder = setRecorders.count(nType) > 0;
        const bool bServed = (bCamera && isServed(operation.nCommand, OfCamera)) ||
                             (bRecorder && isServed(operation.nCommand, OfRecorder));
        EXPECT_EQ(operation.callOfType(device.handle(), nType),
                  bServed ? ErrorCode::Success : ErrorCode::Failed)
            << nType;
        const auto vecRequests = device.takeRequests();
        ASSERT_EQ(vecRequests.size(), bServed ? 1U : 0U) << nType;
        if (bServed) {
            // A camera is asked without the channel of the caller.
            EXPECT_EQ(vecRequests[0].m_strBody, bodyOf(onChannel(bCamera ? All : 2))) << nType;
        }
    }
}

}  // namespace

TEST(FleetKit, SendsTheRecordsOfEachOperationAndTakesItsAnswerAndLogsNoPassword) {
    const std::string strLog = outputOfChild([] {
        setLogFilter(LogLevel::Trace);
        LoggedInDevice device;
        SafePointer<SDKSession> session;
        ASSERT_TRUE(DeviceSessionManager::instance().findSession(device.handle(), session));
        // These need no session.
        std::multiset<std::string> setCalled{
            "Init", "UnInit", "stopPlay", "startPlay", "Login", "Logout", "setDeviceHostNetwork"};
        for (const Operation& operation : operations()) {
            SCOPED_TRACE(operation.strFunction);
            setCalled.insert(operation.strFunction);
            expectTold(findFunction(operation.strFunction)->request, operation.vecRequest);
            expectTold(findCommand(operation.nCommand)->answer, operation.vecAnswer);
            expectCodes(device, operation);
            if (operation.callOfType) {
                expectDecision(device, operation);
            }
        }
        std::multiset<std::string> setExported;
        for (const FunctionDescriptor& function : functionCatalogue()) {
            if (function.isExported) {
                setExported.insert(function.szName);
            }
        }
        EXPECT_EQ(setCalled, setExported);
        session->close();
        for (const Operation& operation : operations()) {
            SCOPED_TRACE(operation.strFunction);
            EXPECT_EQ(operation.call(device.handle()), ErrorCode::NoTransport);
            EXPECT_EQ(operation.received(), Untouched);
        }
    });
    const auto says = [&](const std::string& strText) {
        return strLog.find(strText) != std::string::npos;
    };
    EXPECT_TRUE(says("<ChangePasswordReq OldPassword=\"***"));
    for (const std::string strPassword : {"secret", "gr\u00fcn"}) {
        EXPECT_FALSE(says(strPassword) || says(enciphered(strPassword))) << strPassword;
    }
}

TEST(FleetKit, LeavesTwoOfTheObjectsHandedOverAsTheyWere) {
    outputOfChild([] {
        LoggedInDevice device;
        device.answerWith(bodyOf(0, recordsOf(OSDUserParam(), sample<EtSystemResp>())));
        auto text = sample<OSDUserParam>();
        EXPECT_EQ(FleetKit::getOSDUserParam(device.handle(), 2, text), ErrorCode::Success);
        EXPECT_TRUE(text == sample<OSDUserParam>());
        std::string strResult = "as it was";
        EXPECT_EQ(FleetKit::exeCommand(device.handle(), "ls", strResult), ErrorCode::Success);
        EXPECT_EQ(strResult, "as it was");
    });
}

// Each as far as it gets where there is no device, network or library.
TEST(FleetKit, NeedsNoSessionForSomeFunctions) {
    outputOfChild([] {
        setAdapterLister([](std::vector<NetworkAdapter>&) { return true; });
        const int nOpaque = 0;
        const auto& opaque = reinterpret_cast<const tagDeviceInfoEx&>(nOpaque);
        HostNetwork network;
        User user;
        long handle = 0;
        EXPECT_EQ(FleetKit::Init(), ErrorCode::Success);
        EXPECT_EQ(FleetKit::UnInit(), ErrorCode::Success);
        EXPECT_EQ(FleetKit::stopPlay(), ErrorCode::Success);
        EXPECT_EQ(FleetKit::startPlay(1, 1, 1, opaque), ErrorCode::PreviewFailed);
        EXPECT_EQ(FleetKit::Login(DeviceInfoEx(), handle), ErrorCode::Failed);
        EXPECT_EQ(FleetKit::Logout(UnknownHandle), ErrorCode::UnknownHandle);
        EXPECT_EQ(FleetKit::setDeviceHostNetwork("id", network, user), ErrorCode::Failed);
    });
}

TEST(FleetKit, KeepsAStaleHandleWhenALoginFails) {
    outputOfChild([] {
        ScriptedPeer peer(answerEach([](const auto& request) {
            return peerAnswer(request, 11002, peerResult(DeviceCode));
        }));
        for (const long stale : {7L, 0L, -7L}) {
            long handle = stale;
            EXPECT_EQ(FleetKit::Login(peer.getDeviceInfo(), handle),
                      stale > 0 ? ErrorCode::Success : ErrorCode::Failed);
            EXPECT_EQ(handle, stale);
            EXPECT_EQ(fleetkit::login(peer.getDeviceInfo(), handle), DeviceCode);
            EXPECT_EQ(fleetkit::login(DeviceInfoEx(), handle), ErrorCode::HostNotFound);
            EXPECT_EQ(handle, stale);
        }
    });
}

TEST(FleetKitImpl, RefusesLoginsAfterUnload) {
    FleetKitImpl impl;
    impl.unload();
    long handle = 5;
    EXPECT_EQ(impl.login(DeviceInfoEx(), handle), ErrorCode::Failed);
    EXPECT_EQ(impl.loginWithReason(DeviceInfoEx(), handle, 0), ErrorCode::Failed);
    EXPECT_EQ(handle, 5);
    EXPECT_EQ(impl.logout(5), ErrorCode::Failed);
}

TEST(SDK_DeviceController, GivesNoTransportWithoutSession) {
    SDK_DeviceController unbound;
    EXPECT_EQ(unbound.perform(&DeviceControllerImpl::act, CommandId::setDeviceRestart),
              ErrorCode::NoTransport);
}
