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
    const DynamicLibrary& library = m_netLibrary;
    return m_netLibrary.open(NetLibraryName) &&  //
           find(library, "SDK_Login", m_net.login) && find(library, "SDK_Logout", m_net.logout) &&
           find(library, "SDK_UnInit", m_net.unInit) &&
           find(library, "SDK_FormatMessage", m_net.formatMessage) &&
           find(library, "SDK_VideoController_Open", m_net.open) &&
           find(library, "SDK_VideoController_SetAVDataCallback", m_net.setAVDataCallback) &&
           find(library, "SDK_VideoController_StartVideo", m_net.startVideo) &&
           find(library, "SDK_VideoController_Ctrl", m_net.control) &&
           find(library, "SDK_VideoController_StopVideo", m_net.stopVideo) &&
           find(library, "SDK_VideoController_Close", m_net.close);
}

bool PreviewLibraries::openPlayer() {
    const DynamicLibrary& library = m_playerLibrary;
    return m_playerLibrary.open(PlayerLibraryName) &&
           find(library, "Player_Initial", m_player.initial) &&
           find(library, "Player_OpenStream", m_player.openStream) &&
           find(library, "Player_SetAutoResizeFlag", m_player.setAutoResizeFlag) &&
           find(library, "Player_Play", m_player.play) &&
           find(library, "Player_SetDrawCallBack", m_player.setDrawCallBack) &&
           find(library, "Player_SetDecodeCallBack", m_player.setDecodeCallBack) &&
           find(library, "Player_InputAVFrame", m_player.inputAVFrame) &&
           find(library, "Player_Stop", m_player.stop) &&
           find(library, "Player_CloseStream", m_player.closeStream);
}
