// Load and unload, logins, and the order in which live preview is started and undone.
#include "device/FleetKitImpl.h"

#include <utility>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/MemoryGuard.h"
#include "Product/Technic/platform/NativeThread.h"
#include "session/DeviceSessionManager.h"
#include "session/TCPTransferFactory.h"
#include "session/TransferConnector.h"

using namespace fleetkit;

namespace {

constexpr int PreviewLoginTimeoutMs = 5000;
constexpr int FitToWindow = 1;

// The fixed limits, unless there is one of the caller.
ExchangeLimits limitsOf(int nTimeoutMs) {
    return nTimeoutMs > 0 ? ExchangeLimits{nTimeoutMs, nTimeoutMs} : ExchangeLimits{};
}

int onDraw(std::uint32_t, void*, void*) {
    return 0;
}

int onDecode(std::uint32_t, void*, int, void*, void*) {
    return 0;
}

class Module {
public:
    Module() noexcept {
        guardMemory([this] {
            m_pInstance = std::make_unique<FleetKitImpl>().release();
            return true;
        });
    }

    // The threads and sessions are those of the process that loaded the module.
    ~Module() {
        if (m_pInstance != nullptr && currentProcessId() == m_nProcessId) {
            m_pInstance->unload();
        }
    }

    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    FleetKitImpl* instance() const noexcept { return m_pInstance; }

private:
    FleetKitImpl* m_pInstance = nullptr;
    std::uint32_t m_nProcessId = currentProcessId();
};

Module module;

}  // namespace

FleetKitImpl* FleetKitImpl::instance() noexcept {
    return module.instance();
}

FleetKitImpl::FleetKitImpl() : m_pVideo(std::make_shared<VideoContext>()) {
    registerTCPTransfer();
}

FleetKitImpl::~FleetKitImpl() {
    unload();
}

void FleetKitImpl::unload() noexcept {
    m_bLoaded = false;
    std::shared_ptr<VideoContext> pVideo;
    const KXMutexGuard guard(m_mutex);
    pVideo.swap(m_pVideo);
}

std::shared_ptr<VideoContext> FleetKitImpl::video() {
    const KXMutexGuard guard(m_mutex);
    return m_pVideo;
}

template <class CreateSession>
int FleetKitImpl::guardLogin(const DeviceInfoEx& info, CreateSession createSession) noexcept {
    const CancellationDeferral deferral;
    try {
        // A copy, as the caller may change its record while the login is under way.
        return m_bLoaded ? createSession(DeviceInfoEx(info)) : ErrorCode::Failed;
    } catch (...) {
        return ErrorCode::NoMemory;
    }
}

int FleetKitImpl::login(const DeviceInfoEx& info, long& handle) noexcept {
    return guardLogin(info, [&](const DeviceInfoEx& copy) -> int {
        // Not even the reason of a failure is looked at: only a handle tells.
        long hSession = handle;
        m_sessionCreator.createSession(copy, {}, hSession);
        if (hSession <= 0) {
            return ErrorCode::Failed;
        }
        handle = hSession;
        return ErrorCode::Success;
    });
}

int FleetKitImpl::loginWithReason(const DeviceInfoEx& info, long& handle, int nTimeoutMs) noexcept {
    return guardLogin(info, [&](const DeviceInfoEx& copy) -> int {
        const int nCode = m_sessionCreator.createSession(copy, limitsOf(nTimeoutMs), handle);
        // A name that stands for nothing is dialled as an empty address, which fails like a
        // refusal.
        return nCode == ErrorCode::ConnectFailed && getDialAddr(copy).getIP().empty()
                   ? ErrorCode::HostNotFound
                   : nCode;
    });
}

int FleetKitImpl::setExchangeTimeout(long handle, int nTimeoutMs) noexcept {
    try {
        SafePointer<SDKSession> session;
        if (!m_bLoaded || !DeviceSessionManager::instance().findSession(handle, session)) {
            return ErrorCode::Failed;
        }
        session->setLimits(limitsOf(nTimeoutMs));
        return ErrorCode::Success;
    } catch (...) {
        return ErrorCode::Failed;
    }
}

int FleetKitImpl::logout(long handle) noexcept {
    const CancellationDeferral deferral;
    try {
        return m_bLoaded ? m_sessionCreator.destroySession(handle) : ErrorCode::Failed;
    } catch (...) {
        return ErrorCode::Failed;
    }
}

int FleetKitImpl::startPlay(long hWindow, const NS_TARN_STRUCT::tagDeviceInfoEx& device) {
    const CancellationDeferral deferral;
    const std::shared_ptr<VideoContext> pVideo = video();
    if (!pVideo || !pVideo->libraries().load()) {
        return ErrorCode::PreviewFailed;
    }
    int nCode = pVideo->libraries().net().login(&m_hNetLogin, &device, PreviewLoginTimeoutMs);
    if (nCode != ErrorCode::Success) {
        return nCode;
    }
    nCode = play(hWindow, *pVideo);
    if (nCode != ErrorCode::Success) {
        stop(*pVideo);
    }
    return nCode;
}

int FleetKitImpl::play(long hWindow, VideoContext& video) {
    const TarnPlayerSDK& player = video.libraries().player();
    return inTurn([&] { return player.initial(hWindow); },
                  [&] { return player.openStream(&m_hPlayer, nullptr, 0); },
                  [&] { return player.setAutoResizeFlag(m_hPlayer, FitToWindow); },
                  [&] { return player.play(m_hPlayer, hWindow); },
                  [&] {
                      video.setStream(m_hNetLogin, m_hPlayer);
                      return video.start();
                  },
                  // The player needs both callbacks, though nothing is left for them to do.
                  [&] { return player.setDrawCallBack(m_hPlayer, onDraw, nullptr, 0); },
                  [&] { return player.setDecodeCallBack(m_hPlayer, onDecode, nullptr); });
}

void FleetKitImpl::stop(VideoContext& video) {
    const TarnPlayerSDK& player = video.libraries().player();
    video.stop();
    if (m_hPlayer != 0 && player.stop(m_hPlayer) == 0 && player.closeStream(m_hPlayer) == 0) {
        m_hPlayer = 0;
    }
}
