// The functions that take texts of Qt in the class FleetKit, for texts of the standard library: who
// uses these needs neither Qt nor libFleetKitQt.
#pragma once

#include <string>

#include "Product/Technic/Export.h"

class HostNetwork;
class User;

namespace fleetkit {

// `FleetKit::setDevicePasswd`: changes the password of the session's user. The texts are UTF-8, as
// all that travels. An exchange, or CipherFailed (-663) and nothing is sent. Callable from any
// thread.
FLEETKIT_EXPORT int setDevicePasswd(const long& handle, const std::string& oldPassword,
                                    const std::string& newPassword);

// `FleetKit::setDeviceHostNetwork` without a session, by multicast, with its codes. The bytes of
// `deviceId` go out as they are. Callable from any thread.
FLEETKIT_EXPORT int setDeviceHostNetwork(const std::string& deviceId, const HostNetwork& network,
                                         const User& user);

}  // namespace fleetkit
