// The numbers that tell one request from another.
#include "session/SequenceNumber.h"

#include <atomic>

std::uint16_t nextSequence() noexcept {
    static std::atomic<std::uint16_t> nNext{0};
    return nNext++;
}
