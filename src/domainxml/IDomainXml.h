// IDomainXml: the interface of every mapper, which turns one record type into XML and back.
//
// Mappers are stateless; any thread may use them. A result of false tells that the record is of
// another type, that the node is empty, or that a required field is absent.
#pragma once

#include "Product/Technic/SafePointer.h"
#include "domain/BaseDomain.h"
#include "domainxml/DomainXmlNode.h"

class IDomainXml {
public:
    virtual ~IDomainXml() = default;
    // Fills the node from the record, which is a single one or a list.
    virtual bool createDomainXmlNode(const BaseDomain&, const SafePointer<DomainXmlNode>&) {
        return false;
    }
    // Fills the record, a single one or a list, from the node.
    virtual bool parseDomainXmlNode(const SafePointer<DomainXmlNode>&, BaseDomain&) {
        return false;
    }
};
