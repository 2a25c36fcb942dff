// BaseDomain: the root of every record that passes between this library and a device.
//
// A record is a plain value: copied deeply, without locks, used by one thread at a time. Its type
// is told by the domain id, never by run-time type information.
#pragma once

#include <cstdint>

#include "Product/Technic/Export.h"

namespace fleetkit {
struct RecordDescriptor;
}  // namespace fleetkit

class FLEETKIT_EXPORT BaseDomain {
public:
    // Each record type has its own; a type without an id keeps this one.
    static constexpr std::uint32_t DomainId = 0;

    BaseDomain() noexcept = default;
    // The id belongs to the class whose constructor ran, so copying and assigning leave it alone.
    BaseDomain(const BaseDomain&) noexcept {}
    BaseDomain& operator=(const BaseDomain&) noexcept { return *this; }
    virtual ~BaseDomain() = default;

    // The record's type number; 0 for a plain BaseDomain, 99999 for a list of records.
    const std::uint32_t& getDomainId() const noexcept { return m_nDomainId; }

    static const fleetkit::RecordDescriptor& descriptor() noexcept;

protected:
    explicit BaseDomain(std::uint32_t nDomainId) noexcept : m_nDomainId(nDomainId) {}

    std::uint32_t m_nDomainId = 0;
};
