// Protocol types and the parsers that serve them.
#include "protocol/CommandParserFactory.h"

#include "protocol/BinCommandParser.h"
#include "protocol/ProtocolType.h"
#include "protocol/SDKCommandHeadParser.h"
#include "protocol/SDKCommandParser.h"

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

SafePointer<ICommandHeadParser> createCommandHeadParser(int nProtocolType) {
    if (nProtocolType != ProtocolType::SDK) {
        return SafePointer<ICommandHeadParser>();
    }
    return wrapSafe<ICommandHeadParser>(std::make_unique<SDKCommandHeadParser>());
}
