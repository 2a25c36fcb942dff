// Makes transports over UDP.
#pragma once

#include "session/ITransferFactory.h"

class UDPTransferFactory : public ITransferFactory {
public:
    std::unique_ptr<ITransfer> create(int nIPProtoVer) override;
};

// Keeps this kind registered until the process ends; further calls do nothing.
void registerUDPTransfer();
