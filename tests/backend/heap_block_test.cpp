// The owners of blocks of malloc.
#include "heap_block.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "support/failing_allocations.h"

namespace {

TEST(HeapBlock, IsFreedAtItsEnd) {
    const std::ptrdiff_t before = LiveBlocks();
    {
        const auto block = MakeBlock<int>();
        ASSERT_NE(nullptr, block);
        EXPECT_EQ(before + 1, LiveBlocks());
    }
    EXPECT_EQ(before, LiveBlocks());
}

TEST(HeapBlock, HasAsManyBytesAsItIsAskedFor) {
    const auto block = MakeZeroedBlock<char>(1000);
    ASSERT_NE(nullptr, block);
    EXPECT_TRUE(std::all_of(block.get(), block.get() + 1000, [](char byte) { return byte == 0; }));
}

TEST(HeapBlock, IsNullWithoutMemory) {
    const FailingAllocations no_memory;
    EXPECT_EQ(nullptr, MakeBlock<int>());
    EXPECT_EQ(nullptr, MakeZeroedBlock<int>());
    EXPECT_EQ(nullptr, MakeSecretBlock<int>());
}

TEST(SecretBlock, IsWipedBeforeItIsFreed) {
    int blocks = 0;
    bool seen = false;
    {
        const FreedBlocks freed([&](const char* block, std::size_t size) {
            ++blocks;
            seen = seen || std::string_view(block, size).find("secret") != std::string_view::npos;
        });
        const auto block = MakeSecretBlock<char>(100);
        ASSERT_NE(nullptr, block);
        EXPECT_EQ('\0', block.get()[99]);
        std::memcpy(block.get() + 90, "secret", 6);
    }
    EXPECT_EQ(1, blocks);
    EXPECT_FALSE(seen);
}

TEST(SecretBlock, IsWipedBeforeAnotherTakesItsPlace) {
    bool seen = false;
    const FreedBlocks freed([&](const char* block, std::size_t size) {
        seen = seen || std::string_view(block, size).find("secret") != std::string_view::npos;
    });
    auto block = MakeSecretBlock<char>(20);
    std::memcpy(block.get(), "secret", 6);
    block = MakeSecretBlock<char>(40);
    std::memcpy(block.get() + 30, "secret", 6);
    block.reset();
    EXPECT_FALSE(seen);
}

}  // namespace
