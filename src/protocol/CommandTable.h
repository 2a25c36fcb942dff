// The generated table of commands, for the catalogue alone.
#pragma once

#include <cstddef>

#include "protocol/CommandCatalogue.h"

extern const CommandDescriptor commandTable[];
extern const std::size_t commandTableSize;
