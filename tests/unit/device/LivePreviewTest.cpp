// Live preview over stand-ins for its closed libraries. A library that the test has loaded by its
// path is the one that is found by its name.
#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/platform/DynamicLibrary.h"
#include "device/FleetKitImpl.h"

using namespace fleetkit;

namespace {

constexpr long Window = 77;
constexpr int Refused = 9;

// Handed through, and looked into by the stand-ins alone.
const int g_nOpaque = 5;
const auto& g_device = reinterpret_cast<const NS_TARN_STRUCT::tagDeviceInfoEx&>(g_nOpaque);

std::string g_strCalls;              // a line each
std::set<std::string> g_setFailing;  // the functions that give `Refused`
std::thread::id g_caller;
std::function<void()> g_onCall = [] {};

std::string functionOf(const std::string& strCall) {
    return strCall.substr(0, strCall.find(' '));
}

std::string takeCalls() {
    return std::exchange(g_strCalls, {});
}

class LivePreview : public testing::Test {
protected:
    LivePreview() {
        takeCalls();
        g_setFailing.clear();
    }

    void provideBoth() {
        provide(m_net, "/whole/libTarnNetSDK.so");
        provide(m_player, "/whole/libTarnPlayerSDK.so");
    }

    static void provide(DynamicLibrary& library, const std::string& strPath) {
        ASSERT_TRUE(library.open(PREVIEW_DIRECTORY + strPath));
    }

    int startPlay() { return m_pImpl->startPlay(Window, g_device); }

    DynamicLibrary m_net;
    DynamicLibrary m_player;
    std::unique_ptr<FleetKitImpl> m_pImpl = std::make_unique<FleetKitImpl>();
};

const std::string StopVideo =
    "SDK_VideoController_StopVideo 41\n"
    "SDK_VideoController_Close 41\n"
    "SDK_UnInit\n";

// What a start calls, and what it gives and calls once more when this fails.
struct Step {
    std::string strCall;
    int nCode;
    std::string strUndo;
};

std::vector<Step> stepsOfAStart() {
    constexpr int Failed = ErrorCode::PreviewFailed;
    const std::string StopPlayer = "Player_Stop 31\nPlayer_CloseStream 31\n";
    const std::string Message = "SDK_FormatMessage 9 512\n";
    const std::string UnInit = "SDK_UnInit\n";
    return {
        {"SDK_Login 5 5000", Refused, ""},
        {"Player_Initial 77", Refused, UnInit},
        {"Player_OpenStream 0 0", Refused, UnInit},
        {"Player_SetAutoResizeFlag 31 1", Refused, UnInit + StopPlayer},
        {"Player_Play 31 77", Refused, UnInit + StopPlayer},
        {"SDK_VideoController_Open 21 1 1 1", Failed, Message + UnInit + StopPlayer},
        {"SDK_VideoController_SetAVDataCallback 41", Failed, Message + StopVideo + StopPlayer},
        {"SDK_VideoController_StartVideo 41", Failed, Message + StopVideo + StopPlayer},
        {"SDK_VideoController_Ctrl 41 1", Failed, Message + StopVideo + StopPlayer},
        {"Player_SetDrawCallBack 31 0", Refused, StopVideo + StopPlayer},
        {"Player_SetDecodeCallBack 31 0", Refused, StopVideo + StopPlayer},
    };
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int previewCalled(const char* szCall) {
    g_strCalls += szCall + std::string("\n");
    g_caller = std::this_thread::get_id();
    g_onCall();
    return g_setFailing.count(functionOf(szCall)) > 0 ? Refused : 0;
}

TEST_F(LivePreview, CallsBothLibrariesInOrderAndStopsTheVideoAtUnloadWhenLoginsHaveEnded) {
    provideBoth();
    EXPECT_EQ(startPlay(), ErrorCode::Success);
    std::string strCalls;
    for (const Step& step : stepsOfAStart()) {
        strCalls += step.strCall + '\n';
    }
    EXPECT_EQ(takeCalls(), strCalls);
    g_onCall = [this] { EXPECT_EQ(m_pImpl->logout(1000), ErrorCode::Failed); };
    EXPECT_EQ(m_pImpl->logout(1000), ErrorCode::UnknownHandle);
    m_pImpl->unload();
    g_onCall = [] {};
    EXPECT_EQ(takeCalls(), StopVideo);
    m_pImpl.reset();
    EXPECT_EQ(takeCalls(), "");
}

TEST_F(LivePreview, UndoesAFailedStartAsFarAsItGot) {
    provideBoth();
    std::string strBegun;
    for (const Step& step : stepsOfAStart()) {
        SCOPED_TRACE(step.strCall);
        m_pImpl = std::make_unique<FleetKitImpl>();
        takeCalls();
        strBegun += step.strCall + '\n';
        g_setFailing = {functionOf(step.strCall)};
        EXPECT_EQ(startPlay(), step.nCode);
        EXPECT_EQ(takeCalls(), strBegun + step.strUndo);
    }
    g_setFailing.insert("Player_Stop");
    EXPECT_EQ(startPlay(), Refused);
    EXPECT_THAT(takeCalls(), testing::EndsWith("Player_Stop 31\n")) << "the stream stays open";
}

TEST_F(LivePreview, HandsFramesToThePlayer) {
    provideBoth();
    ASSERT_EQ(startPlay(), ErrorCode::Success);
    takeCalls();
    g_setFailing = {"Player_InputAVFrame"};
    auto* const deliverFrame = m_net.function<int(void*, bool)>("deliverFrame");
    int nFrame = 6;
    EXPECT_EQ(deliverFrame(&nFrame, true), 0);
    EXPECT_EQ(takeCalls(), "Player_InputAVFrame 31 6\n");
    EXPECT_NE(g_caller, std::this_thread::get_id());
    EXPECT_EQ(deliverFrame(&nFrame, false), 0);
    EXPECT_EQ(takeCalls(), "");
}

TEST_F(LivePreview, StartsNothingUntilBothLibrariesAreThereAndWhole) {
    EXPECT_EQ(startPlay(), ErrorCode::PreviewFailed);
    provide(m_net, "/whole/libTarnNetSDK.so");
    EXPECT_EQ(startPlay(), ErrorCode::PreviewFailed);
    provide(m_player, "/incomplete/libTarnPlayerSDK.so");
    EXPECT_EQ(startPlay(), ErrorCode::PreviewFailed);
    EXPECT_EQ(takeCalls(), "");
    provideBoth();
    EXPECT_EQ(startPlay(), ErrorCode::Success);
    takeCalls();
    m_pImpl.reset();
    EXPECT_EQ(takeCalls(), StopVideo);
}
