// One context, one thread.
#include "virtual-device/DeviceLoop.h"

#include <cstdio>
#include <exception>

DeviceLoop::DeviceLoop()
    : m_objContext(1),
      m_objWork(asio::make_work_guard(m_objContext)),
      m_objThread([this] { work(); }) {}

DeviceLoop::~DeviceLoop() {
    m_objContext.stop();
    m_objThread.join();
}

// Want of memory in one step ends that step and not the devices.
void DeviceLoop::work() {
    while (!m_objContext.stopped()) {
        try {
            m_objContext.run();
        } catch (const std::exception& objError) {
            std::fprintf(stderr, "virtual-device: %s\n", objError.what());
        }
    }
}
