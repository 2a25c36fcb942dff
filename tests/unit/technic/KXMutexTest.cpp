// The checked mutex: its codes, its one failure text, and what re-entrant means.
#include <gmock/gmock.h>

#include <cinttypes>
#include <cstdio>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Product/Technic/KXMutex.h"
#include "Product/Technic/platform/Clock.h"
#include "support/ThrownText.h"

namespace {

// The compiler's lock analysis would refuse the misuse that is tested here.
template <class... Place>
int rawLock(KXMutex& mutex, Place... place) KX_NO_THREAD_SAFETY_ANALYSIS {
    return mutex.lock(place...);
}

template <class... Place>
int rawUnlock(KXMutex& mutex, Place... place) KX_NO_THREAD_SAFETY_ANALYSIS {
    return mutex.unlock(place...);
}

// A mutex whose key gets lost, and the text that its use ends with.
class KXMutexTest : public testing::Test {
protected:
    template <class Action>
    void expectFailure(int nLine, const char* pFile, const Action& action) const {
        char szText[256];
        std::snprintf(szText, sizeof szText,
                      "Mutex(0x%" PRIxPTR ") not initialized(Key=0),lock at line %d of %s ",
                      reinterpret_cast<std::uintptr_t>(&m_mutex), nLine, pFile);
        EXPECT_EQ(thrownText<std::runtime_error>(action), szText);
    }

    std::optional<KXMutex> m_storage{std::in_place};
    KXMutex& m_mutex = *m_storage;
};

}  // namespace

TEST(KXMutexHandle, TellsByItsKeyWhetherItIsAlive) {
    KXMutexHandle handle;
    EXPECT_EQ(handle.init(), -1);
    EXPECT_EQ(handle.getKey(), 0x55AA55AAu);
    EXPECT_EQ(handle.lock(), 0);
    handle.destroy();  // while it is held
    EXPECT_EQ(handle.getKey(), 0u);
    EXPECT_THAT((std::vector{handle.lock(), handle.unlock()}), testing::Each(-2));
    EXPECT_THAT((std::vector{handle.init(), handle.lock(), handle.unlock()}), testing::Each(0));
}

TEST_F(KXMutexTest, UseIsToldWithThePlaceOfTheCall) {
    constexpr const char* Header = "Product/Technic/KXMutex";
    expectFailure(71, Header, [&] {
        const KXMutexGuard guard(m_mutex);
        m_mutex.getHandle().destroy();
    });
    expectFailure(34, Header, [&] { rawLock(m_mutex); });
    expectFailure(35, Header, [&] { rawUnlock(m_mutex); });
    expectFailure(12, "Caller.cpp", [&] { rawLock(m_mutex, "Caller.cpp", 12); });
    expectFailure(13, "Caller.cpp", [&] { rawUnlock(m_mutex, "some/dir/Caller.cpp", 13); });
    const auto open = [&] { const KXMutexGuard guard(m_mutex); };
    expectFailure(__LINE__ - 1, "KXMutexTest.cpp", open);
    const std::string strLong(1000, 'n');  // cut to the buffer of the text
    expectFailure(1, strLong.c_str(), [&] { rawLock(m_mutex, strLong.c_str(), 1); });
    // As a static object that is older than the library's finds them when the process ends.
    m_storage.reset();
    expectFailure(14, "Late.cpp", [&] { rawLock(m_mutex, "Late.cpp", 14); });
    expectFailure(15, "Late.cpp", [&] { rawUnlock(m_mutex, "Late.cpp", 15); });
}

TEST(KXMutex, IsFreeAfterAsManyUnlocksOfItsOwnerAsLocks) {
    KXMutex mutex;
    int nShared = 0;
    rawLock(mutex);
    rawLock(mutex);
    std::jthread other([&] {
        const KXMutexGuard guard(mutex);
        ++nShared;
    });
    rawUnlock(mutex);
    std::jthread([&] { EXPECT_EQ(rawUnlock(mutex), 0); }).join();
    currentClock().sleepMs(20);  // were it free, the other thread would have it by now
    EXPECT_EQ(nShared, 0);
    rawUnlock(mutex);
    other.join();
    EXPECT_EQ(nShared, 1);
}

TEST(KXMutex, GoesToTheNextThreadWhenItsOwnerEnded) {
    KXMutex mutex;
    std::jthread([&] {
        rawLock(mutex);
        rawLock(mutex);
    }).join();
    EXPECT_EQ(rawLock(mutex), 0);
    EXPECT_EQ(rawUnlock(mutex), 0);
    std::jthread([&] { const KXMutexGuard guard(mutex); }).join();
}
