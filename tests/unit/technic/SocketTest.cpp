// One socket: its result numbers, its waits, its sticky error, its options.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "Product/Technic/Socket.h"
#include "support/Addresses.h"

namespace {

using testing::Each;

constexpr std::int32_t LongMs = 5000;
constexpr std::int32_t TooMuch = 32 << 20;  // more bytes than the buffers of a connection hold

// A socket on a port of the loopback, which refuses connections for as long as it does not listen.
class BoundSocket : public Socket {
public:
    BoundSocket(int nIpVersion, int nType) : Socket(nIpVersion, nType) {
        m_bUp = open() && bind(nIpVersion == 2 ? "::1" : Loopback, 0) && getLocalAddress(m_own);
    }
    bool m_bUp;
    InetAddr m_own;
};

// Two ends of one connection over the loopback.
class ConnectionTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(connectOver(1)); }

    int sendMuch(std::int32_t nTimeoutMs) {
        return m_pClient->send(m_vecBytes.data(), TooMuch, nTimeoutMs);
    }

    bool connectOver(int nIpVersion) {
        BoundSocket listener(nIpVersion, Socket::Stream);
        m_pClient = std::make_unique<Socket>(nIpVersion, Socket::Stream);
        Socket* pAccepted = nullptr;
        const bool bUp = listener.m_bUp && listener.listen(1) && m_pClient->open() &&
                         m_pClient->connect(listener.m_own, LongMs) &&
                         listener.accept(pAccepted, LongMs) == 0;
        m_pServer.reset(pAccepted);
        return bUp;
    }

    // Sends until nothing more fits; what the last attempt returned.
    template <class Send>
    static int fill(const Send& send) {
        int nSent = 1;
        for (int nSends = 0; nSends < 100 && nSent > 0; ++nSends) {
            nSent = send();
        }
        return nSent;
    }

    std::unique_ptr<Socket> m_pClient;
    std::unique_ptr<Socket> m_pServer;
    const std::vector<char> m_vecBytes = std::vector<char>(TooMuch);
    char m_cByte = 0;
};

template <class Value = int>
Value option(Socket& socket, int nLevel, int nName) {
    Value value{};
    socklen_t nSize = sizeof value;
    EXPECT_EQ(::getsockopt(socket.getHandle(), nLevel, nName, &value, &nSize), 0);
    return value;
}

// A signal every few milliseconds; it goes to the first thread, which runs the tests.
class Interruptions {
public:
    Interruptions() {
        struct sigaction action {};
        action.sa_handler = [](int) {};
        ::sigaction(SIGALRM, &action, nullptr);
        interruptEvery(5000);
    }
    ~Interruptions() { interruptEvery(0); }

private:
    static void interruptEvery(suseconds_t nMicroseconds) {
        const itimerval time{{0, nMicroseconds}, {0, nMicroseconds}};
        ::setitimer(ITIMER_REAL, &time, nullptr);
    }
};

}  // namespace

TEST_F(ConnectionTest, BytesTravelBothWays) {
    for (const int nIpVersion : {1, 2}) {
        if (!connectOver(nIpVersion)) {
            GTEST_SKIP() << "no IPv6 loopback on this machine";
        }
        char szText[6] = {};
        EXPECT_EQ(m_pClient->send("hello", 5), 5);
        EXPECT_EQ(m_pServer->recvAll(szText, 5), 5);
        EXPECT_STREQ(szText, "hello");
        EXPECT_EQ(m_pServer->sendAll("again", 5), 5);
        EXPECT_EQ(m_pClient->recv(szText, 2, LongMs, false), 2);
        EXPECT_EQ(m_pClient->recv(szText + 2, 4), 3);
        EXPECT_STREQ(szText, "again");

        InetAddr local;
        ASSERT_TRUE(m_pClient->getLocalAddress(local));
        EXPECT_EQ(m_pServer->getAddress(), local);
        EXPECT_EQ(local.getIPProtoVer(), nIpVersion);
        EXPECT_EQ(m_pClient->getAddress().getIPProtoVer(), nIpVersion);
        EXPECT_EQ(m_pClient->getIPVersion(), nIpVersion);
    }
}

TEST(Socket, OptionsReachTheSystem) {
    Socket socket(1, Socket::Stream);
    std::int32_t nReceived = 0;
    std::int32_t nSent = 0;
    ASSERT_TRUE(socket.open());
    EXPECT_TRUE(socket.setRecvBufferSize(8192) && socket.setSendBufferSize(9216));
    EXPECT_TRUE(socket.getRecvBufferSize(&nReceived) && socket.getSendBufferSize(&nSent));
    EXPECT_FALSE(socket.getSendBufferSize(nullptr));
    const std::tuple<int, int, int> arrCases[] = {
        {IPPROTO_TCP, TCP_NODELAY, 1},      {SOL_SOCKET, SO_KEEPALIVE, 1},
        {IPPROTO_TCP, TCP_KEEPIDLE, 3},     {IPPROTO_TCP, TCP_KEEPINTVL, 3},
        {SOL_SOCKET, SO_RCVBUF, nReceived}, {SOL_SOCKET, SO_SNDBUF, nSent},
    };
    for (const auto& [nLevel, nName, nValue] : arrCases) {
        EXPECT_EQ(option(socket, nLevel, nName), nValue) << nLevel << ' ' << nName;
    }
    EXPECT_EQ(nReceived, 2 * 8192);  // as the system reports them
    EXPECT_EQ(nSent, 2 * 9216);
}

TEST(Socket, WithoutAHandleEverythingFailsAtOnce) {
    Socket socket(1, Socket::Datagram);
    InetAddr address;
    std::int32_t nValue = 0;
    ASSERT_TRUE(socket.open());
    const int nFirst = socket.getHandle();
    ASSERT_TRUE(socket.open());
    EXPECT_EQ(socket.getHandle(), nFirst) << "the handle of before was given back";
    EXPECT_TRUE(socket.close() && socket.close());
    EXPECT_THAT(
        (std::vector{socket.getHandle(), socket.waitRead(-1), socket.waitWrite(-1),
                     socket.recv(&nValue, 1), socket.recv(&nValue, 1, -1, false),
                     socket.recvFrom(&nValue, 1, address, -1), socket.send(&nValue, 1, false),
                     socket.send(&nValue, 1, true), socket.sendAll(&nValue, 1)}),
        Each(-1));
    EXPECT_FALSE(socket.bind(Loopback) || socket.connect(Loopback, 1, -1));
    EXPECT_FALSE(socket.getSendBufferSize(&nValue) || socket.setNonBlocking(true));
}

TEST_F(ConnectionTest, SilenceIsATimeOut) {
    EXPECT_EQ(m_pClient->recv(&m_cByte, 1, 0, false), -2);
    EXPECT_EQ(m_pClient->waitRead(1), -2);
    EXPECT_EQ(m_pClient->waitWrite(0), 0);
    ASSERT_TRUE(m_pClient->setNonBlocking(true));
    EXPECT_EQ(m_pClient->recv(&m_cByte, 1), -3);
    EXPECT_EQ(m_pClient->recv(&m_cByte, 1, 0, true), -2);
    EXPECT_EQ(m_pClient->recv(&m_cByte, 1, 0, true), -2) << "although it is remembered";
}

TEST_F(ConnectionTest, APeerThatIsGoneIsAFailureWithoutASignalOrAStickyError) {
    for (const bool bReset : {false, true}) {
        ASSERT_TRUE(connectOver(1));
        const linger atClose{bReset, 0};
        ::setsockopt(m_pServer->getHandle(), SOL_SOCKET, SO_LINGER, &atClose, sizeof atClose);
        m_pServer->close();
        EXPECT_EQ(m_pClient->recv(&m_cByte, 1, LongMs, false), -1);
        EXPECT_EQ(m_pClient->recv(&m_cByte, 1), -1);
        // The first send draws a reset, a later one meets the broken pipe.
        EXPECT_EQ(fill([&] { return m_pClient->send("x", 1, 0); }), -1);
        EXPECT_TRUE(m_pClient->setReuseAddr(true));
    }
}

TEST(Socket, AStreamRemembersItsFirstFailureUntilItIsOpenedAgain) {
    BoundSocket taken(1, Socket::Stream);
    const InetAddr& port = taken.m_own;
    const std::pair<std::function<bool(Socket&)>, bool> arrCases[] = {
        {[&](Socket& socket) { return socket.connect(port, LongMs); }, true},
        {[&](Socket& socket) { return socket.connect(port); }, true},
        {[](Socket& socket) { return socket.bind("no address"); }, true},
        {[](Socket& socket) { return socket.bind(""); }, true},
        {[](Socket& socket) { return socket.connect("localhost", 9); }, true},
        {[](Socket& socket) { return socket.connect("127.0.0.1.", 9, LongMs); }, true},
        {[](Socket& socket) { return socket.connect("", 9, LongMs); }, true},
        {[](Socket& socket) { return socket.connect(nullptr, 9); }, false},
        {[&](Socket& socket) { return socket.bind(port); }, false},  // in use
    };
    for (const auto& [fail, bRemembered] : arrCases) {
        Socket socket(1, Socket::Stream);
        InetAddr address;
        ASSERT_TRUE(socket.open());
        EXPECT_FALSE(fail(socket));
        EXPECT_TRUE(socket.setNoDelay()) << "not one of those that are refused";
        EXPECT_FALSE(bRemembered && socket.bind(Loopback));
        EXPECT_THAT(
            (std::vector{socket.bind(Loopback, 0), socket.listen(1), socket.setReuseAddr(true),
                         socket.getLocalAddress(address), socket.waitWrite(0) != -1}),
            Each(!bRemembered));
        EXPECT_TRUE(socket.open() && socket.bind(Loopback) && socket.listen(1));
    }
}

TEST(Socket, ConnectEndsWithItsTimeOutWhenNobodyAnswers) {
    BoundSocket listener(1, Socket::Stream);
    ASSERT_TRUE(listener.listen(0));
    // A full queue lets further connections wait.
    std::vector<std::unique_ptr<Socket>> vecClients;
    bool bConnected = true;
    while (vecClients.size() < 8 && bConnected) {
        vecClients.push_back(std::make_unique<Socket>(1, Socket::Stream));
        ASSERT_TRUE(vecClients.back()->open());
        bConnected = vecClients.back()->connect(listener.m_own, 100);
    }
    EXPECT_FALSE(bConnected);
}

TEST_F(ConnectionTest, SendingWholeGivesAShortCountInTheEnd) {
    ASSERT_TRUE(m_pClient->setNonBlocking(true));
    const auto send = [&](bool bWhole) {
        return m_pClient->send(m_vecBytes.data(), TooMuch, bWhole);
    };
    const std::int32_t nSent = send(true);
    EXPECT_GT(nSent, 0);
    EXPECT_LT(nSent, TooMuch);
    EXPECT_EQ(fill([&] { return send(true); }), -3);
    EXPECT_EQ(send(false), -3);
}

TEST_F(ConnectionTest, TheSendTimeOutStaysUntilAnotherIsToldOrTheSocketIsOpened) {
    const auto limitAfter = [&](std::int32_t nTimeout) {
        m_pClient->send("x", 1, nTimeout);
        const auto time = option<timeval>(*m_pClient, SOL_SOCKET, SO_SNDTIMEO);
        return time.tv_sec * 1000 + time.tv_usec / 1000;
    };
    for (const std::int32_t nTimeout : {1300, 1300, -1, 1300}) {
        EXPECT_EQ(limitAfter(nTimeout), std::max(nTimeout, 0));
    }
    ASSERT_TRUE(m_pClient->open());
    EXPECT_EQ(limitAfter(1300), 1300);
}

TEST(Socket, DatagramsGoWholeOrInPieces) {
    BoundSocket receiver(1, Socket::Datagram);
    BoundSocket sender(1, Socket::Datagram);
    InetAddr& to = receiver.m_own;
    InetAddr from;
    const std::pair<std::int32_t, std::vector<std::string>> arrCases[] = {
        {4, {"0123", "4567", "89"}}, {10, {"0123456789"}}, {99, {"0123456789"}}};
    for (const auto& [nChunk, vecPieces] : arrCases) {
        EXPECT_EQ(sender.sendTo("0123456789", 10, to, nChunk), 10);
        for (const std::string& strPiece : vecPieces) {
            char szText[64] = {};
            receiver.recvFrom(szText, sizeof szText, from, LongMs);
            EXPECT_EQ(szText, strPiece);
            EXPECT_EQ(from, sender.m_own);
        }
    }
    EXPECT_EQ(sender.sendTo("abc", -3, to), -1);
    EXPECT_EQ(sender.sendTo("abc", 3, to, 0), -1);
    EXPECT_EQ(sender.sendTo("x", 1, "no.such.name", 9), -1);
    EXPECT_EQ(sender.sendTo("x", 1, std::as_const(to)), 1) << "failures are forgotten";
}

TEST_F(ConnectionTest, SignalsNeitherEndNorProlongAWait) {
    const Interruptions interruptions;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(m_pClient->waitRead(100), -2);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));
    EXPECT_LT(sendMuch(50), TooMuch);
    EXPECT_EQ(fill([&] { return sendMuch(50); }), -1);
}

TEST_F(ConnectionTest, ASendGoesOnAfterASignal) {
    const std::jthread reader([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        std::vector<char> vecRead(TooMuch);
        EXPECT_EQ(m_pServer->recvAll(vecRead.data(), TooMuch), TooMuch);
    });
    const Interruptions interruptions;
    EXPECT_EQ(sendMuch(LongMs), TooMuch);
    m_pClient->close();
}

TEST_F(ConnectionTest, HandlesAboveAThousandWork) {
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
    const int nHigh = ::fcntl(m_pClient->getHandle(), F_DUPFD_CLOEXEC, 1500);
    if (nHigh < 0) {
        GTEST_SKIP() << "this machine allows no handle that high";
    }
    m_pClient->close();
    m_pClient->setHandle(nHigh);
    EXPECT_EQ(m_pServer->send("x", 1, LongMs), 1);
    EXPECT_EQ(m_pClient->recv(&m_cByte, 1, LongMs, false), 1);
}
