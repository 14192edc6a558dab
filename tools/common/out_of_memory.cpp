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

// The terminate handler; any other uncaught exception aborts as usual.
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

// Runs before the program's static objects, because those of the parser's headers allocate.
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
