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
    pthread_mutexattr_t objAttributes;
    if (pthread_mutexattr_init(&objAttributes) != 0) {
        return nullptr;
    }
    pthread_mutexattr_setrobust(&objAttributes, PTHREAD_MUTEX_ROBUST);
    int nResult = 0;
    std::unique_ptr<NativeMutex> pobjMutex(new (std::nothrow) NativeMutex(objAttributes, nResult));
    pthread_mutexattr_destroy(&objAttributes);
    return nResult == 0 ? std::move(pobjMutex) : nullptr;
}

NativeMutex::NativeMutex(const pthread_mutexattr_t& objAttributes, int& nResult) noexcept {
    nResult = pthread_mutex_init(&m_objMutex, &objAttributes);
    m_bMade = nResult == 0;
}

NativeMutex::~NativeMutex() {
    if (m_bMade) {
        pthread_mutex_destroy(&m_objMutex);
    }
}

void NativeMutex::close(std::unique_ptr<NativeMutex> pobjMutex) noexcept {
    if (pobjMutex->m_nOwner == currentThreadNumber()) {
        pobjMutex->m_nDepth = 1;
        pobjMutex->unlock();
    }
    if (pthread_mutex_trylock(&pobjMutex->m_objMutex) == EBUSY) {
        // The owner's list of held mutexes still points here, so this memory must stay.
        static_cast<void>(pobjMutex.release());
        return;
    }
    pthread_mutex_unlock(&pobjMutex->m_objMutex);
}

void NativeMutex::lock() noexcept {
    const std::uint64_t nSelf = currentThreadNumber();
    if (m_nOwner.load(std::memory_order_relaxed) == nSelf) {
        ++m_nDepth;
        return;
    }
    if (pthread_mutex_lock(&m_objMutex) == EOWNERDEAD) {
        pthread_mutex_consistent(&m_objMutex);
    }
    m_nOwner.store(nSelf, std::memory_order_relaxed);
    m_nDepth = 1;
}

void NativeMutex::unlock() noexcept {
    if (m_nOwner.load(std::memory_order_relaxed) != currentThreadNumber() || --m_nDepth > 0) {
        return;
    }
    m_nOwner.store(0, std::memory_order_relaxed);
    pthread_mutex_unlock(&m_objMutex);
}
