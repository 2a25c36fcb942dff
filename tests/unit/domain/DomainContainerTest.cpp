// Records, lists of records, raw bytes: what they are told apart by, and how they are copied.
#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "domain/AlarmOutAction.h"
#include "domain/ChannelId.h"
#include "domain/DataBuffer.h"
#include "domain/DomainList.h"
#include "domain/EtCOMWriteData.h"
#include "domain/EtFileDataPack.h"
#include "domain/EtResult.h"
#include "domain/NTPParam.h"
#include "domain/PolygonArea.h"
#include "support/WireBytes.h"

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
        bool bExpected, bList;
    };
    for (const Case& one : {Case{single, 206, true, false}, Case{single, 207, false, false},
                            Case{single, 99999, false, false}, Case{list, 206, true, true},
                            Case{list, 207, false, true}, Case{list, 99999, false, true},
                            Case{nestedOnly, 2036, true, true}, Case{plain, 0, true, true}}) {
        bool isList = !one.bList;
        EXPECT_EQ(checkDomainId(one.record, one.nId, isList), one.bExpected) << one.nId;
        EXPECT_EQ(isList, one.bList) << one.nId;
        EXPECT_EQ(effectiveDomainId(one.record) == one.nId, one.bExpected) << one.nId;
        EXPECT_EQ(one.record.getDomainId() == 99999, one.bList);
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

    DomainVectorContainer<NTPParam> list({record, record});
    const DomainVectorContainer<AlarmOutAction> other;
    static_cast<DomainContainer&>(list) = other;
    EXPECT_EQ(list.getDomainElementId(), 206U);
    EXPECT_EQ(list.getElements().size(), 2U);
    EXPECT_EQ(DomainVectorContainer<NTPParam>(list).getElements().size(), 2U);
}

TEST(DomainContainer, AListHoldsCopiesOfWhatItIsGiven) {
    NTPParam record;
    record.setNTPPort(123);
    DomainVectorContainer<NTPParam> list;
    list.append(record);
    record.setNTPPort(1);
    EXPECT_EQ(list.getElements().at(0).getNTPPort(), 123);
    list.setElements({record, record});
    ASSERT_EQ(list.getElements().size(), 2U);
    EXPECT_EQ(list.getElements()[0].getNTPPort(), 1);
    DomainVectorContainer<BaseDomain> plain;
    plain.append(record);
    EXPECT_EQ(plain.getElements().at(0).getDomainId(), 0U) << "holds only ids";
}

// ---- raw bytes

std::string bytesOf(const DataBuffer& buffer) {
    return {reinterpret_cast<const char*>(buffer.getData()),
            static_cast<std::size_t>(buffer.getSize())};
}

bool set(DataBuffer& buffer, const std::string& strBytes) {
    return buffer.setData(reinterpret_cast<const std::uint8_t*>(strBytes.data()),
                          static_cast<std::int32_t>(strBytes.size()));
}

TEST(DataBuffer, KeepsItsBlockWhileThatIsLargeEnough) {
    DataBuffer buffer;
    EXPECT_EQ(buffer.getDomainId(), 416U);
    EXPECT_EQ(buffer.getSize(), 0);
    EXPECT_EQ(buffer.getData(), nullptr);
    EXPECT_TRUE(set(buffer, "0123456789"));
    const std::uint8_t* pBlock = buffer.getData();
    EXPECT_TRUE(set(buffer, "abc"));
    EXPECT_EQ(buffer.getData(), pBlock);
    EXPECT_EQ(bytesOf(buffer), "abc");
    EXPECT_TRUE(set(buffer, std::string(100000, 'z')));
    EXPECT_EQ(bytesOf(buffer), std::string(100000, 'z'));
}

TEST(DomainList, FindsTheFirstOfATypeAndListsByTheirElement) {
    ChannelId four;
    four.setId(4);
    const DomainVectorContainer<ChannelId> fours({four, four});
    const DomainList domains =
        recordsOf(EtResult(), DomainVectorContainer<EtResult>(), fours, four, ChannelId());
    EXPECT_EQ(*findRecord<ChannelId>(domains), four);
    EXPECT_EQ(*findList<ChannelId>(domains), fours.getElements());
    EXPECT_EQ(findRecord<NTPParam>(domains), nullptr);
    EXPECT_EQ(findList<NTPParam>(domains), nullptr);
}

TEST(DataBuffer, RefusesNothingAndKeepsTheOldContent) {
    DataBuffer buffer;
    set(buffer, "abc");
    const std::uint8_t nByte = 1;
    EXPECT_FALSE(buffer.setData(nullptr, 5));
    EXPECT_FALSE(buffer.setData(&nByte, 0));
    EXPECT_FALSE(buffer.setData(&nByte, -1));
    buffer = DataBuffer();
    const DataBuffer& self = buffer;
    buffer = self;
    EXPECT_EQ(bytesOf(buffer), "abc");
}

TEST(DataBuffer, CopiesDeeply) {
    DataBuffer buffer;
    set(buffer, "abc");
    DataBuffer copy(buffer);
    EtCOMWriteData com;
    com.setComData(buffer);
    EtFileDataPack pack;
    pack.setDataBuffer(buffer);
    set(buffer, "xyz");
    EXPECT_EQ(bytesOf(copy), "abc");
    EXPECT_EQ(bytesOf(EtCOMWriteData(com).getComData()), "abc");
    EXPECT_EQ(bytesOf(EtFileDataPack(pack).getDataBuffer()), "abc");
    copy = buffer;
    EXPECT_EQ(bytesOf(copy), "xyz");
    EXPECT_EQ(EtCOMWriteData(com).getDomainId(), 1067U);
    EXPECT_EQ(EtFileDataPack(pack).getDomainId(), 1125U);
}

}  // namespace
