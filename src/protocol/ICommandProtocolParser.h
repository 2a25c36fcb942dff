// Whole commands: one contiguous block of head and payload from a command in memory, and back.
#pragma once

#include "Product/Technic/SafePointer.h"
#include "protocol/CommandBuffer.h"
#include "protocol/CommandParam.h"

// Stateless. `out` is touched only on success.
class ICommandProtocolParser {
public:
    virtual ~ICommandProtocolParser() = default;

    // False for an empty pointer, for a command of the other protocol type, and for a command that
    // cannot be written. An empty pointer among the records raises the error of an empty pointer.
    virtual bool createCommand(const SafePointer<CommandParam>& param,
                               CommandBuffer& out) const = 0;

    // `in` holds a head and its whole payload. False for everything that is not a command, for a
    // head that announces more than the block holds, and when memory or safe pointers run out; no
    // message raises an exception.
    virtual bool parseCommand(const CommandBuffer& in, SafePointer<CommandParam>& out) const = 0;
};
