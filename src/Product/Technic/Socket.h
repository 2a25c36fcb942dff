// A socket for IPv4 or IPv6, stream or datagrams.
#pragma once

#include <array>
#include <cstdint>

#include "Product/Technic/ISocket.h"

namespace SocketApi {
struct Address;
enum class Direction;
enum class Option;
}  // namespace SocketApi

// Owns its handle and closes it in the end. Made without one: `open` first; a closed socket can be
// opened again.
//
// After its first real failure a stream socket remembers the error and refuses the operations that
// `ISocket` marks until it is opened again. An address in use, a reset connection, a broken pipe
// and a missing file are not remembered, and datagram sockets remember nothing.
class Socket : public ISocket {
public:
    static constexpr std::int32_t Stream = 1;
    static constexpr std::int32_t Datagram = 2;

    // `nIpVersion` is 2 for IPv6; every other value makes an IPv4 socket.
    Socket(std::int32_t nIpVersion, std::int32_t nType);
    ~Socket() override;
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    bool open() override;
    bool close() override;
    std::int32_t getHandle() override { return m_nHandle; }
    void setHandle(std::int32_t nHandle) override { m_nHandle = nHandle; }
    // What the last `connect` reached, or the peer of an accepted socket.
    InetAddr& getAddress() override { return m_address; }

    bool bind(const char* pszHost, std::uint16_t nPort) override;
    bool bind(const char* pszIp) override;
    bool bind(const InetAddr& address) override;

    std::int32_t sendTo(const void* pBuffer, std::int32_t nLength, const char* pszHost,
                        std::uint16_t nPort, std::int32_t nChunk) override;
    std::int32_t sendTo(const void* pBuffer, std::int32_t nLength, const char* pszHost,
                        std::uint16_t nPort) override;
    std::int32_t sendTo(const void* pBuffer, std::int32_t nLength, InetAddr& address,
                        std::int32_t nChunk) override;
    std::int32_t sendTo(const void* pBuffer, std::int32_t nLength, InetAddr& address) override;
    std::int32_t sendTo(const void* pBuffer, std::int32_t nLength,
                        const InetAddr& address) override;

    std::int32_t waitRead(std::int32_t nTimeoutMs) override;
    std::int32_t waitWrite(std::int32_t nTimeoutMs) override;

    std::int32_t recvFrom(void* pBuffer, std::int32_t nLength, InetAddr& sender,
                          std::int32_t nTimeoutMs) override;
    std::int32_t recvFrom(void* pBuffer, std::int32_t nLength, InetAddr& sender) override;
    std::int32_t recvFrom(void* pBuffer, std::int32_t nLength, char* pszHost,
                          std::uint16_t* pPort) override;

    bool connect(const char* pszHost, std::uint16_t nPort, std::int32_t nTimeoutMs) override;
    bool connect(const char* pszHost, std::uint16_t nPort) override;
    bool connect(const InetAddr& address, std::int32_t nTimeoutMs) override;
    bool connect(const InetAddr& address) override;

    bool listen(std::int32_t nBacklog) override;
    std::int32_t accept(Socket& into, std::int32_t nTimeoutMs) override;
    std::int32_t accept(Socket*& pMade, std::int32_t nTimeoutMs) override;

    std::int32_t send(const void* pBuffer, std::int32_t nLength, std::int32_t nTimeoutMs) override;
    std::int32_t send(const void* pBuffer, std::int32_t nLength) override;
    std::int32_t send(const void* pBuffer, std::int32_t nLength, bool bWhole) override;

    std::int32_t recv(void* pBuffer, std::int32_t nLength) override;
    std::int32_t recv(void* pBuffer, std::int32_t nLength, std::int32_t nTimeoutMs,
                      bool bNoWait) override;

    bool getLocalAddress(InetAddr& address) override;

    std::int32_t sendAll(const void* pBuffer, std::int32_t nLength) override;
    std::int32_t recvAll(void* pBuffer, std::int32_t nLength) override;

    bool setRecvBufferSize(std::int32_t nSize) override;
    bool getRecvBufferSize(std::int32_t* pSize) override;
    bool setSendBufferSize(std::int32_t nSize) override;
    bool getSendBufferSize(std::int32_t* pSize) override;
    bool reserved38() override { return false; }
    bool reserved39() override { return false; }
    bool setReuseAddr(bool bReuse) override;
    bool setBroadcast(bool bBroadcast) override;

    bool joinGroup(const InetAddr& group) override;
    bool openGroup(const InetAddr& group) override;

    bool setNonBlocking(bool bNonBlocking) override;
    bool setNoDelay() override;
    bool isConnected() override { return false; }
    std::int32_t getIPVersion() override { return m_nIpVersion; }

    void reserved48() override {}
    void reserved49() override {}
    bool reserved50() override { return true; }
    bool reserved51() override { return true; }

protected:
    std::int32_t m_nShut = 0;  // at 1 the timed `send` and `recv` fail; nothing here sets it

    // Part of the shape on devices, unread here.
    std::int32_t m_nSendBufferSize = -1;  // as last read from the option
    std::int32_t m_nReserved = -1;
    bool m_bReserved = false;
    std::array<std::int32_t, 3> m_arrReserved{};

private:
    bool isRefused() const noexcept { return m_nStickyError != 0; }
    int reported(int nResult) noexcept;
    void reportError() noexcept;

    bool resolve(const char* pszHost, std::uint16_t nPort, unsigned nFlags,
                 SocketApi::Address& address) noexcept;
    bool bindTo(const SocketApi::Address& address) noexcept;
    bool resolveReceiver(const char* pszHost, std::uint16_t nPort,
                         SocketApi::Address& address) noexcept;
    std::int32_t wait(SocketApi::Direction direction, std::int32_t nTimeoutMs) noexcept;
    std::int32_t sendWhole(const char* pBuffer, std::int32_t nLength) noexcept;
    std::int32_t acceptInto(Socket& into);
    void storePeer(const char* pszHost, std::uint16_t nPort);
    void keepAlive() noexcept;
    void readSendBufferSize() noexcept;
    bool setOption(SocketApi::Option option, int nValue) noexcept;
    bool getOption(SocketApi::Option option, std::int32_t* pValue) noexcept;

    std::int32_t m_nHandle = -1;
    InetAddr m_address;
    std::int32_t m_nIpVersion;
    std::int32_t m_nFamily;
    std::int32_t m_nType;
    std::int32_t m_nStickyError = 0;
    std::int32_t m_nSendTimeout = 0;  // as the option was last set
};
