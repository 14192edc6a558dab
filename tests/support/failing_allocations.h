// Memory that runs out on demand, and a look at what is given back, for programs linked with the
// target failing_allocations. Only the objects of the program itself are affected, which is where
// the library's own malloc, calloc and free are; the C++ runtime keeps its memory.
#pragma once

#include <cstddef>
#include <functional>

/// While it lives, allocations fail: all of them, or all but the first few.
class FailingAllocations {
public:
    explicit FailingAllocations(std::size_t granted = 0);
    ~FailingAllocations();
    FailingAllocations(const FailingAllocations&) = delete;
    FailingAllocations& operator=(const FailingAllocations&) = delete;
};

/// While it lives, calls `look` with every block and its size just before it is freed.
class FreedBlocks {
public:
    using Look = std::function<void(const char* block, std::size_t size)>;
    explicit FreedBlocks(Look look);
    ~FreedBlocks();
    FreedBlocks(const FreedBlocks&) = delete;
    FreedBlocks& operator=(const FreedBlocks&) = delete;
};

/// Blocks that are allocated and not yet freed.
std::ptrdiff_t LiveBlocks();

/// Blocks that have been allocated, whether or not they were freed since.
std::size_t AllocatedBlocks();
