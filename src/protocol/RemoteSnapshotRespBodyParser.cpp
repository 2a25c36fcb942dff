// An image, with the code of the answer.
#include "protocol/RemoteSnapshotRespBodyParser.h"

#include "Product/Technic/MemoryGuard.h"
#include "domain/EtResult.h"
#include "protocol/BinaryBody.h"

namespace {

constexpr std::uint64_t FixedLength = 8;

}  // namespace

bool RemoteSnapshotRespBodyParser::createCommandBody(const DomainList& domains,
                                                     CommandBuffer& out) const {
    const auto* pData = findRecord<DataBuffer>(domains);
    const auto* pResult = findRecord<EtResult>(domains);
    if (!pData || !pResult) {
        return false;
    }
    return out.allocate(FixedLength + lengthOf(*pData)) && appendU32(lengthOf(*pData), out) &&
           appendU32(static_cast<std::uint32_t>(pResult->getCode()), out) &&
           appendData(*pData, out);
}

bool RemoteSnapshotRespBodyParser::parseCommandBody(const CommandBuffer& in,
                                                    DomainList& domains) const {
    return guardMemory([&] {
        BodyReader reader(in);
        std::uint32_t nLength = 0;
        std::uint32_t nCode = 0;
        auto pData = std::make_unique<DataBuffer>();
        if (!reader.readU32(nLength) || !reader.readU32(nCode) ||
            !reader.readData(nLength, *pData)) {
            return false;
        }
        appendBodyRecord(std::move(pData), domains);
        appendBodyResult(nCode, domains);
        return true;
    });
}
