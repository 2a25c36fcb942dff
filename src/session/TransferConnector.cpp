#include "session/TransferConnector.h"

#include <memory>
#include <utility>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/IPTool.h"
#include "session/TransferFactoryMap.h"

InetAddr getDialAddr(const DeviceInfoEx& info) {
    const InetAddr& objDevice = info.getDeviceAddr();
    const bool bMapped = info.getRouterMappingEnableFlag();
    const std::string strHost = bMapped ? info.getRouterAddr() : objDevice.getIP();
    InetAddr objDial;
    IPTool().getInetAddr(strHost.c_str(), objDial);
    objDial.setPORT(bMapped ? info.getRouterMappingControlPort() : objDevice.getPORT());
    objDial.setIPProtoVer(objDevice.getIPProtoVer());
    return objDial;
}

TransferConnector::TransferConnector() {
    registerTCPTransfer();
    registerUDPTransfer();
}

int TransferConnector::connect(const DeviceInfoEx& info, int nKind, SafePointer<ITransfer>& out,
                               int nTimeoutMs) {
    ITransferFactory* pFactory = TransferFactoryMap::instance().find(nKind);
    if (pFactory == nullptr) {
        return ErrorCode::NoTransferFactory;
    }
    std::unique_ptr<ITransfer> pTransfer = pFactory->create(info.getDeviceAddr().getIPProtoVer());
    if (!pTransfer) {
        return ErrorCode::NoMemory;
    }
    int nResult = pTransfer->create();
    if (nResult == ErrorCode::Success) {
        nResult = pTransfer->connect(getDialAddr(info), nTimeoutMs);
    }
    if (nResult == ErrorCode::Success) {
        out = wrapSafe(std::move(pTransfer));
    }
    return nResult;
}
