// Whole commands over streams and datagrams, against a peer that sends what the test says.
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/LogFilter.h"
#include "gtest/gtest.h"
#include "protocol/SDKCommandHeadInfo.h"
#include "protocol/SDKCommandHeadParser.h"
#include "session/TCPTransfer.h"
#include "session/UDPTransfer.h"

namespace {

constexpr const char* Loopback = "127.0.0.1";
constexpr int LongMs = 5000;
constexpr int ShortMs = 20;
constexpr std::uint32_t HeadLength = 24;
constexpr std::uint32_t LargestPayload = 256U << 20;

std::string text(const CommandBuffer& buffer) {
    return {reinterpret_cast<const char*>(buffer.data()), buffer.getLength()};
}

CommandBuffer bufferOf(std::string_view bytes) {
    CommandBuffer buffer;
    EXPECT_TRUE(buffer.allocate(bytes.size()));
    EXPECT_TRUE(buffer.append(reinterpret_cast<const std::uint8_t*>(bytes.data()),
                              static_cast<std::uint32_t>(bytes.size())));
    return buffer;
}

std::string head(std::uint32_t nPayload) {
    SDKCommandHeadInfo info;
    info.setProtocolType(1);
    info.setSequence(7);
    info.setPayloadLength(nPayload);
    CommandBuffer buffer;
    EXPECT_TRUE(encodeCommandHead(info, buffer));
    return text(buffer);
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
        ASSERT_EQ(0, m_objListener.create());
        ASSERT_EQ(0, m_objListener.setReuseAddr(1));
        ASSERT_EQ(0, m_objListener.bind(address));
        ASSERT_EQ(0, m_objListener.listen(1));
        ASSERT_TRUE(m_objListener.getLocalAddr(address));
        ASSERT_EQ(0, m_objTransfer.create());
        ASSERT_EQ(0, m_objTransfer.connect(address, LongMs));
        ASSERT_EQ(0, m_objListener.accept(m_objPeer, LongMs));
        ASSERT_TRUE(m_objTransfer.setCommandHeadParser(createCommandHeadParser(1)));
    }

    void peerSends(const std::string& strBytes) {
        const auto nLength = static_cast<std::int32_t>(strBytes.size());
        ASSERT_EQ(nLength, m_objPeer.getSocket()->sendAll(strBytes.data(), nLength));
    }

    int recv(int nTimeoutMs = LongMs) {
        return m_objTransfer.recvCommand(m_objBuffer, nTimeoutMs, m_objFrom);
    }

    TCPTransfer m_objListener{1};
    TCPTransfer m_objTransfer{1};
    TCPTransfer m_objPeer{1};
    CommandBuffer m_objBuffer;
    InetAddr m_objFrom;
};

TEST_F(TCPTransferTest, CommandsArriveOneByOneWithTheirSender) {
    const std::string strLarge = command(std::string(200000, 'x'));
    peerSends(command("first") + command("") + strLarge);
    for (const std::string& strCommand : {command("first"), command(""), strLarge}) {
        ASSERT_EQ(ErrorCode::Success, recv());
        EXPECT_EQ(strCommand, text(m_objBuffer));
        EXPECT_EQ(strCommand.size(), m_objBuffer.getCapacity());
    }
    InetAddr address;
    ASSERT_TRUE(m_objPeer.getLocalAddr(address));
    EXPECT_EQ(address.getIP(), m_objFrom.getIP());
    EXPECT_EQ(address.getPORT(), m_objFrom.getPORT());
    EXPECT_EQ(ErrorCode::Success, m_objTransfer.getPeerAddr(address));
    EXPECT_EQ(m_objFrom.getPORT(), address.getPORT());
    EXPECT_EQ(1, m_objTransfer.getIPProtoVer());
}

TEST_F(TCPTransferTest, SentCommandsArriveWhole) {
    const CommandBuffer buffer = bufferOf(command("body"));
    EXPECT_EQ(ErrorCode::Success, m_objPeer.sendCommand(buffer, m_objFrom, LongMs));
    EXPECT_EQ(ErrorCode::Success, m_objPeer.sendCommand(buffer, m_objFrom));
    EXPECT_EQ(ErrorCode::Success, recv());
    EXPECT_EQ(ErrorCode::Success, m_objTransfer.recvCommand(m_objBuffer));
    EXPECT_EQ(command("body"), text(m_objBuffer));
}

TEST_F(TCPTransferTest, AShortOrFailedSendIsAFailure) {
    ASSERT_TRUE(m_objTransfer.setNonBlocking(true));
    const CommandBuffer buffer = bufferOf(std::string(32U << 20, 'x'));
    EXPECT_EQ(ErrorCode::SendFailed, m_objTransfer.sendCommand(buffer, m_objFrom, LongMs));
    EXPECT_EQ(ErrorCode::SendFailed, m_objTransfer.sendCommand(buffer, m_objFrom));
}

TEST_F(TCPTransferTest, ATimeOutInsideAHeadLosesNothing) {
    const std::string strCommand = command("payload");
    peerSends(strCommand.substr(0, 10));
    EXPECT_EQ(ErrorCode::ReceiveTimedOut, recv(ShortMs));
    EXPECT_EQ(ErrorCode::ReceiveTimedOut, recv(ShortMs));
    peerSends(strCommand.substr(10));
    EXPECT_EQ(ErrorCode::Success, recv());
    EXPECT_EQ(strCommand, text(m_objBuffer));
}

TEST_F(TCPTransferTest, ARefusedHeadIsRefusedForGood) {
    std::string strHead = head(0);
    strHead[22] = static_cast<char>(strHead[22] ^ 1);
    peerSends(strHead + command("good"));
    EXPECT_EQ(ErrorCode::HeadRefused, recv());
    EXPECT_EQ(ErrorCode::HeadRefused, recv());
    EXPECT_EQ(ErrorCode::HeadRefused, m_objTransfer.recvCommand(m_objBuffer));
}

TEST_F(TCPTransferTest, APeerThatClosesInsideAPayloadLeavesThePartThatCame) {
    const std::string strCommand = command("payload");
    peerSends(strCommand.substr(0, HeadLength + 3));
    m_objPeer.close();
    EXPECT_EQ(ErrorCode::ReceiveFailed, recv());
    EXPECT_EQ(strCommand.substr(0, HeadLength + 3), text(m_objBuffer));
    EXPECT_EQ(ErrorCode::ReceiveFailed, recv());
}

TEST_F(TCPTransferTest, ATimeOutInsideAPayloadGivesItUp) {
    const std::string strCommand = command("payload");
    peerSends(strCommand.substr(0, HeadLength + 3));
    EXPECT_EQ(ErrorCode::ReceiveTimedOut, recv(ShortMs));
    EXPECT_EQ(strCommand.substr(0, HeadLength + 3), text(m_objBuffer));
    peerSends(command("next"));
    EXPECT_EQ(ErrorCode::Success, recv());
    EXPECT_EQ(command("next"), text(m_objBuffer));
}

TEST_F(TCPTransferTest, MemoryGrowsWithWhatArrivesAndNotWithWhatIsAnnounced) {
    peerSends(head(LargestPayload) + "few");
    EXPECT_EQ(ErrorCode::ReceiveTimedOut, recv(ShortMs));
    EXPECT_EQ(head(LargestPayload) + "few", text(m_objBuffer));
    EXPECT_LT(m_objBuffer.getCapacity(), 1U << 20);
}

TEST_F(TCPTransferTest, AnAnnouncementBeyondTheLimitIsNoMemoryForGood) {
    for (const std::uint32_t nPayload : {LargestPayload + 1, 0x80000000U, 0xFFFFFFFFU}) {
        m_objListener.close();
        m_objTransfer.close();
        SetUp();
        peerSends(head(nPayload));
        EXPECT_EQ(ErrorCode::NoMemory, recv());
        EXPECT_EQ(ErrorCode::NoMemory, recv());
        EXPECT_EQ(ErrorCode::NoMemory, m_objTransfer.recvCommand(m_objBuffer));
        EXPECT_EQ(0U, m_objBuffer.getCapacity());
    }
}

TEST_F(TCPTransferTest, ANonBlockingReceiveBeginsABrokenPayloadAnew) {
    ASSERT_TRUE(m_objTransfer.setNonBlocking(true));
    EXPECT_EQ(ErrorCode::NothingToRead, m_objTransfer.recvCommand(m_objBuffer));
    peerSends(command("payload").substr(0, HeadLength + 3));
    ASSERT_EQ(0, m_objTransfer.getSocket()->waitRead(LongMs));
    EXPECT_EQ(ErrorCode::NothingToRead, m_objTransfer.recvCommand(m_objBuffer));
    EXPECT_EQ(HeadLength + 3, m_objBuffer.getLength());
    peerSends("another");
    ASSERT_EQ(0, m_objTransfer.getSocket()->waitRead(LongMs));
    EXPECT_EQ(ErrorCode::Success, m_objTransfer.recvCommand(m_objBuffer));
    EXPECT_EQ(std::string(HeadLength, '\0') + "another", text(m_objBuffer));
    m_objPeer.close();
    ASSERT_EQ(0, m_objTransfer.getSocket()->waitRead(LongMs));
    EXPECT_EQ(ErrorCode::ReceiveFailed, m_objTransfer.recvCommand(m_objBuffer));
}

TEST_F(TCPTransferTest, AcceptTellsSilenceFromFailure) {
    TCPTransfer peer(1);
    EXPECT_EQ(ErrorCode::AcceptTimedOut, m_objListener.accept(peer, 0));
    EXPECT_EQ(nullptr, peer.getSocket());
    TCPTransfer notListening(1);
    ASSERT_EQ(0, notListening.create());
    EXPECT_EQ(ErrorCode::AcceptFailed, notListening.accept(peer, LongMs));
    EXPECT_EQ(nullptr, peer.getSocket());
}

TEST_F(TCPTransferTest, AReusedTransportForgetsTheHeadOfItsOldConnection) {
    peerSends("not a head, but long enough to be one");
    EXPECT_EQ(ErrorCode::HeadRefused, recv());
    m_objListener.close();
    m_objTransfer.close();
    SetUp();
    peerSends(command("good"));
    EXPECT_EQ(ErrorCode::Success, recv());
}

TEST(TCPTransfer, WithoutAParserNothingIsReceived) {
    CommandBuffer buffer;
    InetAddr from;
    TCPTransfer transfer(1);
    EXPECT_FALSE(transfer.setCommandHeadParser(SafePointer<ICommandHeadParser>()));
    EXPECT_EQ(ErrorCode::ReceiveFailed, transfer.recvCommand(buffer, LongMs, from));
    EXPECT_EQ(ErrorCode::ReceiveFailed, transfer.recvCommand(buffer));
}

TEST(TCPTransfer, AStreamHasNoMulticast) {
    InetAddr group;
    TCPTransfer transfer(1);
    ASSERT_EQ(0, transfer.create());
    EXPECT_FALSE(transfer.setBroadcast(true));
    EXPECT_FALSE(transfer.joinGroup(group));
    EXPECT_FALSE(transfer.openGroup(group));
}

template <class Transfer>
class AnyTransfer : public testing::Test {};
using Transfers = testing::Types<TCPTransfer, UDPTransfer>;
TYPED_TEST_SUITE(AnyTransfer, Transfers);

TYPED_TEST(AnyTransfer, WhatNeedsASocketSaysThatThereIsNone) {
    const CommandBuffer buffer = bufferOf("x");
    CommandBuffer received;
    InetAddr address;
    address.setIP("1.2.3.4");
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
    EXPECT_EQ(ErrorCode::NoTransport, transfer.sendCommand(buffer, address, LongMs));
    EXPECT_EQ(ErrorCode::NoTransport, transfer.recvCommand(received, LongMs, address));
    EXPECT_EQ(ErrorCode::NoTransport, transfer.connect(address, LongMs));
    EXPECT_EQ(ErrorCode::NoTransport, transfer.connect(address));
    EXPECT_EQ(ErrorCode::NoTransport, transfer.bind(0));
    EXPECT_EQ(ErrorCode::NoTransport, transfer.bind(address));
    EXPECT_EQ(ErrorCode::NoTransport, transfer.setReuseAddr(1));
    EXPECT_FALSE(transfer.getLocalAddr(address));
    EXPECT_FALSE(transfer.setRecvBufferSize(8192) || transfer.setSendBufferSize(8192));
    EXPECT_FALSE(transfer.getRecvBufferSize(&nSize) || transfer.getSendBufferSize(&nSize));
    EXPECT_FALSE(transfer.setNonBlocking(true) || transfer.setNoDelay());
    transfer.getPeerAddr(address);
    EXPECT_EQ("", address.getIP());
}

TYPED_TEST(AnyTransfer, AnAddressOfNoInterfaceCannotBeBound) {
    InetAddr address;
    address.setIP("192.0.2.1");
    TypeParam transfer(1);
    ASSERT_EQ(0, transfer.create());
    EXPECT_EQ(ErrorCode::BindFailed, transfer.bind(address));
}

// Two datagram transports of the loopback.
class UDPTransferTest : public testing::Test {
protected:
    void SetUp() override {
        m_objTo.setIP(Loopback);
        for (UDPTransfer* pTransfer : {&m_objSender, &m_objReceiver}) {
            ASSERT_EQ(0, pTransfer->create());
            ASSERT_EQ(0, pTransfer->bind(m_objTo));
        }
        ASSERT_TRUE(m_objReceiver.getLocalAddr(m_objTo));
    }

    UDPTransfer m_objSender{1};
    UDPTransfer m_objReceiver{1};
    InetAddr m_objTo;
    CommandBuffer m_objBuffer;
    InetAddr m_objFrom;
};

TEST_F(UDPTransferTest, ADatagramIsACommandWithoutAnyParser) {
    EXPECT_FALSE(m_objReceiver.setCommandHeadParser(createCommandHeadParser(1)));
    ASSERT_EQ(ErrorCode::Success, m_objSender.sendCommand(bufferOf("any bytes"), m_objTo, LongMs));
    ASSERT_EQ(ErrorCode::Success, m_objReceiver.recvCommand(m_objBuffer, LongMs, m_objFrom));
    EXPECT_EQ("any bytes", text(m_objBuffer));
    EXPECT_EQ(5600U, m_objBuffer.getCapacity());
    InetAddr sender;
    InetAddr peer;
    ASSERT_TRUE(m_objSender.getLocalAddr(sender));
    EXPECT_EQ(ErrorCode::Success, m_objReceiver.getPeerAddr(peer));
    EXPECT_EQ(sender.getPORT(), m_objFrom.getPORT());
    EXPECT_EQ(sender.getPORT(), peer.getPORT());
    EXPECT_EQ(Loopback, peer.getIP());
    EXPECT_EQ(ErrorCode::ReceiveTimedOut, m_objReceiver.recvCommand(m_objBuffer, 0, m_objFrom));
}

TEST_F(UDPTransferTest, ALargeDatagramIsCutAndATooLargeOneNotSent) {
    const std::string strBytes(6000, 'x');
    ASSERT_EQ(ErrorCode::Success, m_objSender.sendCommand(bufferOf(strBytes), m_objTo, LongMs));
    ASSERT_EQ(ErrorCode::Success, m_objReceiver.recvCommand(m_objBuffer, LongMs, m_objFrom));
    EXPECT_EQ(5600U, m_objBuffer.getLength());
    EXPECT_EQ(ErrorCode::SendFailed,
              m_objSender.sendCommand(bufferOf(std::string(70000, 'x')), m_objTo, LongMs));
}

TEST_F(UDPTransferTest, AFailedReceiveLeavesATrace) {
    static std::string strTrace;
    strTrace.clear();
    const TraceSink before = setTraceSink([](const std::string& strText) { strTrace += strText; });
    m_objReceiver.close();
    ASSERT_EQ(ErrorCode::Success, m_objSender.connect(m_objTo, LongMs));
    m_objSender.sendCommand(bufferOf("to nobody"), m_objTo, LongMs);
    EXPECT_EQ(ErrorCode::ReceiveFailed, m_objSender.recvCommand(m_objBuffer, LongMs, m_objFrom));
    setTraceSink(before);
    EXPECT_EQ(0U, strTrace.find("recv socket error! in:UDPTransfer line:")) << strTrace;
}

TEST_F(UDPTransferTest, OptionsOfGroupsReachTheSocket) {
    InetAddr group;
    group.setIP("234.5.6.7");
    EXPECT_TRUE(m_objReceiver.setBroadcast(true));
    EXPECT_TRUE(m_objReceiver.joinGroup(group));
    EXPECT_FALSE(m_objReceiver.openGroup(group)) << "bound already";
}

TEST_F(UDPTransferTest, WhatDatagramsDoNotHaveSucceedsWithoutEffect) {
    EXPECT_EQ(ErrorCode::Success, m_objSender.sendCommand(bufferOf("x"), m_objTo));
    EXPECT_EQ(ErrorCode::Success, m_objReceiver.recvCommand(m_objBuffer));
    EXPECT_EQ(ErrorCode::Success, m_objReceiver.listen(1));
    UDPTransfer peer(1);
    EXPECT_EQ(ErrorCode::Success, m_objReceiver.accept(peer, LongMs));
    EXPECT_EQ(nullptr, peer.getSocket());
    EXPECT_EQ(ErrorCode::ReceiveTimedOut, m_objReceiver.recvCommand(m_objBuffer, 0, m_objFrom));
}

}  // namespace
