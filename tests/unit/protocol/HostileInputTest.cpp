// Commands of every form, damaged in thousands of ways: each is refused or read, and nothing else
// happens. The damage is the same in every run.
#include <gtest/gtest.h>

#include <random>

#include "Product/Technic/SafePointerRegistry.h"
#include "domain/EtCOMWriteData.h"
#include "domain/EtFileDataPack.h"
#include "domain/EtPTZOperation.h"
#include "protocol/BinCommandParser.h"
#include "protocol/SDKCommandParser.h"
#include "support/CapturedOutput.h"
#include "support/RecordLists.h"
#include "support/ScriptedPeer.h"
#include "support/WireCommands.h"

using namespace fleetkit;

namespace {

constexpr std::uint32_t HeadLength = SDKCommandHeadInfo::WireLength;
constexpr std::uint32_t AnyXmlCommand = 10000;

// Bytes at which lengths, texts and markup turn.
const std::string TellingBytes("\0\x01\x7F\x80\xFF<>\"'&=/![]-?; \n\xC3", 21);

// Damages commands, and counts what becomes of them.
class Damage {
public:
    void inflict(const ICommandProtocolParser& parser, const SafePointer<CommandParam>& param,
                 int nRounds) {
        const std::string strCommand = encoded(parser, param);
        SDKCommandHeadInfo head;
        EXPECT_TRUE(decodeCommandHead(bytesIn(strCommand), HeadLength, head));
        for (int n = 0; n < nRounds; ++n) {
            std::string strBody = strCommand.substr(HeadLength);
            for (std::size_t nLeft = 1 + below(4); nLeft > 0; --nLeft) {
                mutate(strBody);
            }
            expectNoHarm(parser, peerMessage(head, strBody, head.getProtocolType()));
        }
    }

    int m_nRead = 0;
    int m_nRefused = 0;

private:
    std::size_t below(std::size_t nLimit) { return m_random() % nLimit; }

    void mutate(std::string& strBytes) {
        const std::size_t nAt = below(strBytes.size() + 1);
        const std::size_t arrRemoved[] = {0, 1, below(12), std::string::npos};
        const std::string arrInserted[] = {"", TellingBytes.substr(below(TellingBytes.size()), 1),
                                           strBytes.substr(nAt, below(96))};
        const std::size_t nRemoved = arrRemoved[below(4)];
        strBytes.replace(nAt, nRemoved, arrInserted[below(3)]);
    }

    // What was read is a command like any other: it can be written.
    void expectNoHarm(const ICommandProtocolParser& parser, const std::string& strBytes) {
        SafePointer<CommandParam> param;
        bool bRead = false;
        ASSERT_NO_THROW(bRead = parser.parseCommand(bufferOf(strBytes), param));
        ASSERT_EQ(bRead, !param.isNull());
        ++(bRead ? m_nRead : m_nRefused);
        CommandBuffer written;
        EXPECT_TRUE(!bRead || parser.createCommand(param, written));
    }

    std::mt19937 m_random{4711};
};

// One of each record that the binary forms hold.
Records binaryRecords() {
    const DataBuffer data = dataOf("eleven byte");
    return recordsOf(with(&EtCOMWriteData::setComData, data),
                     with(&EtFileDataPack::setDataBuffer, data), data,
                     with(&EtPTZOperation::setPTZOperation, "goto preset"), EtResult());
}

TEST(HostileInput, DamagedBinaryFormsAreReadOrRefused) {
    const auto expectBoth = [](const ICommandProtocolParser& parser, const auto& param) {
        Damage damage;
        damage.inflict(parser, param, 1500);
        EXPECT_GT(damage.m_nRead, 0);
        EXPECT_GT(damage.m_nRefused, 0);
    };
    for (const std::uint32_t nCommandID :
         {14006U, 15020U, 31026U, 32743U, 32821U, 33019U, 33026U, 33028U, 47005U}) {
        SCOPED_TRACE(nCommandID);
        expectBoth(SDKCommandParser(), sdkCommand(headOf(nCommandID), binaryRecords()));
    }
    expectBoth(BinCommandParser(), binCommand(headOf(7), -1, "eleven byte"));
}

TEST(HostileInput, DamagedRecordsOfEveryTypeAreReadOrRefused) {
    const SDKCommandParser parser;
    const std::size_t nSlots = SafePointerRegistry::instance().getTableSize();
    Damage damage;
    const auto nTypes = static_cast<int>(namedRecords().size());
    captureOutput([&] {
        for (const RecordDescriptor* pDescriptor : namedRecords()) {
            SCOPED_TRACE(pDescriptor->szClass);
            auto pRecord = pDescriptor->access.make();
            RecordFiller().fill(*pDescriptor, pRecord.get());
            const Records records{wrapSafe<BaseDomain>(std::move(pRecord))};
            damage.inflict(parser, sdkCommand(headOf(AnyXmlCommand), records), 18);
        }
    });
    EXPECT_GT(nTypes, 0);
    EXPECT_GT(damage.m_nRead, nTypes);
    EXPECT_GT(damage.m_nRefused, nTypes);
    EXPECT_EQ(SafePointerRegistry::instance().getTableSize(), nSlots);
}

}  // namespace
