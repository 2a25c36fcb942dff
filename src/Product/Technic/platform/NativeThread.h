// The operating system's thread.
#pragma once

#include <pthread.h>

#include <cstdint>
#include <optional>

// Id of the calling thread, as the system's own tools show it.
std::uint32_t currentThreadId() noexcept;

// Of the program, another one in a child.
std::uint32_t currentProcessId() noexcept;

// Puts a cancellation of the calling thread off to the end of the scope: it would leave locks held,
// and unwind functions that promise not to throw.
class CancellationDeferral {
public:
    CancellationDeferral() noexcept;
    ~CancellationDeferral();
    CancellationDeferral(const CancellationDeferral&) = delete;
    CancellationDeferral& operator=(const CancellationDeferral&) = delete;

private:
    int m_nState = 0;
};

// A handle to one thread, empty again after join(), which comes before the handle's end. Not
// protected: one thread at a time uses a handle.
class NativeThread {
public:
    using Entry = void* (*)(void*);

    NativeThread() = default;
    NativeThread(const NativeThread&) = delete;
    NativeThread& operator=(const NativeThread&) = delete;

    // Runs pEntry(pArgument) on a new thread of default stack size; false when the system refuses.
    bool start(Entry pEntry, void* pArgument) noexcept;

    // What identifies the thread of the handle to the system, cut to 32 bits; 0 when empty.
    std::uint32_t getId() const noexcept;

    // Waits without limit for the thread's end and empties the handle. On an empty handle, and on
    // the very thread of the handle, nothing is waited for.
    void join() noexcept;

private:
    std::optional<pthread_t> m_thread;
};
