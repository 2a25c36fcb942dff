// A transport: whole commands over one socket.
#pragma once

#include <cstdint>
#include <memory>

#include "Product/Technic/InetAddr.h"
#include "Product/Technic/SafePointer.h"
#include "Product/Technic/Socket.h"
#include "protocol/CommandBuffer.h"
#include "protocol/ICommandHeadParser.h"

// The kinds of transport, by the numbers under which their factories are registered.
namespace TransferKind {
constexpr int UDP = 1;
constexpr int TCP = 2;
}  // namespace TransferKind

// Owns its socket, from `create` or `setSocket` to `close` or its own end. Not copyable. Has no
// lock: one user at a time.
//
// Integer results are a code of `ErrorCode`, Success included. Whatever needs a socket gives
// NoTransport, or false, while there is none; after `close` there never is one again. Time-outs are
// in milliseconds, a negative one waits without limit.
class ITransfer {
public:
    // The IP version is 1 for IPv4, 2 for IPv6.
    explicit ITransfer(int nIPProtoVer, int nTransferType = TransferKind::TCP);
    virtual ~ITransfer();
    ITransfer(const ITransfer&) = delete;
    ITransfer& operator=(const ITransfer&) = delete;

    // Gives a transport over a byte stream what it needs to find the end of a command. False for an
    // empty pointer, and from transports that need no parser.
    virtual bool setCommandHeadParser(const SafePointer<ICommandHeadParser>& parser);

    virtual int create() = 0;  // SocketOpenFailed
    virtual int close();       // always Success
    virtual int setReuseAddr(int nReuse);
    virtual int bind(std::uint16_t nPort);
    virtual int bind(const InetAddr& address);
    virtual bool getLocalAddr(InetAddr& address);
    virtual void setSocket(Socket* pSocket);  // takes ownership
    virtual Socket* getSocket();

    // SendFailed also when fewer bytes were taken than the command has. `to` is for datagrams.
    virtual int sendCommand(const CommandBuffer& buffer, const InetAddr& to, int nTimeoutMs) = 0;
    virtual int sendCommand(const CommandBuffer& buffer, const InetAddr& to) = 0;

    // One command, head and payload, into `buffer`; its sender into `from`. Each single read has
    // the time-out. The second form also serves a non-blocking socket: NothingToRead.
    virtual int recvCommand(CommandBuffer& buffer, int nTimeoutMs, InetAddr& from) = 0;
    virtual int recvCommand(CommandBuffer& buffer) = 0;

    // Steps for those who wait for several transports at once: neither waits.
    // Sends what the socket takes of the bytes behind the first `nSent`, and counts it; Success
    // also when it takes none.
    virtual int sendSome(const CommandBuffer& buffer, const InetAddr& to, std::uint32_t& nSent);
    // As recvCommand, but NothingToRead until the whole command has arrived: to be called again
    // with the same buffer then. An empty buffer begins a new command.
    virtual int recvSome(CommandBuffer& buffer, InetAddr& from);

    virtual int connect(const InetAddr& address, int nTimeoutMs);
    virtual int connect(const InetAddr& address);
    virtual int listen(int nBacklog) = 0;
    // Hands the socket of the accepted connection to `peer`.
    virtual int accept(ITransfer& peer, int nTimeoutMs) = 0;

    virtual bool setBroadcast(bool bBroadcast);
    virtual bool joinGroup(const InetAddr& group);
    virtual bool openGroup(const InetAddr& group);

    // TCP: the other end; UDP: the sender of the last datagram; empty without a socket.
    virtual int getPeerAddr(InetAddr& address) = 0;
    virtual int getIPProtoVer();  // of the socket; 1 without one

    virtual bool setRecvBufferSize(std::int32_t nSize);
    virtual bool setSendBufferSize(std::int32_t nSize);

    // Tuning of a stream's socket; false and without effect on datagrams.
    virtual bool setNonBlocking(bool bNonBlocking);
    virtual bool setNoDelay();
    virtual bool getRecvBufferSize(std::int32_t* pSize);
    virtual bool getSendBufferSize(std::int32_t* pSize);

protected:
    // Makes and opens the socket that this kind of transport needs.
    int createSocket();

    std::unique_ptr<Socket> m_pSocket;
    const int m_nIPProtoVer;
    const std::uint8_t m_bReserved = 0;  // part of the shape on devices, unread here
    const int m_nTransferType;           // a `TransferKind`
};
