// The two closed libraries of live preview: one delivers frames, the other decodes and draws them.
#pragma once

#include <cstdint>

#include "Product/Technic/KXMutex.h"
#include "Product/Technic/ThreadAnnotations.h"
#include "Product/Technic/platform/DynamicLibrary.h"
#include "device/TarnStruct.h"

// Their functions, all giving 0 for success. Frames are opaque here.
using FrameCallback = int(std::uint32_t hSource, void* pFrame, void* pUser);
using DrawCallback = int(std::uint32_t hPlayer, void* pCanvas, void* pUser);
using DecodeCallback = int(std::uint32_t hPlayer, void* pPicture, int nSize, void* pInfo,
                           void* pUser);

struct TarnNetSDK {
    int (*login)(std::uint32_t* pLogin, const NS_TARN_STRUCT::tagDeviceInfoEx* pDevice,
                 int nTimeoutMs);
    int (*logout)(std::uint32_t hLogin);
    int (*unInit)();
    int (*formatMessage)(int nCode, char* szText, int nSize);
    int (*open)(std::uint32_t hLogin, int nChannel, int nStream, int nMode,
                std::uint32_t* pController);
    int (*setAVDataCallback)(std::uint32_t hController, FrameCallback* pCallback, void* pUser);
    int (*startVideo)(std::uint32_t hController);
    int (*control)(std::uint32_t hController, int nControl);
    int (*stopVideo)(std::uint32_t hController);
    int (*close)(std::uint32_t hController);
};

struct TarnPlayerSDK {
    int (*initial)(long hWindow);
    int (*openStream)(std::uint32_t* pPlayer, void* pHead, int nSize);
    int (*setAutoResizeFlag)(std::uint32_t hPlayer, int nFlag);
    int (*play)(std::uint32_t hPlayer, long hWindow);
    int (*setDrawCallBack)(std::uint32_t hPlayer, DrawCallback* pCallback, void* pUser, int nFlag);
    int (*setDecodeCallBack)(std::uint32_t hPlayer, DecodeCallback* pCallback, void* pUser);
    int (*inputAVFrame)(std::uint32_t hPlayer, void* pFrame);
    int (*stop)(std::uint32_t hPlayer);
    int (*closeStream)(std::uint32_t hPlayer);
};

// Takes the steps in turn, up to the first that does not give 0, and gives what the last one gave.
template <class... Steps>
int inTurn(const Steps&... steps) {
    int nCode = 0;
    static_cast<void>((((nCode = steps()) == 0) && ...));
    return nCode;
}

// Keeps both libraries open from the first `load` that found them to its own end.
class PreviewLibraries {
public:
    // True when both are there with all functions. Looks for them by name, again after a failure.
    // Callable from any thread.
    bool load();
    bool isLoaded() const;

    // Filled once `load` gave true, and constant from then on.
    const TarnNetSDK& net() const noexcept { return m_net; }
    const TarnPlayerSDK& player() const noexcept { return m_player; }

private:
    bool openNet();
    bool openPlayer();

    mutable KXMutex m_mutex;
    bool m_bLoaded KX_GUARDED_BY(m_mutex) = false;
    DynamicLibrary m_netLibrary;
    DynamicLibrary m_playerLibrary;
    TarnNetSDK m_net{};
    TarnPlayerSDK m_player{};
};
