// DomainContainer: the abstract idea of a list of records, which is itself a record.
#pragma once

#include "domain/BaseDomain.h"

// The domain id of every list; no single record bears it.
inline constexpr std::uint32_t ContainerDomainId = 99999;

class FLEETKIT_EXPORT DomainContainer : public BaseDomain {
public:
    // Copying leaves both ids of the target alone, as with every record.
    DomainContainer(const DomainContainer& other) noexcept
        : BaseDomain(ContainerDomainId), m_nDomainElementId(other.m_nDomainElementId) {}
    DomainContainer& operator=(const DomainContainer&) noexcept { return *this; }

    // The domain id of the elements' type.
    const std::uint32_t& getDomainElementId() const noexcept { return m_nDomainElementId; }

protected:
    explicit DomainContainer(std::uint32_t nDomainElementId) noexcept
        : BaseDomain(ContainerDomainId), m_nDomainElementId(nDomainElementId) {}

    std::uint32_t m_nDomainElementId = 0;
};

// The whole of the rule that tells a list from a record: whether `record` is of the expected type,
// or, with isList set, a list of it.
FLEETKIT_EXPORT bool checkDomainId(const BaseDomain& record, std::uint32_t nExpectedId,
                                   bool& isList) noexcept;

namespace fleetkit {

// The id that names a record's type: that of the elements for a list, its own otherwise.
FLEETKIT_EXPORT std::uint32_t effectiveDomainId(const BaseDomain& record) noexcept;

}  // namespace fleetkit
