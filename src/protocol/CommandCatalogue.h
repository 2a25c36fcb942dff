// The commands of the device protocol, with the reply that each of them gets, and the functions of
// this library that send them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "Product/Technic/Export.h"

namespace fleetkit {

struct RecordDescriptor;

// The rows of a constant table, for a range-based loop.
template <class Row>
struct Rows {
    const Row* pFirst = nullptr;
    std::size_t nSize = 0;

    constexpr const Row* begin() const noexcept { return pFirst; }
    constexpr const Row* end() const noexcept { return pFirst + nSize; }
    constexpr std::size_t size() const noexcept { return nSize; }
    constexpr bool empty() const noexcept { return nSize == 0; }
    constexpr const Row& operator[](std::size_t nIndex) const noexcept { return pFirst[nIndex]; }
};

// A record at the top of a body, or a list of such records.
struct CarriedRecord {
    const RecordDescriptor& (*descriptor)() noexcept;
    bool isList;
};

// One command. What its request and its reply hold is known of some commands only.
struct CommandDescriptor {
    std::uint32_t nRequestId;
    std::uint32_t nResponseId;    // 10000 is the plain acknowledgement
    std::uint32_t nParamGroup;    // shared by the commands that work on one parameter
    std::uint32_t nOperation;     // 1 writes, 2 reads, 3 is a third operation, 4 an action
    Rows<CarriedRecord> request;  // in order; empty where it is not known
    Rows<CarriedRecord> answer;   // besides the result; empty also where there is nothing
};

// Device types, for `FunctionDescriptor::nServes`.
enum DeviceTypeBit : std::uint8_t { OfCamera = 1, OfRecorder = 2 };

// A function that sends a command. Overloads have a row each.
struct FunctionDescriptor {
    const char* szName;           // as in the class FleetKit
    std::uint32_t nRequestId;     // of its command; 0 for one that sends none
    Rows<CarriedRecord> request;  // what it sends, in order
    std::uint8_t nServes;         // of DeviceTypeBit; 0 for one that does not ask for the type
    bool isExported;              // of the class FleetKit; others only name a command
    bool endangers;               // what it does may cost settings or the connection
};

// All commands, in the order that decides which of two rows with one request id is found.
// The tables are constant: callable from any thread, at any time.
FLEETKIT_EXPORT Rows<CommandDescriptor> commandCatalogue() noexcept;

// The first row with this request id, or null.
FLEETKIT_EXPORT const CommandDescriptor* findCommand(std::uint32_t nRequestId) noexcept;

// All functions.
FLEETKIT_EXPORT Rows<FunctionDescriptor> functionCatalogue() noexcept;

// The first function of this name, or null.
FLEETKIT_EXPORT const FunctionDescriptor* findFunction(const std::string& strName) noexcept;

// The first function that sends this command, or null.
FLEETKIT_EXPORT const FunctionDescriptor* findFunction(std::uint32_t nRequestId) noexcept;

}  // namespace fleetkit
