// A PTZ operation with its camera, and the code of its answer.
#include "protocol/PTZOperationBodyParser.h"

#include "Product/Technic/MemoryGuard.h"
#include "domain/EtPTZOperation.h"
#include "domain/EtResult.h"
#include "protocol/BinaryBody.h"

namespace {

constexpr std::uint64_t FixedLength = 20;
constexpr std::uint32_t OnlyPTZ = 1;  // what an answer without PTZId is about

}  // namespace

bool PTZOperationBodyParser::createCommandBody(const DomainList& domains,
                                               CommandBuffer& out) const {
    const auto* pOperation = findRecord<EtPTZOperation>(domains);
    if (!pOperation) {
        return false;
    }
    const auto* pResult = findRecord<EtResult>(domains);
    const int nCode = pResult ? pResult->getCode() : 0;
    const std::string& strOperation = pOperation->getPTZOperation();
    const std::string& strName = pOperation->getName();
    return out.allocate(FixedLength + strOperation.size() + strName.size()) &&
           appendU32(static_cast<std::uint32_t>(nCode), out) &&
           appendU32(static_cast<std::uint32_t>(pOperation->getCameraId()), out) &&
           appendU32(lengthOf(strOperation), out) && appendText(strOperation, out) &&
           appendU32(lengthOf(strName), out) && appendText(strName, out) &&
           appendU32(static_cast<std::uint32_t>(pOperation->getPTZId()), out);
}

bool PTZOperationBodyParser::parseCommandBody(const CommandBuffer& in, DomainList& domains) const {
    return guardMemory([&] {
        BodyReader reader(in);
        std::uint32_t nCode = 0;
        std::uint32_t nCameraId = 0;
        std::uint32_t nLength = 0;
        std::string strOperation;
        std::string strName;
        std::uint32_t nPTZId = OnlyPTZ;
        if (!reader.readU32(nCode) || !reader.readU32(nCameraId) || !reader.readU32(nLength) ||
            !reader.readText(nLength, strOperation) || !reader.readU32(nLength) ||
            !reader.readText(nLength, strName) || (!reader.atEnd() && !reader.readU32(nPTZId))) {
            return false;
        }
        auto pOperation = std::make_unique<EtPTZOperation>();
        pOperation->setCameraId(static_cast<int>(nCameraId));
        pOperation->setPTZOperation(std::move(strOperation));
        pOperation->setName(std::move(strName));
        pOperation->setPTZId(static_cast<int>(nPTZId));
        appendBodyRecord(std::move(pOperation), domains);
        appendBodyResult(nCode, domains);
        return true;
    });
}
