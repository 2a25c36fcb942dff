// Binary searches over the generated tables.
#include <algorithm>
#include <cstring>

#include "domain/DomainTables.h"

using namespace fleetkit;

namespace DomainTables {

const RecordDescriptor* findById(std::uint32_t nDomainId) noexcept {
    const auto rows = idRows();
    const auto found = std::lower_bound(
        rows.begin(), rows.end(), nDomainId,
        [](const IdRow& row, std::uint32_t nWanted) { return row.nDomainId < nWanted; });
    return found != rows.end() && found->nDomainId == nDomainId ? &found->descriptor() : nullptr;
}

const RecordDescriptor* findByName(std::span<const NameRow> names, const char* szName) noexcept {
    const auto found = std::lower_bound(names.begin(), names.end(), szName,
                                        [](const NameRow& row, const char* szWanted) {
                                            return std::strcmp(row.szName, szWanted) < 0;
                                        });
    return found != names.end() && std::strcmp(found->szName, szName) == 0 ? &found->descriptor()
                                                                           : nullptr;
}

}  // namespace DomainTables
