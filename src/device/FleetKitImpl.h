// The one global instance behind the static functions of `FleetKit`.
#pragma once

#include <cstdint>
#include <memory>

#include "device/TarnStruct.h"
#include "device/VideoContext.h"
#include "domain/DeviceInfoEx.h"
#include "session/SDK_DeviceSessionCreator.h"

// Lives from the load of the module to its unload. Callable from any thread, except for
// `startPlay`: one thread at a time.
class FleetKitImpl {
public:
    static FleetKitImpl* instance() noexcept;

    FleetKitImpl();
    ~FleetKitImpl();
    FleetKitImpl(const FleetKitImpl&) = delete;
    FleetKitImpl& operator=(const FleetKitImpl&) = delete;

    // `fleetkit::login`.
    int loginWithReason(const DeviceInfoEx& info, long& handle) noexcept;

    // The functions of these names in `FleetKit`.
    int login(const DeviceInfoEx& info, long& handle) noexcept;
    int logout(long handle) noexcept;
    int startPlay(long hWindow, const NS_TARN_STRUCT::tagDeviceInfoEx& device);

    // Lets go of the parts; open sessions are not logged out. Afterwards logins fail.
    void unload();

private:
    // `createSession` takes a copy of the login data.
    template <class CreateSession>
    int guardLogin(const DeviceInfoEx& info, CreateSession createSession) noexcept;
    int play(long hWindow);
    void stop();

    std::unique_ptr<SDK_DeviceSessionCreator> m_pSessionCreator;
    std::uint32_t m_hNetLogin = 0;
    std::uint32_t m_hPlayer = 0;
    std::unique_ptr<VideoContext> m_pVideoContext;
};
