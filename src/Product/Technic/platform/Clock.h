// Time and sleep, behind one small interface that tests replace.
#pragma once

#include <cstdint>
#include <ctime>
#include <span>
#include <stop_token>

#include "Product/Technic/platform/SocketApi.h"

// A source of time. Implementations are safe to use from any thread.
class IClock {
public:
    virtual std::uint64_t monotonicMs() = 0;  // since some fixed moment, never going back
    virtual std::time_t calendarTime() = 0;   // seconds since 1970, UTC

    // Returns when that much of this time has passed or a socket is ready, which marks it; with a
    // token, also as soon as a stop is requested, before the call or by another thread during it.
    // Throws std::bad_alloc for more than a few sockets.
    virtual void wait(std::uint32_t nMs, std::span<SocketApi::Wait> sockets,
                      const std::stop_token& stop) = 0;

    void sleepMs(std::uint32_t nMs, const std::stop_token& stop = {}) { wait(nMs, {}, stop); }

protected:
    // Nobody owns a clock by its interface; the system's one then needs no end, and serves threads
    // that outlast `main`.
    ~IClock() = default;
};

// The clock that the library uses: the system's, unless a ScopedClock is alive.
IClock& currentClock() noexcept;

// Puts another clock in place for a scope. The clock is not owned and has to outlive every thread
// that started to use it; scopes nest.
class ScopedClock {
public:
    explicit ScopedClock(IClock& clock) noexcept;
    ~ScopedClock();
    ScopedClock(const ScopedClock&) = delete;
    ScopedClock& operator=(const ScopedClock&) = delete;

private:
    IClock* m_pPrevious;
};

// Breaks a time down by the machine's time zone, which is read anew at every call.
std::tm toLocalTime(std::time_t nTime) noexcept;
