// The turns of a connection. Each step starts the next one when its input or output is done.
#include "virtual-device/DeviceConnection.h"

#include <algorithm>
#include <asio/buffer.hpp>
#include <asio/read.hpp>
#include <asio/write.hpp>
#include <chrono>
#include <exception>
#include <sstream>
#include <utility>

#include "protocol/SDKCommandParam.h"
#include "protocol/SDKCommandParser.h"
#include "virtual-device/DeviceResult.h"

namespace {

std::string nameOf(const asio::ip::tcp::socket& socket) {
    asio::error_code nError;
    std::ostringstream text;
    text << socket.remote_endpoint(nError);
    return text.str();
}

}  // namespace

DeviceConnection::DeviceConnection(asio::ip::tcp::socket socket, std::shared_ptr<DeviceCore> pCore,
                                   Owner owner)
    : m_socket(std::move(socket)),
      m_delay(m_socket.get_executor()),
      m_limit(m_socket.get_executor()),
      m_pCore(std::move(pCore)),
      m_owner(std::move(owner)),
      m_strPeer(nameOf(m_socket)) {
    asio::error_code nIgnored;
    m_socket.set_option(asio::ip::tcp::no_delay(true), nIgnored);
}

void DeviceConnection::start() {
    m_pCore->log(m_strPeer, "connected");
    readHead();
}

void DeviceConnection::startRefusing() {
    m_bRefuses = true;
    start();
}

void DeviceConnection::limitTime() {
    const DeviceOptions& options = m_pCore->getOptions();
    m_limit.expires_after(m_nSession == 0 ? options.loginTime : options.idleTime);
    m_limit.async_wait([this, pSelf = shared_from_this()](asio::error_code nError) {
        // A wait that ended just before the next one began does not count.
        if (!nError && m_limit.expiry() <= std::chrono::steady_clock::now()) {
            m_pCore->log(m_strPeer, "took too long");
            close();
        }
    });
}

void DeviceConnection::close() {
    if (m_bClosed) {
        return;
    }
    m_bClosed = true;
    m_pCore->log(m_strPeer, "closed");
    asio::error_code nIgnored;
    m_socket.close(nIgnored);
    m_delay.cancel();
    m_limit.cancel();
    m_nSession = 0;
    // What the owner gave may be all that keeps it alive.
    const Owner owner = std::exchange(m_owner, {});
    owner.onClosed(shared_from_this());
}

bool DeviceConnection::isOver(asio::error_code nError) {
    if (nError) {
        close();
    }
    return m_bClosed;
}

void DeviceConnection::readHead() {
    limitTime();
    asio::async_read(m_socket, asio::buffer(m_arrArrived, SDKCommandHeadInfo::WireLength),
                     [this, pSelf = shared_from_this()](asio::error_code nError, std::size_t) {
                         if (!isOver(nError)) {
                             takeHead();
                         }
                     });
}

void DeviceConnection::takeHead() {
    constexpr std::uint32_t HeadLength = SDKCommandHeadInfo::WireLength;
    const std::uint32_t nMost = m_nSession == 0 ? MaxPayloadBeforeLogin : MaxPayload;
    if (!decodeCommandHead(m_arrArrived.data(), HeadLength, m_head) ||
        m_head.getPayloadLength() > nMost || !m_request.allocate(HeadLength) ||
        !m_request.append(m_arrArrived.data(), HeadLength)) {
        close();
        return;
    }
    readBody();
}

void DeviceConnection::readBody() {
    const std::size_t nWhole = SDKCommandHeadInfo::WireLength + m_head.getPayloadLength();
    const std::size_t nMissing = nWhole - m_request.getLength();
    if (nMissing == 0) {
        takeRequest();
        return;
    }
    m_socket.async_read_some(
        asio::buffer(m_arrArrived, std::min(nMissing, m_arrArrived.size())),
        [this, pSelf = shared_from_this()](asio::error_code nError, std::size_t nCount) {
            if (!isOver(nError)) {
                takeBytes(nCount);
            }
        });
}

void DeviceConnection::takeBytes(std::size_t nCount) {
    const std::uint64_t nNeeded = m_request.getLength() + nCount;
    const bool bFits = nNeeded <= m_request.getCapacity() ||
                       m_request.grow(std::max<std::uint64_t>(
                           nNeeded, std::uint64_t{m_request.getCapacity()} * 2));
    if (!bFits || !m_request.append(m_arrArrived.data(), static_cast<std::uint32_t>(nCount))) {
        close();
        return;
    }
    readBody();
}

void DeviceConnection::takeRequest() try {
    if (m_bRefuses) {
        Answer answer = m_pCore->refuse(m_head, DeviceResult::TooManyConnections, m_strPeer);
        answer.bCloses = true;
        deliver(std::move(answer));
        return;
    }
    SafePointer<CommandParam> param;
    const bool bDecoded = SDKCommandParser().parseCommand(m_request, param);
    m_request.release();
    if (!bDecoded) {
        deliver(m_pCore->refuse(m_head, DeviceResult::MalformedRequest, m_strPeer));
        return;
    }
    const auto& command = static_cast<const SDKCommandParam&>(*param);
    const Request request{command.getHead(), command.getDomains()};
    deliver(m_pCore->answer(request, m_nSession, m_strPeer));
} catch (const std::exception& error) {
    // Records share the process's table of pointers, which others can have filled.
    if (!m_bClosed) {
        m_pCore->log(m_strPeer, error.what());
    }
    close();
}

void DeviceConnection::deliver(Answer answer) {
    std::vector<Message> vecMessages;
    if (!encodeAnswer(answer, vecMessages)) {
        close();
        return;
    }
    m_vecOutgoing.clear();
    for (const Message& message : vecMessages) {
        m_vecOutgoing.insert(m_vecOutgoing.end(), message.begin(), message.end());
    }
    answer.vecRecords.clear();
    m_answer = std::move(answer);
    m_nSent = 0;
    sendAfter(m_answer.nDelay);
}

void DeviceConnection::sendAfter(std::chrono::milliseconds nDelay) {
    if (nDelay.count() == 0) {
        send();
        return;
    }
    m_limit.cancel();
    m_delay.expires_after(nDelay);
    m_delay.async_wait([this, pSelf = shared_from_this()](asio::error_code nError) {
        if (!isOver(nError)) {
            send();
        }
    });
}

void DeviceConnection::send() {
    limitTime();
    const std::size_t nLeft = m_vecOutgoing.size() - m_nSent;
    if (nLeft == 0) {
        afterSending();
        return;
    }
    asio::async_write(
        m_socket, asio::buffer(m_vecOutgoing.data() + m_nSent, m_answer.bTrickles ? 1 : nLeft),
        [this, pSelf = shared_from_this()](asio::error_code nError, std::size_t nCount) {
            if (!isOver(nError)) {
                m_nSent += nCount;
                sendAfter(m_answer.nPace);
            }
        });
}

void DeviceConnection::afterSending() {
    if (m_answer.bRestarts) {
        const auto onRestart = m_owner.onRestart;  // outlives this connection's end
        onRestart();
        return;
    }
    if (m_answer.bCloses) {
        close();
        return;
    }
    readHead();
}
