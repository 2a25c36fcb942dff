#include "support/ScriptedPeer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <utility>

#include "protocol/CommandBuffer.h"

namespace {

sockaddr_in loopback() {
    sockaddr_in objAddress{};
    objAddress.sin_family = AF_INET;
    objAddress.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return objAddress;
}

}  // namespace

std::string peerMessage(SDKCommandHeadInfo objHead, const std::string& strBody,
                        std::uint16_t nProtocolType) {
    objHead.setProtocolType(nProtocolType);
    objHead.setPayloadLength(static_cast<std::uint32_t>(strBody.size()));
    CommandBuffer objBytes;
    encodeCommandHead(objHead, objBytes);
    return std::string(reinterpret_cast<const char*>(objBytes.data()), objBytes.getLength()) +
           strBody;
}

std::string peerBody(const std::string& strElements) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<Parameters Version=\"1\">" +
           strElements + "</Parameters>";
}

std::string peerResult(int nCode, const std::string& strElements) {
    return peerBody("<Result Code=\"" + std::to_string(nCode) + "\" />" + strElements);
}

std::string peerAnswer(const PeerRequest& objRequest, std::uint32_t nCommandID,
                       const std::string& strBody) {
    SDKCommandHeadInfo objHead = objRequest.m_objHead;
    objHead.setCommandID(nCommandID);
    return peerMessage(objHead, strBody);
}

bool PeerLink::read(PeerRequest& objRequest) {
    std::array<std::uint8_t, SDKCommandHeadInfo::WireLength> arrHead{};
    if (!readBytes(arrHead.data(), arrHead.size()) ||
        !decodeCommandHead(arrHead.data(), arrHead.size(), objRequest.m_objHead)) {
        return false;
    }
    objRequest.m_strBody.resize(objRequest.m_objHead.getPayloadLength());
    return readBytes(objRequest.m_strBody.data(), objRequest.m_strBody.size());
}

bool PeerLink::readBytes(void* pInto, std::size_t nLength) {
    return nLength == 0 ||
           recv(m_nSocket, pInto, nLength, MSG_WAITALL) == static_cast<ssize_t>(nLength);
}

bool PeerLink::hasMore() const {
    pollfd objPoll{m_nSocket, POLLIN, 0};
    return poll(&objPoll, 1, 0) > 0;
}

void PeerLink::send(const std::string& strBytes) {
    std::size_t nSent = 0;
    while (nSent < strBytes.size()) {
        const ssize_t nCount =
            ::send(m_nSocket, strBytes.data() + nSent, strBytes.size() - nSent, MSG_NOSIGNAL);
        if (nCount <= 0) {
            return;
        }
        nSent += static_cast<std::size_t>(nCount);
    }
}

void PeerLink::close() {
    shutdown(m_nSocket, SHUT_RDWR);
}

ScriptedPeer::ScriptedPeer(Script objScript) : m_objScript(std::move(objScript)) {
    m_nListener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in objAddress = loopback();
    socklen_t nLength = sizeof objAddress;
    auto* pAddress = reinterpret_cast<sockaddr*>(&objAddress);
    if (bind(m_nListener, pAddress, nLength) != 0 || listen(m_nListener, 8) != 0 ||
        getsockname(m_nListener, pAddress, &nLength) != 0) {
        throw std::runtime_error("no listening socket on the loopback");
    }
    m_nPort = ntohs(objAddress.sin_port);
    m_objThread = std::thread(&ScriptedPeer::serve, this);
}

ScriptedPeer::~ScriptedPeer() {
    {
        const std::lock_guard objGuard(m_objMutex);
        m_bEnding = true;
        shutdown(m_nListener, SHUT_RDWR);
        if (m_nLink >= 0) {
            shutdown(m_nLink, SHUT_RDWR);
        }
    }
    m_objThread.join();
    ::close(m_nListener);
}

DeviceInfoEx ScriptedPeer::getDeviceInfo() const {
    InetAddr objAddress;
    objAddress.setIP("127.0.0.1");
    objAddress.setPORT(m_nPort);
    objAddress.setIPProtoVer(1);
    DeviceInfoEx objInfo;
    objInfo.setDeviceAddr(objAddress);
    objInfo.setUserID("admin");
    objInfo.setPassword("secret");
    return objInfo;
}

bool ScriptedPeer::open(int nSocket) {
    const std::lock_guard objGuard(m_objMutex);
    m_nLink = nSocket;
    return !m_bEnding;
}

void ScriptedPeer::serve() {
    for (;;) {
        const int nSocket = accept(m_nListener, nullptr, nullptr);
        if (nSocket < 0) {
            return;
        }
        if (open(nSocket)) {
            PeerLink objLink(nSocket);
            m_objScript(objLink);
        }
        const std::lock_guard objGuard(m_objMutex);
        m_nLink = -1;
        ::close(nSocket);
    }
}

ScriptedPeer::Script answerEach(std::function<std::string(const PeerRequest&)> objAnswer) {
    return [objAnswer = std::move(objAnswer)](PeerLink& objLink) {
        PeerRequest objRequest;
        while (objLink.read(objRequest)) {
            objLink.send(objAnswer(objRequest));
        }
    };
}

ScriptedPeer::Script answerAll(std::uint32_t nCommandID, int nCode) {
    return answerEach([=](const PeerRequest& objRequest) {
        return peerAnswer(objRequest, nCommandID, peerResult(nCode));
    });
}
