// One context, one thread.
#include "virtual-device/DeviceLoop.h"

#include <cstdio>
#include <exception>

DeviceLoop::DeviceLoop()
    : m_context(1), m_work(asio::make_work_guard(m_context)), m_thread([this] { work(); }) {}

DeviceLoop::~DeviceLoop() {
    m_context.stop();
    m_thread.join();
}

// Running out of memory ends the step under way, not the devices.
void DeviceLoop::work() {
    while (!m_context.stopped()) {
        try {
            m_context.run();
        } catch (const std::exception& error) {
            std::fprintf(stderr, "virtual-device: %s\n", error.what());
        }
    }
}
