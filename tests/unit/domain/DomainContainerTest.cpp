// Records, lists of records, raw bytes: what they are told apart by, and how they are copied.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>

#include "domain/AlarmOutAction.h"
#include "domain/DataBuffer.h"
#include "domain/DomainContainer.h"
#include "domain/DomainVectorContainer.h"
#include "domain/EtCOMWriteData.h"
#include "domain/EtFileDataPack.h"
#include "domain/NTPParam.h"
#include "domain/PolygonArea.h"

namespace {

void expectCheck(const BaseDomain& record, std::uint32_t nId, bool bExpected, bool bList) {
    bool isList = !bList;
    EXPECT_EQ(checkDomainId(record, nId, isList), bExpected) << nId;
    EXPECT_EQ(isList, bList) << nId;
}

TEST(DomainContainer, OneRuleTellsAListFromARecord) {
    const NTPParam single;
    expectCheck(single, 206, true, false);
    expectCheck(single, 207, false, false);
    expectCheck(single, 99999, false, false);
    const DomainVectorContainer<NTPParam> list;
    expectCheck(list, 206, true, true);
    expectCheck(list, 207, false, true);
    expectCheck(list, 99999, false, true);
    EXPECT_EQ(effectiveDomainId(single), 206U);
    EXPECT_EQ(effectiveDomainId(list), 206U);
}

TEST(DomainContainer, AListHoldsCopiesOfWhatItIsGiven) {
    NTPParam record;
    record.setNTPPort(123);
    DomainVectorContainer<NTPParam> list;
    EXPECT_EQ(list.getDomainId(), 99999U);
    list.append(record);
    record.setNTPPort(1);
    list.append(record);
    DomainVectorContainer<NTPParam> copy(list);
    list.setElements({});
    EXPECT_TRUE(list.getElements().empty());
    ASSERT_EQ(copy.getElements().size(), 2U);
    EXPECT_EQ(copy.getElements()[0].getNTPPort(), 123);
    list = copy;
    copy.getElements()[0].setNTPPort(9);
    EXPECT_EQ(list.getElements()[0].getNTPPort(), 123);
    EXPECT_EQ(list.getDomainElementId(), 206U);
    EXPECT_EQ(DomainVectorContainer<NTPParam>(list.getElements()).getElements().size(), 2U);
}

TEST(DomainContainer, AListOfBaseDomainsHoldsOnlyIds) {
    DomainVectorContainer<BaseDomain> list;
    list.append(NTPParam());
    EXPECT_EQ(list.getDomainId(), 99999U);
    EXPECT_EQ(list.getDomainElementId(), 0U);
    EXPECT_EQ(list.getElements().front().getDomainId(), 0U);
    expectCheck(list, 0, true, true);
}

TEST(DomainContainer, NestedOnlyTypesHaveListsToo) {
    const DomainVectorContainer<PolygonArea> list;
    EXPECT_EQ(list.getDomainElementId(), 2036U);
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
    const BaseDomain plain(action);
    EXPECT_EQ(plain.getDomainId(), 0U);

    DomainVectorContainer<NTPParam> list;
    DomainVectorContainer<AlarmOutAction> other;
    static_cast<DomainContainer&>(list) = other;
    EXPECT_EQ(list.getDomainElementId(), 206U);
}

TEST(DomainContainer, RecordsAreDestroyedThroughTheirRoot) {
    static_assert(std::has_virtual_destructor_v<BaseDomain>);
    auto& record = *new NTPParam();
    record.setNTPIp(std::string(100, 'x'));
    NTPParam& self = record;
    record = self;
    EXPECT_EQ(record.getNTPIp().size(), 100U);
    const std::unique_ptr<BaseDomain> pRoot(&record);
    EXPECT_EQ(pRoot->getDomainId(), 206U);
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

TEST(DataBuffer, RefusesNothingAndKeepsTheOldContent) {
    DataBuffer buffer;
    set(buffer, "abc");
    const std::uint8_t nByte = 1;
    EXPECT_FALSE(buffer.setData(nullptr, 5));
    EXPECT_FALSE(buffer.setData(&nByte, 0));
    EXPECT_FALSE(buffer.setData(&nByte, -1));
    buffer = DataBuffer();
    DataBuffer& self = buffer;
    buffer = self;
    EXPECT_EQ(bytesOf(buffer), "abc");
}

TEST(DataBuffer, CopiesDeeply) {
    DataBuffer buffer;
    set(buffer, "abc");
    DataBuffer copy(buffer);
    EXPECT_NE(copy.getData(), buffer.getData());
    set(buffer, "xyz");
    EXPECT_EQ(bytesOf(copy), "abc");
    copy = buffer;
    EXPECT_EQ(bytesOf(copy), "xyz");

    EtCOMWriteData com;
    com.setComData(buffer);
    EtFileDataPack pack;
    pack.setDataBuffer(buffer);
    set(buffer, "123");
    EXPECT_EQ(bytesOf(EtCOMWriteData(com).getComData()), "xyz");
    EXPECT_EQ(bytesOf(EtFileDataPack(pack).getDataBuffer()), "xyz");
    EXPECT_EQ(EtCOMWriteData(com).getDomainId(), 1067U);
    EXPECT_EQ(EtFileDataPack(pack).getDomainId(), 1125U);
}

}  // namespace
