// Function objects: what they call, and who owns the callable.
#include <gtest/gtest.h>

#include <memory>

#include "Product/Technic/KXFunction.h"
#include "Product/Technic/KXRuntimeError.h"
#include "support/CapturedOutput.h"

namespace {

using Function = KX_FUNCTION::function<int>;

struct Counter {
    int next() { return ++m_nCount; }
    int m_nCount = 0;
};

}  // namespace

TEST(KXFunction, CallsABoundMemberOfTheObjectItself) {
    Counter objCounter;
    const Function objNext(KX_FUNCTION::bind_funcobj0<int, Counter>(&Counter::next, &objCounter));
    EXPECT_EQ(objNext(), 1);
    EXPECT_EQ(objCounter.m_nCount, 1);
}

TEST(KXFunction, CopiesShareOneCallableWhichGoesWithTheLast) {
    const auto pobjToken = std::make_shared<int>(0);
    {
        const Function objFirst([pobjToken, nCalls = 0]() mutable { return ++nCalls; });
        {
            const Function objSecond = objFirst;
            EXPECT_EQ(objFirst(), 1);
            EXPECT_EQ(objSecond(), 2);
        }
        EXPECT_EQ(pobjToken.use_count(), 2);
    }
    EXPECT_EQ(pobjToken.use_count(), 1);
}

TEST(KXFunction, EmptyFunctionCanBeNeitherCopiedNorCalled) {
    const Function objEmpty;
    captureOutput([&] {
        EXPECT_THROW(Function objCopy(objEmpty), KXRuntimeError);
        EXPECT_THROW(objEmpty(), KXRuntimeError);
    });
}
