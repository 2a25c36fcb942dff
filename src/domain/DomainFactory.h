// DomainFactory: finds record types by name and by id.
//
// The name of a type is the tag of its element in a command body. All functions may be called from
// any thread. A miss is null or false and one line in the log, at level 3; without memory for the
// new object it is null alone.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "domain/BaseDomain.h"
#include "domain/DomainContainer.h"

// A new record of the type with this name, exactly and with case. Where two types share a name, the
// first one of the vocabulary is made.
std::unique_ptr<BaseDomain> createSingleDomain(const std::string& strName);

// A new, empty list for this list name.
std::unique_ptr<DomainContainer> createListDomain(const std::string& strName);

// What an element of a body with this tag holds: a list, if the tag has "List" in it and names one,
// otherwise a single record.
std::unique_ptr<BaseDomain> createDomain(const std::string& strName);

// Whether `createDomain` can make something for this tag, given memory.
bool hasDomain(const std::string& strName) noexcept;

// The name of a type by its id. False, with strName left alone, for an id without a name.
bool getDomainName(std::uint32_t nDomainId, std::string& strName);

// The tag of any record: its name or, for a list, the name of its elements with "List" behind it.
bool getDomainNameOfRecord(const BaseDomain& record, std::string& strName);
