// Stores the reason of the last failure.
#include "library/trouble.h"

#include <cstdio>

namespace hxlibrary {
namespace {

// Large enough for the longest path and a sentence.
constinit char kept[4096 + 512] = "";

}  // namespace

void NoteTrouble(const char* reason) { std::snprintf(kept, sizeof kept, "%s", reason); }

}  // namespace hxlibrary

const char* hx_trouble() { return hxlibrary::kept; }
