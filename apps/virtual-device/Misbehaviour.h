// The ways in which a virtual device misbehaves on demand, by name.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

struct Answer;

// One misbehaviour that a device is told to show.
struct Misbehaviour {
    std::string strName;
    std::optional<int> nValue;     // what the number means is told by the kind
    std::uint32_t nCommandId = 0;  // the only command that it applies to; 0 for all
    int nTimes = 0;                // how many answers it spoils before it is over; 0 for all
};

// What a kind takes as its VALUE.
struct ValueRange {
    int nDefault = 0;
    int nLeast = 0;
    int nMost = 0;  // not above nLeast for a kind that takes none

    bool isTaken() const { return nMost > nLeast; }
};

struct MisbehaviourKind {
    const char* szName;
    const char* szMeaning;
    ValueRange value;
    void (*apply)(Answer& answer, int nValue);
};

// All kinds, in the order in which they are told to users.
std::span<const MisbehaviourKind> misbehaviourKinds();

// The kind of this name, or null.
const MisbehaviourKind* findMisbehaviourKind(const std::string& strName);

// Reads NAME[=VALUE][:COMMAND], as in "delay=500:getDeviceTime": COMMAND is a number of the
// catalogue or the name of an operation. Throws std::invalid_argument, with what is valid in its
// place, for a kind or a command that does not exist and for a value that the kind does not take.
Misbehaviour parseMisbehaviour(const std::string& strText);
