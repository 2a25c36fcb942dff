// Whole commands over streams and datagrams, against a peer that sends what the test says.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <string>
#include <vector>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/LogFilter.h"
#include "protocol/CommandParserFactory.h"
#include "protocol/SDKCommandHeadInfo.h"
#include "session/TCPTransfer.h"
#include "session/UDPTransfer.h"
#include "support/WireBytes.h"

using namespace fleetkit;

namespace {

constexpr const char* Loopback = "127.0.0.1";
constexpr int LongMs = 5000;
constexpr int ShortMs = 20;
constexpr std::uint32_t HeadLength = 24;
constexpr std::uint32_t LargestPayload = 256U << 20;

std::string head(std::uint32_t nPayload) {
    SDKCommandHeadInfo info;
    info.setProtocolType(1);
    info.setSequence(7);
    info.setPayloadLength(nPayload);
    CommandBuffer buffer;
    EXPECT_TRUE(encodeCommandHead(info, buffer));
    return bytesOf(buffer);
}

std::string command(const std::string& strPayload) {
    return head(static_cast<std::uint32_t>(strPayload.size())) + strPayload;
}

// A transport that listens and accepts, one that is connected to it, and the accepted one.
class TCPTransferTest : public testing::Test {
protected:
    void SetUp() override {
        InetAddr address;
        address.setIP(Loopback);
        ASSERT_EQ(0, m_listener.create());
        ASSERT_EQ(0, m_listener.setReuseAddr(1));
        ASSERT_EQ(0, m_listener.bind(address));
        ASSERT_EQ(0, m_listener.listen(1));
        ASSERT_TRUE(m_listener.getLocalAddr(address));
        ASSERT_EQ(0, m_transfer.create());
        ASSERT_EQ(0, m_transfer.connect(address, LongMs));
        ASSERT_EQ(0, m_listener.accept(m_peer, LongMs));
        ASSERT_TRUE(m_transfer.setCommandHeadParser(createCommandHeadParser(1)));
    }

    void peerSends(const std::string& strBytes) {
        const auto nLength = static_cast<std::int32_t>(strBytes.size());
        ASSERT_EQ(nLength, m_peer.getSocket()->sendAll(strBytes.data(), nLength));
    }

    TCPTransfer m_listener{1};
    TCPTransfer m_transfer{1};
    TCPTransfer m_peer{1};
    CommandBuffer m_buffer;
    InetAddr m_from;
};

TEST_F(TCPTransferTest, EveryReceiveHasItsCodeAndItsBytes) {
    struct Step {
        std::string strSent;  // by the peer, before the receive
        int nCode;
        std::string strReceived;
        bool bCloses = false;  // the peer, behind what it sent
    };
    const std::string strLarge = command(std::string(200000, 'x'));
    const std::string strCommand = command("payload");
    const std::string strPart = strCommand.substr(0, HeadLength + 3);
    const std::string strLargest = head(LargestPayload) + "few";
    std::string strBadHead = head(0);
    strBadHead[22] = static_cast<char>(strBadHead[22] ^ 1);
    using namespace ErrorCode;
    const std::pair<const char*, std::vector<Step>> arrConnections[] = {
        {"commands come one by one",
         {{command("first") + command("") + strLarge, Success, command("first")},
          {"", Success, command("")},
          {"", Success, strLarge}}},
        {"a time-out inside a head loses nothing",
         {{strCommand.substr(0, 10), ReceiveTimedOut, ""},
          {"", ReceiveTimedOut, ""},
          {strCommand.substr(10), Success, strCommand}}},
        {"a refused head is refused for good",
         {{strBadHead + strCommand, HeadRefused, ""}, {"", HeadRefused, ""}}},
        {"a new connection forgets it", {{strCommand, Success, strCommand}}},
        {"an end inside a payload leaves the part that came",
         {{strPart, ReceiveFailed, strPart, true}}},
        {"a time-out inside a payload gives it up",
         {{strPart, ReceiveTimedOut, strPart}, {strCommand, Success, strCommand}}},
        {"memory grows with what arrives", {{strLargest, ReceiveTimedOut, strLargest}}},
        {"a byte too many is too many for good",
         {{head(LargestPayload + 1), NoMemory, ""}, {"", NoMemory, ""}}},
        {"no signed number", {{head(0x80000000U), NoMemory, ""}}},
        {"the largest number", {{head(0xFFFFFFFFU), NoMemory, ""}}},
    };
    for (const auto& [szName, vecSteps] : arrConnections) {
        SCOPED_TRACE(szName);
        for (const Step& step : vecSteps) {
            peerSends(step.strSent);
            if (step.bCloses) {
                m_peer.close();
            }
            const int nTimeoutMs = step.nCode == ReceiveTimedOut ? ShortMs : LongMs;
            EXPECT_EQ(step.nCode, m_transfer.recvCommand(m_buffer, nTimeoutMs, m_from));
            EXPECT_TRUE(step.strReceived == bytesOf(m_buffer));
            EXPECT_LT(m_buffer.getCapacity(), 1U << 20);
        }
        m_listener.close();
        m_transfer.close();
        m_buffer.release();
        SetUp();
    }
}

TEST_F(TCPTransferTest, SentCommandsArriveWholeWithTheirSender) {
    const CommandBuffer buffer = bufferOf(command("body"));
    EXPECT_EQ(ErrorCode::Success, m_peer.sendCommand(buffer, m_from, LongMs));
    EXPECT_EQ(ErrorCode::Success, m_peer.sendCommand(buffer, m_from));
    EXPECT_EQ(ErrorCode::Success, m_transfer.recvCommand(m_buffer, LongMs, m_from));
    EXPECT_EQ(ErrorCode::Success, m_transfer.recvCommand(m_buffer));
    EXPECT_EQ(command("body"), bytesOf(m_buffer));
    EXPECT_EQ(m_buffer.getLength(), m_buffer.getCapacity());

    InetAddr local;
    InetAddr peer;
    ASSERT_TRUE(m_peer.getLocalAddr(local));
    EXPECT_EQ(ErrorCode::Success, m_transfer.getPeerAddr(peer));
    for (const InetAddr& address : {m_from, peer}) {
        EXPECT_EQ(local.getIP(), address.getIP());
        EXPECT_EQ(local.getPORT(), address.getPORT());
    }
}

TEST_F(TCPTransferTest, AShortOrFailedSendIsAFailure) {
    ASSERT_TRUE(m_transfer.setNonBlocking(true));
    const CommandBuffer buffer = bufferOf(std::string(32U << 20, 'x'));
    EXPECT_EQ(ErrorCode::SendFailed, m_transfer.sendCommand(buffer, m_from, LongMs));
    EXPECT_EQ(ErrorCode::SendFailed, m_transfer.sendCommand(buffer, m_from));
}

TEST_F(TCPTransferTest, ANonBlockingReceiveBeginsABrokenPayloadAnew) {
    const auto recvAfter = [&](const std::string& strSent) {
        peerSends(strSent);
        EXPECT_EQ(0, m_transfer.getSocket()->waitRead(LongMs));
        return m_transfer.recvCommand(m_buffer);
    };
    ASSERT_TRUE(m_transfer.setNonBlocking(true));
    EXPECT_EQ(ErrorCode::NothingToRead, m_transfer.recvCommand(m_buffer));
    EXPECT_EQ(ErrorCode::NothingToRead, recvAfter(command("payload").substr(0, HeadLength + 3)));
    EXPECT_EQ(HeadLength + 3, m_buffer.getLength());
    EXPECT_EQ(ErrorCode::Success, recvAfter("another"));
    EXPECT_EQ(std::string(HeadLength, '\0') + "another", bytesOf(m_buffer));
    m_peer.close();
    ASSERT_EQ(0, m_transfer.getSocket()->waitRead(LongMs));
    EXPECT_EQ(ErrorCode::ReceiveFailed, m_transfer.recvCommand(m_buffer));
}

TEST_F(TCPTransferTest, AcceptTellsSilenceFromFailure) {
    TCPTransfer peer(1);
    TCPTransfer notListening(1);
    ASSERT_EQ(0, notListening.create());
    EXPECT_EQ(ErrorCode::AcceptTimedOut, m_listener.accept(peer, 0));
    EXPECT_EQ(ErrorCode::AcceptFailed, notListening.accept(peer, LongMs));
    EXPECT_EQ(nullptr, peer.getSocket());
}

TEST(TCPTransfer, ReceivesNothingWithoutAParserAndHasNoMulticast) {
    CommandBuffer buffer;
    InetAddr address;
    TCPTransfer transfer(1);
    ASSERT_EQ(0, transfer.create());
    EXPECT_FALSE(transfer.setCommandHeadParser(SafePointer<ICommandHeadParser>()));
    EXPECT_EQ(ErrorCode::ReceiveFailed, transfer.recvCommand(buffer, LongMs, address));
    EXPECT_EQ(ErrorCode::ReceiveFailed, transfer.recvCommand(buffer));
    EXPECT_FALSE(transfer.setBroadcast(true));
    EXPECT_FALSE(transfer.joinGroup(address));
    EXPECT_FALSE(transfer.openGroup(address));
    address.setIP("192.0.2.1");
    EXPECT_EQ(ErrorCode::BindFailed, transfer.bind(address)) << "no interface has it";
}

template <class Transfer>
class AnyTransfer : public testing::Test {};
using Transfers = testing::Types<TCPTransfer, UDPTransfer>;
TYPED_TEST_SUITE(AnyTransfer, Transfers);

TYPED_TEST(AnyTransfer, DoesNothingOnceItsSocketIsClosed) {
    CommandBuffer buffer = bufferOf("x");
    InetAddr address;
    std::int32_t nSize = 0;
    TypeParam transfer(2);
    ASSERT_EQ(0, transfer.create());
    EXPECT_EQ(2, transfer.getIPProtoVer());
    EXPECT_TRUE(transfer.setRecvBufferSize(8192) && transfer.setSendBufferSize(8192));
    EXPECT_EQ(ErrorCode::Success, transfer.close());
    EXPECT_EQ(ErrorCode::Success, transfer.close());

    transfer.setCommandHeadParser(createCommandHeadParser(1));
    EXPECT_EQ(nullptr, transfer.getSocket());
    EXPECT_EQ(1, transfer.getIPProtoVer());
    address.setIP("1.2.3.4");
    EXPECT_THAT((std::vector{transfer.sendCommand(buffer, address, LongMs),
                             transfer.recvCommand(buffer, LongMs, address),
                             transfer.connect(address, LongMs), transfer.connect(address),
                             transfer.bind(0), transfer.bind(address), transfer.setReuseAddr(1),
                             transfer.getPeerAddr(address)}),
                testing::Each(ErrorCode::NoTransport));
    EXPECT_EQ("", address.getIP());
    EXPECT_THAT((std::vector{transfer.getLocalAddr(address), transfer.setRecvBufferSize(8192),
                             transfer.setSendBufferSize(8192), transfer.getRecvBufferSize(&nSize),
                             transfer.getSendBufferSize(&nSize), transfer.setNonBlocking(true),
                             transfer.setNoDelay()}),
                testing::Each(false));
}

// Two datagram transports of the loopback.
class UDPTransferTest : public testing::Test {
protected:
    void SetUp() override {
        m_to.setIP(Loopback);
        for (UDPTransfer* pTransfer : {&m_sender, &m_receiver}) {
            ASSERT_EQ(0, pTransfer->create());
            ASSERT_EQ(0, pTransfer->bind(m_to));
        }
        ASSERT_TRUE(m_receiver.getLocalAddr(m_to));
    }

    int sendThenReceive(const std::string& strBytes) {
        const int nSent = m_sender.sendCommand(bufferOf(strBytes), m_to, LongMs);
        return nSent == 0 ? m_receiver.recvCommand(m_buffer, LongMs, m_from) : nSent;
    }

    UDPTransfer m_sender{1};
    UDPTransfer m_receiver{1};
    InetAddr m_to;
    CommandBuffer m_buffer;
    InetAddr m_from;
};

TEST_F(UDPTransferTest, ADatagramIsACommandWithoutAnyParser) {
    EXPECT_FALSE(m_receiver.setCommandHeadParser(createCommandHeadParser(1)));
    ASSERT_EQ(ErrorCode::Success, sendThenReceive("any bytes"));
    EXPECT_EQ("any bytes", bytesOf(m_buffer));
    EXPECT_EQ(5600U, m_buffer.getCapacity());
    InetAddr sender;
    InetAddr peer;
    ASSERT_TRUE(m_sender.getLocalAddr(sender));
    EXPECT_EQ(ErrorCode::Success, m_receiver.getPeerAddr(peer));
    EXPECT_EQ(sender.getPORT(), m_from.getPORT());
    EXPECT_EQ(sender.getPORT(), peer.getPORT());
    EXPECT_EQ(Loopback, peer.getIP());

    ASSERT_EQ(ErrorCode::Success, sendThenReceive(std::string(6000, 'x')));
    EXPECT_EQ(5600U, m_buffer.getLength()) << "cut";
    EXPECT_EQ(ErrorCode::SendFailed, sendThenReceive(std::string(70000, 'x')));
    EXPECT_EQ(ErrorCode::ReceiveTimedOut, m_receiver.recvCommand(m_buffer, 0, m_from));
}

TEST_F(UDPTransferTest, AFailedReceiveLeavesATrace) {
    static std::string strTrace;
    strTrace.clear();
    const TraceSink before = setTraceSink([](const std::string& strText) { strTrace += strText; });
    m_receiver.close();
    ASSERT_EQ(ErrorCode::Success, m_sender.connect(m_to, LongMs));
    m_sender.sendCommand(bufferOf("to nobody"), m_to, LongMs);
    EXPECT_EQ(ErrorCode::ReceiveFailed, m_sender.recvCommand(m_buffer, LongMs, m_from));
    setTraceSink(before);
    EXPECT_EQ(0U, strTrace.find("recv socket error! in:UDPTransfer line:")) << strTrace;
}

TEST_F(UDPTransferTest, JoinsGroupsAndSucceedsWithoutEffectWhereDatagramsHaveNothing) {
    InetAddr group;
    group.setIP("234.5.6.7");
    EXPECT_TRUE(m_receiver.setBroadcast(true));
    int nBroadcast = 0;
    socklen_t nSize = sizeof nBroadcast;
    ::getsockopt(m_receiver.getSocket()->getHandle(), SOL_SOCKET, SO_BROADCAST, &nBroadcast,
                 &nSize);
    EXPECT_EQ(1, nBroadcast);
    EXPECT_TRUE(m_receiver.joinGroup(group));
    EXPECT_FALSE(m_receiver.openGroup(group)) << "bound already";

    UDPTransfer peer(1);
    EXPECT_EQ(ErrorCode::Success, m_sender.sendCommand(bufferOf("x"), m_to));
    EXPECT_EQ(ErrorCode::Success, m_receiver.recvCommand(m_buffer));
    EXPECT_EQ(ErrorCode::Success, m_receiver.listen(1));
    EXPECT_EQ(ErrorCode::Success, m_receiver.accept(peer, LongMs));
    EXPECT_EQ(nullptr, peer.getSocket());
    EXPECT_EQ(ErrorCode::ReceiveTimedOut, m_receiver.recvCommand(m_buffer, 0, m_from));
}

}  // namespace
