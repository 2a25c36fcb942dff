// Parameters of a device as one block.
#include "protocol/ParamImportReqBodyParser.h"

#include "Product/Technic/MemoryGuard.h"
#include "protocol/BinaryBody.h"

namespace {

constexpr std::uint64_t FixedLength = 4;

}  // namespace

bool ParamImportReqBodyParser::createCommandBody(const DomainList& domains,
                                                 CommandBuffer& out) const {
    const auto* pData = findRecord<DataBuffer>(domains);
    return pData && out.allocate(FixedLength + lengthOf(*pData)) &&
           appendU32(lengthOf(*pData), out) && appendData(*pData, out);
}

bool ParamImportReqBodyParser::parseCommandBody(const CommandBuffer& in,
                                                DomainList& domains) const {
    return guardMemory([&] {
        BodyReader reader(in);
        std::uint32_t nLength = 0;
        auto pData = std::make_unique<DataBuffer>();
        if (!reader.readU32(nLength) || !reader.readData(nLength, *pData)) {
            return false;
        }
        appendBodyRecord(std::move(pData), domains);
        return true;
    });
}
