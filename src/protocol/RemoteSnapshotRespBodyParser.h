// Body of an answer that carries an image.
#pragma once

#include "protocol/ICommandBodyParser.h"

// Length, Code, data. Written from a DataBuffer and an EtResult, and read into them. A body without
// data is refused on reading, so a device cannot answer with a code alone.
class RemoteSnapshotRespBodyParser : public ICommandBodyParser {
public:
    bool createCommandBody(const DomainList& domains, CommandBuffer& out) const override;
    bool parseCommandBody(const CommandBuffer& in, DomainList& domains) const override;
};
