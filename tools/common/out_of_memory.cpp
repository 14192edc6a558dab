#include "common/out_of_memory.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>

#include "common/exit_code.h"

namespace vexortools {

namespace {

// Anything else that is not caught ends the program as ever.
[[noreturn]] void EndOrAbort() noexcept {
    if (const std::exception_ptr thrown = std::current_exception()) {
        try {
            std::rethrow_exception(thrown);
        } catch (const std::bad_alloc&) {
            EndWithoutMemory();
        } catch (...) {
            std::abort();
        }
    }
    std::abort();
}

// Before the static objects of the program: those of the parser's headers allocate.
[[gnu::constructor(101)]] void WatchForIt() { std::set_terminate(EndOrAbort); }

void Say(const char* text) {
    const char* rest = text;
    while (*rest != '\0') {
        const ssize_t count = write(STDERR_FILENO, rest, std::strlen(rest));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return;
        rest += count;
    }
}

}  // namespace

void EndWithoutMemory() noexcept {
    Say(program_invocation_short_name);
    Say(": ");
    Say(kOutOfMemory);
    Say("\n");
    _exit(CodeOf(Exit::kUnavailable));
}

}  // namespace vexortools
