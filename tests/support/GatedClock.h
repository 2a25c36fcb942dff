// A clock that only the test moves: a worker that pauses on it stays there until its time has come.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <ctime>
#include <mutex>
#include <stop_token>
#include <thread>

#include "Product/Technic/platform/Clock.h"

// For one worker, which the test and it take turns with: advance(), then awaitSleeper(). Only
// sleeps that a stop can end take time; the others, of those who wait for the worker, take none.
class GatedClock : public IClock {
public:
    explicit GatedClock(std::uint64_t nStartMs) : m_nNowMs(nStartMs) {}

    // Waits until the worker sleeps to a moment that has not come yet.
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

    std::uint64_t monotonicMs() override {
        const std::lock_guard guard(m_mutex);
        return m_nNowMs;
    }

    std::time_t calendarTime() override { return static_cast<std::time_t>(monotonicMs() / 1000); }

    void wait(std::uint32_t nMs, std::span<SocketApi::Wait> sockets,
              const std::stop_token& stop) override {
        if (!sockets.empty()) {
            // Silence takes real time, and as much of this one.
            if (SocketApi::waitForAny(sockets, std::chrono::milliseconds(nMs)) == 0) {
                advanceMs(nMs);
            }
            return;
        }
        if (!stop.stop_possible()) {
            std::this_thread::yield();
            return;
        }
        std::unique_lock lock(m_mutex);
        m_nWakeMs = m_nNowMs + nMs;
        m_changed.notify_all();
        m_changed.wait(lock, stop, [&] { return m_nNowMs >= m_nWakeMs; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable_any m_changed;
    std::uint64_t m_nNowMs;
    std::uint64_t m_nWakeMs = 0;
};
