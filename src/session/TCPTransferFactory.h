// Makes transports over TCP.
#pragma once

#include "session/ITransferFactory.h"

class TCPTransferFactory : public ITransferFactory {
public:
    std::unique_ptr<ITransfer> create(int nIPProtoVer) override;
};
