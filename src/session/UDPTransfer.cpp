// Commands as datagrams.
#include "session/UDPTransfer.h"

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/LogFilter.h"

using namespace fleetkit;

namespace {

constexpr std::uint32_t MaxDatagram = 5600;
constexpr const char* SourceName = "UDPTransfer";

}  // namespace

UDPTransfer::UDPTransfer(int nIPProtoVer) : ITransfer(nIPProtoVer, TransferKind::UDP) {}

int UDPTransfer::create() {
    return createSocket();
}

int UDPTransfer::sendCommand(const CommandBuffer& buffer, const InetAddr& to, int) {
    if (!m_pSocket) {
        return ErrorCode::NoTransport;
    }
    const std::int32_t nRet =
        m_pSocket->sendTo(buffer.data(), static_cast<std::int32_t>(buffer.getLength()), to);
    if (nRet == ISocket::TimedOut) {
        return ErrorCode::SendTimedOut;
    }
    return nRet == ISocket::Failed ? ErrorCode::SendFailed : ErrorCode::Success;
}

int UDPTransfer::sendCommand(const CommandBuffer&, const InetAddr&) {
    return ErrorCode::Success;
}

int UDPTransfer::recvCommand(CommandBuffer& buffer, int nTimeoutMs, InetAddr& from) {
    if (!m_pSocket) {
        return ErrorCode::NoTransport;
    }
    if (!buffer.allocate(MaxDatagram)) {
        traceMessage("p_objRecvBuf.alloc failed ", SourceName, __LINE__);
        return ErrorCode::NoMemory;
    }
    const std::int32_t nRet = m_pSocket->recvFrom(
        buffer.data(), static_cast<std::int32_t>(buffer.getCapacity()), from, nTimeoutMs);
    if (nRet == ISocket::TimedOut) {
        return ErrorCode::ReceiveTimedOut;
    }
    if (nRet < 0) {
        traceMessage("recv socket error!", SourceName, __LINE__);
        return ErrorCode::ReceiveFailed;
    }
    buffer.setLength(static_cast<std::uint32_t>(nRet));
    m_peerAddr = from;
    return ErrorCode::Success;
}

int UDPTransfer::recvCommand(CommandBuffer&) {
    return ErrorCode::Success;
}

int UDPTransfer::listen(int) {
    return ErrorCode::Success;
}

int UDPTransfer::accept(ITransfer&, int) {
    return ErrorCode::Success;
}

int UDPTransfer::getPeerAddr(InetAddr& address) {
    address = m_pSocket ? m_peerAddr : InetAddr();
    return m_pSocket ? ErrorCode::Success : ErrorCode::NoTransport;
}
