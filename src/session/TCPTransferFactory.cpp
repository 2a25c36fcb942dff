// TCP transports, and their place in the registry.
#include "session/TCPTransferFactory.h"

#include <memory>
#include <new>

#include "session/TCPTransfer.h"
#include "session/TransferFactoryMap.h"

std::unique_ptr<ITransfer> TCPTransferFactory::create(int nIPProtoVer) {
    return std::unique_ptr<ITransfer>(new (std::nothrow) TCPTransfer(nIPProtoVer));
}

void registerTCPTransfer() {
    static const auto* const pRegistrar =
        std::make_unique<TransferFactoryRegistrar>(TransferKind::TCP,
                                                   std::make_unique<TCPTransferFactory>())
            .release();
    static_cast<void>(pRegistrar);
}
