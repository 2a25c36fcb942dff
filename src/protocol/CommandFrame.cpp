// Joins and parts the two pieces of a command.
#include "protocol/CommandFrame.h"

#include <utility>

bool joinCommand(SDKCommandHeadInfo head, std::uint16_t nProtocolType, const CommandBuffer& payload,
                 CommandBuffer& out) {
    head.setProtocolType(nProtocolType);
    head.setPayloadLength(payload.getLength());
    CommandBuffer headBytes;
    CommandBuffer whole;
    if (!encodeCommandHead(head, headBytes) ||
        !whole.allocate(std::uint64_t{headBytes.getLength()} + payload.getLength()) ||
        !whole.append(headBytes) || !whole.append(payload)) {
        return false;
    }
    out = std::move(whole);
    return true;
}

bool copyPayload(const CommandBuffer& in, const SDKCommandHeadInfo& head, CommandBuffer& payload) {
    const std::uint64_t nLength = head.getPayloadLength();
    if (SDKCommandHeadInfo::WireLength + nLength > in.getCapacity() ||
        !payload.allocate(nLength + 1)) {
        return false;
    }
    return nLength == 0 ||
           payload.append(in.data() + SDKCommandHeadInfo::WireLength, head.getPayloadLength());
}
