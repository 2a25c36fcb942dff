// A device to talk to: listens on a port of this machine and behaves as a camera or a recorder.
//
//     VirtualDevice device;                       // a camera on a free port of 127.0.0.1
//     connectTo("127.0.0.1", device.getPort());
//     device.misbehave("delay=500:getDeviceTime");  // the clock is read half a second late
//
// A device lives on a thread of its own, or shares that of a loop with others. All operations may
// be called from any thread but the loop's own.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "virtual-device/DeviceCore.h"
#include "virtual-device/DeviceOptions.h"

class DeviceLoop;
class DeviceServer;

class VirtualDevice {
public:
    // Listens when it returns. Throws std::runtime_error, which names them, when address and port
    // cannot be had, and std::system_error for the group.
    explicit VirtualDevice(DeviceOptions options = {});
    VirtualDevice(DeviceOptions options, std::shared_ptr<DeviceLoop> pLoop);

    // Ends all connections; the port is free when it returns.
    ~VirtualDevice();
    VirtualDevice(const VirtualDevice&) = delete;
    VirtualDevice& operator=(const VirtualDevice&) = delete;

    std::uint16_t getPort() const { return m_nPort; }

    // Adds a misbehaviour to those in force. The text is NAME[=VALUE][:COMMAND]; it spoils `nTimes`
    // answers, or all from now on for 0. Throws what `parseMisbehaviour` throws.
    void misbehave(const std::string& strText, int nTimes = 0);
    void behave();  // ends all misbehaviour

    // As a power failure of the network: all connections end, and their sessions with them.
    void dropConnections();
    // As a restart that nobody noticed: connections stay, their session numbers are not known.
    void dropSessions();

    std::size_t connectionCount() const;
    std::size_t sessionCount() const;
    DeviceState getState() const;                      // a copy
    std::vector<ReceivedCommand> getReceived() const;  // the last 1000 requests, oldest first

private:
    std::shared_ptr<DeviceLoop> m_pLoop;
    std::shared_ptr<DeviceServer> m_pServer;
    std::uint16_t m_nPort = 0;
};
