// The process-wide registry of transports, by kind.
#pragma once

#include <map>
#include <memory>

#include "Product/Technic/KXMutex.h"
#include "Product/Technic/ThreadAnnotations.h"
#include "session/ITransferFactory.h"

// One in the process, made at first use and never destroyed. Callable from any thread. What `find`
// gives lives as long as its key stays in the map.
class TransferFactoryMap {
public:
    static TransferFactoryMap& instance();

    // Takes the factory over; one that already stands under that kind is replaced, not deleted.
    void add(int nKind, ITransferFactory* pFactory);
    void remove(int nKind);  // deletes the factory
    ITransferFactory* find(int nKind);

private:
    TransferFactoryMap() = default;

    KXMutex m_mutex;
    std::map<int, ITransferFactory*> m_mapFactories KX_GUARDED_BY(m_mutex);
};

// Keeps a factory in the map for as long as it lives.
class TransferFactoryRegistrar {
public:
    TransferFactoryRegistrar(int nKind, std::unique_ptr<ITransferFactory> pFactory);
    ~TransferFactoryRegistrar();
    TransferFactoryRegistrar(const TransferFactoryRegistrar&) = delete;
    TransferFactoryRegistrar& operator=(const TransferFactoryRegistrar&) = delete;

private:
    int m_nKind;
};
