// A clock that stands still until a test moves it; sleeping moves it too and takes no real time.
#pragma once

#include <atomic>
#include <cstdint>
#include <ctime>
#include <stop_token>
#include <thread>

#include "Product/Technic/platform/Clock.h"

// Put it in place with ScopedClock. Safe from any thread; whoever sleeps gives up the processor
// once, so that pollers do not starve what they wait for.
class ManualClock : public IClock {
public:
    explicit ManualClock(std::uint64_t nStartMs = 0, std::time_t nCalendarStart = 0)
        : m_nNowMs(nStartMs), m_nCalendarOffset(nCalendarStart - toSeconds(nStartMs)) {}

    void advanceMs(std::uint64_t nMs) { m_nNowMs += nMs; }

    std::uint64_t monotonicMs() override { return m_nNowMs; }
    std::time_t calendarTime() override { return m_nCalendarOffset + toSeconds(m_nNowMs); }

    void wait(std::uint32_t nMs, std::span<SocketApi::Wait> sockets,
              const std::stop_token&) override {
        if (SocketApi::waitForAny(sockets, {}) > 0) {
            return;
        }
        m_nNowMs += nMs;
        std::this_thread::yield();
    }

private:
    static std::time_t toSeconds(std::uint64_t nMs) { return static_cast<std::time_t>(nMs / 1000); }

    std::atomic<std::uint64_t> m_nNowMs;
    const std::time_t m_nCalendarOffset;
};
