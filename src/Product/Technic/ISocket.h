// One socket as the transports see it: the table of its operations.
#pragma once

#include <cstdint>

#include "Product/Technic/InetAddr.h"

class Socket;

// Operations that move bytes or wait give a byte count above 0, 0 for success, -1 for a failure,
// -2 when the time is over, -3 when the call would block. Boolean ones give false for a failure.
// Time-outs are in milliseconds; a negative one waits without limit.
//
// (S) marks the operations that a sticky error refuses: they fail at once, without the network.
// What the error is, and when it stands, is the business of `Socket`.
//
// No operation throws or prints. A socket has no lock: one user at a time.
class ISocket {
public:
    static constexpr int Failed = -1;
    static constexpr int TimedOut = -2;
    static constexpr int WouldBlock = -3;

    virtual ~ISocket() = default;

    virtual bool open() = 0;
    virtual bool close() = 0;  // always true
    virtual std::int32_t getHandle() = 0;
    virtual void setHandle(std::int32_t nHandle) = 0;
    virtual InetAddr& getAddress() = 0;

    // (S) A null host is the any-address.
    virtual bool bind(const char* pszHost, std::uint16_t nPort) = 0;
    virtual bool bind(const char* pszIp) = 0;  // (S) port 0; null for the any-address
    virtual bool bind(const InetAddr& address) = 0;

    // (S) In pieces of at most `nChunk` bytes; the count is their sum.
    virtual std::int32_t sendTo(const void* pBuffer, std::int32_t nLength, const char* pszHost,
                                std::uint16_t nPort, std::int32_t nChunk) = 0;
    virtual std::int32_t sendTo(const void* pBuffer, std::int32_t nLength, const char* pszHost,
                                std::uint16_t nPort) = 0;  // (S) one datagram
    virtual std::int32_t sendTo(const void* pBuffer, std::int32_t nLength, InetAddr& address,
                                std::int32_t nChunk) = 0;
    virtual std::int32_t sendTo(const void* pBuffer, std::int32_t nLength, InetAddr& address) = 0;
    virtual std::int32_t sendTo(const void* pBuffer, std::int32_t nLength,
                                const InetAddr& address) = 0;

    virtual std::int32_t waitRead(std::int32_t nTimeoutMs) = 0;   // (S) 0, -1 or -2
    virtual std::int32_t waitWrite(std::int32_t nTimeoutMs) = 0;  // (S) 0, -1 or -2

    virtual std::int32_t recvFrom(void* pBuffer, std::int32_t nLength, InetAddr& sender,
                                  std::int32_t nTimeoutMs) = 0;  // (S)
    virtual std::int32_t recvFrom(void* pBuffer, std::int32_t nLength, InetAddr& sender) = 0;
    // (S) `pszHost` has space for 49 bytes.
    virtual std::int32_t recvFrom(void* pBuffer, std::int32_t nLength, char* pszHost,
                                  std::uint16_t* pPort) = 0;

    // (S) The host is an address text: names are refused, `IPTool` looks them up beforehand. After
    // a time-out the socket stays non-blocking.
    virtual bool connect(const char* pszHost, std::uint16_t nPort, std::int32_t nTimeoutMs) = 0;
    virtual bool connect(const char* pszHost, std::uint16_t nPort) = 0;  // (S)
    virtual bool connect(const InetAddr& address, std::int32_t nTimeoutMs) = 0;
    virtual bool connect(const InetAddr& address) = 0;

    virtual bool listen(std::int32_t nBacklog) = 0;  // (S)
    // (S) 0, -1 or -2. The first fills the given socket, the second makes one for the caller to
    // own.
    virtual std::int32_t accept(Socket& into, std::int32_t nTimeoutMs) = 0;
    virtual std::int32_t accept(Socket*& pMade, std::int32_t nTimeoutMs) = 0;

    // (S) One send; the time-out becomes the socket's option, values below 1 mean none.
    virtual std::int32_t send(const void* pBuffer, std::int32_t nLength,
                              std::int32_t nTimeoutMs) = 0;
    virtual std::int32_t send(const void* pBuffer, std::int32_t nLength) = 0;
    // One send, or with `bWhole` up to five of them, with four short waits in between, before the
    // count comes back short.
    virtual std::int32_t send(const void* pBuffer, std::int32_t nLength, bool bWhole) = 0;

    // A closed peer is a failure.
    virtual std::int32_t recv(void* pBuffer, std::int32_t nLength) = 0;
    virtual std::int32_t recv(void* pBuffer, std::int32_t nLength, std::int32_t nTimeoutMs,
                              bool bNoWait) = 0;  // (S) -2 also when there is nothing without wait

    virtual bool getLocalAddress(InetAddr& address) = 0;  // (S)

    virtual std::int32_t sendAll(const void* pBuffer, std::int32_t nLength) = 0;
    virtual std::int32_t recvAll(void* pBuffer, std::int32_t nLength) = 0;

    virtual bool setRecvBufferSize(std::int32_t nSize) = 0;   // (S)
    virtual bool getRecvBufferSize(std::int32_t* pSize) = 0;  // (S)
    virtual bool setSendBufferSize(std::int32_t nSize) = 0;   // (S)
    virtual bool getSendBufferSize(std::int32_t* pSize) = 0;  // (S)
    virtual bool reserved38() = 0;                            // false, no effect
    virtual bool reserved39() = 0;                            // false, no effect
    virtual bool setReuseAddr(bool bReuse) = 0;               // (S)
    virtual bool setBroadcast(bool bBroadcast) = 0;           // (S)

    virtual bool joinGroup(const InetAddr& group) = 0;  // (S)
    // Shares the group's port, binds to it on the any-address and joins the group.
    virtual bool openGroup(const InetAddr& group) = 0;

    virtual bool setNonBlocking(bool bNonBlocking) = 0;
    virtual bool setNoDelay() = 0;
    virtual bool isConnected() = 0;  // false in every case
    virtual std::int32_t getIPVersion() = 0;

    virtual void reserved48() = 0;  // no effect
    virtual void reserved49() = 0;  // no effect
    virtual bool reserved50() = 0;  // true, no effect
    virtual bool reserved51() = 0;  // true, no effect
};
