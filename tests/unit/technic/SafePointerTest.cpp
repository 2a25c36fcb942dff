// Safe pointers: counting, the fixed text of every misuse, and the table of their slots.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <typeinfo>
#include <vector>

#include "Product/Technic/KXRuntimeError.h"
#include "Product/Technic/SafePointer.h"
#include "Product/Technic/SafePointerRegistry.h"
#include "support/CapturedOutput.h"
#include "support/ChildProcess.h"
#include "support/ThrownText.h"

namespace {

struct Widget {
    explicit Widget(std::atomic<int>& nAlive) : m_nAlive(nAlive) { ++m_nAlive; }
    virtual ~Widget() { --m_nAlive; }
    std::atomic<int>& m_nAlive;
};

struct Gadget : Widget {
    using Widget::Widget;
    SafePointer<Widget> m_next;
    ~Gadget() noexcept override = default;
};

// A slot whose fields a test sets, standing outside the registry.
struct LooseSlot : SafePointerSlot {
    explicit LooseSlot(void* pObject) : SafePointerSlot(0) { m_pObject = pObject; }
    using SafePointerSlot::m_mutex;
};

// A holder whose raw fields a test sets, past all counting.
struct RawHolder : SafePointer<Widget> {
    RawHolder(Widget* pPointer, SafePointerSlot* pSlot) {
        m_pPointer = pPointer;
        m_pSlot = pSlot;
    }
    static SafePointerSlot* slotOf(const SafePointer<Widget>& holder) {
        return holder.*(&RawHolder::m_pSlot);
    }
    // Copies itself and, whatever comes of it, lets go of the object without counting.
    void copyAndForget() {
        const std::shared_ptr<void> forget(nullptr, [&](void*) { m_pPointer = nullptr; });
        const SafePointer<Widget> copy(*this);
    }
};

// Expects that an action prints the report of a misuse, and throws the same text.
template <class Action>
void expectReport(const std::string& strMessage, const Action& action) {
    const std::string strReport =
        std::string("SafePointer Report:") + typeid(Widget).name() + " " + strMessage;
    EXPECT_EQ(captureOutput([&] { EXPECT_EQ(thrownText<KXRuntimeError>(action), strReport); }),
              strReport + "\n");
}

class SafePointerTest : public testing::Test {
protected:
    SafePointer<Widget> makeWidget() { return wrapSafe(std::make_unique<Widget>(m_nAlive)); }

    std::atomic<int> m_nAlive{0};
};

// A table of its own, in which one object fills the slots.
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

TEST_F(SafePointerTest, LastHolderDeletesTheObjectOnce) {
    {
        SafePointer<Widget> holder;
        EXPECT_TRUE(holder.isNull());
        holder = *&holder;  // to itself: nothing happens, not even to a null one
        holder = makeWidget();
        EXPECT_EQ(SafePointer<Widget>(holder).get(), holder.get());
        holder = *&holder;
        EXPECT_EQ(m_nAlive, 1);
        holder = wrapSafe(std::make_unique<Gadget>(m_nAlive));
        EXPECT_EQ(m_nAlive, 1);
    }
    EXPECT_EQ(m_nAlive, 0);
}

TEST_F(SafePointerTest, MisuseOfNullIsReported) {
    const SafePointer<Widget> null;
    const SafePointer<Gadget> nullGadget;
    SafePointer<Widget> target = makeWidget();
    expectReport("Construct from NULL original pointer",
                 [] { SafePointer<Widget> holder(static_cast<Widget*>(nullptr)); });
    expectReport("Construct from NULL <T>pointer", [&] { SafePointer<Widget> copy(null); });
    expectReport("Construct from NULL <T>pointer", [&] { SafePointer<Widget> copy(nullGadget); });
    expectReport("Assigned NULL <T>pointer", [&] { target = null; });
    expectReport("Use NULL pointer ->", [&] { static_cast<void>(null->m_nAlive); });
    expectReport("Use NULL pointer *", [&] { static_cast<void>(*null); });
    EXPECT_EQ(&target->m_nAlive, &m_nAlive);
    EXPECT_EQ(m_nAlive, 1);
}

TEST_F(SafePointerTest, CopyOfADestructedHolderIsReported) {
    Widget widget(m_nAlive);
    LooseSlot dead(&widget);
    dead.m_mutex.destroy();
    LooseSlot empty(&widget);
    const auto copy = [&](SafePointerSlot* pSlot) {
        return [&widget, pSlot] { RawHolder(&widget, pSlot).copyAndForget(); };
    };
    expectReport("Already destructed 1", copy(nullptr));
    expectReport("Already destructed 2", copy(&dead));
    expectReport("Already destructed 3", copy(&empty));
    // The last of them unlocked its slot, or this would wait for ever.
    std::jthread([&] { EXPECT_EQ(empty.lock(), 0); }).join();
}

TEST_F(SafePointerTest, HolderOfAnotherObjectsSlotIsToldOnCopyAndAtItsEnd) {
    // The slot stays locked for good, so this happens in a process of its own.
    const std::string strOutput = outputOfChild([&] {
        SafePointer<Widget> holder = makeWidget();
        SafePointerSlot* const pSlot = RawHolder::slotOf(holder);
        Widget stale(m_nAlive);
        const auto copy = [&] { RawHolder(&stale, pSlot).copyAndForget(); };
        EXPECT_EQ(thrownText<KXRuntimeError>(copy), "not valid pointer in inc_reference ");
        EXPECT_EQ(thrownText<KXRuntimeError>([&] { RawHolder(&stale, pSlot); }),
                  "not valid pointer in dec_reference");
        holder = makeWidget();  // and now the slot has no object at all
        EXPECT_EQ(thrownText<KXRuntimeError>(copy), "not valid pointer in inc_reference ");
    });
    EXPECT_EQ(strOutput, "");
}

TEST_F(SafePointerTest, AFullTableFreesTheObjectThatItRefuses) {
    outputOfChild([&] {
        std::vector<SafePointer<Widget>> vecHolders(20096);
        for (SafePointer<Widget>& holder : vecHolders) {
            holder = makeWidget();
        }
        const auto pRaw = std::make_unique<Widget>(m_nAlive);
        EXPECT_THROW(SafePointer<Widget>(pRaw.get()), KXRuntimeError);
        EXPECT_THROW(makeWidget(), KXRuntimeError);
        EXPECT_EQ(m_nAlive, 20097) << "a raw pointer stays with the caller";
        vecHolders.pop_back();
        EXPECT_FALSE(makeWidget().isNull());
    });
}

TEST_F(SafePointerTest, OldObjectMayHoldTheSourceOfAnAssignment) {
    auto pFirst = std::make_unique<Gadget>(m_nAlive);
    pFirst->m_next = makeWidget();
    const SafePointer<Widget> kept = pFirst->m_next;
    const SafePointer<Widget>& next = pFirst->m_next;
    SafePointer<Widget> head = wrapSafe<Widget>(std::move(pFirst));
    head = next;
    EXPECT_EQ(head.get(), kept.get());
    EXPECT_EQ(m_nAlive, 1);
}

TEST_F(SafePointerTest, HoldersInManyThreadsKeepOneCount) {
    const SafePointer<Widget> shared = makeWidget();
    std::vector<std::jthread> vecThreads;
    for (int nThread = 0; nThread < 4; ++nThread) {
        vecThreads.emplace_back([&] {
            for (int nRound = 0; nRound < 300; ++nRound) {
                const SafePointer<Widget> copy = shared;
                const SafePointer<Widget> fresh = makeWidget();
                EXPECT_NE(copy.get(), fresh.get());
            }
        });
    }
    vecThreads.clear();
    EXPECT_EQ(m_nAlive, 1);
}

TEST_F(SafePointerRegistryTest, SlotsAreReleasedOnceAndTakenFromTheGroupReleasedLastOn) {
    fill(128, "X");
    for (const std::size_t nIndex : {100u, 33u, 40u, 5u, 45u}) {
        release(nIndex);
    }
    EXPECT_EQ(thrownText<KXRuntimeError>([&] { release(45); }), "double free poniter(0x00000000)");
    // The group of the last from its lowest slot on, the groups behind it, then those before it.
    for (const std::uint32_t nIndex : {33u, 40u, 45u, 100u, 5u}) {
        EXPECT_EQ(nextIndex(), nIndex);
    }
    EXPECT_EQ(m_registry.getTableSize(), 128u);
    EXPECT_EQ(nextIndex(), 128u);
    EXPECT_EQ(m_registry.getTableSize(), 256u);
}

TEST_F(SafePointerRegistryTest, FullTableIsToldWithTheTypesAboveFifty) {
    fill(51, "X");
    release(0);  // and the next takes its slot
    fill(51, "FiftyOne");
    fill(1, nullptr);
    fill(1, "");
    fill(20097 - m_vecSlots.size(), "Many");
    EXPECT_EQ(thrownText<KXRuntimeError>([&] { nextIndex(); }),
              "too much safe poniter(NameMapSize=3)(PointerCount=20094)(FiftyOne,51)(Many,19993)");

    m_registry.release(*m_vecSlots.back(), "not in the map");
    EXPECT_EQ(nextIndex(), 20095u);
}
