// The result codes that a virtual device puts into its answers.
#pragma once

namespace DeviceResult {

enum Value : int {
    Success = 0,
    MalformedRequest = 1,  // the body does not decode
    WrongCredentials = 2,  // user name or password
    NoSession = 3,         // the head's session number is not that of this connection
    UnknownCommand = 4,    // not a command of the protocol
    NotSupported = 5,      // a command of the protocol that this device does not serve
    MissingRecord = 6,     // the request lacks a record that the command needs
    BadParameter = 7,      // a record holds what cannot be set
    NoSuchChannel = 8,
    NoSuchStream = 9,
    TooManyConnections = 10,  // as many clients as the device takes are logged in
};

}  // namespace DeviceResult
