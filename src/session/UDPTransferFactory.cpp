#include "session/UDPTransferFactory.h"

#include <new>

#include "session/UDPTransfer.h"

std::unique_ptr<ITransfer> UDPTransferFactory::create(int nIPProtoVer) {
    return std::unique_ptr<ITransfer>(new (std::nothrow) UDPTransfer(nIPProtoVer));
}
