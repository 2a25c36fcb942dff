// The POSIX form of a thread.
#include "Product/Technic/platform/NativeThread.h"

#include <unistd.h>

std::uint32_t currentThreadId() noexcept {
    return static_cast<std::uint32_t>(gettid());
}

bool NativeThread::start(Entry pEntry, void* pArgument) noexcept {
    pthread_t thread{};
    if (pthread_create(&thread, nullptr, pEntry, pArgument) != 0) {
        return false;
    }
    m_thread = thread;
    return true;
}

std::uint32_t NativeThread::getId() const noexcept {
    return m_thread ? static_cast<std::uint32_t>(*m_thread) : 0;
}

void NativeThread::join() noexcept {
    if (m_thread && pthread_join(*m_thread, nullptr) != 0) {
        pthread_detach(*m_thread);
    }
    m_thread.reset();
}
