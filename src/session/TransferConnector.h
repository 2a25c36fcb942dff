// From the login data of a device to a connected transport.
#pragma once

#include "Product/Technic/InetAddr.h"
#include "Product/Technic/SafePointer.h"
#include "domain/DeviceInfoEx.h"
#include "session/ITransfer.h"

// The address to connect to: the router's with its control port when router mapping is on, the
// device's own otherwise, looked up when it is a name (this may take as long as the resolver does).
// The IP version is always that of the device's address. What cannot be looked up gives an empty
// text, to which no connect succeeds.
InetAddr getDialAddr(const DeviceInfoEx& info);

// Without state, one for each login. Making it registers both kinds of transport.
class TransferConnector {
public:
    TransferConnector();

    // Makes a transport of that `TransferKind`, connects it within the time-out (milliseconds,
    // without limit when negative) and puts it into `out`, which stays as it was on failure.
    // NoTransferFactory for a kind that is not registered, NoMemory, SocketOpenFailed or
    // ConnectFailed.
    int connect(const DeviceInfoEx& info, int nKind, SafePointer<ITransfer>& out, int nTimeoutMs);
    // The same to the address that `getDialAddr` gave.
    int connect(const InetAddr& dial, int nKind, SafePointer<ITransfer>& out, int nTimeoutMs);
};
