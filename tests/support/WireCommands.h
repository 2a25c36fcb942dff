// Commands and their records as a test writes them down.
#pragma once

#include "domain/DataBuffer.h"
#include "domain/EtResult.h"
#include "protocol/BinCommandParam.h"
#include "protocol/ICommandProtocolParser.h"
#include "protocol/SDKCommandParam.h"
#include "support/SampleRecords.h"

inline const std::uint8_t* bytesIn(const std::string& strBytes) {
    return reinterpret_cast<const std::uint8_t*>(strBytes.data());
}

inline EtResult resultOf(int nCode) {
    return with(&EtResult::setCode, nCode);
}

inline DataBuffer dataOf(const std::string& strBytes) {
    DataBuffer data;
    data.setData(bytesIn(strBytes), static_cast<std::int32_t>(strBytes.size()));
    return data;
}

inline std::vector<std::uint32_t> idsOf(const Records& records) {
    std::vector<std::uint32_t> vecIds;
    for (const auto& record : records) {
        vecIds.push_back(record->getDomainId());
    }
    return vecIds;
}

inline SDKCommandHeadInfo headOf(std::uint32_t nCommandID, std::uint16_t nSequence = 0,
                                 std::uint32_t nSessionId = 0) {
    return with(&SDKCommandHeadInfo::setCommandID, nCommandID, &SDKCommandHeadInfo::setSequence,
                nSequence, &SDKCommandHeadInfo::setSessionId, nSessionId);
}

// A message whose head announces `nLength` bytes, with the bytes that come.
inline std::string announcing(std::uint32_t nLength, const std::string& strPayload = "",
                              std::uint32_t nCommandID = 10000, std::uint16_t nType = 1) {
    SDKCommandHeadInfo head = headOf(nCommandID);
    head.setProtocolType(nType);
    head.setPayloadLength(nLength);
    CommandBuffer buffer;
    EXPECT_TRUE(encodeCommandHead(head, buffer));
    return bytesOf(buffer) + strPayload;
}

inline SafePointer<CommandParam> sdkCommand(const SDKCommandHeadInfo& head, Records records) {
    auto pParam = std::make_unique<SDKCommandParam>();
    pParam->setHead(head);
    pParam->setDomains(std::move(records));
    return wrapSafe<CommandParam>(std::move(pParam));
}

inline SafePointer<CommandParam> binCommand(const SDKCommandHeadInfo& head, std::int32_t nNumber,
                                            const std::string& strData) {
    auto pParam = std::make_unique<BinCommandParam>();
    pParam->setHead(head);
    pParam->setBinCommandId(nNumber);
    pParam->setData(bytesIn(strData), static_cast<std::int32_t>(strData.size()));
    return wrapSafe<CommandParam>(std::move(pParam));
}

// The bytes of a command, which stand in a block of their size.
inline std::string encoded(const ICommandProtocolParser& parser,
                           const SafePointer<CommandParam>& param) {
    CommandBuffer buffer;
    EXPECT_TRUE(parser.createCommand(param, buffer));
    EXPECT_EQ(buffer.getCapacity(), buffer.getLength());
    return bytesOf(buffer);
}

inline SafePointer<CommandParam> decoded(const ICommandProtocolParser& parser,
                                         const CommandBuffer& buffer) {
    SafePointer<CommandParam> param;
    EXPECT_TRUE(parser.parseCommand(buffer, param));
    return param;
}

inline const Records& recordsIn(const SafePointer<CommandParam>& param) {
    return static_cast<const SDKCommandParam&>(*param).getDomains();
}
