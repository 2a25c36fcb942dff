// Body that carries a piece of a file.
#pragma once

#include "protocol/ICommandBodyParser.h"

// Length, pack flag, Code, data. Written from an EtFileDataPack and an EtResult, and read into
// them.
class FileReadDataCommandBodyParser : public ICommandBodyParser {
public:
    bool createCommandBody(const DomainList& domains, CommandBuffer& out) const override;
    bool parseCommandBody(const CommandBuffer& in, DomainList& domains) const override;
};
