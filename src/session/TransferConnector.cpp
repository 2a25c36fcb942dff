// From the login data of a device to a connected transport.
#include "session/TransferConnector.h"

#include <memory>
#include <utility>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/IPTool.h"
#include "session/TCPTransferFactory.h"
#include "session/TransferFactoryMap.h"
#include "session/UDPTransferFactory.h"

using namespace fleetkit;

InetAddr getDialAddr(const DeviceInfoEx& info) {
    const InetAddr& device = info.getDeviceAddr();
    const bool bMapped = info.getRouterMappingEnableFlag();
    const std::string strHost = bMapped ? info.getRouterAddr() : device.getIP();
    InetAddr dial;
    IPTool().getInetAddr(strHost.c_str(), dial);
    dial.setPORT(bMapped ? info.getRouterMappingControlPort() : device.getPORT());
    dial.setIPProtoVer(device.getIPProtoVer());
    return dial;
}

TransferConnector::TransferConnector() {
    registerTCPTransfer();
    registerUDPTransfer();
}

int TransferConnector::connect(const DeviceInfoEx& info, int nKind, SafePointer<ITransfer>& out,
                               int nTimeoutMs) {
    return connect(getDialAddr(info), nKind, out, nTimeoutMs);
}

int TransferConnector::connect(const InetAddr& dial, int nKind, SafePointer<ITransfer>& out,
                               int nTimeoutMs) {
    ITransferFactory* pFactory = TransferFactoryMap::instance().find(nKind);
    if (pFactory == nullptr) {
        return ErrorCode::NoTransferFactory;
    }
    std::unique_ptr<ITransfer> pTransfer = pFactory->create(dial.getIPProtoVer());
    if (!pTransfer) {
        return ErrorCode::NoMemory;
    }
    int nResult = pTransfer->create();
    if (nResult == ErrorCode::Success) {
        nResult = pTransfer->connect(dial, nTimeoutMs);
    }
    if (nResult == ErrorCode::Success) {
        out = wrapSafe(std::move(pTransfer));
    }
    return nResult;
}
