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

void requireValid(const KXMutex* pobjMutex, const KXMutexHandle& objHandle, const char* pFile,
                  int nLine) {
    if (objHandle.isValid()) {
        return;
    }
    std::array<char, FailureTextSize> szText{};
    std::snprintf(szText.data(), szText.size(),
                  "Mutex(0x%" PRIxPTR ") not initialized(Key=%x),lock at line %d of %s ",
                  reinterpret_cast<std::uintptr_t>(pobjMutex), objHandle.getKey(), nLine,
                  placeName(pFile));
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
    m_pobjNative = NativeMutex::create();
    if (!m_pobjNative) {
        return CreationFailed;
    }
    m_nKey = ValidKey;
    return Done;
}

void KXMutexHandle::destroy() noexcept {
    if (isValid()) {
        m_nKey = 0;
        NativeMutex::close(std::move(m_pobjNative));
    }
}

int KXMutexHandle::lock() noexcept {
    if (!isValid()) {
        return NotValid;
    }
    m_pobjNative->lock();
    return isValid() ? Done : NotValid;
}

int KXMutexHandle::unlock() noexcept {
    if (!isValid()) {
        return NotValid;
    }
    m_pobjNative->unlock();
    return Done;
}

KXMutex::KXMutex() : m_pobjHandle(std::make_unique<KXMutexHandle>()) {}

KXMutex::~KXMutex() = default;

int KXMutex::lock(const char* pFile, int nLine) KX_NO_THREAD_SAFETY_ANALYSIS {
    requireValid(this, *m_pobjHandle, pFile, nLine);
    m_pobjHandle->lock();
    return KXMutexHandle::Done;
}

int KXMutex::unlock(const char* pFile, int nLine) KX_NO_THREAD_SAFETY_ANALYSIS {
    requireValid(this, *m_pobjHandle, pFile, nLine);
    m_pobjHandle->unlock();
    return KXMutexHandle::Done;
}

int KXMutex::lock() {
    return lock(HeaderPath, HeaderLockLine);
}

int KXMutex::unlock() {
    return unlock(HeaderPath, HeaderUnlockLine);
}

KXMutexGuard::KXMutexGuard(KXMutex& objMutex, const char* pFile, int nLine)
    : m_pobjMutex(&objMutex) {
    objMutex.lock(pFile, nLine);
}

KXMutexGuard::~KXMutexGuard() noexcept(false) {
    m_pobjMutex->unlock(HeaderPath, GuardUnlockLine);
}
