// What the program was asked for on its command line.
#pragma once

#include "virtual-device/DeviceOptions.h"

struct CommandLine {
    DeviceOptions device;
    int nCount = 1;    // devices in this process
    int nSeconds = 0;  // until the program ends by itself; 0 for never
    int nExit = -1;    // set when there is nothing more to do than to end with this status
};

CommandLine readCommandLine(int nCount, const char* const* pArguments);
