// Body of the command that imports parameters.
#pragma once

#include "protocol/ICommandBodyParser.h"

// Length, data. Written from a DataBuffer, and read into one; a body without data is refused on
// reading.
class ParamImportReqBodyParser : public ICommandBodyParser {
public:
    bool createCommandBody(const DomainList& domains, CommandBuffer& out) const override;
    bool parseCommandBody(const CommandBuffer& in, DomainList& domains) const override;
};
