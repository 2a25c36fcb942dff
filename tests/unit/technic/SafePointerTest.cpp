// Safe pointers: counting, and the fixed text of every misuse.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
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

// The text that an action throws; what it printed must be that text, or nothing when not reported.
std::string thrownBy(const std::function<void()>& objAction, bool bReported) {
    std::string strText = "nothing was thrown";
    const std::string strPrinted = captureOutput([&] {
        try {
            objAction();
        } catch (const KXRuntimeError& objError) {
            strText = objError.what();
        }
    });
    EXPECT_EQ(strPrinted, bReported ? strText + "\n" : "");
    return strText;
}

std::string reportOf(const std::string& strMessage) {
    return std::string("SafePointer Report:") + typeid(Widget).name() + " " + strMessage;
}

class SafePointerTest : public testing::Test {
protected:
    SafePointer<Widget> makeWidget() { return wrapSafe(std::make_unique<Widget>(m_nAlive)); }

    std::atomic<int> m_nAlive{0};
};

}  // namespace

TEST_F(SafePointerTest, LastHolderDeletesTheObjectOnce) {
    {
        SafePointer<Widget> objFirst = makeWidget();
        {
            const SafePointer<Widget> objSecond = objFirst;
            EXPECT_EQ(objSecond.get(), objFirst.get());
        }
        EXPECT_EQ(m_nAlive, 1);
        objFirst = *&objFirst;  // to itself: nothing happens
        EXPECT_EQ(m_nAlive, 1);
        objFirst = makeWidget();
        EXPECT_EQ(m_nAlive, 1);
    }
    EXPECT_EQ(m_nAlive, 0);
}

TEST_F(SafePointerTest, ConvertsToItsBaseAndDeletesThroughIt) {
    SafePointer<Widget> objBase;
    {
        const SafePointer<Gadget> objDerived = wrapSafe(std::make_unique<Gadget>(m_nAlive));
        objBase = objDerived;
    }
    EXPECT_EQ(m_nAlive, 1);
    objBase = wrapSafe<Widget>(std::make_unique<Gadget>(m_nAlive));
    EXPECT_EQ(m_nAlive, 1);
}

TEST_F(SafePointerTest, NullHolderCanBeAskedAssignedAndDestroyed) {
    SafePointer<Widget> objNull;
    EXPECT_TRUE(objNull.isNull());
    EXPECT_EQ(objNull.get(), nullptr);
    objNull = *&objNull;
    objNull = makeWidget();
    EXPECT_FALSE(objNull.isNull());
}

TEST_F(SafePointerTest, MisuseOfNullIsReported) {
    const SafePointer<Widget> objNull;
    const SafePointer<Gadget> objNullGadget;
    SafePointer<Widget> objTarget = makeWidget();
    Widget* const pBefore = objTarget.get();
    const struct {
        const char* m_pMessage;
        std::function<void()> m_objMisuse;
    } arrCases[] = {
        {"Construct from NULL original pointer",
         [] { SafePointer<Widget> objHolder(static_cast<Widget*>(nullptr)); }},
        {"Construct from NULL <T>pointer", [&] { SafePointer<Widget> objCopy(objNull); }},
        {"Construct from NULL <T>pointer", [&] { SafePointer<Widget> objCopy(objNullGadget); }},
        {"Assigned NULL <T>pointer", [&] { objTarget = objNull; }},
        {"Use NULL pointer ->", [&] { static_cast<void>(objNull->m_nAlive); }},
        {"Use NULL pointer *", [&] { static_cast<void>(*objNull); }},
    };
    for (const auto& objCase : arrCases) {
        EXPECT_EQ(thrownBy(objCase.m_objMisuse, true), reportOf(objCase.m_pMessage));
    }
    EXPECT_EQ(objTarget.get(), pBefore);
    EXPECT_EQ(m_nAlive, 1);
}

TEST_F(SafePointerTest, CopyOfADestructedHolderIsReported) {
    Widget objWidget(m_nAlive);
    LooseSlot objDeadSlot(&objWidget);
    objDeadSlot.getMutex().destroy();
    LooseSlot objEmptySlot(&objWidget);
    const struct {
        SafePointerSlot* m_pSlot;
        const char* m_pMessage;
    } arrCases[] = {
        {nullptr, "Already destructed 1"},
        {&objDeadSlot, "Already destructed 2"},
        {&objEmptySlot, "Already destructed 3"},
    };
    for (const auto& objCase : arrCases) {
        RawHolder objHolder(&objWidget, objCase.m_pSlot);
        EXPECT_EQ(thrownBy([&] { objHolder.copyAndForget(); }, true), reportOf(objCase.m_pMessage));
    }
    // The last of them unlocked its slot, or this would wait for ever.
    std::thread([&] { EXPECT_EQ(objEmptySlot.lock(), 0); }).join();
}

TEST_F(SafePointerTest, StaleHolderIsToldOnCopyAndAtItsEnd) {
    // The slot stays locked for good, so this happens in a process of its own.
    outputOfChild([&] {
        SafePointer<Widget> objHolder = makeWidget();
        Widget* const pGone = objHolder.get();
        SafePointerSlot* const pSlot = RawHolder::slotOf(objHolder);
        objHolder = makeWidget();
        ASSERT_EQ(m_nAlive, 1);

        const auto objCopyStale = [&] {
            RawHolder objStale(pGone, pSlot);
            objStale.copyAndForget();
        };
        const auto objEndStale = [&] { RawHolder objStale(pGone, pSlot); };
        EXPECT_EQ(thrownBy(objCopyStale, false), "not valid pointer in inc_reference ");
        EXPECT_EQ(thrownBy(objEndStale, false), "not valid pointer in dec_reference");

        const SafePointer<Widget> objReuser = wrapSafe(std::make_unique<Widget>(m_nAlive));
        ASSERT_EQ(RawHolder::slotOf(objReuser), pSlot);
        Widget objElsewhere(m_nAlive);
        const auto objCopyReused = [&] {
            RawHolder objStale(&objElsewhere, pSlot);
            objStale.copyAndForget();
        };
        EXPECT_EQ(thrownBy(objCopyReused, false), "not valid pointer in inc_reference ");
    });
}

TEST_F(SafePointerTest, WrapSafeFreesTheObjectWhenTheTableIsFull) {
    struct Token : Widget {
        using Widget::Widget;
    };
    const auto objMakeToken = [&] { return wrapSafe(std::make_unique<Token>(m_nAlive)); };
    outputOfChild([&] {
        std::vector<SafePointer<Token>> vecHolders;
        vecHolders.reserve(20096);
        while (vecHolders.size() < 20096) {
            vecHolders.push_back(objMakeToken());
        }
        const auto pobjRaw = std::make_unique<Token>(m_nAlive);
        const std::string strText =
            thrownBy([&] { SafePointer<Token> objHolder(pobjRaw.get()); }, false);
        EXPECT_THAT(strText, testing::StartsWith("too much safe poniter(NameMapSize="));
        EXPECT_THAT(strText,
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
    {
        const SafePointer<Widget> objShared = makeWidget();
        std::vector<std::thread> vecThreads;
        for (int nThread = 0; nThread < 4; ++nThread) {
            vecThreads.emplace_back([&] {
                const SafePointer<Widget> objOwn = objShared;
                for (int nRound = 0; nRound < 300; ++nRound) {
                    const SafePointer<Widget> objCopy = objOwn;
                    const SafePointer<Widget> objNew = makeWidget();
                    EXPECT_NE(objCopy.get(), objNew.get());
                }
            });
        }
        for (std::thread& objThread : vecThreads) {
            objThread.join();
        }
        EXPECT_EQ(m_nAlive, 1);
    }
    EXPECT_EQ(m_nAlive, 0);
}
