// The account of the message that a thread decodes.
#include "domainxml/DecodingBudget.h"

#include <cstdio>
#include <new>

namespace {

constexpr std::size_t FixedMemory = 64U << 20;
constexpr std::size_t MemoryPerByte = 8;
constexpr std::size_t MostLines = 1000;

thread_local DecodingBudget* t_pBudget = nullptr;

}  // namespace

DecodingBudget::DecodingBudget(std::size_t nBodyLength) noexcept
    : m_pOuter(t_pBudget), m_nMemory(FixedMemory + MemoryPerByte * nBodyLength) {
    t_pBudget = this;
}

DecodingBudget::~DecodingBudget() {
    t_pBudget = m_pOuter;
    if (m_nLines > MostLines) {
        std::printf("%zu more lines about this message are left out\n", m_nLines - MostLines);
    }
}

void DecodingBudget::takeMemory(std::size_t nBytes) {
    if (t_pBudget == nullptr) {
        return;
    }
    if (nBytes > t_pBudget->m_nMemory) {
        throw std::bad_alloc();
    }
    t_pBudget->m_nMemory -= nBytes;
}

bool DecodingBudget::takeLine() noexcept {
    return t_pBudget == nullptr || ++t_pBudget->m_nLines <= MostLines;
}
