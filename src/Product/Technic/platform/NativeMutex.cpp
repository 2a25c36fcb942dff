// The POSIX form of the mutex: a robust mutex below, ownership and depth counted above it.
#include "Product/Technic/platform/NativeMutex.h"

#include <cerrno>
#include <new>

namespace {

// Thread ids of the system are used again after a thread's end; these numbers are not.
std::uint64_t currentThreadNumber() noexcept {
    static std::atomic<std::uint64_t> nLast{0};
    thread_local const std::uint64_t nNumber = ++nLast;
    return nNumber;
}

}  // namespace

std::unique_ptr<NativeMutex> NativeMutex::create() noexcept {
    pthread_mutexattr_t attributes;
    if (pthread_mutexattr_init(&attributes) != 0) {
        return nullptr;
    }
    pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    int nResult = 0;
    std::unique_ptr<NativeMutex> pMutex(new (std::nothrow) NativeMutex(attributes, nResult));
    pthread_mutexattr_destroy(&attributes);
    return nResult == 0 ? std::move(pMutex) : nullptr;
}

NativeMutex::NativeMutex(const pthread_mutexattr_t& attributes, int& nResult) noexcept {
    nResult = pthread_mutex_init(&m_mutex, &attributes);
    m_bMade = nResult == 0;
}

NativeMutex::~NativeMutex() {
    if (m_bMade) {
        pthread_mutex_destroy(&m_mutex);
    }
}

void NativeMutex::close(std::unique_ptr<NativeMutex> pMutex) noexcept {
    if (pMutex->m_nOwner == currentThreadNumber()) {
        pMutex->m_nDepth = 1;
        pMutex->unlock();
    }
    if (pthread_mutex_trylock(&pMutex->m_mutex) == EBUSY) {
        // The owner's list of held mutexes still points here, so this memory must stay.
        static_cast<void>(pMutex.release());
        return;
    }
    pthread_mutex_unlock(&pMutex->m_mutex);
}

void NativeMutex::lock() noexcept {
    const std::uint64_t nSelf = currentThreadNumber();
    if (m_nOwner.load(std::memory_order_relaxed) == nSelf) {
        ++m_nDepth;
        return;
    }
    if (pthread_mutex_lock(&m_mutex) == EOWNERDEAD) {
        pthread_mutex_consistent(&m_mutex);
    }
    m_nOwner.store(nSelf, std::memory_order_relaxed);
    m_nDepth = 1;
}

void NativeMutex::unlock() noexcept {
    if (m_nOwner.load(std::memory_order_relaxed) != currentThreadNumber() || --m_nDepth > 0) {
        return;
    }
    m_nOwner.store(0, std::memory_order_relaxed);
    pthread_mutex_unlock(&m_mutex);
}
