// Commands as datagrams.
#pragma once

#include "session/ITransfer.h"

// A datagram is one whole command: no head is looked at, so no parser is needed. A receive takes at
// most 5600 bytes; a larger datagram is cut. The forms of `sendCommand` and `recvCommand` without
// time-out, `listen` and `accept` do nothing and give Success.
class UDPTransfer : public ITransfer {
public:
    explicit UDPTransfer(int nIPProtoVer);

    int create() override;

    int sendCommand(const CommandBuffer& buffer, const InetAddr& to, int nTimeoutMs) override;
    int sendCommand(const CommandBuffer& buffer, const InetAddr& to) override;
    int recvCommand(CommandBuffer& buffer, int nTimeoutMs, InetAddr& from) override;
    int recvCommand(CommandBuffer& buffer) override;

    int listen(int nBacklog) override;
    int accept(ITransfer& peer, int nTimeoutMs) override;

    int getPeerAddr(InetAddr& address) override;

    bool setNonBlocking(bool) override { return false; }
    bool setNoDelay() override { return false; }
    bool getRecvBufferSize(std::int32_t*) override { return false; }
    bool getSendBufferSize(std::int32_t*) override { return false; }

private:
    InetAddr m_peerAddr;  // the sender of the last datagram
};
