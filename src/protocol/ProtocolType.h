// The two kinds of command, as the head names them.
#pragma once

#include <cstdint>

namespace ProtocolType {

constexpr std::uint16_t SDK = 1;     // a body of domain records
constexpr std::uint16_t Binary = 3;  // a sub-command number and raw bytes

}  // namespace ProtocolType
