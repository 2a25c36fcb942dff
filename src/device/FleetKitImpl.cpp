// Load and unload, logins, and the order in which live preview is started and undone.
#include "device/FleetKitImpl.h"

#include <new>

#include "Product/Technic/ErrorCode.h"
#include "session/TCPTransferFactory.h"
#include "session/TransferConnector.h"

using namespace fleetkit;

namespace {

constexpr int ReplyTimeoutMs = 5000;
constexpr int PreviewLoginTimeoutMs = 5000;
constexpr int FitToWindow = 1;

int onDraw(std::uint32_t, void*, void*) {
    return 0;
}

int onDecode(std::uint32_t, void*, int, void*, void*) {
    return 0;
}

FleetKitImpl globalInstance;

}  // namespace

FleetKitImpl* FleetKitImpl::instance() noexcept {
    return &globalInstance;
}

FleetKitImpl::FleetKitImpl() {
    registerTCPTransfer();
    m_pSessionCreator.reset(new (std::nothrow) SDK_DeviceSessionCreator);
    m_pVideoContext.reset(new (std::nothrow) VideoContext);
}

FleetKitImpl::~FleetKitImpl() {
    unload();
}

void FleetKitImpl::unload() {
    m_pSessionCreator.reset();
    m_pVideoContext.reset();
}

template <class CreateSession>
int FleetKitImpl::guardLogin(const DeviceInfoEx& info, CreateSession createSession) noexcept {
    try {
        // A copy, as the caller may change its record while the login is under way.
        return m_pSessionCreator ? createSession(DeviceInfoEx(info)) : ErrorCode::Failed;
    } catch (...) {
        return ErrorCode::NoMemory;
    }
}

int FleetKitImpl::login(const DeviceInfoEx& info, long& handle) noexcept {
    return guardLogin(info, [&](const DeviceInfoEx& copy) -> int {
        // Not even the reason of a failure is looked at: only a handle tells.
        long hSession = handle;
        m_pSessionCreator->createSession(copy, ReplyTimeoutMs, hSession);
        if (hSession <= 0) {
            return ErrorCode::Failed;
        }
        handle = hSession;
        return ErrorCode::Success;
    });
}

int FleetKitImpl::loginWithReason(const DeviceInfoEx& info, long& handle) noexcept {
    return guardLogin(info, [&](const DeviceInfoEx& copy) -> int {
        const int nCode = m_pSessionCreator->createSession(copy, ReplyTimeoutMs, handle);
        // A name that stands for nothing is dialled as an empty address, which fails like a
        // refusal.
        return nCode == ErrorCode::ConnectFailed && getDialAddr(copy).getIP().empty()
                   ? ErrorCode::HostNotFound
                   : nCode;
    });
}

int FleetKitImpl::logout(long handle) noexcept {
    try {
        return m_pSessionCreator ? m_pSessionCreator->destroySession(handle) : ErrorCode::Failed;
    } catch (...) {
        return ErrorCode::Failed;
    }
}

int FleetKitImpl::startPlay(long hWindow, const NS_TARN_STRUCT::tagDeviceInfoEx& device) {
    if (!m_pVideoContext || !m_pVideoContext->libraries().load()) {
        return ErrorCode::PreviewFailed;
    }
    int nCode =
        m_pVideoContext->libraries().net().login(&m_hNetLogin, &device, PreviewLoginTimeoutMs);
    if (nCode != ErrorCode::Success) {
        return nCode;
    }
    nCode = play(hWindow);
    if (nCode != ErrorCode::Success) {
        stop();
    }
    return nCode;
}

int FleetKitImpl::play(long hWindow) {
    const TarnPlayerSDK& player = m_pVideoContext->libraries().player();
    return inTurn([&] { return player.initial(hWindow); },
                  [&] { return player.openStream(&m_hPlayer, nullptr, 0); },
                  [&] { return player.setAutoResizeFlag(m_hPlayer, FitToWindow); },
                  [&] { return player.play(m_hPlayer, hWindow); },
                  [&] {
                      m_pVideoContext->setStream(m_hNetLogin, m_hPlayer);
                      return m_pVideoContext->start();
                  },
                  // The player needs both callbacks, though nothing is left for them to do.
                  [&] { return player.setDrawCallBack(m_hPlayer, onDraw, nullptr, 0); },
                  [&] { return player.setDecodeCallBack(m_hPlayer, onDecode, nullptr); });
}

void FleetKitImpl::stop() {
    const TarnPlayerSDK& player = m_pVideoContext->libraries().player();
    m_pVideoContext->stop();
    if (m_hPlayer != 0 && player.stop(m_hPlayer) == 0 && player.closeStream(m_hPlayer) == 0) {
        m_hPlayer = 0;
    }
}
