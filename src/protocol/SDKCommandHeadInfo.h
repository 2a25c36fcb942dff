// The head of a command in memory, and its 24 bytes on the wire.
#pragma once

#include <cstdint>

#include "protocol/CommandBuffer.h"
#include "protocol/CommandHeadInfo.h"

// A head as a value: every field starts at zero.
class SDKCommandHeadInfo : public CommandHeadInfo {
public:
    static constexpr std::uint32_t WireLength = 24;

    // Not on the wire; `ICommandHeadParser::createCommandHead` writes only heads of kind 1.
    std::uint32_t getHeadKind() const noexcept { return m_nHeadKind; }
    void setHeadKind(std::uint32_t nHeadKind) noexcept { m_nHeadKind = nHeadKind; }

    // Bytes that follow the head.
    std::uint32_t getPayloadLength() const noexcept { return m_nPayloadLength; }
    void setPayloadLength(std::uint32_t nLength) noexcept { m_nPayloadLength = nLength; }

    // 1 for an SDK command, 3 for a binary command.
    std::uint16_t getProtocolType() const noexcept { return m_nProtocolType; }
    void setProtocolType(std::uint16_t nType) noexcept { m_nProtocolType = nType; }

    // Chosen by the sender of a request, echoed in the answer.
    std::uint16_t getSequence() const noexcept { return m_nSequence; }
    void setSequence(std::uint16_t nSequence) noexcept { m_nSequence = nSequence; }

    // Carried faithfully; nothing in this library sets or reads them.
    bool isFlagA() const noexcept { return m_bFlagA; }
    void setFlagA(bool bFlag) noexcept { m_bFlagA = bFlag; }
    bool isFlagB() const noexcept { return m_bFlagB; }
    void setFlagB(bool bFlag) noexcept { m_bFlagB = bFlag; }

    std::uint32_t getCommandID() const noexcept { return m_nCommandID; }
    void setCommandID(std::uint32_t nCommandID) noexcept { m_nCommandID = nCommandID; }

    // Given by the device at login, 0 before.
    std::uint32_t getSessionId() const noexcept { return m_nSessionId; }
    void setSessionId(std::uint32_t nSessionId) noexcept { m_nSessionId = nSessionId; }

private:
    std::uint32_t m_nHeadKind = 0;
    std::uint32_t m_nPayloadLength = 0;
    std::uint16_t m_nProtocolType = 0;
    std::uint16_t m_nSequence = 0;
    bool m_bFlagA = false;
    bool m_bFlagB = false;
    std::uint32_t m_nCommandID = 0;
    std::uint32_t m_nSessionId = 0;
};

// Replaces the content of `out` by the 24 bytes of `head`. False only without memory.
bool encodeCommandHead(const SDKCommandHeadInfo& head, CommandBuffer& out);

// Decodes the first 24 of `nLength` bytes. False, with `head` as it was, when there are fewer, when
// the magic, the terminator or the checksum is wrong. No field is checked for its range: what a
// head announces need not be what arrived.
bool decodeCommandHead(const std::uint8_t* pBytes, std::uint32_t nLength, SDKCommandHeadInfo& head);
