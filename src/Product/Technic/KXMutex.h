// The lock of the whole system: re-entrant, without time-outs, checked by a key at every use.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "Product/Technic/ThreadAnnotations.h"

class NativeMutex;

// The mutex of the operating system together with a key that proves it alive.
//
// A handle whose key is wrong answers with a code and never waits. The members lock() and
// unlock() make it usable with std::lock_guard.
class KXMutexHandle {
public:
    static constexpr std::uint32_t ValidKey = 0x55AA55AA;

    enum Result : int {
        Done = 0,
        AlreadyInitialised = -1,
        NotValid = -2,
        CreationFailed = -3,
    };

    // Makes the mutex; isValid() tells whether the system gave one.
    KXMutexHandle() noexcept;
    ~KXMutexHandle();
    KXMutexHandle(const KXMutexHandle&) = delete;
    KXMutexHandle& operator=(const KXMutexHandle&) = delete;

    // Makes the mutex of a handle that has none: Done, AlreadyInitialised or CreationFailed.
    int init() noexcept;

    // Gives the mutex back and clears the key; does nothing on a handle that is not valid.
    void destroy() noexcept;

    bool isValid() const noexcept { return getKey() == ValidKey; }
    std::uint32_t getKey() const noexcept { return m_nKey.load(std::memory_order_relaxed); }

    // Waits without limit. NotValid when the key is wrong before or after the wait, else Done.
    int lock() noexcept;

    // NotValid or Done; Done also when the calling thread does not hold the mutex.
    int unlock() noexcept;

private:
    std::unique_ptr<NativeMutex> m_pNative;
    std::atomic<std::uint32_t> m_nKey{0};
};

// A mutex that names the place in the source when it is used without being alive.
//
// Re-entrant: the owner may lock it again and unlocks it as many times. lock() and unlock() throw
// std::runtime_error when the key is wrong, and return 0 otherwise; a destroyed mutex whose storage
// is still there, as that of a static one is when the process ends, has the key 0. Destroying a
// mutex that another thread still uses is not made safe.
class KX_CAPABILITY KXMutex {
public:
    KXMutex();
    ~KXMutex();
    KXMutex(const KXMutex&) = delete;
    KXMutex& operator=(const KXMutex&) = delete;

    int init() noexcept { return getHandle().init(); }

    int lock(const char* pFile, int nLine) KX_ACQUIRE();
    int unlock(const char* pFile, int nLine) KX_RELEASE();
    int lock() KX_ACQUIRE();
    int unlock() KX_RELEASE();

    // The level below, for those who check the key themselves.
    KXMutexHandle& getHandle() noexcept { return *m_pHandle.load(std::memory_order_relaxed); }

private:
    KXMutexHandle& validHandle(const char* pFile, int nLine) const;

    // Owned. Null after the destructor; atomic, or the compiler would drop that last store as dead.
    std::atomic<KXMutexHandle*> m_pHandle;
};

// Holds a mutex for a scope. File and line are those of the code that opens the guard.
class KX_SCOPED_CAPABILITY KXMutexGuard {
public:
    explicit KXMutexGuard(KXMutex& mutex, const char* pFile = __builtin_FILE(),
                          int nLine = __builtin_LINE()) KX_ACQUIRE(mutex);
    // Throws like KXMutex::unlock when the mutex died while it was held.
    ~KXMutexGuard() noexcept(false) KX_RELEASE();
    KXMutexGuard(const KXMutexGuard&) = delete;
    KXMutexGuard& operator=(const KXMutexGuard&) = delete;

private:
    KXMutex* m_pMutex;
};
