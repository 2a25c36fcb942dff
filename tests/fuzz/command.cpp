// A command with a sound head: type of the protocol, id, and a body of any bytes. What is read can
// be written, and is then read again.
#include "Product/Technic/SafePointerRegistry.h"
#include "fuzz/Fuzz.h"
#include "protocol/CommandParserFactory.h"
#include "support/WireCommands.h"

namespace {

void roundTrip(const ICommandProtocolParser& parser, const CommandBuffer& message) {
    SafePointer<CommandParam> param;
    if (!parser.parseCommand(message, param)) {
        require(param.isNull(), "what is refused gives nothing");
        return;
    }
    CommandBuffer written;
    require(parser.createCommand(param, written), "what is read can be written");
    SafePointer<CommandParam> again;
    require(parser.parseCommand(written, again), "what is written can be read");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nLength) {
    Input input(pBytes, nLength);
    SDKCommandHeadInfo head;
    const auto nType = static_cast<std::uint16_t>(input.number<std::uint8_t>() % 4);
    head.setProtocolType(nType);
    head.setCommandID(input.number<std::uint16_t>());
    const std::string strBody = input.rest();
    head.setPayloadLength(static_cast<std::uint32_t>(strBody.size()));
    CommandBuffer bytes;
    encodeCommandHead(head, bytes);
    const CommandBuffer message = bufferOf(bytesOf(bytes) + strBody);
    for (const std::uint16_t nParser : {ProtocolType::SDK, ProtocolType::Binary}) {
        roundTrip(*createCommandProtocolParser(nParser), message);
    }
    require(SafePointerRegistry::instance().getTableSize() < 4096, "slots are given back");
    return 0;
}
