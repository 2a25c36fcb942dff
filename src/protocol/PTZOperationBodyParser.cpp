// A PTZ operation with its camera, and the code of its answer.
#include "protocol/PTZOperationBodyParser.h"

#include "Product/Technic/RoomGuard.h"
#include "domain/EtPTZOperation.h"
#include "domain/EtResult.h"
#include "protocol/BinaryBody.h"

namespace {

constexpr std::uint64_t FixedLength = 20;
constexpr std::uint32_t OnlyPTZ = 1;  // what an answer without PTZId is about

}  // namespace

bool PTZOperationBodyParser::createCommandBody(const std::vector<SafePointer<BaseDomain>>& domains,
                                               CommandBuffer& out) const {
    const auto* pobjOperation = findBodyRecord<EtPTZOperation>(domains);
    if (!pobjOperation) {
        return false;
    }
    const auto* pobjResult = findBodyRecord<EtResult>(domains);
    const int nCode = pobjResult ? pobjResult->getCode() : 0;
    const std::string& strOperation = pobjOperation->getPTZOperation();
    const std::string& strName = pobjOperation->getName();
    return out.allocate(FixedLength + strOperation.size() + strName.size()) &&
           appendU32(static_cast<std::uint32_t>(nCode), out) &&
           appendU32(static_cast<std::uint32_t>(pobjOperation->getCameraId()), out) &&
           appendU32(lengthOf(strOperation), out) && appendText(strOperation, out) &&
           appendU32(lengthOf(strName), out) && appendText(strName, out) &&
           appendU32(static_cast<std::uint32_t>(pobjOperation->getPTZId()), out);
}

bool PTZOperationBodyParser::parseCommandBody(const CommandBuffer& in,
                                              std::vector<SafePointer<BaseDomain>>& domains) const {
    return guardRoom([&] {
        BodyReader objReader(in);
        std::uint32_t nCode = 0;
        std::uint32_t nCameraId = 0;
        std::uint32_t nLength = 0;
        std::string strOperation;
        std::string strName;
        std::uint32_t nPTZId = OnlyPTZ;
        if (!objReader.readU32(nCode) || !objReader.readU32(nCameraId) ||
            !objReader.readU32(nLength) || !objReader.readText(nLength, strOperation) ||
            !objReader.readU32(nLength) || !objReader.readText(nLength, strName) ||
            (!objReader.atEnd() && !objReader.readU32(nPTZId))) {
            return false;
        }
        auto pobjOperation = std::make_unique<EtPTZOperation>();
        pobjOperation->setCameraId(static_cast<int>(nCameraId));
        pobjOperation->setPTZOperation(std::move(strOperation));
        pobjOperation->setName(std::move(strName));
        pobjOperation->setPTZId(static_cast<int>(nPTZId));
        appendBodyRecord(std::move(pobjOperation), domains);
        appendBodyResult(nCode, domains);
        return true;
    });
}
