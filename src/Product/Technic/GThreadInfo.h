// What a GThread and those who watch it share.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

// Safe from any thread.
class GThreadInfo {
public:
    enum State : std::int32_t {
        Running = 1,  // the loop shall go on
        Stopped = 2,
    };

    explicit GThreadInfo(const std::string& strName) : m_strName(strName) {}

    std::uint32_t getThreadId() const noexcept { return m_nThreadId; }
    void setThreadId(std::uint32_t nThreadId) noexcept { m_nThreadId = nThreadId; }

    State getState() const noexcept { return m_nState; }
    void setState(State nState) noexcept { m_nState = nState; }

    const std::string& getName() const noexcept { return m_strName; }

    void setTuning(std::int32_t nTuning) noexcept { m_nTuning = nTuning; }

private:
    std::atomic<std::uint32_t> m_nThreadId{0};  // 0 until the thread runs
    std::atomic<State> m_nState{Stopped};
    std::atomic<std::int32_t> m_nTuning{60};  // part of the shape on devices, unread here
    const std::string m_strName;

protected:
    std::int64_t m_nReserved = 0;  // part of the shape on devices, unread here
};
