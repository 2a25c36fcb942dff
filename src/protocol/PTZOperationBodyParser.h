// Body of a PTZ command and of its answer.
#pragma once

#include "protocol/ICommandBodyParser.h"

// Code, CameraId, PTZOperation and Name with their lengths in front, PTZId. Written from an
// EtPTZOperation, with the code of an EtResult if there is one; read into an EtPTZOperation and an
// EtResult. Older devices stop after Name: PTZId is then 1.
class PTZOperationBodyParser : public ICommandBodyParser {
public:
    bool createCommandBody(const DomainList& domains, CommandBuffer& out) const override;
    bool parseCommandBody(const CommandBuffer& in, DomainList& domains) const override;
};
