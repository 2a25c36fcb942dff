// The rule of the container id.
#include "domain/DomainContainer.h"

bool checkDomainId(const BaseDomain& record, std::uint32_t nExpectedId, bool& isList) noexcept {
    isList = record.getDomainId() == ContainerDomainId;
    return fleetkit::effectiveDomainId(record) == nExpectedId;
}

std::uint32_t fleetkit::effectiveDomainId(const BaseDomain& record) noexcept {
    if (record.getDomainId() != ContainerDomainId) {
        return record.getDomainId();
    }
    return static_cast<const DomainContainer&>(record).getDomainElementId();
}
