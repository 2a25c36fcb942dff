// The library that draws frames. The player's port is 31.
#include <cstdint>

#include "CallRecorder.h"

PREVIEW_EXPORT int Player_Initial(long hWindow) {
    return record("Player_Initial %ld", hWindow);
}

PREVIEW_EXPORT int Player_OpenStream(std::uint32_t* pPlayer, void* pHead, int nSize) {
    const int nResult = record("Player_OpenStream %d %d", pHead != nullptr, nSize);
    if (nResult == 0) {
        *pPlayer = 31;
    }
    return nResult;
}

PREVIEW_EXPORT int Player_SetAutoResizeFlag(std::uint32_t hPlayer, int nFlag) {
    return record("Player_SetAutoResizeFlag %u %d", hPlayer, nFlag);
}

PREVIEW_EXPORT int Player_Play(std::uint32_t hPlayer, long hWindow) {
    return record("Player_Play %u %ld", hPlayer, hWindow);
}

// Both callbacks are called at once, to see that they do nothing but return 0.
PREVIEW_EXPORT int Player_SetDrawCallBack(std::uint32_t hPlayer,
                                          int (*pCallback)(std::uint32_t, void*, void*), void*,
                                          int) {
    return record("Player_SetDrawCallBack %u %d", hPlayer, pCallback(hPlayer, nullptr, nullptr));
}

PREVIEW_EXPORT int Player_SetDecodeCallBack(
    std::uint32_t hPlayer, int (*pCallback)(std::uint32_t, void*, int, void*, void*), void*) {
    return record("Player_SetDecodeCallBack %u %d", hPlayer,
                  pCallback(hPlayer, nullptr, 0, nullptr, nullptr));
}

PREVIEW_EXPORT int Player_InputAVFrame(std::uint32_t hPlayer, void* pFrame) {
    return record("Player_InputAVFrame %u %p", hPlayer, pFrame);
}

PREVIEW_EXPORT int Player_Stop(std::uint32_t hPlayer) {
    return record("Player_Stop %u", hPlayer);
}

#ifndef PREVIEW_INCOMPLETE
PREVIEW_EXPORT int Player_CloseStream(std::uint32_t hPlayer) {
    return record("Player_CloseStream %u", hPlayer);
}
#endif
