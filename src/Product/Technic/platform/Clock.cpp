// The system's clock, and the one that stands in its place.
#include "Product/Technic/platform/Clock.h"

#include <time.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <vector>

namespace {

// How long a wait that nobody can end may take.
constexpr std::chrono::milliseconds Slice{100};

class SystemClock final : public IClock {
public:
    std::uint64_t monotonicMs() override {
        using std::chrono::milliseconds;
        const auto nSinceStart = std::chrono::steady_clock::now().time_since_epoch();
        return static_cast<std::uint64_t>(
            std::chrono::duration_cast<milliseconds>(nSinceStart).count());
    }

    std::time_t calendarTime() override { return std::time(nullptr); }

    void wait(std::uint32_t nMs, std::span<SocketApi::Wait> sockets,
              const std::stop_token& stop) override {
        const std::chrono::milliseconds time(nMs);
        if (!stop.stop_possible()) {
            SocketApi::waitForAny(sockets, time);
            return;
        }
        SocketApi::WakeUp wakeUp;
        const std::stop_callback onStop(stop, [&] { wakeUp.wake(); });
        std::array<SocketApi::Wait, 1> arrPause{{{wakeUp.getHandle()}}};
        if (wakeUp.getHandle() < 0) {
            SocketApi::waitForAny(sockets, std::min(time, Slice));
        } else if (sockets.empty()) {
            SocketApi::waitForAny(arrPause, time);
        } else {
            std::vector<SocketApi::Wait> vecAll(sockets.begin(), sockets.end());
            vecAll.push_back(arrPause[0]);
            SocketApi::waitForAny(vecAll, time);
            std::copy_n(vecAll.begin(), sockets.size(), sockets.begin());
        }
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
