// Records as the children of one XML element.
#include "protocol/SDKNormalXmlBodyParser.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "Product/Technic/LogFilter.h"
#include "Product/Technic/MemoryGuard.h"
#include "Product/Technic/SafePointerRegistry.h"
#include "domain/DomainContainer.h"
#include "domain/DomainFactory.h"
#include "domain/EtResult.h"
#include "domain/RecordDescriptor.h"
#include "domainxml/DecodingBudget.h"
#include "domainxml/XmlCursor.h"
#include "domainxml/XmlMapping.h"
#include "protocol/SecretMask.h"

using namespace fleetkit;

namespace {

constexpr const char* SourceName = "SDKNormalXmlBodyParser";

constexpr int MostRecords = 1024;

constexpr char Declaration[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n";
constexpr std::uint32_t DeclarationLength = sizeof Declaration - 1;

bool appendText(const char* pText, std::size_t nLength, CommandBuffer& out) {
    return out.append(reinterpret_cast<const std::uint8_t*>(pText),
                      static_cast<std::uint32_t>(nLength));
}

// The slots that the records of a body will take.
class PointerReservation {
public:
    explicit PointerReservation(std::size_t nRecords)
        : m_nRecords(SafePointerRegistry::instance().reserve(nRecords) ? nRecords : None) {}
    ~PointerReservation() {
        if (*this) {
            SafePointerRegistry::instance().unreserve(m_nRecords);
        }
    }
    PointerReservation(const PointerReservation&) = delete;
    PointerReservation& operator=(const PointerReservation&) = delete;

    explicit operator bool() const noexcept { return m_nRecords != None; }

private:
    static constexpr std::size_t None = SIZE_MAX;

    const std::size_t m_nRecords;
};

// The payload as a text, null if no zero byte ends it.
const char* textOf(const CommandBuffer& in) {
    const std::uint64_t nWithZero =
        std::min<std::uint64_t>(std::uint64_t{in.getLength()} + 1, in.getCapacity());
    const bool bEnds = nWithZero > 0 && std::memchr(in.data(), 0, nWithZero) != nullptr;
    return bEnds ? reinterpret_cast<const char*>(in.data()) : nullptr;
}

// How a type at the top of a body is mapped; null for a type that occurs only inside others.
const RecordDescriptor* findTopDescriptor(const BaseDomain& record) {
    const RecordDescriptor* pDescriptor = findRecordDescriptor(effectiveDomainId(record));
    return pDescriptor && pDescriptor->szName ? pDescriptor : nullptr;
}

bool writeRecord(const BaseDomain& record, const std::string& strTag, XmlCursor root) {
    const RecordDescriptor* pDescriptor = findTopDescriptor(record);
    return pDescriptor &&
           XmlMapping::writeDomain(*pDescriptor, record, root.appendChild(strTag.c_str()));
}

bool readRecord(XmlCursor element, BaseDomain& record) {
    const RecordDescriptor* pDescriptor = findTopDescriptor(record);
    return pDescriptor && XmlMapping::readDomain(*pDescriptor, element, record);
}

}  // namespace

SDKNormalXmlBodyParser::SDKNormalXmlBodyParser() : m_vecTagMap{{EtResult::DomainId, 0, "Result"}} {}

bool SDKNormalXmlBodyParser::createCommandBody(const DomainList& domains,
                                               CommandBuffer& out) const {
    const XmlDocument document("Parameters");
    document.root().setAttribute("Version", "1");
    std::string strTag;
    for (const auto& record : domains) {
        if (findTag(*record, strTag) && !writeRecord(*record, strTag, document.root())) {
            return false;
        }
    }
    const std::string strText = document.root().text();
    if (LogFilter::instance().passesLevel(LogLevel::Trace)) {
        logMessage(LogLevel::Trace, SourceName, "%s \n", withoutSecrets(strText).c_str());
    }
    return out.allocate(std::uint64_t{DeclarationLength} + strText.size() + 1) &&
           appendText(Declaration, DeclarationLength, out) &&
           appendText(strText.data(), strText.size(), out);
}

bool SDKNormalXmlBodyParser::parseCommandBody(const CommandBuffer& in, DomainList& domains) const {
    return guardMemory([&] {
        const char* szText = textOf(in);
        return szText && parseDocument(szText, domains);
    });
}

bool SDKNormalXmlBodyParser::createSpecialDomain(const std::string&,
                                                 SafePointer<BaseDomain>&) const {
    return false;
}

bool SDKNormalXmlBodyParser::findTag(const BaseDomain& record, std::string& strTag) const {
    const bool bIsList = record.getDomainId() == ContainerDomainId;
    const std::uint32_t nElementId = bIsList ? effectiveDomainId(record) : 0;
    for (const TagMapEntry& entry : m_vecTagMap) {
        if (entry.nDomainId == record.getDomainId() && entry.nDomainElementId == nElementId) {
            strTag = entry.strTag;
            return true;
        }
    }
    return getDomainNameOfRecord(record, strTag);
}

bool SDKNormalXmlBodyParser::makeRecord(const std::string& strTag,
                                        SafePointer<BaseDomain>& out) const {
    if (createSpecialDomain(strTag, out)) {
        return true;
    }
    auto pRecord = createDomain(strTag);
    if (!pRecord) {
        return false;
    }
    out = wrapSafe(std::move(pRecord));
    return true;
}

bool SDKNormalXmlBodyParser::parseDocument(const char* szText, DomainList& domains) const {
    const XmlDocument document = XmlDocument::parse(szText, MostRecords);
    if (!document.root()) {
        return false;
    }
    const PointerReservation pointers(document.root().children().size());
    if (!pointers) {
        return false;
    }
    const DecodingBudget budget(std::strlen(szText));
    for (XmlCursor child = document.root().firstChild(); child; child = child.next()) {
        SafePointer<BaseDomain> record;
        const std::string strTag = child.name();
        if (!makeRecord(strTag, record)) {
            if (hasDomain(strTag)) {
                return false;  // without memory: the device did not leave it out
            }
            continue;
        }
        if (!readRecord(child, *record)) {
            return false;
        }
        domains.push_back(record);
    }
    return true;
}
