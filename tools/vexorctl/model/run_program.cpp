#include "model/run_program.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <string_view>

#include "descriptor.h"
#include "model/exit_code.h"
#include "model/failure.h"

namespace vexorctl {

namespace {

std::vector<std::string> EnvironmentOf(const Program& program) {
    std::vector<std::string> variables;
    for (char** each = environ; *each != nullptr; ++each) {
        const std::string_view variable = *each;
        const std::string_view name = variable.substr(0, variable.find('='));
        const bool is_replaced = std::ranges::any_of(
            program.environment, [&](const auto& own) { return own.first == name; });
        if (!is_replaced) variables.emplace_back(variable);
    }
    for (const auto& [name, value] : program.environment) {
        variables.emplace_back(name).append("=").append(value);
    }
    return variables;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& each : texts) pointers.push_back(each.data());
    pointers.push_back(nullptr);
    return pointers;
}

// Where the program prints, and which signals end it.
class SpawnSettings {
public:
    explicit SpawnSettings(const Program& program) {
        posix_spawn_file_actions_init(&actions_);
        posix_spawnattr_init(&attributes_);
        Redirect(STDOUT_FILENO, program.output);
        Redirect(STDERR_FILENO, program.errors);
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGINT);
        sigaddset(&signals, SIGQUIT);
        posix_spawnattr_setsigdefault(&attributes_, &signals);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF);
    }
    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&actions_);
        posix_spawnattr_destroy(&attributes_);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    const posix_spawn_file_actions_t* actions() const { return &actions_; }
    const posix_spawnattr_t* attributes() const { return &attributes_; }

private:
    void Redirect(int descriptor, const std::string& path) {
        if (path.empty()) return;
        posix_spawn_file_actions_addopen(&actions_, descriptor, path.c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW, 0600);
    }

    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
};

class IgnoringSignal {
public:
    explicit IgnoringSignal(int number) : number_(number) {
        struct sigaction ignore {};
        ignore.sa_handler = SIG_IGN;
        sigaction(number, &ignore, &before_);
    }
    ~IgnoringSignal() { sigaction(number_, &before_, nullptr); }
    IgnoringSignal(const IgnoringSignal&) = delete;
    IgnoringSignal& operator=(const IgnoringSignal&) = delete;

private:
    int number_;
    struct sigaction before_ {};
};

// Whether it ended within the time.
bool EndsWithin(pid_t process, std::chrono::seconds limit) {
    // glibc 2.36 declares pidfd_open in a header that is not for C++.
    const Descriptor handle(static_cast<int>(syscall(SYS_pidfd_open, process, 0)));
    // Without a handle nothing can be waited for with a limit.
    if (!handle.IsOpen()) return true;
    const auto end = std::chrono::steady_clock::now() + limit;
    for (;;) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left.count() <= 0) return false;
        pollfd wanted{handle.Get(), POLLIN, 0};
        constexpr std::chrono::milliseconds kLongest{60'000};
        if (poll(&wanted, 1, static_cast<int>(std::min(left, kLongest).count())) > 0) return true;
    }
}

}  // namespace

ProgramEnd RunProgram(const Program& program) {
    std::vector<std::string> words = program.words;
    std::vector<std::string> variables = EnvironmentOf(program);
    const SpawnSettings settings(program);
    const IgnoringSignal interrupt(SIGINT), quit(SIGQUIT);
    pid_t process = 0;
    const int error =
        posix_spawnp(&process, words.front().c_str(), settings.actions(), settings.attributes(),
                     Pointers(words).data(), Pointers(variables).data());
    if (error != 0) {
        throw Failure(Exit::kUsage, words.front() + " cannot be started: " + std::strerror(error));
    }
    ProgramEnd end;
    if (program.limit.count() > 0 && !EndsWithin(process, program.limit)) {
        end.timed_out = true;
        kill(process, SIGKILL);
    }
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    end.code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return end;
}

}  // namespace vexorctl
