// A body of records behind a head.
#include "protocol/SDKCommandParser.h"

#include <typeinfo>
#include <utility>
#include <vector>

#include "Product/Technic/LogFilter.h"
#include "Product/Technic/RoomGuard.h"
#include "protocol/BinCommandParser.h"
#include "protocol/CommandFrame.h"
#include "protocol/ICommandBodyParser.h"
#include "protocol/ProtocolType.h"
#include "protocol/SDKCommandParam.h"

namespace {

constexpr const char* SourceName = "SDKCommandParser";

}  // namespace

bool SDKCommandParser::createCommand(const SafePointer<CommandParam>& param,
                                     CommandBuffer& out) const {
    if (param.isNull() || param->getProtocolType() != ProtocolType::SDK) {
        return false;
    }
    const auto& objParam = static_cast<const SDKCommandParam&>(*param);
    const std::uint32_t nCommandID = objParam.getHead().getCommandID();
    const auto pobjBodyParser = createBodyParser(nCommandID);
    if (!pobjBodyParser) {
        logMessage(LogLevel::Failure, SourceName,
                   "SDKCommandParser::createCommand nCommandId = %d createBodyParser failed \n",
                   nCommandID);
        return false;
    }
    CommandBuffer objBody;
    if (!pobjBodyParser->createCommandBody(objParam.getDomains(), objBody)) {
        logMessage(LogLevel::Failure, SourceName,
                   "SDKCommandParser::createCommand  nCommandId = %d createCommandBody failed \n",
                   nCommandID);
        return false;
    }
    return joinCommand(objParam.getHead(), ProtocolType::SDK, objBody, out);
}

bool SDKCommandParser::parseCommand(const CommandBuffer& in, SafePointer<CommandParam>& out) const {
    SDKCommandHeadInfo objHead;
    if (!decodeCommandHead(in.data(), in.getLength(), objHead)) {
        return false;
    }
    logMessage(LogLevel::Trace, SourceName, "recv:nPayloadLength =%d\n\n",
               objHead.getPayloadLength());
    CommandBuffer objPayload;
    if (!copyPayload(in, objHead, objPayload)) {
        return false;
    }
    const std::uint32_t nCommandID = objHead.getCommandID();
    logMessage(LogLevel::Trace, SourceName, "recv:nCommandID =%d\n %s\n", nCommandID,
               reinterpret_cast<const char*>(objPayload.data()));
    const auto pobjBodyParser = createBodyParser(nCommandID);
    if (!pobjBodyParser) {
        logMessage(LogLevel::Failure, SourceName,
                   "SDKCommandParser::parseCommand nCommandId = %d createBodyParser failed \n",
                   nCommandID);
        return false;
    }
    const ICommandBodyParser& objBodyParser = *pobjBodyParser;
    logMessage(LogLevel::Trace, SourceName,
               "SDKCommandParser::parseCommand  CommandBodyParser name is %s\n",
               typeid(objBodyParser).name());
    std::vector<SafePointer<BaseDomain>> vecDomains;
    if (!objBodyParser.parseCommandBody(objPayload, vecDomains)) {
        logMessage(LogLevel::Failure, SourceName,
                   "SDKCommandParser::parseCommand  nCommandId = %d parseCommandBody failed \n",
                   nCommandID);
        return false;
    }
    return guardRoom([&] {
        auto pobjParam = std::make_unique<SDKCommandParam>();
        pobjParam->setDomains(std::move(vecDomains));
        pobjParam->setHead(objHead);
        out = wrapSafe<CommandParam>(std::move(pobjParam));
        return true;
    });
}

std::unique_ptr<ICommandProtocolParser> createCommandProtocolParser(int nProtocolType) {
    switch (nProtocolType) {
        case ProtocolType::SDK:
            return std::make_unique<SDKCommandParser>();
        case ProtocolType::Binary:
            return std::make_unique<BinCommandParser>();
        default:
            return nullptr;
    }
}
