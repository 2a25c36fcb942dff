// Shared libraries that are opened by name.
#include <gtest/gtest.h>

#include <utility>

#include "Product/Technic/platform/DynamicLibrary.h"

TEST(DynamicLibrary, FindsFunctionsByNameWhileItIsOpen) {
    DynamicLibrary first;
    EXPECT_EQ(first.symbol("abs"), nullptr);
    ASSERT_TRUE(first.open("libc.so.6"));
    DynamicLibrary library = std::move(first);
    EXPECT_FALSE(first.isOpen());
    auto* const pAbs = library.function<int(int)>("abs");
    ASSERT_NE(pAbs, nullptr);
    EXPECT_EQ(pAbs(-3), 3);
    EXPECT_EQ(library.symbol("no_such_function_anywhere"), nullptr);
    EXPECT_FALSE(library.open("libNoSuchLibraryAnywhere.so"));
    EXPECT_FALSE(library.isOpen()) << "what was open before is closed";
    EXPECT_EQ(library.symbol("abs"), nullptr);
    EXPECT_FALSE(library.open(""));
}
