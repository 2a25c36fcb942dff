// The commands of the device protocol, with the reply that each of them gets.
#pragma once

#include <cstdint>
#include <vector>

#include "Product/Technic/Export.h"

namespace fleetkit {

// One command.
struct CommandDescriptor {
    std::uint32_t nRequestId;
    std::uint32_t nResponseId;  // 10000 is the plain acknowledgement
    std::uint32_t nParamGroup;  // shared by the commands that work on one parameter
    std::uint32_t nOperation;   // 1 writes, 2 reads, 3 is a third operation, 4 an action
};

// All rows, in the order that decides which of two rows with one request id is found. Constant:
// callable from any thread.
FLEETKIT_EXPORT const std::vector<CommandDescriptor>& commandCatalogue();

// The first row with this request id, or null.
FLEETKIT_EXPORT const CommandDescriptor* findCommand(std::uint32_t nRequestId) noexcept;

}  // namespace fleetkit
