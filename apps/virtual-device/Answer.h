// An answer before it becomes bytes, with everything that can go wrong with it on purpose.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "protocol/SDKCommandHeadInfo.h"
#include "virtual-device/Request.h"

struct Answer {
    SDKCommandHeadInfo head;
    DomainList vecRecords;
    bool bRestarts = false;  // all connections of the device end once this is sent

    std::optional<std::string> strBody;         // instead of the records
    std::optional<std::uint32_t> nClaimed;      // payload length in the head, with no payload sent
    std::optional<std::size_t> nDamagedByte;    // of the head
    std::vector<SDKCommandHeadInfo> vecStrays;  // heads of messages sent before it
    std::chrono::milliseconds nDelay{0};
    bool bSilent = false;                // nothing is sent
    bool bCut = false;                   // half of it is sent
    bool bTwice = false;                 // it is sent again behind itself
    bool bTrickles = false;              // it is sent byte by byte
    std::chrono::milliseconds nPace{0};  // between these
    bool bCloses = false;                // the connection ends behind it
};

using Message = std::vector<std::uint8_t>;

// The messages of an answer in the order of sending: strays first. None when it is silent. False
// when the records have no form on the wire.
bool encodeAnswer(const Answer& answer, std::vector<Message>& vecMessages);
