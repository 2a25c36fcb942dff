// The checked mutex: its codes, its one failure text, and what re-entrant means.
#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <thread>

#include "Product/Technic/KXMutex.h"
#include "Product/Technic/platform/Clock.h"
#include "support/ThrownText.h"

namespace {

// The compiler's lock analysis would refuse the misuse that is tested here.
template <class... Place>
int rawLock(KXMutex& objMutex, Place... objPlace) KX_NO_THREAD_SAFETY_ANALYSIS {
    return objMutex.lock(objPlace...);
}

template <class... Place>
int rawUnlock(KXMutex& objMutex, Place... objPlace) KX_NO_THREAD_SAFETY_ANALYSIS {
    return objMutex.unlock(objPlace...);
}

// A mutex whose key gets lost, and the text that its use ends with.
class KXMutexTest : public testing::Test {
protected:
    template <class Action>
    void expectFailure(int nLine, const char* pFile, const Action& objAction) {
        char szText[256];
        std::snprintf(szText, sizeof szText,
                      "Mutex(0x%" PRIxPTR ") not initialized(Key=0),lock at line %d of %s ",
                      reinterpret_cast<std::uintptr_t>(&m_objMutex), nLine, pFile);
        EXPECT_EQ(thrownText<std::runtime_error>(objAction), szText);
    }

    KXMutex m_objMutex;
};

}  // namespace

TEST(KXMutexHandle, TellsByItsKeyWhetherItIsAlive) {
    KXMutexHandle objHandle;
    EXPECT_EQ(objHandle.init(), -1);
    EXPECT_EQ(objHandle.getKey(), 0x55AA55AAu);
    EXPECT_EQ(objHandle.lock(), 0);
    objHandle.destroy();  // while it is held
    EXPECT_EQ(objHandle.getKey(), 0u);
    EXPECT_EQ(objHandle.lock(), -2);
    EXPECT_EQ(objHandle.unlock(), -2);
    EXPECT_EQ(objHandle.init(), 0);
    EXPECT_EQ(objHandle.lock(), 0);
    EXPECT_EQ(objHandle.unlock(), 0);
}

TEST_F(KXMutexTest, UseIsToldWithThePlaceOfTheCall) {
    constexpr const char* Header = "Product/Technic/KXMutex";
    expectFailure(71, Header, [&] {
        const KXMutexGuard objGuard(m_objMutex);
        m_objMutex.getHandle().destroy();
    });
    expectFailure(34, Header, [&] { rawLock(m_objMutex); });
    expectFailure(35, Header, [&] { rawUnlock(m_objMutex); });
    expectFailure(12, "Caller.cpp", [&] { rawLock(m_objMutex, "Caller.cpp", 12); });
    expectFailure(13, "Caller.cpp", [&] { rawUnlock(m_objMutex, "some/dir/Caller.cpp", 13); });
    const auto objOpen = [&] { const KXMutexGuard objGuard(m_objMutex); };
    expectFailure(__LINE__ - 1, "KXMutexTest.cpp", objOpen);
    const std::string strLong(1000, 'n');  // cut to the buffer of the text
    expectFailure(1, strLong.c_str(), [&] { rawLock(m_objMutex, strLong.c_str(), 1); });
}

TEST(KXMutex, IsFreeAfterAsManyUnlocksOfItsOwnerAsLocks) {
    KXMutex objMutex;
    int nShared = 0;
    rawLock(objMutex);
    rawLock(objMutex);
    std::jthread objOther([&] {
        const KXMutexGuard objGuard(objMutex);
        ++nShared;
    });
    rawUnlock(objMutex);
    std::jthread([&] { EXPECT_EQ(rawUnlock(objMutex), 0); }).join();
    currentClock().sleepMs(20);  // were it free, the other thread would have it by now
    EXPECT_EQ(nShared, 0);
    rawUnlock(objMutex);
    objOther.join();
    EXPECT_EQ(nShared, 1);
}

TEST(KXMutex, GoesToTheNextThreadWhenItsOwnerEnded) {
    KXMutex objMutex;
    std::jthread([&] {
        rawLock(objMutex);
        rawLock(objMutex);
    }).join();
    EXPECT_EQ(rawLock(objMutex), 0);
    EXPECT_EQ(rawUnlock(objMutex), 0);
    std::jthread([&] { const KXMutexGuard objGuard(objMutex); }).join();
}
