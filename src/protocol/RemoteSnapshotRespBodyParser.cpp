// An image, with the code of the answer.
#include "protocol/RemoteSnapshotRespBodyParser.h"

#include "Product/Technic/RoomGuard.h"
#include "domain/EtResult.h"
#include "protocol/BinaryBody.h"

namespace {

constexpr std::uint64_t FixedLength = 8;

}  // namespace

bool RemoteSnapshotRespBodyParser::createCommandBody(
    const std::vector<SafePointer<BaseDomain>>& domains, CommandBuffer& out) const {
    const auto* pobjData = findBodyRecord<DataBuffer>(domains);
    const auto* pobjResult = findBodyRecord<EtResult>(domains);
    if (!pobjData || !pobjResult) {
        return false;
    }
    return out.allocate(FixedLength + lengthOf(*pobjData)) && appendU32(lengthOf(*pobjData), out) &&
           appendU32(static_cast<std::uint32_t>(pobjResult->getCode()), out) &&
           appendData(*pobjData, out);
}

bool RemoteSnapshotRespBodyParser::parseCommandBody(
    const CommandBuffer& in, std::vector<SafePointer<BaseDomain>>& domains) const {
    return guardRoom([&] {
        BodyReader objReader(in);
        std::uint32_t nLength = 0;
        std::uint32_t nCode = 0;
        auto pobjData = std::make_unique<DataBuffer>();
        if (!objReader.readU32(nLength) || !objReader.readU32(nCode) ||
            !objReader.readData(nLength, *pobjData)) {
            return false;
        }
        appendBodyRecord(std::move(pobjData), domains);
        appendBodyResult(nCode, domains);
        return true;
    });
}
