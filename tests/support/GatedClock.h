// A clock that only the test moves: whoever sleeps on it stays asleep until its time has come.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <ctime>
#include <mutex>
#include <thread>

#include "Product/Technic/platform/Clock.h"

// For one sleeping thread, which the test and it take turns with: advance(), then awaitSleeper().
// Call open() before stopping that thread.
class GatedClock : public IClock {
public:
    explicit GatedClock(std::uint64_t nStartMs) : m_nNowMs(nStartMs) {}

    // Waits until somebody sleeps to a moment that has not come yet.
    void awaitSleeper() {
        std::unique_lock lock(m_mutex);
        if (!m_changed.wait_for(lock, std::chrono::seconds(60),
                                [&] { return m_nWakeMs > m_nNowMs; })) {
            ADD_FAILURE() << "nobody sleeps";
        }
    }

    void advanceMs(std::uint64_t nMs) {
        const std::lock_guard guard(m_mutex);
        m_nNowMs += nMs;
        m_changed.notify_all();
    }

    // From now on sleeping takes no time.
    void open() {
        const std::lock_guard guard(m_mutex);
        m_bOpen = true;
        m_changed.notify_all();
    }

    std::uint32_t getLongestSleepMs() {
        const std::lock_guard guard(m_mutex);
        return m_nLongestMs;
    }

    std::uint64_t monotonicMs() override {
        const std::lock_guard guard(m_mutex);
        return m_nNowMs;
    }

    std::time_t calendarTime() override { return static_cast<std::time_t>(monotonicMs() / 1000); }

    void sleepMs(std::uint32_t nMs) override {
        std::unique_lock lock(m_mutex);
        m_nLongestMs = std::max(m_nLongestMs, nMs);
        m_nWakeMs = m_nNowMs + nMs;
        m_changed.notify_all();
        m_changed.wait(lock, [&] { return m_bOpen || m_nNowMs >= m_nWakeMs; });
        if (m_bOpen) {
            lock.unlock();
            std::this_thread::yield();
        }
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::uint64_t m_nNowMs;
    std::uint64_t m_nWakeMs = 0;
    std::uint32_t m_nLongestMs = 0;
    bool m_bOpen = false;
};
