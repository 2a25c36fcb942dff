// The process-wide table behind SafePointer: numbered slots that are never destroyed.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Product/Technic/KXMutex.h"

// Counts live pointers by type name. A diagnosis only: a pointer that was converted is counted
// under one name and taken off under another, and nothing may depend on the numbers.
class PointerNameMap {
public:
    virtual ~PointerNameMap() = default;

    // A null or empty name is not counted.
    void add(const char* pTypeName);
    // A name whose count falls to 0 stays; a name that is not there changes nothing.
    void remove(const char* pTypeName) noexcept;

    // "(NameMapSize=%d)(PointerCount=%d)" and "(%s,%d)" for each count above the threshold.
    std::string statistics(std::int32_t nThreshold) const;

private:
    std::map<std::string, std::int32_t, std::less<>> m_mapCounts;
};

// One entry of the registry. The mutex guards count and pointer while the slot is in use; the
// registry alone fills and empties a slot.
class SafePointerSlot {
public:
    explicit SafePointerSlot(std::uint32_t nIndex) noexcept : m_nIndex(nIndex) {}
    SafePointerSlot(const SafePointerSlot&) = delete;
    SafePointerSlot& operator=(const SafePointerSlot&) = delete;

    // The codes of KXMutexHandle.
    int lock() noexcept { return m_mutex.lock(); }
    int unlock() noexcept { return m_mutex.unlock(); }

    void* getPointer() const noexcept { return m_pObject; }
    std::uint32_t getIndex() const noexcept { return m_nIndex; }

    // The new count, unchecked.
    std::uint32_t decrement() noexcept { return --m_nCount; }
    // The new count; 0, and nothing is changed, when the count is 0.
    std::uint32_t increment() noexcept { return m_nCount == 0 ? 0 : ++m_nCount; }

protected:
    friend class SafePointerRegistry;

    KXMutexHandle m_mutex;
    std::uint32_t m_nCount = 0;
    std::uint32_t m_nIndex;
    std::atomic<void*> m_pObject{nullptr};  // stale holders read it while the registry writes it
};

// The table of slots. Every operation is safe from any thread and takes the registry's own mutex
// only; lock order: a slot, then the registry.
//
// All safe pointers of the process share instance(); other registries are for tests of the table.
class SafePointerRegistry {
public:
    SafePointerRegistry();
    SafePointerRegistry(const SafePointerRegistry&) = delete;
    SafePointerRegistry& operator=(const SafePointerRegistry&) = delete;

    // Made at first use and never destroyed, so that holders in static objects stay valid.
    static SafePointerRegistry& instance();

    // A slot with count 1 that names pObject; the slot belongs to the registry. Throws
    // KXRuntimeError "too much safe poniter" with statistics when 20096 pointers are alive.
    SafePointerSlot* allocate(void* pObject, const char* pTypeName);

    // Frees a slot; throws KXRuntimeError "double free poniter(0x...)" when it is free already.
    void release(SafePointerSlot& slot, const char* pTypeName);

    std::size_t getTableSize() const;
    std::size_t getUsed() const;  // slots that name a pointer

    // Sets slots aside for those who are about to take many. False when fewer than 2,048 would be
    // left to all others; otherwise to be undone once the slots were taken, or are not needed.
    bool reserve(std::size_t nSlots);
    void unreserve(std::size_t nSlots);

private:
    std::size_t findFreeIndex() const noexcept;
    void grow(std::size_t nSlots);
    std::string overflowText() const;

    std::vector<std::unique_ptr<SafePointerSlot>> m_vecSlots;
    std::vector<std::uint32_t> m_vecBitmap;  // bit i % 32 of word i / 32: slot i is in use
    std::size_t m_nUsed = 0;
    std::size_t m_nReserved = 0;
    PointerNameMap m_names;
    mutable KXMutexHandle m_mutex;
    std::uint32_t m_nHint = 0;  // index of the slot released last
};
