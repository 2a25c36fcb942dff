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
    std::optional<int> nValue;     // what the number means is told by the kind; each has a default
    std::uint32_t nCommandId = 0;  // the only command that it applies to; 0 for all
    int nTimes = 0;                // how many answers it spoils before it is over; 0 for all
};

struct MisbehaviourKind {
    const char* szName;
    const char* szMeaning;
    int nDefault;
    void (*apply)(Answer& answer, int nValue);
};

// All kinds, in the order in which they are told to users.
std::span<const MisbehaviourKind> misbehaviourKinds();

// The kind of this name, or null.
const MisbehaviourKind* findMisbehaviourKind(const std::string& strName);

// Reads NAME[=VALUE][:COMMAND], as in "delay=500:30507". Nothing for any other text and for a name
// that is not a kind.
std::optional<Misbehaviour> parseMisbehaviour(const std::string& strText);
