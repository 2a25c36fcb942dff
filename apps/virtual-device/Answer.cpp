// Answers as bytes, over the codecs for heads and bodies.
#include "virtual-device/Answer.h"

#include "domain/EtResult.h"
#include "protocol/BodyParserFactory.h"
#include "virtual-device/DeviceResult.h"

namespace {

bool encodeBody(const Answer& answer, Message& vecBody) {
    if (answer.nClaimed) {
        return true;
    }
    if (answer.strBody) {
        vecBody.assign(answer.strBody->begin(), answer.strBody->end());
        return true;
    }
    const auto pParser = createBodyParser(answer.head.getCommandID());
    CommandBuffer body;
    if (!pParser || !pParser->createCommandBody(answer.vecRecords, body)) {
        return false;
    }
    vecBody.assign(body.data(), body.data() + body.getLength());
    return true;
}

bool encodeMessage(const Answer& answer, Message& vecMessage) {
    Message vecBody;
    if (!encodeBody(answer, vecBody)) {
        return false;
    }
    SDKCommandHeadInfo head = answer.head;
    head.setPayloadLength(answer.nClaimed.value_or(static_cast<std::uint32_t>(vecBody.size())));
    CommandBuffer headBytes;
    if (!encodeCommandHead(head, headBytes)) {
        return false;
    }
    vecMessage.assign(headBytes.data(), headBytes.data() + headBytes.getLength());
    if (answer.nDamagedByte) {
        vecMessage[*answer.nDamagedByte] ^= 0xFF;
    }
    vecMessage.insert(vecMessage.end(), vecBody.begin(), vecBody.end());
    if (answer.bCut) {
        vecMessage.resize(SDKCommandHeadInfo::WireLength + vecBody.size() / 2);
    }
    return true;
}

// Strays are sound messages with a good result, so that only their heads can give them away.
bool encodeStray(const SDKCommandHeadInfo& head, Message& vecMessage) {
    Answer stray;
    stray.head = head;
    EtResult result;
    result.setCode(DeviceResult::Success);
    appendRecord(stray.vecRecords, result);
    return encodeMessage(stray, vecMessage);
}

}  // namespace

bool encodeAnswer(const Answer& answer, std::vector<Message>& vecMessages) {
    if (answer.bSilent) {
        return true;
    }
    for (const SDKCommandHeadInfo& head : answer.vecStrays) {
        if (!encodeStray(head, vecMessages.emplace_back())) {
            return false;
        }
    }
    Message vecMessage;
    if (!encodeMessage(answer, vecMessage)) {
        return false;
    }
    vecMessages.insert(vecMessages.end(), answer.bTwice ? 2 : 1, vecMessage);
    return true;
}
