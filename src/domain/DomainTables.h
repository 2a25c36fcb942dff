// The generated tables of the vocabulary, for the look-ups beside it.
#pragma once

#include <cstdint>
#include <span>

#include "domain/RecordDescriptor.h"

namespace DomainTables {

using DescriptorOf = const fleetkit::RecordDescriptor& (*)() noexcept;

struct IdRow {
    std::uint32_t nDomainId;
    DescriptorOf descriptor;
};

struct NameRow {
    const char* szName;
    DescriptorOf descriptor;
};

// Every record and, behind them, every inline element.
std::span<const DescriptorOf> descriptors() noexcept;
// Every record with an id, by id.
std::span<const IdRow> idRows() noexcept;
// The names by which a body's elements are found, sorted by bytes. Of a doubled name only the row
// that comes first in the vocabulary stands here.
std::span<const NameRow> singleNames() noexcept;
std::span<const NameRow> listNames() noexcept;

const fleetkit::RecordDescriptor* findById(std::uint32_t nDomainId) noexcept;
const fleetkit::RecordDescriptor* findByName(std::span<const NameRow> names,
                                             const char* szName) noexcept;

}  // namespace DomainTables
