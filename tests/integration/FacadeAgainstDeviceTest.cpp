// The library against the virtual device over the loopback: every function once, and every
// misbehaviour with the code that the caller gets. Logins start the heartbeat, so each test has a
// process of its own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QString>
#include <cstring>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "device/FleetKit.h"
#include "device/TarnStruct.h"
#include "domain/DeviceInfoEx.h"
#include "domain/DeviceTime.h"
#include "session/SDK_DeviceSessionCreator.h"
#include "support/ChildProcess.h"
#include "support/DeclaredFunctions.h"
#include "support/RecordFiller.h"
#include "virtual-device/DeviceResult.h"
#include "virtual-device/VirtualDevice.h"

using namespace NS_TARN_STRUCT;

namespace {

constexpr int CameraType = 1;
constexpr int RecorderType = 5;
constexpr int Channels = 3;
constexpr int Streams = 2;

DeviceOptions recorderOptions() {
    DeviceOptions options;
    options.nKind = DeviceKind::NVR;
    options.nChannels = Channels;
    options.nStreams = Streams;
    return options;
}

DeviceInfoEx loginData(const VirtualDevice& device, const std::string& strPassword = "admin") {
    InetAddr address;
    address.setIP("127.0.0.1");
    address.setPORT(device.getPort());
    address.setIPProtoVer(1);
    DeviceInfoEx info;
    info.setDeviceAddr(address);
    info.setUserID("admin");
    info.setPassword(strPassword);
    return info;
}

long login(const VirtualDevice& device, const std::string& strPassword = "admin") {
    long handle = 0;
    FleetKit::Login(loginData(device, strPassword), handle);
    return handle;
}

struct Site {
    VirtualDevice camera;
    VirtualDevice recorder{recorderOptions()};
    const long hCamera = login(camera);
    const long hRecorder = login(recorder);
};

// What one or two functions do, and their names as `declaredFunctions` has them.
struct Row {
    std::vector<std::string> vecFunctions;
    std::function<void(Site&)> check;
};

template <class Record>
Row reading(const char* szFunction, int (*get)(const long&, Record&), Record DeviceState::*pField) {
    return {{szFunction}, [=](Site& site) {
                Record record;
                EXPECT_EQ(get(site.hCamera, record), ErrorCode::Success);
                EXPECT_TRUE(record == site.camera.getState().*pField);
                EXPECT_FALSE(record == Record());
            }};
}

template <class Record>
Row settingAndReading(const char* szSet, int (*set)(const long&, const Record&), const char* szGet,
                      int (*get)(const long&, Record&), Record DeviceState::*pField) {
    return {{szSet, szGet}, [=](Site& site) {
                Record record;
                RecordFiller().fill(Record::descriptor(), &record);
                EXPECT_EQ(set(site.hCamera, record), ErrorCode::Success);
                EXPECT_TRUE(site.camera.getState().*pField == record);
                Record got;
                EXPECT_EQ(get(site.hCamera, got), ErrorCode::Success);
                EXPECT_TRUE(got == record);
            }};
}

// Of a camera without a channel, whatever the caller names; of a recorder by channel.
template <class Ability>
Row ability(const char* szFunction, int (*get)(const long&, const int&, const int&, Ability&),
            Ability DeviceState::*pField) {
    return {{szFunction}, [=](Site& site) {
                Ability ofCamera;
                EXPECT_EQ(get(site.hCamera, CameraType, 99, ofCamera), ErrorCode::Success);
                EXPECT_TRUE(ofCamera == site.camera.getState().*pField);
                Ability ofRecorder;
                EXPECT_EQ(get(site.hRecorder, RecorderType, 99, ofRecorder),
                          DeviceResult::NoSuchChannel);
                EXPECT_TRUE(ofRecorder == Ability());
                EXPECT_EQ(get(site.hRecorder, RecorderType, 2, ofRecorder), ErrorCode::Success);
                EXPECT_FALSE(ofRecorder == Ability());
            }};
}

void checkTime(Site& site) {
    DeviceTime time;
    time.setYear(2028);
    time.setMonth(2);
    time.setDay(29);
    time.setHour(12);
    time.setMinute(30);
    EXPECT_EQ(FleetKit::setDeviceReSetTime(site.hCamera, 0, time), ErrorCode::Success);
    DeviceTime got;
    EXPECT_EQ(FleetKit::getDeviceTime(site.hCamera, got), ErrorCode::Success);
    EXPECT_EQ(got.getYear(), 2028);
    EXPECT_EQ(got.getDay(), 29);
    EXPECT_EQ(got.getHour(), 12);
}

void checkTimeZones(Site& site) {
    TimeZoneAbility names;
    EXPECT_EQ(FleetKit::getTimeZoneAbility(site.hCamera, 0, names), ErrorCode::Success);
    EXPECT_TRUE(names == site.camera.getState().vecTimeZones.at(0));
    TimeZoneParam zone;
    EXPECT_EQ(FleetKit::getTimeZoneDefaultParam(site.hCamera, 2, zone), ErrorCode::Success);
    EXPECT_EQ(zone.getTimeZone(), 2);
    EXPECT_EQ(FleetKit::getTimeZoneDefaultParam(site.hCamera, 77, zone),
              DeviceResult::BadParameter);
    EXPECT_EQ(zone.getTimeZone(), 2);
}

void checkNetwork(Site& site) {
    HostNetwork network;
    network.setLocalIp("192.0.2.7");
    EXPECT_EQ(FleetKit::setDeviceHostNetwork(site.hCamera, 0, network), ErrorCode::Success);
    DeviceSummaryInfo summary;
    EXPECT_EQ(FleetKit::getDeviceSummaryInfo(site.hCamera, summary), ErrorCode::Success);
    EXPECT_EQ(summary.getDeviceIP(), "192.0.2.7");
}

void checkCommand(Site& site) {
    std::string strResult = "as it was";
    EXPECT_EQ(FleetKit::exeCommand(site.hCamera, "uptime <&>", strResult), ErrorCode::Success);
    EXPECT_EQ(strResult, "as it was");
    EXPECT_EQ(site.camera.getState().strLastSystemCommand, "uptime <&>");
}

void checkAllStreams(Site& site) {
    const auto pStreams = std::make_unique<tagAllAVStreamParam>();
    ASSERT_EQ(FleetKit::getAllAVStreamParam(site.hRecorder, *pStreams), ErrorCode::Success);
    ASSERT_EQ(pStreams->Count, Channels * Streams);
    for (int n = 0; n < pStreams->Count; ++n) {
        pStreams->Streams[n].BitRate = 100 + n;
    }
    EXPECT_EQ(FleetKit::setAllAVStreamParam(site.hRecorder, *pStreams), ErrorCode::Success);
    const auto pGot = std::make_unique<tagAllAVStreamParam>();
    EXPECT_EQ(FleetKit::getAllAVStreamParam(site.hRecorder, *pGot), ErrorCode::Success);
    EXPECT_EQ(std::memcmp(pGot.get(), pStreams.get(), sizeof *pGot), 0);
}

void checkStreamsOfAChannel(Site& site) {
    const auto pStreams = std::make_unique<tagAllAVStreamParam>();
    ASSERT_EQ(FleetKit::getAVStreamParam(site.hRecorder, 2, *pStreams), ErrorCode::Success);
    ASSERT_EQ(pStreams->Count, Streams);
    EXPECT_EQ(pStreams->Streams[1].ChannelId, 2);
    pStreams->Streams[1].Quality = 77;
    EXPECT_EQ(FleetKit::setAVStreamParam(site.hRecorder, 2, *pStreams), ErrorCode::Success);
    EXPECT_EQ(FleetKit::setAVStreamParam(site.hRecorder, 3, *pStreams), DeviceResult::NoSuchStream);
    AVStreamParam stream;
    EXPECT_EQ(FleetKit::getAVStreamParam(site.hRecorder, 2, 2, stream), ErrorCode::Success);
    EXPECT_EQ(stream.getQuality(), 77);
    stream.setQuality(78);
    EXPECT_EQ(FleetKit::setAVStreamParam(site.hRecorder, 2, 1, stream), ErrorCode::Success);
    EXPECT_EQ(FleetKit::getAVStreamParam(site.hRecorder, 2, 2, stream), ErrorCode::Success);
    EXPECT_EQ(stream.getQuality(), 78);
    EXPECT_EQ(FleetKit::getAVStreamParam(site.hRecorder, 9, 1, stream), ErrorCode::EmptyStreamList);
}

void checkAllTexts(Site& site) {
    const auto pTexts = std::make_unique<tagOSDUserParamList>();
    ASSERT_EQ(FleetKit::getAllOSDUserParam(site.hRecorder, *pTexts), ErrorCode::Success);
    ASSERT_EQ(pTexts->Count, Channels);
    ASSERT_GT(pTexts->Params[2].Canvases[0].OSDInfoCount, 0);
    std::strcpy(pTexts->Params[2].Canvases[0].OSDInfos[0].Info, "back door <&>");
    EXPECT_EQ(FleetKit::setAllOSDUserParam(site.hRecorder, *pTexts), ErrorCode::Success);
    const auto pGot = std::make_unique<tagOSDUserParamList>();
    EXPECT_EQ(FleetKit::getAllOSDUserParam(site.hRecorder, *pGot), ErrorCode::Success);
    EXPECT_STREQ(pGot->Params[2].Canvases[0].OSDInfos[0].Info, "back door <&>");
}

void checkTextsOfAChannel(Site& site) {
    OSDUserParam text = site.recorder.getState().vecOSD.at(1);
    for (const bool bSet : {true, false}) {
        text.setCanvasProperList(std::vector<CanvasProper>(bSet ? 1 : 2));
        const OSDUserParam sent = text;
        EXPECT_EQ(bSet ? FleetKit::setOSDUserParam(site.hRecorder, 2, text)
                       : FleetKit::getOSDUserParam(site.hRecorder, 2, text),
                  ErrorCode::Success);
        EXPECT_TRUE(text == sent);
        EXPECT_TRUE(site.recorder.getState().vecOSD.at(1) == sent);
    }
}

void checkChannels(Site& site) {
    const auto pChannels = std::make_unique<tagAllChannelInfo>();
    ASSERT_EQ(FleetKit::getAllChannelInfo(site.hRecorder, RecorderType, *pChannels),
              ErrorCode::Success);
    EXPECT_EQ(pChannels->Count, Channels);
    EXPECT_EQ(pChannels->Channels[1].LocalChannelID, 2);
    ChannelInfo channel;
    EXPECT_EQ(FleetKit::getChannelInfo(site.hRecorder, RecorderType, 2, channel),
              ErrorCode::Success);
    EXPECT_TRUE(channel == site.recorder.getState().vecChannels.at(1));
    EXPECT_EQ(FleetKit::getChannelInfo(site.hRecorder, RecorderType, 9, channel),
              ErrorCode::EmptyChannelList);
}

void checkSensor(Site& site) {
    SensorAbility sensor;
    EXPECT_EQ(FleetKit::getSensorAbility(site.hCamera, CameraType, 9, sensor), ErrorCode::Success);
    EXPECT_TRUE(sensor == site.camera.getState().objSensor);
}

void checkLogins(Site& site) {
    EXPECT_EQ(FleetKit::Init(), ErrorCode::Success);
    EXPECT_EQ(login(site.camera, "wrong"), 0);
    const long handle = login(site.camera);
    EXPECT_GT(handle, 0);
    EXPECT_EQ(site.camera.sessionCount(), 2U);
    EXPECT_EQ(FleetKit::Logout(handle), ErrorCode::Success);
    EXPECT_EQ(site.camera.sessionCount(), 1U);
    EXPECT_EQ(FleetKit::UnInit(), ErrorCode::Success);
    EXPECT_EQ(FleetKit::stopPlay(), ErrorCode::Success);
}

void checkPassword(Site& site) {
    EXPECT_EQ(FleetKit::setDevicePasswd(site.hRecorder, "wrong", "new"),
              DeviceResult::WrongCredentials);
    EXPECT_EQ(FleetKit::setDevicePasswd(site.hRecorder, "admin", QString::fromUtf8("n\u00fcw")),
              ErrorCode::Success);
    EXPECT_EQ(login(site.recorder), 0);
    EXPECT_GT(login(site.recorder, "n\u00fcw"), 0);
}

void checkResetAndRestart(Site& site) {
    EXPECT_EQ(FleetKit::setNTPParam(site.hCamera, NTPParam()), ErrorCode::Success);
    EXPECT_EQ(FleetKit::setDeviceReset(site.hCamera, {}), ErrorCode::Success);
    EXPECT_FALSE(site.camera.getState().objNTP == NTPParam());
    EXPECT_EQ(FleetKit::setDeviceRestart(site.hCamera), ErrorCode::Success);
    DeviceTime time;
    EXPECT_THAT(FleetKit::getDeviceTime(site.hCamera, time),
                testing::AnyOf(ErrorCode::SendFailed, ErrorCode::ReceiveFailed));
    EXPECT_GT(login(site.camera), 0);
}

std::vector<Row> rows() {
    return {
        {{"Init", "UnInit", "stopPlay", "Login", "Logout"}, checkLogins},
        reading("getHardwareCapability", FleetKit::getHardwareCapability,
                &DeviceState::objHardware),
        reading("getSoftwareCapability", FleetKit::getSoftwareCapability,
                &DeviceState::objSoftware),
        reading("getLanguageAbility", FleetKit::getLanguageAbility, &DeviceState::objLanguages),
        reading("getNetworkAbility", FleetKit::getNetworkAbility, &DeviceState::objNetworkCards),
        reading("getDiskAbility", FleetKit::getDiskAbility, &DeviceState::objDisks),
        reading("getExternUARTAbility", FleetKit::getExternUARTAbility, &DeviceState::objUART),
        settingAndReading("setTimeZoneParam", FleetKit::setTimeZoneParam, "getTimeZoneParam",
                          FleetKit::getTimeZoneParam, &DeviceState::objTimeZone),
        settingAndReading("setNTPParam", FleetKit::setNTPParam, "getNTPParam",
                          FleetKit::getNTPParam, &DeviceState::objNTP),
        settingAndReading("setDevicePort", FleetKit::setDevicePort, "getDevicePort",
                          FleetKit::getDevicePort, &DeviceState::objPorts),
        settingAndReading("setProtocolSecurityParam", FleetKit::setProtocolSecurityParam,
                          "getProtocolSecurityParam", FleetKit::getProtocolSecurityParam,
                          &DeviceState::objSecurity),
        ability("getVideoAbility", FleetKit::getVideoAbility, &DeviceState::objVideo),
        ability("getAudioAbility", FleetKit::getAudioAbility, &DeviceState::objAudio),
        ability("getBlindAbility", FleetKit::getBlindAbility, &DeviceState::objBlind),
        ability("getOSDAbility", FleetKit::getOSDAbility, &DeviceState::objOSDAbility),
        ability("getMotionDetectionAbility", FleetKit::getMotionDetectionAbility,
                &DeviceState::objMotion),
        ability("getPTZAbility", FleetKit::getPTZAbility, &DeviceState::objPTZ),
        {{"getSensorAbility"}, checkSensor},
        {{"setDeviceReSetTime", "getDeviceTime"}, checkTime},
        {{"getTimeZoneAbility", "getTimeZoneDefaultParam"}, checkTimeZones},
        {{"setDeviceHostNetwork", "getDeviceSummaryInfo"}, checkNetwork},
        {{"exeCommand"}, checkCommand},
        {{"setAllAVStreamParam", "getAllAVStreamParam"}, checkAllStreams},
        {{"setAVStreamParam", "setAVStreamParam#2", "getAVStreamParam", "getAVStreamParam#2"},
         checkStreamsOfAChannel},
        {{"setAllOSDUserParam", "getAllOSDUserParam"}, checkAllTexts},
        {{"setOSDUserParam", "getOSDUserParam"}, checkTextsOfAChannel},
        {{"getAllChannelInfo", "getChannelInfo"}, checkChannels},
        {{"setDevicePasswd"}, checkPassword},
        {{"setDeviceReset", "setDeviceRestart"}, checkResetAndRestart},
    };
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
    {"invalid-utf8", ErrorCode::DecodeFailed},  // a lead byte swallows the quote behind it
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
    ASSERT_EQ(SDK_DeviceSessionCreator().createSession(loginData(device), trouble.nReplyTimeoutMs,
                                                       handle),
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
    EXPECT_GT(login(device), 0);
}

}  // namespace

TEST(FacadeAgainstDevice, EveryFunctionDoesToTheDeviceWhatItSays) {
    outputOfChild([] {
        Site site;
        ASSERT_GT(site.hCamera, 0);
        ASSERT_GT(site.hRecorder, 0);
        for (const Row& row : rows()) {
            SCOPED_TRACE(row.vecFunctions.front());
            row.check(site);
        }
    });
}

TEST(FacadeAgainstDevice, IsCalledWithEveryFunctionThatNeedsADevice) {
    // Multicast needs a network of its own, the preview the libraries of the maker.
    std::set<std::string> setCalled{"setDeviceHostNetwork#2", "startPlay"};
    for (const Row& row : rows()) {
        setCalled.insert(row.vecFunctions.begin(), row.vecFunctions.end());
    }
    EXPECT_EQ(setCalled, declaredFunctions());
}

TEST(FacadeAgainstDevice, EveryMisbehaviourHasItsCode) {
    outputOfChild([] {
        std::set<std::string> setTried;
        for (const Trouble& trouble : Troubles) {
            SCOPED_TRACE(trouble.szMisbehaviour);
            setTried.insert(parseMisbehaviour(trouble.szMisbehaviour)->strName);
            expectCodes(trouble);
        }
        EXPECT_EQ(setTried.size(), misbehaviourKinds().size());
    });
}

TEST(FacadeAgainstDevice, EmptyListsHaveCodesOfTheirOwn) {
    outputOfChild([] {
        VirtualDevice recorder(recorderOptions());
        const long handle = login(recorder);
        recorder.misbehave("empty-list");
        AVStreamParam stream;
        EXPECT_EQ(FleetKit::getAVStreamParam(handle, 1, 1, stream), ErrorCode::EmptyStreamList);
        ChannelInfo channel;
        EXPECT_EQ(FleetKit::getChannelInfo(handle, RecorderType, 1, channel),
                  ErrorCode::EmptyChannelList);
        recorder.behave();
        EXPECT_EQ(FleetKit::getChannelInfo(handle, RecorderType, 1, channel), ErrorCode::Success);
    });
}
