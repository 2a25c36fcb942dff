// Everything happens on the loop's thread; the callers wait for it.
#include "virtual-device/VirtualDevice.h"

#include <stdexcept>

#include "virtual-device/DeviceLoop.h"
#include "virtual-device/DeviceServer.h"

VirtualDevice::VirtualDevice(DeviceOptions options)
    : VirtualDevice(std::move(options), std::make_shared<DeviceLoop>()) {}

VirtualDevice::VirtualDevice(DeviceOptions options, std::shared_ptr<DeviceLoop> pobjLoop)
    : m_pobjLoop(std::move(pobjLoop)),
      m_pobjServer(std::make_shared<DeviceServer>(m_pobjLoop->context(), std::move(options))),
      m_nPort(m_pobjServer->core().getOptions().nPort) {
    m_pobjLoop->run([this] { m_pobjServer->start(); });
}

VirtualDevice::~VirtualDevice() {
    m_pobjLoop->run([this] { m_pobjServer->close(); });
}

void VirtualDevice::misbehave(const std::string& strText, int nTimes) {
    auto objMisbehaviour = parseMisbehaviour(strText);
    if (!objMisbehaviour) {
        throw std::invalid_argument("no misbehaviour: " + strText);
    }
    objMisbehaviour->nTimes = nTimes;
    m_pobjLoop->run([&] { m_pobjServer->core().misbehave(*objMisbehaviour); });
}

void VirtualDevice::behave() {
    m_pobjLoop->run([this] { m_pobjServer->core().behave(); });
}

void VirtualDevice::dropConnections() {
    m_pobjLoop->run([this] { m_pobjServer->dropConnections(); });
}

void VirtualDevice::dropSessions() {
    m_pobjLoop->run([this] { m_pobjServer->dropSessions(); });
}

std::size_t VirtualDevice::connectionCount() const {
    return m_pobjLoop->run([this] { return m_pobjServer->connectionCount(); });
}

std::size_t VirtualDevice::sessionCount() const {
    return m_pobjLoop->run([this] { return m_pobjServer->sessionCount(); });
}

DeviceState VirtualDevice::getState() const {
    return m_pobjLoop->run([this] { return m_pobjServer->core().getState(); });
}

std::vector<ReceivedCommand> VirtualDevice::getReceived() const {
    return m_pobjLoop->run([this] {
        const auto& vecReceived = m_pobjServer->core().getReceived();
        return std::vector<ReceivedCommand>(vecReceived.begin(), vecReceived.end());
    });
}
