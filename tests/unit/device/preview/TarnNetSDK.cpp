// The library that delivers frames. Handles: 21 for the login, 41 for the video.
#include <cstdint>
#include <thread>

#include "CallRecorder.h"
#include "device/TarnStruct.h"

namespace {

using FrameCallback = int(std::uint32_t, void*, void*);

FrameCallback* g_pCallback = nullptr;
void* g_pUser = nullptr;

}  // namespace

PREVIEW_EXPORT int SDK_Login(std::uint32_t* pLogin, const NS_TARN_STRUCT::tagDeviceInfoEx* pDevice,
                             int nTimeoutMs) {
    const int nResult = record("SDK_Login %p %d", static_cast<const void*>(pDevice), nTimeoutMs);
    if (nResult == 0) {
        *pLogin = 21;
    }
    return nResult;
}

PREVIEW_EXPORT int SDK_Logout(std::uint32_t hLogin) {
    return record("SDK_Logout %u", hLogin);
}

PREVIEW_EXPORT int SDK_UnInit() {
    return record("%s", "SDK_UnInit");
}

PREVIEW_EXPORT int SDK_FormatMessage(int nCode, char* szText, int nSize) {
    szText[nSize - 1] = '\0';
    return record("SDK_FormatMessage %d %d", nCode, nSize);
}

PREVIEW_EXPORT int SDK_VideoController_Open(std::uint32_t hLogin, int nChannel, int nStream,
                                            int nMode, std::uint32_t* pController) {
    const int nResult =
        record("SDK_VideoController_Open %u %d %d %d", hLogin, nChannel, nStream, nMode);
    if (nResult == 0) {
        *pController = 41;
    }
    return nResult;
}

PREVIEW_EXPORT int SDK_VideoController_SetAVDataCallback(std::uint32_t hController,
                                                         FrameCallback* pCallback, void* pUser) {
    g_pCallback = pCallback;
    g_pUser = pUser;
    return record("SDK_VideoController_SetAVDataCallback %u", hController);
}

PREVIEW_EXPORT int SDK_VideoController_StartVideo(std::uint32_t hController) {
    return record("SDK_VideoController_StartVideo %u", hController);
}

PREVIEW_EXPORT int SDK_VideoController_Ctrl(std::uint32_t hController, int nControl) {
    return record("SDK_VideoController_Ctrl %u %d", hController, nControl);
}

PREVIEW_EXPORT int SDK_VideoController_StopVideo(std::uint32_t hController) {
    return record("SDK_VideoController_StopVideo %u", hController);
}

PREVIEW_EXPORT int SDK_VideoController_Close(std::uint32_t hController) {
    return record("SDK_VideoController_Close %u", hController);
}

// For the test: hands over a frame from a thread of this library, and gives what the callback gave.
PREVIEW_EXPORT int deliverFrame(void* pFrame, bool bWithUser) {
    int nResult = -1;
    std::thread([&] { nResult = g_pCallback(41, pFrame, bWithUser ? g_pUser : nullptr); }).join();
    return nResult;
}
