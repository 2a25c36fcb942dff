// The byte block of encoders and transports.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "protocol/CommandBuffer.h"
#include "support/WireBytes.h"

namespace {

const std::uint8_t Bytes[] = {1, 2, 3, 4, 5};

TEST(CommandBufferTest, SizesThatAreNoPositiveSignedNumberAreRefused) {
    CommandBuffer buffer;
    EXPECT_FALSE(buffer.allocate(0));
    EXPECT_FALSE(buffer.allocate(0x80000000U));
    EXPECT_FALSE(buffer.allocate(static_cast<std::uint64_t>(-1)));
    EXPECT_EQ(buffer.data(), nullptr);
    EXPECT_EQ(buffer.getCapacity(), 0U);
}

TEST(CommandBufferTest, AllocatingTheSameSizeAgainRewindsAndZeroesTheBlock) {
    CommandBuffer buffer;
    ASSERT_TRUE(buffer.allocate(5));
    ASSERT_TRUE(buffer.append(Bytes, 5));
    const auto* pBefore = buffer.data();
    ASSERT_TRUE(buffer.allocate(5));
    EXPECT_EQ(buffer.data(), pBefore);
    EXPECT_EQ(buffer.getLength(), 0U);
    EXPECT_TRUE(std::all_of(pBefore, pBefore + 5, [](auto n) { return n == 0; }));

    ASSERT_TRUE(buffer.append(Bytes, 5));
    ASSERT_TRUE(buffer.allocate(6));
    EXPECT_EQ(buffer.getLength(), 0U);
    EXPECT_EQ(buffer.getCapacity(), 6U);
}

TEST(CommandBufferTest, WhatDoesNotFitWritesNothing) {
    CommandBuffer buffer;
    EXPECT_FALSE(buffer.append(Bytes, 1)) << "no block";
    ASSERT_TRUE(buffer.allocate(5));
    EXPECT_FALSE(buffer.append(nullptr, 1));
    ASSERT_TRUE(buffer.append(Bytes, 4));
    EXPECT_FALSE(buffer.append(Bytes, 2));
    EXPECT_FALSE(buffer.append(Bytes, 0xFFFFFFFFU));
    EXPECT_FALSE(buffer.append(std::uint16_t{1}));
    EXPECT_FALSE(buffer.append(std::uint32_t{1}));
    EXPECT_FALSE(buffer.append(bufferOf("ab")));
    EXPECT_FALSE(buffer.append(CommandBuffer()));
    EXPECT_EQ(bytesOf(buffer), "\1\2\3\4");
    EXPECT_EQ(buffer.data()[4], 0);
}

TEST(CommandBufferTest, NumbersAndBuffersAreAppendedAsTheyStand) {
    CommandBuffer buffer;
    ASSERT_TRUE(buffer.allocate(8));
    ASSERT_TRUE(buffer.append(std::uint16_t{0x4141}));
    ASSERT_TRUE(buffer.append(std::uint32_t{0x01020304}));
    ASSERT_TRUE(buffer.append(bufferOf("yz", 3)));
    const std::uint32_t nValue = 0x01020304;
    EXPECT_EQ(std::memcmp(buffer.data() + 2, &nValue, 4), 0);
    EXPECT_EQ(bytesOf(buffer).substr(0, 2) + bytesOf(buffer).substr(6), "AAyz");
}

TEST(CommandBufferTest, LengthIsClampedToTheCapacity) {
    CommandBuffer buffer = bufferOf("abc", 2);
    buffer.setLength(5);
    EXPECT_EQ(buffer.getLength(), 5U);
    buffer.setLength(6);
    EXPECT_EQ(buffer.getLength(), 5U);
    buffer.release();
    buffer.setLength(1);
    EXPECT_EQ(buffer.getLength(), 0U);
}

TEST(CommandBufferTest, GrowingKeepsTheBytesAndNeverShrinks) {
    CommandBuffer buffer;
    ASSERT_TRUE(buffer.grow(3));
    ASSERT_TRUE(buffer.append(Bytes, 3));
    ASSERT_TRUE(buffer.grow(6));
    EXPECT_EQ(buffer.getCapacity(), 6U);
    EXPECT_EQ(bytesOf(buffer), "\1\2\3");
    EXPECT_EQ(buffer.data()[5], 0);
    EXPECT_TRUE(buffer.grow(2));
    EXPECT_EQ(buffer.getCapacity(), 6U);
    EXPECT_FALSE(buffer.grow(0x80000000U));
    EXPECT_FALSE(buffer.grow(0));
    EXPECT_EQ(bytesOf(buffer), "\1\2\3");
}

TEST(CommandBufferTest, MovingLeavesNoBlockBehind) {
    CommandBuffer first = bufferOf("abc");
    CommandBuffer second(std::move(first));
    CommandBuffer third = bufferOf("old content");
    third = std::move(second);
    EXPECT_EQ(bytesOf(third), "abc");
    for (const CommandBuffer* pMoved : {&first, &second}) {
        EXPECT_EQ(pMoved->data(), nullptr);
        EXPECT_EQ(pMoved->getCapacity(), 0U);
        EXPECT_EQ(pMoved->getLength(), 0U);
    }
}

}  // namespace
