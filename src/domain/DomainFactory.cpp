// Finds record types by name and by id.
#include "domain/DomainFactory.h"

#include "Product/Technic/LogFilter.h"
#include "domain/DomainTables.h"

using namespace fleetkit;

namespace {

constexpr int TraceLevel = 3;

const RecordDescriptor* findLogged(std::span<const DomainTables::NameRow> names,
                                   const std::string& strName) {
    const RecordDescriptor* pDescriptor = DomainTables::findByName(names, strName.c_str());
    if (pDescriptor == nullptr) {
        logMessage(TraceLevel, "DomainFactory", "DomainFactory not have Domain(%s)!! \n",
                   strName.c_str());
    }
    return pDescriptor;
}

}  // namespace

std::unique_ptr<BaseDomain> createSingleDomain(const std::string& strName) {
    const RecordDescriptor* pDescriptor = findLogged(DomainTables::singleNames(), strName);
    return pDescriptor == nullptr ? nullptr : pDescriptor->access.make();
}

std::unique_ptr<DomainContainer> createListDomain(const std::string& strName) {
    const RecordDescriptor* pDescriptor = findLogged(DomainTables::listNames(), strName);
    return pDescriptor == nullptr ? nullptr : pDescriptor->access.makeContainer();
}

std::unique_ptr<BaseDomain> createDomain(const std::string& strName) {
    if (strName.find("List") != std::string::npos) {
        if (auto pList = createListDomain(strName)) {
            return pList;
        }
    }
    return createSingleDomain(strName);
}

bool getDomainName(std::uint32_t nDomainId, std::string& strName) {
    const RecordDescriptor* pDescriptor = DomainTables::findById(nDomainId);
    if (pDescriptor == nullptr || pDescriptor->szName == nullptr) {
        logMessage(TraceLevel, "DomainFactory",
                   "[%s %s %d] DomainFactory not have Domain(%d) !! Failed\n", "DomainFactory",
                   "getDomainName", __LINE__, static_cast<int>(nDomainId));
        return false;
    }
    strName = pDescriptor->szName;
    return true;
}

bool getDomainNameOfRecord(const BaseDomain& record, std::string& strName) {
    if (!getDomainName(effectiveDomainId(record), strName)) {
        return false;
    }
    if (record.getDomainId() == ContainerDomainId) {
        strName += "List";
    }
    return true;
}
