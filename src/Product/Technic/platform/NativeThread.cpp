// The POSIX form of a thread.
#include "Product/Technic/platform/NativeThread.h"

#include <unistd.h>

std::uint32_t currentThreadId() noexcept {
    return static_cast<std::uint32_t>(gettid());
}

bool NativeThread::start(Entry pEntry, void* pArgument) noexcept {
    pthread_t objThread{};
    if (pthread_create(&objThread, nullptr, pEntry, pArgument) != 0) {
        return false;
    }
    m_objThread = objThread;
    return true;
}

std::uint32_t NativeThread::getId() const noexcept {
    return m_objThread ? static_cast<std::uint32_t>(*m_objThread) : 0;
}

void NativeThread::join() noexcept {
    if (m_objThread && pthread_join(*m_objThread, nullptr) != 0) {
        pthread_detach(*m_objThread);
    }
    m_objThread.reset();
}
