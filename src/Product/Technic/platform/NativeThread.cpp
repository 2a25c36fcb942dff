// The POSIX form of a thread.
#include "Product/Technic/platform/NativeThread.h"

#include <unistd.h>

std::uint32_t currentThreadId() noexcept {
    return static_cast<std::uint32_t>(gettid());
}

std::uint32_t currentProcessId() noexcept {
    return static_cast<std::uint32_t>(getpid());
}

CancellationDeferral::CancellationDeferral() noexcept {
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_nState);
}

CancellationDeferral::~CancellationDeferral() {
    pthread_setcancelstate(m_nState, nullptr);
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
