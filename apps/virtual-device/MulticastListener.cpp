// One socket on the group; a datagram is a whole command.
#include "virtual-device/MulticastListener.h"

#include <asio/buffer.hpp>
#include <asio/ip/multicast.hpp>
#include <asio/steady_timer.hpp>
#include <exception>
#include <sstream>

#include "protocol/SDKCommandParam.h"
#include "protocol/SDKCommandParser.h"

namespace {

// Bound to the group, the socket hears nothing else, and further devices can share it.
asio::ip::udp::socket joinGroup(asio::io_context& context, const std::string& strInterface) {
    const auto group = asio::ip::make_address_v4(MulticastListener::Group);
    asio::ip::udp::socket socket(context, asio::ip::udp::v4());
    socket.set_option(asio::ip::udp::socket::reuse_address(true));
    socket.bind({group, MulticastListener::Port});
    socket.set_option(
        asio::ip::multicast::join_group(group, asio::ip::make_address_v4(strInterface)));
    return socket;
}

}  // namespace

MulticastListener::MulticastListener(asio::io_context& context, std::shared_ptr<DeviceCore> pCore)
    : m_context(context),
      m_socket(joinGroup(context, pCore->getOptions().strBindAddress)),
      m_pCore(std::move(pCore)) {}

void MulticastListener::close() {
    asio::error_code nIgnored;
    m_socket.close(nIgnored);
}

void MulticastListener::receive() {
    m_socket.async_receive_from(
        asio::buffer(m_arrArrived), m_peer,
        [this, pSelf = shared_from_this()](asio::error_code nError, std::size_t nLength) {
            if (!m_socket.is_open() || nError == asio::error::operation_aborted) {
                return;
            }
            if (!nError) {
                take(nLength);
            }
            receive();
        });
}

void MulticastListener::take(std::size_t nLength) try {
    CommandBuffer buffer;
    SafePointer<CommandParam> param;
    if (!buffer.allocate(nLength) ||
        !buffer.append(m_arrArrived.data(), static_cast<std::uint32_t>(nLength)) ||
        !SDKCommandParser().parseCommand(buffer, param)) {
        return;
    }
    const auto& command = static_cast<const SDKCommandParam&>(*param);
    const Request request{command.getHead(), command.getDomains()};
    std::ostringstream peer;
    peer << m_peer;
    const auto answer = m_pCore->answerMulticast(request, peer.str());
    if (answer) {
        deliver(*answer);
    }
} catch (const std::exception& error) {
    m_pCore->log("multicast", error.what());
}

void MulticastListener::deliver(const Answer& answer) {
    std::vector<Message> vecMessages;
    if (!encodeAnswer(answer, vecMessages)) {
        return;
    }
    const auto pTimer = std::make_shared<asio::steady_timer>(m_context, answer.nDelay);
    pTimer->async_wait([this, pSelf = shared_from_this(), pTimer, vecMessages,
                        peer = m_peer](asio::error_code) { send(vecMessages, peer); });
}

void MulticastListener::send(const std::vector<Message>& vecMessages,
                             const asio::ip::udp::endpoint& peer) {
    for (const Message& message : vecMessages) {
        asio::error_code nIgnored;  // the sender may be gone, and the socket closed
        m_socket.send_to(asio::buffer(message), peer, 0, nIgnored);
    }
}
