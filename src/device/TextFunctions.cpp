// The two functions over texts of the standard library, which those over texts of Qt call.
#include "device/TextFunctions.h"

#include "device/DeviceSearchChannel.h"
#include "device/FacadeCalls.h"

using namespace FacadeCalls;

namespace fleetkit {

int setDevicePasswd(const long& handle, const std::string& oldPassword,
                    const std::string& newPassword) {
    return perform(handle, &Operations::setPassword, oldPassword, newPassword);
}

int setDeviceHostNetwork(const std::string& deviceId, const HostNetwork& network,
                         const User& user) {
    const CancellationDeferral deferral;
    return FleetKitImpl::instance() ? setHostNetworkByMulticast(deviceId, network, user)
                                    : ErrorCode::Failed;
}

}  // namespace fleetkit
