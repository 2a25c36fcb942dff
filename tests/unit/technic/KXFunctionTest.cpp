// Function objects: what they call, and who owns the callable.
#include <gtest/gtest.h>

#include <memory>

#include "Product/Technic/KXFunction.h"
#include "Product/Technic/KXRuntimeError.h"
#include "support/CapturedOutput.h"

using Function = KX_FUNCTION::function<int>;

TEST(KXFunction, CopiesShareOneCallableWhichGoesWithTheLast) {
    struct Counter {
        int next() { return ++m_nCount; }
        int m_nCount = 0;
    } counter;
    const Function bound(KX_FUNCTION::bind_funcobj0<int, Counter>(&Counter::next, &counter));
    EXPECT_EQ(bound(), 1);
    EXPECT_EQ(counter.m_nCount, 1) << "of the object itself";

    const auto pToken = std::make_shared<int>(0);
    {
        const Function first([pToken, nCalls = 0]() mutable { return ++nCalls; });
        {
            const Function second = first;
            EXPECT_EQ(first(), 1);
            EXPECT_EQ(second(), 2);
        }
        EXPECT_EQ(pToken.use_count(), 2);
    }
    EXPECT_EQ(pToken.use_count(), 1);
}

TEST(KXFunction, EmptyFunctionCanBeNeitherCopiedNorCalled) {
    const Function empty;
    captureOutput([&] {
        EXPECT_THROW(Function copy(empty), KXRuntimeError);
        EXPECT_THROW(empty(), KXRuntimeError);
    });
}
