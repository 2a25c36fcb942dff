// Finds mappers by domain id, and takes the two steps from any record to its mapper.
#include "domainxml/DomainXmlFactory.h"

#include <new>

#include "Product/Technic/LogFilter.h"
#include "domain/DomainContainer.h"
#include "domain/RecordDescriptor.h"
#include "domainxml/RecordXml.h"

using namespace fleetkit;

std::unique_ptr<IDomainXml> createDomainXml(std::uint32_t nDomainId) {
    const RecordDescriptor* pDescriptor = findRecordDescriptor(nDomainId);
    if (pDescriptor == nullptr || pDescriptor->szName == nullptr) {
        logMessage(LogLevel::Trace, "DomainXmlFactory",
                   "DomainXmlFactory not have DomainXml(%d)!! \n", static_cast<int>(nDomainId));
        return nullptr;
    }
    return std::unique_ptr<IDomainXml>(new (std::nothrow) RecordXml(*pDescriptor));
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
