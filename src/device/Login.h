// A login that tells why it failed.
#pragma once

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/Export.h"

class DeviceInfoEx;

namespace fleetkit {

// Logs in as `FleetKit::Login` does, with the same needs of `info`, and gives the reason of a
// failure. `handle` is written on Success only, whatever stood there; the session belongs to the
// caller until `FleetKit::Logout`. Throws nothing. Callable from any thread, and several at once;
// takes as long as the resolver for a host name, 3 s for the connection, and 5 s for each read of
// the answer.
//
// - Success (0): logged in.
// - Failed (-1): the library has been unloaded, or found no memory when it was loaded.
// - NoMemory (-2): an exception was caught, or memory for the connection or the answer was refused.
// - HostNotFound (-218): the address is empty, or a host name that stands for no address.
// - SocketOpenFailed (-202): no socket could be opened, or none of this IP version.
// - ConnectFailed (-204): refused, out of reach, or no connection within 3 s.
// - CipherFailed (-663): user name or password could not be enciphered; nothing was sent.
// - SendFailed (-210), ReceiveFailed (-212), ReceiveTimedOut (-213), DecodeFailed (-233),
//   EncodeFailed (-234), HeadRefused (-402), BadReply (-501): something accepted the connection,
//   but gave no valid answer; as in `FleetKit.h`.
// - Any other number: the device refused, for a reason of its own, such as a wrong password.
//
//     long session = 0;
//     int code = fleetkit::login(device, session);
//     if (code != fleetkit::ErrorCode::Success) {
//         std::printf("login: %s (%d)\n", fleetkit::errorMeaning(code), code);
//     }
FLEETKIT_EXPORT int login(const DeviceInfoEx& info, long& handle) noexcept;

}  // namespace fleetkit
