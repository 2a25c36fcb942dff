// Stands in for both closed libraries of live preview and tells the test of each call. Handles: 21
// for the login, 41 for the video, 31 for the player. A device and a frame are an int here.
#include <cstdint>
#include <sstream>
#include <thread>

namespace NS_TARN_STRUCT {
struct tagDeviceInfoEx;
}

#define EXPORTED extern "C" __attribute__((visibility("default")))

// A function that does nothing but tell of its call, with these arguments of its.
#define TELLING(Function, Parameters, ...)                 \
    EXPORTED int Function Parameters {                     \
        return told(#Function __VA_OPT__(, ) __VA_ARGS__); \
    }

// The test's own: takes "Function argument argument" and gives what the function is to give.
extern "C" int previewCalled(const char* szCall);

namespace {

using Handle = std::uint32_t;
using FrameCallback = int(Handle, void*, void*);
using DecodeCallback = int(Handle, void*, int, void*, void*);

FrameCallback* g_pFrames = nullptr;
void* g_pUser = nullptr;

template <class... Argument>
int told(const char* szFunction, const Argument&... argument) {
    std::ostringstream call;
    call << szFunction;
    ((call << ' ' << argument), ...);
    return previewCalled(call.str().c_str());
}

// The same for a function that makes a handle, when it succeeds.
int made(Handle* pMade, Handle hNew, int nResult) {
    *pMade = nResult == 0 ? hNew : *pMade;
    return nResult;
}

}  // namespace

EXPORTED int SDK_Login(Handle* pLogin, const NS_TARN_STRUCT::tagDeviceInfoEx* pDevice,
                       int nTimeoutMs) {
    return made(pLogin, 21, told("SDK_Login", *reinterpret_cast<const int*>(pDevice), nTimeoutMs));
}
TELLING(SDK_Logout, (Handle hLogin), hLogin)
TELLING(SDK_UnInit, ())

EXPORTED int SDK_FormatMessage(int nCode, char* szText, int nSize) {
    szText[nSize - 1] = '\0';
    return told("SDK_FormatMessage", nCode, nSize);
}

EXPORTED int SDK_VideoController_Open(Handle hLogin, int nChannel, int nStream, int nMode,
                                      Handle* pVideo) {
    return made(pVideo, 41, told("SDK_VideoController_Open", hLogin, nChannel, nStream, nMode));
}

EXPORTED int SDK_VideoController_SetAVDataCallback(Handle hVideo, FrameCallback* pFrames,
                                                   void* pUser) {
    g_pFrames = pFrames;
    g_pUser = pUser;
    return told("SDK_VideoController_SetAVDataCallback", hVideo);
}
TELLING(SDK_VideoController_StartVideo, (Handle hVideo), hVideo)
TELLING(SDK_VideoController_Ctrl, (Handle hVideo, int nControl), hVideo, nControl)
TELLING(SDK_VideoController_StopVideo, (Handle hVideo), hVideo)
TELLING(SDK_VideoController_Close, (Handle hVideo), hVideo)

TELLING(Player_Initial, (long hWindow), hWindow)
EXPORTED int Player_OpenStream(Handle* pPlayer, void* pHead, int nSize) {
    return made(pPlayer, 31, told("Player_OpenStream", pHead != nullptr, nSize));
}
TELLING(Player_SetAutoResizeFlag, (Handle hPlayer, int nFlag), hPlayer, nFlag)
TELLING(Player_Play, (Handle hPlayer, long hWindow), hPlayer, hWindow)
// Both callbacks are called at once, to see that they do nothing but return 0.
TELLING(Player_SetDrawCallBack, (Handle hPlayer, FrameCallback* pCallback, void*, int), hPlayer,
        pCallback(hPlayer, nullptr, nullptr))
TELLING(Player_SetDecodeCallBack, (Handle hPlayer, DecodeCallback* pCallback, void*), hPlayer,
        pCallback(hPlayer, nullptr, 0, nullptr, nullptr))
TELLING(Player_InputAVFrame, (Handle hPlayer, void* pFrame), hPlayer, *static_cast<int*>(pFrame))
TELLING(Player_Stop, (Handle hPlayer), hPlayer)
#ifndef PREVIEW_INCOMPLETE
TELLING(Player_CloseStream, (Handle hPlayer), hPlayer)
#endif

// For the test: hands over a frame from a thread of this library, and gives what the callback gave.
EXPORTED int deliverFrame(void* pFrame, bool bWithUser) {
    int nResult = -1;
    std::thread([&] { nResult = g_pFrames(41, pFrame, bWithUser ? g_pUser : nullptr); }).join();
    return nResult;
}
