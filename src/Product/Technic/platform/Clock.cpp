// The system's clock, and the one that stands in its place.
#include "Product/Technic/platform/Clock.h"

#include <time.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace {

class SystemClock : public IClock {
public:
    std::uint64_t monotonicMs() override {
        using std::chrono::milliseconds;
        const auto nSinceStart = std::chrono::steady_clock::now().time_since_epoch();
        return static_cast<std::uint64_t>(
            std::chrono::duration_cast<milliseconds>(nSinceStart).count());
    }

    std::time_t calendarTime() override { return std::time(nullptr); }

    using IClock::sleepMs;
    void sleepMs(std::uint32_t nMs, const std::stop_token& stop) override {
        std::mutex mutex;
        std::condition_variable stopped;
        const std::stop_callback wake(stop, [&] {
            const std::lock_guard guard(mutex);
            stopped.notify_all();
        });
        std::unique_lock lock(mutex);
        stopped.wait_for(lock, std::chrono::milliseconds(nMs),
                         [&] { return stop.stop_requested(); });
    }
};

std::atomic<IClock*>& clockInPlace() noexcept {
    static SystemClock systemClock;
    static std::atomic<IClock*> pClock{&systemClock};
    return pClock;
}

}  // namespace

IClock& currentClock() noexcept {
    return *clockInPlace();
}

ScopedClock::ScopedClock(IClock& clock) noexcept : m_pPrevious(clockInPlace().exchange(&clock)) {}

ScopedClock::~ScopedClock() {
    clockInPlace() = m_pPrevious;
}

std::tm toLocalTime(std::time_t nTime) noexcept {
    std::tm time{};
    tzset();
    localtime_r(&nTime, &time);
    return time;
}
