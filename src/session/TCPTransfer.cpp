// Commands over a TCP connection.
#include "session/TCPTransfer.h"

#include <algorithm>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/LogFilter.h"
#include "protocol/SDKCommandHeadInfo.h"

using namespace fleetkit;

namespace {

constexpr std::uint32_t MaxPayload = 256U << 20;
constexpr std::uint32_t FirstBlock = 64U << 10;
constexpr const char* SourceName = "TCPTransfer";

void logFailedSend(std::int32_t nRet) {
    logMessage(LogLevel::Trace, SourceName, "[%s %s %d] m_pSocket->send() nRet=%d Failed\n",
               SourceName, "TCPTransfer::sendCommand", __LINE__, nRet);
}

int codeOfCount(std::int32_t nCount, const CommandBuffer& buffer) {
    if (nCount == ISocket::TimedOut) {
        return ErrorCode::SendTimedOut;
    }
    return nCount >= 0 && static_cast<std::uint32_t>(nCount) == buffer.getLength()
               ? ErrorCode::Success
               : ErrorCode::SendFailed;
}

}  // namespace

TCPTransfer::TCPTransfer(int nIPProtoVer) : ITransfer(nIPProtoVer) {}

TCPTransfer::~TCPTransfer() noexcept = default;

bool TCPTransfer::setCommandHeadParser(const SafePointer<ICommandHeadParser>& parser) {
    if (parser.isNull()) {
        return false;
    }
    m_pHeadParser = parser;
    return true;
}

int TCPTransfer::create() {
    m_bHeadReceived = false;
    forgetHead();
    return createSocket();
}

int TCPTransfer::sendCommand(const CommandBuffer& buffer, const InetAddr&, int nTimeoutMs) {
    if (!m_pSocket) {
        return ErrorCode::NoTransport;
    }
    const std::int32_t nRet =
        m_pSocket->send(buffer.data(), static_cast<std::int32_t>(buffer.getLength()), nTimeoutMs);
    if (nRet == ISocket::Failed) {
        logFailedSend(nRet);
    }
    return codeOfCount(nRet, buffer);
}

int TCPTransfer::sendCommand(const CommandBuffer& buffer, const InetAddr&) {
    if (!m_pSocket) {
        return ErrorCode::NoTransport;
    }
    return codeOfCount(
        m_pSocket->send(buffer.data(), static_cast<std::int32_t>(buffer.getLength()), true),
        buffer);
}

int TCPTransfer::recvCommand(CommandBuffer& buffer, int nTimeoutMs, InetAddr& from) {
    const int nResult = recvWhole(buffer, readWithin, nTimeoutMs);
    m_bHeadReceived = false;
    if (nResult == ErrorCode::Success) {
        from = m_pSocket->getAddress();
    }
    return nResult;
}

int TCPTransfer::recvCommand(CommandBuffer& buffer) {
    const int nResult = recvWhole(buffer, readPlain, 0);
    if (nResult == ErrorCode::Success) {
        m_bHeadReceived = false;
    }
    return nResult;
}

int TCPTransfer::sendSome(const CommandBuffer& buffer, const InetAddr&, std::uint32_t& nSent) {
    if (!m_pSocket) {
        return ErrorCode::NoTransport;
    }
    const auto nLeft = static_cast<std::int32_t>(buffer.getLength() - nSent);
    const std::int32_t nCount = m_pSocket->send(buffer.data() + nSent, nLeft, false);
    if (nCount == ISocket::Failed) {
        logFailedSend(nCount);
        return ErrorCode::SendFailed;
    }
    nSent += static_cast<std::uint32_t>(std::max(nCount, 0));
    return ErrorCode::Success;
}

int TCPTransfer::recvSome(CommandBuffer& buffer, InetAddr& from) {
    int nResult = ErrorCode::Success;
    if (buffer.getLength() == 0) {
        m_bHeadReceived = false;
        nResult = recvHead(readPlain, 0);
        m_bHeadReceived = false;
        if (nResult == ErrorCode::Success) {
            nResult = beginCommand(buffer);
        }
    }
    if (nResult == ErrorCode::Success) {
        nResult = m_pSocket ? recvPayload(buffer, readPlain, 0) : ErrorCode::NoTransport;
    }
    if (nResult == ErrorCode::Success) {
        from = m_pSocket->getAddress();
    }
    return nResult;
}

int TCPTransfer::listen(int nBacklog) {
    if (!m_pSocket) {
        return ErrorCode::NoTransport;
    }
    return m_pSocket->listen(nBacklog) ? ErrorCode::Success : ErrorCode::ListenFailed;
}

int TCPTransfer::accept(ITransfer& peer, int nTimeoutMs) {
    if (!m_pSocket) {
        return ErrorCode::NoTransport;
    }
    auto pAccepted = std::make_unique<Socket>(m_pSocket->getIPVersion(), Socket::Stream);
    const std::int32_t nResult = m_pSocket->accept(*pAccepted, nTimeoutMs);
    if (nResult < 0) {
        return nResult == ISocket::TimedOut ? ErrorCode::AcceptTimedOut : ErrorCode::AcceptFailed;
    }
    peer.setSocket(pAccepted.release());
    return ErrorCode::Success;
}

int TCPTransfer::getPeerAddr(InetAddr& address) {
    if (!m_pSocket) {
        address = InetAddr();
        return ErrorCode::NoTransport;
    }
    address = m_pSocket->getAddress();
    return ErrorCode::Success;
}

int TCPTransfer::readWithin(Socket& socket, std::uint8_t* pInto, std::int32_t nLength,
                            int nTimeoutMs) {
    const std::int32_t nCount = socket.recv(pInto, nLength, nTimeoutMs, false);
    if (nCount > 0) {
        return nCount;
    }
    return nCount == ISocket::TimedOut ? ErrorCode::ReceiveTimedOut : ErrorCode::ReceiveFailed;
}

int TCPTransfer::readPlain(Socket& socket, std::uint8_t* pInto, std::int32_t nLength, int) {
    const std::int32_t nCount = socket.recv(pInto, nLength);
    if (nCount > 0) {
        return nCount;
    }
    return nCount == ISocket::WouldBlock ? ErrorCode::NothingToRead : ErrorCode::ReceiveFailed;
}

int TCPTransfer::recvWhole(CommandBuffer& buffer, Read read, int nTimeoutMs) {
    int nResult = recvHead(read, nTimeoutMs);
    if (nResult == ErrorCode::Success) {
        nResult = beginCommand(buffer);
    }
    return nResult == ErrorCode::Success ? recvPayload(buffer, read, nTimeoutMs) : nResult;
}

int TCPTransfer::recvHead(Read read, int nTimeoutMs) {
    if (!m_bHeadReceived && m_pHeadParser.isNull()) {
        return ErrorCode::ReceiveFailed;
    }
    if (!m_pSocket) {
        return ErrorCode::NoTransport;
    }
    if (m_bHeadReceived) {
        return ErrorCode::Success;
    }
    const std::uint32_t nHeadLength = m_pHeadParser->getCommandHeadLength();
    while (m_nHeadBytes < nHeadLength) {
        const auto nMissing = static_cast<std::int32_t>(m_headBuffer.size() - m_nHeadBytes);
        const int nResult =
            read(*m_pSocket, m_headBuffer.data() + m_nHeadBytes, nMissing, nTimeoutMs);
        if (nResult < 0) {
            return nResult;
        }
        m_nHeadBytes += static_cast<std::uint32_t>(nResult);
    }
    if (!m_pHeadParser->parseCommandHead(m_headBuffer.data(), m_nHeadBytes, m_pHead)) {
        return ErrorCode::HeadRefused;
    }
    m_bHeadReceived = true;
    return ErrorCode::Success;
}

// A refused size leaves the head in its place, so the refusal repeats.
int TCPTransfer::beginCommand(CommandBuffer& buffer) {
    const std::uint32_t nHeadLength = m_pHeadParser->getCommandHeadLength();
    const std::uint32_t nPayload = payloadLength();
    if (nPayload > MaxPayload || !buffer.allocate(nHeadLength + std::min(nPayload, FirstBlock)) ||
        !buffer.append(m_headBuffer.data(), nHeadLength)) {
        m_bHeadReceived = false;
        return ErrorCode::NoMemory;
    }
    forgetHead();
    return ErrorCode::Success;
}

int TCPTransfer::recvPayload(CommandBuffer& buffer, Read read, int nTimeoutMs) {
    const std::uint32_t nEnd = m_pHeadParser->getCommandHeadLength() + payloadLength();
    while (buffer.getLength() < nEnd) {
        if (buffer.getLength() == buffer.getCapacity() &&
            !buffer.grow(std::min(nEnd, 2 * buffer.getCapacity()))) {
            return ErrorCode::NoMemory;
        }
        const std::uint32_t nRoom = buffer.getCapacity() - buffer.getLength();
        const int nResult = read(*m_pSocket, buffer.data() + buffer.getLength(),
                                 static_cast<std::int32_t>(nRoom), nTimeoutMs);
        if (nResult < 0) {
            return nResult;
        }
        buffer.setLength(buffer.getLength() + static_cast<std::uint32_t>(nResult));
    }
    return ErrorCode::Success;
}

// The parser is the one of this system's heads, and so is what it made.
std::uint32_t TCPTransfer::payloadLength() const {
    return static_cast<const SDKCommandHeadInfo&>(*m_pHead).getPayloadLength();
}

void TCPTransfer::forgetHead() {
    m_headBuffer.fill(0);
    m_nHeadBytes = 0;
}
