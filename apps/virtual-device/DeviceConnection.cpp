// The turns of a connection. Each step starts the next one when its input or output is done.
#include "virtual-device/DeviceConnection.h"

#include <algorithm>
#include <asio/buffer.hpp>
#include <asio/read.hpp>
#include <asio/write.hpp>
#include <exception>
#include <sstream>
#include <utility>

#include "protocol/SDKCommandParam.h"
#include "protocol/SDKCommandParser.h"

namespace {

std::string nameOf(const asio::ip::tcp::socket& socket) {
    asio::error_code nError;
    std::ostringstream objText;
    objText << socket.remote_endpoint(nError);
    return objText.str();
}

}  // namespace

DeviceConnection::DeviceConnection(asio::ip::tcp::socket objSocket,
                                   std::shared_ptr<DeviceCore> pobjCore, Owner objOwner)
    : m_objSocket(std::move(objSocket)),
      m_objDelay(m_objSocket.get_executor()),
      m_pobjCore(std::move(pobjCore)),
      m_objOwner(std::move(objOwner)),
      m_strPeer(nameOf(m_objSocket)) {
    asio::error_code nIgnored;
    m_objSocket.set_option(asio::ip::tcp::no_delay(true), nIgnored);
}

void DeviceConnection::start() {
    m_pobjCore->log(m_strPeer, "connected");
    readHead();
}

void DeviceConnection::close() {
    if (m_bClosed) {
        return;
    }
    m_bClosed = true;
    m_pobjCore->log(m_strPeer, "closed");
    asio::error_code nIgnored;
    m_objSocket.close(nIgnored);
    m_objDelay.cancel();
    m_nSession = 0;
    // What the owner gave may be all that keeps it alive.
    const Owner objOwner = std::exchange(m_objOwner, {});
    objOwner.onClosed(shared_from_this());
}

bool DeviceConnection::isOver(asio::error_code nError) {
    if (nError) {
        close();
    }
    return m_bClosed;
}

void DeviceConnection::readHead() {
    asio::async_read(m_objSocket, asio::buffer(m_arrArrived, SDKCommandHeadInfo::WireLength),
                     [this, pobjSelf = shared_from_this()](asio::error_code nError, std::size_t) {
                         if (!isOver(nError)) {
                             takeHead();
                         }
                     });
}

void DeviceConnection::takeHead() {
    constexpr std::uint32_t HeadLength = SDKCommandHeadInfo::WireLength;
    if (!decodeCommandHead(m_arrArrived.data(), HeadLength, m_objHead) ||
        m_objHead.getPayloadLength() > MaxPayload || !m_objRequest.allocate(HeadLength) ||
        !m_objRequest.append(m_arrArrived.data(), HeadLength)) {
        close();
        return;
    }
    readBody();
}

void DeviceConnection::readBody() {
    const std::size_t nWhole = SDKCommandHeadInfo::WireLength + m_objHead.getPayloadLength();
    const std::size_t nMissing = nWhole - m_objRequest.getLength();
    if (nMissing == 0) {
        takeRequest();
        return;
    }
    m_objSocket.async_read_some(
        asio::buffer(m_arrArrived, std::min(nMissing, m_arrArrived.size())),
        [this, pobjSelf = shared_from_this()](asio::error_code nError, std::size_t nCount) {
            if (!isOver(nError)) {
                takeBytes(nCount);
            }
        });
}

void DeviceConnection::takeBytes(std::size_t nCount) {
    const std::uint64_t nNeeded = m_objRequest.getLength() + nCount;
    const bool bFits = nNeeded <= m_objRequest.getCapacity() ||
                       m_objRequest.grow(std::max<std::uint64_t>(
                           nNeeded, std::uint64_t{m_objRequest.getCapacity()} * 2));
    if (!bFits || !m_objRequest.append(m_arrArrived.data(), static_cast<std::uint32_t>(nCount))) {
        close();
        return;
    }
    readBody();
}

void DeviceConnection::takeRequest() try {
    SafePointer<CommandParam> objParam;
    const bool bDecoded = SDKCommandParser().parseCommand(m_objRequest, objParam);
    m_objRequest.release();
    if (!bDecoded) {
        deliver(m_pobjCore->refuse(m_objHead, m_strPeer));
        return;
    }
    const auto& objCommand = static_cast<const SDKCommandParam&>(*objParam);
    const Request objRequest{objCommand.getHead(), objCommand.getDomains()};
    deliver(m_pobjCore->answer(objRequest, m_nSession, m_strPeer));
} catch (const std::exception& objError) {
    // Records share the process's table of pointers, which others can have filled.
    if (!m_bClosed) {
        m_pobjCore->log(m_strPeer, objError.what());
    }
    close();
}

void DeviceConnection::deliver(Answer objAnswer) {
    std::vector<Message> vecMessages;
    if (!encodeAnswer(objAnswer, vecMessages)) {
        close();
        return;
    }
    m_vecOutgoing.clear();
    for (const Message& message : vecMessages) {
        m_vecOutgoing.insert(m_vecOutgoing.end(), message.begin(), message.end());
    }
    objAnswer.vecRecords.clear();
    m_objAnswer = std::move(objAnswer);
    m_nSent = 0;
    if (m_objAnswer.nDelay.count() == 0) {
        send();
        return;
    }
    m_objDelay.expires_after(m_objAnswer.nDelay);
    m_objDelay.async_wait([this, pobjSelf = shared_from_this()](asio::error_code nError) {
        if (!isOver(nError)) {
            send();
        }
    });
}

void DeviceConnection::send() {
    const std::size_t nLeft = m_vecOutgoing.size() - m_nSent;
    if (nLeft == 0) {
        afterSending();
        return;
    }
    asio::async_write(
        m_objSocket,
        asio::buffer(m_vecOutgoing.data() + m_nSent, m_objAnswer.bTrickles ? 1 : nLeft),
        [this, pobjSelf = shared_from_this()](asio::error_code nError, std::size_t nCount) {
            if (!isOver(nError)) {
                m_nSent += nCount;
                send();
            }
        });
}

void DeviceConnection::afterSending() {
    if (m_objAnswer.bRestarts) {
        const auto onRestart = m_objOwner.onRestart;  // outlives this connection's end
        onRestart();
        return;
    }
    if (m_objAnswer.bCloses) {
        close();
        return;
    }
    readHead();
}
