// Search, growth and limits of the slot table.
#include "Product/Technic/SafePointerRegistry.h"

#include <array>
#include <bit>
#include <cinttypes>
#include <cstdio>
#include <iterator>
#include <mutex>

#include "Product/Technic/KXRuntimeError.h"

namespace {

constexpr std::size_t BitsPerWord = 32;
constexpr std::size_t SlotsPerGrowth = 128;
constexpr std::size_t LargestGrowingTable = 20000;  // checked before growing
constexpr std::size_t MostSlots = 20096;
constexpr std::size_t LeftToOthers = 2048;
constexpr std::int32_t StatisticsThreshold = 50;
constexpr std::size_t FailureTextSize = 128;

std::uint32_t bitOf(std::size_t nIndex) noexcept {
    return std::uint32_t{1} << (nIndex % BitsPerWord);
}

bool isEmpty(const char* pText) noexcept {
    return pText == nullptr || *pText == '\0';
}

}  // namespace

void PointerNameMap::add(const char* pTypeName) {
    if (isEmpty(pTypeName)) {
        return;
    }
    const auto itCount = m_mapCounts.find(pTypeName);
    if (itCount != m_mapCounts.end()) {
        ++itCount->second;
    } else {
        m_mapCounts.emplace(pTypeName, 1);
    }
}

void PointerNameMap::remove(const char* pTypeName) noexcept {
    if (isEmpty(pTypeName)) {
        return;
    }
    const auto itCount = m_mapCounts.find(pTypeName);
    if (itCount != m_mapCounts.end()) {
        --itCount->second;
    }
}

std::string PointerNameMap::statistics(std::int32_t nThreshold) const {
    std::int32_t nTotal = 0;
    std::string strNames;
    for (const auto& [strName, nCount] : m_mapCounts) {
        nTotal += nCount;
        if (nCount > nThreshold) {
            strNames += "(" + strName + "," + std::to_string(nCount) + ")";
        }
    }
    return "(NameMapSize=" + std::to_string(m_mapCounts.size()) +
           ")(PointerCount=" + std::to_string(nTotal) + ")" + strNames;
}

SafePointerRegistry::SafePointerRegistry() {
    grow(SlotsPerGrowth);
}

SafePointerRegistry& SafePointerRegistry::instance() {
    static SafePointerRegistry* const pInstance = std::make_unique<SafePointerRegistry>().release();
    return *pInstance;
}

SafePointerSlot* SafePointerRegistry::allocate(void* pObject, const char* pTypeName) {
    const std::lock_guard guard(m_mutex);
    const std::size_t nIndex = findFreeIndex();
    if (nIndex == m_vecSlots.size()) {
        if (nIndex > LargestGrowingTable) {
            throw KXRuntimeError(overflowText().c_str());
        }
        grow(SlotsPerGrowth);
    }
    m_names.add(pTypeName);
    m_vecBitmap[nIndex / BitsPerWord] |= bitOf(nIndex);
    ++m_nUsed;
    SafePointerSlot& slot = *m_vecSlots[nIndex];
    slot.m_nCount = 1;
    slot.m_pObject = pObject;
    return &slot;
}

void SafePointerRegistry::release(SafePointerSlot& slot, const char* pTypeName) {
    const std::lock_guard guard(m_mutex);
    std::uint32_t& nWord = m_vecBitmap[slot.m_nIndex / BitsPerWord];
    if ((nWord & bitOf(slot.m_nIndex)) == 0) {
        std::array<char, FailureTextSize> szText{};
        std::snprintf(szText.data(), szText.size(), "double free poniter(0x%08" PRIxPTR ")",
                      reinterpret_cast<std::uintptr_t>(slot.getPointer()));
        throw KXRuntimeError(szText.data());
    }
    nWord &= ~bitOf(slot.m_nIndex);
    --m_nUsed;
    slot.m_pObject = nullptr;
    m_nHint = slot.m_nIndex;
    m_names.remove(pTypeName);
}

bool SafePointerRegistry::reserve(std::size_t nSlots) {
    const std::lock_guard guard(m_mutex);
    if (m_nUsed + m_nReserved + nSlots + LeftToOthers > MostSlots) {
        return false;
    }
    m_nReserved += nSlots;
    return true;
}

void SafePointerRegistry::unreserve(std::size_t nSlots) {
    const std::lock_guard guard(m_mutex);
    m_nReserved -= nSlots;
}

std::size_t SafePointerRegistry::getTableSize() const {
    const std::lock_guard guard(m_mutex);
    return m_vecSlots.size();
}

std::size_t SafePointerRegistry::getUsed() const {
    const std::lock_guard guard(m_mutex);
    return m_nUsed;
}

// The lowest free slot, searched word by word from the hint's word and around the end; the size of
// the table when none is free.
std::size_t SafePointerRegistry::findFreeIndex() const noexcept {
    const std::size_t nWords = m_vecBitmap.size();
    for (std::size_t nStep = 0; nStep < nWords; ++nStep) {
        const std::size_t nWord = (m_nHint / BitsPerWord + nStep) % nWords;
        const auto nUsedBelow = static_cast<std::size_t>(std::countr_one(m_vecBitmap[nWord]));
        if (nUsedBelow < BitsPerWord) {
            return nWord * BitsPerWord + nUsedBelow;
        }
    }
    return m_vecSlots.size();
}

void SafePointerRegistry::grow(std::size_t nSlots) {
    std::vector<std::unique_ptr<SafePointerSlot>> vecNew;
    vecNew.reserve(nSlots);
    for (std::size_t nIndex = m_vecSlots.size(); vecNew.size() < nSlots; ++nIndex) {
        vecNew.push_back(std::make_unique<SafePointerSlot>(static_cast<std::uint32_t>(nIndex)));
    }
    // Only the two steps that reserve can fail, so table and bitmap never part.
    m_vecSlots.reserve(m_vecSlots.size() + nSlots);
    m_vecBitmap.resize(m_vecBitmap.size() + nSlots / BitsPerWord);
    m_vecSlots.insert(m_vecSlots.end(), std::make_move_iterator(vecNew.begin()),
                      std::make_move_iterator(vecNew.end()));
}

std::string SafePointerRegistry::overflowText() const {
    return "too much safe poniter" + m_names.statistics(StatisticsThreshold);
}
