// Hears the settings of the network that are sent to all devices at once.
#pragma once

#include <array>
#include <asio/ip/udp.hpp>
#include <cstdint>
#include <memory>

#include "virtual-device/Answer.h"
#include "virtual-device/DeviceCore.h"

// Joins the group 234.5.6.7 on the interface of the device's own address, and on no other. Answers
// go to the sender alone.
class MulticastListener : public std::enable_shared_from_this<MulticastListener> {
public:
    static constexpr const char* Group = "234.5.6.7";
    static constexpr std::uint16_t Port = 31001;

    // Throws std::system_error when the group cannot be joined, an IPv6 device included.
    MulticastListener(asio::io_context& context, std::shared_ptr<DeviceCore> pCore);

    void start() { receive(); }
    void close();

private:
    void receive();
    void take(std::size_t nLength);
    void deliver(const Answer& answer);
    void send(const std::vector<Message>& vecMessages, const asio::ip::udp::endpoint& peer);

    asio::io_context& m_context;
    asio::ip::udp::socket m_socket;
    std::shared_ptr<DeviceCore> m_pCore;
    asio::ip::udp::endpoint m_peer;
    std::array<std::uint8_t, 65536> m_arrArrived{};
};
