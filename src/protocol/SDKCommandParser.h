// Commands whose payload is a body of domain records.
#pragma once

#include "protocol/ICommandProtocolParser.h"

// The command id picks the form of the body (`createBodyParser`).
class SDKCommandParser : public ICommandProtocolParser {
public:
    bool createCommand(const SafePointer<CommandParam>& param, CommandBuffer& out) const override;
    bool parseCommand(const CommandBuffer& in, SafePointer<CommandParam>& out) const override;
};
