// Head and payload as one block: what both kinds of command have in common.
#pragma once

#include <cstdint>

#include "protocol/CommandBuffer.h"
#include "protocol/SDKCommandHeadInfo.h"

// Puts `head`, with protocol type and payload length set here, and `payload` into one block of
// exactly their size. False, with `out` as it was, without memory.
bool joinCommand(SDKCommandHeadInfo head, std::uint16_t nProtocolType, const CommandBuffer& payload,
                 CommandBuffer& out);

// Copies the payload that `head` announces out of `in`, with one zero byte behind it. The block of
// `in` must hold all of it; bytes of the block that were never written are zero.
bool copyPayload(const CommandBuffer& in, const SDKCommandHeadInfo& head, CommandBuffer& payload);
