// The network interfaces of this machine, as the operating system lists them.
#pragma once

#include <vector>

#include "Product/Technic/AdapterList.h"

// Appends the interfaces that are up, without the loopback, in the system's order. False when the
// system refuses the list.
bool listSystemAdapters(std::vector<NetworkAdapter>& vecAdapters);
