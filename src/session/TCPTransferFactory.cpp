#include "session/TCPTransferFactory.h"

#include <new>

#include "session/TCPTransfer.h"

std::unique_ptr<ITransfer> TCPTransferFactory::create(int nIPProtoVer) {
    return std::unique_ptr<ITransfer>(new (std::nothrow) TCPTransfer(nIPProtoVer));
}
