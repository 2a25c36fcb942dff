// Finds record types by name and by id.
#include "domain/DomainFactory.h"

#include <new>

#include "Product/Technic/LogFilter.h"
#include "domain/DomainTables.h"

using namespace fleetkit;

namespace {

const RecordDescriptor* findLogged(std::span<const DomainTables::NameRow> names,
                                   const std::string& strName) {
    const RecordDescriptor* pDescriptor = DomainTables::findByName(names, strName.c_str());
    if (pDescriptor == nullptr) {
        logMessage(LogLevel::Trace, "DomainFactory", "DomainFactory not have Domain(%s)!! \n",
                   strName.c_str());
    }
    return pDescriptor;
}

// A new object of the type, null for no type and where there is no memory.
template <class Made>
std::unique_ptr<Made> made(const RecordDescriptor* pType,
                           std::unique_ptr<Made> (TypeAccess::*pMake)() const) noexcept {
    try {
        return pType == nullptr ? nullptr : (pType->access.*pMake)();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

}  // namespace

std::unique_ptr<BaseDomain> createSingleDomain(const std::string& strName) {
    return made(findLogged(DomainTables::singleNames(), strName), &TypeAccess::make);
}

std::unique_ptr<DomainContainer> createListDomain(const std::string& strName) {
    return made(findLogged(DomainTables::listNames(), strName), &TypeAccess::makeContainer);
}

std::unique_ptr<BaseDomain> createDomain(const std::string& strName) {
    if (strName.find("List") != std::string::npos) {
        if (auto pList = createListDomain(strName)) {
            return pList;
        }
    }
    return createSingleDomain(strName);
}

bool hasDomain(const std::string& strName) noexcept {
    const char* szName = strName.c_str();
    return DomainTables::findByName(DomainTables::singleNames(), szName) != nullptr ||
           (strName.find("List") != std::string::npos &&
            DomainTables::findByName(DomainTables::listNames(), szName) != nullptr);
}

bool getDomainName(std::uint32_t nDomainId, std::string& strName) {
    const RecordDescriptor* pDescriptor = DomainTables::findById(nDomainId);
    if (pDescriptor == nullptr || pDescriptor->szName == nullptr) {
        logMessage(LogLevel::Trace, "DomainFactory",
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
