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

// What EndWithoutMemoryBy has said.
constinit const char* other_text = nullptr;
constinit int other_code = 0;

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

void Say(int file, const char* text) {
    const char* rest = text;
    while (*rest != '\0') {
        const ssize_t count = write(file, rest, std::strlen(rest));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return;
        rest += count;
    }
}

}  // namespace

void EndWithoutMemoryBy(const char* text, int code) noexcept {
    other_text = text;
    other_code = code;
}

void EndWithoutMemory() noexcept {
    if (other_text != nullptr) {
        Say(STDOUT_FILENO, other_text);
        _exit(other_code);
    }
    Say(STDERR_FILENO, program_invocation_short_name);
    Say(STDERR_FILENO, ": ");
    Say(STDERR_FILENO, kOutOfMemory);
    Say(STDERR_FILENO, "\n");
    _exit(CodeOf(Exit::kUnavailable));
}

}  // namespace vexortools
