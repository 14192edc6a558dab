// Blocks of malloc that free themselves, so that an early return leaks nothing. Depends on the
// system only, so that every part of the tree can use it.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>

struct FreeBlock {
    void operator()(void* block) const { std::free(block); }
};

/// Owns one block of malloc. Null stands for "no memory".
template <class T>
using HeapBlock = std::unique_ptr<T, FreeBlock>;

/// A block of `bytes` bytes whose content is undefined.
template <class T>
HeapBlock<T> MakeBlock(std::size_t bytes = sizeof(T)) {
    return HeapBlock<T>(static_cast<T*>(std::malloc(bytes)));
}

/// A block of `bytes` bytes, all zero.
template <class T>
HeapBlock<T> MakeZeroedBlock(std::size_t bytes = sizeof(T)) {
    return HeapBlock<T>(static_cast<T*>(std::calloc(bytes, 1)));
}

struct WipeAndFreeBlock {
    std::size_t bytes = 0;
    void operator()(void* block) const {
        explicit_bzero(block, bytes);
        std::free(block);
    }
};

/// Owns one block that holds a password or a hash and is wiped before it is freed.
template <class T>
using SecretBlock = std::unique_ptr<T, WipeAndFreeBlock>;

/// A secret block of `bytes` bytes, all zero.
template <class T>
SecretBlock<T> MakeSecretBlock(std::size_t bytes = sizeof(T)) {
    return SecretBlock<T>(static_cast<T*>(std::calloc(bytes, 1)), WipeAndFreeBlock{bytes});
}
