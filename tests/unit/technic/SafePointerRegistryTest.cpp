// The table of slots: search order, growth, exhaustion, statistics.
#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>
#include <string>
#include <vector>

#include "Product/Technic/KXRuntimeError.h"
#include "Product/Technic/SafePointerRegistry.h"

namespace {

class SafePointerRegistryTest : public testing::Test {
protected:
    void fill(std::size_t nCount, const char* pTypeName) {
        for (std::size_t nTaken = 0; nTaken < nCount; ++nTaken) {
            m_vecSlots.push_back(m_objRegistry.allocate(&m_nObject, pTypeName));
        }
    }
    std::uint32_t nextIndex() { return m_objRegistry.allocate(&m_nObject, "X")->getIndex(); }
    void release(std::size_t nIndex) { m_objRegistry.release(*m_vecSlots[nIndex], "X"); }

    template <class Action>
    static std::string textOf(const Action& objAction) {
        try {
            objAction();
        } catch (const KXRuntimeError& objError) {
            return objError.what();
        }
        return "nothing was thrown";
    }

    SafePointerRegistry m_objRegistry;
    std::vector<SafePointerSlot*> m_vecSlots;
    int m_nObject = 0;
};

}  // namespace

TEST_F(SafePointerRegistryTest, SlotComesWithOneReferenceAndItsObject) {
    SafePointerSlot* const pSlot = m_objRegistry.allocate(&m_nObject, "X");
    EXPECT_EQ(pSlot->getIndex(), 0u);
    EXPECT_EQ(pSlot->getPointer(), &m_nObject);
    EXPECT_EQ(pSlot->increment(), 2u);
    EXPECT_EQ(pSlot->decrement(), 1u);
    EXPECT_EQ(pSlot->decrement(), 0u);
    EXPECT_EQ(pSlot->increment(), 0u);
    m_objRegistry.release(*pSlot, "X");
    EXPECT_EQ(pSlot->getPointer(), nullptr);
}

TEST_F(SafePointerRegistryTest, GrowsByOneHundredTwentyEightAtTheNextPointer) {
    fill(128, "X");
    EXPECT_EQ(m_objRegistry.getTableSize(), 128u);
    EXPECT_EQ(nextIndex(), 128u);
    EXPECT_EQ(m_objRegistry.getTableSize(), 256u);
    EXPECT_EQ(nextIndex(), 129u);
}

TEST_F(SafePointerRegistryTest, SearchStartsAtTheGroupOfTheSlotReleasedLast) {
    fill(128, "X");
    release(100);
    release(33);
    release(40);
    release(5);
    release(45);  // its group is now searched first, from its lowest slot
    EXPECT_EQ(nextIndex(), 33u);
    EXPECT_EQ(nextIndex(), 40u);
    EXPECT_EQ(nextIndex(), 45u);
    EXPECT_EQ(nextIndex(), 100u);  // then the groups behind it
    EXPECT_EQ(nextIndex(), 5u);    // then those before it
    EXPECT_EQ(nextIndex(), 128u);  // and then growth
}

TEST_F(SafePointerRegistryTest, SecondReleaseIsToldWithTheObjectOfTheSlot) {
    fill(1, "X");
    release(0);
    EXPECT_EQ(textOf([&] { release(0); }), "double free poniter(0x00000000)");
    EXPECT_EQ(nextIndex(), 0u);  // the registry was unlocked and is in order
}

TEST_F(SafePointerRegistryTest, FullTableIsToldWithTheTypesAboveFifty) {
    fill(50, "Fifty");
    fill(51, "FiftyOne");
    fill(1, nullptr);
    fill(1, "");
    fill(1, "Gone");
    m_objRegistry.release(*m_vecSlots.back(), "Gone");
    m_vecSlots.pop_back();
    fill(19968 - m_vecSlots.size(), "Many");
    EXPECT_EQ(m_objRegistry.getTableSize(), 19968u);
    fill(1, "Many");
    EXPECT_EQ(m_objRegistry.getTableSize(), 20096u);
    fill(127, "Many");
    const std::string strFull =
        "too much safe poniter(NameMapSize=4)(PointerCount=20094)(FiftyOne,51)(Many,19993)";
    EXPECT_EQ(textOf([&] { nextIndex(); }), strFull);
    EXPECT_EQ(m_objRegistry.getTableSize(), 20096u);

    m_objRegistry.release(*m_vecSlots[20000], "not in the map");
    EXPECT_EQ(nextIndex(), 20000u);
}
