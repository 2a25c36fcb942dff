// The network adapters of this machine with their addresses: those that are up, without the
// loopback, in the order and with the names of the system.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Product/Technic/InetAddr.h"

struct NetworkAdapter {
    std::string strName;
    std::vector<InetAddr> vecAddresses;  // port 0; may be empty
};

// False when the system refuses the list. Callable from any thread.
bool listAdapters(std::vector<NetworkAdapter>& vecAdapters);

// The names alone; an empty list when the system refuses it.
void getAdapterNames(std::vector<std::string>& vecNames);

// Puts another source behind the functions above, for tests; an empty one brings back the system's.
// To be called while no other thread uses the list.
using AdapterLister = std::function<bool(std::vector<NetworkAdapter>&)>;
void setAdapterLister(AdapterLister lister);
