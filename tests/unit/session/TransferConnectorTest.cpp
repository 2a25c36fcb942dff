// The registry of transports, and the way from login data to a connected one.
#include <gtest/gtest.h>

#include "Product/Technic/ErrorCode.h"
#include "session/TransferConnector.h"
#include "session/TransferFactoryMap.h"
#include "support/Addresses.h"

using namespace fleetkit;

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

TEST(TransferFactoryMap, ARegistrarReplacesAFactoryAndKeepsItsOwnForItsLife) {
    constexpr int Kind = 901;
    TransferFactoryMap& map = TransferFactoryMap::instance();
    int nDeleted = 0;
    EmptyFactory replaced(nDeleted);
    map.add(Kind, &replaced);
    {
        const TransferFactoryRegistrar registrar(Kind, std::make_unique<EmptyFactory>(nDeleted));
        EXPECT_NE(&replaced, map.find(Kind));
        SafePointer<ITransfer> transfer;
        EXPECT_EQ(ErrorCode::NoMemory,
                  TransferConnector().connect(DeviceInfoEx(), Kind, transfer, LongMs));
        EXPECT_EQ(0, nDeleted);
    }
    EXPECT_EQ(1, nDeleted);
    EXPECT_EQ(nullptr, map.find(Kind));
    map.remove(Kind);
}

TEST(TransferFactoryMap, AConnectorRegistersBothKindsOnce) {
    for (const int nKind : {TransferKind::TCP, TransferKind::UDP}) {
        TransferConnector();
        ITransferFactory* pFactory = TransferFactoryMap::instance().find(nKind);
        TransferConnector();
        EXPECT_NE(nullptr, pFactory);
        EXPECT_EQ(pFactory, TransferFactoryMap::instance().find(nKind));
    }
}

TEST(TransferConnector, ConnectsToADeviceThatListens) {
    Socket listener(1, Socket::Stream);
    InetAddr address;
    ASSERT_TRUE(listener.open() && listener.bind("127.0.0.1", 0) &&
                listener.getLocalAddress(address));
    SafePointer<ITransfer> transfer;
    TransferConnector connector;
    const auto connect = [&](const InetAddr& to, int nKind) {
        return connector.connect(deviceAt(to), nKind, transfer, LongMs);
    };
    EXPECT_EQ(ErrorCode::ConnectFailed, connect(address, TransferKind::TCP));
    EXPECT_EQ(ErrorCode::ConnectFailed, connect(addressOf("not a name", 9), TransferKind::TCP));
    EXPECT_EQ(ErrorCode::NoTransferFactory, connect(address, 3));
    EXPECT_TRUE(transfer.isNull());

    ASSERT_TRUE(listener.listen(1));
    ASSERT_EQ(ErrorCode::Success, connect(address, TransferKind::TCP));
    InetAddr peer;
    transfer->getPeerAddr(peer);
    EXPECT_EQ(address.getPORT(), peer.getPORT());
    EXPECT_EQ(0, listener.waitRead(LongMs));
}

TEST(TransferConnector, TheRouterIsDialledWhenItsMappingIsOn) {
    const auto dialled = [](bool bMapping, const char* szRouter) {
        DeviceInfoEx info = deviceAt(addressOf("10.0.0.7", 30001, 2));
        info.setRouterMappingEnableFlag(bMapping);
        info.setRouterAddr(szRouter);
        info.setRouterMappingControlPort(40001);
        return getDialAddr(info);
    };
    EXPECT_EQ(dialled(false, "10.9.9.9"), addressOf("10.0.0.7", 30001, 2));
    EXPECT_EQ(dialled(true, "10.9.9.9"), addressOf("10.9.9.9", 40001, 2));
    EXPECT_EQ(dialled(true, "not a name"), addressOf("", 40001, 2));
}

}  // namespace
