// The exit statuses that scripts can rely on; `fleetctl help exit-codes` tells them.
#pragma once

namespace ExitCode {

enum Value : int {
    Success = 0,          // everything asked for was done
    OperationFailed = 1,  // at least one operation failed, or the output could not be written
    WrongUsage = 2,       // wrong arguments, names, fields or values
    LoginFailed = 3,      // no session with the device
};

}  // namespace ExitCode
