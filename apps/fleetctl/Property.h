// Property: what a name of `get` and `set` stands for, and how the library reads and writes it.
#pragma once

#include <fleetkit/protocol/CommandCatalogue.h>

#include <optional>
#include <string>
#include <vector>

#include "RecordJson.h"

// What the options of get and set choose.
struct Selection {
    std::optional<int> type;  // kind of device
    std::optional<int> channel;
    std::optional<int> stream;
    std::optional<int> language;
    std::optional<int> timeZone;
};

// One option that chooses; the table of all of them serves the command line and the checks.
struct Selector {
    const char* szOption;
    const char* szHelp;
    unsigned nBit;
    std::optional<int> Selection::*pMember;
};

namespace SelectorBit {
enum Value : unsigned { Type = 1, Channel = 2, Stream = 4, Language = 8, TimeZone = 16 };
}  // namespace SelectorBit

const std::vector<Selector>& selectors();

// One call of the library: the session, and what was chosen.
struct Call {
    const long& nHandle;
    const Selection& selection;
};

struct Property {
    const char* szName;
    const char* szSummary;
    Value (*make)();                                    // a default value of its shape
    int (*get)(const Call& call, void* pObject);        // null: cannot be read
    int (*set)(const Call& call, const void* pObject);  // null: cannot be written
    unsigned nUses = 0;                                 // selectors that have a meaning for it
    unsigned nNeeds = 0;                                // selectors that have to be given
    unsigned nServes = 0;  // fleetkit::DeviceTypeBit; 0 where the type does not matter
};

// In the order of their names.
const std::vector<Property>& properties();

// UsageError, with the names that are valid, for another one.
const Property& findProperty(const std::string& strName);

// UsageError for a selector that is needed and not given.
void requireSelectors(const Property& property, const Selection& selection);

// UsageError for a device type that has no such property.
void requireServedType(const Property& property, const Selection& selection);

// UsageError for a selector that is given and has no meaning for any of the properties.
void refuseOtherSelectors(const std::vector<const Property*>& vecProperties,
                          const Selection& selection);
