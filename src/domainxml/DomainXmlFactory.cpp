// Finds mappers by domain id.
#include "domainxml/DomainXmlFactory.h"

#include <new>

#include "Product/Technic/LogFilter.h"
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
