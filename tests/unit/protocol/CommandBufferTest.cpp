// The byte block of encoders and transports.
#include <gtest/gtest.h>

#include "protocol/CommandBuffer.h"
#include "support/WireBytes.h"

namespace {

const std::uint8_t Bytes[] = {1, 2, 3, 4, 5};

// The whole block, its content and what stands behind it.
std::string blockOf(const CommandBuffer& buffer) {
    return {reinterpret_cast<const char*>(buffer.data()), buffer.getCapacity()};
}

TEST(CommandBufferTest, SizesThatAreNoPositiveSignedNumberAreRefused) {
    CommandBuffer empty;
    CommandBuffer filled = bufferOf("abc");
    for (const std::uint64_t nSize : {0ULL, 0x80000000ULL, ~0ULL}) {
        EXPECT_FALSE(empty.allocate(nSize));
        EXPECT_FALSE(empty.grow(nSize));
        EXPECT_FALSE(filled.grow(nSize));
    }
    EXPECT_EQ(empty.data(), nullptr);
    EXPECT_EQ(empty.getCapacity(), 0U);
    EXPECT_EQ(bytesOf(filled), "abc");
}

TEST(CommandBufferTest, AllocatingAgainRewindsAndZeroesTheBlock) {
    CommandBuffer buffer = bufferOf("abcde");
    const auto* pBefore = buffer.data();
    ASSERT_TRUE(buffer.allocate(5));
    EXPECT_EQ(buffer.data(), pBefore);
    EXPECT_EQ(buffer.getLength(), 0U);
    EXPECT_EQ(blockOf(buffer), std::string(5, '\0'));

    ASSERT_TRUE(buffer.append(Bytes, 5));
    ASSERT_TRUE(buffer.allocate(6));
    EXPECT_EQ(buffer.getLength(), 0U);
    EXPECT_EQ(blockOf(buffer), std::string(6, '\0'));
}

TEST(CommandBufferTest, WhatDoesNotFitWritesNothing) {
    CommandBuffer buffer;
    EXPECT_FALSE(buffer.append(Bytes, 1)) << "no block";
    buffer = bufferOf("abcd", 1);
    EXPECT_FALSE(buffer.append(nullptr, 1));
    EXPECT_FALSE(buffer.append(Bytes, 2));
    EXPECT_FALSE(buffer.append(Bytes, 0xFFFFFFFFU));
    EXPECT_FALSE(buffer.append(std::uint16_t{1}));
    EXPECT_FALSE(buffer.append(std::uint32_t{1}));
    EXPECT_FALSE(buffer.append(bufferOf("ab")));
    EXPECT_FALSE(buffer.append(CommandBuffer()));
    EXPECT_EQ(buffer.getLength(), 4U);
    EXPECT_EQ(blockOf(buffer), std::string("abcd\0", 5));
}

TEST(CommandBufferTest, LengthIsClampedToTheCapacity) {
    CommandBuffer buffer = bufferOf("abc", 2);
    buffer.setLength(6);
    EXPECT_EQ(blockOf(buffer), bytesOf(buffer));
    buffer.release();
    buffer.setLength(1);
    EXPECT_EQ(buffer.getLength(), 0U);
}

TEST(CommandBufferTest, GrowingKeepsTheBytesAndNeverShrinks) {
    CommandBuffer buffer;
    ASSERT_TRUE(buffer.grow(3));
    ASSERT_TRUE(buffer.append(Bytes, 3));
    for (const std::uint64_t nCapacity : {6U, 2U}) {
        EXPECT_TRUE(buffer.grow(nCapacity));
        EXPECT_EQ(blockOf(buffer), std::string("\1\2\3\0\0\0", 6));
        EXPECT_EQ(buffer.getLength(), 3U);
    }
}

TEST(CommandBufferTest, MovingLeavesNoBlockBehind) {
    CommandBuffer first = bufferOf("abc");
    CommandBuffer second = bufferOf("old content");
    second = std::move(first);
    EXPECT_EQ(blockOf(second), "abc");
    EXPECT_EQ(first.data(), nullptr);
    EXPECT_EQ(first.getCapacity() + first.getLength(), 0U);
}

}  // namespace
