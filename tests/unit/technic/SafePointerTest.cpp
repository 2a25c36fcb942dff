// Safe pointers: counting, and the fixed text of every misuse.
#include <gmock/gmock.h>
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
    SafePointer<Widget> m_objNext;
    ~Gadget() noexcept override = default;
};

// A slot whose fields a test sets, standing outside the registry.
struct LooseSlot : SafePointerSlot {
    explicit LooseSlot(void* pObject) : SafePointerSlot(0) { m_pObject = pObject; }
    KXMutexHandle& getMutex() { return m_objMutex; }
};

// A holder whose raw fields a test sets, past all counting.
struct RawHolder : SafePointer<Widget> {
    RawHolder(Widget* pPointer, SafePointerSlot* pSlot) {
        m_pPointer = pPointer;
        m_pSlot = pSlot;
    }
    static SafePointerSlot* slotOf(const SafePointer<Widget>& objHolder) {
        return objHolder.*(&RawHolder::m_pSlot);
    }
    // Copies itself and, whatever comes of it, lets go of the object without counting.
    void copyAndForget() {
        const std::shared_ptr<void> objForget(nullptr, [&](void*) { m_pPointer = nullptr; });
        const SafePointer<Widget> objCopy(*this);
    }
};

// Expects that an action prints the report of a misuse, and throws the same text.
template <class Action>
void expectReport(const std::string& strMessage, const Action& objAction) {
    const std::string strReport =
        std::string("SafePointer Report:") + typeid(Widget).name() + " " + strMessage;
    EXPECT_EQ(captureOutput([&] { EXPECT_EQ(thrownText<KXRuntimeError>(objAction), strReport); }),
              strReport + "\n");
}

class SafePointerTest : public testing::Test {
protected:
    SafePointer<Widget> makeWidget() { return wrapSafe(std::make_unique<Widget>(m_nAlive)); }

    std::atomic<int> m_nAlive{0};
};

}  // namespace

TEST_F(SafePointerTest, LastHolderDeletesTheObjectOnce) {
    {
        SafePointer<Widget> objHolder;
        EXPECT_TRUE(objHolder.isNull());
        objHolder = *&objHolder;  // to itself: nothing happens, not even to a null one
        objHolder = makeWidget();
        {
            const SafePointer<Widget> objCopy = objHolder;
            EXPECT_EQ(objCopy.get(), objHolder.get());
        }
        objHolder = *&objHolder;
        EXPECT_EQ(m_nAlive, 1);
        {
            const SafePointer<Gadget> objDerived = wrapSafe(std::make_unique<Gadget>(m_nAlive));
            objHolder = objDerived;
        }
        EXPECT_EQ(m_nAlive, 1);
    }
    EXPECT_EQ(m_nAlive, 0);
}

TEST_F(SafePointerTest, MisuseOfNullIsReported) {
    const SafePointer<Widget> objNull;
    const SafePointer<Gadget> objNullGadget;
    SafePointer<Widget> objTarget = makeWidget();
    expectReport("Construct from NULL original pointer",
                 [] { SafePointer<Widget> objHolder(static_cast<Widget*>(nullptr)); });
    expectReport("Construct from NULL <T>pointer", [&] { SafePointer<Widget> objCopy(objNull); });
    expectReport("Construct from NULL <T>pointer",
                 [&] { SafePointer<Widget> objCopy(objNullGadget); });
    expectReport("Assigned NULL <T>pointer", [&] { objTarget = objNull; });
    expectReport("Use NULL pointer ->", [&] { static_cast<void>(objNull->m_nAlive); });
    expectReport("Use NULL pointer *", [&] { static_cast<void>(*objNull); });
    EXPECT_EQ(&objTarget->m_nAlive, &m_nAlive);
    EXPECT_EQ(m_nAlive, 1);
}

TEST_F(SafePointerTest, CopyOfADestructedHolderIsReported) {
    Widget objWidget(m_nAlive);
    LooseSlot objDead(&objWidget);
    objDead.getMutex().destroy();
    LooseSlot objEmpty(&objWidget);
    const auto objCopy = [&](SafePointerSlot* pSlot) {
        return [&objWidget, pSlot] { RawHolder(&objWidget, pSlot).copyAndForget(); };
    };
    expectReport("Already destructed 1", objCopy(nullptr));
    expectReport("Already destructed 2", objCopy(&objDead));
    expectReport("Already destructed 3", objCopy(&objEmpty));
    // The last of them unlocked its slot, or this would wait for ever.
    std::jthread([&] { EXPECT_EQ(objEmpty.lock(), 0); }).join();
}

TEST_F(SafePointerTest, HolderOfAnotherObjectsSlotIsToldOnCopyAndAtItsEnd) {
    // The slot stays locked for good, so this happens in a process of its own.
    const std::string strOutput = outputOfChild([&] {
        SafePointer<Widget> objHolder = makeWidget();
        SafePointerSlot* const pSlot = RawHolder::slotOf(objHolder);
        Widget objStale(m_nAlive);
        const auto objCopy = [&] { RawHolder(&objStale, pSlot).copyAndForget(); };
        const auto objEnd = [&] { RawHolder(&objStale, pSlot); };
        EXPECT_EQ(thrownText<KXRuntimeError>(objCopy), "not valid pointer in inc_reference ");
        EXPECT_EQ(thrownText<KXRuntimeError>(objEnd), "not valid pointer in dec_reference");
        objHolder = makeWidget();  // and now the slot has no object at all
        EXPECT_EQ(thrownText<KXRuntimeError>(objCopy), "not valid pointer in inc_reference ");
    });
    EXPECT_EQ(strOutput, "");
}

TEST_F(SafePointerTest, WrapSafeFreesTheObjectWhenTheTableIsFull) {
    struct Token : Widget {
        using Widget::Widget;
    };
    const auto objMakeToken = [&] { return wrapSafe(std::make_unique<Token>(m_nAlive)); };
    outputOfChild([&] {
        std::vector<SafePointer<Token>> vecHolders(20096);
        for (SafePointer<Token>& objHolder : vecHolders) {
            objHolder = objMakeToken();
        }
        const auto pobjRaw = std::make_unique<Token>(m_nAlive);
        const auto objWrapRaw = [&] { SafePointer<Token> objHolder(pobjRaw.get()); };
        EXPECT_THAT(thrownText<KXRuntimeError>(objWrapRaw),
                    testing::HasSubstr("(" + std::string(typeid(Token).name()) + ",20096)"));
        EXPECT_EQ(m_nAlive, 20097);  // a raw pointer stays with the caller
        EXPECT_THROW(objMakeToken(), KXRuntimeError);
        EXPECT_EQ(m_nAlive, 20097);
        vecHolders.pop_back();
        vecHolders.push_back(objMakeToken());
        vecHolders.clear();
        EXPECT_EQ(m_nAlive, 1);
    });
}

TEST_F(SafePointerTest, OldObjectMayHoldTheSourceOfAnAssignment) {
    auto pobjFirst = std::make_unique<Gadget>(m_nAlive);
    pobjFirst->m_objNext = makeWidget();
    const SafePointer<Widget> objKept = pobjFirst->m_objNext;
    const SafePointer<Widget>& objNext = pobjFirst->m_objNext;
    SafePointer<Widget> objHead = wrapSafe<Widget>(std::move(pobjFirst));
    objHead = objNext;
    EXPECT_EQ(objHead.get(), objKept.get());
    EXPECT_EQ(m_nAlive, 1);
}

TEST_F(SafePointerTest, HoldersInManyThreadsKeepOneCount) {
    const SafePointer<Widget> objShared = makeWidget();
    std::vector<std::jthread> vecThreads;
    for (int nThread = 0; nThread < 4; ++nThread) {
        vecThreads.emplace_back([&] {
            for (int nRound = 0; nRound < 300; ++nRound) {
                const SafePointer<Widget> objCopy = objShared;
                const SafePointer<Widget> objNew = makeWidget();
                EXPECT_NE(objCopy.get(), objNew.get());
            }
        });
    }
    vecThreads.clear();
    EXPECT_EQ(m_nAlive, 1);
}
