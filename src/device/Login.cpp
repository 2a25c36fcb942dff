// The exported login with a reason.
#include "device/Login.h"

#include "device/FleetKitImpl.h"

namespace fleetkit {

int login(const DeviceInfoEx& info, long& handle) noexcept {
    FleetKitImpl* pImpl = FleetKitImpl::instance();
    return pImpl ? pImpl->loginWithReason(info, handle) : ErrorCode::Failed;
}

}  // namespace fleetkit
