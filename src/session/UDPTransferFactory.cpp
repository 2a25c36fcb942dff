// UDP transports, and their place in the registry.
#include "session/UDPTransferFactory.h"

#include <memory>
#include <new>

#include "session/TransferFactoryMap.h"
#include "session/UDPTransfer.h"

std::unique_ptr<ITransfer> UDPTransferFactory::create(int nIPProtoVer) {
    return std::unique_ptr<ITransfer>(new (std::nothrow) UDPTransfer(nIPProtoVer));
}

void registerUDPTransfer() {
    static const auto* const pRegistrar =
        std::make_unique<TransferFactoryRegistrar>(TransferKind::UDP,
                                                   std::make_unique<UDPTransferFactory>())
            .release();
    static_cast<void>(pRegistrar);
}
