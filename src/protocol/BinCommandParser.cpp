// A number and raw bytes behind a head.
#include "protocol/BinCommandParser.h"

#include <utility>

#include "Product/Technic/RoomGuard.h"
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
    const auto& objParam = static_cast<const BinCommandParam&>(*param);
    CommandBuffer objPayload;
    if (!objPayload.allocate(std::uint64_t{objParam.getDataLength()} + NumberLength) ||
        !objPayload.append(
            toNetworkOrder(static_cast<std::uint32_t>(objParam.getBinCommandId())))) {
        return false;
    }
    if (objParam.getData() && !objPayload.append(objParam.getData(), objParam.getDataLength())) {
        return false;
    }
    return joinCommand(objParam.getHead(), ProtocolType::Binary, objPayload, out);
}

bool BinCommandParser::parseCommand(const CommandBuffer& in, SafePointer<CommandParam>& out) const {
    SDKCommandHeadInfo objHead;
    CommandBuffer objPayload;
    if (!decodeCommandHead(in.data(), in.getLength(), objHead) ||
        !copyPayload(in, objHead, objPayload) || objPayload.getLength() < NumberLength) {
        return false;
    }
    return guardRoom([&] {
        auto pobjParam = std::make_unique<BinCommandParam>();
        pobjParam->setHead(objHead);
        pobjParam->setBinCommandId(static_cast<std::int32_t>(readNetworkU32(objPayload.data())));
        const std::uint32_t nDataLength = objPayload.getLength() - NumberLength;
        if (nDataLength > 0) {
            pobjParam->setData(objPayload.data() + NumberLength,
                               static_cast<std::int32_t>(nDataLength));
        }
        out = wrapSafe<CommandParam>(std::move(pobjParam));
        return true;
    });
}
