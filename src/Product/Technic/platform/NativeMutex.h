// The operating system's mutex: re-entrant, waits without limit, survives the death of its owner.
#pragma once

#include <pthread.h>

#include <atomic>
#include <cstdint>
#include <memory>

// One mutex of the operating system. Every call is safe from any thread.
//
// A mutex whose owner thread ended without unlocking goes to the next thread that waits for it.
// Unlocking a mutex that the calling thread does not own does nothing.
class NativeMutex {
public:
    // A new mutex that nobody owns; null when the system refuses.
    static std::unique_ptr<NativeMutex> create() noexcept;

    // Gives the mutex back to the system. The levels that the calling thread holds are let go; a
    // mutex that another thread holds at this moment is abandoned to it instead of being freed.
    static void close(std::unique_ptr<NativeMutex> pMutex) noexcept;

    ~NativeMutex();
    NativeMutex(const NativeMutex&) = delete;
    NativeMutex& operator=(const NativeMutex&) = delete;

    void lock() noexcept;
    void unlock() noexcept;

private:
    explicit NativeMutex(const pthread_mutexattr_t& attributes, int& nResult) noexcept;

    pthread_mutex_t m_mutex{};
    bool m_bMade = false;
    std::atomic<std::uint64_t> m_nOwner{0};  // number of the owner thread, 0 when free
    std::uint32_t m_nDepth = 0;              // levels held; touched by the owner only
};
