// One socket: its result numbers, its waits, its sticky error, its options.
#include <fcntl.h>
#include <gtest/gtest.h>
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
#include <utility>
#include <vector>

#include "Product/Technic/Socket.h"
#include "Product/Technic/platform/Clock.h"
#include "support/LoopbackNamespace.h"

namespace {

constexpr const char* Loopback = "127.0.0.1";
constexpr std::int32_t LongMs = 5000;
constexpr std::int32_t TooMuch = 32 << 20;  // more bytes than the buffers of a connection hold

// A socket on a port of the loopback, which refuses connections for as long as it does not listen.
class BoundSocket : public Socket {
public:
    BoundSocket(int nIpVersion, int nType) : Socket(nIpVersion, nType) {
        m_bUp = open() && bind(nIpVersion == 2 ? "::1" : Loopback, 0) && getLocalAddress(m_objOwn);
    }
    bool m_bUp;
    InetAddr m_objOwn;
};

// Two ends of one connection over the loopback.
class ConnectionTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(connectOver(1)); }

    bool connectOver(int nIpVersion) {
        BoundSocket objListener(nIpVersion, Socket::Stream);
        m_pobjClient = std::make_unique<Socket>(nIpVersion, Socket::Stream);
        Socket* pAccepted = nullptr;
        const bool bUp = objListener.m_bUp && objListener.listen(1) && m_pobjClient->open() &&
                         m_pobjClient->connect(objListener.m_objOwn, LongMs) &&
                         objListener.accept(pAccepted, LongMs) == 0;
        m_pobjServer.reset(pAccepted);
        return bUp;
    }

    // Sends until nothing more fits; what the last attempt returned.
    template <class Send>
    static int fill(const Send& objSend) {
        int nSent = 1;
        for (int nSends = 0; nSends < 100 && nSent > 0; ++nSends) {
            nSent = objSend();
        }
        return nSent;
    }

    std::unique_ptr<Socket> m_pobjClient;
    std::unique_ptr<Socket> m_pobjServer;
    const std::vector<char> m_vecBytes = std::vector<char>(TooMuch);
    char m_cByte = 0;
};

template <class Value = int>
Value option(Socket& objSocket, int nLevel, int nName) {
    Value objValue{};
    socklen_t nSize = sizeof objValue;
    EXPECT_EQ(::getsockopt(objSocket.getHandle(), nLevel, nName, &objValue, &nSize), 0);
    return objValue;
}

template <class Value>
void setOption(Socket& objSocket, int nName, const Value& objValue) {
    ::setsockopt(objSocket.getHandle(), SOL_SOCKET, nName, &objValue, sizeof objValue);
}

// Signals to this thread every few milliseconds.
class Interruptions {
public:
    Interruptions() {
        struct sigaction action {};
        action.sa_handler = [](int) {};
        ::sigaction(SIGALRM, &action, nullptr);
        m_objTicker = std::jthread([nTarget = ::pthread_self()](const std::stop_token& objStop) {
            while (!objStop.stop_requested()) {
                ::pthread_kill(nTarget, SIGALRM);
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            }
        });
    }

private:
    std::jthread m_objTicker;
};

}  // namespace

TEST_F(ConnectionTest, BytesTravelBothWays) {
    for (const int nIpVersion : {1, 2}) {
        if (nIpVersion == 2 && !connectOver(2)) {
            GTEST_SKIP() << "no IPv6 loopback on this machine";
        }
        char szText[6] = {};
        EXPECT_EQ(m_pobjClient->send("hello", 5), 5);
        EXPECT_EQ(m_pobjServer->recvAll(szText, 5), 5);
        EXPECT_STREQ(szText, "hello");
        EXPECT_EQ(m_pobjServer->sendAll("again", 5), 5);
        EXPECT_EQ(m_pobjClient->recv(szText, 2, LongMs, false), 2);
        EXPECT_EQ(m_pobjClient->recv(szText + 2, 4), 3);
        EXPECT_STREQ(szText, "again");

        InetAddr objLocal;
        ASSERT_TRUE(m_pobjClient->getLocalAddress(objLocal));
        EXPECT_EQ(m_pobjServer->getAddress(), objLocal);
        EXPECT_EQ(objLocal.getIPProtoVer(), nIpVersion);
        EXPECT_EQ(m_pobjClient->getAddress().getIPProtoVer(), nIpVersion);
        EXPECT_EQ(m_pobjClient->getIPVersion(), nIpVersion);
        EXPECT_FALSE(m_pobjClient->isConnected());
    }
}

TEST(Socket, OptionsOfStreamsReachTheSystem) {
    Socket objSocket(1, Socket::Stream);
    std::int32_t nSize = 0;
    ASSERT_TRUE(objSocket.open());
    EXPECT_EQ(option(objSocket, IPPROTO_TCP, TCP_NODELAY), 1);
    EXPECT_EQ(option(objSocket, SOL_SOCKET, SO_KEEPALIVE), 1);
    EXPECT_EQ(option(objSocket, IPPROTO_TCP, TCP_KEEPIDLE), 3);
    EXPECT_EQ(option(objSocket, IPPROTO_TCP, TCP_KEEPINTVL), 3);
    EXPECT_TRUE(objSocket.setRecvBufferSize(8192) && objSocket.setSendBufferSize(9216));
    EXPECT_EQ(option(objSocket, SOL_SOCKET, SO_RCVBUF), 2 * 8192);  // as the system reports them
    EXPECT_EQ(option(objSocket, SOL_SOCKET, SO_SNDBUF), 2 * 9216);
    EXPECT_TRUE(objSocket.getRecvBufferSize(&nSize));
    EXPECT_EQ(nSize, 2 * 8192);
    EXPECT_TRUE(objSocket.getSendBufferSize(&nSize));
    EXPECT_EQ(nSize, 2 * 9216);
    EXPECT_FALSE(objSocket.getSendBufferSize(nullptr));
}

TEST(Socket, WithoutAHandleEverythingFailsAtOnce) {
    Socket objSocket(1, Socket::Datagram);
    InetAddr objAddress;
    std::int32_t nValue = 0;
    ASSERT_TRUE(objSocket.open());
    const int nFirst = objSocket.getHandle();
    ASSERT_TRUE(objSocket.open());
    EXPECT_EQ(objSocket.getHandle(), nFirst) << "the handle of before was given back";
    EXPECT_TRUE(objSocket.close() && objSocket.close());
    EXPECT_EQ(objSocket.getHandle(), -1);
    EXPECT_EQ(objSocket.waitRead(-1), -1);
    EXPECT_EQ(objSocket.waitWrite(-1), -1);
    EXPECT_EQ(objSocket.recv(&nValue, 1), -1);
    EXPECT_EQ(objSocket.recv(&nValue, 1, -1, false), -1);
    EXPECT_EQ(objSocket.recvFrom(&nValue, 1, objAddress, -1), -1);
    EXPECT_EQ(objSocket.send(&nValue, 1, false), -1);
    EXPECT_EQ(objSocket.send(&nValue, 1, true), -1);
    EXPECT_EQ(objSocket.sendAll(&nValue, 1), -1);
    EXPECT_FALSE(objSocket.bind(Loopback) || objSocket.connect(Loopback, 1, -1));
    EXPECT_FALSE(objSocket.getSendBufferSize(&nValue) || objSocket.setNonBlocking(true));
}

TEST_F(ConnectionTest, SilenceIsATimeOut) {
    EXPECT_EQ(m_pobjClient->recv(&m_cByte, 1, 0, false), -2);
    EXPECT_EQ(m_pobjClient->waitRead(1), -2);
    EXPECT_EQ(m_pobjClient->waitWrite(0), 0);
    ASSERT_TRUE(m_pobjClient->setNonBlocking(true));
    EXPECT_EQ(m_pobjClient->recv(&m_cByte, 1), -3);
    EXPECT_EQ(m_pobjClient->recv(&m_cByte, 1, 0, true), -2);

    BoundSocket objListener(1, Socket::Stream);
    Socket* pMade = nullptr;
    ASSERT_TRUE(objListener.listen(1));
    EXPECT_EQ(objListener.accept(pMade, 0), -2);
    EXPECT_EQ(pMade, nullptr);
}

TEST_F(ConnectionTest, APeerThatIsGoneIsAFailureWithoutASignalOrAStickyError) {
    for (const bool bReset : {false, true}) {
        ASSERT_TRUE(connectOver(1));
        setOption(*m_pobjServer, SO_LINGER, linger{bReset, 0});
        m_pobjServer->close();
        EXPECT_EQ(m_pobjClient->recv(&m_cByte, 1, LongMs, false), -1);
        EXPECT_EQ(m_pobjClient->recv(&m_cByte, 1), -1);
        // The first send draws a reset, a later one meets the broken pipe.
        EXPECT_EQ(fill([&] { return m_pobjClient->send("x", 1, 0); }), -1);
        EXPECT_TRUE(m_pobjClient->setReuseAddr(true));
    }
}

TEST(Socket, AStreamRemembersItsFirstFailureUntilItIsOpenedAgain) {
    BoundSocket objRefusing(1, Socket::Stream);
    const InetAddr& objPort = objRefusing.m_objOwn;
    for (const bool bTimed : {false, true}) {
        Socket objSocket(1, Socket::Stream);
        InetAddr objAddress;
        ASSERT_TRUE(objSocket.open());
        EXPECT_FALSE(bTimed ? objSocket.connect(objPort, LongMs) : objSocket.connect(objPort));
        EXPECT_FALSE(objSocket.bind(Loopback, 0) || objSocket.bind(Loopback));
        EXPECT_FALSE(objSocket.listen(1) || objSocket.setReuseAddr(true));
        EXPECT_FALSE(objSocket.getLocalAddress(objAddress));
        EXPECT_EQ(objSocket.waitWrite(0), -1);
        EXPECT_TRUE(objSocket.setNoDelay()) << "not one of those that are refused";
        EXPECT_TRUE(objSocket.open() && objSocket.bind(Loopback, 0) && objSocket.listen(1));
    }
}

TEST(Socket, AFailedBindIsRememberedUnlessTheAddressIsInUse) {
    BoundSocket objTaken(1, Socket::Stream);
    Socket objSocket(1, Socket::Stream);
    ASSERT_TRUE(objSocket.open());
    EXPECT_FALSE(objSocket.bind(objTaken.m_objOwn));
    EXPECT_TRUE(objSocket.bind(Loopback));
    for (const char* pNoAddress : {"no address", ""}) {
        ASSERT_TRUE(objSocket.open());
        EXPECT_FALSE(objSocket.bind(pNoAddress) || objSocket.listen(1)) << pNoAddress;
    }
}

TEST_F(ConnectionTest, ShutSocketsRefuseTimedTransfers) {
    struct ShutSocket : Socket {
        ShutSocket() : Socket(1, Stream) { m_nShut = 1; }
    } objShut;
    objShut.setHandle(m_pobjClient->getHandle());
    m_pobjClient->setHandle(-1);
    EXPECT_EQ(m_pobjServer->send("x", 1, LongMs), 1);
    EXPECT_EQ(objShut.recv(&m_cByte, 1, LongMs, false), -1);
    EXPECT_EQ(objShut.send("x", 1, LongMs), -1);
    EXPECT_EQ(objShut.send("x", 1, false), 1);
    EXPECT_EQ(objShut.waitRead(LongMs), 0);
    EXPECT_EQ(objShut.recv(&m_cByte, 1), 1);
}

TEST(Socket, ConnectTakesAddressesAndNoNames) {
    Socket objSocket(1, Socket::Stream);
    for (const char* pHost : {"localhost", "", "127.0.0.1.", static_cast<const char*>(nullptr)}) {
        EXPECT_FALSE(objSocket.open() && objSocket.connect(pHost, 9)) << pHost;
        EXPECT_FALSE(objSocket.open() && objSocket.connect(pHost, 9, LongMs)) << pHost;
    }
}

TEST(Socket, ConnectEndsWithItsTimeOutWhenNobodyAnswers) {
    BoundSocket objListener(1, Socket::Stream);
    ASSERT_TRUE(objListener.listen(0));
    // A full queue lets further connections wait.
    std::vector<std::unique_ptr<Socket>> vecClients;
    bool bConnected = true;
    while (vecClients.size() < 8 && bConnected) {
        vecClients.push_back(std::make_unique<Socket>(1, Socket::Stream));
        ASSERT_TRUE(vecClients.back()->open());
        bConnected = vecClients.back()->connect(objListener.m_objOwn, 100);
    }
    EXPECT_FALSE(bConnected);
}

TEST_F(ConnectionTest, SendingWholeGivesAShortCountInTheEnd) {
    ASSERT_TRUE(m_pobjClient->setNonBlocking(true));
    const auto objSend = [&](bool bWhole) {
        return m_pobjClient->send(m_vecBytes.data(), TooMuch, bWhole);
    };
    const std::int32_t nSent = objSend(true);
    EXPECT_GT(nSent, 0);
    EXPECT_LT(nSent, TooMuch);
    EXPECT_EQ(fill([&] { return objSend(true); }), -3);
    EXPECT_EQ(objSend(false), -3);
}

TEST_F(ConnectionTest, TheSendTimeOutIsSetOnlyWhenItChanges) {
    const std::pair<std::int32_t, long> arrCases[] = {
        {-5, 7000},  // a negative one is 0, as at the start
        {1300, 1300},
        {1300, 7000},
        {-1, 0},
    };
    for (const auto& [nTimeout, nExpectedMs] : arrCases) {
        setOption(*m_pobjClient, SO_SNDTIMEO, timeval{7, 0});  // behind its back
        EXPECT_EQ(m_pobjClient->send("x", 1, nTimeout), 1);
        const auto objTime = option<timeval>(*m_pobjClient, SOL_SOCKET, SO_SNDTIMEO);
        EXPECT_EQ(objTime.tv_sec * 1000 + objTime.tv_usec / 1000, nExpectedMs);
    }
}

TEST(Socket, DatagramsGoWholeOrInPieces) {
    BoundSocket objReceiver(1, Socket::Datagram);
    BoundSocket objSender(1, Socket::Datagram);
    InetAddr& objTo = objReceiver.m_objOwn;
    const std::pair<std::int32_t, std::vector<std::string>> arrCases[] = {
        {4, {"0123", "4567", "89"}}, {10, {"0123456789"}}, {99, {"0123456789"}}};
    for (const auto& [nChunk, vecPieces] : arrCases) {
        EXPECT_EQ(objSender.sendTo("0123456789", 10, objTo, nChunk), 10);
        for (const std::string& strPiece : vecPieces) {
            char szText[64] = {};
            InetAddr objFrom;
            objReceiver.recvFrom(szText, sizeof szText, objFrom, LongMs);
            EXPECT_EQ(szText, strPiece);
            EXPECT_EQ(objFrom, objSender.m_objOwn);
        }
    }
    InetAddr objFrom;
    char cByte = 0;
    EXPECT_EQ(objSender.sendTo("abc", -3, objTo), -1);
    EXPECT_EQ(objSender.sendTo(std::vector<char>(70000).data(), 70000, objTo), -1);
    EXPECT_EQ(objSender.sendTo("x", 1, "no.such.name", 9), -1);
    EXPECT_EQ(objSender.sendTo("x", 1, std::as_const(objTo)), 1) << "failures are forgotten";
    EXPECT_EQ(objReceiver.recvFrom(&cByte, 1, objFrom, LongMs), 1);
    EXPECT_EQ(objReceiver.recvFrom(&cByte, 1, objFrom, 0), -2);
    EXPECT_EQ(objSender.sendTo("abc", 3, objTo, 0), -1);
}

TEST_F(ConnectionTest, AWaitGoesOnAfterASignal) {
    const Interruptions objInterruptions;
    const auto objStart = std::chrono::steady_clock::now();
    EXPECT_EQ(m_pobjClient->waitRead(100), -2);
    EXPECT_GE(std::chrono::steady_clock::now() - objStart, std::chrono::milliseconds(100));
}

TEST_F(ConnectionTest, ASendGoesOnAfterASignal) {
    const std::jthread objReader([&] {
        currentClock().sleepMs(50);
        std::vector<char> vecRead(TooMuch);
        EXPECT_EQ(m_pobjServer->recvAll(vecRead.data(), TooMuch), TooMuch);
    });
    {
        const Interruptions objInterruptions;
        EXPECT_EQ(m_pobjClient->send(m_vecBytes.data(), TooMuch, LongMs), TooMuch);
    }
    m_pobjClient->close();
}

TEST_F(ConnectionTest, ASendEndsWithItsTimeOutInSpiteOfSignals) {
    const Interruptions objInterruptions;
    const auto objSend = [&] { return m_pobjClient->send(m_vecBytes.data(), TooMuch, 50); };
    EXPECT_LT(objSend(), TooMuch);
    EXPECT_EQ(fill(objSend), -1);
}

TEST_F(ConnectionTest, HandlesAboveAThousandWork) {
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
    const int nHigh = ::fcntl(m_pobjClient->getHandle(), F_DUPFD_CLOEXEC, 1500);
    if (nHigh < 0) {
        GTEST_SKIP() << "this machine allows no handle that high";
    }
    m_pobjClient->close();
    m_pobjClient->setHandle(nHigh);
    EXPECT_EQ(m_pobjServer->send("x", 1, LongMs), 1);
    EXPECT_EQ(m_pobjClient->recv(&m_cByte, 1, LongMs, false), 1);
}

TEST(Socket, AGroupIsJoinedOnTheInterfaceOfTheLocalAddress) {
    BoundSocket objSocket(1, Socket::Datagram);
    InetAddr objGroup;
    objGroup.setIP("234.5.6.7");
    for (const bool bBroadcast : {true, false}) {
        EXPECT_TRUE(objSocket.setBroadcast(bBroadcast));
        EXPECT_EQ(option(objSocket, SOL_SOCKET, SO_BROADCAST) != 0, bBroadcast);
    }
    EXPECT_TRUE(objSocket.joinGroup(objGroup));
    for (const char* pNoGroup : {"234.5.6.7", "127.0.0.1", "", "somewhere"}) {
        objGroup.setIP(pNoGroup);
        EXPECT_FALSE(objSocket.joinGroup(objGroup)) << "joined already, or no group: " << pNoGroup;
    }
}

// Two sockets share a group, and both receive what is sent to it from the loopback.
TEST(Socket, AnOpenedGroupIsSharedAndReceives) {
    const bool bPermitted = runInLoopbackNamespace([] {
        for (const auto& [nIpVersion, pGroup] : {std::pair(1, "234.5.6.7"), {2, "ff12::1%lo"}}) {
            InetAddr objGroup;
            objGroup.setIP(pGroup);
            objGroup.setPORT(31001);
            Socket objFirst(nIpVersion, Socket::Datagram);
            Socket objSecond(nIpVersion, Socket::Datagram);
            BoundSocket objSender(nIpVersion, Socket::Datagram);
            ASSERT_TRUE(objFirst.open() && objFirst.openGroup(objGroup)) << pGroup;
            ASSERT_TRUE(objSecond.open() && objSecond.openGroup(objGroup)) << pGroup;
            ASSERT_EQ(objSender.sendTo("hello", 5, objGroup), 5);
            for (Socket* pSocket : {&objFirst, &objSecond}) {
                char szText[16] = {};
                InetAddr objFrom;
                EXPECT_EQ(pSocket->recvFrom(szText, sizeof szText, objFrom, LongMs), 5);
                EXPECT_STREQ(szText, "hello");
            }
            EXPECT_FALSE(objFirst.openGroup(objGroup)) << "bound already";
        }
    });
    if (!bPermitted) {
        GTEST_SKIP() << "no network namespace on this machine";
    }
}
