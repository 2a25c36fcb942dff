// RecordXml: the mapper of any record type, by its descriptor.
#pragma once

#include "domain/RecordDescriptor.h"
#include "domainxml/IDomainXml.h"

class RecordXml : public IDomainXml {
public:
    explicit RecordXml(const fleetkit::RecordDescriptor& descriptor) noexcept
        : m_descriptor(descriptor) {}

    bool createDomainXmlNode(const BaseDomain& record,
                             const SafePointer<DomainXmlNode>& node) override;
    bool parseDomainXmlNode(const SafePointer<DomainXmlNode>& node, BaseDomain& record) override;

private:
    bool accepts(const BaseDomain& record) const noexcept;

    const fleetkit::RecordDescriptor& m_descriptor;
};
