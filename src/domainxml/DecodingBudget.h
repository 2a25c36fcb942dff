// What one message of a device may cost while it is decoded.
#pragma once

#include <cstddef>

// Holds for everything that its thread decodes during its life; without one there are no limits.
class DecodingBudget {
public:
    // For a body of this length: 64 MiB of records and 8 bytes more for each byte of it, and 1,000
    // printed lines.
    explicit DecodingBudget(std::size_t nBodyLength) noexcept;
    ~DecodingBudget();  // prints how many lines were left out, if any were
    DecodingBudget(const DecodingBudget&) = delete;
    DecodingBudget& operator=(const DecodingBudget&) = delete;

    // To be called before records of that size together are made. Throws std::bad_alloc.
    static void takeMemory(std::size_t nBytes);
    // Whether one more line is printed.
    static bool takeLine() noexcept;

private:
    DecodingBudget* const m_pOuter;
    std::size_t m_nMemory;
    std::size_t m_nLines = 0;
};
