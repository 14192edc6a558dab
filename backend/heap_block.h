// A malloc'ed block that frees itself, so that an early return loses nothing.
#pragma once

#include <cstdlib>
#include <memory>

struct FreeBlock {
    void operator()(void* block) const { std::free(block); }
};

/// Owns one block of malloc. Null stands for "no memory".
template <class T>
using HeapBlock = std::unique_ptr<T, FreeBlock>;
