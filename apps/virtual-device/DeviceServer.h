// The network side of one device: its acceptor and its connections.
#pragma once

#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>
#include <memory>
#include <vector>

#include "virtual-device/DeviceCore.h"

class DeviceConnection;
class MulticastListener;

// Lives on the thread of its context; kept alive by what is still under way there.
class DeviceServer : public std::enable_shared_from_this<DeviceServer> {
public:
    // Listens from here on. Throws std::runtime_error, with both, when address or port cannot be
    // had.
    DeviceServer(asio::io_context& context, DeviceOptions options);
    ~DeviceServer();

    void start();  // accepts connections
    void close();  // ends all of them and listens no more

    DeviceCore& core() { return *m_pCore; }
    std::size_t connectionCount() const { return m_vecConnections.size(); }
    std::size_t sessionCount() const;

    void dropConnections();
    void dropSessions();

private:
    void accept();
    void serve(asio::ip::tcp::socket socket);
    bool makePlace();  // false when all places are taken by clients that are logged in
    void acceptLater();

    asio::io_context& m_context;
    asio::ip::tcp::acceptor m_acceptor;
    asio::steady_timer m_retry;
    std::shared_ptr<DeviceCore> m_pCore;
    std::shared_ptr<MulticastListener> m_pMulticast;
    std::vector<std::shared_ptr<DeviceConnection>> m_vecConnections;  // the oldest first
};
