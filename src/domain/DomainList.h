// The records of a command, in order, and finding one among them.
#pragma once

#include <cstdint>
#include <vector>

#include "Product/Technic/SafePointer.h"
#include "domain/DomainVectorContainer.h"

// The records are shared with whoever holds their pointers. An empty pointer among them raises the
// error of an empty pointer wherever they are looked through.
using DomainList = std::vector<SafePointer<BaseDomain>>;

// Finds the first record with this domain id; for a list (99999), with this element id as well.
// False, with `out` as it was, when there is none.
bool findDomain(std::uint32_t nDomainId, std::uint32_t nElementId, const DomainList& domains,
                SafePointer<BaseDomain>& out);

// The first record of this type, or null; it lives as long as `domains` holds it.
template <class Record>
const Record* findRecord(const DomainList& domains) {
    SafePointer<BaseDomain> found;
    return findDomain(Record::DomainId, 0, domains, found) ? static_cast<const Record*>(found.get())
                                                           : nullptr;
}

// The elements of the first list of this type, or null, likewise.
template <class Element>
const std::vector<Element>* findList(const DomainList& domains) {
    SafePointer<BaseDomain> found;
    return findDomain(ContainerDomainId, Element::DomainId, domains, found)
               ? &static_cast<const DomainVectorContainer<Element>&>(*found).getElements()
               : nullptr;
}
