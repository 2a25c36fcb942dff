// Heads for transports: encoding and decoding behind the safe pointers that transports hold.
#include "protocol/SDKCommandHeadParser.h"

#include "Product/Technic/RoomGuard.h"
#include "protocol/ProtocolType.h"
#include "protocol/SDKCommandHeadInfo.h"

namespace {

constexpr std::uint32_t WritableHeadKind = 1;

}  // namespace

std::uint32_t SDKCommandHeadParser::getCommandHeadLength() const {
    return SDKCommandHeadInfo::WireLength;
}

bool SDKCommandHeadParser::createCommandHead(const SafePointer<CommandHeadInfo>& head,
                                             CommandBuffer& out) const {
    const auto& objHead = static_cast<const SDKCommandHeadInfo&>(*head);
    return objHead.getHeadKind() == WritableHeadKind && encodeCommandHead(objHead, out);
}

bool SDKCommandHeadParser::parseCommandHead(const std::uint8_t* pBytes, std::uint32_t nLength,
                                            SafePointer<CommandHeadInfo>& head) const {
    SDKCommandHeadInfo objDecoded;
    if (!decodeCommandHead(pBytes, nLength, objDecoded)) {
        return false;
    }
    return guardRoom([&] {
        head = wrapSafe<CommandHeadInfo>(std::make_unique<SDKCommandHeadInfo>(objDecoded));
        return true;
    });
}

bool SDKCommandHeadParser::parseCommandHead(const CommandBuffer& in,
                                            SafePointer<CommandHeadInfo>& head) const {
    return parseCommandHead(in.data(), in.getLength(), head);
}

SafePointer<ICommandHeadParser> createCommandHeadParser(int nProtocolType) {
    if (nProtocolType != ProtocolType::SDK) {
        return SafePointer<ICommandHeadParser>();
    }
    return wrapSafe<ICommandHeadParser>(std::make_unique<SDKCommandHeadParser>());
}
