// What a transport gives for what it does not do.
#include "session/ITransfer.h"

#include "Product/Technic/ErrorCode.h"

using namespace fleetkit;

namespace {

int codeOf(bool bDone, int nFailure) {
    return bDone ? ErrorCode::Success : nFailure;
}

}  // namespace

ITransfer::ITransfer(int nIPProtoVer, int nTransferType)
    : m_nIPProtoVer(nIPProtoVer), m_nTransferType(nTransferType) {}

ITransfer::~ITransfer() = default;

bool ITransfer::setCommandHeadParser(const SafePointer<ICommandHeadParser>&) {
    return false;
}

int ITransfer::createSocket() {
    const auto nType = m_nTransferType == TransferKind::UDP ? Socket::Datagram : Socket::Stream;
    m_pSocket = std::make_unique<Socket>(m_nIPProtoVer, nType);
    if (!m_pSocket->open()) {
        m_pSocket.reset();
        return ErrorCode::SocketOpenFailed;
    }
    return ErrorCode::Success;
}

int ITransfer::close() {
    m_pSocket.reset();
    return ErrorCode::Success;
}

int ITransfer::setReuseAddr(int nReuse) {
    if (!m_pSocket) {
        return ErrorCode::NoTransport;
    }
    return codeOf(m_pSocket->setReuseAddr(nReuse != 0), ErrorCode::ReuseAddrFailed);
}

int ITransfer::bind(std::uint16_t nPort) {
    if (!m_pSocket) {
        return ErrorCode::NoTransport;
    }
    return codeOf(m_pSocket->bind(nullptr, nPort), ErrorCode::BindFailed);
}

int ITransfer::bind(const InetAddr& address) {
    if (!m_pSocket) {
        return ErrorCode::NoTransport;
    }
    return codeOf(m_pSocket->bind(address), ErrorCode::BindFailed);
}

bool ITransfer::getLocalAddr(InetAddr& address) {
    return m_pSocket && m_pSocket->getLocalAddress(address);
}

void ITransfer::setSocket(Socket* pSocket) {
    if (pSocket != m_pSocket.get()) {
        m_pSocket.reset(pSocket);
    }
}

Socket* ITransfer::getSocket() {
    return m_pSocket.get();
}

// A datagram goes out as a whole, and arrives as one.
int ITransfer::sendSome(const CommandBuffer& buffer, const InetAddr& to, std::uint32_t& nSent) {
    const int nResult = sendCommand(buffer, to, 0);
    nSent = nResult == ErrorCode::Success ? buffer.getLength() : nSent;
    return nResult;
}

int ITransfer::recvSome(CommandBuffer& buffer, InetAddr& from) {
    const int nResult = recvCommand(buffer, 0, from);
    return nResult == ErrorCode::ReceiveTimedOut ? ErrorCode::NothingToRead : nResult;
}

int ITransfer::connect(const InetAddr& address, int nTimeoutMs) {
    if (!m_pSocket) {
        return ErrorCode::NoTransport;
    }
    return codeOf(m_pSocket->connect(address, nTimeoutMs), ErrorCode::ConnectFailed);
}

int ITransfer::connect(const InetAddr& address) {
    if (!m_pSocket) {
        return ErrorCode::NoTransport;
    }
    return codeOf(m_pSocket->connect(address), ErrorCode::ConnectFailed);
}

bool ITransfer::setBroadcast(bool bBroadcast) {
    return m_pSocket && m_pSocket->setBroadcast(bBroadcast);
}

bool ITransfer::joinGroup(const InetAddr& group) {
    return m_pSocket && m_pSocket->joinGroup(group);
}

bool ITransfer::openGroup(const InetAddr& group) {
    return m_pSocket && m_pSocket->openGroup(group);
}

int ITransfer::getIPProtoVer() {
    return m_pSocket && m_pSocket->getIPVersion() == 2 ? 2 : 1;
}

bool ITransfer::setRecvBufferSize(std::int32_t nSize) {
    return m_pSocket && m_pSocket->setRecvBufferSize(nSize);
}

bool ITransfer::setSendBufferSize(std::int32_t nSize) {
    return m_pSocket && m_pSocket->setSendBufferSize(nSize);
}

bool ITransfer::setNonBlocking(bool bNonBlocking) {
    return m_pSocket && m_pSocket->setNonBlocking(bNonBlocking);
}

bool ITransfer::setNoDelay() {
    return m_pSocket && m_pSocket->setNoDelay();
}

bool ITransfer::getRecvBufferSize(std::int32_t* pSize) {
    return m_pSocket && m_pSocket->getRecvBufferSize(pSize);
}

bool ITransfer::getSendBufferSize(std::int32_t* pSize) {
    return m_pSocket && m_pSocket->getSendBufferSize(pSize);
}
