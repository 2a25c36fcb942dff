// Makes transports over TCP.
#pragma once

#include "session/ITransferFactory.h"

class TCPTransferFactory : public ITransferFactory {
public:
    std::unique_ptr<ITransfer> create(int nIPProtoVer) override;
};

// Keeps this kind registered until the process ends; further calls do nothing.
void registerTCPTransfer();
