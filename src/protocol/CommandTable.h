// The generated tables of commands and functions, for the catalogue alone.
#pragma once

#include <iterator>

#include "protocol/CommandCatalogue.h"

namespace fleetkit {

extern const Rows<CommandDescriptor> commandTable;
extern const Rows<FunctionDescriptor> functionTable;

}  // namespace fleetkit
