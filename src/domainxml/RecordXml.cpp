// The mapper of any record type, by its descriptor.
#include "domainxml/RecordXml.h"

#include "domainxml/XmlMapping.h"

bool RecordXml::accepts(const BaseDomain& record) const noexcept {
    // A type that occurs only inside others and has no id maps nothing through the interface.
    const bool bHasId = m_descriptor.nDomainId != 0 || m_descriptor.szName != nullptr;
    bool bIsList = false;
    return bHasId && checkDomainId(record, m_descriptor.nDomainId, bIsList);
}

bool RecordXml::createDomainXmlNode(const BaseDomain& record,
                                    const SafePointer<DomainXmlNode>& node) {
    return accepts(record) && !node.isNull() && node->cursor() &&
           XmlMapping::writeDomain(m_descriptor, record, node->cursor());
}

bool RecordXml::parseDomainXmlNode(const SafePointer<DomainXmlNode>& node, BaseDomain& record) {
    return accepts(record) && !node.isNull() && node->cursor() &&
           XmlMapping::readDomain(m_descriptor, node->cursor(), record);
}
