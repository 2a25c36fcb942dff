// A device on the loopback that a test scripts, over plain sockets.
#include "support/ScriptedPeer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <utility>

#include "support/WireBytes.h"

std::string peerMessage(SDKCommandHeadInfo head, const std::string& strBody,
                        std::uint16_t nProtocolType) {
    head.setProtocolType(nProtocolType);
    head.setPayloadLength(static_cast<std::uint32_t>(strBody.size()));
    CommandBuffer bytes;
    encodeCommandHead(head, bytes);
    return bytesOf(bytes) + strBody;
}

std::string peerBody(const std::string& strElements) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<Parameters Version=\"1\">" +
           strElements + "</Parameters>";
}

std::string peerResult(int nCode, const std::string& strElements) {
    return peerBody("<Result Code=\"" + std::to_string(nCode) + "\" />" + strElements);
}

std::string peerAnswer(const PeerRequest& request, std::uint32_t nCommandID,
                       const std::string& strBody) {
    SDKCommandHeadInfo head = request.m_head;
    head.setCommandID(nCommandID);
    return peerMessage(head, strBody);
}

bool PeerLink::read(PeerRequest& request) {
    std::array<std::uint8_t, SDKCommandHeadInfo::WireLength> arrHead{};
    if (!readBytes(arrHead.data(), arrHead.size()) ||
        !decodeCommandHead(arrHead.data(), arrHead.size(), request.m_head)) {
        return false;
    }
    request.m_strBody.resize(request.m_head.getPayloadLength());
    return readBytes(request.m_strBody.data(), request.m_strBody.size());
}

bool PeerLink::readBytes(void* pInto, std::size_t nLength) {
    return nLength == 0 ||
           recv(m_nSocket, pInto, nLength, MSG_WAITALL) == static_cast<ssize_t>(nLength);
}

void PeerLink::send(const std::string& strBytes) {
    // On a blocking socket all of it is sent, unless the connection ends first.
    ::send(m_nSocket, strBytes.data(), strBytes.size(), MSG_NOSIGNAL);
}

ScriptedPeer::ScriptedPeer(Script script) : m_script(std::move(script)) {
    m_nListener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t nLength = sizeof address;
    auto* pAddress = reinterpret_cast<sockaddr*>(&address);
    if (bind(m_nListener, pAddress, nLength) != 0 || listen(m_nListener, 8) != 0 ||
        getsockname(m_nListener, pAddress, &nLength) != 0) {
        throw std::runtime_error("no listening socket on the loopback");
    }
    m_nPort = ntohs(address.sin_port);
    m_thread = std::thread(&ScriptedPeer::serve, this);
}

ScriptedPeer::~ScriptedPeer() {
    {
        const std::lock_guard guard(m_mutex);
        m_bEnding = true;
        shutdown(m_nListener, SHUT_RDWR);
        if (m_nLink >= 0) {
            shutdown(m_nLink, SHUT_RDWR);
        }
    }
    m_thread.join();
    ::close(m_nListener);
}

void ScriptedPeer::serve() {
    int nSocket = -1;
    while ((nSocket = accept(m_nListener, nullptr, nullptr)) >= 0) {
        std::unique_lock lock(m_mutex);
        if (!m_bEnding) {
            m_nLink = nSocket;
            lock.unlock();
            PeerLink link(nSocket);
            m_script(link);
            lock.lock();
        }
        m_nLink = -1;
        ::close(nSocket);
    }
}

ScriptedPeer::Script answerEach(std::function<std::string(const PeerRequest&)> answer) {
    return [answer = std::move(answer)](PeerLink& link) {
        PeerRequest request;
        while (link.read(request)) {
            link.send(answer(request));
        }
    };
}
