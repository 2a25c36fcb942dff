// The byte block of encoders and transports.
#include <gtest/gtest.h>

#include "support/WireCommands.h"

namespace {

// The whole block, its content and what stands behind it.
std::string blockOf(const CommandBuffer& buffer) {
    return {reinterpret_cast<const char*>(buffer.data()), buffer.getCapacity()};
}

TEST(CommandBufferTest, SizesThatAreNoPositiveSignedNumberAreRefused) {
    CommandBuffer empty;
    CommandBuffer filled = bufferOf("abc");
    for (const std::uint64_t nSize : {0ULL, 0x80000000ULL, ~0ULL}) {
        EXPECT_FALSE(empty.allocate(nSize) || empty.grow(nSize) || filled.grow(nSize));
    }
    EXPECT_EQ(empty.data(), nullptr);
    EXPECT_EQ(empty.getCapacity(), 0U);
    EXPECT_EQ(bytesOf(filled), "abc");
}

TEST(CommandBufferTest, AllocatingRewindsAndZeroesWhereGrowingKeepsAndNeverShrinks) {
    CommandBuffer buffer = bufferOf("abcde");
    const auto* pBefore = buffer.data();
    for (const std::uint32_t nSize : {5U, 6U}) {
        ASSERT_TRUE(buffer.allocate(nSize));
        EXPECT_TRUE(buffer.data() == pBefore || nSize == 6U);
        EXPECT_EQ(buffer.getLength(), 0U);
        EXPECT_EQ(blockOf(buffer), std::string(nSize, '\0'));
        ASSERT_TRUE(buffer.append(bytesIn("vwxyz"), 5));
    }
    for (const std::uint64_t nCapacity : {8U, 2U}) {
        EXPECT_TRUE(buffer.grow(nCapacity));
        EXPECT_EQ(blockOf(buffer), std::string("vwxyz\0\0\0", 8));
        EXPECT_EQ(buffer.getLength(), 5U);
    }
}

TEST(CommandBufferTest, WhatDoesNotFitWritesNothing) {
    CommandBuffer buffer;
    EXPECT_FALSE(buffer.append(bytesIn("a"), 1)) << "no block";
    buffer = bufferOf("abcd", 1);
    EXPECT_FALSE(buffer.append(nullptr, 1) || buffer.append(bytesIn("ab"), 2));
    EXPECT_FALSE(buffer.append(bytesIn("ab"), 0xFFFFFFFFU));
    EXPECT_FALSE(buffer.append(std::uint16_t{1}) || buffer.append(std::uint32_t{1}));
    EXPECT_FALSE(buffer.append(bufferOf("ab")) || buffer.append(CommandBuffer()));
    EXPECT_EQ(buffer.getLength(), 4U);
    EXPECT_EQ(blockOf(buffer), std::string("abcd\0", 5));
}

TEST(CommandBufferTest, LengthIsClampedToTheCapacityAndMovingLeavesNoBlockBehind) {
    CommandBuffer first = bufferOf("abc", 2);
    CommandBuffer second = bufferOf("old content");
    first.setLength(6);
    second = std::move(first);
    EXPECT_EQ(bytesOf(second), std::string("abc\0\0", 5));
    EXPECT_EQ(blockOf(second), bytesOf(second));
    first.setLength(1);
    EXPECT_EQ(first.data(), nullptr);
    EXPECT_EQ(first.getCapacity() + first.getLength(), 0U);
}

}  // namespace
