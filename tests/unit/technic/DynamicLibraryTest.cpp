// Shared libraries that are opened by name.
#include <utility>

#include "Product/Technic/platform/DynamicLibrary.h"
#include "gtest/gtest.h"

namespace {

TEST(DynamicLibrary, FindsFunctionsByName) {
    DynamicLibrary library;
    EXPECT_EQ(nullptr, library.symbol("abs"));
    ASSERT_TRUE(library.open("libc.so.6"));
    DynamicLibrary moved = std::move(library);
    EXPECT_FALSE(library.isOpen());
    auto* pAbs = moved.function<int(int)>("abs");
    ASSERT_NE(nullptr, pAbs);
    EXPECT_EQ(3, pAbs(-3));
    EXPECT_EQ(nullptr, moved.symbol("no_such_function_anywhere"));
    moved.close();
    EXPECT_EQ(nullptr, moved.symbol("abs"));
}

TEST(DynamicLibrary, AMissingLibraryIsNotOpened) {
    DynamicLibrary library;
    ASSERT_TRUE(library.open("libc.so.6"));
    EXPECT_FALSE(library.open("libNoSuchLibraryAnywhere.so"));
    EXPECT_FALSE(library.isOpen());
    EXPECT_FALSE(library.open(""));
}

}  // namespace
