// What a transport needs to know of command heads: how long they are, and what they say.
#pragma once

#include <cstdint>

#include "Product/Technic/SafePointer.h"
#include "protocol/CommandBuffer.h"
#include "protocol/CommandHeadInfo.h"

// Stateless: one parser may serve any number of transports and threads.
class ICommandHeadParser {
public:
    virtual ~ICommandHeadParser() = default;

    virtual std::uint32_t getCommandHeadLength() const = 0;

    // Writes the head's bytes into `out`; false unless the head's kind is 1. An empty pointer
    // raises the error of an empty pointer.
    virtual bool createCommandHead(const SafePointer<CommandHeadInfo>& head,
                                   CommandBuffer& out) const = 0;

    // Both put a new head into `head`, or give false and leave it as it was.
    virtual bool parseCommandHead(const std::uint8_t* pBytes, std::uint32_t nLength,
                                  SafePointer<CommandHeadInfo>& head) const = 0;
    virtual bool parseCommandHead(const CommandBuffer& in,
                                  SafePointer<CommandHeadInfo>& head) const = 0;
};
