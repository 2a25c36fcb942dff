// One connection to a device: reads a request, sends its answer, and so on in turn.
#pragma once

#include <array>
#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "protocol/CommandBuffer.h"
#include "protocol/SDKCommandHeadInfo.h"
#include "virtual-device/Answer.h"
#include "virtual-device/DeviceCore.h"

// Owned by whoever made it, who hears when it closes. A head that is invalid or announces too much
// ends the connection, because nothing after it can be made out; a body that does not decode is
// refused. One that takes too long over its requests, or over our answers, is ended.
class DeviceConnection : public std::enable_shared_from_this<DeviceConnection> {
public:
    // The most that a request may announce, before and after the login: while one is decoded, all
    // devices on the thread wait. Memory is taken as bytes arrive.
    static constexpr std::uint32_t MaxPayloadBeforeLogin = 64U << 10;
    static constexpr std::uint32_t MaxPayload = 512U << 10;

    // What the owner does: lets go of the connection that closed; ends all connections, as the
    // device restarts. Both have to be there; they are called on the thread of the socket, onClosed
    // once.
    struct Owner {
        std::function<void(const std::shared_ptr<DeviceConnection>&)> onClosed;
        std::function<void()> onRestart;
    };

    DeviceConnection(asio::ip::tcp::socket socket, std::shared_ptr<DeviceCore> pCore, Owner owner);

    void start();
    void startRefusing();  // the first request is answered with a refusal, and is the last one
    void close();

    // The number of the session of this connection, 0 without one.
    std::uint32_t getSession() const { return m_nSession; }
    void dropSession() { m_nSession = 0; }

private:
    // Whether a step that has just ended was the last one; an error closes the connection.
    bool isOver(asio::error_code nError);
    void limitTime();
    void readHead();
    void takeHead();
    void readBody();
    void takeBytes(std::size_t nCount);
    void takeRequest();
    void deliver(Answer answer);
    void sendAfter(std::chrono::milliseconds nDelay);
    void send();
    void afterSending();

    asio::ip::tcp::socket m_socket;
    asio::steady_timer m_delay;
    asio::steady_timer m_limit;  // for the step under way
    std::shared_ptr<DeviceCore> m_pCore;
    Owner m_owner;
    bool m_bClosed = false;
    bool m_bRefuses = false;
    std::string m_strPeer;
    std::uint32_t m_nSession = 0;

    std::array<std::uint8_t, 16384> m_arrArrived{};
    SDKCommandHeadInfo m_head;
    CommandBuffer m_request;  // head and as much of the body as has arrived

    Message m_vecOutgoing;
    std::size_t m_nSent = 0;
    Answer m_answer;
};
