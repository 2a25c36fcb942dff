// The 24 bytes in front of every command.
#include "protocol/SDKCommandHeadInfo.h"

#include <algorithm>
#include <functional>
#include <numeric>

#include "protocol/NetworkOrder.h"

namespace {

constexpr std::uint16_t Magic = 0xAFAF;
constexpr std::uint8_t Terminator = 0x23;
constexpr std::uint8_t FlagBit = 0x80;

// Where each field stands in the head.
constexpr std::size_t ProtocolTypeOffset = 2;
constexpr std::size_t SequenceOffset = 4;
constexpr std::size_t FlagAOffset = 6;
constexpr std::size_t FlagBOffset = 7;
constexpr std::size_t CommandIDOffset = 8;
constexpr std::size_t SessionIdOffset = 12;
constexpr std::size_t PayloadLengthOffset = 16;
constexpr std::size_t ChecksumOffset = 22;
constexpr std::size_t TerminatorOffset = 23;

std::uint8_t checksumOf(const std::uint8_t* pHead) {
    return std::accumulate(pHead, pHead + ChecksumOffset, std::uint8_t{0},
                           std::bit_xor<std::uint8_t>());
}

}  // namespace

bool encodeCommandHead(const SDKCommandHeadInfo& head, CommandBuffer& out) {
    if (!out.allocate(SDKCommandHeadInfo::WireLength)) {
        return false;
    }
    const std::uint8_t flags[] = {head.isFlagA() ? FlagBit : std::uint8_t{0},
                                  head.isFlagB() ? FlagBit : std::uint8_t{0}};
    const std::uint16_t nReserved = 0;
    if (!out.append(toNetworkOrder(Magic)) || !out.append(toNetworkOrder(head.getProtocolType())) ||
        !out.append(toNetworkOrder(head.getSequence())) || !out.append(flags, sizeof flags) ||
        !out.append(toNetworkOrder(head.getCommandID())) ||
        !out.append(toNetworkOrder(head.getSessionId())) ||
        !out.append(toNetworkOrder(head.getPayloadLength())) || !out.append(nReserved)) {
        return false;
    }
    const std::uint8_t tail[] = {checksumOf(out.data()), Terminator};
    return out.append(tail, sizeof tail);
}

bool decodeCommandHead(const std::uint8_t* pBytes, std::uint32_t nLength,
                       SDKCommandHeadInfo& head) {
    if (!pBytes || nLength < SDKCommandHeadInfo::WireLength || readNetworkU16(pBytes) != Magic ||
        pBytes[TerminatorOffset] != Terminator || pBytes[ChecksumOffset] != checksumOf(pBytes)) {
        return false;
    }
    head.setProtocolType(readNetworkU16(pBytes + ProtocolTypeOffset));
    head.setSequence(readNetworkU16(pBytes + SequenceOffset));
    head.setFlagA((pBytes[FlagAOffset] & FlagBit) != 0);
    head.setFlagB((pBytes[FlagBOffset] & FlagBit) != 0);
    head.setCommandID(readNetworkU32(pBytes + CommandIDOffset));
    head.setSessionId(readNetworkU32(pBytes + SessionIdOffset));
    head.setPayloadLength(readNetworkU32(pBytes + PayloadLengthOffset));
    return true;
}
