// The numbers that tell one request from another.
#pragma once

#include <cstdint>

// The next number of the process-wide counter: 0 at first, 0 again after 65535. Sessions and the
// multicast channel share it, and call it from any thread.
std::uint16_t nextSequence() noexcept;
