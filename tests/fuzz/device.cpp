// Requests to a virtual device, before and after a login, as they come out of the decoder.
#include "fuzz/Fuzz.h"
#include "protocol/CommandIds.h"
#include "protocol/SDKCommandParser.h"
#include "support/WireCommands.h"
#include "virtual-device/DeviceCore.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nLength) {
    static DeviceCore camera(DeviceOptions{});
    static DeviceCore recorder(DeviceOptions{.nKind = DeviceKind::NVR, .nChannels = 4});
    Input input(pBytes, nLength);
    const auto nForm = input.number<std::uint8_t>();
    std::uint32_t nSession = nForm % 2;
    SDKCommandHeadInfo head = headOf(input.number<std::uint16_t>(), 0, nSession);
    const std::string strBody = input.rest();
    head.setPayloadLength(static_cast<std::uint32_t>(strBody.size()));
    CommandBuffer bytes;
    encodeCommandHead(head, bytes);
    SafePointer<CommandParam> param;
    if (!SDKCommandParser().parseCommand(bufferOf(bytesOf(bytes) + strBody), param)) {
        return 0;
    }
    DeviceCore& core = nForm % 4 < 2 ? camera : recorder;
    const Request request{head, recordsIn(param)};
    const Answer answer = core.answer(request, nSession, "fuzz");
    std::vector<Message> vecMessages;
    require(encodeAnswer(answer, vecMessages), "every answer has a form on the wire");
    core.answerMulticast(request, "fuzz");
    return 0;
}
