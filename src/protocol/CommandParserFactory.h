// The parsers of whole commands and of their heads, by protocol type.
#pragma once

#include <memory>

#include "protocol/ICommandHeadParser.h"
#include "protocol/ICommandProtocolParser.h"

// A new `SDKCommandParser` for protocol type 1, a new `BinCommandParser` for 3, else null.
std::unique_ptr<ICommandProtocolParser> createCommandProtocolParser(int nProtocolType);

// A new parser for protocol type 1, and an empty pointer for any other type: binary commands have
// the same head, and their parser reads it itself.
SafePointer<ICommandHeadParser> createCommandHeadParser(int nProtocolType);
