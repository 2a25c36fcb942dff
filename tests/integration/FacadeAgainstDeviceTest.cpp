// The library against the virtual device over the loopback: every function once with success, what
// some do to the state of the device, and every misbehaviour with the code that the caller gets.
// Logins start the heartbeat, so each test has a process of its own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QString>
#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "device/DeviceType.h"
#include "device/TarnStruct.h"
#include "domain/DeviceTime.h"
#include "integration/LoginData.h"
#include "session/SDK_DeviceSessionCreator.h"
#include "support/ChildProcess.h"
#include "support/DeclaredFunctions.h"
#include "support/SampleRecords.h"
#include "tests/PlainFunctions.h"
#include "virtual-device/DeviceResult.h"
#include "virtual-device/VirtualDevice.h"

using namespace fleetkit;
using namespace NS_TARN_STRUCT;

namespace {

constexpr int Channels = 3;
constexpr int Streams = 2;

template <class Ability>
using TypedGet = int (*)(const long&, const int&, const int&, Ability&);

DeviceOptions recorderOptions() {
    DeviceOptions options;
    options.nKind = DeviceKind::NVR;
    options.nChannels = Channels;
    options.nStreams = Streams;
    return options;
}

long login(const VirtualDevice& device) {
    long handle = 0;
    EXPECT_EQ(FleetKit::Login(loginData(device.getPort()), handle), ErrorCode::Success);
    return handle;
}

struct Site {
    VirtualDevice camera;
    VirtualDevice recorder{recorderOptions()};
    const long hCamera = login(camera);
    const long hRecorder = login(recorder);
};

void onSite(const std::function<void(Site&)>& body) {
    outputOfChild([&] {
        Site site;
        body(site);
    });
}

// One function, by its name in `declaredFunctions`.
struct Call {
    std::string strFunction;
    std::function<int(Site&)> make;
};

// The functions that the table of commands makes, on the camera; abilities on the recorder too.
struct PlainCalls {
    std::vector<Call> vecCalls;
    std::vector<Call> vecLast;  // these end the connection

    template <class Record>
    void get(const char* szFunction, std::uint32_t, int (*function)(const long&, Record&)) {
        vecCalls.push_back({szFunction, [=](Site& site) {
                                Record record;
                                const int nCode = function(site.hCamera, record);
                                EXPECT_FALSE(record == Record());
                                return nCode;
                            }});
    }
    template <class Record>
    void set(const char* szFunction, std::uint32_t, int (*function)(const long&, const Record&)) {
        vecCalls.push_back({szFunction, [=](Site& site) {
                                const int nCode = function(site.hCamera, sample<Record>());
                                const DeviceState state = site.camera.getState();
                                EXPECT_TRUE(state.records.get<Record>() == sample<Record>());
                                return nCode;
                            }});
    }
    // Of a camera whatever channel the caller names, of a recorder by channel.
    template <class Ability>
    void ability(const char* szFunction, std::uint32_t nCommand, TypedGet<Ability> function) {
        cameraAbility(szFunction, nCommand, function);
        const auto ofCamera = vecCalls.back().make;
        vecCalls.back().make = [=](Site& site) {
            Ability ofRecorder;
            EXPECT_EQ(function(site.hRecorder, RecorderType, 99, ofRecorder),
                      DeviceResult::NoSuchChannel);
            EXPECT_EQ(function(site.hRecorder, RecorderType, 2, ofRecorder), ErrorCode::Success);
            EXPECT_FALSE(ofRecorder == Ability());
            return ofCamera(site);
        };
    }
    template <class Ability>
    void cameraAbility(const char* szFunction, std::uint32_t, TypedGet<Ability> function) {
        vecCalls.push_back({szFunction, [=](Site& site) {
                                Ability ability;
                                const int nCode = function(site.hCamera, CameraType, 99, ability);
                                EXPECT_FALSE(ability == Ability());
                                return nCode;
                            }});
    }
    // The one that there is sets the clock, which goes on.
    void setIgnoringInt(const char* szFunction, std::uint32_t,
                        int (*function)(const long&, const int&, const DeviceTime&)) {
        vecCalls.push_back({szFunction, [=](Site& site) {
                                DeviceTime leapDay;
                                leapDay.setYear(2028);
                                leapDay.setMonth(2);
                                leapDay.setDay(29);
                                const int nCode = function(site.hCamera, 0, leapDay);
                                DeviceTime now;
                                FleetKit::getDeviceTime(site.hCamera, now);
                                EXPECT_EQ(now.getYear(), 2028);
                                EXPECT_EQ(now.getDay(), 29);
                                return nCode;
                            }});
    }
    void act(const char* szFunction, std::uint32_t, int (*function)(const long&)) {
        vecLast.push_back({szFunction, [=](Site& site) { return function(site.hCamera); }});
    }
};

// The recorder takes back what it gave.
template <class Structure>
void addList(std::vector<Call>& calls, const char* szGet, int (*get)(const long&, Structure&),
             const char* szSet, int (*set)(const long&, const Structure&), int nCount) {
    const auto pStructure = std::make_shared<Structure>();
    calls.push_back({szGet, [=](Site& site) {
                         const int nCode = get(site.hRecorder, *pStructure);
                         EXPECT_EQ(pStructure->Count, nCount);
                         return nCode;
                     }});
    calls.push_back({szSet, [=](Site& site) { return set(site.hRecorder, *pStructure); }});
}

// In the order of the calls: the last ones end the connection.
std::vector<Call> calls() {
    const auto pStreams = std::make_shared<tagAllAVStreamParam>();
    const auto pStream = std::make_shared<AVStreamParam>();
    PlainCalls plain;
    visitPlainFunctions(plain);
    std::vector<Call>& vecCalls = plain.vecCalls;
    const std::vector<Call> vecByHand{
        {"getTimeZoneAbility",
         [names = TimeZoneAbility()](Site& site) mutable {
             return FleetKit::getTimeZoneAbility(site.hCamera, 0, names);
         }},
        {"getTimeZoneDefaultParam",
         [zone = TimeZoneParam()](Site& site) mutable {
             return FleetKit::getTimeZoneDefaultParam(site.hCamera, 2, zone);
         }},
        {"setDeviceHostNetwork",
         [](Site& site) {
             const int nCode = FleetKit::setDeviceHostNetwork(
                 site.hCamera, 0, with(&HostNetwork::setLocalIp, "192.0.2.7"));
             EXPECT_EQ(site.camera.getState().vecHostNetworks.front().getLocalIp(), "192.0.2.7");
             return nCode;
         }},
        {"exeCommand",
         [result = std::string()](Site& site) mutable {
             return FleetKit::exeCommand(site.hCamera, "uptime", result);
         }},
        {"getAVStreamParam",
         [=](Site& site) { return FleetKit::getAVStreamParam(site.hRecorder, 2, *pStreams); }},
        {"setAVStreamParam",
         [=](Site& site) { return FleetKit::setAVStreamParam(site.hRecorder, 2, *pStreams); }},
        {"getAVStreamParam#2",
         [=](Site& site) { return FleetKit::getAVStreamParam(site.hRecorder, 2, 1, *pStream); }},
        {"setAVStreamParam#2",
         [=](Site& site) { return FleetKit::setAVStreamParam(site.hRecorder, 2, 1, *pStream); }},
        {"setOSDUserParam",
         [](Site& site) { return FleetKit::setOSDUserParam(site.hRecorder, 2, OSDUserParam()); }},
        {"getOSDUserParam",
         [text = OSDUserParam()](Site& site) mutable {
             return FleetKit::getOSDUserParam(site.hRecorder, 2, text);
         }},
        {"getAllChannelInfo",
         [](Site& site) {
             const auto pChannels = std::make_unique<tagAllChannelInfo>();
             const int nCode =
                 FleetKit::getAllChannelInfo(site.hRecorder, RecorderType, *pChannels);
             EXPECT_EQ(pChannels->Count, Channels);
             return nCode;
         }},
        {"getChannelInfo",
         [channel = ChannelInfo()](Site& site) mutable {
             return FleetKit::getChannelInfo(site.hRecorder, RecorderType, 2, channel);
         }},
    };
    vecCalls.insert(vecCalls.end(), vecByHand.begin(), vecByHand.end());
    addList(vecCalls, "getAllAVStreamParam", FleetKit::getAllAVStreamParam, "setAllAVStreamParam",
            FleetKit::setAllAVStreamParam, Channels * Streams);
    addList(vecCalls, "getAllOSDUserParam", FleetKit::getAllOSDUserParam, "setAllOSDUserParam",
            FleetKit::setAllOSDUserParam, Channels);
    const std::vector<Call> vecLast{
        {"setDevicePasswd",
         [](Site& site) { return FleetKit::setDevicePasswd(site.hCamera, "admin", "admin"); }},
        {"setDeviceReset", [](Site& site) { return FleetKit::setDeviceReset(site.hCamera, {}); }},
        {"Init", [](Site&) { return FleetKit::Init(); }},
        {"Login",
         [](Site& site) {
             long handle = 0;
             const int nCode = FleetKit::Login(loginData(site.recorder.getPort()), handle);
             EXPECT_GT(handle, site.hRecorder);
             EXPECT_EQ(site.recorder.sessionCount(), 2U);
             return nCode;
         }},
        {"Logout", [](Site& site) { return FleetKit::Logout(site.hRecorder); }},
        {"stopPlay", [](Site&) { return FleetKit::stopPlay(); }},
        {"UnInit", [](Site&) { return FleetKit::UnInit(); }},
    };
    vecCalls.insert(vecCalls.end(), vecLast.begin(), vecLast.end());
    vecCalls.insert(vecCalls.end(), plain.vecLast.begin(), plain.vecLast.end());
    return vecCalls;
}

// One misbehaviour in the answer to a request for the time.
struct Trouble {
    const char* szMisbehaviour;
    int nCode;                       // of the call whose answer is spoilt
    int nNext = ErrorCode::Success;  // of the one after it, on the same session
    int nReplyTimeoutMs = 5000;      // short where silence is what the caller waits for
};

constexpr int Short = 1000;

constexpr Trouble Troubles[] = {
    {"delay=10", ErrorCode::Success},
    {"delay=1500", ErrorCode::ReceiveTimedOut, ErrorCode::Success, Short},
    {"drop", ErrorCode::ReceiveTimedOut, ErrorCode::Success, Short},
    {"close", ErrorCode::ReceiveFailed, ErrorCode::ReceiveFailed},
    {"strays=3", ErrorCode::Success},
    {"strays=4", ErrorCode::BadReply},
    {"twice", ErrorCode::Success},
    {"trickle", ErrorCode::Success},
    {"wrong-session", ErrorCode::ReceiveTimedOut, ErrorCode::Success, Short},
    {"wrong-sequence=-1", ErrorCode::ReceiveTimedOut, ErrorCode::Success, Short},
    {"wrong-command", ErrorCode::BadReply},
    {"protocol-type", ErrorCode::Success},
    {"bad-magic", ErrorCode::HeadRefused, ErrorCode::HeadRefused},
    {"bad-checksum", ErrorCode::HeadRefused, ErrorCode::HeadRefused},
    {"bad-terminator", ErrorCode::HeadRefused, ErrorCode::HeadRefused},
    {"truncated", ErrorCode::ReceiveFailed, ErrorCode::ReceiveFailed},
    {"stalled", ErrorCode::ReceiveTimedOut, ErrorCode::Success, Short},
    {"huge-length", ErrorCode::NoMemory, ErrorCode::NoMemory},
    {"huge-length=1000000", ErrorCode::ReceiveTimedOut, ErrorCode::Success, Short},
    {"empty-body", ErrorCode::DecodeFailed},
    {"not-xml", ErrorCode::DecodeFailed},
    {"deep-nesting", ErrorCode::DecodeFailed},
    {"many-attributes", ErrorCode::DecodeFailed},
    {"many-records", ErrorCode::DecodeFailed},
    {"invalid-utf8", ErrorCode::Success},  // the rest of the answer is as it should be
    {"doctype", ErrorCode::DecodeFailed},
    {"no-result", ErrorCode::BadReply},
    {"no-record", ErrorCode::BadReply},
    {"empty-list", ErrorCode::Success},  // there is no list in this answer
    {"code", 99},
    {"code=-7", -7},
};

void expectCodes(const Trouble& trouble) {
    VirtualDevice device;
    long handle = 0;
    ASSERT_EQ(SDK_DeviceSessionCreator().createSession(loginData(device.getPort()),
                                                       trouble.nReplyTimeoutMs, handle),
              ErrorCode::Success);
    device.misbehave(trouble.szMisbehaviour + std::string(":30507"), 1);
    DeviceTime time;
    EXPECT_EQ(FleetKit::getDeviceTime(handle, time), trouble.nCode);
    EXPECT_EQ(time == DeviceTime(), trouble.nCode != ErrorCode::Success);
    // A connection that has ended may show when sending, or only when nothing comes.
    const int nNext = FleetKit::getDeviceTime(handle, time);
    if (trouble.nNext == ErrorCode::ReceiveFailed) {
        EXPECT_THAT(nNext, testing::AnyOf(ErrorCode::ReceiveFailed, ErrorCode::SendFailed));
    } else {
        EXPECT_EQ(nNext, trouble.nNext);
    }
    login(device);
}

}  // namespace

TEST(FacadeAgainstDevice, EveryFunctionSucceeds) {
    onSite([](Site& site) {
        // Multicast needs a network of its own, the preview the libraries of the maker.
        std::set<std::string> setSucceeded{"setDeviceHostNetwork#2", "startPlay"};
        for (const Call& call : calls()) {
            SCOPED_TRACE(call.strFunction);
            const int nCode = call.make(site);
            EXPECT_EQ(nCode, ErrorCode::Success);
            if (nCode == ErrorCode::Success) {
                EXPECT_TRUE(setSucceeded.insert(call.strFunction).second);
            }
        }
        EXPECT_EQ(setSucceeded, cataloguedFunctions());
    });
}

TEST(FacadeAgainstDevice, ARecorderKeepsItsChannelsApart) {
    onSite([](Site& site) {
        const long& handle = site.hRecorder;
        const auto pStreams = std::make_unique<tagAllAVStreamParam>();
        ASSERT_EQ(FleetKit::getAllAVStreamParam(handle, *pStreams), ErrorCode::Success);
        EXPECT_EQ(pStreams->Count, Channels * Streams);
        ASSERT_EQ(FleetKit::getAVStreamParam(handle, 2, *pStreams), ErrorCode::Success);
        EXPECT_EQ(pStreams->Count, Streams);
        pStreams->Streams[1].Quality = 77;
        EXPECT_EQ(FleetKit::setAVStreamParam(handle, 2, *pStreams), ErrorCode::Success);
        AVStreamParam stream;
        EXPECT_EQ(FleetKit::getAVStreamParam(handle, 2, 2, stream), ErrorCode::Success);
        EXPECT_EQ(stream.getQuality(), 77);
        stream.setQuality(78);
        EXPECT_EQ(FleetKit::setAVStreamParam(handle, 2, 1, stream), ErrorCode::Success);
        EXPECT_TRUE(site.recorder.getState().vecStreams.at(3) == stream);
        EXPECT_NE(site.recorder.getState().vecStreams.at(1).getQuality(), 78);

        const auto pTexts = std::make_unique<tagOSDUserParamList>();
        ASSERT_EQ(FleetKit::getAllOSDUserParam(handle, *pTexts), ErrorCode::Success);
        EXPECT_EQ(pTexts->Count, Channels);
        pTexts->Params[2].CanvasCount = 0;
        EXPECT_EQ(FleetKit::setAllOSDUserParam(handle, *pTexts), ErrorCode::Success);
        OSDUserParam text = site.recorder.getState().vecOSD.at(2);
        EXPECT_TRUE(text.getCanvasProperList().empty());
        text.setCameraId(0);  // left to the channel of the request
        EXPECT_EQ(FleetKit::setOSDUserParam(handle, 1, text), ErrorCode::Success);
        EXPECT_TRUE(site.recorder.getState().vecOSD.at(0).getCanvasProperList().empty());
        EXPECT_FALSE(site.recorder.getState().vecOSD.at(1).getCanvasProperList().empty());

        ChannelInfo channel;
        VideoAbility video;
        EXPECT_EQ(FleetKit::getChannelInfo(handle, RecorderType, 2, channel), ErrorCode::Success);
        EXPECT_TRUE(channel == site.recorder.getState().vecChannels.at(1));
        EXPECT_EQ(FleetKit::getVideoAbility(handle, RecorderType, 2, video), ErrorCode::Success);
        EXPECT_EQ(video.getVideoAbilityParamList().size(), 1U);
        SensorAbility sensor;
        EXPECT_EQ(FleetKit::getSensorAbility(handle, CameraType, 1, sensor),
                  DeviceResult::NotSupported);
    });
}

TEST(FacadeAgainstDevice, EmptyListsHaveCodesOfTheirOwn) {
    onSite([](Site& site) {
        AVStreamParam stream;
        ChannelInfo channel;
        for (const int nChannel : {Channels + 1, 1}) {
            EXPECT_EQ(FleetKit::getAVStreamParam(site.hRecorder, nChannel, 1, stream),
                      ErrorCode::EmptyStreamList);
            EXPECT_EQ(FleetKit::getChannelInfo(site.hRecorder, RecorderType, nChannel, channel),
                      ErrorCode::EmptyChannelList);
            site.recorder.misbehave("empty-list");  // for the channel that is there
        }
    });
}

TEST(FacadeAgainstDevice, ALogoutEndsTheSessionAndAPasswordIsChanged) {
    onSite([](Site& site) {
        EXPECT_EQ(FleetKit::setDevicePasswd(site.hCamera, "admin", "n\u00fcw"), ErrorCode::Success);
        EXPECT_EQ(site.camera.getState().strPassword, "n\u00fcw");
        EXPECT_EQ(FleetKit::Logout(site.hCamera), ErrorCode::Success);
        EXPECT_EQ(site.camera.sessionCount(), 0U);
        EXPECT_EQ(FleetKit::setDeviceRestart(site.hCamera), ErrorCode::Failed);
        EXPECT_EQ(FleetKit::Logout(site.hCamera), ErrorCode::UnknownHandle);
    });
}

TEST(FacadeAgainstDevice, AResetBringsTheFactoryStateBackButForWhatItIsToHold) {
    onSite([](Site& site) {
        const DeviceState factory = site.camera.getState();
        const auto ports = sample<DevicePort>();
        EXPECT_EQ(FleetKit::setNTPParam(site.hCamera, NTPParam()), ErrorCode::Success);
        EXPECT_EQ(FleetKit::setDevicePort(site.hCamera, ports), ErrorCode::Success);
        EXPECT_EQ(FleetKit::setDeviceReset(site.hCamera, {1}), ErrorCode::Success);
        EXPECT_TRUE(site.camera.getState().records.get<NTPParam>() ==
                    factory.records.get<NTPParam>());
        EXPECT_TRUE(site.camera.getState().records.get<DevicePort>() == ports);
        EXPECT_EQ(FleetKit::setDeviceReset(site.hCamera, {}), ErrorCode::Success);
        EXPECT_TRUE(site.camera.getState().records.get<DevicePort>() ==
                    factory.records.get<DevicePort>());
    });
}

TEST(FacadeAgainstDevice, ARestartIsAnsweredAndThenEndsAllConnections) {
    onSite([](Site& site) {
        const long hOther = login(site.camera);
        EXPECT_EQ(FleetKit::setDeviceRestart(site.hCamera), ErrorCode::Success);
        DeviceTime time;
        for (const long handle : {site.hCamera, hOther}) {
            EXPECT_THAT(FleetKit::getDeviceTime(handle, time),
                        testing::AnyOf(ErrorCode::SendFailed, ErrorCode::ReceiveFailed));
        }
        login(site.camera);
    });
}

TEST(FacadeAgainstDevice, ASystemCommandIsNotedAndNeverRun) {
    onSite([](Site& site) {
        std::string strIgnored;
        EXPECT_EQ(FleetKit::exeCommand(site.hCamera, "touch made", strIgnored), ErrorCode::Success);
        EXPECT_EQ(site.camera.getState().strLastSystemCommand, "touch made");
        EXPECT_FALSE(std::filesystem::exists("made"));
        const ReceivedCommand received = site.camera.getReceived().back();
        EXPECT_EQ(received.nCommandId, 30547U);
        EXPECT_THAT(received.vecRecords,
                    testing::ElementsAre("ChannelId", "SystemReq", "SystemResp"));
    });
}

TEST(FacadeAgainstDevice, EveryMisbehaviourHasItsCode) {
    outputOfChild([] {
        std::set<std::string> setTried;
        for (const Trouble& trouble : Troubles) {
            SCOPED_TRACE(trouble.szMisbehaviour);
            setTried.insert(parseMisbehaviour(trouble.szMisbehaviour).strName);
            expectCodes(trouble);
        }
        EXPECT_EQ(setTried.size(), misbehaviourKinds().size());
    });
}

TEST(FacadeAgainstDevice, MisbehaviourIsForACommandAndItsTimesUntilItIsEnded) {
    onSite([](Site& site) {
        site.camera.misbehave("code:30507", 2);
        DeviceTime time;
        NTPParam ntp;
        EXPECT_EQ(FleetKit::getNTPParam(site.hCamera, ntp), ErrorCode::Success);
        for (const int nCode : {99, 99, 0}) {
            EXPECT_EQ(FleetKit::getDeviceTime(site.hCamera, time), nCode);
        }
        site.camera.misbehave("code");
        EXPECT_EQ(FleetKit::getNTPParam(site.hCamera, ntp), 99);
        site.camera.behave();
        EXPECT_EQ(FleetKit::getNTPParam(site.hCamera, ntp), ErrorCode::Success);
    });
}
