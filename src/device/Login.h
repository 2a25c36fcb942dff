// A login that tells why it failed, and how long the exchanges of a session may take.
#pragma once

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/Export.h"

class DeviceInfoEx;

namespace fleetkit {

// Logs in as `FleetKit::Login` does, with the same needs of `info`, and gives the reason of a
// failure. `handle` is written on Success only, whatever stood there; the session belongs to the
// caller until `FleetKit::Logout`. Throws nothing. Callable from any thread, and several at once;
// takes as long as the resolver for a host name, and 16 s at most
// after that: 3 s for the connection and 13 s for the exchange.
//
// `timeoutMs` is the session's limit for its exchanges, that of the login among them, as
// `setExchangeTimeout` tells; the connection takes no longer either.
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
FLEETKIT_EXPORT int login(const DeviceInfoEx& info, long& handle, int timeoutMs = 0) noexcept;

// Limits the exchanges of a session that begin from now on, its keep-alives among them: each is
// over this many milliseconds after its request was sent, with ReceiveTimedOut (-213) if the answer
// is not complete. 0 and less bring back the fixed limits, which a new session has: 5 s from one
// piece of the answer to the next, and 10 s for all of it. Sending takes up to 3 s before that. An
// answer that carries a file gets its time anew with every 64 KiB.
//
// Success (0), or Failed (-1) when the handle names no session. Throws nothing. Callable from any
// thread; waits for no exchange under way.
//
//     fleetkit::setExchangeTimeout(session, 60 * 1000);  // for a device that is slow to answer
FLEETKIT_EXPORT int setExchangeTimeout(const long& handle, int timeoutMs) noexcept;

}  // namespace fleetkit
