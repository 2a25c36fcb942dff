// Whose turn it is on a session's connection.
#pragma once

#include <condition_variable>
#include <mutex>
#include <utility>

#include "Product/Technic/ThreadAnnotations.h"

// Belongs to one exchange at a time, from its first step to its last. Unlike a mutex, any number of
// them may be held by one thread, as the heartbeat does. Callable from any thread.
class KX_CAPABILITY ExchangeTurn {
public:
    ExchangeTurn() = default;
    ExchangeTurn(const ExchangeTurn&) = delete;
    ExchangeTurn& operator=(const ExchangeTurn&) = delete;

    void take() KX_ACQUIRE() KX_NO_THREAD_SAFETY_ANALYSIS {
        std::unique_lock lock(m_mutex);
        m_given.wait(lock, [this] { return !m_bTaken; });
        m_bTaken = true;
    }

    // False, without waiting, when another exchange has it.
    bool tryTake() KX_TRY_ACQUIRE(true) KX_NO_THREAD_SAFETY_ANALYSIS {
        const std::lock_guard guard(m_mutex);
        return !std::exchange(m_bTaken, true);
    }

    void give() KX_RELEASE() KX_NO_THREAD_SAFETY_ANALYSIS {
        const std::lock_guard guard(m_mutex);
        m_bTaken = false;
        m_given.notify_one();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_given;
    bool m_bTaken = false;
};

// Holds a turn for a scope.
class KX_SCOPED_CAPABILITY TurnGuard {
public:
    explicit TurnGuard(ExchangeTurn& turn) KX_ACQUIRE(turn) : m_turn(turn) { turn.take(); }
    ~TurnGuard() KX_RELEASE() { m_turn.give(); }
    TurnGuard(const TurnGuard&) = delete;
    TurnGuard& operator=(const TurnGuard&) = delete;

private:
    ExchangeTurn& m_turn;
};
