// The one search through the records of a command.
#include "domain/DomainList.h"

namespace {

bool isRecord(const BaseDomain& record, std::uint32_t nDomainId, std::uint32_t nElementId) {
    if (record.getDomainId() != nDomainId) {
        return false;
    }
    return nDomainId != ContainerDomainId || fleetkit::effectiveDomainId(record) == nElementId;
}

}  // namespace

bool findDomain(std::uint32_t nDomainId, std::uint32_t nElementId, const DomainList& domains,
                SafePointer<BaseDomain>& out) {
    for (const auto& record : domains) {
        if (isRecord(*record, nDomainId, nElementId)) {
            out = record;
            return true;
        }
    }
    return false;
}
