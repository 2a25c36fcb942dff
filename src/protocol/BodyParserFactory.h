// Which form of body a command has.
#pragma once

#include <cstdint>
#include <memory>

#include "protocol/ICommandBodyParser.h"

// A new parser for the form in which a command of this id is written and read: XML, but for the
// nine ids that have a binary form. Null without memory.
std::unique_ptr<ICommandBodyParser> createBodyParser(std::uint32_t nCommandID);

bool hasBinaryForm(std::uint32_t nCommandID);
