// Parameters of a device as one block.
#include "protocol/ParamImportReqBodyParser.h"

#include "Product/Technic/RoomGuard.h"
#include "protocol/BinaryBody.h"

namespace {

constexpr std::uint64_t FixedLength = 4;

}  // namespace

bool ParamImportReqBodyParser::createCommandBody(
    const std::vector<SafePointer<BaseDomain>>& domains, CommandBuffer& out) const {
    const auto* pobjData = findBodyRecord<DataBuffer>(domains);
    return pobjData && out.allocate(FixedLength + lengthOf(*pobjData)) &&
           appendU32(lengthOf(*pobjData), out) && appendData(*pobjData, out);
}

bool ParamImportReqBodyParser::parseCommandBody(
    const CommandBuffer& in, std::vector<SafePointer<BaseDomain>>& domains) const {
    return guardRoom([&] {
        BodyReader objReader(in);
        std::uint32_t nLength = 0;
        auto pobjData = std::make_unique<DataBuffer>();
        if (!objReader.readU32(nLength) || !objReader.readData(nLength, *pobjData)) {
            return false;
        }
        appendBodyRecord(std::move(pobjData), domains);
        return true;
    });
}
