#include "torture/Faults.h"

#include <netdb.h>
#include <poll.h>
#include <pthread.h>
#include <sys/socket.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <utility>

namespace {

struct Call {
    const char* szName;
    int nError;
};

enum CallId { New, Socket, Connect, Send, Recv, Poll, SetOption, Flags, Thread, Resolve, Open };

constexpr Call Calls[] = {{"new", ENOMEM},
                          {"socket", EMFILE},
                          {"connect", ENETUNREACH},
                          {"send", EPIPE},
                          {"recv", ECONNRESET},
                          {"poll", ENOMEM},
                          {"setsockopt", ENOBUFS},
                          {"fcntl", EBADF},
                          {"pthread_create", EAGAIN},
                          {"getaddrinfo", EAI_MEMORY},
                          {"fopen", EMFILE}};

constexpr int Never = -1;

std::atomic<int> g_nFailing{Never};  // a CallId
std::atomic<int> g_nLeft{0};         // how many of that call go well before
std::atomic<const std::vector<std::size_t>*> g_pSizes{nullptr};  // of pieces; null is any
std::atomic<std::size_t> g_nPieces{0};

// Whether this call is the one to fail, with errno set.
bool fails(CallId call) {
    if (g_nFailing != call || g_nLeft.fetch_sub(1) != 0) {
        return false;
    }
    errno = Calls[call].nError;
    return true;
}

std::size_t piece(std::size_t nLength) {
    const std::vector<std::size_t>* pSizes = g_pSizes;
    return pSizes == nullptr ? nLength : std::min(nLength, (*pSizes)[g_nPieces++ % pSizes->size()]);
}

}  // namespace

Failing::Failing(const std::string& strCall, int nFailing) {
    const auto* pCall = std::find_if(std::begin(Calls), std::end(Calls),
                                     [&](const Call& call) { return call.szName == strCall; });
    g_nLeft = nFailing;
    g_nFailing = static_cast<int>(pCall - std::begin(Calls));
}

Failing::~Failing() {
    g_nFailing = Never;
}

bool Failing::hasFailed() const {
    return g_nLeft < 0;
}

Pieces::Pieces(std::vector<std::size_t> vecSizes) : m_vecSizes(std::move(vecSizes)) {
    g_pSizes = &m_vecSizes;
}

Pieces::~Pieces() {
    g_pSizes = nullptr;
}

extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();

// What TinyXML has in its hands when memory is refused in the middle of a text is lost.
const char* __lsan_default_suppressions() {
    return "leak:TiXmlNode::Identify\nleak:TiXmlElement::Parse\n";
}

// Those of arrays as well: a sanitizer has its own, which do not come by here.
void* operator new(std::size_t nSize, const std::nothrow_t&) noexcept {
    return fails(New) ? nullptr : std::malloc(nSize);
}

void* operator new[](std::size_t nSize, const std::nothrow_t& tag) noexcept {
    return ::operator new(nSize, tag);
}

void* operator new(std::size_t nSize) {
    void* pMemory = ::operator new(nSize, std::nothrow);
    return pMemory != nullptr ? pMemory : throw std::bad_alloc();
}

void* operator new[](std::size_t nSize) {
    return ::operator new(nSize);
}

void operator delete(void* pMemory) noexcept {
    std::free(pMemory);
}

void operator delete[](void* pMemory) noexcept {
    std::free(pMemory);
}

void operator delete(void* pMemory, std::size_t) noexcept {
    std::free(pMemory);
}

void operator delete[](void* pMemory, std::size_t) noexcept {
    std::free(pMemory);
}

void operator delete(void* pMemory, const std::nothrow_t&) noexcept {
    std::free(pMemory);
}

// A call of the system: its own name is the real one, __wrap_ what the library calls.
#define FALLIBLE(id, result, name, parameters, arguments) \
    result __real_##name parameters;                      \
    result __wrap_##name parameters {                     \
        return fails(id) ? -1 : __real_##name arguments;  \
    }

extern "C" {

FALLIBLE(Socket, int, socket, (int nFamily, int nType, int nProtocol), (nFamily, nType, nProtocol))
FALLIBLE(Connect, int, connect, (int nHandle, const sockaddr* pAddress, socklen_t nLength),
         (nHandle, pAddress, nLength))
FALLIBLE(Send, ssize_t, send, (int nHandle, const void* pBytes, size_t nLength, int nFlags),
         (nHandle, pBytes, piece(nLength), nFlags))
FALLIBLE(Recv, ssize_t, recv, (int nHandle, void* pBytes, size_t nLength, int nFlags),
         (nHandle, pBytes, piece(nLength), nFlags))
FALLIBLE(Poll, int, poll, (pollfd * pEntries, nfds_t nCount, int nTimeout),
         (pEntries, nCount, nTimeout))
FALLIBLE(Poll, int, ppoll,
         (pollfd * pEntries, nfds_t nCount, const timespec* pTimeout, const sigset_t* pMask),
         (pEntries, nCount, pTimeout, pMask))
FALLIBLE(SetOption, int, setsockopt,
         (int nHandle, int nLevel, int nName, const void* pValue, socklen_t nLength),
         (nHandle, nLevel, nName, pValue, nLength))
FALLIBLE(Flags, int, fcntl, (int nHandle, int nCommand, int nArgument),
         (nHandle, nCommand, nArgument))

int __real_pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
int __wrap_pthread_create(pthread_t* pThread, const pthread_attr_t* pAttributes,
                          void* (*pEntry)(void*), void* pArgument) {
    return fails(Thread) ? errno : __real_pthread_create(pThread, pAttributes, pEntry, pArgument);
}

int __real_getaddrinfo(const char*, const char*, const addrinfo*, addrinfo**);
int __wrap_getaddrinfo(const char* szHost, const char* szService, const addrinfo* pHints,
                       addrinfo** pAnswer) {
    return fails(Resolve) ? errno : __real_getaddrinfo(szHost, szService, pHints, pAnswer);
}

FILE* __real_fopen(const char*, const char*);
FILE* __wrap_fopen(const char* szPath, const char* szMode) {
    return fails(Open) ? nullptr : __real_fopen(szPath, szMode);
}
}
