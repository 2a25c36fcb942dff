// The checked mutex: its codes, its one failure text, and what re-entrant means.
#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <thread>

#include "Product/Technic/KXMutex.h"

namespace {

std::string failureText(const KXMutex& objMutex, int nLine, const char* pFile) {
    char szText[256];
    std::snprintf(szText, sizeof szText,
                  "Mutex(0x%" PRIxPTR ") not initialized(Key=0),lock at line %d of %s ",
                  reinterpret_cast<std::uintptr_t>(&objMutex), nLine, pFile);
    return szText;
}

template <class Action>
std::string textOfFailure(const Action& objAction) {
    try {
        objAction();
    } catch (const std::runtime_error& objError) {
        return objError.what();
    }
    return "nothing was thrown";
}

// The compiler's lock analysis would refuse the misuse that is tested here.
template <class... Place>
int rawLock(KXMutex& objMutex, Place... objPlace) KX_NO_THREAD_SAFETY_ANALYSIS {
    return objMutex.lock(objPlace...);
}

template <class... Place>
int rawUnlock(KXMutex& objMutex, Place... objPlace) KX_NO_THREAD_SAFETY_ANALYSIS {
    return objMutex.unlock(objPlace...);
}

// Whether another thread gets the mutex; it is given back.
void lockElsewhere(KXMutex& objMutex, int& nRounds) {
    std::thread([&] {
        rawLock(objMutex);
        ++nRounds;
        rawUnlock(objMutex);
    }).join();
}

}  // namespace

TEST(KXMutexHandle, InitOnLiveHandleReportsItAndChangesNothing) {
    KXMutexHandle objHandle;
    ASSERT_TRUE(objHandle.isValid());
    EXPECT_EQ(objHandle.init(), -1);
    EXPECT_EQ(objHandle.getKey(), 0x55AA55AAu);
    EXPECT_EQ(objHandle.lock(), 0);
    EXPECT_EQ(objHandle.unlock(), 0);
}

TEST(KXMutexHandle, DestroyedHandleRefusesAndCanBeMadeAgain) {
    KXMutexHandle objHandle;
    objHandle.destroy();
    EXPECT_EQ(objHandle.getKey(), 0u);
    EXPECT_EQ(objHandle.lock(), -2);
    EXPECT_EQ(objHandle.unlock(), -2);
    EXPECT_EQ(objHandle.init(), 0);
    EXPECT_EQ(objHandle.lock(), 0);
    objHandle.destroy();  // while it is held
    EXPECT_FALSE(objHandle.isValid());
}

TEST(KXMutex, ClearedKeyIsToldWithThePlaceOfTheCall) {
    KXMutex objMutex;
    objMutex.getHandle().destroy();
    EXPECT_EQ(textOfFailure([&] { rawLock(objMutex, "Caller.cpp", 12); }),
              failureText(objMutex, 12, "Caller.cpp"));
    EXPECT_EQ(textOfFailure([&] { rawUnlock(objMutex, "some/dir/Caller.cpp", 13); }),
              failureText(objMutex, 13, "Caller.cpp"));
    EXPECT_EQ(textOfFailure([&] { rawLock(objMutex); }),
              failureText(objMutex, 34, "Product/Technic/KXMutex"));
    EXPECT_EQ(textOfFailure([&] { rawUnlock(objMutex); }),
              failureText(objMutex, 35, "Product/Technic/KXMutex"));
}

TEST(KXMutex, LongFileNameIsCutToTheTextsBuffer) {
    KXMutex objMutex;
    objMutex.getHandle().destroy();
    const std::string strName(1000, 'n');
    EXPECT_EQ(textOfFailure([&] { rawLock(objMutex, strName.c_str(), 1); }).size(), 255u);
}

TEST(KXMutexGuard, NamesItsOwnPlaceOnLockAndTheHeadersOnUnlock) {
    KXMutex objMutex;
    EXPECT_EQ(textOfFailure([&] {
                  const KXMutexGuard objGuard(objMutex);
                  objMutex.getHandle().destroy();
              }),
              failureText(objMutex, 71, "Product/Technic/KXMutex"));
    // Outside of the macro, whose lines the compilers count differently.
    const int nLine = __LINE__ + 1;
    const auto open = [&] { const KXMutexGuard objGuard(objMutex); };
    EXPECT_EQ(textOfFailure(open), failureText(objMutex, nLine, "KXMutexTest.cpp"));
}

TEST(KXMutexGuard, UnlocksWhenAnExceptionPassesThrough) {
    KXMutex objMutex;
    EXPECT_THROW(
        {
            const KXMutexGuard objGuard(objMutex);
            throw std::logic_error("passing");
        },
        std::logic_error);
    int nRounds = 0;
    lockElsewhere(objMutex, nRounds);
    EXPECT_EQ(nRounds, 1);
}

TEST(KXMutex, IsFreeAfterAsManyUnlocksAsLocks) {
    KXMutex objMutex;
    int nShared = 0;
    rawLock(objMutex);
    rawLock(objMutex);
    std::thread objOther([&] {
        const KXMutexGuard objGuard(objMutex);
        ++nShared;
    });
    rawUnlock(objMutex);
    EXPECT_EQ(nShared, 0);  // the other thread still waits; a race here would be reported
    rawUnlock(objMutex);
    objOther.join();
    EXPECT_EQ(nShared, 1);
}

TEST(KXMutex, UnlockByAnotherThreadDoesNotFreeIt) {
    KXMutex objMutex;
    rawLock(objMutex);
    std::thread([&] { EXPECT_EQ(rawUnlock(objMutex), 0); }).join();
    int nShared = 0;
    std::thread objOther([&] {
        const KXMutexGuard objGuard(objMutex);
        ++nShared;
    });
    EXPECT_EQ(nShared, 0);
    rawUnlock(objMutex);
    objOther.join();
}

TEST(KXMutex, GoesToTheNextThreadWhenItsOwnerEnded) {
    KXMutex objMutex;
    std::thread([&] {
        rawLock(objMutex);
        rawLock(objMutex);
    }).join();
    EXPECT_EQ(rawLock(objMutex), 0);
    EXPECT_EQ(rawUnlock(objMutex), 0);
    int nRounds = 0;
    lockElsewhere(objMutex, nRounds);
    EXPECT_EQ(nRounds, 1);
}

TEST(KXMutex, KeepsThreadsApart) {
    KXMutex objMutex;
    int nCount = 0;
    const auto objWork = [&] {
        for (int nRound = 0; nRound < 2000; ++nRound) {
            const KXMutexGuard objGuard(objMutex);
            ++nCount;
        }
    };
    std::thread objFirst(objWork);
    std::thread objSecond(objWork);
    objFirst.join();
    objSecond.join();
    EXPECT_EQ(nCount, 4000);
}
