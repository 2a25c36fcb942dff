// The mapper interface, and the two steps from any record to its mapper.
#include "domainxml/IDomainXml.h"

#include "domain/DomainContainer.h"
#include "domainxml/DomainXmlFactory.h"

using namespace fleetkit;

bool IDomainXml::createDomainXmlNode(const BaseDomain&, const SafePointer<DomainXmlNode>&) {
    return false;
}

bool IDomainXml::parseDomainXmlNode(const SafePointer<DomainXmlNode>&, BaseDomain&) {
    return false;
}

bool createDomainXmlNode(const std::string& strTag, const SafePointer<BaseDomain>& record,
                         SafePointer<DomainXmlNode>& node) {
    if (record.isNull()) {
        return false;
    }
    const auto pMapper = createDomainXml(effectiveDomainId(*record));
    if (pMapper == nullptr) {
        return false;
    }
    node = wrapSafe(std::make_unique<DomainXmlNode>(strTag));
    return pMapper->createDomainXmlNode(*record, node);
}

bool parseDomainXmlNode(const SafePointer<DomainXmlNode>& node, std::string& strTag,
                        const SafePointer<BaseDomain>& record) {
    if (record.isNull()) {
        return false;
    }
    const auto pMapper = createDomainXml(effectiveDomainId(*record));
    if (pMapper == nullptr || !node->getName(strTag)) {
        return false;
    }
    return pMapper->parseDomainXmlNode(node, *record);
}
