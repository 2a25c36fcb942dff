// Live preview over stand-ins for its closed libraries. A library that the test has loaded by its
// path is the one that is found by its name.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/platform/DynamicLibrary.h"
#include "device/FleetKitImpl.h"

namespace {

using testing::ElementsAreArray;
using testing::IsEmpty;
using Calls = std::vector<std::string>;

constexpr long Window = 77;
constexpr int Refused = 9;

Calls g_vecCalls;
std::set<std::string> g_setFailing;  // the functions that give `Refused`
std::thread::id g_caller;

std::string functionOf(const std::string& strCall) {
    return strCall.substr(0, strCall.find(' '));
}

int recordCall(const char* szCall) {
    const std::string strCall = szCall;
    g_vecCalls.push_back(strCall);
    g_caller = std::this_thread::get_id();
    return g_setFailing.count(functionOf(strCall)) > 0 ? Refused : 0;
}

Calls takeCalls() {
    return std::exchange(g_vecCalls, {});
}

std::string withPointer(const char* szFormat, const void* pPointer) {
    char szText[64];
    std::snprintf(szText, sizeof szText, szFormat, pPointer);
    return szText;
}

class LivePreview : public testing::Test {
protected:
    LivePreview() {
        takeCalls();
        g_setFailing.clear();
    }

    void provideNet() { provide(m_objNet, "/whole/libTarnNetSDK.so"); }
    void providePlayer(const char* szDirectory = "/whole") {
        provide(m_objPlayer, std::string(szDirectory) + "/libTarnPlayerSDK.so");
    }
    void provideBoth() {
        provideNet();
        providePlayer();
    }

    int startPlay() { return m_pImpl->startPlay(Window, device()); }
    static const NS_TARN_STRUCT::tagDeviceInfoEx& device() {
        static const int nOpaque = 0;
        return reinterpret_cast<const NS_TARN_STRUCT::tagDeviceInfoEx&>(nOpaque);
    }

    // What a start calls, in order.
    Calls startCalls() const {
        return {withPointer("SDK_Login %p 5000", &device()),
                "Player_Initial 77",
                "Player_OpenStream 0 0",
                "Player_SetAutoResizeFlag 31 1",
                "Player_Play 31 77",
                "SDK_VideoController_Open 21 1 1 1",
                "SDK_VideoController_SetAVDataCallback 41",
                "SDK_VideoController_StartVideo 41",
                "SDK_VideoController_Ctrl 41 1",
                "Player_SetDrawCallBack 31 0",
                "Player_SetDecodeCallBack 31 0"};
    }

    DynamicLibrary m_objNet;
    DynamicLibrary m_objPlayer;
    std::unique_ptr<FleetKitImpl> m_pImpl = std::make_unique<FleetKitImpl>();

private:
    static void provide(DynamicLibrary& library, const std::string& strPath) {
        ASSERT_TRUE(library.open(PREVIEW_DIRECTORY + strPath));
        const auto recordCallsWith =
            library.function<void(int (*)(const char*))>("recordCallsWith");
        ASSERT_NE(recordCallsWith, nullptr);
        recordCallsWith(recordCall);
    }
};

const Calls StopVideo{"SDK_VideoController_StopVideo 41", "SDK_VideoController_Close 41",
                      "SDK_UnInit"};

Calls operator+(Calls left, const Calls& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

}  // namespace

TEST_F(LivePreview, CallsBothLibrariesInOrderAndStopsTheVideoAtUnload) {
    provideBoth();
    EXPECT_EQ(startPlay(), ErrorCode::Success);
    EXPECT_THAT(takeCalls(), ElementsAreArray(startCalls()));
    m_pImpl.reset();
    EXPECT_THAT(takeCalls(), ElementsAreArray(StopVideo));
}

TEST_F(LivePreview, UndoesAFailedStartAsFarAsItGot) {
    provideBoth();
    const Calls StopPlayer{"Player_Stop 31", "Player_CloseStream 31"};
    const Calls Message{"SDK_FormatMessage 9 512"};
    const Calls UnInit{"SDK_UnInit"};
    const struct {
        int nCode;
        Calls undo;
    } Steps[]{
        {Refused, {}},                                                 // SDK_Login
        {Refused, UnInit},                                             // Player_Initial
        {Refused, UnInit},                                             // Player_OpenStream
        {Refused, UnInit + StopPlayer},                                // SetAutoResizeFlag
        {Refused, UnInit + StopPlayer},                                // Player_Play
        {ErrorCode::PreviewFailed, Message + UnInit + StopPlayer},     // Open
        {ErrorCode::PreviewFailed, Message + StopVideo + StopPlayer},  // SetAVDataCallback
        {ErrorCode::PreviewFailed, Message + StopVideo + StopPlayer},  // StartVideo
        {ErrorCode::PreviewFailed, Message + StopVideo + StopPlayer},  // Ctrl
        {Refused, StopVideo + StopPlayer},                             // SetDrawCallBack
        {Refused, StopVideo + StopPlayer},                             // SetDecodeCallBack
    };
    const Calls calls = startCalls();
    ASSERT_EQ(std::size(Steps), calls.size());
    for (std::size_t i = 0; i < calls.size(); ++i) {
        m_pImpl = std::make_unique<FleetKitImpl>();
        takeCalls();
        g_setFailing = {functionOf(calls[i])};
        SCOPED_TRACE(calls[i]);
        EXPECT_EQ(startPlay(), Steps[i].nCode);
        const Calls begun(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(i) + 1);
        EXPECT_THAT(takeCalls(), ElementsAreArray(begun + Steps[i].undo));
    }
}

TEST_F(LivePreview, LeavesAStreamOpenThatDoesNotStop) {
    provideBoth();
    g_setFailing = {"Player_Play", "Player_Stop"};
    EXPECT_EQ(startPlay(), Refused);
    const Calls calls = takeCalls();
    ASSERT_FALSE(calls.empty());
    EXPECT_EQ(calls.back(), "Player_Stop 31");
}

TEST_F(LivePreview, HandsFramesToThePlayerWithoutACopy) {
    provideBoth();
    ASSERT_EQ(startPlay(), ErrorCode::Success);
    takeCalls();
    g_setFailing = {"Player_InputAVFrame"};
    auto* const deliverFrame = m_objNet.function<int(void*, bool)>("deliverFrame");
    int nFrame = 0;
    EXPECT_EQ(deliverFrame(&nFrame, true), 0);
    EXPECT_THAT(takeCalls(), ElementsAreArray({withPointer("Player_InputAVFrame 31 %p", &nFrame)}));
    EXPECT_NE(g_caller, std::this_thread::get_id());
    EXPECT_EQ(deliverFrame(&nFrame, false), 0);
    EXPECT_THAT(takeCalls(), IsEmpty());
}

TEST_F(LivePreview, StartsNothingWithoutItsLibraries) {
    EXPECT_EQ(startPlay(), ErrorCode::PreviewFailed);
    provideNet();
    EXPECT_EQ(startPlay(), ErrorCode::PreviewFailed);
    providePlayer("/incomplete");
    EXPECT_EQ(startPlay(), ErrorCode::PreviewFailed);
    m_pImpl.reset();
    EXPECT_THAT(takeCalls(), IsEmpty());
}

TEST_F(LivePreview, FindsLibrariesThatCameLater) {
    EXPECT_EQ(startPlay(), ErrorCode::PreviewFailed);
    provideBoth();
    EXPECT_EQ(startPlay(), ErrorCode::Success);
}
