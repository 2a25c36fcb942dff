// The generated table of commands, for the catalogue alone.
#pragma once

#include <cstddef>

#include "protocol/CommandCatalogue.h"

extern const fleetkit::CommandDescriptor commandTable[];
extern const std::size_t commandTableSize;
