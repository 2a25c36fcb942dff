// Heads for transports: encoding and decoding behind the safe pointers that transports hold.
#include "protocol/SDKCommandHeadParser.h"

#include "Product/Technic/MemoryGuard.h"
#include "protocol/SDKCommandHeadInfo.h"

namespace {

constexpr std::uint32_t WritableHeadKind = 1;

}  // namespace

std::uint32_t SDKCommandHeadParser::getCommandHeadLength() const {
    return SDKCommandHeadInfo::WireLength;
}

bool SDKCommandHeadParser::createCommandHead(const SafePointer<CommandHeadInfo>& head,
                                             CommandBuffer& out) const {
    const auto& sdkHead = static_cast<const SDKCommandHeadInfo&>(*head);
    return sdkHead.getHeadKind() == WritableHeadKind && encodeCommandHead(sdkHead, out);
}

bool SDKCommandHeadParser::parseCommandHead(const std::uint8_t* pBytes, std::uint32_t nLength,
                                            SafePointer<CommandHeadInfo>& head) const {
    SDKCommandHeadInfo decoded;
    if (!decodeCommandHead(pBytes, nLength, decoded)) {
        return false;
    }
    return guardMemory([&] {
        head = wrapSafe<CommandHeadInfo>(std::make_unique<SDKCommandHeadInfo>(decoded));
        return true;
    });
}

bool SDKCommandHeadParser::parseCommandHead(const CommandBuffer& in,
                                            SafePointer<CommandHeadInfo>& head) const {
    return parseCommandHead(in.data(), in.getLength(), head);
}
