// The one parser of command heads.
#pragma once

#include "protocol/ICommandHeadParser.h"

class SDKCommandHeadParser : public ICommandHeadParser {
public:
    std::uint32_t getCommandHeadLength() const override;
    bool createCommandHead(const SafePointer<CommandHeadInfo>& head,
                           CommandBuffer& out) const override;
    bool parseCommandHead(const std::uint8_t* pBytes, std::uint32_t nLength,
                          SafePointer<CommandHeadInfo>& head) const override;
    bool parseCommandHead(const CommandBuffer& in,
                          SafePointer<CommandHeadInfo>& head) const override;
};
