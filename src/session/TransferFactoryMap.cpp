// The registry, and the hold that a registrar has on its entry.
#include "session/TransferFactoryMap.h"

TransferFactoryMap& TransferFactoryMap::instance() {
    static auto* const pMap = std::unique_ptr<TransferFactoryMap>(new TransferFactoryMap).release();
    return *pMap;
}

void TransferFactoryMap::add(int nKind, ITransferFactory* pFactory) {
    const KXMutexGuard guard(m_mutex);
    m_mapFactories[nKind] = pFactory;
}

void TransferFactoryMap::remove(int nKind) {
    const KXMutexGuard guard(m_mutex);
    const auto it = m_mapFactories.find(nKind);
    if (it == m_mapFactories.end()) {
        return;
    }
    const std::unique_ptr<ITransferFactory> pFactory(it->second);
    m_mapFactories.erase(it);
}

ITransferFactory* TransferFactoryMap::find(int nKind) {
    const KXMutexGuard guard(m_mutex);
    const auto it = m_mapFactories.find(nKind);
    return it == m_mapFactories.end() ? nullptr : it->second;
}

TransferFactoryRegistrar::TransferFactoryRegistrar(int nKind,
                                                   std::unique_ptr<ITransferFactory> pFactory)
    : m_nKind(nKind) {
    TransferFactoryMap::instance().add(nKind, pFactory.get());
    static_cast<void>(pFactory.release());
}

TransferFactoryRegistrar::~TransferFactoryRegistrar() {
    TransferFactoryMap::instance().remove(m_nKind);
}
