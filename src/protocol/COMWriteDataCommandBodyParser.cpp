// Data for a serial port, with the port behind it.
#include "protocol/COMWriteDataCommandBodyParser.h"

#include "Product/Technic/MemoryGuard.h"
#include "domain/EtCOMWriteData.h"
#include "protocol/BinaryBody.h"

namespace {

constexpr std::uint64_t FixedLength = 12;

}  // namespace

bool COMWriteDataCommandBodyParser::createCommandBody(const DomainList& domains,
                                                      CommandBuffer& out) const {
    const auto* pWrite = findRecord<EtCOMWriteData>(domains);
    if (!pWrite) {
        return false;
    }
    const DataBuffer& data = pWrite->getComData();
    return out.allocate(FixedLength + lengthOf(data)) && appendU32(lengthOf(data), out) &&
           appendData(data, out) && appendU32(pWrite->getComId(), out) &&
           appendU32(pWrite->getComType(), out);
}

bool COMWriteDataCommandBodyParser::parseCommandBody(const CommandBuffer& in,
                                                     DomainList& domains) const {
    return guardMemory([&] {
        BodyReader reader(in);
        std::uint32_t nLength = 0;
        DataBuffer data;
        std::uint32_t nComId = 0;
        std::uint32_t nComType = 0;
        if (!reader.readU32(nLength) || !reader.readData(nLength, data) ||
            !reader.readU32(nComId) || !reader.readU32(nComType)) {
            return false;
        }
        auto pWrite = std::make_unique<EtCOMWriteData>();
        pWrite->setComData(data);
        pWrite->setComId(nComId);
        pWrite->setComType(nComType);
        appendBodyRecord(std::move(pWrite), domains);
        return true;
    });
}
