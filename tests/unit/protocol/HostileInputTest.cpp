// Commands of every form, damaged in thousands of ways: each is refused or read, and nothing else
// happens. The damage is the same in every run.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "Product/Technic/SafePointerRegistry.h"
#include "domain/DataBuffer.h"
#include "domain/EtCOMWriteData.h"
#include "domain/EtFileDataPack.h"
#include "domain/EtPTZOperation.h"
#include "domain/EtResult.h"
#include "domain/RecordDescriptor.h"
#include "protocol/BinCommandParam.h"
#include "protocol/BinCommandParser.h"
#include "protocol/SDKCommandParam.h"
#include "protocol/SDKCommandParser.h"
#include "support/CapturedOutput.h"
#include "support/RecordFiller.h"
#include "support/WireBytes.h"

namespace {

constexpr std::uint32_t HeadLength = SDKCommandHeadInfo::WireLength;
constexpr std::uint32_t AnyXmlCommand = 10000;

class Mutator {
public:
    std::string mutate(std::string strBytes) {
        for (std::size_t nLeft = 1 + below(4); nLeft > 0; --nLeft) {
            mutateOnce(strBytes);
        }
        return strBytes;
    }

    std::size_t below(std::size_t nLimit) { return m_objRandom() % nLimit; }

private:
    void mutateOnce(std::string& strBytes) {
        const std::size_t nAt = below(strBytes.size() + 1);
        const std::size_t nCount = below(12);
        switch (below(6)) {
            case 0:
                strBytes.resize(nAt);
                break;
            case 1:
                strBytes.erase(nAt, nCount);
                break;
            case 2:
                strBytes.insert(nAt, strBytes.substr(nAt, nCount * 8));
                break;
            case 3:
                strBytes.insert(nAt, 1, telling());
                break;
            case 4:
                strBytes.replace(nAt, 1, 1, telling());
                break;
            default:
                strBytes.replace(nAt, 1, 1, static_cast<char>(below(256)));
                break;
        }
    }

    // Bytes at which lengths, texts and markup turn.
    char telling() {
        static const std::string Bytes("\0\x01\x7F\x80\xFF<>\"'&=/![]-?; \n\xC3", 21);
        return Bytes[below(Bytes.size())];
    }

    std::mt19937 m_objRandom{4711};
};

// The head's checksum and terminator set right, so that what it announces is believed.
std::string withSoundHead(std::string strBytes) {
    if (strBytes.size() >= HeadLength) {
        strBytes[0] = strBytes[1] = '\xAF';
        strBytes[22] = 0;
        for (std::size_t n = 0; n < 22; ++n) {
            strBytes[22] = static_cast<char>(strBytes[22] ^ strBytes[n]);
        }
        strBytes[23] = '#';
    }
    return strBytes;
}

// A head that announces exactly this body.
std::string withBody(const std::string& strCommand, const std::string& strBody) {
    SDKCommandHeadInfo head;
    CommandBuffer buffer = bufferOf(strCommand);
    EXPECT_TRUE(decodeCommandHead(buffer.data(), HeadLength, head));
    head.setPayloadLength(static_cast<std::uint32_t>(strBody.size()));
    EXPECT_TRUE(encodeCommandHead(head, buffer));
    return bytesOf(buffer) + strBody;
}

struct Tally {
    int nRead = 0;
    int nRefused = 0;
};

// What was read is a command like any other: it can be written.
void expectNoHarm(const ICommandProtocolParser& parser, const std::string& strBytes, Tally& tally) {
    SafePointer<CommandParam> param;
    bool bRead = false;
    ASSERT_NO_THROW(bRead = parser.parseCommand(bufferOf(strBytes), param));
    ASSERT_EQ(bRead, !param.isNull());
    ++(bRead ? tally.nRead : tally.nRefused);
    CommandBuffer written;
    EXPECT_TRUE(!bRead || parser.createCommand(param, written));
}

Tally damage(const ICommandProtocolParser& parser, const std::string& strCommand, int nRounds,
             Mutator& mutator) {
    Tally tally;
    const std::string strBody = strCommand.substr(HeadLength);
    for (int n = 0; n < nRounds; ++n) {
        expectNoHarm(parser, mutator.mutate(strCommand), tally);
        expectNoHarm(parser, withSoundHead(mutator.mutate(strCommand)), tally);
        expectNoHarm(parser, withBody(strCommand, mutator.mutate(strBody)), tally);
    }
    return tally;
}

std::string commandOf(std::uint32_t nCommandID, Records records) {
    SDKCommandHeadInfo head;
    head.setCommandID(nCommandID);
    auto pobjParam = std::make_unique<SDKCommandParam>();
    pobjParam->setHead(head);
    pobjParam->setDomains(std::move(records));
    CommandBuffer buffer;
    EXPECT_TRUE(
        SDKCommandParser().createCommand(wrapSafe<CommandParam>(std::move(pobjParam)), buffer));
    return bytesOf(buffer);
}

// One of each record that the binary forms hold.
Records binaryRecords() {
    const std::string strBytes = "eleven byte";
    DataBuffer data;
    EXPECT_TRUE(data.setData(reinterpret_cast<const std::uint8_t*>(strBytes.data()), 11));
    EtCOMWriteData write;
    write.setComData(data);
    EtFileDataPack pack;
    pack.setDataBuffer(data);
    EtPTZOperation operation;
    operation.setPTZOperation("goto preset");
    operation.setName("door");
    return recordsOf(write, pack, data, operation, EtResult());
}

}  // namespace

TEST(HostileInput, DamagedBinaryFormsAreReadOrRefused) {
    Mutator mutator;
    for (const std::uint32_t nCommandID :
         {14006U, 15020U, 31026U, 32743U, 32821U, 33019U, 33026U, 33028U, 47005U}) {
        SCOPED_TRACE(nCommandID);
        const Tally tally =
            damage(SDKCommandParser(), commandOf(nCommandID, binaryRecords()), 500, mutator);
        EXPECT_GT(tally.nRead, 0);
        EXPECT_GT(tally.nRefused, 0);
    }
    auto pobjParam = std::make_unique<BinCommandParam>();
    pobjParam->setData(reinterpret_cast<const std::uint8_t*>("eleven byte"), 11);
    CommandBuffer buffer;
    ASSERT_TRUE(
        BinCommandParser().createCommand(wrapSafe<CommandParam>(std::move(pobjParam)), buffer));
    const Tally tally = damage(BinCommandParser(), bytesOf(buffer), 500, mutator);
    EXPECT_GT(tally.nRead, 0);
    EXPECT_GT(tally.nRefused, 0);
}

TEST(HostileInput, DamagedRecordsOfEveryTypeAreReadOrRefused) {
    const std::size_t nSlots = SafePointerRegistry::instance().getTableSize();
    Mutator mutator;
    Tally sum;
    int nTypes = 0;
    captureOutput([&] {
        for (const RecordDescriptor* pDescriptor : recordDescriptors()) {
            if (pDescriptor->isElement || pDescriptor->szName == nullptr) {
                continue;
            }
            SCOPED_TRACE(pDescriptor->szClass);
            auto pRecord = pDescriptor->access.make();
            RecordFiller().fill(*pDescriptor, pRecord.get());
            const Records records{wrapSafe<BaseDomain>(std::move(pRecord))};
            const Tally tally =
                damage(SDKCommandParser(), commandOf(AnyXmlCommand, records), 6, mutator);
            sum.nRead += tally.nRead;
            sum.nRefused += tally.nRefused;
            ++nTypes;
        }
    });
    EXPECT_EQ(nTypes, 649);
    EXPECT_GT(sum.nRead, nTypes);
    EXPECT_GT(sum.nRefused, nTypes);
    EXPECT_EQ(SafePointerRegistry::instance().getTableSize(), nSlots);
}
