// The registry of transports, and the way from login data to a connected one.
#include <memory>

#include "Product/Technic/ErrorCode.h"
#include "gtest/gtest.h"
#include "session/TransferConnector.h"
#include "session/TransferFactoryMap.h"

namespace {

constexpr int LongMs = 5000;

// Makes nothing; tells when it is deleted.
class EmptyFactory : public ITransferFactory {
public:
    explicit EmptyFactory(int& nDeleted) : m_nDeleted(nDeleted) {}
    ~EmptyFactory() override { ++m_nDeleted; }
    std::unique_ptr<ITransfer> create(int) override { return nullptr; }

private:
    int& m_nDeleted;
};

DeviceInfoEx deviceAt(const InetAddr& address) {
    DeviceInfoEx info;
    info.setDeviceAddr(address);
    return info;
}

TEST(TransferFactoryMap, RemoveDeletesAndAddReplaces) {
    constexpr int Kind = 901;
    TransferFactoryMap& map = TransferFactoryMap::instance();
    int nDeleted = 0;
    EmptyFactory replaced(nDeleted);
    auto* pFactory = new EmptyFactory(nDeleted);
    map.add(Kind, &replaced);
    map.add(Kind, pFactory);
    EXPECT_EQ(pFactory, map.find(Kind));
    EXPECT_EQ(0, nDeleted);
    map.remove(Kind);
    EXPECT_EQ(1, nDeleted);
    EXPECT_EQ(nullptr, map.find(Kind));
    map.remove(Kind);
    EXPECT_EQ(1, nDeleted);
}

TEST(TransferFactoryMap, ARegistrarKeepsItsKindForItsLife) {
    constexpr int Kind = 902;
    int nDeleted = 0;
    {
        const TransferFactoryRegistrar registrar(Kind, std::make_unique<EmptyFactory>(nDeleted));
        EXPECT_NE(nullptr, TransferFactoryMap::instance().find(Kind));
        SafePointer<ITransfer> transfer;
        EXPECT_EQ(ErrorCode::NoMemory,
                  TransferConnector().connect(DeviceInfoEx(), Kind, transfer, LongMs));
        EXPECT_TRUE(transfer.isNull());
    }
    EXPECT_EQ(nullptr, TransferFactoryMap::instance().find(Kind));
    EXPECT_EQ(1, nDeleted);
}

TEST(TransferFactoryMap, AConnectorRegistersBothKindsOnce) {
    TransferConnector();
    ITransferFactory* pTCP = TransferFactoryMap::instance().find(TransferKind::TCP);
    ITransferFactory* pUDP = TransferFactoryMap::instance().find(TransferKind::UDP);
    ASSERT_TRUE(pTCP != nullptr && pUDP != nullptr);
    TransferConnector();
    EXPECT_EQ(pTCP, TransferFactoryMap::instance().find(TransferKind::TCP));
    EXPECT_EQ(pUDP, TransferFactoryMap::instance().find(TransferKind::UDP));
}

TEST(TransferConnector, ConnectsToTheDevice) {
    Socket listener(1, Socket::Stream);
    InetAddr address;
    ASSERT_TRUE(listener.open() && listener.bind("127.0.0.1", 0) &&
                listener.getLocalAddress(address));
    SafePointer<ITransfer> transfer;
    TransferConnector connector;
    EXPECT_EQ(ErrorCode::ConnectFailed,
              connector.connect(deviceAt(address), TransferKind::TCP, transfer, LongMs));
    EXPECT_TRUE(transfer.isNull());

    ASSERT_TRUE(listener.listen(1));
    ASSERT_EQ(ErrorCode::Success,
              connector.connect(deviceAt(address), TransferKind::TCP, transfer, LongMs));
    InetAddr peer;
    transfer->getPeerAddr(peer);
    EXPECT_EQ(address.getPORT(), peer.getPORT());
    EXPECT_EQ(0, listener.waitRead(LongMs));
}

TEST(TransferConnector, AnUnknownKindOrNameIsRefused) {
    SafePointer<ITransfer> transfer;
    InetAddr address;
    address.setIP("not a name");
    address.setPORT(9);
    EXPECT_EQ(ErrorCode::NoTransferFactory,
              TransferConnector().connect(deviceAt(address), 3, transfer, LongMs));
    EXPECT_EQ(ErrorCode::ConnectFailed,
              TransferConnector().connect(deviceAt(address), TransferKind::TCP, transfer, LongMs));
    EXPECT_TRUE(transfer.isNull());
}

TEST(TransferConnector, TheRouterIsDialledWhenItsMappingIsOn) {
    InetAddr address;
    address.setIP("10.0.0.7");
    address.setPORT(30001);
    address.setIPProtoVer(2);
    DeviceInfoEx info = deviceAt(address);
    info.setRouterAddr("10.9.9.9");
    info.setRouterMappingControlPort(40001);

    const InetAddr direct = getDialAddr(info);
    EXPECT_EQ("10.0.0.7", direct.getIP());
    EXPECT_EQ(30001, direct.getPORT());
    EXPECT_EQ(2, direct.getIPProtoVer());

    info.setRouterMappingEnableFlag(true);
    const InetAddr mapped = getDialAddr(info);
    EXPECT_EQ("10.9.9.9", mapped.getIP());
    EXPECT_EQ(40001, mapped.getPORT());
    EXPECT_EQ(2, mapped.getIPProtoVer());

    info.setRouterAddr("not a name");
    EXPECT_EQ("", getDialAddr(info).getIP());
}

}  // namespace
