// The socket calls of the operating system, one function each, without its headers.
//
// A negative result is a failure, with its reason in `errno`. A call that a signal interrupts goes
// on, a wait with the time that is left. No send raises a signal when the peer is gone.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <span>

namespace SocketApi {

// A socket address as the system lays it out.
struct Address {
    alignas(std::uint64_t) std::array<unsigned char, 128> arrBytes{};
    std::uint32_t nLength = 0;
};

enum class Direction { Read, Write };

enum class Option {
    RecvBufferSize,
    SendBufferSize,
    ReuseAddr,
    Broadcast,
    KeepAlive,
    KeepAliveIdle,      // seconds without traffic before the first probe
    KeepAliveInterval,  // seconds between two probes
    NoDelay,
};

enum class Membership { Join, Drop };

constexpr std::chrono::microseconds NoLimit{-1};

int familyOf(int nIpVersion) noexcept;  // IPv6 for 2, IPv4 for everything else
bool isWouldBlock(int nError) noexcept;

// `nType` is 1 for a stream, 2 for datagrams. The result is the handle.
int openSocket(int nFamily, int nType) noexcept;
void closeSocket(int nHandle) noexcept;

int bindTo(int nHandle, const Address& address) noexcept;
int connectTo(int nHandle, const Address& address) noexcept;
int listenOn(int nHandle, int nBacklog) noexcept;
int acceptFrom(int nHandle, Address& peer) noexcept;  // the accepted handle
int localAddress(int nHandle, Address& address) noexcept;
int peerAddress(int nHandle, Address& address) noexcept;

// The result is the number of bytes.
int sendBytes(int nHandle, const void* pBuffer, std::int32_t nLength) noexcept;
// With the time-out that `setSendTimeout` gave to the socket: a signal neither cuts the send short
// nor lets it last for longer than twice that time.
int sendWithin(int nHandle, const void* pBuffer, std::int32_t nLength,
               std::chrono::microseconds timeout) noexcept;
int sendBytesTo(int nHandle, const void* pBuffer, std::int32_t nLength,
                const Address& address) noexcept;
int recvBytes(int nHandle, void* pBuffer, std::int32_t nLength) noexcept;
int recvBytesFrom(int nHandle, void* pBuffer, std::int32_t nLength, Address& sender) noexcept;

// 1 when the socket is ready (a failed or closed one is), 0 when the time is over. A negative
// time-out waits without limit.
int waitFor(int nHandle, Direction direction, std::chrono::microseconds timeout) noexcept;

// A socket that is waited for together with others.
struct Wait {
    int nHandle = -1;
    Direction direction = Direction::Read;
    bool bReady = false;  // out: ready, failed, closed, or no socket at all
};

// As waitFor, for any of many, and a plain pause for none. The result is the number of those that
// are ready. Throws std::bad_alloc for more than a few.
int waitForAny(std::span<Wait> waits, std::chrono::milliseconds timeout);

// What another thread ends a wait with.
class WakeUp {
public:
    WakeUp() noexcept;
    ~WakeUp();
    WakeUp(const WakeUp&) = delete;
    WakeUp& operator=(const WakeUp&) = delete;

    // To be waited for; negative where the system has none left.
    int getHandle() const noexcept { return m_nHandle; }
    void wake() noexcept;

private:
    int m_nHandle;
};

int setOption(int nHandle, Option option, int nValue) noexcept;
int getOption(int nHandle, Option option, int& nValue) noexcept;
int setSendTimeout(int nHandle, std::chrono::milliseconds timeout) noexcept;
int setNonBlocking(int nHandle, bool bNonBlocking) noexcept;

// The interface of an IPv4 membership is told by its address, all zero for any; that of an IPv6
// membership by the scope of the group's address.
int changeMembership(int nHandle, Membership membership, const Address& group,
                     const Address& interface) noexcept;

}  // namespace SocketApi
