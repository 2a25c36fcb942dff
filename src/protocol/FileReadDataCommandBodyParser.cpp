// A piece of a file, with a flag and a code.
#include "protocol/FileReadDataCommandBodyParser.h"

#include "Product/Technic/MemoryGuard.h"
#include "domain/EtFileDataPack.h"
#include "domain/EtResult.h"
#include "protocol/BinaryBody.h"

namespace {

constexpr std::uint64_t FixedLength = 9;

}  // namespace

bool FileReadDataCommandBodyParser::createCommandBody(const DomainList& domains,
                                                      CommandBuffer& out) const {
    const auto* pPack = findRecord<EtFileDataPack>(domains);
    const auto* pResult = findRecord<EtResult>(domains);
    if (!pPack || !pResult) {
        return false;
    }
    const DataBuffer& data = pPack->getDataBuffer();
    const std::uint8_t nPackFlag = pPack->getPackFlag();
    return out.allocate(FixedLength + lengthOf(data)) && appendU32(lengthOf(data), out) &&
           out.append(&nPackFlag, sizeof nPackFlag) &&
           appendU32(static_cast<std::uint32_t>(pResult->getCode()), out) && appendData(data, out);
}

bool FileReadDataCommandBodyParser::parseCommandBody(const CommandBuffer& in,
                                                     DomainList& domains) const {
    return guardMemory([&] {
        BodyReader reader(in);
        std::uint32_t nLength = 0;
        std::uint8_t nPackFlag = 0;
        std::uint32_t nCode = 0;
        DataBuffer data;
        // Callers test for the code as its four bytes stand, although it is written in network
        // order: a zero is a zero either way.
        if (!reader.readU32(nLength) || !reader.readU8(nPackFlag) || !reader.readRawU32(nCode) ||
            (nLength != 0 && !reader.readData(nLength, data))) {
            return false;
        }
        auto pPack = std::make_unique<EtFileDataPack>();
        pPack->setDataBuffer(data);
        pPack->setPackFlag(nPackFlag);
        appendBodyRecord(std::move(pPack), domains);
        appendBodyResult(nCode, domains);
        return true;
    });
}
