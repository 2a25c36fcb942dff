// The thread that devices live on.
#pragma once

#include <asio/dispatch.hpp>
#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <future>
#include <memory>
#include <thread>
#include <utility>

// Runs one input and output context until it is destroyed. Everything of the devices on it happens
// on its thread, so they need no locks.
class DeviceLoop {
public:
    DeviceLoop();
    ~DeviceLoop();
    DeviceLoop(const DeviceLoop&) = delete;
    DeviceLoop& operator=(const DeviceLoop&) = delete;

    asio::io_context& context() { return m_context; }

    // Runs an action on the thread, waits for it, and gives its result or its exception.
    template <class Action>
    auto run(Action action) {
        using Task = std::packaged_task<decltype(action())()>;
        const auto pTask = std::make_shared<Task>(std::move(action));
        auto result = pTask->get_future();
        asio::dispatch(m_context, [pTask] { (*pTask)(); });
        return result.get();
    }

private:
    void work();

    asio::io_context m_context;
    asio::executor_work_guard<asio::io_context::executor_type> m_work;
    std::thread m_thread;
};
