// Commands over a TCP connection.
#pragma once

#include <array>
#include <cstdint>

#include "protocol/CommandHeadInfo.h"
#include "session/ITransfer.h"

// Cuts commands out of the byte stream by their heads, which it has read by the parser given
// through `setCommandHeadParser`; without one a receive gives ReceiveFailed.
//
// What a receive can give:
// - ReceiveTimedOut inside a head: the bytes are kept, the next receive goes on with them.
// - HeadRefused: the head is kept, so every further receive gives the same.
// - NoMemory: the announced payload is above 256 MiB, or there is no memory. Where the head was the
//   reason it is kept as well. Memory grows with what arrives, not with what a head announces.
// - ReceiveFailed or ReceiveTimedOut inside a payload: `buffer` has what came. The rest is not
//   skipped: the next receive takes the next byte for the begin of a head.
// - In the form without time-out a failure inside the payload is different: the next receive begins
//   that payload anew, behind a head of zeros.
class TCPTransfer : public ITransfer {
public:
    explicit TCPTransfer(int nIPProtoVer);
    ~TCPTransfer() noexcept override;

    bool setCommandHeadParser(const SafePointer<ICommandHeadParser>& parser) override;
    int create() override;

    int sendCommand(const CommandBuffer& buffer, const InetAddr& to, int nTimeoutMs) override;
    int sendCommand(const CommandBuffer& buffer, const InetAddr& to) override;
    int recvCommand(CommandBuffer& buffer, int nTimeoutMs, InetAddr& from) override;
    int recvCommand(CommandBuffer& buffer) override;

    // Both ask for a non-blocking socket.
    int sendSome(const CommandBuffer& buffer, const InetAddr& to, std::uint32_t& nSent) override;
    int recvSome(CommandBuffer& buffer, InetAddr& from) override;

    int listen(int nBacklog) override;
    int accept(ITransfer& peer, int nTimeoutMs) override;

    bool setBroadcast(bool) override { return false; }
    bool joinGroup(const InetAddr&) override { return false; }
    bool openGroup(const InetAddr&) override { return false; }

    int getPeerAddr(InetAddr& address) override;

private:
    // Reads once: a byte count above 0 or a code.
    using Read = int (*)(Socket& socket, std::uint8_t* pInto, std::int32_t nLength, int nTimeoutMs);
    static int readWithin(Socket& socket, std::uint8_t* pInto, std::int32_t nLength,
                          int nTimeoutMs);
    static int readPlain(Socket& socket, std::uint8_t* pInto, std::int32_t nLength, int nTimeoutMs);

    int recvWhole(CommandBuffer& buffer, Read read, int nTimeoutMs);
    int recvHead(Read read, int nTimeoutMs);
    int beginCommand(CommandBuffer& buffer);
    int recvPayload(CommandBuffer& buffer, Read read, int nTimeoutMs);
    std::uint32_t payloadLength() const;
    void forgetHead();

    bool m_bHeadReceived = false;                 // a parsed head waits for its payload
    std::array<std::uint8_t, 24> m_headBuffer{};  // all zero between commands
    std::uint32_t m_nHeadBytes = 0;
    SafePointer<ICommandHeadParser> m_pHeadParser;
    SafePointer<CommandHeadInfo> m_pHead;
};
