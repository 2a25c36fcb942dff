// One socket: its result numbers, its waits, its sticky error, its options.
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "Product/Technic/Socket.h"
#include "gtest/gtest.h"
#include "support/LoopbackNamespace.h"

namespace {

constexpr const char* Loopback = "127.0.0.1";
constexpr std::int32_t LongMs = 5000;

// Two ends of one connection over the loopback.
struct Connection {
    explicit Connection(int nIpVersion = 1) : client(nIpVersion, Socket::Stream) {
        const char* pszHost = nIpVersion == 2 ? "::1" : Loopback;
        Socket listener(nIpVersion, Socket::Stream);
        InetAddr address;
        bUp = listener.open() && listener.bind(pszHost, 0) && listener.listen(1) &&
              listener.getLocalAddress(address) && client.open() && client.connect(address, LongMs);
        Socket* pAccepted = nullptr;
        bUp = bUp && listener.accept(pAccepted, LongMs) == 0;
        pServer.reset(pAccepted);
    }

    // Ends the server's side with a reset in place of an orderly end.
    void reset() {
        const linger option{1, 0};
        ::setsockopt(pServer->getHandle(), SOL_SOCKET, SO_LINGER, &option, sizeof(option));
        pServer->close();
    }

    bool bUp = false;
    Socket client;
    std::unique_ptr<Socket> pServer;
};

// A port of the loopback that refuses connections for as long as the object lives.
class RefusingPort {
public:
    explicit RefusingPort(int nIpVersion) : m_objSocket(nIpVersion, Socket::Stream) {
        m_objSocket.open();
        m_objSocket.bind(nIpVersion == 2 ? "::1" : Loopback, 0);
        m_objSocket.getLocalAddress(address);
    }
    InetAddr address;

private:
    Socket m_objSocket;
};

int option(Socket& socket, int nLevel, int nName) {
    int nValue = -1;
    socklen_t nSize = sizeof(nValue);
    ::getsockopt(socket.getHandle(), nLevel, nName, &nValue, &nSize);
    return nValue;
}

TEST(Socket, BytesTravelBothWays) {
    for (const int nIpVersion : {1, 2}) {
        Connection connection(nIpVersion);
        if (nIpVersion == 2 && !connection.bUp) {
            GTEST_SKIP() << "no IPv6 loopback on this machine";
        }
        ASSERT_TRUE(connection.bUp);
        char szText[6] = {};
        EXPECT_EQ(5, connection.client.send("hello", 5, LongMs));
        EXPECT_EQ(5, connection.pServer->recvAll(szText, 5));
        EXPECT_STREQ("hello", szText);
        EXPECT_EQ(5, connection.pServer->sendAll("again", 5));
        EXPECT_EQ(2, connection.client.recv(szText, 2, LongMs, false));
        EXPECT_EQ(3, connection.client.recv(szText + 2, 4));
        EXPECT_STREQ("again", szText);

        InetAddr local;
        ASSERT_TRUE(connection.client.getLocalAddress(local));
        EXPECT_EQ(local.getIP(), connection.pServer->getAddress().getIP());
        EXPECT_EQ(local.getPORT(), connection.pServer->getAddress().getPORT());
        EXPECT_EQ(nIpVersion, connection.pServer->getAddress().getIPProtoVer());
        EXPECT_EQ(nIpVersion, connection.client.getAddress().getIPProtoVer());
        EXPECT_EQ(nIpVersion, connection.client.getIPVersion());
        EXPECT_FALSE(connection.client.isConnected());
    }
}

TEST(Socket, StreamsAreOpenedWithoutDelayAndWithKeepAlive) {
    Socket socket(1, Socket::Stream);
    ASSERT_TRUE(socket.open());
    EXPECT_EQ(1, option(socket, IPPROTO_TCP, TCP_NODELAY));
    EXPECT_EQ(1, option(socket, SOL_SOCKET, SO_KEEPALIVE));
    EXPECT_EQ(3, option(socket, IPPROTO_TCP, TCP_KEEPIDLE));
    EXPECT_EQ(3, option(socket, IPPROTO_TCP, TCP_KEEPINTVL));
}

TEST(Socket, OpenAndCloseNeverLeakAHandle) {
    Socket socket(1, Socket::Datagram);
    EXPECT_EQ(-1, socket.getHandle());
    ASSERT_TRUE(socket.open());
    const int nFirst = socket.getHandle();
    ASSERT_TRUE(socket.open());
    EXPECT_EQ(nFirst, socket.getHandle()) << "the handle of before was given back";
    EXPECT_TRUE(socket.close());
    EXPECT_TRUE(socket.close());
    EXPECT_EQ(-1, socket.getHandle());
}

TEST(Socket, WithoutAHandleEverythingFailsAtOnce) {
    char cByte = 0;
    std::int32_t nSize = 0;
    InetAddr address;
    for (const int nType : {Socket::Stream, Socket::Datagram}) {
        Socket socket(1, nType);
        EXPECT_EQ(-1, socket.waitRead(-1));
        EXPECT_EQ(-1, socket.waitWrite(-1));
        EXPECT_EQ(-1, socket.recv(&cByte, 1));
        EXPECT_EQ(-1, socket.recv(&cByte, 1, -1, false));
        EXPECT_EQ(-1, socket.recvFrom(&cByte, 1, address, -1));
        EXPECT_EQ(-1, socket.send(&cByte, 1, false));
        EXPECT_EQ(-1, socket.send(&cByte, 1, true));
        EXPECT_EQ(-1, socket.sendAll(&cByte, 1));
        EXPECT_FALSE(socket.bind(Loopback));
        EXPECT_FALSE(socket.connect(Loopback, 1, -1));
        EXPECT_FALSE(socket.getSendBufferSize(&nSize));
        EXPECT_FALSE(socket.setNonBlocking(true));
    }
}

TEST(Socket, SilenceIsATimeOut) {
    Connection connection;
    ASSERT_TRUE(connection.bUp);
    char cByte = 0;
    EXPECT_EQ(-2, connection.client.recv(&cByte, 1, 0, false));
    EXPECT_EQ(-2, connection.client.waitRead(1));
    EXPECT_EQ(0, connection.client.waitWrite(0));
    ASSERT_TRUE(connection.client.setNonBlocking(true));
    EXPECT_EQ(-3, connection.client.recv(&cByte, 1));
    EXPECT_EQ(-2, connection.client.recv(&cByte, 1, 0, true));

    Socket listener(1, Socket::Stream);
    ASSERT_TRUE(listener.open() && listener.bind(Loopback, 0) && listener.listen(1));
    Socket* pMade = nullptr;
    EXPECT_EQ(-2, listener.accept(pMade, 0));
    EXPECT_EQ(nullptr, pMade);
}

TEST(Socket, AClosedPeerIsAFailureWithoutASignalOrAStickyError) {
    Connection connection;
    ASSERT_TRUE(connection.bUp);
    char cByte = 0;
    connection.pServer->close();
    EXPECT_EQ(-1, connection.client.recv(&cByte, 1, LongMs, false));
    EXPECT_EQ(-1, connection.client.recv(&cByte, 1));
    // The first send draws a reset, a later one meets the broken pipe.
    int nSent = 1;
    for (int i = 0; i < 100 && nSent > 0; ++i) {
        nSent = connection.client.send("x", 1, 0);
    }
    EXPECT_EQ(-1, nSent);
    EXPECT_TRUE(connection.client.setReuseAddr(true));
}

TEST(Socket, AResetIsNotRemembered) {
    Connection connection;
    ASSERT_TRUE(connection.bUp);
    connection.reset();
    char cByte = 0;
    EXPECT_EQ(-1, connection.client.recv(&cByte, 1, LongMs, false));
    EXPECT_TRUE(connection.client.setReuseAddr(true));
}

TEST(Socket, AStreamRemembersItsFirstFailureUntilItIsOpenedAgain) {
    const RefusingPort port(1);
    for (const bool bTimed : {false, true}) {
        Socket socket(1, Socket::Stream);
        ASSERT_TRUE(socket.open());
        EXPECT_FALSE(bTimed ? socket.connect(port.address, LongMs) : socket.connect(port.address));
        InetAddr address;
        EXPECT_FALSE(socket.bind(Loopback, 0));
        EXPECT_FALSE(socket.bind(Loopback));
        EXPECT_FALSE(socket.listen(1));
        EXPECT_FALSE(socket.setReuseAddr(true));
        EXPECT_FALSE(socket.getLocalAddress(address));
        EXPECT_EQ(-1, socket.waitWrite(0));
        EXPECT_TRUE(socket.setNoDelay()) << "not one of those that are refused";
        socket.close();
        EXPECT_TRUE(socket.open());
        EXPECT_TRUE(socket.bind(Loopback, 0));
        EXPECT_TRUE(socket.listen(1));
    }
}

TEST(Socket, ABindToWhatIsNoAddressIsRemembered) {
    for (const char* pszIp : {"no address", ""}) {
        Socket socket(1, Socket::Stream);
        ASSERT_TRUE(socket.open());
        EXPECT_FALSE(socket.bind(pszIp));
        EXPECT_FALSE(socket.listen(1)) << pszIp;
    }
}

TEST(Socket, ShutSocketsRefuseTimedTransfers) {
    struct ShutSocket : Socket {
        ShutSocket() : Socket(1, Stream) { m_nShut = 1; }
    } socket;
    Connection connection;
    ASSERT_TRUE(connection.bUp);
    const int nHandle = connection.client.getHandle();
    connection.client.setHandle(-1);
    socket.setHandle(nHandle);
    char cByte = 0;
    EXPECT_EQ(1, connection.pServer->send("x", 1, LongMs));
    EXPECT_EQ(-1, socket.recv(&cByte, 1, LongMs, false));
    EXPECT_EQ(-1, socket.send("x", 1, LongMs));
    EXPECT_EQ(1, socket.send("x", 1, false));
    EXPECT_EQ(0, socket.waitRead(LongMs));
    EXPECT_EQ(1, socket.recv(&cByte, 1));
}

TEST(Socket, AnAddressInUseIsNotRemembered) {
    const RefusingPort taken(1);
    Socket socket(1, Socket::Stream);
    ASSERT_TRUE(socket.open());
    EXPECT_FALSE(socket.bind(taken.address));
    EXPECT_TRUE(socket.bind(Loopback));
}

TEST(Socket, ARefusedConnectionFailsInBothFamilies) {
    for (const int nIpVersion : {1, 2}) {
        const RefusingPort port(nIpVersion);
        Socket socket(nIpVersion, Socket::Stream);
        ASSERT_TRUE(socket.open());
        EXPECT_FALSE(socket.connect(port.address, LongMs)) << nIpVersion;
    }
}

TEST(Socket, ConnectTakesAddressesAndNoNames) {
    for (const char* pszHost : {"localhost", "", "127.0.0.1.", static_cast<const char*>(nullptr)}) {
        Socket socket(1, Socket::Stream);
        ASSERT_TRUE(socket.open());
        EXPECT_FALSE(socket.connect(pszHost, 9));
        ASSERT_TRUE(socket.open());
        EXPECT_FALSE(socket.connect(pszHost, 9, LongMs));
    }
}

TEST(Socket, ConnectEndsWithItsTimeOutWhenNobodyAnswers) {
    Socket listener(1, Socket::Stream);
    InetAddr address;
    ASSERT_TRUE(listener.open() && listener.bind(Loopback, 0) && listener.listen(0) &&
                listener.getLocalAddress(address));
    // A full queue lets further connections wait.
    std::vector<std::unique_ptr<Socket>> vecClients;
    bool bConnected = true;
    for (int i = 0; i < 8 && bConnected; ++i) {
        vecClients.push_back(std::make_unique<Socket>(1, Socket::Stream));
        ASSERT_TRUE(vecClients.back()->open());
        bConnected = vecClients.back()->connect(address, 100);
    }
    EXPECT_FALSE(bConnected);
}

TEST(Socket, SendingWholeGivesAShortCountInTheEnd) {
    Connection connection;
    ASSERT_TRUE(connection.bUp && connection.client.setNonBlocking(true));
    const std::vector<char> vecBytes(32U << 20);
    const auto nAll = static_cast<std::int32_t>(vecBytes.size());
    const std::int32_t nSent = connection.client.send(vecBytes.data(), nAll, true);
    EXPECT_GT(nSent, 0);
    EXPECT_LT(nSent, nAll);
    std::int32_t nMore = nSent;
    for (int i = 0; i < 100 && nMore > 0; ++i) {
        nMore = connection.client.send(vecBytes.data(), nAll, true);
    }
    EXPECT_EQ(-3, nMore) << "nothing more fits";
    EXPECT_EQ(-3, connection.client.send(vecBytes.data(), nAll, false));
}

TEST(Socket, TheSendTimeOutIsSetOnlyWhenItChanges) {
    Connection connection;
    ASSERT_TRUE(connection.bUp);
    const auto timeout = [&] {
        timeval value{};
        socklen_t nSize = sizeof(value);
        ::getsockopt(connection.client.getHandle(), SOL_SOCKET, SO_SNDTIMEO, &value, &nSize);
        return value.tv_sec * 1000 + value.tv_usec / 1000;
    };
    const auto setBehindItsBack = [&](long nSeconds) {
        const timeval value{nSeconds, 0};
        ::setsockopt(connection.client.getHandle(), SOL_SOCKET, SO_SNDTIMEO, &value, sizeof(value));
    };
    setBehindItsBack(7);
    EXPECT_EQ(1, connection.client.send("x", 1, -5));
    EXPECT_EQ(7000, timeout()) << "a negative one is 0, as at the start";
    EXPECT_EQ(1, connection.client.send("x", 1, 1300));
    EXPECT_EQ(1300, timeout());
    setBehindItsBack(7);
    EXPECT_EQ(1, connection.client.send("x", 1, 1300));
    EXPECT_EQ(7000, timeout());
    EXPECT_EQ(1, connection.client.send("x", 1));
    EXPECT_EQ(0, timeout());
}

TEST(Socket, DatagramsGoWholeOrInPieces) {
    Socket receiver(1, Socket::Datagram);
    Socket sender(1, Socket::Datagram);
    InetAddr to;
    ASSERT_TRUE(receiver.open() && receiver.bind(Loopback) && receiver.getLocalAddress(to));
    ASSERT_TRUE(sender.open() && sender.bind(Loopback));
    const struct {
        std::int32_t nChunk;
        std::vector<std::int32_t> vecPieces;
    } cases[] = {{4, {4, 4, 2}}, {10, {10}}, {99, {10}}};
    for (const auto& [nChunk, vecPieces] : cases) {
        EXPECT_EQ(10, sender.sendTo("0123456789", 10, to, nChunk));
        for (const std::int32_t nPiece : vecPieces) {
            char szText[64] = {};
            InetAddr from;
            InetAddr local;
            EXPECT_EQ(nPiece, receiver.recvFrom(szText, sizeof(szText), from, LongMs));
            ASSERT_TRUE(sender.getLocalAddress(local));
            EXPECT_EQ(local.getPORT(), from.getPORT());
            EXPECT_EQ(Loopback, from.getIP());
            EXPECT_EQ(1, from.getIPProtoVer());
        }
    }
    const InetAddr constant = to;
    EXPECT_EQ(3, sender.sendTo("abc", 3, constant));
    EXPECT_EQ(-1, sender.sendTo("abc", 3, to, 0));
    EXPECT_EQ(-1, sender.sendTo("abc", -3, to));
}

TEST(Socket, AFailedDatagramDoesNotKeepTheNextFromGoing) {
    Socket receiver(1, Socket::Datagram);
    Socket sender(1, Socket::Datagram);
    InetAddr to;
    ASSERT_TRUE(receiver.open() && receiver.bind(Loopback) && receiver.getLocalAddress(to));
    ASSERT_TRUE(sender.open());
    const std::vector<char> vecTooLarge(70000);
    EXPECT_EQ(-1, sender.sendTo(vecTooLarge.data(), 70000, to));
    EXPECT_EQ(-1, sender.sendTo("x", 1, "no.such.name", 9));
    EXPECT_EQ(1, sender.sendTo("x", 1, to));
    char cByte = 0;
    InetAddr from;
    EXPECT_EQ(1, receiver.recvFrom(&cByte, 1, from, LongMs));
    EXPECT_EQ(-2, receiver.recvFrom(&cByte, 1, from, 0));
}

TEST(Socket, BufferSizesAreKept) {
    Socket socket(1, Socket::Stream);
    std::int32_t nBefore = 0;
    std::int32_t nAfter = 0;
    ASSERT_TRUE(socket.open());
    ASSERT_TRUE(socket.getRecvBufferSize(&nBefore));
    EXPECT_TRUE(socket.setRecvBufferSize(8192));
    EXPECT_TRUE(socket.getRecvBufferSize(&nAfter));
    EXPECT_NE(nBefore, nAfter);
    EXPECT_TRUE(socket.setSendBufferSize(8192));
    EXPECT_TRUE(socket.getSendBufferSize(&nAfter));
    EXPECT_GE(nAfter, 8192);
    EXPECT_FALSE(socket.getSendBufferSize(nullptr));
}

// Signals every few milliseconds, for this thread and no other.
class Interruptions {
public:
    Interruptions() {
        struct sigaction action {};
        action.sa_handler = [](int) {};
        ::sigaction(SIGALRM, &action, &m_before);
        const itimerval ticks{{0, 5000}, {0, 5000}};
        ::setitimer(ITIMER_REAL, &ticks, nullptr);
    }
    ~Interruptions() {
        const itimerval off{};
        ::setitimer(ITIMER_REAL, &off, nullptr);
        ::sigaction(SIGALRM, &m_before, nullptr);
    }
    Interruptions(const Interruptions&) = delete;
    Interruptions& operator=(const Interruptions&) = delete;

    static void keepOut() {
        sigset_t signals;
        ::sigemptyset(&signals);
        ::sigaddset(&signals, SIGALRM);
        ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    }

private:
    struct sigaction m_before {};
};

TEST(Socket, AWaitGoesOnAfterASignal) {
    Connection connection;
    ASSERT_TRUE(connection.bUp);
    const Interruptions interruptions;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(-2, connection.client.waitRead(100));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));
}

TEST(Socket, ASendGoesOnAfterASignal) {
    Connection connection;
    ASSERT_TRUE(connection.bUp);
    const std::vector<char> vecBytes(16U << 20);
    const auto nAll = static_cast<std::int32_t>(vecBytes.size());
    std::thread reader([&] {
        Interruptions::keepOut();
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        std::vector<char> vecRead(vecBytes.size());
        EXPECT_EQ(nAll, connection.pServer->recvAll(vecRead.data(), nAll));
    });
    {
        const Interruptions interruptions;
        EXPECT_EQ(nAll, connection.client.send(vecBytes.data(), nAll, LongMs));
    }
    connection.client.close();
    reader.join();
}

TEST(Socket, ASendEndsWithItsTimeOutInSpiteOfSignals) {
    Connection connection;
    ASSERT_TRUE(connection.bUp);
    const std::vector<char> vecBytes(32U << 20);
    const auto nAll = static_cast<std::int32_t>(vecBytes.size());
    const Interruptions interruptions;
    std::int32_t nSent = connection.client.send(vecBytes.data(), nAll, 50);
    EXPECT_LT(nSent, nAll);
    for (int i = 0; i < 100 && nSent > 0; ++i) {
        nSent = connection.client.send(vecBytes.data(), nAll, 50);
    }
    EXPECT_EQ(-1, nSent) << "nothing more fits";
}

TEST(Socket, HandlesAboveAThousandWork) {
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit before = limit;
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
    Connection connection;
    ASSERT_TRUE(connection.bUp);
    const int nHigh = ::fcntl(connection.client.getHandle(), F_DUPFD_CLOEXEC, 1500);
    if (nHigh < 0) {
        GTEST_SKIP() << "this machine allows no handle that high";
    }
    connection.client.close();
    connection.client.setHandle(nHigh);
    char cByte = 0;
    EXPECT_EQ(1, connection.pServer->send("x", 1, LongMs));
    EXPECT_EQ(1, connection.client.recv(&cByte, 1, LongMs, false));
    connection.client.close();
    ::setrlimit(RLIMIT_NOFILE, &before);
}

TEST(Socket, AGroupIsJoinedOnTheInterfaceOfTheLocalAddress) {
    Socket socket(1, Socket::Datagram);
    InetAddr group;
    ASSERT_TRUE(socket.open() && socket.bind(Loopback));
    group.setIP("234.5.6.7");
    EXPECT_TRUE(socket.setBroadcast(true));
    EXPECT_TRUE(socket.joinGroup(group));
    EXPECT_FALSE(socket.joinGroup(group)) << "joined already";
    for (const char* pszNoGroup : {"127.0.0.1", "", "somewhere"}) {
        group.setIP(pszNoGroup);
        EXPECT_FALSE(socket.joinGroup(group)) << pszNoGroup;
    }
}

// Two sockets share a group, and both receive what is sent to it from the loopback.
void exchangeOverGroup(int nIpVersion, const char* pszGroup, const char* pszHost) {
    InetAddr group;
    group.setIP(pszGroup);
    group.setPORT(31001);
    Socket first(nIpVersion, Socket::Datagram);
    Socket second(nIpVersion, Socket::Datagram);
    Socket sender(nIpVersion, Socket::Datagram);
    ASSERT_TRUE(first.open() && first.openGroup(group)) << pszGroup;
    ASSERT_TRUE(second.open() && second.openGroup(group)) << pszGroup;
    ASSERT_TRUE(sender.open() && sender.bind(pszHost));
    ASSERT_EQ(5, sender.sendTo("hello", 5, group));
    for (Socket* pSocket : {&first, &second}) {
        char szText[16] = {};
        InetAddr from;
        EXPECT_EQ(5, pSocket->recvFrom(szText, sizeof(szText), from, LongMs));
        EXPECT_STREQ("hello", szText);
    }
    EXPECT_FALSE(first.openGroup(group)) << "bound already";
}

TEST(Socket, AnOpenedGroupIsSharedAndReceives) {
    const bool bPermitted = runInLoopbackNamespace([] {
        exchangeOverGroup(1, "234.5.6.7", Loopback);
        exchangeOverGroup(2, "ff12::1%lo", "::1");
    });
    if (!bPermitted) {
        GTEST_SKIP() << "no network namespace on this machine";
    }
}

}  // namespace
