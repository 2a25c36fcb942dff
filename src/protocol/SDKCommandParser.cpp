// A body of records behind a head.
#include "protocol/SDKCommandParser.h"

#include <typeinfo>
#include <utility>
#include <vector>

#include "Product/Technic/LogFilter.h"
#include "Product/Technic/MemoryGuard.h"
#include "protocol/BodyParserFactory.h"
#include "protocol/CommandFrame.h"
#include "protocol/ProtocolType.h"
#include "protocol/SDKCommandParam.h"
#include "protocol/SecretMask.h"

using namespace fleetkit;

namespace {

constexpr const char* SourceName = "SDKCommandParser";

}  // namespace

bool SDKCommandParser::createCommand(const SafePointer<CommandParam>& param,
                                     CommandBuffer& out) const {
    if (param.isNull() || param->getProtocolType() != ProtocolType::SDK) {
        return false;
    }
    const auto& command = static_cast<const SDKCommandParam&>(*param);
    const std::uint32_t nCommandID = command.getHead().getCommandID();
    const auto pBodyParser = createBodyParser(nCommandID);
    if (!pBodyParser) {
        logMessage(LogLevel::Failure, SourceName,
                   "SDKCommandParser::createCommand nCommandId = %d createBodyParser failed \n",
                   nCommandID);
        return false;
    }
    CommandBuffer body;
    if (!pBodyParser->createCommandBody(command.getDomains(), body)) {
        logMessage(LogLevel::Failure, SourceName,
                   "SDKCommandParser::createCommand  nCommandId = %d createCommandBody failed \n",
                   nCommandID);
        return false;
    }
    return joinCommand(command.getHead(), ProtocolType::SDK, body, out);
}

bool SDKCommandParser::parseCommand(const CommandBuffer& in, SafePointer<CommandParam>& out) const {
    SDKCommandHeadInfo head;
    if (!decodeCommandHead(in.data(), in.getLength(), head)) {
        return false;
    }
    logMessage(LogLevel::Trace, SourceName, "recv:nPayloadLength =%d\n\n", head.getPayloadLength());
    CommandBuffer payload;
    if (!copyPayload(in, head, payload)) {
        return false;
    }
    const std::uint32_t nCommandID = head.getCommandID();
    if (LogFilter::instance().passesLevel(LogLevel::Trace)) {
        logMessage(LogLevel::Trace, SourceName, "recv:nCommandID =%d\n %s\n", nCommandID,
                   withoutSecrets(reinterpret_cast<const char*>(payload.data())).c_str());
    }
    const auto pBodyParser = createBodyParser(nCommandID);
    if (!pBodyParser) {
        logMessage(LogLevel::Failure, SourceName,
                   "SDKCommandParser::parseCommand nCommandId = %d createBodyParser failed \n",
                   nCommandID);
        return false;
    }
    const ICommandBodyParser& bodyParser = *pBodyParser;
    logMessage(LogLevel::Trace, SourceName,
               "SDKCommandParser::parseCommand  CommandBodyParser name is %s\n",
               typeid(bodyParser).name());
    DomainList vecDomains;
    if (!bodyParser.parseCommandBody(payload, vecDomains)) {
        logMessage(LogLevel::Failure, SourceName,
                   "SDKCommandParser::parseCommand  nCommandId = %d parseCommandBody failed \n",
                   nCommandID);
        return false;
    }
    return guardMemory([&] {
        auto pParam = std::make_unique<SDKCommandParam>();
        pParam->setDomains(std::move(vecDomains));
        pParam->setHead(head);
        out = wrapSafe<CommandParam>(std::move(pParam));
        return true;
    });
}
