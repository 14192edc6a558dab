// What only a process of its own can show: how code fares without memory, and which system calls it
// makes.
#pragma once

#include <signal.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <functional>
#include <new>
#include <vector>

#include "support/sanitized.h"

/// Returns what `work` returns (0 to 255) in a child process, or -1 when the child dies of it.
inline int InChild(const std::function<int()>& work) {
    const pid_t child = fork();
    if (child == 0) _exit(work());
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
    return WEXITSTATUS(status);
}

/// Runs `work` in a process of its own, which exits with 0 behind it. Returns the process.
inline pid_t Fork(const std::function<void()>& work) {
    const pid_t child = fork();
    // Who sends a signal to process -1 ends every process of the machine.
    if (child < 0) std::abort();
    if (child != 0) return child;
    work();
    _exit(0);
}

/// A T that a process shares with those that it forks.
template <class T>
class Shared {
public:
    Shared()
        : object_(new (mmap(nullptr, sizeof(T), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS,
                            -1, 0)) T{}) {}
    ~Shared() { munmap(object_, sizeof(T)); }
    Shared(const Shared&) = delete;
    Shared& operator=(const Shared&) = delete;
    T* operator->() const { return object_; }
    T& operator*() const { return *object_; }

private:
    T* const object_;
};

/// Grows the stack by what later calls may need of it.
[[gnu::noinline]] inline void GrowStack() {
    volatile char stack[256 * 1024];
    for (std::size_t at = 0; at < sizeof stack; at += 1024) stack[at] = 0;
}

/// InChild in a child whose heap is used up, so that every allocation fails.
inline int InChildWithoutMemory(const std::function<int()>& work) {
    return InChild([&] {
        GrowStack();  // afterwards it cannot
        const rlimit none{0, 0};
        if (setrlimit(RLIMIT_AS, &none) != 0) return -1;
        // Each block is kept where the compiler cannot overlook that it was asked for.
        void* volatile kept = nullptr;
        for (std::size_t size = std::size_t{1} << 20; size > 0; size /= 2) {
            do {
                kept = std::malloc(size);
            } while (kept != nullptr);
        }
        return work();
    });
}

/// The numbers of the system calls that `work` makes, in order, as a child process under trace
/// makes them; {-1} when the child cannot be traced.
inline std::vector<long> SystemCallsOf(const std::function<void()>& work) {
    const pid_t child = fork();
    if (child == 0) {
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) _exit(1);
        raise(SIGSTOP);
        syscall(SYS_getppid);  // the marks: what stands between two of them is the work's
        work();
        syscall(SYS_getppid);
        _exit(0);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFSTOPPED(status)) return {-1};
    ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    std::vector<long> calls;
    int marks = 0;
    while (ptrace(PTRACE_SYSCALL, child, nullptr, nullptr) == 0 &&
           waitpid(child, &status, 0) == child && WIFSTOPPED(status)) {
        __ptrace_syscall_info info{};
        if (WSTOPSIG(status) != (SIGTRAP | 0x80) ||
            ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info) <= 0) {
            continue;
        }
        if (info.op != PTRACE_SYSCALL_INFO_ENTRY) continue;
        const long number = static_cast<long>(info.entry.nr);
        if (number == SYS_getppid) {
            ++marks;
        } else if (marks == 1) {
            calls.push_back(number);
        }
    }
    return marks == 2 ? calls : std::vector<long>{-1};
}
