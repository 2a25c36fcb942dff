// Body of the command that writes to a serial port.
#pragma once

#include "protocol/ICommandBodyParser.h"

// Length, data, ComId, ComType. Written from an EtCOMWriteData, and read into one; a body without
// data is refused on reading.
class COMWriteDataCommandBodyParser : public ICommandBodyParser {
public:
    bool createCommandBody(const DomainList& domains, CommandBuffer& out) const override;
    bool parseCommandBody(const CommandBuffer& in, DomainList& domains) const override;
};
