// Whole commands over streams and datagrams, against a peer that sends what the test says, and the
// way from login data to a connected transport.
#include <gmock/gmock.h>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/LogFilter.h"
#include "protocol/CommandParserFactory.h"
#include "session/TCPTransfer.h"
#include "session/TransferConnector.h"
#include "session/TransferFactoryMap.h"
#include "session/UDPTransfer.h"
#include "support/ScriptedPeer.h"
#include "support/WireCommands.h"

using namespace fleetkit;

namespace {

using testing::Each;

constexpr int LongMs = 5000;
constexpr int ShortMs = 20;
constexpr std::uint32_t HeadLength = SDKCommandHeadInfo::WireLength;
constexpr std::uint32_t LargestPayload = 256U << 20;

std::string command(const std::string& strPayload) {
    return peerMessage(SDKCommandHeadInfo(), strPayload);
}

// A transport that listens and accepts, one that is connected to it, and the accepted one.
class TCPTransferTest : public testing::Test {
protected:
    void SetUp() override {
        InetAddr address = addressOf(Loopback);
        ASSERT_THAT((std::vector{m_listener.create(), m_listener.setReuseAddr(1),
                                 m_listener.bind(address), m_listener.listen(1)}),
                    Each(ErrorCode::Success));
        ASSERT_TRUE(m_listener.getLocalAddr(address));
        ASSERT_THAT((std::vector{m_transfer.create(), m_transfer.connect(address, LongMs),
                                 m_listener.accept(m_peer, LongMs)}),
                    Each(ErrorCode::Success));
        ASSERT_TRUE(m_transfer.setCommandHeadParser(createCommandHeadParser(1)));
    }

    void peerSends(const std::string& strBytes) {
        ASSERT_EQ(ErrorCode::Success, m_peer.sendCommand(bufferOf(strBytes), m_from));
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
    const std::string strLargest = announcing(LargestPayload) + "few";
    const std::string strBadHead = '\0' + announcing(0).substr(1);
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
         {{announcing(LargestPayload + 1), NoMemory, ""}, {"", NoMemory, ""}}},
        {"no signed number", {{announcing(0x80000000U), NoMemory, ""}}},
        {"the largest number", {{announcing(0xFFFFFFFFU), NoMemory, ""}}},
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

TEST_F(TCPTransferTest, SentCommandsArriveWholeWithTheirSenderOrNotAtAll) {
    const CommandBuffer buffer = bufferOf(command("body"));
    const CommandBuffer tooMuch = bufferOf(std::string(32U << 20, 'x'));
    InetAddr local;
    InetAddr peer;
    ASSERT_TRUE(m_peer.setNonBlocking(true) && m_peer.getLocalAddr(local));
    EXPECT_THAT(
        (std::vector{m_peer.sendCommand(buffer, m_from, LongMs), m_peer.sendCommand(buffer, m_from),
                     m_transfer.recvCommand(m_buffer, LongMs, m_from),
                     m_transfer.recvCommand(m_buffer), m_transfer.getPeerAddr(peer)}),
        Each(ErrorCode::Success));
    EXPECT_EQ(command("body"), bytesOf(m_buffer));
    EXPECT_EQ(m_buffer.getLength(), m_buffer.getCapacity());
    EXPECT_EQ(local, m_from);
    EXPECT_EQ(local, peer);
    EXPECT_EQ(ErrorCode::SendFailed, m_peer.sendCommand(tooMuch, m_from, LongMs)) << "short";
    EXPECT_EQ(ErrorCode::SendFailed, m_peer.sendCommand(tooMuch, m_from));
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

TEST_F(TCPTransferTest, WhatItCannotDoHasItsCode) {
    TCPTransfer made(1);
    TCPTransfer idle(1);
    ASSERT_EQ(ErrorCode::Success, idle.create());
    EXPECT_EQ(ErrorCode::AcceptTimedOut, m_listener.accept(made, 0));
    EXPECT_EQ(ErrorCode::AcceptFailed, idle.accept(made, LongMs));
    EXPECT_EQ(nullptr, made.getSocket());
    EXPECT_FALSE(idle.setCommandHeadParser(SafePointer<ICommandHeadParser>()));
    EXPECT_EQ(ErrorCode::ReceiveFailed, idle.recvCommand(m_buffer, LongMs, m_from));
    EXPECT_EQ(ErrorCode::ReceiveFailed, idle.recvCommand(m_buffer)) << "without a parser";
    EXPECT_FALSE(idle.setBroadcast(true) || idle.joinGroup(m_from) || idle.openGroup(m_from));
    EXPECT_EQ(ErrorCode::BindFailed, idle.bind(addressOf("192.0.2.1"))) << "of no interface";
}

TEST(Transfer, DoesNothingOnceItsSocketIsClosed) {
    for (const int nKind : {TransferKind::TCP, TransferKind::UDP}) {
        SCOPED_TRACE(nKind);
        const TransferConnector connector;  // which makes its kinds known
        CommandBuffer buffer = bufferOf("x");
        InetAddr address = addressOf("1.2.3.4");
        std::int32_t nSize = 0;
        const auto pTransfer = TransferFactoryMap::instance().find(nKind)->create(2);
        ITransfer& transfer = *pTransfer;
        ASSERT_EQ(ErrorCode::Success, transfer.create());
        EXPECT_EQ(2, transfer.getIPProtoVer());
        EXPECT_TRUE(transfer.setRecvBufferSize(8192) && transfer.setSendBufferSize(8192));
        EXPECT_THAT((std::vector{transfer.close(), transfer.close()}), Each(ErrorCode::Success));

        transfer.setCommandHeadParser(createCommandHeadParser(1));
        EXPECT_EQ(nullptr, transfer.getSocket());
        EXPECT_EQ(1, transfer.getIPProtoVer());
        EXPECT_THAT((std::vector{transfer.sendCommand(buffer, address, LongMs),
                                 transfer.recvCommand(buffer, LongMs, address),
                                 transfer.connect(address, LongMs), transfer.connect(address),
                                 transfer.bind(0), transfer.bind(address), transfer.setReuseAddr(1),
                                 transfer.getPeerAddr(address)}),
                    Each(ErrorCode::NoTransport));
        EXPECT_EQ("", address.getIP());
        EXPECT_THAT(
            (std::vector{transfer.getLocalAddr(address), transfer.setRecvBufferSize(8192),
                         transfer.setSendBufferSize(8192), transfer.getRecvBufferSize(&nSize),
                         transfer.getSendBufferSize(&nSize), transfer.setNonBlocking(true),
                         transfer.setNoDelay()}),
            Each(false));
    }
}

struct EmptyFactory : ITransferFactory {
    std::unique_ptr<ITransfer> create(int) override { return nullptr; }
};

TEST(TransferConnector, NeedsAnAddressAndAFactoryWhichARegistrarProvides) {
    constexpr int Kind = 901;
    SafePointer<ITransfer> transfer;
    const auto connect = [&](int nKind) {
        const auto info = with(&DeviceInfoEx::setDeviceAddr, addressOf("not a name", 9));
        return TransferConnector().connect(info, nKind, transfer, LongMs);
    };
    EmptyFactory replaced;  // which is not deleted
    TransferFactoryMap::instance().add(Kind, &replaced);
    {
        const TransferFactoryRegistrar registrar(Kind, std::make_unique<EmptyFactory>());
        EXPECT_NE(&replaced, TransferFactoryMap::instance().find(Kind));
        EXPECT_EQ(ErrorCode::NoMemory, connect(Kind));
    }
    EXPECT_EQ(ErrorCode::NoTransferFactory, connect(Kind));
    EXPECT_EQ(ErrorCode::ConnectFailed, connect(TransferKind::TCP));
    EXPECT_TRUE(transfer.isNull());
}

TEST(TransferConnector, TheRouterIsDialledWhenItsMappingIsOn) {
    const auto dialled = [](bool bMapping, const char* szRouter) {
        return getDialAddr(with(&DeviceInfoEx::setRouterMappingControlPort, 40001,
                                &DeviceInfoEx::setDeviceAddr, addressOf("10.0.0.7", 30001, 2),
                                &DeviceInfoEx::setRouterMappingEnableFlag, bMapping,
                                &DeviceInfoEx::setRouterAddr, szRouter));
    };
    EXPECT_EQ(dialled(false, "10.9.9.9"), addressOf("10.0.0.7", 30001, 2));
    EXPECT_EQ(dialled(true, "10.9.9.9"), addressOf("10.9.9.9", 40001, 2));
    EXPECT_EQ(dialled(true, "not a name"), addressOf("", 40001, 2));
}

// Two datagram transports of the loopback.
class UDPTransferTest : public testing::Test {
protected:
    void SetUp() override {
        for (UDPTransfer* pTransfer : {&m_sender, &m_receiver}) {
            ASSERT_EQ(ErrorCode::Success, pTransfer->create());
            ASSERT_EQ(ErrorCode::Success, pTransfer->bind(addressOf(Loopback)));
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
    EXPECT_EQ(sender, m_from);
    EXPECT_EQ(sender, peer);

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
    const InetAddr group = addressOf("234.5.6.7");
    const InetAddr broadcast = addressOf("127.255.255.255", m_to.getPORT());
    EXPECT_EQ(ErrorCode::SendFailed, m_sender.sendCommand(bufferOf("x"), broadcast, LongMs));
    EXPECT_TRUE(m_sender.setBroadcast(true));
    EXPECT_EQ(ErrorCode::Success, m_sender.sendCommand(bufferOf("x"), broadcast, LongMs));
    EXPECT_TRUE(m_receiver.joinGroup(group));
    for (const char* pRefused : {"234.5.6.7", "127.0.0.1", "", "somewhere"}) {
        EXPECT_FALSE(m_receiver.joinGroup(addressOf(pRefused))) << "joined, or none: " << pRefused;
    }
    EXPECT_FALSE(m_receiver.openGroup(group)) << "bound already";

    UDPTransfer peer(1);
    EXPECT_THAT(
        (std::vector{m_sender.sendCommand(bufferOf("x"), m_to), m_receiver.recvCommand(m_buffer),
                     m_receiver.listen(1), m_receiver.accept(peer, LongMs)}),
        Each(ErrorCode::Success));
    EXPECT_EQ(nullptr, peer.getSocket());
    EXPECT_EQ(ErrorCode::ReceiveTimedOut, m_receiver.recvCommand(m_buffer, 0, m_from));
}

}  // namespace
