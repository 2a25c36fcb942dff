// Finds the secret fields of records in the text of a body.
#include "protocol/SecretMask.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <vector>

#include "domain/RecordDescriptor.h"

using namespace fleetkit;

namespace {

constexpr const char* Mask = "***";

bool isSecret(const FieldDescriptor& field) {
    return field.has(Secret);
}

const std::vector<const RecordDescriptor*>& recordsWithSecrets() {
    static const auto* const pRecords = [] {
        auto pFound = std::make_unique<std::vector<const RecordDescriptor*>>();
        std::ranges::copy_if(recordDescriptors(), std::back_inserter(*pFound),
                             [](const RecordDescriptor* pRecord) {
                                 return pRecord->szName && std::ranges::any_of(*pRecord, isSecret);
                             });
        return pFound.release();
    }();
    return *pRecords;
}

// Behind "name=" and a quote, up to the next one or to the end.
void maskValue(const std::string& strName, std::size_t nElement, std::string& strBody) {
    const std::size_t nEnd = std::min(strBody.find('>', nElement), strBody.size());
    const std::size_t nName = strBody.find(' ' + strName + '=', nElement);
    if (nName >= nEnd) {
        return;
    }
    const std::size_t nValue = nName + strName.size() + 3;
    if (nValue <= strBody.size()) {
        strBody.replace(nValue, strBody.find(strBody[nValue - 1], nValue) - nValue, Mask);
    }
}

}  // namespace

std::string withoutSecrets(std::string strBody) {
    for (const RecordDescriptor* pRecord : recordsWithSecrets()) {
        const std::string strTag = '<' + std::string(pRecord->szName) + ' ';
        for (std::size_t nElement = strBody.find(strTag); nElement != std::string::npos;
             nElement = strBody.find(strTag, nElement + 1)) {
            for (const FieldDescriptor& field : *pRecord) {
                if (isSecret(field)) {
                    maskValue(field.szTag, nElement, strBody);
                }
            }
        }
    }
    return strBody;
}
