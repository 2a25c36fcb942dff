// The socket calls of Linux.
#include "Product/Technic/platform/SocketApi.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <vector>

namespace SocketApi {
namespace {

static_assert(sizeof(Address::arrBytes) >= sizeof(sockaddr_storage));
static_assert(alignof(Address) >= alignof(sockaddr_storage));

sockaddr* rawAddress(Address& address) noexcept {
    return reinterpret_cast<sockaddr*>(address.arrBytes.data());
}

const sockaddr* rawAddress(const Address& address) noexcept {
    return reinterpret_cast<const sockaddr*>(address.arrBytes.data());
}

struct OptionName {
    int nLevel;
    int nName;
};

OptionName nameOf(Option option) noexcept {
    switch (option) {
        case Option::RecvBufferSize:
            return {SOL_SOCKET, SO_RCVBUF};
        case Option::SendBufferSize:
            return {SOL_SOCKET, SO_SNDBUF};
        case Option::ReuseAddr:
            return {SOL_SOCKET, SO_REUSEADDR};
        case Option::Broadcast:
            return {SOL_SOCKET, SO_BROADCAST};
        case Option::KeepAlive:
            return {SOL_SOCKET, SO_KEEPALIVE};
        case Option::KeepAliveIdle:
            return {IPPROTO_TCP, TCP_KEEPIDLE};
        case Option::KeepAliveInterval:
            return {IPPROTO_TCP, TCP_KEEPINTVL};
        case Option::NoDelay:
            return {IPPROTO_TCP, TCP_NODELAY};
    }
    return {};
}

using Clock = std::chrono::steady_clock;

constexpr Clock::time_point Never = Clock::time_point::max();

// The moment at which a wait that begins now is over.
Clock::time_point deadlineOf(std::chrono::microseconds timeout) noexcept {
    return timeout < std::chrono::microseconds::zero() ? Never : Clock::now() + timeout;
}

// For poll(): negative without limit, and never early.
int millisecondsUntil(Clock::time_point deadline) noexcept {
    if (deadline == Never) {
        return -1;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, INT_MAX));
}

short eventOf(Direction direction) noexcept {
    return direction == Direction::Read ? POLLIN : POLLOUT;
}

// A call that is interrupted past its deadline would block.
template <class Call>
int untilNotInterrupted(Call call, Clock::time_point deadline = Never) noexcept {
    for (;;) {
        const int nResult = static_cast<int>(call());
        if (nResult >= 0 || errno != EINTR) {
            return nResult;
        }
        if (Clock::now() >= deadline) {
            errno = EAGAIN;
            return -1;
        }
    }
}

// Calls a transfer with its length as the system wants it; a negative length is no length.
template <class Call>
int transfer(std::int32_t nLength, Call call, Clock::time_point deadline = Never) noexcept {
    if (nLength < 0) {
        errno = EINVAL;
        return -1;
    }
    return untilNotInterrupted([&] { return call(static_cast<std::size_t>(nLength)); }, deadline);
}

int sendUntil(int nHandle, const void* pBuffer, std::int32_t nLength,
              Clock::time_point deadline) noexcept {
    return transfer(
        nLength, [&](std::size_t nSize) { return ::send(nHandle, pBuffer, nSize, MSG_NOSIGNAL); },
        deadline);
}

// Calls what fills in an address and its length.
template <class Call>
int withAddress(Address& address, Call call) noexcept {
    socklen_t nLength = sizeof(address.arrBytes);
    const int nResult = untilNotInterrupted([&] {
        nLength = sizeof(address.arrBytes);
        return call(rawAddress(address), &nLength);
    });
    address.nLength = nResult < 0 ? 0 : nLength;
    return nResult;
}

int pendingError(int nHandle) noexcept {
    int nError = 0;
    socklen_t nSize = sizeof(nError);
    return ::getsockopt(nHandle, SOL_SOCKET, SO_ERROR, &nError, &nSize) < 0 ? errno : nError;
}

timespec toTimespec(std::chrono::microseconds time) noexcept {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    return {static_cast<time_t>(seconds.count()),
            static_cast<long>(std::chrono::nanoseconds(time - seconds).count())};
}

}  // namespace

int familyOf(int nIpVersion) noexcept {
    return nIpVersion == 2 ? AF_INET6 : AF_INET;
}

bool isWouldBlock(int nError) noexcept {
    return nError == EAGAIN || nError == EWOULDBLOCK;
}

int openSocket(int nFamily, int nType) noexcept {
    return ::socket(nFamily, nType | SOCK_CLOEXEC, 0);
}

void closeSocket(int nHandle) noexcept {
    ::close(nHandle);
}

int bindTo(int nHandle, const Address& address) noexcept {
    return ::bind(nHandle, rawAddress(address), address.nLength);
}

int connectTo(int nHandle, const Address& address) noexcept {
    const int nResult = ::connect(nHandle, rawAddress(address), address.nLength);
    if (nResult >= 0 || errno != EINTR) {
        return nResult;
    }
    // An interrupted connect goes on by itself and must not be called again.
    if (waitFor(nHandle, Direction::Write, NoLimit) < 0) {
        return -1;
    }
    errno = pendingError(nHandle);
    return errno == 0 ? 0 : -1;
}

int listenOn(int nHandle, int nBacklog) noexcept {
    return ::listen(nHandle, nBacklog);
}

int acceptFrom(int nHandle, Address& peer) noexcept {
    return withAddress(peer, [&](sockaddr* pAddress, socklen_t* pLength) {
        return ::accept4(nHandle, pAddress, pLength, SOCK_CLOEXEC);
    });
}

int localAddress(int nHandle, Address& address) noexcept {
    return withAddress(address, [&](sockaddr* pAddress, socklen_t* pLength) {
        return ::getsockname(nHandle, pAddress, pLength);
    });
}

int peerAddress(int nHandle, Address& address) noexcept {
    return withAddress(address, [&](sockaddr* pAddress, socklen_t* pLength) {
        return ::getpeername(nHandle, pAddress, pLength);
    });
}

int sendBytes(int nHandle, const void* pBuffer, std::int32_t nLength) noexcept {
    return sendUntil(nHandle, pBuffer, nLength, Never);
}

int sendWithin(int nHandle, const void* pBuffer, std::int32_t nLength,
               std::chrono::microseconds timeout) noexcept {
    const Clock::time_point deadline = deadlineOf(timeout);
    const auto* pBytes = static_cast<const char*>(pBuffer);
    int nSent = sendUntil(nHandle, pBytes, nLength, deadline);
    // Before the deadline only a signal makes a send short, and a full buffer where nothing waits.
    while (nSent > 0 && nSent < nLength && Clock::now() < deadline) {
        const int nMore = sendUntil(nHandle, pBytes + nSent, nLength - nSent, deadline);
        if (nMore < 0) {
            break;
        }
        nSent += nMore;
    }
    return nSent;
}

int sendBytesTo(int nHandle, const void* pBuffer, std::int32_t nLength,
                const Address& address) noexcept {
    return transfer(nLength, [&](std::size_t nSize) {
        return ::sendto(nHandle, pBuffer, nSize, MSG_NOSIGNAL, rawAddress(address),
                        address.nLength);
    });
}

int recvBytes(int nHandle, void* pBuffer, std::int32_t nLength) noexcept {
    return transfer(nLength, [&](std::size_t nSize) { return ::recv(nHandle, pBuffer, nSize, 0); });
}

int recvBytesFrom(int nHandle, void* pBuffer, std::int32_t nLength, Address& sender) noexcept {
    return transfer(nLength, [&](std::size_t nSize) {
        return withAddress(sender, [&](sockaddr* pAddress, socklen_t* pLength) {
            return ::recvfrom(nHandle, pBuffer, nSize, 0, pAddress, pLength);
        });
    });
}

int waitFor(int nHandle, Direction direction, std::chrono::microseconds timeout) noexcept {
    if (nHandle < 0) {
        errno = EBADF;
        return -1;
    }
    const bool bLimited = timeout >= std::chrono::microseconds::zero();
    const Clock::time_point deadline = deadlineOf(timeout);
    for (;;) {
        pollfd entry{nHandle, eventOf(direction), 0};
        const timespec limit = toTimespec(timeout);
        const int nResult = ::ppoll(&entry, 1, bLimited ? &limit : nullptr, nullptr);
        if (nResult > 0 && (entry.revents & POLLNVAL) != 0) {
            errno = EBADF;
            return -1;
        }
        if (nResult >= 0 || errno != EINTR) {
            return nResult;
        }
        if (bLimited) {
            const auto left = std::chrono::ceil<std::chrono::microseconds>(deadline - Clock::now());
            timeout = std::max(left, std::chrono::microseconds::zero());
        }
    }
}

int waitForAny(std::span<Wait> waits, std::chrono::milliseconds timeout) {
    std::array<pollfd, 4> arrFew{};
    std::vector<pollfd> vecMany(waits.size() > arrFew.size() ? waits.size() : 0);
    pollfd* const pEntries = vecMany.empty() ? arrFew.data() : vecMany.data();
    for (std::size_t i = 0; i < waits.size(); ++i) {
        pEntries[i] = {waits[i].nHandle, eventOf(waits[i].direction), 0};
        if (waits[i].nHandle < 0) {
            timeout = std::chrono::milliseconds::zero();
        }
    }
    const Clock::time_point deadline = deadlineOf(timeout);
    int nReady = 0;
    do {
        nReady = ::poll(pEntries, waits.size(), millisecondsUntil(deadline));
    } while (nReady < 0 && errno == EINTR);
    for (std::size_t i = 0; i < waits.size(); ++i) {
        waits[i].bReady = waits[i].nHandle < 0 || (nReady > 0 && pEntries[i].revents != 0);
    }
    return nReady;
}

int setOption(int nHandle, Option option, int nValue) noexcept {
    const OptionName name = nameOf(option);
    return ::setsockopt(nHandle, name.nLevel, name.nName, &nValue, sizeof(nValue));
}

int getOption(int nHandle, Option option, int& nValue) noexcept {
    const OptionName name = nameOf(option);
    socklen_t nSize = sizeof(nValue);
    return ::getsockopt(nHandle, name.nLevel, name.nName, &nValue, &nSize);
}

int setSendTimeout(int nHandle, std::chrono::milliseconds timeout) noexcept {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(timeout);
    const timeval value{
        static_cast<time_t>(seconds.count()),
        static_cast<suseconds_t>(std::chrono::microseconds(timeout - seconds).count())};
    return ::setsockopt(nHandle, SOL_SOCKET, SO_SNDTIMEO, &value, sizeof(value));
}

int setNonBlocking(int nHandle, bool bNonBlocking) noexcept {
    const int nFlags = ::fcntl(nHandle, F_GETFL);
    if (nFlags < 0) {
        return -1;
    }
    return ::fcntl(nHandle, F_SETFL, bNonBlocking ? nFlags | O_NONBLOCK : nFlags & ~O_NONBLOCK);
}

int changeMembership(int nHandle, Membership membership, const Address& group,
                     const Address& interface) noexcept {
    const bool bJoin = membership == Membership::Join;
    if (rawAddress(group)->sa_family == AF_INET6) {
        const auto* pGroup = reinterpret_cast<const sockaddr_in6*>(rawAddress(group));
        const ipv6_mreq request{pGroup->sin6_addr, pGroup->sin6_scope_id};
        return ::setsockopt(nHandle, IPPROTO_IPV6,
                            bJoin ? IPV6_ADD_MEMBERSHIP : IPV6_DROP_MEMBERSHIP, &request,
                            sizeof(request));
    }
    const ip_mreq request{reinterpret_cast<const sockaddr_in*>(rawAddress(group))->sin_addr,
                          reinterpret_cast<const sockaddr_in*>(rawAddress(interface))->sin_addr};
    return ::setsockopt(nHandle, IPPROTO_IP, bJoin ? IP_ADD_MEMBERSHIP : IP_DROP_MEMBERSHIP,
                        &request, sizeof(request));
}

WakeUp::WakeUp() noexcept : m_nHandle(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

WakeUp::~WakeUp() {
    if (m_nHandle >= 0) {
        ::close(m_nHandle);
    }
}

void WakeUp::wake() noexcept {
    static_cast<void>(::eventfd_write(m_nHandle, 1));
}

}  // namespace SocketApi
