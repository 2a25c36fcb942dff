// The one global instance behind the static functions of `FleetKit`.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "Product/Technic/KXMutex.h"
#include "Product/Technic/ThreadAnnotations.h"
#include "device/TarnStruct.h"
#include "device/VideoContext.h"
#include "domain/DeviceInfoEx.h"
#include "session/SDK_DeviceSessionCreator.h"

// The one of the module is made at its load and never destroyed, as other threads may be in it
// while the process ends; only its parts go then, which does not happen in a child of the process.
// Callable from any thread, except for `startPlay`: one thread at a time.
class FleetKitImpl {
public:
    static FleetKitImpl* instance() noexcept;  // null if there was no memory for it

    FleetKitImpl();
    ~FleetKitImpl();
    FleetKitImpl(const FleetKitImpl&) = delete;
    FleetKitImpl& operator=(const FleetKitImpl&) = delete;

    // `fleetkit::login` and `fleetkit::setExchangeTimeout`.
    int loginWithReason(const DeviceInfoEx& info, long& handle, int nTimeoutMs) noexcept;
    int setExchangeTimeout(long handle, int nTimeoutMs) noexcept;

    // The functions of these names in `FleetKit`.
    int login(const DeviceInfoEx& info, long& handle) noexcept;
    int logout(long handle) noexcept;
    int startPlay(long hWindow, const NS_TARN_STRUCT::tagDeviceInfoEx& device);

    // Lets go of the parts, of the video once a start under way is over; open sessions are not
    // logged out. Afterwards logins fail.
    void unload() noexcept;

private:
    // `createSession` takes a copy of the login data.
    template <class CreateSession>
    int guardLogin(const DeviceInfoEx& info, CreateSession createSession) noexcept;
    std::shared_ptr<VideoContext> video();  // null after unload
    int play(long hWindow, VideoContext& video);
    void stop(VideoContext& video);

    std::atomic<bool> m_bLoaded{true};
    SDK_DeviceSessionCreator m_sessionCreator;
    std::uint32_t m_hNetLogin = 0;
    std::uint32_t m_hPlayer = 0;
    KXMutex m_mutex;
    std::shared_ptr<VideoContext> m_pVideo KX_GUARDED_BY(m_mutex);
};
