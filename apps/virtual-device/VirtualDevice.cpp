// Everything happens on the loop's thread; the callers wait for it.
#include "virtual-device/VirtualDevice.h"

#include "virtual-device/DeviceLoop.h"
#include "virtual-device/DeviceServer.h"

VirtualDevice::VirtualDevice(DeviceOptions options)
    : VirtualDevice(std::move(options), std::make_shared<DeviceLoop>()) {}

VirtualDevice::VirtualDevice(DeviceOptions options, std::shared_ptr<DeviceLoop> pLoop)
    : m_pLoop(std::move(pLoop)),
      m_pServer(std::make_shared<DeviceServer>(m_pLoop->context(), std::move(options))),
      m_nPort(m_pServer->core().getOptions().nPort) {
    m_pLoop->run([this] { m_pServer->start(); });
}

VirtualDevice::~VirtualDevice() {
    m_pLoop->run([this] { m_pServer->close(); });
}

void VirtualDevice::misbehave(const std::string& strText, int nTimes) {
    Misbehaviour misbehaviour = parseMisbehaviour(strText);
    misbehaviour.nTimes = nTimes;
    m_pLoop->run([&] { m_pServer->core().misbehave(misbehaviour); });
}

void VirtualDevice::behave() {
    m_pLoop->run([this] { m_pServer->core().behave(); });
}

void VirtualDevice::dropConnections() {
    m_pLoop->run([this] { m_pServer->dropConnections(); });
}

void VirtualDevice::dropSessions() {
    m_pLoop->run([this] { m_pServer->dropSessions(); });
}

std::size_t VirtualDevice::connectionCount() const {
    return m_pLoop->run([this] { return m_pServer->connectionCount(); });
}

std::size_t VirtualDevice::sessionCount() const {
    return m_pLoop->run([this] { return m_pServer->sessionCount(); });
}

DeviceState VirtualDevice::getState() const {
    return m_pLoop->run([this] { return m_pServer->core().getState(); });
}

std::vector<ReceivedCommand> VirtualDevice::getReceived() const {
    return m_pLoop->run([this] {
        const auto& vecReceived = m_pServer->core().getReceived();
        return std::vector<ReceivedCommand>(vecReceived.begin(), vecReceived.end());
    });
}
