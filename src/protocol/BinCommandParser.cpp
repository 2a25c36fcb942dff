// A number and raw bytes behind a head.
#include "protocol/BinCommandParser.h"

#include <utility>

#include "Product/Technic/MemoryGuard.h"
#include "protocol/BinCommandParam.h"
#include "protocol/CommandFrame.h"
#include "protocol/NetworkOrder.h"
#include "protocol/ProtocolType.h"

namespace {

constexpr std::uint32_t NumberLength = 4;

}  // namespace

bool BinCommandParser::createCommand(const SafePointer<CommandParam>& param,
                                     CommandBuffer& out) const {
    if (param.isNull() || param->getProtocolType() != ProtocolType::Binary) {
        return false;
    }
    const auto& command = static_cast<const BinCommandParam&>(*param);
    CommandBuffer payload;
    if (!payload.allocate(std::uint64_t{command.getDataLength()} + NumberLength) ||
        !payload.append(toNetworkOrder(static_cast<std::uint32_t>(command.getBinCommandId())))) {
        return false;
    }
    if (command.getData() && !payload.append(command.getData(), command.getDataLength())) {
        return false;
    }
    return joinCommand(command.getHead(), ProtocolType::Binary, payload, out);
}

bool BinCommandParser::parseCommand(const CommandBuffer& in, SafePointer<CommandParam>& out) const {
    SDKCommandHeadInfo head;
    CommandBuffer payload;
    if (!decodeCommandHead(in.data(), in.getLength(), head) || !copyPayload(in, head, payload) ||
        payload.getLength() < NumberLength) {
        return false;
    }
    return guardMemory([&] {
        auto pParam = std::make_unique<BinCommandParam>();
        pParam->setHead(head);
        pParam->setBinCommandId(static_cast<std::int32_t>(readNetworkU32(payload.data())));
        const std::uint32_t nDataLength = payload.getLength() - NumberLength;
        if (nDataLength > 0) {
            pParam->setData(payload.data() + NumberLength, static_cast<std::int32_t>(nDataLength));
        }
        out = wrapSafe<CommandParam>(std::move(pParam));
        return true;
    });
}
