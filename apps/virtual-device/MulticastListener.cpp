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
    const auto objGroup = asio::ip::make_address_v4(MulticastListener::Group);
    asio::ip::udp::socket objSocket(context, asio::ip::udp::v4());
    objSocket.set_option(asio::ip::udp::socket::reuse_address(true));
    objSocket.bind({objGroup, MulticastListener::Port});
    objSocket.set_option(
        asio::ip::multicast::join_group(objGroup, asio::ip::make_address_v4(strInterface)));
    return objSocket;
}

}  // namespace

MulticastListener::MulticastListener(asio::io_context& context,
                                     std::shared_ptr<DeviceCore> pobjCore)
    : m_objContext(context),
      m_objSocket(joinGroup(context, pobjCore->getOptions().strBindAddress)),
      m_pobjCore(std::move(pobjCore)) {}

void MulticastListener::close() {
    asio::error_code nIgnored;
    m_objSocket.close(nIgnored);
}

void MulticastListener::receive() {
    m_objSocket.async_receive_from(
        asio::buffer(m_arrArrived), m_objPeer,
        [this, pobjSelf = shared_from_this()](asio::error_code nError, std::size_t nLength) {
            if (!m_objSocket.is_open() || nError == asio::error::operation_aborted) {
                return;
            }
            if (!nError) {
                take(nLength);
            }
            receive();
        });
}

void MulticastListener::take(std::size_t nLength) try {
    CommandBuffer objBuffer;
    SafePointer<CommandParam> objParam;
    if (!objBuffer.allocate(nLength) ||
        !objBuffer.append(m_arrArrived.data(), static_cast<std::uint32_t>(nLength)) ||
        !SDKCommandParser().parseCommand(objBuffer, objParam)) {
        return;
    }
    const auto& objCommand = static_cast<const SDKCommandParam&>(*objParam);
    const Request objRequest{objCommand.getHead(), objCommand.getDomains()};
    std::ostringstream objPeer;
    objPeer << m_objPeer;
    const auto objAnswer = m_pobjCore->answerMulticast(objRequest, objPeer.str());
    if (objAnswer) {
        deliver(*objAnswer);
    }
} catch (const std::exception& objError) {
    m_pobjCore->log("multicast", objError.what());
}

void MulticastListener::deliver(const Answer& answer) {
    std::vector<Message> vecMessages;
    if (!encodeAnswer(answer, vecMessages)) {
        return;
    }
    const auto pobjTimer = std::make_shared<asio::steady_timer>(m_objContext, answer.nDelay);
    pobjTimer->async_wait([this, pobjSelf = shared_from_this(), pobjTimer, vecMessages,
                           objPeer = m_objPeer](asio::error_code) { send(vecMessages, objPeer); });
}

void MulticastListener::send(const std::vector<Message>& vecMessages,
                             const asio::ip::udp::endpoint& peer) {
    for (const Message& message : vecMessages) {
        asio::error_code nIgnored;  // the sender may be gone, and the socket closed
        m_objSocket.send_to(asio::buffer(message), peer, 0, nIgnored);
    }
}
