// The linker sends every malloc, calloc and free of the program's objects here (--wrap).
#include "support/failing_allocations.h"

#include <malloc.h>

#include <utility>

namespace {

bool failing = false;
std::size_t granted_before = 0;
std::ptrdiff_t live = 0;
std::size_t allocated = 0;
FreedBlocks::Look freed;

bool Refused() {
    if (!failing) return false;
    if (granted_before == 0) return true;
    --granted_before;
    return false;
}

void* Counted(void* block) {
    if (block != nullptr) {
        ++live;
        ++allocated;
    }
    return block;
}

}  // namespace

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void __real_free(void* block);

void* __wrap_malloc(std::size_t size) { return Refused() ? nullptr : Counted(__real_malloc(size)); }

void* __wrap_calloc(std::size_t count, std::size_t size) {
    return Refused() ? nullptr : Counted(__real_calloc(count, size));
}

void __wrap_free(void* block) {
    if (block != nullptr) {
        --live;
        if (freed) freed(static_cast<const char*>(block), malloc_usable_size(block));
    }
    __real_free(block);
}
}

FailingAllocations::FailingAllocations(std::size_t granted) {
    granted_before = granted;
    failing = true;
}
FailingAllocations::~FailingAllocations() { failing = false; }

FreedBlocks::FreedBlocks(Look look) { freed = std::move(look); }
FreedBlocks::~FreedBlocks() { freed = nullptr; }

std::ptrdiff_t LiveBlocks() { return live; }

std::size_t AllocatedBlocks() { return allocated; }
