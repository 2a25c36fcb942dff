// Adapters out of the list of interfaces: one for each, whatever labels its addresses have.
#include "Product/Technic/AdapterList.h"

#include <memory>
#include <utility>

#include "Product/Technic/platform/InterfaceList.h"

namespace {

AdapterLister& currentLister() {
    static auto* const pLister = std::make_unique<AdapterLister>().release();
    return *pLister;
}

}  // namespace

bool listAdapters(std::vector<NetworkAdapter>& vecAdapters) {
    vecAdapters.clear();
    const AdapterLister& lister = currentLister();
    return lister ? lister(vecAdapters) : listSystemAdapters(vecAdapters);
}

void getAdapterNames(std::vector<std::string>& vecNames) {
    vecNames.clear();
    std::vector<NetworkAdapter> vecAdapters;
    if (!listAdapters(vecAdapters)) {
        return;
    }
    for (const NetworkAdapter& adapter : vecAdapters) {
        vecNames.push_back(adapter.strName);
    }
}

void setAdapterLister(AdapterLister lister) {
    currentLister() = std::move(lister);
}
