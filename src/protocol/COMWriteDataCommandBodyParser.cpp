// Data for a serial port, with the port behind it.
#include "protocol/COMWriteDataCommandBodyParser.h"

#include "Product/Technic/RoomGuard.h"
#include "domain/EtCOMWriteData.h"
#include "protocol/BinaryBody.h"

namespace {

constexpr std::uint64_t FixedLength = 12;

}  // namespace

bool COMWriteDataCommandBodyParser::createCommandBody(
    const std::vector<SafePointer<BaseDomain>>& domains, CommandBuffer& out) const {
    const auto* pobjWrite = findBodyRecord<EtCOMWriteData>(domains);
    if (!pobjWrite) {
        return false;
    }
    const DataBuffer& objData = pobjWrite->getComData();
    return out.allocate(FixedLength + lengthOf(objData)) && appendU32(lengthOf(objData), out) &&
           appendData(objData, out) && appendU32(pobjWrite->getComId(), out) &&
           appendU32(pobjWrite->getComType(), out);
}

bool COMWriteDataCommandBodyParser::parseCommandBody(
    const CommandBuffer& in, std::vector<SafePointer<BaseDomain>>& domains) const {
    return guardRoom([&] {
        BodyReader objReader(in);
        std::uint32_t nLength = 0;
        DataBuffer objData;
        std::uint32_t nComId = 0;
        std::uint32_t nComType = 0;
        if (!objReader.readU32(nLength) || !objReader.readData(nLength, objData) ||
            !objReader.readU32(nComId) || !objReader.readU32(nComType)) {
            return false;
        }
        auto pobjWrite = std::make_unique<EtCOMWriteData>();
        pobjWrite->setComData(objData);
        pobjWrite->setComId(nComId);
        pobjWrite->setComType(nComType);
        appendBodyRecord(std::move(pobjWrite), domains);
        return true;
    });
}
