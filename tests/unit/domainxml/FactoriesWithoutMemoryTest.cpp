// What the look-ups of records and mappers give when the process has no memory left.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "domain/DomainFactory.h"
#include "domainxml/DomainXmlFactory.h"

namespace {

thread_local bool g_bNoMemory = false;

// Whether a look-up gives nothing, and raises nothing, while every allocation fails.
template <class LookUp>
bool givesNothing(const LookUp& lookUp) {
    g_bNoMemory = true;
    const bool bNothing = lookUp() == nullptr;
    g_bNoMemory = false;
    return bNothing;
}

}  // namespace

void* operator new(std::size_t nSize, const std::nothrow_t&) noexcept {
    return g_bNoMemory ? nullptr : std::malloc(nSize);
}

void* operator new(std::size_t nSize) {
    void* pMemory = ::operator new(nSize, std::nothrow);
    return pMemory != nullptr ? pMemory : throw std::bad_alloc();
}

void operator delete(void* pMemory) noexcept {
    std::free(pMemory);
}

void operator delete(void* pMemory, std::size_t) noexcept {
    std::free(pMemory);
}

TEST(Factories, GiveNothingWithoutMemory) {
    const std::string strSingle = "NTPParam";
    const std::string strList = "NTPParamList";
    EXPECT_TRUE(givesNothing([&] { return createSingleDomain(strSingle); }));
    EXPECT_TRUE(givesNothing([&] { return createListDomain(strList); }));
    EXPECT_TRUE(givesNothing([&] { return createDomain(strList); }));
    EXPECT_TRUE(givesNothing([&] { return createDomainXml(206); }));
    EXPECT_FALSE(createDomain(strList) == nullptr || createDomainXml(206) == nullptr);
}
