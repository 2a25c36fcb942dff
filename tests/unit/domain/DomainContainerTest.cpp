// Records, lists of records, raw bytes: what they are told apart by, and how they are copied.
#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "domain/AlarmOutAction.h"
#include "domain/EtCOMWriteData.h"
#include "domain/EtFileDataPack.h"
#include "domain/NTPParam.h"
#include "domain/PolygonArea.h"
#include "support/WireCommands.h"

using namespace fleetkit;

namespace {

static_assert(std::has_virtual_destructor_v<BaseDomain>);

TEST(DomainContainer, OneRuleTellsAListFromARecord) {
    const NTPParam single;
    const DomainVectorContainer<NTPParam> list;
    const DomainVectorContainer<PolygonArea> nestedOnly;
    const DomainVectorContainer<BaseDomain> plain;
    struct Case {
        const BaseDomain& record;
        std::uint32_t nId;
        bool bList;
    };
    for (const Case& one : {Case{single, 206, false}, Case{list, 206, true},
                            Case{nestedOnly, 2036, true}, Case{plain, 0, true}}) {
        EXPECT_EQ(one.record.getDomainId() == 99999, one.bList);
        EXPECT_EQ(effectiveDomainId(one.record), one.nId);
        for (const std::uint32_t nId : {one.nId, 207U, 99999U}) {
            bool isList = !one.bList;
            EXPECT_EQ(checkDomainId(one.record, nId, isList), nId == one.nId) << nId;
            EXPECT_EQ(isList, one.bList) << nId;
        }
    }
}

TEST(DomainContainer, CopyingLeavesTheIdsOfTheTarget) {
    NTPParam record;
    AlarmOutAction action;
    action.setActionID(3);
    static_cast<BaseDomain&>(record) = action;
    EXPECT_EQ(record.getDomainId(), 206U);
    const AlarmActionParam slice(action);
    EXPECT_EQ(slice.getDomainId(), 5058U);
    EXPECT_EQ(slice.getActionID(), 3);
    EXPECT_EQ(AlarmOutAction(action).getDomainId(), 15U);
    EXPECT_EQ(BaseDomain(action).getDomainId(), 0U);

    auto list = listOf<NTPParam>({record});
    list.append(with(&NTPParam::setNTPPort, 123));
    static_cast<DomainContainer&>(list) = DomainVectorContainer<AlarmOutAction>();
    EXPECT_EQ(list.getDomainElementId(), 206U);
    EXPECT_EQ(list.getElements().at(1).getNTPPort(), 123);
    DomainVectorContainer<BaseDomain> plain;
    plain.append(record);
    EXPECT_EQ(plain.getElements().at(0).getDomainId(), 0U) << "holds only ids";
}

TEST(DomainList, FindsTheFirstOfATypeAndListsByTheirElement) {
    const auto four = with(&ChannelId::setId, 4);
    const auto fours = listOf<ChannelId>({four, four});
    const DomainList domains =
        recordsOf(EtResult(), DomainVectorContainer<EtResult>(), fours, four, ChannelId());
    EXPECT_EQ(*findRecord<ChannelId>(domains), four);
    EXPECT_EQ(*findList<ChannelId>(domains), fours.getElements());
    EXPECT_EQ(findRecord<NTPParam>(domains), nullptr);
    EXPECT_EQ(findList<NTPParam>(domains), nullptr);
}

// ---- raw bytes

std::string bytesOf(const DataBuffer& buffer) {
    return {reinterpret_cast<const char*>(buffer.getData()),
            static_cast<std::size_t>(buffer.getSize())};
}

TEST(DataBuffer, KeepsItsBlockWhileThatIsLargeEnoughAndItsContentWhenItRefuses) {
    DataBuffer buffer = dataOf("0123456789");
    const std::uint8_t* pBlock = buffer.getData();
    EXPECT_TRUE(buffer.setData(bytesIn("abc"), 3));
    EXPECT_EQ(buffer.getData(), pBlock);
    EXPECT_FALSE(buffer.setData(nullptr, 5));
    EXPECT_FALSE(buffer.setData(bytesIn("x"), 0));
    EXPECT_FALSE(buffer.setData(bytesIn("x"), -1));
    buffer = DataBuffer();
    const DataBuffer& self = buffer;
    buffer = self;
    EXPECT_EQ(bytesOf(buffer), "abc");
    const std::string strLarge(100000, 'z');
    EXPECT_TRUE(buffer.setData(bytesIn(strLarge), 100000));
    EXPECT_EQ(bytesOf(buffer), strLarge);
}

TEST(DataBuffer, CopiesDeeply) {
    DataBuffer buffer = dataOf("abc");
    DataBuffer copy(buffer);
    const auto com = with(&EtCOMWriteData::setComData, buffer);
    const auto pack = with(&EtFileDataPack::setDataBuffer, buffer);
    buffer.setData(bytesIn("xyz"), 3);
    EXPECT_EQ(bytesOf(copy), "abc");
    EXPECT_EQ(bytesOf(EtCOMWriteData(com).getComData()), "abc");
    EXPECT_EQ(bytesOf(EtFileDataPack(pack).getDataBuffer()), "abc");
    copy = buffer;
    EXPECT_EQ(bytesOf(copy), "xyz");
}

}  // namespace
