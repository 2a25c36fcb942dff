// Mappers that no descriptor can tell of, written by hand in odd/ and registered by the schema.
#pragma once

#include <cstdint>

#include "domain/BaseDomain.h"
#include "domainxml/XmlCursor.h"

struct OddMapper {
    bool (*create)(const BaseDomain& record, XmlCursor element);
    bool (*parse)(XmlCursor element, BaseDomain& record);
};

// The odd mapper of a record type, null for all that the engine maps by itself.
const OddMapper* findOddMapper(std::uint32_t nDomainId) noexcept;
