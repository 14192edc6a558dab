// libFuzzer's entry into one target, which the build names.
#include <cstdio>
#include <cstdlib>

#include "targets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const char* const wrong = FUZZ_TARGET(data, size);
    if (wrong == nullptr) return 0;
    std::fprintf(stderr, "%s\n", wrong);
    std::abort();
}
