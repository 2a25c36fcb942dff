// A socket for IPv4 or IPv6, stream or datagrams.
#include "Product/Technic/Socket.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <memory>
#include <string>

#include "Product/Technic/platform/NameResolution.h"
#include "Product/Technic/platform/SocketApi.h"

using SocketApi::Address;
using SocketApi::Direction;
using SocketApi::Option;

namespace {

constexpr int KeepAliveSeconds = 3;
constexpr std::int32_t SendAllTimeoutMs = 300;
constexpr int MaxExtraSends = 4;
constexpr int MaxExtraWaits = 4;
constexpr std::chrono::microseconds ExtraWait{1};
constexpr std::size_t HostTextSize = 49;

void storeAddress(InetAddr& address, const char* pszHost, std::uint16_t nPort, int nIpVersion) {
    address.setIP(pszHost);
    address.setPORT(nPort);
    address.setIPProtoVer(nIpVersion);
}

// These pass with the connection or the port that caused them.
bool isPassing(int nError) {
    return nError == EADDRINUSE || nError == ECONNRESET || nError == EPIPE || nError == ENOENT;
}

}  // namespace

Socket::Socket(std::int32_t nIpVersion, std::int32_t nType)
    : m_nIpVersion(nIpVersion), m_nFamily(SocketApi::familyOf(nIpVersion)), m_nType(nType) {}

Socket::~Socket() {
    Socket::close();
}

bool Socket::open() {
    close();
    m_nHandle = reported(SocketApi::openSocket(m_nFamily, m_nType));
    if (m_nHandle < 0) {
        return false;
    }
    if (m_nType == Stream) {
        setNoDelay();
        keepAlive();
        readSendBufferSize();
    }
    m_nStickyError = 0;
    return true;
}

bool Socket::close() {
    m_bReserved = false;
    if (m_nHandle != -1) {
        SocketApi::closeSocket(m_nHandle);
        m_nHandle = -1;
    }
    m_nSendTimeout = 0;
    return true;
}

bool Socket::bind(const char* pszHost, std::uint16_t nPort) {
    Address address;
    return !isRefused() && resolve(pszHost, nPort, SocketApi::Passive, address) && bindTo(address);
}

bool Socket::bind(const char* pszIp) {
    if (pszIp == nullptr || m_nIpVersion == 2) {
        return bind(pszIp, 0);
    }
    Address address;
    return !isRefused() && reported(SocketApi::parseIPv4(pszIp, 0, address)) >= 0 &&
           bindTo(address);
}

bool Socket::bind(const InetAddr& address) {
    return bind(address.getIP().c_str(), address.getPORT());
}

std::int32_t Socket::sendTo(const void* pBuffer, std::int32_t nLength, const char* pszHost,
                            std::uint16_t nPort, std::int32_t nChunk) {
    Address address;
    if (isRefused() || !resolveReceiver(pszHost, nPort, address)) {
        return Failed;
    }
    const auto* pBytes = static_cast<const char*>(pBuffer);
    std::int32_t nSent = 0;
    for (;;) {
        const std::int32_t nRest = nLength - nSent;
        const std::int32_t nPiece = std::min(nChunk, nRest);
        const int nResult = SocketApi::sendBytesTo(m_nHandle, pBytes + nSent, nPiece, address);
        if (nResult < 1) {
            reportError();
            return Failed;
        }
        nSent += nResult;
        if (nPiece == nRest) {
            return nSent;
        }
    }
}

std::int32_t Socket::sendTo(const void* pBuffer, std::int32_t nLength, const char* pszHost,
                            std::uint16_t nPort) {
    return sendTo(pBuffer, nLength, pszHost, nPort, nLength);
}

std::int32_t Socket::sendTo(const void* pBuffer, std::int32_t nLength, InetAddr& address,
                            std::int32_t nChunk) {
    return sendTo(pBuffer, nLength, address.getIP().c_str(), address.getPORT(), nChunk);
}

std::int32_t Socket::sendTo(const void* pBuffer, std::int32_t nLength, InetAddr& address) {
    return sendTo(pBuffer, nLength, address.getIP().c_str(), address.getPORT());
}

std::int32_t Socket::sendTo(const void* pBuffer, std::int32_t nLength, const InetAddr& address) {
    InetAddr copy = address;
    return sendTo(pBuffer, nLength, copy);
}

std::int32_t Socket::waitRead(std::int32_t nTimeoutMs) {
    return wait(Direction::Read, nTimeoutMs);
}

std::int32_t Socket::waitWrite(std::int32_t nTimeoutMs) {
    return wait(Direction::Write, nTimeoutMs);
}

std::int32_t Socket::recvFrom(void* pBuffer, std::int32_t nLength, InetAddr& sender,
                              std::int32_t nTimeoutMs) {
    const std::int32_t nReady = waitRead(nTimeoutMs);
    return nReady == 0 ? recvFrom(pBuffer, nLength, sender) : nReady;
}

std::int32_t Socket::recvFrom(void* pBuffer, std::int32_t nLength, InetAddr& sender) {
    std::array<char, HostTextSize> arrHost{};
    std::uint16_t nPort = 0;
    const std::int32_t nCount = recvFrom(pBuffer, nLength, arrHost.data(), &nPort);
    if (nCount > 0) {
        storeAddress(sender, arrHost.data(), nPort, m_nIpVersion);
    }
    return nCount;
}

std::int32_t Socket::recvFrom(void* pBuffer, std::int32_t nLength, char* pszHost,
                              std::uint16_t* pPort) {
    if (isRefused() || pszHost == nullptr || pPort == nullptr) {
        return Failed;
    }
    Address sender;
    const int nCount = reported(SocketApi::recvBytesFrom(m_nHandle, pBuffer, nLength, sender));
    if (nCount <= 0 || reported(SocketApi::describe(sender, pszHost, HostTextSize, *pPort)) < 0) {
        return Failed;
    }
    return nCount;
}

bool Socket::connect(const char* pszHost, std::uint16_t nPort, std::int32_t nTimeoutMs) {
    Address address;
    if (isRefused() || pszHost == nullptr || !setNonBlocking(true) ||
        !resolve(pszHost, nPort, SocketApi::NumericHost, address)) {
        return false;
    }
    SocketApi::connectTo(m_nHandle, address);  // under way; the wait tells what came of it
    if (wait(Direction::Write, nTimeoutMs) < 0) {
        return false;
    }
    // A refused connection makes the socket ready as well; only a connected one has a peer.
    Address peer;
    if (reported(SocketApi::peerAddress(m_nHandle, peer)) < 0 || !setNonBlocking(false)) {
        return false;
    }
    storePeer(pszHost, nPort);
    return true;
}

bool Socket::connect(const char* pszHost, std::uint16_t nPort) {
    Address address;
    if (isRefused() || pszHost == nullptr ||
        !resolve(pszHost, nPort, SocketApi::NumericHost, address) ||
        reported(SocketApi::connectTo(m_nHandle, address)) < 0) {
        return false;
    }
    storePeer(pszHost, nPort);
    return true;
}

bool Socket::connect(const InetAddr& address, std::int32_t nTimeoutMs) {
    return connect(address.getIP().c_str(), address.getPORT(), nTimeoutMs);
}

bool Socket::connect(const InetAddr& address) {
    return connect(address.getIP().c_str(), address.getPORT());
}

bool Socket::listen(std::int32_t nBacklog) {
    return !isRefused() && reported(SocketApi::listenOn(m_nHandle, nBacklog)) >= 0;
}

std::int32_t Socket::accept(Socket& into, std::int32_t nTimeoutMs) {
    const std::int32_t nReady = waitRead(nTimeoutMs);
    return nReady == 0 ? acceptInto(into) : nReady;
}

std::int32_t Socket::accept(Socket*& pMade, std::int32_t nTimeoutMs) {
    auto pSocket = std::make_unique<Socket>(m_nIpVersion, m_nType);
    const std::int32_t nResult = accept(*pSocket, nTimeoutMs);
    if (nResult == 0) {
        pMade = pSocket.release();
    }
    return nResult;
}

std::int32_t Socket::acceptInto(Socket& into) {
    Address peer;
    const int nHandle = reported(SocketApi::acceptFrom(m_nHandle, peer));
    if (nHandle < 0) {
        return Failed;
    }
    into.close();
    into.setHandle(nHandle);
    into.m_nFamily = m_nFamily;
    std::array<char, 128> arrHost{};
    std::uint16_t nPort = 0;
    if (reported(SocketApi::describe(peer, arrHost.data(), arrHost.size(), nPort)) < 0) {
        into.close();
        return Failed;
    }
    storeAddress(into.m_address, arrHost.data(), nPort, m_nIpVersion);
    return 0;
}

std::int32_t Socket::send(const void* pBuffer, std::int32_t nLength, std::int32_t nTimeoutMs) {
    if (isRefused()) {
        return Failed;
    }
    const std::int32_t nTimeout = std::max(nTimeoutMs, 0);
    if (nTimeout != m_nSendTimeout) {
        m_nSendTimeout = nTimeout;
        reported(SocketApi::setSendTimeout(m_nHandle, std::chrono::milliseconds(nTimeout)));
    }
    if (m_nShut == 1) {
        return Failed;
    }
    const auto timeout = nTimeout == 0 ? SocketApi::NoLimit : std::chrono::milliseconds(nTimeout);
    const int nCount = reported(SocketApi::sendWithin(m_nHandle, pBuffer, nLength, timeout));
    return nCount < 0 ? Failed : nCount;
}

std::int32_t Socket::send(const void* pBuffer, std::int32_t nLength) {
    return send(pBuffer, nLength, -1);
}

std::int32_t Socket::send(const void* pBuffer, std::int32_t nLength, bool bWhole) {
    if (bWhole) {
        return sendWhole(static_cast<const char*>(pBuffer), nLength);
    }
    const int nCount = SocketApi::sendBytes(m_nHandle, pBuffer, nLength);
    if (nCount >= 0) {
        return nCount;
    }
    return SocketApi::isWouldBlock(errno) ? WouldBlock : Failed;
}

std::int32_t Socket::sendWhole(const char* pBuffer, std::int32_t nLength) noexcept {
    std::int32_t nSum = 0;
    int nSends = 0;
    int nWaits = 0;
    while (nSum < nLength) {
        const int nCount = SocketApi::sendBytes(m_nHandle, pBuffer + nSum, nLength - nSum);
        if (nCount > 0) {
            nSum += nCount;
            if (nSends++ == MaxExtraSends) {
                return nSum;
            }
        } else if (!SocketApi::isWouldBlock(errno)) {
            return Failed;
        } else if (nWaits++ == MaxExtraWaits) {
            return nSum == 0 ? WouldBlock : nSum;
        } else {
            reported(SocketApi::waitFor(m_nHandle, Direction::Write, ExtraWait));
        }
    }
    return nSum;
}

std::int32_t Socket::recv(void* pBuffer, std::int32_t nLength) {
    const int nCount = SocketApi::recvBytes(m_nHandle, pBuffer, nLength);
    if (nCount > 0) {
        return nCount;
    }
    return nCount < 0 && SocketApi::isWouldBlock(errno) ? WouldBlock : Failed;
}

std::int32_t Socket::recv(void* pBuffer, std::int32_t nLength, std::int32_t nTimeoutMs,
                          bool bNoWait) {
    if (m_nShut == 1) {
        return Failed;
    }
    if (!bNoWait) {
        const std::int32_t nReady = waitRead(nTimeoutMs);
        if (nReady < 0) {
            return nReady;
        }
    }
    int nError = m_nStickyError;
    if (!isRefused()) {
        const int nCount = reported(SocketApi::recvBytes(m_nHandle, pBuffer, nLength));
        if (nCount >= 0) {
            return nCount > 0 ? nCount : Failed;
        }
        nError = errno;
    }
    return SocketApi::isWouldBlock(nError) ? TimedOut : Failed;
}

bool Socket::getLocalAddress(InetAddr& address) {
    Address local;
    std::array<char, 128> arrHost{};
    std::uint16_t nPort = 0;
    if (isRefused() || reported(SocketApi::localAddress(m_nHandle, local)) < 0 ||
        reported(SocketApi::describe(local, arrHost.data(), arrHost.size(), nPort)) < 0) {
        return false;
    }
    storeAddress(address, arrHost.data(), nPort, m_nIpVersion);
    return true;
}

std::int32_t Socket::sendAll(const void* pBuffer, std::int32_t nLength) {
    const auto* pBytes = static_cast<const char*>(pBuffer);
    std::int32_t nSum = 0;
    while (nSum < nLength) {
        const std::int32_t nCount = send(pBytes + nSum, nLength - nSum, SendAllTimeoutMs);
        if (nCount < 0) {
            return nCount;
        }
        nSum += nCount;
    }
    return nSum;
}

std::int32_t Socket::recvAll(void* pBuffer, std::int32_t nLength) {
    auto* pBytes = static_cast<char*>(pBuffer);
    std::int32_t nSum = 0;
    while (nSum < nLength) {
        const std::int32_t nCount = recv(pBytes + nSum, nLength - nSum, -1, false);
        if (nCount < 0) {
            return Failed;
        }
        nSum += nCount;
    }
    return nSum;
}

bool Socket::setRecvBufferSize(std::int32_t nSize) {
    return !isRefused() && setOption(Option::RecvBufferSize, nSize);
}

bool Socket::getRecvBufferSize(std::int32_t* pSize) {
    return !isRefused() && getOption(Option::RecvBufferSize, pSize);
}

bool Socket::setSendBufferSize(std::int32_t nSize) {
    if (isRefused()) {
        return false;
    }
    const bool bSet = setOption(Option::SendBufferSize, nSize);
    if (m_nType == Stream) {
        readSendBufferSize();
    }
    return bSet;
}

bool Socket::getSendBufferSize(std::int32_t* pSize) {
    return !isRefused() && getOption(Option::SendBufferSize, pSize);
}

bool Socket::setReuseAddr(bool bReuse) {
    return !isRefused() && setOption(Option::ReuseAddr, bReuse ? 1 : 0);
}

bool Socket::setBroadcast(bool bBroadcast) {
    return !isRefused() && setOption(Option::Broadcast, bBroadcast ? 1 : 0);
}

bool Socket::joinGroup(const InetAddr& group) {
    if (isRefused()) {
        return false;
    }
    const std::string& strGroup = group.getIP();
    Address address;
    Address interface;
    if (m_nIpVersion == 2) {
        if (!resolve(strGroup.c_str(), group.getPORT(), SocketApi::NumericHost, address)) {
            return false;
        }
    } else if (reported(SocketApi::parseIPv4(strGroup.c_str(), group.getPORT(), address)) < 0 ||
               reported(SocketApi::localAddress(m_nHandle, interface)) < 0) {
        return false;
    }
    return reported(SocketApi::changeMembership(m_nHandle, SocketApi::Membership::Join, address,
                                                interface)) >= 0;
}

bool Socket::openGroup(const InetAddr& group) {
    setReuseAddr(true);
    Address any;
    return reported(SocketApi::resolve(nullptr, group.getPORT(), m_nFamily, Datagram,
                                       SocketApi::Passive, any)) >= 0 &&
           bindTo(any) && joinGroup(group);
}

bool Socket::setNonBlocking(bool bNonBlocking) {
    return SocketApi::setNonBlocking(m_nHandle, bNonBlocking) >= 0;
}

bool Socket::setNoDelay() {
    return setOption(Option::NoDelay, 1);
}

int Socket::reported(int nResult) noexcept {
    if (nResult < 0) {
        reportError();
    }
    return nResult;
}

void Socket::reportError() noexcept {
    if (m_nType == Stream && !isPassing(errno)) {
        m_nStickyError = errno;
    }
}

bool Socket::resolve(const char* pszHost, std::uint16_t nPort, unsigned nFlags,
                     Address& address) noexcept {
    return reported(SocketApi::resolve(pszHost, nPort, m_nFamily, m_nType, nFlags, address)) >= 0;
}

bool Socket::bindTo(const Address& address) noexcept {
    return reported(SocketApi::bindTo(m_nHandle, address)) >= 0;
}

bool Socket::resolveReceiver(const char* pszHost, std::uint16_t nPort, Address& address) noexcept {
    const bool bEmpty = pszHost == nullptr || *pszHost == '\0';
    return resolve(bEmpty ? nullptr : pszHost, nPort, SocketApi::Passive | SocketApi::NumericHost,
                   address);
}

std::int32_t Socket::wait(Direction direction, std::int32_t nTimeoutMs) noexcept {
    if (isRefused()) {
        return Failed;
    }
    const auto timeout =
        nTimeoutMs < 0 ? SocketApi::NoLimit : std::chrono::milliseconds(nTimeoutMs);
    const int nReady = reported(SocketApi::waitFor(m_nHandle, direction, timeout));
    if (nReady < 0) {
        return Failed;
    }
    return nReady == 0 ? TimedOut : 0;
}

void Socket::storePeer(const char* pszHost, std::uint16_t nPort) {
    storeAddress(m_address, pszHost, nPort, m_nIpVersion);
}

void Socket::keepAlive() noexcept {
    if (setOption(Option::KeepAlive, 1)) {
        setOption(Option::KeepAliveIdle, KeepAliveSeconds);
        setOption(Option::KeepAliveInterval, KeepAliveSeconds);
    }
}

void Socket::readSendBufferSize() noexcept {
    if (!getOption(Option::SendBufferSize, &m_nSendBufferSize)) {
        m_nSendBufferSize = -1;
    }
}

bool Socket::setOption(Option option, int nValue) noexcept {
    return reported(SocketApi::setOption(m_nHandle, option, nValue)) >= 0;
}

bool Socket::getOption(Option option, std::int32_t* pValue) noexcept {
    return pValue != nullptr && reported(SocketApi::getOption(m_nHandle, option, *pValue)) >= 0;
}
