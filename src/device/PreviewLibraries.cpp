// The names under which the libraries and their functions are found.
#include "device/PreviewLibraries.h"

namespace {

constexpr const char* NetLibraryName = "libTarnNetSDK.so";
constexpr const char* PlayerLibraryName = "libTarnPlayerSDK.so";

template <class Function>
bool find(const DynamicLibrary& library, const char* szName, Function*& pFunction) {
    pFunction = library.function<Function>(szName);
    return pFunction != nullptr;
}

}  // namespace

bool PreviewLibraries::load() {
    const KXMutexGuard guard(m_mutex);
    if (!m_bLoaded) {
        m_bLoaded = openNet() && openPlayer();
    }
    return m_bLoaded;
}

bool PreviewLibraries::isLoaded() const {
    const KXMutexGuard guard(m_mutex);
    return m_bLoaded;
}

bool PreviewLibraries::openNet() {
    const DynamicLibrary& library = m_objNetLibrary;
    return m_objNetLibrary.open(NetLibraryName) &&  //
           find(library, "SDK_Login", m_objNet.login) &&
           find(library, "SDK_Logout", m_objNet.logout) &&
           find(library, "SDK_UnInit", m_objNet.unInit) &&
           find(library, "SDK_FormatMessage", m_objNet.formatMessage) &&
           find(library, "SDK_VideoController_Open", m_objNet.open) &&
           find(library, "SDK_VideoController_SetAVDataCallback", m_objNet.setAVDataCallback) &&
           find(library, "SDK_VideoController_StartVideo", m_objNet.startVideo) &&
           find(library, "SDK_VideoController_Ctrl", m_objNet.control) &&
           find(library, "SDK_VideoController_StopVideo", m_objNet.stopVideo) &&
           find(library, "SDK_VideoController_Close", m_objNet.close);
}

bool PreviewLibraries::openPlayer() {
    const DynamicLibrary& library = m_objPlayerLibrary;
    return m_objPlayerLibrary.open(PlayerLibraryName) &&
           find(library, "Player_Initial", m_objPlayer.initial) &&
           find(library, "Player_OpenStream", m_objPlayer.openStream) &&
           find(library, "Player_SetAutoResizeFlag", m_objPlayer.setAutoResizeFlag) &&
           find(library, "Player_Play", m_objPlayer.play) &&
           find(library, "Player_SetDrawCallBack", m_objPlayer.setDrawCallBack) &&
           find(library, "Player_SetDecodeCallBack", m_objPlayer.setDecodeCallBack) &&
           find(library, "Player_InputAVFrame", m_objPlayer.inputAVFrame) &&
           find(library, "Player_Stop", m_objPlayer.stop) &&
           find(library, "Player_CloseStream", m_objPlayer.closeStream);
}
