// What makes transports of one kind.
#pragma once

#include <memory>

#include "session/ITransfer.h"

// Stateless: callable from any thread.
class ITransferFactory {
public:
    virtual ~ITransferFactory() = default;

    // A new transport without a socket, or null without memory. `nIPProtoVer` is 1 or 2.
    virtual std::unique_ptr<ITransfer> create(int nIPProtoVer) = 0;
};
