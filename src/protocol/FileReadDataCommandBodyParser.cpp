// A piece of a file, with a flag and a code.
#include "protocol/FileReadDataCommandBodyParser.h"

#include "Product/Technic/RoomGuard.h"
#include "domain/EtFileDataPack.h"
#include "domain/EtResult.h"
#include "protocol/BinaryBody.h"

namespace {

constexpr std::uint64_t FixedLength = 9;

}  // namespace

bool FileReadDataCommandBodyParser::createCommandBody(
    const std::vector<SafePointer<BaseDomain>>& domains, CommandBuffer& out) const {
    const auto* pobjPack = findBodyRecord<EtFileDataPack>(domains);
    const auto* pobjResult = findBodyRecord<EtResult>(domains);
    if (!pobjPack || !pobjResult) {
        return false;
    }
    const DataBuffer& objData = pobjPack->getDataBuffer();
    const std::uint8_t nPackFlag = pobjPack->getPackFlag();
    return out.allocate(FixedLength + lengthOf(objData)) && appendU32(lengthOf(objData), out) &&
           out.append(&nPackFlag, sizeof nPackFlag) &&
           appendU32(static_cast<std::uint32_t>(pobjResult->getCode()), out) &&
           appendData(objData, out);
}

bool FileReadDataCommandBodyParser::parseCommandBody(
    const CommandBuffer& in, std::vector<SafePointer<BaseDomain>>& domains) const {
    return guardRoom([&] {
        BodyReader objReader(in);
        std::uint32_t nLength = 0;
        std::uint8_t nPackFlag = 0;
        std::uint32_t nCode = 0;
        DataBuffer objData;
        // Callers test for the code as its four bytes stand, although it is written in network
        // order: a zero is a zero either way.
        if (!objReader.readU32(nLength) || !objReader.readU8(nPackFlag) ||
            !objReader.readRawU32(nCode) ||
            (nLength != 0 && !objReader.readData(nLength, objData))) {
            return false;
        }
        auto pobjPack = std::make_unique<EtFileDataPack>();
        pobjPack->setDataBuffer(objData);
        pobjPack->setPackFlag(nPackFlag);
        appendBodyRecord(std::move(pobjPack), domains);
        appendBodyResult(nCode, domains);
        return true;
    });
}
