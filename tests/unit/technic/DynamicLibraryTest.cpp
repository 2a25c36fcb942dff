// Shared libraries that are opened by name.
#include <gtest/gtest.h>

#include <utility>

#include "Product/Technic/platform/DynamicLibrary.h"

TEST(DynamicLibrary, FindsFunctionsByNameWhileItIsOpen) {
    DynamicLibrary objFirst;
    EXPECT_EQ(objFirst.symbol("abs"), nullptr);
    ASSERT_TRUE(objFirst.open("libc.so.6"));
    DynamicLibrary objLibrary = std::move(objFirst);
    EXPECT_FALSE(objFirst.isOpen());
    auto* const pAbs = objLibrary.function<int(int)>("abs");
    ASSERT_NE(pAbs, nullptr);
    EXPECT_EQ(pAbs(-3), 3);
    EXPECT_EQ(objLibrary.symbol("no_such_function_anywhere"), nullptr);
    EXPECT_FALSE(objLibrary.open("libNoSuchLibraryAnywhere.so"));
    EXPECT_FALSE(objLibrary.isOpen()) << "what was open before is closed";
    EXPECT_EQ(objLibrary.symbol("abs"), nullptr);
    EXPECT_FALSE(objLibrary.open(""));
}
