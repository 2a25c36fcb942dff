// The table of slots: search order, growth, exhaustion, statistics.
#include <gtest/gtest.h>

#include <vector>

#include "Product/Technic/KXRuntimeError.h"
#include "Product/Technic/SafePointerRegistry.h"
#include "support/ThrownText.h"

namespace {

class SafePointerRegistryTest : public testing::Test {
protected:
    void fill(std::size_t nCount, const char* pTypeName) {
        for (std::size_t nTaken = 0; nTaken < nCount; ++nTaken) {
            m_vecSlots.push_back(m_registry.allocate(&m_nObject, pTypeName));
        }
    }
    std::uint32_t nextIndex() { return m_registry.allocate(&m_nObject, "X")->getIndex(); }
    void release(std::size_t nIndex) { m_registry.release(*m_vecSlots[nIndex], "X"); }

    SafePointerRegistry m_registry;
    std::vector<SafePointerSlot*> m_vecSlots;
    int m_nObject = 0;
};

}  // namespace

TEST_F(SafePointerRegistryTest, SecondReleaseIsToldWithTheObjectOfTheSlot) {
    fill(1, "X");
    release(0);
    EXPECT_EQ(thrownText<KXRuntimeError>([&] { release(0); }), "double free poniter(0x00000000)");
    EXPECT_EQ(nextIndex(), 0u);  // the registry was unlocked and is in order
}

TEST_F(SafePointerRegistryTest, SearchStartsAtTheGroupOfTheSlotReleasedLast) {
    fill(128, "X");
    for (const std::size_t nIndex : {100u, 33u, 40u, 5u, 45u}) {
        release(nIndex);
    }
    // The group of the last from its lowest slot on, the groups behind it, then those before it.
    for (const std::uint32_t nIndex : {33u, 40u, 45u, 100u, 5u}) {
        EXPECT_EQ(nextIndex(), nIndex);
    }
    EXPECT_EQ(m_registry.getTableSize(), 128u);
    EXPECT_EQ(nextIndex(), 128u);
    EXPECT_EQ(m_registry.getTableSize(), 256u);
}

TEST_F(SafePointerRegistryTest, FullTableIsToldWithTheTypesAboveFifty) {
    fill(50, "Fifty");
    fill(51, "FiftyOne");
    fill(1, nullptr);
    fill(1, "");
    fill(1, "Gone");
    m_registry.release(*m_vecSlots.back(), "Gone");
    m_vecSlots.pop_back();
    fill(19968 - m_vecSlots.size(), "Many");
    EXPECT_EQ(m_registry.getTableSize(), 19968u);
    fill(128, "Many");
    EXPECT_EQ(thrownText<KXRuntimeError>([&] { nextIndex(); }),
              "too much safe poniter(NameMapSize=4)(PointerCount=20094)(FiftyOne,51)(Many,19993)");
    EXPECT_EQ(m_registry.getTableSize(), 20096u);

    m_registry.release(*m_vecSlots[20000], "not in the map");
    EXPECT_EQ(nextIndex(), 20000u);
}
