// The exported login with a reason, and the time of a session's exchanges.
#include "device/Login.h"

#include "device/FleetKitImpl.h"

namespace fleetkit {

int login(const DeviceInfoEx& info, long& handle, int timeoutMs) noexcept {
    FleetKitImpl* pImpl = FleetKitImpl::instance();
    return pImpl ? pImpl->loginWithReason(info, handle, timeoutMs) : ErrorCode::Failed;
}

int setExchangeTimeout(const long& handle, int timeoutMs) noexcept {
    FleetKitImpl* pImpl = FleetKitImpl::instance();
    return pImpl ? pImpl->setExchangeTimeout(handle, timeoutMs) : ErrorCode::Failed;
}

}  // namespace fleetkit
