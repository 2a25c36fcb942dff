// Answers as bytes, over the codecs for heads and bodies.
#include "virtual-device/Answer.h"

#include "domain/EtResult.h"
#include "protocol/ICommandBodyParser.h"
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
    const auto pobjParser = createBodyParser(answer.objHead.getCommandID());
    CommandBuffer objBody;
    if (!pobjParser || !pobjParser->createCommandBody(answer.vecRecords, objBody)) {
        return false;
    }
    vecBody.assign(objBody.data(), objBody.data() + objBody.getLength());
    return true;
}

bool encodeMessage(const Answer& answer, Message& vecMessage) {
    Message vecBody;
    if (!encodeBody(answer, vecBody)) {
        return false;
    }
    SDKCommandHeadInfo objHead = answer.objHead;
    objHead.setPayloadLength(answer.nClaimed.value_or(static_cast<std::uint32_t>(vecBody.size())));
    CommandBuffer objHeadBytes;
    if (!encodeCommandHead(objHead, objHeadBytes)) {
        return false;
    }
    vecMessage.assign(objHeadBytes.data(), objHeadBytes.data() + objHeadBytes.getLength());
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
    Answer objStray;
    objStray.objHead = head;
    EtResult objResult;
    objResult.setCode(DeviceResult::Success);
    appendRecord(objStray.vecRecords, objResult);
    return encodeMessage(objStray, vecMessage);
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
