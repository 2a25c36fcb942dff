// The library against the virtual device over the loopback: what some functions do to the state of
// the device, and every misbehaviour with the code that the caller gets. Logins start the
// heartbeat, so each test has a process of its own.
#include <gmock/gmock.h>

#include <QString>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "device/DeviceType.h"
#include "device/FleetKit.h"
#include "device/TarnStruct.h"
#include "domain/DevicePort.h"
#include "domain/DeviceTime.h"
#include "domain/NTPParam.h"
#include "domain/SensorAbility.h"
#include "domain/VideoAbility.h"
#include "session/SDK_DeviceSessionCreator.h"
#include "support/ChildProcess.h"
#include "support/LoginData.h"
#include "support/SampleRecords.h"
#include "virtual-device/DeviceResult.h"
#include "virtual-device/VirtualDevice.h"

using namespace fleetkit;
using namespace NS_TARN_STRUCT;
using testing::AnyOf;

namespace {

constexpr int Channels = 3;

long login(const VirtualDevice& device) {
    long handle = 0;
    EXPECT_EQ(FleetKit::Login(loginData(device.getPort()), handle), ErrorCode::Success);
    return handle;
}

// What the call gives for a misbehaviour in the answer to a request for the time.
const std::pair<int, std::vector<const char*>> Troubles[] = {
    // The rest of an answer that is no UTF-8 is as it should be, and there is no list in this one.
    {ErrorCode::Success,
     {"delay=10", "strays=3", "twice", "trickle", "protocol-type", "invalid-utf8", "empty-list"}},
    {ErrorCode::ReceiveTimedOut,
     {"delay=1500", "drop", "wrong-session", "wrong-sequence=-1", "stalled",
      "huge-length=1000000"}},
    {ErrorCode::ReceiveFailed, {"close", "truncated"}},
    {ErrorCode::BadReply, {"strays=4", "wrong-command", "no-result", "no-record"}},
    {ErrorCode::HeadRefused, {"bad-magic", "bad-checksum", "bad-terminator"}},
    {ErrorCode::NoMemory, {"huge-length"}},
    {ErrorCode::DecodeFailed,
     {"empty-body", "not-xml", "deep-nesting", "many-attributes", "many-records", "doctype"}},
    {99, {"code"}},
    {-7, {"code=-7"}},
};

int readTime(long handle) {
    DeviceTime time;
    const int nCode = FleetKit::getDeviceTime(handle, time);
    EXPECT_EQ(time == DeviceTime(), nCode != ErrorCode::Success);
    return nCode;
}

void expectCodes(const char* szMisbehaviour, int nCode) {
    VirtualDevice device;
    long handle = 0;
    const int nTimeoutMs = nCode == ErrorCode::ReceiveTimedOut ? 1000 : 5000;
    ASSERT_EQ(
        SDK_DeviceSessionCreator().createSession(loginData(device.getPort()), {nTimeoutMs}, handle),
        ErrorCode::Success);
    device.misbehave(szMisbehaviour + std::string(":30507"), 1);
    EXPECT_EQ(readTime(handle), nCode);
    if (nCode == ErrorCode::ReceiveFailed) {
        // A connection that has ended may show when sending, or only when nothing comes.
        EXPECT_THAT(readTime(handle), AnyOf(nCode, ErrorCode::SendFailed));
    } else {
        const bool bForGood = nCode == ErrorCode::HeadRefused || nCode == ErrorCode::NoMemory;
        EXPECT_EQ(readTime(handle), bForGood ? nCode : ErrorCode::Success);
    }
    login(device);
}

}  // namespace

TEST(FacadeAgainstDevice, ARecorderKeepsItsChannelsApart) {
    outputOfChild([] {
        VirtualDevice recorder({.nKind = DeviceKind::NVR, .nChannels = Channels});
        const long handle = login(recorder);
        const auto state = [&] { return recorder.getState(); };
        const auto pStreams = std::make_unique<tagAllAVStreamParam>();
        EXPECT_EQ(FleetKit::getAVStreamParam(handle, 2, *pStreams), ErrorCode::Success);
        EXPECT_EQ(pStreams->Count, 2);
        pStreams->Streams[1].Quality = 77;
        EXPECT_EQ(FleetKit::setAVStreamParam(handle, 2, *pStreams), ErrorCode::Success);
        AVStreamParam stream;
        EXPECT_EQ(FleetKit::getAVStreamParam(handle, 2, 2, stream), ErrorCode::Success);
        EXPECT_EQ(stream.getQuality(), 77);
        EXPECT_TRUE(state().vecStreams.at(3) == stream);
        EXPECT_NE(state().vecStreams.at(1).getQuality(), 77);

        const auto pTexts = std::make_unique<tagOSDUserParamList>();
        EXPECT_EQ(FleetKit::getAllOSDUserParam(handle, *pTexts), ErrorCode::Success);
        EXPECT_EQ(pTexts->Count, Channels);
        pTexts->Params[2].CanvasCount = 0;
        EXPECT_EQ(FleetKit::setAllOSDUserParam(handle, *pTexts), ErrorCode::Success);
        OSDUserParam text = state().vecOSD.at(2);
        EXPECT_TRUE(text.getCanvasProperList().empty());
        text.setCameraId(0);  // left to the channel of the request
        EXPECT_EQ(FleetKit::setOSDUserParam(handle, 1, text), ErrorCode::Success);
        EXPECT_TRUE(state().vecOSD.at(0).getCanvasProperList().empty());
        EXPECT_FALSE(state().vecOSD.at(1).getCanvasProperList().empty());

        ChannelInfo channel;
        VideoAbility video;
        SensorAbility sensor;
        EXPECT_EQ(FleetKit::getChannelInfo(handle, RecorderType, 2, channel), ErrorCode::Success);
        EXPECT_TRUE(channel == state().vecChannels.at(1));
        EXPECT_EQ(FleetKit::getVideoAbility(handle, RecorderType, 2, video), ErrorCode::Success);
        EXPECT_EQ(video.getVideoAbilityParamList().size(), 1U);
        EXPECT_EQ(FleetKit::getSensorAbility(handle, CameraType, 1, sensor),
                  DeviceResult::NotSupported);
        for (const int nChannel : {Channels + 1, 1}) {
            EXPECT_EQ(FleetKit::getAVStreamParam(handle, nChannel, 1, stream),
                      ErrorCode::EmptyStreamList);
            EXPECT_EQ(FleetKit::getChannelInfo(handle, RecorderType, nChannel, channel),
                      ErrorCode::EmptyChannelList);
            recorder.misbehave("empty-list");  // for the channel that is there
        }
    });
}

TEST(FacadeAgainstDevice, ACameraIsResetAndRestartedAndRunsNoCommand) {
    outputOfChild([] {
        VirtualDevice camera;
        const long handle = login(camera);
        const auto state = [&] { return camera.getState(); };
        const auto factoryPorts = state().records.get<DevicePort>();
        const auto ports = sample<DevicePort>();
        EXPECT_EQ(FleetKit::setNTPParam(handle, NTPParam()), ErrorCode::Success);
        EXPECT_EQ(FleetKit::setDevicePort(handle, ports), ErrorCode::Success);
        EXPECT_EQ(FleetKit::setDeviceReset(handle, {1}), ErrorCode::Success);
        EXPECT_FALSE(state().records.get<NTPParam>() == NTPParam());
        EXPECT_TRUE(state().records.get<DevicePort>() == ports) << "held";
        EXPECT_EQ(FleetKit::setDeviceReset(handle, {}), ErrorCode::Success);
        EXPECT_TRUE(state().records.get<DevicePort>() == factoryPorts);

        std::string strIgnored;
        EXPECT_EQ(FleetKit::exeCommand(handle, "touch made", strIgnored), ErrorCode::Success);
        EXPECT_EQ(state().strLastSystemCommand, "touch made");
        EXPECT_FALSE(std::filesystem::exists("made"));
        EXPECT_THAT(camera.getReceived().back().vecRecords,
                    testing::ElementsAre("ChannelId", "SystemReq", "SystemResp"));

        const long hOther = login(camera);
        EXPECT_EQ(FleetKit::Logout(login(camera)), ErrorCode::Success);
        EXPECT_EQ(camera.sessionCount(), 2U);
        EXPECT_EQ(FleetKit::setDeviceRestart(handle), ErrorCode::Success);
        for (const long hEnded : {handle, hOther}) {
            EXPECT_THAT(readTime(hEnded), AnyOf(ErrorCode::SendFailed, ErrorCode::ReceiveFailed));
        }
        login(camera);
    });
}

TEST(FacadeAgainstDevice, EveryMisbehaviourHasItsCode) {
    outputOfChild([] {
        std::set<std::string> setTried;
        for (const auto& [nCode, vecMisbehaviours] : Troubles) {
            for (const char* szMisbehaviour : vecMisbehaviours) {
                SCOPED_TRACE(szMisbehaviour);
                setTried.insert(parseMisbehaviour(szMisbehaviour).strName);
                expectCodes(szMisbehaviour, nCode);
            }
        }
        EXPECT_EQ(setTried.size(), misbehaviourKinds().size());
    });
}
