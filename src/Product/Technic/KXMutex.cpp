// The three levels of the checked mutex, and the text of its one failure.
#include "Product/Technic/KXMutex.h"

#include <array>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <stdexcept>

#include "Product/Technic/platform/NativeMutex.h"

namespace {

// The places that failure texts name for calls without a place of their own.
constexpr const char* HeaderPath = "Product/Technic/KXMutex";
constexpr int HeaderLockLine = 34;
constexpr int HeaderUnlockLine = 35;
constexpr int GuardUnlockLine = 71;

constexpr std::size_t FailureTextSize = 256;

const char* placeName(const char* pFile) noexcept {
    if (pFile == nullptr || pFile == HeaderPath) {
        return pFile == nullptr ? "" : pFile;
    }
    const char* pSlash = std::strrchr(pFile, '/');
    return pSlash == nullptr ? pFile : pSlash + 1;
}

[[noreturn]] void tellInvalid(const KXMutex* pMutex, std::uint32_t nKey, const char* pFile,
                              int nLine) {
    std::array<char, FailureTextSize> szText{};
    std::snprintf(szText.data(), szText.size(),
                  "Mutex(0x%" PRIxPTR ") not initialized(Key=%x),lock at line %d of %s ",
                  reinterpret_cast<std::uintptr_t>(pMutex), nKey, nLine, placeName(pFile));
    throw std::runtime_error(szText.data());
}

}  // namespace

KXMutexHandle::KXMutexHandle() noexcept {
    init();
}

KXMutexHandle::~KXMutexHandle() {
    destroy();
}

int KXMutexHandle::init() noexcept {
    if (isValid()) {
        return AlreadyInitialised;
    }
    m_pNative = NativeMutex::create();
    if (!m_pNative) {
        return CreationFailed;
    }
    m_nKey = ValidKey;
    return Done;
}

void KXMutexHandle::destroy() noexcept {
    if (isValid()) {
        m_nKey = 0;
        NativeMutex::close(std::move(m_pNative));
    }
}

int KXMutexHandle::lock() noexcept {
    if (!isValid()) {
        return NotValid;
    }
    m_pNative->lock();
    return isValid() ? Done : NotValid;
}

int KXMutexHandle::unlock() noexcept {
    if (!isValid()) {
        return NotValid;
    }
    m_pNative->unlock();
    return Done;
}

KXMutex::KXMutex() : m_pHandle(std::make_unique<KXMutexHandle>().release()) {}

KXMutex::~KXMutex() {
    delete m_pHandle.exchange(nullptr);
}

KXMutexHandle& KXMutex::validHandle(const char* pFile, int nLine) const {
    KXMutexHandle* pHandle = m_pHandle.load(std::memory_order_relaxed);
    if (pHandle == nullptr || !pHandle->isValid()) {
        tellInvalid(this, pHandle == nullptr ? 0 : pHandle->getKey(), pFile, nLine);
    }
    return *pHandle;
}

int KXMutex::lock(const char* pFile, int nLine) KX_NO_THREAD_SAFETY_ANALYSIS {
    validHandle(pFile, nLine).lock();
    return KXMutexHandle::Done;
}

int KXMutex::unlock(const char* pFile, int nLine) KX_NO_THREAD_SAFETY_ANALYSIS {
    validHandle(pFile, nLine).unlock();
    return KXMutexHandle::Done;
}

int KXMutex::lock() {
    return lock(HeaderPath, HeaderLockLine);
}

int KXMutex::unlock() {
    return unlock(HeaderPath, HeaderUnlockLine);
}

KXMutexGuard::KXMutexGuard(KXMutex& mutex, const char* pFile, int nLine) : m_pMutex(&mutex) {
    mutex.lock(pFile, nLine);
}

KXMutexGuard::~KXMutexGuard() noexcept(false) {
    m_pMutex->unlock(HeaderPath, GuardUnlockLine);
}
