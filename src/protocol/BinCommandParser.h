// Commands whose payload is a sub-command number and raw bytes.
#pragma once

#include "protocol/ICommandProtocolParser.h"

// The payload is the number, four bytes, and the data behind it; the command id has no part in it.
class BinCommandParser : public ICommandProtocolParser {
public:
    bool createCommand(const SafePointer<CommandParam>& param, CommandBuffer& out) const override;
    bool parseCommand(const CommandBuffer& in, SafePointer<CommandParam>& out) const override;
};
