#include "session/ITransfer.h"

#include "Product/Technic/ErrorCode.h"

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
    m_pobjSocket = std::make_unique<Socket>(m_nIPProtoVer, nType);
    if (!m_pobjSocket->open()) {
        m_pobjSocket.reset();
        return ErrorCode::SocketOpenFailed;
    }
    return ErrorCode::Success;
}

int ITransfer::close() {
    m_pobjSocket.reset();
    return ErrorCode::Success;
}

int ITransfer::setReuseAddr(int nReuse) {
    if (!m_pobjSocket) {
        return ErrorCode::NoTransport;
    }
    return codeOf(m_pobjSocket->setReuseAddr(nReuse != 0), ErrorCode::ReuseAddrFailed);
}

int ITransfer::bind(std::uint16_t nPort) {
    if (!m_pobjSocket) {
        return ErrorCode::NoTransport;
    }
    return codeOf(m_pobjSocket->bind(nullptr, nPort), ErrorCode::BindFailed);
}

int ITransfer::bind(const InetAddr& address) {
    if (!m_pobjSocket) {
        return ErrorCode::NoTransport;
    }
    return codeOf(m_pobjSocket->bind(address), ErrorCode::BindFailed);
}

bool ITransfer::getLocalAddr(InetAddr& address) {
    return m_pobjSocket && m_pobjSocket->getLocalAddress(address);
}

void ITransfer::setSocket(Socket* pSocket) {
    if (pSocket != m_pobjSocket.get()) {
        m_pobjSocket.reset(pSocket);
    }
}

Socket* ITransfer::getSocket() {
    return m_pobjSocket.get();
}

int ITransfer::connect(const InetAddr& address, int nTimeoutMs) {
    if (!m_pobjSocket) {
        return ErrorCode::NoTransport;
    }
    return codeOf(m_pobjSocket->connect(address, nTimeoutMs), ErrorCode::ConnectFailed);
}

int ITransfer::connect(const InetAddr& address) {
    if (!m_pobjSocket) {
        return ErrorCode::NoTransport;
    }
    return codeOf(m_pobjSocket->connect(address), ErrorCode::ConnectFailed);
}

bool ITransfer::setBroadcast(bool bBroadcast) {
    return m_pobjSocket && m_pobjSocket->setBroadcast(bBroadcast);
}

bool ITransfer::joinGroup(const InetAddr& group) {
    return m_pobjSocket && m_pobjSocket->joinGroup(group);
}

bool ITransfer::openGroup(const InetAddr& group) {
    return m_pobjSocket && m_pobjSocket->openGroup(group);
}

int ITransfer::getIPProtoVer() {
    return m_pobjSocket && m_pobjSocket->getIPVersion() == 2 ? 2 : 1;
}

bool ITransfer::setRecvBufferSize(std::int32_t nSize) {
    return m_pobjSocket && m_pobjSocket->setRecvBufferSize(nSize);
}

bool ITransfer::setSendBufferSize(std::int32_t nSize) {
    return m_pobjSocket && m_pobjSocket->setSendBufferSize(nSize);
}

bool ITransfer::setNonBlocking(bool bNonBlocking) {
    return m_pobjSocket && m_pobjSocket->setNonBlocking(bNonBlocking);
}

bool ITransfer::setNoDelay() {
    return m_pobjSocket && m_pobjSocket->setNoDelay();
}

bool ITransfer::getRecvBufferSize(std::int32_t* pSize) {
    return m_pobjSocket && m_pobjSocket->getRecvBufferSize(pSize);
}

bool ITransfer::getSendBufferSize(std::int32_t* pSize) {
    return m_pobjSocket && m_pobjSocket->getSendBufferSize(pSize);
}
